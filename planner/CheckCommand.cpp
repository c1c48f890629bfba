#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "Baseline.h"
#include "CheckKit.h"
#include "Commands.h"
#include "FindingJson.h"
#include "FindingText.h"
#include "FolderListing.h"
#include "MorvixVersion.h"
#include "Printable.h"

namespace {
std::optional<Baseline> ReadBaseline(const std::string& file, std::string& problem)
{
    if (file.empty()) {
        return Baseline();
    }
    std::error_code error;
    const std::optional<std::string> text = ReadFileBytes(file, error);
    if (!text) {
        problem =
            "--baseline " + Printable(file) + ": cannot be read (" + error.message() + "); --write-baseline makes one";
        return std::nullopt;
    }
    std::optional<Baseline> baseline = Baseline::Parse(*text, problem);
    if (!baseline) {
        problem = "--baseline " + Printable(file) + ": " + problem;
    }
    return baseline;
}

bool WriteBaseline(const CheckCommand& command, const KitFindings& found)
{
    if (command.writeBaseline.empty()) {
        return true;
    }
    Output file({.file = command.writeBaseline, .quiet = command.output.quiet});
    if (!file.Open()) {
        return false;
    }
    file.Write(Baseline::TextFor(found));
    return file.Finish(ExitCode::Clean) == ExitCode::Clean;
}

std::string_view NameOf(CheckReader reader)
{
    switch (reader) {
        case CheckReader::Windows:
            return "windows";
        case CheckReader::Wine:
            return "wine";
        case CheckReader::Both:
            break;
    }
    return "both";
}

std::string TextOf(const CheckCommand& command, const KitFindings& found, const KitFolder& kit, std::size_t accepted,
                   const TextStyle& style)
{
    std::error_code error;
    switch (command.format) {
        case CheckFormat::Json:
            return FindingJson(found, kit, NameOf(command.reader), accepted) + "\n";
        case CheckFormat::Sarif:
            return FindingSarif(found, MORVIX_VERSION_TEXT, std::filesystem::current_path(error)) + "\n";
        case CheckFormat::Text:
            break;
    }
    return FindingText(found, style) + FindingSummary(found, accepted);
}

void SayWhatIsLeftOut(Output& output, const CheckCommand& command, const KitFindings& found, std::size_t unused)
{
    if (command.format == CheckFormat::Sarif && found.findings.size() > kMostSarifResults) {
        output.Say({.severity = Severity::Warning,
                    .source = command.kit.folder,
                    .line = 0,
                    .what = "only the worst " + std::to_string(kMostSarifResults) + " of " +
                            std::to_string(found.findings.size()) + " findings are reported",
                    .cure = "the format json has all"});
    }
    if (unused != 0) {
        output.Say({.severity = Severity::Note,
                    .source = command.baseline,
                    .line = 0,
                    .what = std::to_string(unused) + " accepted findings there are no more",
                    .cure = "write the baseline anew"});
    }
}
} // namespace

ExitCode Run(const CheckCommand& command)
{
    Output output(command.output);
    std::string problem;
    KitOptions options = command.kit;
    options.reader = command.reader == CheckReader::Wine ? ProfileDialect::Wine : ProfileDialect::Windows;
    std::optional<Baseline> baseline = ReadBaseline(command.baseline, problem);
    const std::unique_ptr<KitFolder> kit = baseline ? OpenKit(options, problem) : nullptr;
    if (!kit) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    std::unique_ptr<KitFolder> other;
    if (command.reader == CheckReader::Both) {
        other = std::make_unique<KitFolder>(kit->Where(), ProfileDialect::Wine);
    }
    if (!output.Open({command.baseline})) {
        return ExitCode::Usage;
    }
    KitFindings found = CheckKit(*kit, other.get(), {.systems = command.systems});
    if (!WriteBaseline(command, found)) {
        return ExitCode::Usage;
    }
    const std::size_t accepted = baseline->Accept(found);
    output.Write(TextOf(command, found, *kit, accepted, output.Style()));
    SayWhatIsLeftOut(output, command, found, baseline->Unused());
    output.Say(kit->Remarks());
    const bool fails = std::ranges::any_of(
        found.findings, [&](const Finding& finding) { return RuleOf(finding).severity >= command.failOn; });
    return output.Finish(fails ? ExitCode::Findings : ExitCode::Clean);
}

ExitCode Run(const RulesCommand& command)
{
    Output output(command.output);
    if (!output.Open()) {
        return ExitCode::Usage;
    }
    if (command.markdown) {
        output.Write(RulesDocument());
    } else if (command.id.empty()) {
        output.Write(RuleList(output.Style()));
    } else if (const Rule* const rule = FindRule(command.id)) {
        output.Write(RuleText(*rule, output.Style()));
    } else {
        output.Complain(Printable(command.id) + " is no rule; morvix-kit rules lists all");
        return output.Finish(ExitCode::Usage);
    }
    return output.Finish(ExitCode::Clean);
}
