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
    bool scanAll = false; ///< INF files that the setup INI excludes are searched too
};

/// Plans machines with one kit. Any number of threads may use one object.
class Planner
{
public:
    /// @param kit  Must outlive the planner.
    Planner(KitFolder& kit, PlanWish wish);

    [[nodiscard]] KitFolder& Kit() const { return m_kit; }

    /// @param trace  When not null, receives the device pass as the installer would trace it.
    [[nodiscard]] MachinePlan Plan(const Machine& machine, std::string* trace = nullptr);

    /// @return what a search for a device on the planned machine depends on.
    [[nodiscard]] SearchTerms TermsFor(const Machine& machine, const PlannedSystem& system) const;

private:
    std::shared_ptr<const SearchOutcome> SearchFor(FolderKitSource& source, const SearchTerms& terms,
                                                   const std::string& deviceKey);
    std::shared_ptr<const StoreState> StoreAfter(FolderKitSource& source, const SearchTerms& terms,
                                                 const std::shared_ptr<const StoreState>& before,
                                                 const std::shared_ptr<const SearchOutcome>& search);
    void Remember(std::size_t bytes);
    void WalkDevices(const Machine& machine, MachinePlan& plan, std::string* trace);

    KitFolder& m_kit;
    PlanWish m_wish;
    // Searches that other machines of the same system have made.
    using KnownSearches = std::map<std::pair<SearchTerms, std::string>, std::shared_ptr<const SearchOutcome>>;
    // What other machines had in the driver store after the same devices in the same order.
    using KnownStores = std::map<std::pair<std::shared_ptr<const StoreState>, std::shared_ptr<const SearchOutcome>>,
                                 std::shared_ptr<const StoreState>>;
    Mutex m_knownLock;
    KnownSearches m_known;
    KnownStores m_knownStores;
    std::size_t m_knownBytes = 0; ///< of both, an estimate
};
