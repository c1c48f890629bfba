#include "FindingJson.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "Fingerprints.h"
#include "JsonWriter.h"

namespace {
void WriteSystems(JsonWriter& json, const std::vector<std::string>& systems)
{
    json.Key("systems").BeginArray();
    for (const std::string& system : systems) {
        json.Text(system);
    }
    json.EndArray();
}

std::size_t CountOf(const KitFindings& found, Severity severity)
{
    return static_cast<std::size_t>(
        std::ranges::count(found.findings, severity, [](const Finding& finding) { return RuleOf(finding).severity; }));
}

/// Everything but letters, digits and a few marks is escaped.
std::string UriOf(std::string_view path)
{
    constexpr std::string_view kPlain = "-._~/!$&'()*+,;=@";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri;
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool alphanumeric = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
        if (alphanumeric || kPlain.find(c) != std::string_view::npos) {
            uri += c;
        } else {
            uri += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
        }
    }
    return uri;
}

std::string PathBelow(const std::filesystem::path& root, const Finding& finding)
{
    std::error_code error;
    const std::filesystem::path relative = finding.here.empty() ? std::filesystem::path()
                                                                : std::filesystem::absolute(finding.here, error)
                                                                      .lexically_normal()
                                                                      .lexically_relative(root.lexically_normal());
    if (error || relative.empty() || *relative.begin() == "..") {
        std::string name = finding.file;
        std::ranges::replace(name, '\\', '/');
        return name;
    }
    return relative.generic_string();
}

void WriteText(JsonWriter& json, std::string_view key, std::string_view text)
{
    json.Key(key).BeginObject();
    json.Key("text").Text(text);
    json.EndObject();
}

void WriteRule(JsonWriter& json, const Rule& rule)
{
    json.BeginObject();
    json.Key("id").Text(IdOf(rule));
    WriteText(json, "shortDescription", rule.name);
    WriteText(json, "fullDescription", rule.harm);
    json.Key("help").BeginObject();
    const std::string text = std::string(rule.why) + " " + std::string(rule.cure);
    json.Key("text").Text(text);
    json.Key("markdown")
        .Text(text + "\n\nBad:\n\n```ini\n" + std::string(rule.bad) + "\n```\n\nGood:\n\n```ini\n" +
              std::string(rule.good) + "\n```\n");
    json.EndObject();
    json.Key("defaultConfiguration").BeginObject();
    json.Key("level").Text(NameOf(rule.severity));
    json.EndObject();
    json.EndObject();
}

void WriteResult(JsonWriter& json, const Finding& finding, const std::string& fingerprint,
                 const std::filesystem::path& root)
{
    const Rule& rule = RuleOf(finding);
    json.BeginObject();
    json.Key("ruleId").Text(IdOf(rule));
    json.Key("ruleIndex").Number(static_cast<uint64_t>(&rule - AllRules().data()));
    json.Key("level").Text(NameOf(rule.severity));
    WriteText(json, "message", finding.what + ". " + std::string(rule.harm) + " " + std::string(rule.cure));
    json.Key("locations").BeginArray().BeginObject();
    json.Key("physicalLocation").BeginObject();
    json.Key("artifactLocation").BeginObject();
    json.Key("uri").Text(UriOf(PathBelow(root, finding)));
    json.EndObject();
    json.Key("region").BeginObject();
    json.Key("startLine").Number(finding.line);
    json.Key("startColumn").Number(finding.column);
    json.EndObject();
    json.EndObject();
    json.EndObject().EndArray();
    json.Key("partialFingerprints").BeginObject();
    json.Key("primaryLocationLineHash").Text(fingerprint);
    json.EndObject();
    json.EndObject();
}

/// @return the places of the findings that are reported: all, or the worst of them, in their order.
std::vector<std::size_t> ReportedFindings(const std::vector<Finding>& findings, std::size_t most)
{
    std::vector<std::size_t> places(findings.size());
    for (std::size_t place = 0; place < places.size(); ++place) {
        places[place] = place;
    }
    if (places.size() > most) {
        std::ranges::stable_sort(places, std::ranges::greater{},
                                 [&findings](std::size_t place) { return RuleOf(findings[place]).severity; });
        places.resize(most);
        std::ranges::sort(places);
    }
    return places;
}
} // namespace

std::string FindingJson(const KitFindings& found, const KitFolder& kit, std::string_view reader, std::size_t accepted)
{
    std::string out;
    JsonWriter json(out);
    json.BeginObject();
    json.Key("schema").Text("morvix-check/1");
    json.Key("kit").BeginObject();
    json.Key("path").Text(kit.Where().folder.generic_string());
    json.Key("setupDir").Text(kit.Where().setupDir);
    json.Key("reader").Text(reader);
    json.EndObject();
    WriteSystems(json, found.systems);
    json.Key("findings").BeginArray();
    const std::vector<std::string> prints = FingerprintsOf(found.findings);
    for (std::size_t place = 0; place < found.findings.size(); ++place) {
        const Finding& finding = found.findings[place];
        const Rule& rule = RuleOf(finding);
        json.BeginObject();
        json.Key("id").Text(IdOf(rule));
        json.Key("severity").Text(NameOf(rule.severity));
        json.Key("file").Text(finding.file);
        json.Key("line").Number(finding.line);
        json.Key("column").Number(finding.column);
        json.Key("what").Text(finding.what);
        json.Key("harm").Text(rule.harm);
        json.Key("cure").Text(rule.cure);
        WriteSystems(json, finding.systems);
        json.Key("fingerprint").Text(prints[place]);
        json.EndObject();
    }
    json.EndArray();
    json.Key("summary").BeginObject();
    json.Key("errors").Number(CountOf(found, Severity::Error));
    json.Key("warnings").Number(CountOf(found, Severity::Warning));
    json.Key("notes").Number(CountOf(found, Severity::Note));
    json.Key("accepted").Number(accepted);
    json.EndObject();
    json.EndObject();
    return out;
}

std::string FindingSarif(const KitFindings& found, std::string_view version, const std::filesystem::path& root,
                         std::size_t most)
{
    std::string out;
    JsonWriter json(out);
    json.BeginObject();
    json.Key("$schema").Text("https://json.schemastore.org/sarif-2.1.0.json");
    json.Key("version").Text("2.1.0");
    json.Key("runs").BeginArray().BeginObject();
    json.Key("tool").BeginObject();
    json.Key("driver").BeginObject();
    json.Key("name").Text("morvix-kit");
    json.Key("version").Text(version);
    json.Key("rules").BeginArray();
    for (const Rule& rule : AllRules()) {
        WriteRule(json, rule);
    }
    json.EndArray().EndObject().EndObject();
    json.Key("columnKind").Text("utf16CodeUnits");
    json.Key("results").BeginArray();
    const std::vector<std::string> prints = FingerprintsOf(found.findings);
    for (const std::size_t place : ReportedFindings(found.findings, most)) {
        WriteResult(json, found.findings[place], prints[place], root);
    }
    json.EndArray().EndObject().EndArray().EndObject();
    return out;
}
