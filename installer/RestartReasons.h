#pragma once

#include <cstddef>
#include <vector>

#include "OSCode.h"

/// Why the outcome of a run needs a restart.
enum class RestartReason
{
    DmaEngine, ///< a new DMA-engine driver takes effect at the next start
    IscsiBoot, ///< the machine boots over an adapter of the run by iSCSI
    FcoeBoot,  ///< the machine boots or pages over FCoE, and its drivers were updated
};
/// Every table of the reasons has so many rows.
inline constexpr std::size_t kRestartReasonCount = 3;

/// The four conditions of iSCSI boot, in the order in which the iSCSI support hands them out.
struct IscsiConditions
{
    bool rightSystem = false;
    bool patchInstalled = false;
    bool initiatorPresent = false;
    bool crashDumpEnabled = false;
};

/// All that the reasons depend on.
struct RestartFacts
{
    OSCode system = osUNSUPPORTED;
    SystemFacts version;
    bool dmaEngineMatched = false;
    bool ndis52OrLater = false; ///< known only where NdisVersionCounts; false elsewhere
    bool iscsiBootAdapter = false;
    IscsiConditions iscsi;
    bool fcoeBootPorts = false;
    bool extensionUpdateAllowed = false; ///< the management extension allowed the update of FCoE boot drivers
};

/// Whether a machine that boots or pages over FCoE needs a restart: only when its drivers may be updated.
[[nodiscard]] constexpr bool FcoeBootNeedsRestart(bool bootPorts, bool updateAllowed)
{
    return bootPorts && updateAllowed;
}

/// Whether the network driver interface's version makes a difference. It is asked for only then.
[[nodiscard]] bool NdisVersionCounts(const RestartFacts& facts);

/// @return every reason that holds, in the order of the enumeration.
[[nodiscard]] std::vector<RestartReason> RestartReasons(const RestartFacts& facts);

/// Whether the iSCSI boot settings are to be verified: all four conditions hold for a boot adapter. Looks at nothing
/// else of the facts.
[[nodiscard]] bool IscsiSettingsAreVerified(const RestartFacts& facts);
