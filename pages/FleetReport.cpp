#include "FleetReport.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <utility>

#include "PlanText.h"
#include "RecordNames.h"

namespace {
/// Appends a part of a group's identity. Texts of registries hold any byte, so each part has its length before it.
void AppendPart(std::string& identity, std::string_view part)
{
    identity += std::to_string(part.size());
    identity += ':';
    identity += part;
}

void AppendPart(std::string& identity, std::size_t number)
{
    AppendPart(identity, std::to_string(number));
}

std::string IdentityOf(const FleetGroup& group)
{
    std::string identity;
    AppendPart(identity, static_cast<std::size_t>(group.state));
    AppendPart(identity, static_cast<std::size_t>(group.outcome));
    AppendPart(identity, group.problem);
    AppendPart(identity, group.notReached);
    const PlannedSystem& system = group.system;
    for (const std::string* const text : {&system.section, &system.family, &system.from, &system.familyFrom}) {
        AppendPart(identity, *text);
    }
    AppendPart(identity, system.reasons.size());
    for (const std::string& reason : system.reasons) {
        AppendPart(identity, reason);
    }
    AppendPart(identity, group.devices.size());
    for (const FleetDevice& device : group.devices) {
        AppendPart(identity, device.trail);
        AppendPart(identity, static_cast<std::size_t>(device.presence));
    }
    AppendPart(identity, group.lost.size());
    for (const LostDriver& lost : group.lost) {
        AppendPart(identity, lost.key);
        AppendPart(identity, lost.driver);
    }
    for (const RejectedDevice& device : group.leftAlone) {
        AppendPart(identity, device.key);
        AppendPart(identity, static_cast<std::size_t>(device.verdict));
    }
    return identity;
}

bool IsWithoutAnswer(MachineOutcome outcome)
{
    return outcome == MachineOutcome::Unreadable || outcome == MachineOutcome::UnknownSystem;
}

bool LacksDriver(const DevicePlan& device)
{
    return device.search->verdict != SearchVerdict::Matched;
}

/// Whether the result value will say something else than SUCCESS, or nothing.
bool HasDoubtfulResult(const DevicePlan& device)
{
    return !device.search->report || ResultIfBound(*device.search->report) != kResultSuccess;
}

bool IsSame(const SearchOutcome& one, const SearchOutcome& other)
{
    return &one == &other || one == other;
}
} // namespace

FleetState StateOf(const MachinePlan& plan, bool losesDriver)
{
    if (losesDriver) {
        return FleetState::Loses;
    }
    if (plan.outcome == MachineOutcome::Fault) {
        return FleetState::BreaksOff;
    }
    if (plan.outcome != MachineOutcome::Done) {
        return FleetState::Refused;
    }
    if (std::ranges::any_of(plan.devices, LacksDriver)) {
        return FleetState::Lacks;
    }
    if (plan.devices.empty()) {
        return FleetState::NoAdapter;
    }
    return std::ranges::any_of(plan.devices, HasDoubtfulResult) ? FleetState::InDoubt : FleetState::Served;
}

void FleetReport::Add(MachinePlan plan)
{
    AddTo(std::move(plan), {});
}

void FleetReport::Add(MachinePlan plan, const MachineDiff& diff, const MachinePaths& oldPaths)
{
    std::vector<LostDriver> lost;
    for (const DeviceDiff& device : diff.devices) {
        if (device.change == DriverChange::Lost && device.before) {
            lost.push_back({.key = device.key,
                            .driver = oldPaths.NameOf(device.before->inf) + " " + device.before->driverVersion});
        }
    }
    std::ranges::sort(lost);
    AddTo(std::move(plan), std::move(lost));
}

void FleetReport::AddUnreadable(const Diagnostic& reason)
{
    ++m_machines;
    m_unknown.push_back({.machine = {.name = reason.source, .source = reason.source}, .reasons = {reason}});
}

void FleetReport::AddTo(MachinePlan plan, std::vector<LostDriver> lost)
{
    ++m_machines;
    FleetMachine machine{.name = std::move(plan.name), .source = std::move(plan.source)};
    if (IsWithoutAnswer(plan.outcome)) {
        m_unknown.push_back({.machine = std::move(machine), .reasons = std::move(plan.diagnostics)});
        return;
    }
    Remark(plan.diagnostics);
    FleetGroup group;
    group.state = StateOf(plan, !lost.empty());
    group.lost = std::move(lost);
    for (const DevicePlan& device : plan.devices) {
        const std::size_t trail = TrailOf(plan.system, device);
        ++m_trails[trail].machines;
        group.devices.push_back({.trail = trail, .presence = device.presence});
    }
    std::ranges::sort(group.devices);
    for (RejectedDevice& device : plan.rejected) {
        if (IsOfServedVendor(device.key)) {
            group.leftAlone.push_back(std::move(device));
        }
    }
    group.outcome = plan.outcome;
    group.problem = std::move(plan.problem);
    group.notReached = plan.notReached;
    group.system = std::move(plan.system);
    const auto [place, isNew] = m_groupOf.try_emplace(IdentityOf(group), m_groups.size());
    if (isNew) {
        m_groups.push_back(std::move(group));
    }
    m_groups[place->second].machines.push_back(std::move(machine));
}

