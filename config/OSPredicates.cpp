#include "OSPredicates.h"

#include <array>
#include <cstdio>

bool IsIA64(const SystemFacts& facts)
{
    return facts.architecture == kArchitectureIA64;
}
bool IsX64(const SystemFacts& facts)
{
    return facts.architecture == kArchitectureX64;
}

bool IsNT5OrLater(const SystemFacts& facts)
{
    return facts.platform == kPlatformNT && facts.majorVersion >= 5;
}
bool IsNT6OrLater(const SystemFacts& facts)
{
    return facts.platform == kPlatformNT && facts.majorVersion >= 6;
}

bool IsXPOrLater(const SystemFacts& facts)
{
    return facts.platform == kPlatformNT &&
           (facts.majorVersion >= 6 || (facts.majorVersion == 5 && facts.minorVersion != 0));
}

bool IsServerOrVistaLater(OSCode code)
{
    return (code >= osWIN2K3SRV32 && code <= osWINSEVEN32E) || (code >= osWINEIGHT32 && code <= osWINEIGHTSRV32E);
}

bool IsWin2K3Family(OSCode code)
{
    return code == osWIN2K3SRV32 || code == osWIN2K3SRV64 || code == osWIN2K3SRV32E;
}

bool IsWin2K8Family(OSCode code)
{
    return code == osLONGHORN32 || code == osLONGHORN32E || code == osLONGHORN64;
}
bool IsWin7Family(OSCode code)
{
    return code == osWINSEVEN32 || code == osWINSEVEN32E;
}

bool IsWin8Family(OSCode code)
{
    return code == osWINEIGHT32 || code == osWINEIGHT32E || code == osWINEIGHTSRV32E;
}

bool IsWin2K8R2Family(OSCode code)
{
    return code == osWIN2K8R232E || code == osWIN2K8R264;
}
bool IsVistaFamily(OSCode code)
{
    return code == osWINVISTA32 || code == osWINVISTA32E;
}
bool IsWin8Workstation(OSCode code)
{
    return code == osWINEIGHT32 || code == osWINEIGHT32E;
}
bool IsWin8Server(OSCode code)
{
    return code == osWINEIGHTSRV32E;
}
bool IsXPWorkstation(OSCode code)
{
    return code == osWINXP32 || code == osWINXP32E;
}

bool IsWorkstationOS(OSCode code)
{
    return IsXPWorkstation(code) || IsVistaFamily(code) || IsWin7Family(code) || IsWin8Workstation(code);
}

bool IsWin8OrLater(OSCode code, const SystemFacts& facts)
{
    return IsWin8Family(code) || facts.majorVersion >= 7 || (facts.majorVersion == 6 && facts.minorVersion >= 2);
}

bool IsVistaWorkstation(OSCode code, const SystemFacts& facts)
{
    return IsVistaFamily(code) && facts.productType == kProductWorkstation;
}

uint32_t Win2K3ServicePack(OSCode code, const SystemFacts& facts)
{
    return IsWin2K3Family(code) ? facts.servicePackMajor : 0U;
}

bool CanBeServerCore(OSCode code)
{
    return IsWin2K8Family(code) || IsWin2K8R2Family(code);
}

bool IsModernServer(OSCode code, const SystemFacts& facts)
{
    return !IsIA64(facts) && (IsWin2K8R2Family(code) || IsWin2K8Family(code) || IsWin8Server(code));
}

int OSGeneration(OSCode code, const SystemFacts& facts)
{
    if (IsWin7Family(code) || IsWin2K8R2Family(code) || IsWin8OrLater(code, facts)) {
        return 2;
    }
    return IsNT6OrLater(facts) ? 1 : 0;
}

std::string DescribeSystem(const SystemFacts& facts)
{
    std::array<char, 260> line{};
    static_cast<void>(std::snprintf(
        line.data(), line.size(), "Version: %i.%i  Platform: %i   Product Type: %i   IsIA64(): %i   Proc Arch: %i",
        static_cast<int>(facts.majorVersion), static_cast<int>(facts.minorVersion), static_cast<int>(facts.platform),
        static_cast<int>(facts.productType), IsIA64(facts) ? 1 : 0, static_cast<int>(facts.architecture.value_or(0))));
    return line.data();
}
