#pragma once

#include <cstdint>
#include <string>

#include "OSCode.h"

/// Questions about a system, answered from its code and its facts alone. COSVersion asks them about the running system.

[[nodiscard]] bool IsIA64(const SystemFacts& facts);
[[nodiscard]] bool IsX64(const SystemFacts& facts);
[[nodiscard]] bool IsNT5OrLater(const SystemFacts& facts);
[[nodiscard]] bool IsNT6OrLater(const SystemFacts& facts);
/// NT 5.1 or later; 5.0 is not.
[[nodiscard]] bool IsXPOrLater(const SystemFacts& facts);

/// Windows Server 2003 and later, Vista and later. The 6.1 servers and the 5.x workstations are left out on purpose.
[[nodiscard]] bool IsServerOrVistaLater(OSCode code);
[[nodiscard]] bool IsWin2K3Family(OSCode code);
/// The 6.0 servers.
[[nodiscard]] bool IsWin2K8Family(OSCode code);
/// The 6.1 workstations.
[[nodiscard]] bool IsWin7Family(OSCode code);
/// All 6.2 systems.
[[nodiscard]] bool IsWin8Family(OSCode code);
/// The 6.1 servers.
[[nodiscard]] bool IsWin2K8R2Family(OSCode code);
/// The 6.0 workstations.
[[nodiscard]] bool IsVistaFamily(OSCode code);
[[nodiscard]] bool IsWin8Workstation(OSCode code);
[[nodiscard]] bool IsWin8Server(OSCode code);
/// The 5.1 and 5.2 workstations, except the IA-64 one.
[[nodiscard]] bool IsXPWorkstation(OSCode code);
/// Every workstation from 5.1 to 6.2, except the IA-64 one of 5.2.
[[nodiscard]] bool IsWorkstationOS(OSCode code);

/// A 6.2 code, or any version number from 6.2 on.
[[nodiscard]] bool IsWin8OrLater(OSCode code, const SystemFacts& facts);
[[nodiscard]] bool IsVistaWorkstation(OSCode code, const SystemFacts& facts);
/// @return the major number of the service pack of a Server 2003; 0 for any other system.
[[nodiscard]] uint32_t Win2K3ServicePack(OSCode code, const SystemFacts& facts);

/// @return true for the servers that exist without a desktop: 6.0 and 6.1. Only there does a missing shell program say
///         that this is a Server Core.
[[nodiscard]] bool CanBeServerCore(OSCode code);
/// The 6.0, 6.1 and 6.2 servers, except on IA-64. A Server Core is always one of these: it needs no question of its
/// own.
[[nodiscard]] bool IsModernServer(OSCode code, const SystemFacts& facts);

/// @return 2 for 6.1 and later systems, 1 for 6.0, 0 for older ones.
[[nodiscard]] int OSGeneration(OSCode code, const SystemFacts& facts);

/// @return one line with everything that the code is decided from, at most 259 characters.
[[nodiscard]] std::string DescribeSystem(const SystemFacts& facts);