std::size_t FleetReport::TrailOf(const PlannedSystem& system, const DevicePlan& device)
{
    std::vector<std::size_t>& known = m_trailsOf[{system.section, system.family, device.key, device.acceptedBy}];
    // Machines of other code pages may find something else; nearly always they find the same.
    for (const std::size_t trail : known) {
        FleetTrail& candidate = m_trails[trail];
        if (candidate.device.acceptance == device.acceptance && IsSame(*candidate.device.search, *device.search)) {
            candidate.device.search = device.search; // the one that the next machines have too
            return trail;
        }
    }
    known.push_back(m_trails.size());
    m_trails.push_back({.section = system.section, .family = system.family, .device = device, .machines = 0});
    m_trails.back().device.store.reset();
    return known.back();
}

void FleetReport::Remark(const std::vector<Diagnostic>& diagnostics)
{
    for (const Diagnostic& diagnostic : diagnostics) {
        const auto [place, isNew] =
            m_remarkOf.try_emplace({diagnostic.severity, diagnostic.what, diagnostic.cure}, m_remarks.size());
        if (isNew) {
            m_remarks.push_back(
                {.severity = diagnostic.severity, .what = diagnostic.what, .cure = diagnostic.cure, .sources = {}});
        }
        m_remarks[place->second].sources.push_back(diagnostic.source);
    }
}

void FleetReport::Finish(const FleetLimits& limits)
{
    std::ranges::stable_sort(m_groups, [](const FleetGroup& one, const FleetGroup& other) {
        if (one.state != other.state) {
            return one.state < other.state;
        }
        return one.machines.size() > other.machines.size();
    });
    if (const std::size_t kept = GroupsWithin(limits); kept < m_groups.size()) {
        Fold(kept);
        DropUnusedTrails();
    }
}

/// @return how many of the first groups are within the limits.
std::size_t FleetReport::GroupsWithin(const FleetLimits& limits) const
{
    std::set<std::size_t> trails;
    for (std::size_t group = 0; group < m_groups.size(); ++group) {
        for (const FleetDevice& device : m_groups[group].devices) {
            trails.insert(device.trail);
        }
        if (group == limits.groups || trails.size() > limits.trails) {
            return group;
        }
    }
    return m_groups.size();
}

void FleetReport::Fold(std::size_t kept)
{
    using Common = std::tuple<FleetState, std::string, std::string, std::string, std::string>;
    std::map<Common, FleetGroup> folded;
    for (FleetGroup& group : std::span(m_groups).subspan(kept)) {
        const PlannedSystem& system = group.system;
        const auto [place, isNew] =
            folded.try_emplace({group.state, system.section, system.family, system.from, system.familyFrom});
        FleetGroup& into = place->second;
        if (isNew) {
            into.state = group.state;
            into.outcome = group.outcome;
            into.system = group.system;
            into.system.reasons.clear();
        }
        ++into.folded;
        const auto unknown = std::ranges::count(group.devices, Presence::Unknown, &FleetDevice::presence);
        into.unknownPresences += static_cast<std::size_t>(unknown) * group.machines.size();
        std::ranges::move(group.machines, std::back_inserter(into.machines));
    }
    m_groups.resize(kept);
    for (auto& [common, group] : folded) {
        m_groups.push_back(std::move(group));
    }
    std::ranges::stable_sort(m_groups, {}, &FleetGroup::state);
}

void FleetReport::DropUnusedTrails()
{
    std::vector<FleetTrail> kept;
    std::map<std::size_t, std::size_t> places;
    for (FleetGroup& group : m_groups) {
        for (FleetDevice& device : group.devices) {
            const auto [place, isNew] = places.try_emplace(device.trail, kept.size());
            if (isNew) {
                kept.push_back(m_trails[device.trail]);
                kept.back().machines = 0;
            }
            device.trail = place->second;
            kept[device.trail].machines += group.machines.size();
        }
    }
    m_trails = std::move(kept);
}

std::size_t FleetReport::FoldedMachines() const
{
    std::size_t machines = 0;
    for (const FleetGroup& group : m_groups) {
        machines += group.folded == 0 ? 0 : group.machines.size();
    }
    return machines;
}

std::size_t FleetReport::Machines(FleetState state) const
{
    std::size_t machines = 0;
    for (const FleetGroup& group : m_groups) {
        machines += group.state == state ? group.machines.size() : 0;
    }
    return machines;
}
