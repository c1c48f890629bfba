#include "FleetPage.h"

#include <algorithm>
#include <array>

#include "AsciiCase.h"
#include "FleetAdapters.h"
#include "FleetGroups.h"
#include "FleetPageParts.h"
#include "FleetTrails.h"
#include "FleetVerdict.h"
#include "HtmlWriter.h"
#include "MorvixVersion.h"

namespace {
constexpr Markup kShapes =
    "<svg width=0 height=0 class=shapes aria-hidden=true>"
    "<symbol id=i-bad viewBox=\"0 0 16 16\"><path d=\"M5 0h6l5 5v6l-5 5H5l-5-5V5z\"/>"
    "<path class=on d=\"M4.6 6 6 4.6l2 2 2-2L11.4 6l-2 2 2 2L10 11.4l-2-2-2 2L4.6 10l2-2z\"/></symbol>"
    "<symbol id=i-doubt viewBox=\"0 0 16 16\"><path d=\"M8 0l8 15.5H0z\"/>"
    "<path class=on d=\"M7 5.5h2v5H7zM7 12h2v2H7z\"/></symbol>"
    "<symbol id=i-good viewBox=\"0 0 16 16\"><circle cx=8 cy=8 r=8 />"
    "<path class=on d=\"M6.8 11.8 3.4 8.4l1.4-1.4 2 2 4.6-4.6 1.4 1.4z\"/></symbol>"
    "<symbol id=i-none viewBox=\"0 0 16 16\"><circle cx=8 cy=8 r=8 /><path class=on d=\"M4 "
    "7h8v2H4z\"/></symbol></svg>\n";

void WriteHead(HtmlWriter& html, const FleetVerdict& verdict)
{
    html.Put("<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n<meta http-equiv=Content-Security-Policy");
    html.Attribute("content", kFleetPolicy).Put(">\n");
    html.Put(
        "<meta name=viewport content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=color-scheme content=\"light dark\">\n<meta name=referrer content=no-referrer>\n"
        "<meta name=generator content=\"morvix-kit " MORVIX_VERSION_TEXT "\">\n<title>");
    html.Text("Fleet report: " + verdict.sentence)
        .Put("</title>\n<style>")
        .Put(kFleetStyle)
        .Put("</style></head>\n<body>\n");
}

std::string DateText(std::time_t date)
{
    std::array<char, 32> text{};
    // Only one thread runs here; what is safe with several has another name on each platform.
    const std::tm* const utc = std::gmtime(&date);
    return utc != nullptr && std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M UTC", utc) != 0 ? text.data() : "";
}

Markup ShapeOf(FleetMark mark)
{
    switch (mark) {
        case FleetMark::Bad:
            return "<svg class=bad aria-hidden=true><use href=\"#i-bad\"/></svg>";
        case FleetMark::Doubtful:
            return "<svg class=doubt aria-hidden=true><use href=\"#i-doubt\"/></svg>";
        case FleetMark::Good:
            return "<svg class=good aria-hidden=true><use href=\"#i-good\"/></svg>";
        case FleetMark::None:
            break;
    }
    return "<svg class=none aria-hidden=true><use href=\"#i-none\"/></svg>";
}

void WriteFigure(HtmlWriter& html, FleetMark mark, std::size_t number, std::string_view label, std::string_view meaning)
{
    html.Put("<div><dt>").Put(ShapeOf(mark)).Text(label).Put("</dt><dd>").Text(Grouped(number));
    html.Put("</dd><dd class=quiet>").Text(meaning).Put("</dd></div>\n");
}

void WriteHeader(HtmlWriter& html, const FleetReport& report, const FleetPageFacts& facts, const FleetVerdict& verdict)
{
    html.Put("<a class=skip href=\"#content\">Skip to the content</a>\n").Put(kShapes);
    html.Put("<header><p class=eyebrow>Morvix fleet report</p>\n<h1>").Put(ShapeOf(verdict.mark)).Put("<span>");
    html.Text(verdict.sentence).Put("</span></h1>\n<p class=quiet>Kit <code>").Text(facts.kit).Put("</code>");
    if (!facts.oldKit.empty()) {
        html.Put(" in the place of <code>").Text(facts.oldKit).Put("</code>");
    }
    html.Put(", as <code>").Text(facts.setupDir).Put("</code> on each machine");
    if (facts.date) {
        html.Put(". ").Text(DateText(*facts.date));
    }
    html.Put("</p>\n<dl class=figures>\n");
    for (std::size_t state = 0; state < kFleetStates; ++state) {
        const auto value = static_cast<FleetState>(state);
        if (report.Machines(value) != 0) {
            WriteFigure(html, MarkOf(value), report.Machines(value), InWords(value), Meaning(value));
        }
    }
    if (!report.Unknown().empty()) {
        WriteFigure(html, FleetMark::Doubtful, report.Unknown().size(), "No answer",
                    "the description of the machine could not be read");
    }
    html.Put("</dl></header>\n");
}

void WriteUnknown(HtmlWriter& html, const FleetReport& report)
{
    if (report.Unknown().empty()) {
        return;
    }
    html.Put(
        "<section aria-labelledby=h-unknown><h2 id=h-unknown>Machines without an answer</h2>\n"
        "<div class=scroll role=region aria-label=\"Table of machines without an answer\" tabindex=0><table "
        "class=\"grid list\">"
        "<caption>What could not be read, why, and what to do</caption>\n"
        "<thead><tr><th scope=col>Machine<th scope=col>Why, and what to do</thead><tbody>\n");
    for (const FleetUnknown& unknown : report.Unknown()) {
        html.Put("<tr><th scope=row><code>").Text(unknown.machine.source).Put("</code><td>");
        for (const Diagnostic& reason : unknown.reasons) {
            html.Put("<div>").Text(reason.line == 0 ? "" : "line " + std::to_string(reason.line) + ": ");
            html.Text(reason.what).Text(reason.cure.empty() ? "" : "; ");
            html.Put("<span class=cure>").Text(reason.cure).Put("</span></div>");
        }
        html.Put("\n");
    }
    html.Put("</tbody></table></div></section>\n");
}

/// @return the severity as a sentence begins with it.
std::string WordOf(Severity severity)
{
    std::string word(NameOf(severity));
    word.front() = UpperAscii(word.front());
    return word;
}

void WriteFindings(HtmlWriter& html, const std::vector<FleetFinding>& findings)
{
    if (findings.empty()) {
        return;
    }
    html.Put(
        "<section aria-labelledby=h-findings><h2 id=h-findings>Findings in the kit</h2>\n"
        "<div class=scroll role=region aria-label=\"Table of findings\" tabindex=0><table class=\"grid list\">"
        "<caption>What a check of the kit found</caption>\n"
        "<thead><tr><th scope=col>Rule<th scope=col>Where<th scope=col>Harm<th scope=col>Cure</thead><tbody>\n");
    for (const FleetFinding& finding : findings) {
        html.Put("<tr><th scope=row>");
        html.Put(ShapeOf(finding.severity == Severity::Error     ? FleetMark::Bad
                         : finding.severity == Severity::Warning ? FleetMark::Doubtful
                                                                 : FleetMark::None));
        html.Put("<code>").Text(finding.id).Put("</code> ").Text(WordOf(finding.severity)).Put("<td><code>");
        html.Text(finding.file).Text(finding.line == 0 ? "" : ":" + std::to_string(finding.line)).Put("</code><td>");
        html.Text(finding.harm).Put("<td>").Text(finding.cure).Put("\n");
    }
    html.Put("</tbody></table></div></section>\n");
}

void WriteRemark(HtmlWriter& html, const FleetRemark& remark)
{
    html.Put("<li>").Text(WordOf(remark.severity)).Put(": ").Text(remark.what);
    html.Text(remark.cure.empty() ? "" : "; " + remark.cure).Put(" <details><summary>");
    html.Text(CountOf(remark.sources.size(), "machine")).Put("</summary><ul class=machines>");
    for (const std::string& source : remark.sources) {
        html.Put("<li>").Text(source);
    }
    html.Put("</ul></details>");
}

/// How many machines have their system from where.
std::map<std::string, std::size_t> SystemOrigins(const FleetReport& report)
{
    std::map<std::string, std::size_t> origins;
    for (const FleetGroup& group : report.Groups()) {
        origins[group.system.from] += group.machines.size();
    }
    return origins;
}

std::size_t DevicesOfUnknownPresence(const FleetReport& report)
{
    std::size_t devices = 0;
    for (const FleetGroup& group : report.Groups()) {
        const auto count = std::ranges::count(group.devices, Presence::Unknown, &FleetDevice::presence);
        devices += static_cast<std::size_t>(count) * group.machines.size() + group.unknownPresences;
    }
    return devices;
}

void WriteAssumptions(HtmlWriter& html, const FleetReport& report, const FleetPageFacts& facts)
{
    html.Put("<section aria-labelledby=h-assumptions><h2 id=h-assumptions>What this rests on</h2>\n<ul class=prose>\n");
    for (const auto& [origin, machines] : SystemOrigins(report)) {
        html.Put("<li>The system of ").Text(CountOf(machines, "machine"));
        if (origin == "option") {
            html.Put(" is assumed: an option names it, whatever the machine's description says.\n");
        } else {
            html.Put(" comes from the ").Text(origin).Put(" that describes the machine.\n");
        }
    }
    if (const std::size_t devices = DevicesOfUnknownPresence(report); devices != 0) {
        html.Put("<li>Whether the card of ").Text(CountOf(devices, "device"));
        html.Put(" is still in its machine, nobody has said: the keys of removed cards stay in a registry.\n");
    }
    html.Put("<li>The kit lies in <code>")
        .Text(facts.setupDir)
        .Put(
            "</code> on each machine. INI and INF files are read "
            "as ")
        .Text(facts.reader == "wine" ? "Wine" : "Windows")
        .Put(" reads them.\n");
    html.Put(
        "<li>This is what the installer decides. What the platform makes of it, such as a refused signature or a "
        "driver that does not start, no description of a machine tells.\n");
    for (const Diagnostic& remark : facts.kitRemarks) {
        html.Put("<li>")
            .Text(WordOf(remark.severity))
            .Put(": <code>")
            .Text(remark.source)
            .Put("</code>: ")
            .Text(remark.what);
        html.Text(remark.cure.empty() ? "" : "; " + remark.cure).Put("\n");
    }
    for (const FleetRemark& remark : report.Remarks()) {
        WriteRemark(html, remark);
    }
    html.Put("</ul></section>\n");
}

void WriteFooter(HtmlWriter& html)
{
    html.Put("<footer class=quiet><p>Made by morvix-kit " MORVIX_VERSION_TEXT
             " without touching a machine. "
             "<code>morvix-kit explain KIT MACHINE DEVICE</code> tells the whole way of one device.</p></footer>\n"
             "<script>")
        .Put(kFleetScript)
        .Put("</script>\n</body></html>\n");
}
} // namespace

std::string FleetPage(const FleetReport& report, const FleetPageFacts& facts)
{
    std::string page;
    HtmlWriter html(page);
    const FleetVerdict verdict = VerdictOf(report);
    WriteHead(html, verdict);
    WriteHeader(html, report, facts, verdict);
    html.Put("<main id=content tabindex=-1>\n");
    WriteGroups(html, report);
    WriteAdapters(html, report);
    if (!report.Trails().empty()) {
        html.Put("<section aria-labelledby=h-why><h2 id=h-why>Why each adapter gets its driver</h2>\n");
        WriteTrails(html, report);
        html.Put("</section>\n");
    }
    WriteFindings(html, facts.findings);
    WriteUnknown(html, report);
    WriteAssumptions(html, report, facts);
    html.Put("</main>\n");
    WriteFooter(html);
    return page;
}
