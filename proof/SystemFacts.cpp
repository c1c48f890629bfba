#include "SystemFacts.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <string_view>

#include "EntryPoints.h"
#include "Files.h"
#include "NativeMachine.h"
#include "RegistryText.h"

namespace {
constexpr char kUnknown[] = "unknown";

struct RegistryFact
{
    const char* name;
    const char* key;
    const char* value;
};

constexpr char kVersionKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr char kControl[] = R"(SYSTEM\CurrentControlSet\Control)";
constexpr char kIntegrityKey[] =
    R"(SYSTEM\CurrentControlSet\Control\DeviceGuard\Scenarios\HypervisorEnforcedCodeIntegrity)";

constexpr auto kRegistryFacts = std::to_array<RegistryFact>({
    {"product", kVersionKey, "ProductName"},
    {"edition", kVersionKey, "EditionID"},
    {"installation type", kVersionKey, "InstallationType"},
    {"release", kVersionKey, "DisplayVersion"},
    {"build", kVersionKey, "CurrentBuildNumber"},
    {"update of the build", kVersionKey, "UBR"},
    {"service pack", kVersionKey, "CSDVersion"},
    {"product type", R"(SYSTEM\CurrentControlSet\Control\ProductOptions)", "ProductType"},
    {"registered processor", R"(SYSTEM\CurrentControlSet\Control\Session Manager\Environment)",
     "PROCESSOR_ARCHITECTURE"},
    {"system's ANSI code page", R"(SYSTEM\CurrentControlSet\Control\Nls\CodePage)", "ACP"},
    {"system's OEM code page", R"(SYSTEM\CurrentControlSet\Control\Nls\CodePage)", "OEMCP"},
    {"firmware (1 BIOS, 2 UEFI)", kControl, "PEFirmwareType"},
    {"Secure Boot", R"(SYSTEM\CurrentControlSet\Control\SecureBoot\State)", "UEFISecureBootEnabled"},
    {"memory integrity (HVCI) configured", kIntegrityKey, "Enabled"},
    {"virtualisation-based security", R"(SYSTEM\CurrentControlSet\Control\DeviceGuard)",
     "EnableVirtualizationBasedSecurity"},
    {"Smart App Control", R"(SYSTEM\CurrentControlSet\Control\CI\Policy)", "VerifiedAndReputablePolicyState"},
    {"vulnerable driver list", R"(SYSTEM\CurrentControlSet\Control\CI\Config)", "VulnerableDriverBlocklistEnable"},
    {"user account control", R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\System)", "EnableLUA"},
    {"maker of the machine", R"(HARDWARE\DESCRIPTION\System\BIOS)", "SystemManufacturer"},
    {"machine", R"(HARDWARE\DESCRIPTION\System\BIOS)", "SystemProductName"},
});

template <class Fn>
Fn FindIn(const char* library, const char* name)
{
    return FindEntry<Fn>(GetModuleHandleA(library), name);
}

std::string Line(std::string_view name, std::string_view value)
{
    return std::string(name) + ": " + std::string(value.empty() ? kUnknown : value) + '\n';
}

std::string Language(LANGID language)
{
    std::array<char, 64> name{};
    GetLocaleInfoA(MAKELCID(language, SORT_DEFAULT), LOCALE_SENGLANGUAGE, name.data(), static_cast<int>(name.size()));
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04x %s", language, name.data());
    return text.data();
}

/// The version itself; the documented questions answer programs without a manifest entry for later systems with 6.2.
std::string TrueVersion()
{
    using VersionFn = LONG(WINAPI*)(OSVERSIONINFOEXW*);
    const auto ask = FindIn<VersionFn>("ntdll.dll", "RtlGetVersion");
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    if (ask == nullptr || ask(&version) != 0) {
        return {};
    }
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%lu.%lu.%lu, product type %u, service pack %u", version.dwMajorVersion,
                  version.dwMinorVersion, version.dwBuildNumber, version.wProductType, version.wServicePackMajor);
    return text.data();
}

std::string ProgramsVersion()
{
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    GetVersionExA(&version);
    return std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) + '.' +
           std::to_string(version.dwBuildNumber);
}

std::string ProcessorName(WORD machine)
{
    switch (machine) {
        case IMAGE_FILE_MACHINE_AMD64:
            return "x64";
        case 0xAA64:
            return "ARM64";
        case IMAGE_FILE_MACHINE_I386:
            return "x86";
        default:
            return std::to_string(machine);
    }
}

