#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "OSCode.h"

/// The rules of iSCSI boot: which values a setting may have, which systems can boot with the software initiator, and
/// what they need for it.

[[nodiscard]] constexpr bool IsBootLunInRange(uint32_t lun)
{
    return lun <= 255;
}

/// Port 1024 is deliberately rejected like the well-known ports below it.
[[nodiscard]] constexpr bool IsTargetPortInRange(int32_t port)
{
    return port >= 1025 && port <= 65535;
}

/// 4096 is accepted although no frame can carry it: settings that hold it exist.
[[nodiscard]] constexpr bool IsVlanIdInRange(uint32_t vlanId)
{
    return vlanId <= 4096;
}

/// @return true when the system can boot with the software initiator: Windows Server 2003 with a service pack, for
///         which an initiator can be installed, and every system from 6.0 on, which has its own. 5.x workstations and
///         all earlier systems have none that boots.
[[nodiscard]] bool CanBootOverISCSI(OSCode code, const SystemFacts& facts);

/// The initiator's version, as reported.
struct InitiatorVersion
{
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
};

/// @return true for an initiator that can boot: 2.0 build 1895, the first that can, and everything later. Initiators
///         that are part of a system have its version, 6.0 and later.
[[nodiscard]] bool IsInitiatorRecentEnough(const InitiatorVersion& version);

/// @return true when the system's service pack contains the initiator's hotfix: Server 2003 from service pack 2 on.
[[nodiscard]] bool ServicePackHasInitiatorHotFix(OSCode code, const SystemFacts& facts);

/// @return true when the system needs a hotfix to write a crash dump over iSCSI: a 6.0 server before service pack 2.
[[nodiscard]] bool IsServer2008DumpHotFixNeeded(OSCode code, const SystemFacts& facts);

/// The initiator's hotfix for Server 2003.
inline constexpr char kInitiatorHotFix[] = "KB902113";
/// The hotfix with which Server 2003 writes a crash dump over iSCSI.
inline constexpr char kServer2003DumpHotFix[] = "KB939875";

/// @param hotFixId  Such as "KB902113". Quotation marks and backslashes are escaped.
/// @return the WMI query that has rows when that hotfix is installed.
[[nodiscard]] std::wstring HotFixQuery(std::wstring_view hotFixId);
