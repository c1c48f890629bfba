#include "Diff.h"

#include <algorithm>

#include "DriverVersion.h"
#include "EqualsIgnoringCase.h"
#include "JsonWriter.h"
#include "PlanJson.h"
#include "Printable.h"

namespace {
constexpr std::size_t kChangeColumns = 9;

std::string_view NameOf(DriverChange change)
{
    switch (change) {
        case DriverChange::Same:
            return "same";
        case DriverChange::Newer:
            return "newer";
        case DriverChange::Older:
            return "older";
        case DriverChange::Lost:
            return "lost";
        case DriverChange::Gained:
            return "gained";
        case DriverChange::NoDriver:
            return "no-driver";
        case DriverChange::Unknown:
            return "unknown";
    }
    return "unknown";
}

Colour ColourOf(DriverChange change)
{
    switch (change) {
        case DriverChange::Lost:
            return Colour::Bad;
        case DriverChange::Older:
        case DriverChange::Unknown:
            return Colour::Doubtful;
        case DriverChange::Newer:
        case DriverChange::Gained:
            return Colour::Good;
        case DriverChange::Same:
        case DriverChange::NoDriver:
            break;
    }
    return Colour::None;
}

/// @return the search for a device; null when the plan does not reach it.
const SearchOutcome* SearchOf(const MachinePlan& plan, const std::string& key)
{
    const auto device = std::ranges::find(plan.devices, key, &DevicePlan::key);
    return device == plan.devices.end() ? nullptr : device->search.get();
}

void TakeSide(const SearchOutcome* search, std::optional<Match>& match, std::optional<std::string>& result)
{
    if (search != nullptr) {
        match = search->match;
        result = search->report ? std::optional(search->report->value) : std::nullopt;
    }
}

std::string_view FileNameOf(const Match& match)
{
    return std::string_view(match.inf).substr(match.inf.rfind('\\') + 1);
}

DriverChange ChangeBetween(const std::optional<Match>& before, const std::optional<Match>& after)
{
    if (!before || !after) {
        return before ? DriverChange::Lost : after ? DriverChange::Gained : DriverChange::NoDriver;
    }
    const std::partial_ordering order =
        Compare(ParseDriverVersion(after->driverVersion), ParseDriverVersion(before->driverVersion));
    if (order == std::partial_ordering::greater) {
        return DriverChange::Newer;
    }
    if (order == std::partial_ordering::less) {
        return DriverChange::Older;
    }
    const bool isSame = order == std::partial_ordering::equivalent || before->driverVersion == after->driverVersion;
    return isSame ? DriverChange::Same : DriverChange::Unknown;
}

std::string DriverText(const std::optional<Match>& match, const MachinePaths& paths)
{
    return match ? Printable(paths.NameOf(match->inf)) + " " + Printable(match->driverVersion) : "no driver";
}

/// What else is different about a driver that both kits have; empty when nothing is.
std::string NoteOf(const DeviceDiff& device)
{
    const bool isSameVersion = device.change == DriverChange::Same;
    std::string note = isSameVersion && device.IsOtherInf() ? "same version, other INF file" : "";
    if (device.IsOtherResult()) {
        note += std::string(note.empty() ? "" : "; ") + "result value " + device.resultBefore.value_or("none") +
                " -> " + device.resultAfter.value_or("none");
    }
    return note;
}

void WriteDriver(JsonWriter& json, std::string_view key, const std::optional<Match>& match,
                 const std::optional<std::string>& result, const MachinePaths& paths)
{
    json.Key(key);
    if (!match) {
        json.Null();
        return;
    }
    json.BeginObject();
    json.Key("inf").Text(paths.NameOf(match->inf));
    json.Key("line").Number(match->line);
    json.Key("pass").Number(static_cast<uint64_t>(match->pass));
    json.Key("modelSection").Text(match->modelSection);
    json.Key("driverVer").Text(match->driverVersion);
    json.Key("result").TextOrNull(result);
    json.EndObject();
}
} // namespace

bool DeviceDiff::IsOtherInf() const
{
    return before && after && !EqualsIgnoringCase(FileNameOf(*before), FileNameOf(*after));
}

bool DeviceDiff::IsOtherResult() const
{
    return before && after && resultBefore != resultAfter;
}

bool DeviceDiff::IsAlike() const
{
    return change == DriverChange::NoDriver || (change == DriverChange::Same && !IsOtherInf() && !IsOtherResult());
}

bool MachineDiff::Has(DriverChange change) const
{
    return std::ranges::find(devices, change, &DeviceDiff::change) != devices.end();
}

bool MachineDiff::Changes() const
{
    return before != after || std::ranges::any_of(devices, [](const DeviceDiff& device) { return !device.IsAlike(); });
}

