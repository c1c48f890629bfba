#include "Planner.h"

#include <algorithm>
#include <utility>

#include "DeviceAcceptance.h"
#include "PlanTrace.h"
#include "RestartFindings.h"

namespace {
constexpr std::size_t kMostKnownBytes = 32 << 20;
constexpr uint32_t kAssumedCodePage = 1252;

/// The first instance of one device of a described machine.
class DescribedDevice final : public DeviceInstances
{
public:
    explicit DescribedDevice(const PciDevice& device) : m_device(device) {}

    [[nodiscard]] FirstInstance FirstInstanceOf(const std::string& /*devicePath*/) override
    {
        FirstInstance first;
        if (m_device.instances.empty()) {
            return first;
        }
        first.isThere = true;
        if (const auto& ids = m_device.instances.front().compatibleIds) {
            first.compatibleIds.emplace(ids->bytes.begin(), ids->bytes.end());
        }
        return first;
    }

private:
    const PciDevice& m_device;
};

Presence PresenceOf(const PciDevice& device)
{
    const auto is = [&device](Presence presence) {
        return std::ranges::any_of(device.instances,
                                   [presence](const PciInstance& i) { return i.presence == presence; });
    };
    if (is(Presence::Present)) {
        return Presence::Present;
    }
    return is(Presence::Unknown) || device.instances.empty() ? Presence::Unknown : Presence::Absent;
}

std::size_t BytesOf(const SearchOutcome& outcome)
{
    std::size_t bytes = sizeof(SearchOutcome);
    for (const std::string& inf : outcome.infs) {
        bytes += sizeof(std::string) + inf.size();
    }
    for (const std::string& name : outcome.names) {
        bytes += sizeof(std::string) + name.size();
    }
    for (const PassNotes& pass : outcome.passes) {
        bytes += pass.judged.size() * sizeof(JudgedInf);
    }
    return bytes + (outcome.passedOver.size() + outcome.qualified.size()) * sizeof(JudgedInf);
}

/// The list that it shares with the device before is counted there.
std::size_t BytesOf(const StoreState& store)
{
    const std::size_t names = store.now.empty() ? 0 : store.all->size() + store.now.size();
    return sizeof(StoreState) + names * (sizeof(std::string) + sizeof(std::string) / 2);
}

std::vector<std::string> NamesOfQualified(const SearchOutcome& search)
{
    std::vector<std::string> names;
    for (const uint32_t inf : search.qualified) {
        names.emplace_back(FileNameIn(search.infs[inf]));
    }
    return names;
}
} // namespace

Planner::Planner(KitFolder& kit, PlanWish wish) : m_kit(kit), m_wish(std::move(wish)) {}

SearchTerms Planner::TermsFor(const Machine& machine, const PlannedSystem& system) const
{
    return {.system = system.code,
            .family = system.family,
            .codePage = machine.system.codePage.value.value_or(kAssumedCodePage),
            .scanAll = m_wish.scanAll};
}

MachinePlan Planner::Plan(const Machine& machine, std::string* trace)
{
    MachinePlan plan;
    plan.name = machine.name;
    plan.source = machine.source;
    plan.kind = machine.kind;
    plan.dirty = machine.dirty;
    plan.diagnostics = machine.diagnostics;
    if (machine.refused) {
        plan.outcome = MachineOutcome::Unreadable;
        plan.problem = machine.diagnostics.empty() ? "nothing could be read" : machine.diagnostics.front().what;
        return plan;
    }
    std::optional<PlannedSystem> system = ChooseSystem(machine, m_wish.system, plan.problem);
    if (!system) {
        plan.outcome = MachineOutcome::UnknownSystem;
        plan.diagnostics.push_back({.severity = Severity::Error,
                                    .source = machine.source,
                                    .line = 0,
                                    .what = plan.problem,
                                    .cure = "name the system with --system"});
        return plan;
    }
    plan.system = *std::move(system);
    if (!plan.problem.empty()) {
        plan.outcome = MachineOutcome::NotServed;
        return plan;
    }
    WalkDevices(machine, plan, trace);
    if (plan.outcome == MachineOutcome::Done) {
        plan.restart = RestartFindings(machine, plan);
    }
    return plan;
}

