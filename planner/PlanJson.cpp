#include "PlanJson.h"

#include "JsonWriter.h"

namespace {
void WriteTexts(JsonWriter& json, std::string_view key, const std::vector<std::string>& texts)
{
    json.Key(key).BeginArray();
    for (const std::string& text : texts) {
        json.Text(text);
    }
    json.EndArray();
}

void WriteMatch(JsonWriter& json, const SearchOutcome& search, const MachinePaths& paths)
{
    json.Key("match");
    if (!search.match) {
        json.Null();
        return;
    }
    const Match& match = *search.match;
    json.BeginObject();
    json.Key("inf").Text(paths.NameOf(match.inf));
    json.Key("line").Number(match.line);
    json.Key("column").Number(match.column);
    json.Key("pass").Number(static_cast<uint64_t>(match.pass));
    json.Key("searchId").Text(match.searchId);
    json.Key("modelSection").Text(match.modelSection);
    json.Key("description").Text(match.description);
    json.Key("driverVer").Text(match.driverVersion);
    json.EndObject();
}

void WriteReport(JsonWriter& json, const std::optional<Report>& report)
{
    json.Key("report");
    if (!report) {
        json.Null();
        return;
    }
    json.BeginObject();
    json.Key("value").Text(report->value);
    json.Key("expects").Text(report->expects);
    json.Key("copies").TextOrNull(report->copiedFile);
    json.Key("ifBound").Text(ResultIfBound(*report));
    json.EndObject();
}

void WriteDevice(JsonWriter& json, const DevicePlan& device, const MachinePaths& paths)
{
    const SearchOutcome& search = *device.search;
    json.BeginObject();
    json.Key("key").Text(device.key);
    json.Key("state").Text(NameOf(search.verdict));
    json.Key("acceptedBy").Text(device.acceptedBy);
    json.Key("presence").Text(NameOf(device.presence));
    json.Key("instances").Number(device.instances);
    WriteMatch(json, search, paths);
    json.Key("passedOver").BeginArray();
    for (const JudgedInf& over : search.passedOver) {
        json.BeginObject();
        json.Key("inf").Text(search.names[over.inf]);
        json.Key("reason").Text(NameOf(over.verdict));
        json.EndObject();
    }
    json.EndArray();
    WriteTexts(json, "stored", device.store->now);
    WriteReport(json, search.report);
    WriteTexts(json, "findings", device.findings);
    json.EndObject();
}

void WriteSystem(JsonWriter& json, const PlannedSystem& system)
{
    json.Key("system").BeginObject();
    json.Key("section").Text(system.section);
    json.Key("from").Text(system.from);
    json.Key("family").Text(system.family);
    json.Key("familyFrom").Text(system.familyFrom);
    WriteTexts(json, "reasons", system.reasons);
    json.EndObject();
}

void WriteRestart(JsonWriter& json, const std::vector<RestartAnswer>& reasons)
{
    json.Key("restart").BeginArray();
    for (const RestartAnswer& reason : reasons) {
        json.BeginObject();
        json.Key("reason").Text(reason.id);
        json.Key("holds");
        reason.holds ? json.Truth(*reason.holds) : json.Null();
        json.Key("why").Text(reason.why);
        json.EndObject();
    }
    json.EndArray();
}

void WriteNotes(JsonWriter& json, const std::vector<Diagnostic>& diagnostics)
{
    json.Key("notes").BeginArray();
    for (const Diagnostic& note : diagnostics) {
        json.BeginObject();
        json.Key("severity").Text(NameOf(note.severity));
        json.Key("line").Number(note.line);
        json.Key("text").Text(note.what);
        json.Key("cure").Text(note.cure);
        json.EndObject();
    }
    json.EndArray();
}
} // namespace

void WriteKit(JsonWriter& json, std::string_view key, const KitFolder& kit)
{
    json.Key(key).BeginObject();
    json.Key("path").Text(kit.Where().folder.generic_string());
    json.Key("setupDir").Text(kit.Where().setupDir);
    json.Key("reader").Text(kit.Dialect() == ProfileDialect::Windows ? "windows" : "wine");
    json.EndObject();
}

std::string PlanJsonHead(const KitFolder& kit)
{
    std::string text;
    JsonWriter json(text);
    json.BeginObject();
    json.Key("schema").Text("morvix-plan/1");
    WriteKit(json, "kit", kit);
    json.Key("machines").BeginArray();
    return text;
}

void AppendPlanJsonMachine(std::string& text, const MachinePlan& plan, const MachinePaths& paths)
{
    JsonWriter json(text);
    json.BeginObject();
    json.Key("name").Text(plan.name);
    json.Key("source").Text(plan.source);
    WriteSystem(json, plan.system);
    json.Key("outcome").Text(NameOf(plan.outcome));
    json.Key("problem").Text(plan.problem);
    json.Key("devices").BeginArray();
    for (const DevicePlan& device : plan.devices) {
        WriteDevice(json, device, paths);
    }
    json.EndArray();
    json.Key("notReached").Number(plan.notReached);
    json.Key("rejected").BeginArray();
    for (const RejectedDevice& device : plan.rejected) {
        json.BeginObject();
        json.Key("key").Text(device.key);
        json.Key("reason").Text(NameOf(device.verdict));
        json.EndObject();
    }
    json.EndArray();
    WriteRestart(json, plan.restart);
    WriteNotes(json, plan.diagnostics);
    json.EndObject();
}

std::string PlanJsonMachine(const MachinePlan& plan, const MachinePaths& paths)
{
    std::string text;
    AppendPlanJsonMachine(text, plan, paths);
    return text;
}

std::string PlanJsonTail()
{
    return "]}";
}
