#include <cstdlib>
#include <ctime>
#include <optional>
#include <set>

#include "CheckKit.h"
#include "Commands.h"
#include "Diff.h"
#include "FleetPage.h"
#include "OrderedWork.h"
#include "ReadMachine.h"
#include "Sources.h"

namespace {
struct Answer
{
    MachinePlan plan;
    std::optional<MachineDiff> diff;
};

/// The usual way to give a file that is made the time of its sources.
std::optional<std::time_t> DateFromEnvironment()
{
    const char* const text = std::getenv("SOURCE_DATE_EPOCH");
    if (text == nullptr || *text == '\0') {
        return std::nullopt;
    }
    char* end = nullptr;
    const long long seconds = std::strtoll(text, &end, 10);
    return *end == '\0' && seconds >= 0 ? std::optional(static_cast<std::time_t>(seconds)) : std::nullopt;
}

/// @return what a check of the kit finds for these systems.
std::vector<FleetFinding> FindingsOf(KitFolder& kit, const std::set<std::string>& systems)
{
    if (systems.empty()) {
        return {};
    }
    std::vector<FleetFinding> findings;
    const CheckWish wish{.systems = std::vector<std::string>(systems.begin(), systems.end())};
    for (const Finding& finding : CheckKit(kit, nullptr, wish).findings) {
        const Rule& rule = RuleOf(finding);
        findings.push_back({.id = IdOf(rule),
                            .severity = rule.severity,
                            .file = finding.file,
                            .line = finding.line,
                            .harm = std::string(rule.harm),
                            .cure = std::string(rule.cure)});
    }
    return findings;
}

FleetPageFacts FactsOf(const ReportCommand& command, KitFolder& kit, const std::set<std::string>& systems)
{
    std::vector<FleetFinding> findings = FindingsOf(kit, systems);
    return {.kit = command.kit.folder,
            .oldKit = command.oldKit.folder,
            .setupDir = kit.Where().setupDir,
            .reader = kit.Dialect() == ProfileDialect::Wine ? "wine" : "windows",
            .date = DateFromEnvironment(),
            .kitRemarks = kit.Remarks(),
            .findings = std::move(findings)};
}
} // namespace

ExitCode Run(const ReportCommand& command)
{
    Output output(command.output);
    std::string problem;
    const std::unique_ptr<KitFolder> kit = OpenKit(command.kit, problem);
    const bool compares = !command.oldKit.folder.empty();
    const std::unique_ptr<KitFolder> oldKit = kit && compares ? OpenKit(command.oldKit, problem) : nullptr;
    if (!kit || (compares && !oldKit)) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    const MachineSources machines = ExpandSources(command.machines);
    if (!output.Open(PathsOf(machines))) {
        return ExitCode::Usage;
    }
    FleetReport report(kit->Paths());
    for (const Diagnostic& diagnostic : machines.diagnostics) {
        output.Say(diagnostic);
        if (diagnostic.severity == Severity::Error) {
            report.AddUnreadable(diagnostic);
        }
    }
    Planner planner(*kit, command.wish);
    std::optional<Planner> before;
    if (compares) {
        before.emplace(*oldKit, command.wish);
    }
    std::set<std::string> systems;
    std::size_t done = 0;
    DoInOrder<Answer>(
        machines.sources.size(),
        [&](std::size_t index) {
            const Machine machine = ReadMachine(machines.sources[index]);
            Answer answer{.plan = planner.Plan(machine), .diff = std::nullopt};
            if (before) {
                answer.diff = DiffOf(before->Plan(machine), answer.plan);
            }
            return answer;
        },
        [&](Answer&& answer) {
            output.Say(answer.plan.diagnostics);
            if (!answer.plan.system.section.empty()) {
                systems.insert(answer.plan.system.section);
            }
            if (answer.diff) {
                report.Add(std::move(answer.plan), *answer.diff, oldKit->Paths());
            } else {
                report.Add(std::move(answer.plan));
            }
            output.ShowProgress(++done, machines.sources.size());
        });
    report.Finish();
    output.Write(FleetPage(report, FactsOf(command, *kit, systems)));
    output.Say(kit->Remarks());
    if (oldKit) {
        output.Say(oldKit->Remarks());
    }
    return output.Finish(ExitCode::Clean);
}
