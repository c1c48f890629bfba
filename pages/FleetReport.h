#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "Diff.h"
#include "MachinePaths.h"
#include "Plan.h"

/// What the plans of many machines amount to. Machines with the same system and the same set of devices are one group;
/// the searches that their devices share are kept once. All of it is a value that the page prints.

/// What becomes of a machine, in the order of the page: what needs somebody comes first.
enum class FleetState
{
    Loses,     ///< a driver that the old kit has
    BreaksOff, ///< the run would end with a fault in the middle of the devices
    Lacks,     ///< a served device gets no driver
    Refused,   ///< the installer does not serve the system, or finds no devices and ends with an error
    InDoubt,   ///< every device gets a driver, but a result value would not say SUCCESS
    Served,
    NoAdapter, ///< nothing to install
};
inline constexpr std::size_t kFleetStates = 7;

/// The way of one device to its driver on one system: the same for every machine that has both.
struct FleetTrail
{
    std::string section; ///< of the system
    std::string family;
    DevicePlan device; ///< of the first machine; its presence is that machine's own
    std::size_t machines = 0;
};

struct FleetDevice
{
    std::size_t trail = 0; ///< place in FleetReport::Trails
    Presence presence = Presence::Unknown;
    auto operator<=>(const FleetDevice&) const = default;
};

struct FleetMachine
{
    std::string name;
    std::string source;
};

/// A driver that the old kit has for a device and the new one has not.
struct LostDriver
{
    std::string key;
    std::string driver; ///< INF and version, as the user knows them
    auto operator<=>(const LostDriver&) const = default;
};

struct FleetGroup
{
    FleetState state = FleetState::Served;
    MachineOutcome outcome = MachineOutcome::Done;
    std::string problem;
    PlannedSystem system;
    std::vector<FleetDevice> devices; ///< those of one trail together, in the order of the trails
    std::vector<LostDriver> lost;
    std::vector<RejectedDevice> leftAlone; ///< devices of the maker that are not served
    std::size_t notReached = 0;
    std::vector<FleetMachine> machines;
    /// For a group that replaces several groups of one state and system: how many, and how many devices of unknown
    /// presence their machines have. Nothing else is kept of their devices.
    std::size_t folded = 0;
    std::size_t unknownPresences = 0;
};

/// A page for 10,000 machines shall stay below 2 MB, even if no two of them are alike. A fleet has some hundred groups.
struct FleetLimits
{
    std::size_t groups = 500; ///< that are shown one by one
    std::size_t trails = 600; ///< that these groups' devices have together
};

/// A machine of which nothing can be said, and why.
struct FleetUnknown
{
    FleetMachine machine;
    std::vector<Diagnostic> reasons;
};

/// The same remark about any number of machines.
struct FleetRemark
{
    Severity severity = Severity::Warning;
    std::string what;
    std::string cure;
    std::vector<std::string> sources;
};

class FleetReport
{
public:
    /// @param paths  Name the files of the kit.
    explicit FleetReport(const MachinePaths& paths) : m_paths(paths) {}

    void Add(MachinePlan plan);
    /// The same for a kit that takes the place of another.
    void Add(MachinePlan plan, const MachineDiff& diff, const MachinePaths& oldPaths);
    /// An argument that names no machine.
    void AddUnreadable(const Diagnostic& reason);

    /// Brings the groups into the order of the page. Those beyond the limits are folded: one group for each state and
    /// system takes their machines.
    void Finish(const FleetLimits& limits = {});

    [[nodiscard]] const std::vector<FleetGroup>& Groups() const { return m_groups; }
    [[nodiscard]] const std::vector<FleetTrail>& Trails() const { return m_trails; }
    [[nodiscard]] const std::vector<FleetUnknown>& Unknown() const { return m_unknown; }
    [[nodiscard]] const std::vector<FleetRemark>& Remarks() const { return m_remarks; }
    [[nodiscard]] const MachinePaths& Paths() const { return m_paths; }
    /// @return the number of machines, those without an answer included.
    [[nodiscard]] std::size_t Machines() const { return m_machines; }
    /// @return the number of machines in that state.
    [[nodiscard]] std::size_t Machines(FleetState state) const;
    /// @return the number of machines in folded groups.
    [[nodiscard]] std::size_t FoldedMachines() const;

private:
    using TrailKey = std::tuple<std::string, std::string, std::string, std::string>;

    void AddTo(MachinePlan plan, std::vector<LostDriver> lost);
    std::size_t TrailOf(const PlannedSystem& system, const DevicePlan& device);
    void Remark(const std::vector<Diagnostic>& diagnostics);
    [[nodiscard]] std::size_t GroupsWithin(const FleetLimits& limits) const;
    void Fold(std::size_t kept);
    void DropUnusedTrails();

    const MachinePaths& m_paths;
    std::size_t m_machines = 0;
    std::vector<FleetGroup> m_groups;
    std::vector<FleetTrail> m_trails;
    std::vector<FleetUnknown> m_unknown;
    std::vector<FleetRemark> m_remarks;
    std::map<std::string, std::size_t> m_groupOf; ///< by all that makes a group
    std::map<TrailKey, std::vector<std::size_t>> m_trailsOf;
    std::map<std::tuple<Severity, std::string, std::string>, std::size_t> m_remarkOf;
};

/// @return what becomes of a machine with these devices.
[[nodiscard]] FleetState StateOf(const MachinePlan& plan, bool losesDriver);
