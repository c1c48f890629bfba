#include "Commands.h"
#include "Diff.h"
#include "OrderedWork.h"
#include "ReadMachine.h"
#include "Sources.h"

namespace {
struct MachineDifference
{
    MachineDiff diff;
    std::vector<Diagnostic> diagnostics;
};
} // namespace

ExitCode Run(const DiffCommand& command)
{
    Output output(command.output);
    std::string problem;
    const std::unique_ptr<KitFolder> oldKit = OpenKit(command.oldKit, problem);
    const std::unique_ptr<KitFolder> newKit = oldKit ? OpenKit(command.newKit, problem) : nullptr;
    if (!newKit) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    const MachineSources machines = ExpandSources(command.machines);
    output.Say(machines.diagnostics);
    if (!output.Open(PathsOf(machines))) {
        return ExitCode::Usage;
    }
    Planner before(*oldKit, command.wish);
    Planner after(*newKit, command.wish);

    DiffSummary summary;
    std::size_t done = 0;
    output.Write(command.json ? DiffJsonHead(*oldKit, *newKit) : std::string());
    DoInOrder<MachineDifference>(
        machines.sources.size(),
        [&](std::size_t index) {
            const Machine machine = ReadMachine(machines.sources[index]);
            const MachinePlan old = before.Plan(machine);
            return MachineDifference{.diff = DiffOf(old, after.Plan(machine)), .diagnostics = old.diagnostics};
        },
        [&](MachineDifference&& answer) {
            const std::string text =
                command.json ? (done == 0 ? "" : ",") + DiffJsonMachine(answer.diff, oldKit->Paths(), newKit->Paths())
                             : DiffText(answer.diff, oldKit->Paths(), newKit->Paths(), output.Style());
            output.Write(text);
            output.Say(answer.diagnostics);
            summary.Add(answer.diff);
            output.ShowProgress(++done, machines.sources.size());
        });
    output.Write(command.json ? DiffJsonTail(summary) + "\n" : SummaryText(summary));
    output.Say(oldKit->Remarks());
    output.Say(newKit->Remarks());
    return output.Finish(summary.losing != 0 ? ExitCode::Findings : ExitCode::Clean);
}
