#pragma once

#include <map>
#include <memory>
#include <string>

#include "DeviceSearcher.h"
#include "KitFolder.h"
#include "Locks.h"
#include "Machine.h"
#include "Plan.h"
#include "SystemChoice.h"

struct PlanWish
{
    SystemWish system;
    bool scanAll = false; ///< INF files that the setup INI excludes are searched all the same
};

/// Plans machines with one kit. Serves any number of threads.
class Planner
{
public:
    /// @param kit  Must outlive the planner.
    Planner(KitFolder& kit, PlanWish wish);

    [[nodiscard]] KitFolder& Kit() const { return m_kit; }

    /// @param trace  When not null, the device pass is written down there as the installer would trace it.
    [[nodiscard]] MachinePlan Plan(const Machine& machine, std::string* trace = nullptr);

    /// @return what a search for a device on the planned machine depends on.
    [[nodiscard]] SearchTerms TermsFor(const Machine& machine, const PlannedSystem& system) const;

private:
    std::shared_ptr<const SearchOutcome> SearchFor(FolderKitSource& source, const SearchTerms& terms,
                                                   const std::string& deviceKey);
    void WalkDevices(const Machine& machine, MachinePlan& plan, std::string* trace);

    KitFolder& m_kit;
    PlanWish m_wish;
    // Searches that other machines of the same system have made.
    using KnownSearches = std::map<std::pair<SearchTerms, std::string>, std::shared_ptr<const SearchOutcome>>;
    Mutex m_knownLock;
    KnownSearches m_known;
    std::size_t m_knownBytes = 0; ///< an estimate
};
