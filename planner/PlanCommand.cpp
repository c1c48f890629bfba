#include <optional>

#include "CheckKit.h"
#include "Commands.h"
#include "DeviceFindings.h"
#include "OrderedWork.h"
#include "PlanJson.h"
#include "PlanText.h"
#include "Printable.h"
#include "ReadMachine.h"
#include "Sources.h"

namespace {
/// One machine's answer.
struct PlannedMachine
{
    std::string text;
    std::vector<Diagnostic> diagnostics;
    bool lacksDriver = false;
};

bool LacksDriver(const MachinePlan& plan)
{
    for (const DevicePlan& device : plan.devices) {
        if (device.search->verdict != SearchVerdict::Matched) {
            return true;
        }
    }
    return plan.outcome == MachineOutcome::NoDevices || plan.outcome == MachineOutcome::NotServed;
}

class PlanPrinter
{
public:
    PlanPrinter(const PlanCommand& command, Planner& planner, const TextStyle& style, bool isOne)
        : m_command(command), m_planner(planner), m_style(style), m_isOne(isOne), m_head(PlanJsonHead(planner.Kit()))
    {
        if (command.findings) {
            m_findings = CheckKit(planner.Kit(), nullptr, {});
        }
    }

    [[nodiscard]] std::string Head() const { return m_command.format == PlanFormat::Json ? m_head : std::string(); }
    [[nodiscard]] std::string Between() const
    {
        switch (m_command.format) {
            case PlanFormat::Json:
                return ",";
            case PlanFormat::Text:
                return "\n";
            case PlanFormat::NdJson:
            case PlanFormat::Trace:
                return {};
        }
        return {};
    }
    [[nodiscard]] std::string Tail() const
    {
        return m_command.format == PlanFormat::Json ? PlanJsonTail() + "\n" : std::string();
    }

    [[nodiscard]] PlannedMachine AnswerFor(const Machine& machine) const
    {
        PlannedMachine answer;
        std::string trace;
        MachinePlan plan = m_planner.Plan(machine, m_command.format == PlanFormat::Trace ? &trace : nullptr);
        if (m_findings) {
            AddFindings(plan);
        }
        answer.lacksDriver = LacksDriver(plan);
        answer.diagnostics = plan.diagnostics;
        const MachinePaths& paths = m_planner.Kit().Paths();
        switch (m_command.format) {
            case PlanFormat::Text:
                answer.text = PlanText(plan, paths, m_style);
                break;
            case PlanFormat::Json:
                answer.text = PlanJsonMachine(plan, paths);
                break;
            case PlanFormat::NdJson:
                answer.text = m_head;
                AppendPlanJsonMachine(answer.text, plan, paths);
                answer.text += PlanJsonTail() + "\n";
                break;
            case PlanFormat::Trace:
                answer.text =
                    m_isOne ? trace : "# " + Printable(plan.name) + " " + Printable(plan.source) + "\n" + trace;
                break;
        }
        return answer;
    }

private:
    void AddFindings(MachinePlan& plan) const
    {
        for (DevicePlan& device : plan.devices) {
            device.findings = FindingsOf(device, plan.system.section, *m_findings, m_planner.Kit().Paths());
        }
    }

    const PlanCommand& m_command;
    Planner& m_planner;
    const TextStyle& m_style;
    bool m_isOne;
    std::string m_head;
    std::optional<KitFindings> m_findings; ///< when they are wanted
};
} // namespace

ExitCode Run(const PlanCommand& command)
{
    Output output(command.output);
    std::string problem;
    if (command.findings && command.format != PlanFormat::Json && command.format != PlanFormat::NdJson) {
        output.Complain("--findings is for --json and --ndjson; morvix-kit check prints findings as text");
        return ExitCode::Usage;
    }
    const std::unique_ptr<KitFolder> kit = OpenKit(command.kit, problem);
    if (!kit) {
        output.Complain(problem);
        return ExitCode::Usage;
    }
    const MachineSources machines = ExpandSources(command.machines);
    output.Say(machines.diagnostics);
    if (!output.Open(PathsOf(machines))) {
        return ExitCode::Usage;
    }
    Planner planner(*kit, command.wish);
    const std::size_t count = machines.sources.size();
    const PlanPrinter printer(command, planner, output.Style(), count == 1);

    bool lacksDriver = false;
    std::size_t done = 0;
    output.Write(printer.Head());
    DoInOrder<PlannedMachine>(
        count, [&](std::size_t index) { return printer.AnswerFor(ReadMachine(machines.sources[index])); },
        [&](PlannedMachine&& answer) {
            if (done != 0) {
                output.Write(printer.Between());
            }
            output.Write(answer.text);
            output.Say(answer.diagnostics);
            lacksDriver = lacksDriver || answer.lacksDriver;
            output.ShowProgress(++done, count);
        });
    output.Write(printer.Tail());
    output.Say(kit->Remarks());
    return output.Finish(command.requireDriver && lacksDriver ? ExitCode::Findings : ExitCode::Clean);
}
