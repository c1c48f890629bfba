#include "FindingText.h"

#include <algorithm>

#include "Printable.h"

namespace {
Colour ColourOf(Severity severity)
{
    switch (severity) {
        case Severity::Error:
            return Colour::Bad;
        case Severity::Warning:
            return Colour::Doubtful;
        case Severity::Note:
            break;
    }
    return Colour::None;
}

std::string NameOfFile(const Finding& finding)
{
    return Printable(finding.here.empty() ? finding.file : finding.here.generic_string());
}

/// Lines of an example, each below the label's column.
void AppendExample(std::string& out, std::string_view label, std::string_view example)
{
    constexpr std::size_t kColumn = 4 + kLabelColumns;
    std::string start = "    " + std::string(label);
    while (!example.empty()) {
        start.resize(kColumn, ' ');
        const std::string_view line = example.substr(0, example.find('\n'));
        out += start + std::string(line) + "\n";
        example.remove_prefix(std::min(line.size() + 1, example.size()));
        start.clear();
    }
}

std::string CountOf(const KitFindings& found, Severity severity, std::string_view noun)
{
    return Counted(static_cast<std::size_t>(std::ranges::count(
                       found.findings, severity, [](const Finding& finding) { return RuleOf(finding).severity; })),
                   noun);
}

/// Examples without a line of a file are shown as text.
bool IsFileText(std::string_view example)
{
    return example.ends_with('\n');
}

void AppendMarkdownExample(std::string& out, std::string_view title, std::string_view example)
{
    if (IsFileText(example)) {
        out += std::string(title) + ":\n\n```ini\n" + std::string(example) + "```\n\n";
    } else {
        const bool isName = example.find(' ') == std::string_view::npos;
        out += std::string(title) + ": " + (isName ? "`" + std::string(example) + "`" : std::string(example)) + "\n\n";
    }
}
} // namespace

std::string FindingText(const KitFindings& found, const TextStyle& style)
{
    std::string out;
    std::string file;
    for (const Finding& finding : found.findings) {
        const Rule& rule = RuleOf(finding);
        if (finding.file != file || out.empty()) {
            out += style.Paint(Colour::Strong, NameOfFile(finding)) + "\n";
            file = finding.file;
        }
        const std::string systems = finding.systems.empty() ? "" : " (" + Joined(finding.systems) + ")";
        out += "  " + std::to_string(finding.line) + ":" + std::to_string(finding.column) + "  " +
               style.Paint(ColourOf(rule.severity), std::string(NameOf(rule.severity)) + " " + IdOf(rule)) + "  " +
               Printable(finding.what) + systems + "\n";
        AppendField(out, style, "harm", rule.harm);
        AppendField(out, style, "cure", rule.cure);
    }
    return out;
}

std::string FindingSummary(const KitFindings& found, std::size_t accepted)
{
    std::string out = CountOf(found, Severity::Error, "error") + ", " + CountOf(found, Severity::Warning, "warning") +
                      ", " + CountOf(found, Severity::Note, "note");
    if (accepted != 0) {
        out += ", " + std::to_string(accepted) + " accepted before";
    }
    return out + " on " + Counted(found.systems.size(), "system") + "\n";
}

std::string RuleText(const Rule& rule, const TextStyle& style)
{
    std::string out = style.Paint(Colour::Strong, IdOf(rule)) + "  " +
                      style.Paint(ColourOf(rule.severity), NameOf(rule.severity)) + ": " + std::string(rule.name) +
                      "\n";
    AppendField(out, style, "harm", rule.harm);
    AppendField(out, style, "cure", rule.cure);
    AppendField(out, style, "why", rule.why);
    AppendExample(out, "bad", rule.bad);
    AppendExample(out, "good", rule.good);
    return out;
}

std::string RuleList(const TextStyle& style)
{
    std::string out;
    for (const Rule& rule : AllRules()) {
        std::string severity(NameOf(rule.severity));
        severity.resize(8, ' ');
        out += IdOf(rule) + "  " + style.Paint(ColourOf(rule.severity), severity) + " " + std::string(rule.name) + "\n";
    }
    return out;
}

std::string RulesDocument()
{
    std::string out =
        "# Rules\n\n"
        "What `morvix-kit check` finds in a kit. A number never changes its meaning. `morvix-kit rules ID` "
        "prints the same text;\n`morvix-kit rules --markdown` prints this page.\n\n"
        "| ID | severity | finds |\n|---|---|---|\n";
    for (const Rule& rule : AllRules()) {
        const std::string id = IdOf(rule);
        out += "| [" + id + "](#mk" + std::to_string(rule.number) + ") | " + std::string(NameOf(rule.severity)) +
               " | " + std::string(rule.name) + " |\n";
    }
    for (const Rule& rule : AllRules()) {
        const std::string id = IdOf(rule);
        out += "\n## " + id + "\n\n**" + std::string(rule.name) + "** (" + std::string(NameOf(rule.severity)) +
               ")\n\n" + std::string(rule.harm) + "\n\n" + std::string(rule.why) + "\n\n" + std::string(rule.cure) +
               "\n\n";
        AppendMarkdownExample(out, "Bad", rule.bad);
        AppendMarkdownExample(out, "Good", rule.good);
        out.pop_back();
    }
    return out;
}
