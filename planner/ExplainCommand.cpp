#include "Commands.h"
#include "Explain.h"
#include "Printable.h"
#include "ReadMachine.h"
#include "Sources.h"

namespace {
std::string ProblemOf(const MachinePlan& plan)
{
    return Printable(plan.source) + ": " + Printable(plan.problem);
}

/// @param problem  Receives why there is nothing to print.
std::string TextFor(const ExplainCommand& command, const Planner& planner, const Machine& machine,
                    const MachinePlan& plan, const TextStyle& style, std::string& problem)
{
    const std::optional<FoundDevice> device = FindDevice(plan, command.device, problem);
    if (!device) {
        return {};
    }
    if (command.whyNot.empty()) {
        return ExplainDevice(plan, *device, planner.Kit().Paths(), style);
    }
    if (device->served == nullptr) {
        return "No INF file is looked for: the installer does not serve the device.\n";
    }
    const SearchTerms terms = planner.TermsFor(machine, plan.system);
    FolderKitSource source(planner.Kit(), terms.codePage);
    const std::string answer = WhyNot(plan, *device->served, command.whyNot, source, terms, problem);
    return answer.empty() ? answer : answer + "\n";
}
} // namespace

ExitCode Run(const ExplainCommand& command)
{
    Output output(command.output);
    std::string problem;
    const std::unique_ptr<KitFolder> kit = OpenKit(command.kit, problem);
    if (!kit) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    const MachineSources machines = ExpandSources({&command.machine, 1});
    output.Say(machines.diagnostics);
    if (machines.sources.size() != 1) {
        output.Complain(Printable(command.machine) + ": names " + Counted(machines.sources.size(), "machine") +
                        "; explain takes one");
        return ExitCode::Usage;
    }
    Planner planner(*kit, command.wish);
    const Machine machine = ReadMachine(machines.sources.front());
    const MachinePlan plan = planner.Plan(machine);
    output.Say(plan.diagnostics);
    if (plan.outcome != MachineOutcome::Done && plan.outcome != MachineOutcome::Fault) {
        output.Complain(ProblemOf(plan));
        return output.Finish(ExitCode::Unreadable);
    }
    const std::string text = TextFor(command, planner, machine, plan, output.Style(), problem);
    if (text.empty()) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    if (!output.Open(PathsOf(machines))) {
        return ExitCode::Usage;
    }
    output.Write(text);
    output.Say(kit->Remarks());
    return output.Finish(ExitCode::Clean);
}
