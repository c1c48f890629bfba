#include "RestartFindings.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "ISCSIRules.h"
#include "NdisVersionWord.h"
#include "RestartReasons.h"

namespace {
struct ReasonRow
{
    RestartReason reason;
    std::string_view id;
    std::string_view why;
};

constexpr std::array kReasons = std::to_array<ReasonRow>({
    {RestartReason::DmaEngine, "dma-engine", "a driver of the DMA engines that the network stack uses is installed"},
    {RestartReason::IscsiBoot, "iscsi-boot", "the machine boots over iSCSI; whether it does, its adapters answer"},
    {RestartReason::FcoeBoot, "fcoe-boot", "the machine boots over FCoE; whether it does, its adapters answer"},
});
static_assert(kReasons.size() == kRestartReasonCount, "each reason has its name in the plans");

/// A fact of the rules that a description may lack.
struct OpenFact
{
    bool* fact;
    std::optional<bool> known;
};

/// What the rules answer with every value that the open facts may have.
struct Answers
{
    std::array<bool, kReasons.size()> ever{};
    std::array<bool, kReasons.size()> always{};
};

Answers TryAll(RestartFacts& facts, std::span<const OpenFact> open)
{
    Answers answers;
    answers.always.fill(true);
    for (unsigned values = 0; values < 1U << open.size(); ++values) {
        for (std::size_t fact = 0; fact < open.size(); ++fact) {
            *open[fact].fact = (values >> fact & 1U) != 0;
        }
        const std::vector<RestartReason> holding = RestartReasons(facts);
        for (std::size_t row = 0; row < kReasons.size(); ++row) {
            const bool holds = std::ranges::find(holding, kReasons[row].reason) != holding.end();
            answers.ever[row] = answers.ever[row] || holds;
            answers.always[row] = answers.always[row] && holds;
        }
    }
    return answers;
}

std::optional<bool> IsNdis52(const Fact<uint32_t>& version)
{
    return version ? std::optional(IsNdisVersion52OrLater(*version)) : std::nullopt;
}

bool MatchesDmaEngine(const MachinePlan& plan)
{
    return std::ranges::any_of(plan.devices, [](const DevicePlan& device) { return device.search->isDmaEngine; });
}
} // namespace

std::vector<RestartAnswer> RestartFindings(const Machine& machine, const MachinePlan& plan)
{
    RestartFacts facts;
    facts.system = plan.system.code;
    facts.version = plan.system.facts;
    facts.dmaEngineMatched = MatchesDmaEngine(plan);
    const bool hasDevice = std::ranges::any_of(
        plan.devices, [](const DevicePlan& device) { return device.search->verdict == SearchVerdict::Matched; });
    facts.iscsi.rightSystem = CanBootOverISCSI(plan.system.code, plan.system.facts);
    const std::array all = std::to_array<OpenFact>({
        {&facts.ndis52OrLater, IsNdis52(machine.restart.ndisVersion)},
        // The question is asked only after a driver was installed.
        {&facts.iscsiBootAdapter, hasDevice ? std::nullopt : std::optional(false)},
        {&facts.iscsi.patchInstalled, machine.restart.iscsiInitiatorRecent.value},
        {&facts.iscsi.initiatorPresent, machine.restart.iscsiInitiatorPresent.value},
        {&facts.fcoeBootPorts, std::nullopt},
        {&facts.extensionUpdateAllowed, std::nullopt},
    });
    std::vector<OpenFact> open;
    for (const OpenFact& fact : all) {
        if (fact.known) {
            *fact.fact = *fact.known;
        } else {
            open.push_back(fact);
        }
    }
    const Answers answers = TryAll(facts, open);
    std::vector<RestartAnswer> found;
    for (std::size_t row = 0; row < kReasons.size(); ++row) {
        RestartAnswer& answer = found.emplace_back();
        answer.id = kReasons[row].id;
        answer.why = kReasons[row].why;
        if (answers.always[row] || !answers.ever[row]) {
            answer.holds = answers.always[row];
        }
    }
    return found;
}