bool MachineDiff::IsUnknown() const
{
    const auto isUnknown = [](MachineOutcome outcome) {
        return outcome != MachineOutcome::Done && outcome != MachineOutcome::Fault;
    };
    return isUnknown(before) || isUnknown(after);
}

MachineDiff DiffOf(const MachinePlan& before, const MachinePlan& after)
{
    MachineDiff diff{.name = before.name,
                     .source = before.source,
                     .section = before.system.section,
                     .before = before.outcome,
                     .after = after.outcome,
                     .devices = {}};
    // A run that ends with a fault has fewer devices.
    const MachinePlan& longer = before.devices.size() >= after.devices.size() ? before : after;
    for (const DevicePlan& device : longer.devices) {
        DeviceDiff& change = diff.devices.emplace_back();
        change.key = device.key;
        TakeSide(SearchOf(before, device.key), change.before, change.resultBefore);
        TakeSide(SearchOf(after, device.key), change.after, change.resultAfter);
        change.change = ChangeBetween(change.before, change.after);
    }
    return diff;
}

void DiffSummary::Add(const MachineDiff& diff)
{
    ++machines;
    if (diff.IsUnknown()) {
        ++unknown;
        return;
    }
    losing += diff.Has(DriverChange::Lost) ? 1 : 0;
    changing += diff.Changes() ? 1 : 0;
}

std::string DiffText(const MachineDiff& diff, const MachinePaths& oldPaths, const MachinePaths& newPaths,
                     const TextStyle& style)
{
    if (!diff.Changes()) {
        return {};
    }
    std::string out = style.Paint(Colour::Strong, Printable(diff.name)) + "  " + Printable(diff.source) + "  " +
                      Printable(diff.section) + "\n";
    if (diff.before != diff.after) {
        out += "  outcome " + std::string(NameOf(diff.before)) + " -> " + std::string(NameOf(diff.after)) + "\n";
    }
    for (const DeviceDiff& device : diff.devices) {
        if (device.IsAlike()) {
            continue;
        }
        const std::string indent(2 + kChangeColumns, ' ');
        std::string label(NameOf(device.change));
        label.resize(kChangeColumns, ' ');
        out += "  " + style.Paint(ColourOf(device.change), label) + Printable(device.key) + "\n" + indent +
               DriverText(device.before, oldPaths) + " -> " + DriverText(device.after, newPaths) + "\n";
        if (const std::string note = NoteOf(device); !note.empty()) {
            out += indent + note + "\n";
        }
    }
    return out;
}

std::string SummaryText(const DiffSummary& summary)
{
    const std::size_t same = summary.machines - summary.changing - summary.unknown;
    return Counted(summary.machines, "machine") + ": " + std::to_string(summary.losing) + " would lose a driver, " +
           std::to_string(summary.changing - summary.losing) + " would change otherwise, " + std::to_string(same) +
           " would stay as they are" +
           (summary.unknown == 0 ? "" : ", " + std::to_string(summary.unknown) + " could not be planned") + "\n";
}

std::string DiffJsonHead(const KitFolder& oldKit, const KitFolder& newKit)
{
    std::string text;
    JsonWriter json(text);
    json.BeginObject();
    json.Key("schema").Text("morvix-diff/1");
    WriteKit(json, "old", oldKit);
    WriteKit(json, "new", newKit);
    json.Key("machines").BeginArray();
    return text;
}

std::string DiffJsonMachine(const MachineDiff& diff, const MachinePaths& oldPaths, const MachinePaths& newPaths)
{
    std::string text;
    JsonWriter json(text);
    json.BeginObject();
    json.Key("name").Text(diff.name);
    json.Key("source").Text(diff.source);
    json.Key("section").Text(diff.section);
    json.Key("oldOutcome").Text(NameOf(diff.before));
    json.Key("newOutcome").Text(NameOf(diff.after));
    json.Key("devices").BeginArray();
    for (const DeviceDiff& device : diff.devices) {
        json.BeginObject();
        json.Key("key").Text(device.key);
        json.Key("change").Text(NameOf(device.change));
        WriteDriver(json, "old", device.before, device.resultBefore, oldPaths);
        WriteDriver(json, "new", device.after, device.resultAfter, newPaths);
        json.Key("otherInf").Truth(device.IsOtherInf());
        json.Key("otherResult").Truth(device.IsOtherResult());
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    return text;
}

std::string DiffJsonTail(const DiffSummary& summary)
{
    std::string text = "]";
    std::string counts;
    JsonWriter json(counts);
    json.BeginObject();
    json.Key("machines").Number(summary.machines);
    json.Key("losing").Number(summary.losing);
    json.Key("changing").Number(summary.changing);
    json.Key("unknown").Number(summary.unknown);
    json.EndObject();
    return text + R"(,"summary":)" + counts + "}";
}