/// On an ARM64 machine, GetNativeSystemInfo returns x64 to a program for x64.
std::string TrueProcessor()
{
    if (const auto native = NativeMachine()) {
        return ProcessorName(*native);
    }
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    return info.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64 ? "x64"
                                                                       : std::to_string(info.wProcessorArchitecture);
}

/// What the kernel enforces now, as against what is configured.
std::string CodeIntegrity()
{
    struct Options
    {
        ULONG bytes = sizeof(Options);
        ULONG flags = 0;
    };
    struct Flag
    {
        ULONG bit;
        const char* name;
    };
    constexpr auto kFlags = std::to_array<Flag>({{0x1, "drivers are checked"},
                                                 {0x2, "test signatures"},
                                                 {0x4, "application control (WDAC)"},
                                                 {0x8, "application control (WDAC) audits"},
                                                 {0x80, "debugger"},
                                                 {0x400, "memory integrity (HVCI)"},
                                                 {0x800, "memory integrity (HVCI) audits"}});
    constexpr ULONG kCodeIntegrityInformation = 103;
    using QueryFn = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);
    const auto ask = FindIn<QueryFn>("ntdll.dll", "NtQuerySystemInformation");
    Options options;
    if (ask == nullptr || ask(kCodeIntegrityInformation, &options, sizeof(options), nullptr) != 0) {
        return {};
    }
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%lX", options.flags);
    std::string text = number.data();
    for (const Flag& flag : kFlags) {
        if ((options.flags & flag.bit) != 0) {
            text += std::string(", ") + flag.name;
        }
    }
    return text;
}

std::string Policies()
{
    const std::string folder = EnvironmentText("SystemRoot") + R"(\System32\CodeIntegrity\)";
    std::string names;
    for (const FoundFile& file : FilesOf(folder + R"(CiPolicies\Active\*.cip)")) {
        names += (names.empty() ? "" : " ") + file.name;
    }
    if (IsFile(folder + "SiPolicy.p7b")) {
        names += " SiPolicy.p7b";
    }
    return names.empty() ? "none" : names;
}

std::string Emulator()
{
    using VersionFn = const char*(__cdecl*)();
    const auto ask = FindIn<VersionFn>("ntdll.dll", "wine_get_version");
    return ask == nullptr ? "none" : std::string("Wine ") + ask();
}

std::string Session()
{
    DWORD session = 0;
    ProcessIdToSessionId(GetCurrentProcessId(), &session);
    return std::to_string(session) + (GetSystemMetrics(SM_REMOTESESSION) != 0 ? ", remote" : "");
}

std::string Screen()
{
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return std::to_string(GetSystemMetrics(SM_CXSCREEN)) + " x " + std::to_string(GetSystemMetrics(SM_CYSCREEN)) +
           ", " + std::to_string(dots) + " dots per inch";
}
} // namespace

std::string SystemFacts()
{
    std::string text = Line("emulator", Emulator()) + Line("version", TrueVersion()) +
                       Line("version that GetVersionEx returns", ProgramsVersion()) +
                       Line("processor", TrueProcessor());
    for (const RegistryFact& fact : kRegistryFacts) {
        text += Line(fact.name, ReadRegistryText(fact.key, fact.value));
    }
    text += Line("ANSI code page", std::to_string(GetACP())) + Line("OEM code page", std::to_string(GetOEMCP()));
    text += Line("system's language", Language(GetSystemDefaultLangID())) +
            Line("system's display language", Language(GetSystemDefaultUILanguage())) +
            Line("user's language", Language(GetUserDefaultLangID())) +
            Line("user's display language", Language(GetUserDefaultUILanguage()));
    text += Line("code integrity in force", CodeIntegrity()) + Line("application control policies", Policies());
    return text + Line("session", Session()) + Line("screen", Screen());
}

bool IsElevated()
{
    std::array<BYTE, SECURITY_MAX_SID_SIZE> administrators{};
    DWORD bytes = administrators.size();
    BOOL isMember = FALSE;
    return CreateWellKnownSid(WinBuiltinAdministratorsSid, nullptr, administrators.data(), &bytes) != FALSE &&
           CheckTokenMembership(nullptr, administrators.data(), &isMember) != FALSE && isMember != FALSE;
}
