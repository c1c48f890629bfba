#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "KitFolder.h"
#include "Plan.h"
#include "TextStyle.h"

/// What changes on a machine when one kit takes the place of another.

enum class DriverChange
{
    Same,
    Newer,
    Older,
    Lost,
    Gained,
    NoDriver, ///< in neither kit
    Unknown,  ///< other INF files, of which the versions cannot be compared
};

struct DeviceDiff
{
    std::string key;
    DriverChange change = DriverChange::Same;
    std::optional<Match> before;
    std::optional<Match> after;
    /// The value that an installation writes; none without a driver, and for an INF file of no driver family.
    std::optional<std::string> resultBefore{};
    std::optional<std::string> resultAfter{};

    /// @return true when both kits have a driver, from INF files of different names. A package may move to another
    /// folder.
    [[nodiscard]] bool IsOtherInf() const;
    /// @return true when both kits have a driver, and an installation writes different values.
    [[nodiscard]] bool IsOtherResult() const;
    /// @return true when the machine gets the same driver as before, by INF file, version and result value, or none.
    [[nodiscard]] bool IsAlike() const;
};

struct MachineDiff
{
    std::string name;
    std::string source;
    std::string section; ///< of the system
    MachineOutcome before = MachineOutcome::Done;
    MachineOutcome after = MachineOutcome::Done;
    std::vector<DeviceDiff> devices;

    [[nodiscard]] bool Has(DriverChange change) const;
    [[nodiscard]] bool Changes() const;
    /// @return true when a kit could not be planned for the machine: nothing is known of its drivers.
    [[nodiscard]] bool IsUnknown() const;
};

/// @param before  With the old kit.
/// @param after   The same machine with the new one.
[[nodiscard]] MachineDiff DiffOf(const MachinePlan& before, const MachinePlan& after);

/// How many machines met which fate.
struct DiffSummary
{
    std::size_t machines = 0;
    std::size_t losing = 0;   ///< lose a driver
    std::size_t changing = 0; ///< change in any way, the losing ones included
    std::size_t unknown = 0;  ///< could not be planned; in none of the other two

    void Add(const MachineDiff& diff);
};

/// @return the machine's changes for people; empty when nothing changes.
[[nodiscard]] std::string DiffText(const MachineDiff& diff, const MachinePaths& oldPaths, const MachinePaths& newPaths,
                                   const TextStyle& style);
[[nodiscard]] std::string SummaryText(const DiffSummary& summary);

/// The differences as JSON, schema "morvix-diff/1" (docs/schemas/morvix-diff-1.json): keys are only ever added.
[[nodiscard]] std::string DiffJsonHead(const KitFolder& oldKit, const KitFolder& newKit);
[[nodiscard]] std::string DiffJsonMachine(const MachineDiff& diff, const MachinePaths& oldPaths,
                                          const MachinePaths& newPaths);
[[nodiscard]] std::string DiffJsonTail(const DiffSummary& summary);
