#include "Diff.h"

#include <algorithm>

#include "DriverVersion.h"
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

std::optional<Match> MatchOf(const MachinePlan& plan, const std::string& key)
{
    const auto device = std::ranges::find(plan.devices, key, &DevicePlan::key);
    return device == plan.devices.end() ? std::nullopt : device->search->match;
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

void WriteMatch(JsonWriter& json, std::string_view key, const std::optional<Match>& match, const MachinePaths& paths)
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
    json.EndObject();
}
} // namespace

bool MachineDiff::Has(DriverChange change) const
{
    return std::ranges::find(devices, change, &DeviceDiff::change) != devices.end();
}

bool MachineDiff::Changes() const
{
    return before != after || std::ranges::any_of(devices, [](const DeviceDiff& device) {
               return device.change != DriverChange::Same && device.change != DriverChange::NoDriver;
           });
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
        change.before = MatchOf(before, device.key);
        change.after = MatchOf(after, device.key);
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
        if (device.change == DriverChange::Same || device.change == DriverChange::NoDriver) {
            continue;
        }
        std::string label(NameOf(device.change));
        label.resize(kChangeColumns, ' ');
        out += "  " + style.Paint(ColourOf(device.change), label) + Printable(device.key) + "\n" +
               std::string(2 + kChangeColumns, ' ') + DriverText(device.before, oldPaths) + " -> " +
               DriverText(device.after, newPaths) + "\n";
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
        WriteMatch(json, "old", device.before, oldPaths);
        WriteMatch(json, "new", device.after, newPaths);
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
