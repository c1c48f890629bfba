#include "Machine.h"

#include <algorithm>
#include <array>

#include "EntryPoints.h"
#include "Handles.h"
#include "MachineUse.h"
#include "RegistryKeys.h"
#include "WindowStation.h"

namespace {
using RtlGetVersionFn = LONG(WINAPI*)(OSVERSIONINFOEXW*);
using SetProcessDPIAwareFn = BOOL(WINAPI*)();
} // namespace

SystemNumbers OwnVersionOfTheSystem()
{
    OSVERSIONINFOEXW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    const auto getVersion = FindEntry<RtlGetVersionFn>(GetModuleHandleA("ntdll.dll"), "RtlGetVersion");
    if (getVersion != nullptr) {
        getVersion(&version);
    }
    return {.major = version.dwMajorVersion,
            .minor = version.dwMinorVersion,
            .build = version.dwBuildNumber,
            .productType = version.wProductType};
}

bool AsksForConsent()
{
    const auto value = ReadRegistryValue(R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\System)", "EnableLUA");
    return !RunsInWine() && OwnVersionOfTheSystem().major >= 6 &&
           (!value || std::ranges::any_of(value->bytes, [](char byte) { return byte != '\0'; }));
}

bool RunsAsSystem()
{
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened) == FALSE) {
        return false;
    }
    const UniqueHandle token(opened);
    std::array<BYTE, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> user{};
    DWORD bytes = 0;
    return GetTokenInformation(token.get(), TokenUser, user.data(), user.size(), &bytes) != FALSE &&
           IsWellKnownSid(reinterpret_cast<const TOKEN_USER*>(user.data())->User.Sid, WinLocalSystemSid) != FALSE;
}

bool IsRemoteSession()
{
    return GetSystemMetrics(SM_REMOTESESSION) != 0;
}

int ScreenDpi()
{
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

std::optional<std::string> WhyNoMachineWithoutAdapter()
{
    for (const std::string& device : RegistrySubKeys(R"(SYSTEM\CurrentControlSet\Enum\PCI)")) {
        if (device.find("5D1A") != std::string::npos) {
            return "the machine has or had an adapter of the maker's, " + device + ": use one that never had one";
        }
    }
    return std::nullopt;
}

std::optional<std::string> WhyNoWindows()
{
    if (WindowsAreSeen()) {
        return std::nullopt;
    }
    return "nobody sees windows in this session: run it in the session of a user";
}

void SeeTheScreenInItsRealSize()
{
    const auto makeAware = FindEntry<SetProcessDPIAwareFn>(GetModuleHandleA("user32.dll"), "SetProcessDPIAware");
    if (makeAware != nullptr) {
        makeAware();
    }
}
