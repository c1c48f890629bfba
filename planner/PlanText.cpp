#include "PlanText.h"

#include <algorithm>
#include <map>

#include "NetworkDevices.h"
#include "Printable.h"
#include "RecordNames.h"

namespace {
std::string MatchText(const Match& match, const MachinePaths& paths)
{
    return Printable(paths.NameOf(match.inf)) + ":" + std::to_string(match.line) + ", pass " +
           std::to_string(match.pass) + ", section [" + Printable(match.modelSection) + "]";
}

void AppendPassedOver(std::string& out, const SearchOutcome& search, const TextStyle& style)
{
    std::map<InfVerdict, std::vector<std::string>> byReason;
    for (const JudgedInf& over : search.passedOver) {
        byReason[over.verdict].push_back(Printable(search.names[over.inf]));
    }
    std::string_view label = "passed over";
    for (const auto& [verdict, names] : byReason) {
        AppendField(out, style, label, std::string(InWords(verdict)) + ": " + Joined(names));
        label = "";
    }
}

void AppendSearchPlaces(std::string& out, const SearchOutcome& search, const MachinePaths& paths,
                        const TextStyle& style)
{
    std::vector<std::string> names;
    for (const std::string& directory : search.directories) {
        names.push_back(Printable(paths.NameOf(directory)));
    }
    AppendField(out, style, "searched", names.empty() ? "no folder: Morvix.ini names none" : Joined(names));
}

void AppendDevice(std::string& out, const DevicePlan& device, const MachinePaths& paths, const TextStyle& style)
{
    const SearchOutcome& search = *device.search;
    out += "  " + style.Paint(Colour::Strong, Printable(device.key)) + "\n";
    AppendField(out, style, "accepted by", Printable(device.acceptedBy));
    AppendField(out, style, "presence", InWords(device.presence));
    switch (search.verdict) {
        case SearchVerdict::Matched: {
            AppendField(out, style, "driver", MatchText(*search.match, paths), Colour::Good);
            AppendField(out, style, "",
                        "\"" + Printable(search.match->description) + "\", " + Printable(search.match->driverVersion));
            break;
        }
        case SearchVerdict::NoInf:
            AppendField(out, style, "driver", "none: no INF file lists the device in any pass", Colour::Bad);
            AppendSearchPlaces(out, search, paths, style);
            break;
        case SearchVerdict::Fault:
            AppendField(out, style, "driver",
                        "the run would end here with a fault: the key name has no \"&REV\" for pass " +
                            std::to_string(search.lastPass) + "; no device after this one would get a driver",
                        Colour::Bad);
            break;
    }
    AppendPassedOver(out, search, style);
    if (!device.store->now.empty()) {
        std::vector<std::string> names;
        for (const std::string& name : device.store->now) {
            names.push_back(Printable(name));
        }
        AppendField(out, style, "stored", Joined(names));
    }
    if (search.verdict == SearchVerdict::Matched) {
        if (search.report) {
            AppendField(out, style, "result", InWords(*search.report),
                        ResultIfBound(*search.report) == kResultSuccess ? Colour::None : Colour::Doubtful);
        } else {
            AppendField(out, style, "result", "none is written: the INF's name belongs to no driver family",
                        Colour::Doubtful);
        }
    }
}

void AppendRejected(std::string& out, const std::vector<RejectedDevice>& rejected)
{
    if (rejected.empty()) {
        return;
    }
    std::size_t others = 0;
    for (const RejectedDevice& device : rejected) {
        if (!IsOfServedVendor(device.key)) {
            ++others;
            continue;
        }
        out += "  " + Printable(device.key) + "\n    not served: " + std::string(InWords(device.verdict)) + "\n";
    }
    if (others != 0) {
        out += "  " + Counted(others, "PCI device") + " of other makers\n";
    }
}

void AppendRestart(std::string& out, const std::vector<RestartAnswer>& reasons, const TextStyle& style)
{
    for (const RestartAnswer& reason : reasons) {
        const std::string answer = !reason.holds ? "unknown" : *reason.holds ? "yes" : "no";
        AppendField(out, style, "restart", reason.id + ": " + answer + "; " + Printable(reason.why),
                    reason.holds.value_or(false) ? Colour::Doubtful : Colour::None);
    }
}

std::string SystemText(const PlannedSystem& system)
{
    return Printable(system.section) + " (" + system.from + "), family \"" + Printable(system.family) + "\" (" +
           system.familyFrom + ")";
}
} // namespace

std::string_view InWords(DeviceVerdict verdict)
{
    switch (verdict) {
        case DeviceVerdict::AcceptedByName:
            return "the maker's vendor number is in its name";
        case DeviceVerdict::AcceptedById:
            return "one of its compatible IDs is accepted";
        case DeviceVerdict::OtherVendor:
            return "the maker's vendor number is not in its name";
        case DeviceVerdict::NoInstance:
            return "its key has no instance";
        case DeviceVerdict::NoCompatibleIds:
            return "its first instance has no list of compatible IDs";
        case DeviceVerdict::OtherDevice:
            return "none of its first instance's compatible IDs is accepted";
    }
    return {};
}

bool IsOfServedVendor(std::string_view deviceKey)
{
    return std::ranges::any_of(kAcceptedCompatibleIds, [deviceKey](std::string_view id) {
        constexpr std::size_t kVendorAt = 4;    // after "PCI\"
        constexpr std::size_t kVendorChars = 8; // "VEN_5D1A"
        return deviceKey.find(id.substr(kVendorAt, kVendorChars)) != std::string_view::npos;
    });
}

std::string_view InWords(Presence presence)
{
    switch (presence) {
        case Presence::Unknown:
            return "unknown: the key of a removed card stays in the registry";
        case Presence::Present:
            return "present";
        case Presence::Absent:
            return "absent: only its key is left";
    }
    return {};
}

std::string InWords(const Report& report)
{
    const std::string pattern = R"(system32\drivers)" + Printable(report.expects);
    const std::string value = Printable(report.value);
    if (!report.copiesAreKnown) {
        return value + " will be SUCCESS if there is a " + pattern + " after the installation";
    }
    if (report.copiedFile) {
        return value + " will be SUCCESS when the driver is bound: " + Printable(*report.copiedFile) + " fits " +
               pattern;
    }
    return value + " will be FAILURE: the INF copies no file that fits " + pattern +
           ", unless an older driver has left one";
}

std::string PlanText(const MachinePlan& plan, const MachinePaths& paths, const TextStyle& style)
{
    std::string out = style.Paint(Colour::Strong, Printable(plan.name)) + "  " + Printable(plan.source) + "\n";
    const bool hasSystem = plan.outcome != MachineOutcome::UnknownSystem && plan.outcome != MachineOutcome::Unreadable;
    if (hasSystem) {
        AppendField(out, style, "system", SystemText(plan.system));
    }
    if (!plan.problem.empty()) {
        AppendField(out, style, "problem", Printable(plan.problem), Colour::Bad);
    }
    if (plan.outcome != MachineOutcome::Done && plan.outcome != MachineOutcome::Fault) {
        return out;
    }
    if (plan.devices.empty()) {
        out += "  no adapter is served here\n";
    }
    for (const DevicePlan& device : plan.devices) {
        AppendDevice(out, device, paths, style);
    }
    AppendRejected(out, plan.rejected);
    AppendRestart(out, plan.restart, style);
    return out;
}
