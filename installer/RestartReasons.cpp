#include "RestartReasons.h"

#include <array>

#include "OSPredicates.h"

namespace {
bool DmaEngineNeedsRestart(const RestartFacts& facts)
{
    return NdisVersionCounts(facts) && facts.ndis52OrLater;
}

// A crash dump that cannot be written does not prevent a restart.
bool IscsiBootNeedsRestart(const RestartFacts& facts)
{
    return facts.iscsiBootAdapter && facts.iscsi.rightSystem && facts.iscsi.patchInstalled &&
           facts.iscsi.initiatorPresent;
}

bool UpdatedFcoeBootNeedsRestart(const RestartFacts& facts)
{
    return FcoeBootNeedsRestart(facts.fcoeBootPorts, facts.extensionUpdateAllowed);
}

struct ReasonRow
{
    RestartReason reason;
    bool (*holds)(const RestartFacts& facts);
};

constexpr std::array kReasons = std::to_array<ReasonRow>({
    {RestartReason::DmaEngine, DmaEngineNeedsRestart},
    {RestartReason::IscsiBoot, IscsiBootNeedsRestart},
    {RestartReason::FcoeBoot, UpdatedFcoeBootNeedsRestart},
});
static_assert(kReasons.size() == kRestartReasonCount, "each reason has its rule");
} // namespace

// A new DMA-engine driver takes effect at the next start where the network stack uses the engine: NDIS 5.2 and later,
// on servers and later workstations but not on Windows Vista.
bool NdisVersionCounts(const RestartFacts& facts)
{
    return facts.dmaEngineMatched && IsServerOrVistaLater(facts.system) &&
           !IsVistaWorkstation(facts.system, facts.version);
}

std::vector<RestartReason> RestartReasons(const RestartFacts& facts)
{
    std::vector<RestartReason> reasons;
    for (const ReasonRow& row : kReasons) {
        if (row.holds(facts)) {
            reasons.push_back(row.reason);
        }
    }
    return reasons;
}

bool IscsiSettingsAreVerified(const RestartFacts& facts)
{
    return IscsiBootNeedsRestart(facts) && facts.iscsi.crashDumpEnabled;
}