void Planner::WalkDevices(const Machine& machine, MachinePlan& plan, std::string* trace)
{
    const PciDevices& devices = DevicesForFamily(machine, plan.system.family);
    const std::optional<ServedFamily> family = FindServedFamily(plan.system.family);
    if (!devices || !family) {
        plan.outcome = MachineOutcome::NoDevices;
        plan.problem = family
                           ? "the description has no key " + std::string(family->pciKey) +
                                 "; the installer would end with an error"
                           : "the installer looks for no devices on a system of family \"" + plan.system.family + "\"";
        return;
    }
    const SearchTerms terms = TermsFor(machine, plan.system);
    const LeadByteTest isLeadByte = LeadByteTestOf(terms.codePage);
    FolderKitSource source(m_kit, terms.codePage);
    std::shared_ptr<const StoreState> store; // nothing yet
    std::vector<std::string> storedInfs;     // the same for a trace, which no other machine shares
    SilentLog silent;
    std::string unused;
    TraceLog tracer(trace == nullptr ? unused : *trace);
    if (trace != nullptr) {
        tracer.PassStarts();
    }
    for (const PciDevice& device : *devices) {
        DescribedDevice instances(device);
        const Acceptance acceptance = AcceptDevice(device.name, plan.system.family, instances,
                                                   trace == nullptr ? static_cast<SearchLog&>(silent) : tracer);
        if (!acceptance.IsAccepted()) {
            plan.rejected.push_back({.key = device.name, .verdict = acceptance.verdict});
            continue;
        }
        DevicePlan& planned = plan.devices.emplace_back();
        planned.key = device.name;
        planned.acceptance = acceptance.verdict;
        planned.acceptedBy = acceptance.acceptedId;
        planned.presence = PresenceOf(device);
        planned.instances = device.instances.size();
        if (trace == nullptr) {
            planned.search = SearchFor(source, terms, device.name);
            store = StoreAfter(source, terms, store, planned.search);
        } else {
            planned.search =
                std::make_shared<const SearchOutcome>(SearchKit(source, terms, device.name, storedInfs, tracer));
            store = std::make_shared<const StoreState>(
                StoreState{.all = nullptr, .now = NamesOfQualified(*planned.search)});
        }
        planned.store = store;
        if (planned.search->verdict == SearchVerdict::Fault) {
            plan.outcome = MachineOutcome::Fault;
            plan.notReached = devices->size() - plan.devices.size() - plan.rejected.size();
            return;
        }
        if (trace != nullptr && planned.search->match) {
            tracer.Installed(family->route, device.name, planned.search->match->recordPath, plan.system, isLeadByte);
        }
    }
    if (trace != nullptr) {
        tracer.PassEnds();
    }
}

std::shared_ptr<const SearchOutcome> Planner::SearchFor(FolderKitSource& source, const SearchTerms& terms,
                                                        const std::string& deviceKey)
{
    std::pair<SearchTerms, std::string> question{terms, deviceKey};
    {
        const std::lock_guard lock(m_knownLock);
        if (const auto known = m_known.find(question); known != m_known.end()) {
            return known->second;
        }
    }
    auto found = std::make_shared<const SearchOutcome>(SearchKit(source, terms, deviceKey));
    const std::lock_guard lock(m_knownLock);
    Remember(BytesOf(*found));
    // Another thread may have been faster: then its answer is shared.
    return m_known.try_emplace(std::move(question), found).first->second;
}

std::shared_ptr<const StoreState> Planner::StoreAfter(FolderKitSource& source, const SearchTerms& terms,
                                                      const std::shared_ptr<const StoreState>& before,
                                                      const std::shared_ptr<const SearchOutcome>& search)
{
    {
        const std::lock_guard lock(m_knownLock);
        if (const auto known = m_knownStores.find({before, search}); known != m_knownStores.end()) {
            return known->second;
        }
    }
    StoreState after;
    std::vector<std::string> all = before ? *before->all : std::vector<std::string>();
    after.now = StoreQualified(source, terms, *search, all);
    after.all =
        before && after.now.empty() ? before->all : std::make_shared<const std::vector<std::string>>(std::move(all));
    auto found = std::make_shared<const StoreState>(std::move(after));
    const std::lock_guard lock(m_knownLock);
    Remember(BytesOf(*found));
    return m_knownStores.try_emplace({before, search}, found).first->second;
}

void Planner::Remember(std::size_t bytes)
{
    m_knownBytes += bytes;
    if (m_knownBytes > kMostKnownBytes) {
        m_known.clear();
        m_knownStores.clear();
        m_knownBytes = bytes;
    }
}
