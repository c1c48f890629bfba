#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// The systems that the program knows by name. The suffix tells the processor: 32 is 32-bit, 32E is x64, 64 is IA-64.
enum OSCode : uint32_t
{
    osUNSUPPORTED = 0,
    osWIN95,
    osWIN98,
    osWINME,
    osWINNT351,
    osWINNT4,
    osWIN2K,
    osWINXP32,
    osWINXP64,
    osWINXP32E,
    osWIN2K3SRV32,
    osWIN2K3SRV64,
    osWIN2K3SRV32E,
    osWINVISTA32,
    osWINVISTA32E,
    osLONGHORN32,
    osLONGHORN32E,
    osLONGHORN64,
    osWINSEVEN32,
    osWINSEVEN32E,
    osWIN2K8R232E,
    osWIN2K8R264,
    osWINEIGHT32,
    osWINEIGHT32E,
    osWINEIGHTSRV32E,
};

/// What the setup INI and the trace call a system.
struct SystemRow
{
    OSCode code;
    std::string_view sectionKey;    ///< section of Morvix.ini; empty for a system that is not served
    std::string_view detectionLine; ///< trace line of the INF discovery
};

inline constexpr std::string_view kUnsupportedDetected = "unsupported os detected\n";

/// One row for each code, in the order of the codes. The 6.2 server shares the section and the line of its workstation.
inline constexpr std::array kSystems = std::to_array<SystemRow>({
    {osUNSUPPORTED, "", kUnsupportedDetected},
    {osWIN95, "", kUnsupportedDetected},
    {osWIN98, "", kUnsupportedDetected},
    {osWINME, "", kUnsupportedDetected},
    {osWINNT351, "", kUnsupportedDetected},
    {osWINNT4, "", kUnsupportedDetected},
    {osWIN2K, "", kUnsupportedDetected},
    {osWINXP32, "WinXP32", "osWINXP32 detected\n"},
    {osWINXP64, "WinXP64", "osWINXP64 detected\n"},
    {osWINXP32E, "WinXP32E", "osWINXP32E detected\n"},
    {osWIN2K3SRV32, "WinSrv2K332", "osWIN2K3SRV32 detected\n"},
    {osWIN2K3SRV64, "WinSrv2K364", "osWIN2K3SRV64 detected\n"},
    {osWIN2K3SRV32E, "WinSrv2K332E", "osWIN2K3SRV32E detected\n"},
    {osWINVISTA32, "WinVista32", "osWINVISTA32 detected\n"},
    {osWINVISTA32E, "WinVista32E", "osWINVISTA32E detected\n"},
    {osLONGHORN32, "WinSrv2K832", "osLONGHORN32 detected\n"},
    {osLONGHORN32E, "WinSrv2K832E", "osLONGHORN32E detected\n"},
    {osLONGHORN64, "WinSrv2K864", "osLONGHORN64 detected\n"},
    {osWINSEVEN32, "Win732", "osWINSEVEN32 detected\n"},
    {osWINSEVEN32E, "Win732E", "osWINSEVEN32E detected\n"},
    {osWIN2K8R232E, "WinSrv2K8R232E", "osWIN2K8R232E detected\n"},
    {osWIN2K8R264, "WinSrv2K8R264", "osWIN2K8R264 detected\n"},
    {osWINEIGHT32, "Win832", "osWINEIGHT32 detected\n"},
    {osWINEIGHT32E, "Win832E", "osWINEIGHT32E detected\n"},
    {osWINEIGHTSRV32E, "Win832E", "osWINEIGHT32E detected\n"},
});

/// @return the row of `code`; a number outside the enumeration gives the row of osUNSUPPORTED.
[[nodiscard]] constexpr const SystemRow& RowOf(OSCode code)
{
    return kSystems[static_cast<std::size_t>(code) < kSystems.size() ? static_cast<std::size_t>(code) : 0];
}

/// @return true when the setup INI has a section for the system: Windows XP and everything later that is known by name.
[[nodiscard]] constexpr bool IsServed(OSCode code)
{
    return !RowOf(code).sectionKey.empty();
}

// The numbers are those of the platform's version record and system information.
inline constexpr uint32_t kPlatform9x = 1;
inline constexpr uint32_t kPlatformNT = 2;
inline constexpr uint8_t kProductWorkstation = 1;
inline constexpr uint8_t kProductDomainController = 2;
inline constexpr uint8_t kProductServer = 3;
inline constexpr uint16_t kArchitectureIA64 = 6;
inline constexpr uint16_t kArchitectureX64 = 9;

/// What the platform says about a system: all that a decision about it may depend on.
struct SystemFacts
{
    bool valid = false; ///< false when the version could not be read; its fields are zero then, but not `architecture`
    uint32_t majorVersion = 0;
    uint32_t minorVersion = 0;
    uint32_t platform = 0;                ///< 1 the 9x family, 2 the NT family
    uint8_t productType = 0;              ///< 1 workstation, 2 domain controller, 3 server, 0 when it could not be read
    uint16_t servicePackMajor = 0;        ///< major number of the service pack
    std::optional<uint16_t> architecture; ///< native processor: 6 IA-64, 9 x64; no value when the system cannot tell
};

/// The two questions about what a version of 6.0 really is. They are asked only when their answer counts.
class LaterSystemVerifier
{
public:
    virtual ~LaterSystemVerifier() = default;
    /// @return true when the system's own version is exactly 6.1.
    [[nodiscard]] virtual bool IsSixOne() const = 0;
    /// @return true when the system's own version is 6.2 or later, with any known product type.
    [[nodiscard]] virtual bool IsSixTwoOrLater() const = 0;
};

/// Decides which system it is.
/// @param facts     What the platform reported.
/// @param verifier  Asked only when the reported version is 6.0, which may be what a later system tells this process.
/// @return the code, osUNSUPPORTED for everything that is not known by name.
[[nodiscard]] OSCode DecideOSCode(const SystemFacts& facts, const LaterSystemVerifier& verifier);
