#include "OSVersion.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "Handles.h"
#include "IniLines.h"
#include "OSPredicates.h"
#include "Trace.h"

namespace {
static_assert(sizeof(OSVERSIONINFOEXA) == 156);
static_assert(sizeof(OSVERSIONINFOA) == 148);

bool Verify(OSVERSIONINFOEXA wanted, DWORD types, BYTE condition)
{
    DWORDLONG conditions = 0;
    for (const DWORD type : {DWORD{VER_MAJORVERSION}, DWORD{VER_MINORVERSION}, DWORD{VER_PRODUCT_TYPE}}) {
        if ((types & type) != 0) {
            conditions = VerSetConditionMask(conditions, type, condition);
        }
    }
    return VerifyVersionInfoA(&wanted, types, conditions) != FALSE;
}

/// @return the bytes of a multi-string value, or nothing when it is missing, empty or of another type.
std::vector<char> ReadMultiString(HKEY key, const char* name)
{
    DWORD bytes = 0;
    if (RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &bytes) != ERROR_SUCCESS || bytes == 0) {
        return {};
    }
    std::vector<char> block(bytes);
    DWORD type = REG_NONE;
    if (RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(block.data()), &bytes) != ERROR_SUCCESS ||
        type != REG_MULTI_SZ) {
        return {};
    }
    return block;
}
} // namespace

bool PlatformVerifier::IsSixOne() const
{
    OSVERSIONINFOEXA wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 6;
    wanted.dwMinorVersion = 1;
    return Verify(wanted, VER_MAJORVERSION | VER_MINORVERSION, VER_EQUAL);
}

bool PlatformVerifier::IsSixTwoOrLater() const
{
    OSVERSIONINFOEXA wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 6;
    wanted.dwMinorVersion = 2;
    wanted.wProductType = kProductWorkstation;
    return Verify(wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_PRODUCT_TYPE, VER_GREATER_EQUAL);
}

uint32_t CaptureVersion(OSVERSIONINFOEXA& record, GetVersionExFn getVersion)
{
    record = {};
    record.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXA);
    auto* const plain = reinterpret_cast<OSVERSIONINFOA*>(&record);
    if (getVersion(plain) != FALSE) {
        return 1;
    }
    record.dwOSVersionInfoSize = sizeof(OSVERSIONINFOA);
    return getVersion(plain) != FALSE ? 1 : 0;
}

COSVersion::COSVersion() : m_valid(CaptureVersion(m_version, &GetVersionExA))
{
    m_getNativeSystemInfo = FindEntry<GetNativeSystemInfoFn>(GetModuleHandleA("kernel32.dll"), "GetNativeSystemInfo");
    if (m_getNativeSystemInfo != nullptr) {
        m_getNativeSystemInfo(&m_nativeInfo);
    }
}

SystemFacts COSVersion::Facts() const
{
    SystemFacts facts;
    facts.valid = m_valid != 0;
    facts.majorVersion = m_version.dwMajorVersion;
    facts.minorVersion = m_version.dwMinorVersion;
    facts.platform = m_version.dwPlatformId;
    facts.productType = m_version.wProductType;
    facts.servicePackMajor = m_version.wServicePackMajor;
    if (m_getNativeSystemInfo != nullptr) {
        facts.architecture = m_nativeInfo.wProcessorArchitecture;
    }
    return facts;
}

OSCode COSVersion::GetOSCode() const
{
    const SystemFacts facts = Facts();
    if (!facts.valid) {
        return osUNSUPPORTED;
    }
    // The line is for whoever debugs this function; it is not traced, because every predicate comes through here.
    [[maybe_unused]] const std::string description = DescribeSystem(facts);
    return DecideOSCode(facts, PlatformVerifier());
}

bool COSVersion::IsIA64() const
{
    return ::IsIA64(Facts());
}
bool COSVersion::IsX64() const
{
    return ::IsX64(Facts());
}
bool COSVersion::IsNT5OrLater() const
{
    return ::IsNT5OrLater(Facts());
}
bool COSVersion::IsNT6OrLater() const
{
    return ::IsNT6OrLater(Facts());
}
bool COSVersion::IsXPOrLater() const
{
    return ::IsXPOrLater(Facts());
}
bool COSVersion::IsServerOrVistaLater() const
{
    return ::IsServerOrVistaLater(GetOSCode());
}
bool COSVersion::IsWin2K3Family() const
{
    return ::IsWin2K3Family(GetOSCode());
}
bool COSVersion::IsWin2K8Family() const
{
    return ::IsWin2K8Family(GetOSCode());
}
bool COSVersion::IsWin7Family() const
{
    return ::IsWin7Family(GetOSCode());
}
bool COSVersion::IsWin8Family() const
{
    return ::IsWin8Family(GetOSCode());
}
bool COSVersion::IsWin2K8R2Family() const
{
    return ::IsWin2K8R2Family(GetOSCode());
}
bool COSVersion::IsWin8OrLater() const
{
    return ::IsWin8OrLater(GetOSCode(), Facts());
}

bool COSVersion::GetWin2K3ServicePack(uint32_t& sp) const
{
    sp = Win2K3ServicePack(GetOSCode(), Facts());
    return sp != 0;
}

bool COSVersion::IsVistaFamily() const
{
    return ::IsVistaFamily(GetOSCode());
}
bool COSVersion::IsWin8Workstation() const
{
    return ::IsWin8Workstation(GetOSCode());
}
bool COSVersion::IsWin8Server() const
{
    return ::IsWin8Server(GetOSCode());
}
bool COSVersion::IsVistaWorkstation() const
{
    return ::IsVistaWorkstation(GetOSCode(), Facts());
}

bool COSVersion::IsServerCore() const
{
    return CanBeServerCore(GetOSCode()) && !CanOpenExpanded(R"(%SYSTEMROOT%\explorer.exe)");
}

bool COSVersion::IsXPWorkstation() const
{
    return ::IsXPWorkstation(GetOSCode());
}
bool COSVersion::IsModernServer() const
{
    return ::IsModernServer(GetOSCode(), Facts());
}
bool COSVersion::IsWorkstationOS() const
{
    return ::IsWorkstationOS(GetOSCode());
}

int GetOSGeneration()
{
    const COSVersion version;
    return OSGeneration(version.GetOSCode(), version.Facts());
}

bool CanOpenExpanded(const std::string& path)
{
    std::array<char, MAX_PATH> expanded{};
    const DWORD needed = ExpandEnvironmentStringsA(path.c_str(), expanded.data(), MAX_PATH);
    if (needed == 0 || needed > MAX_PATH) {
        return false;
    }
    const UniqueFile file(
        CreateFileA(expanded.data(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    return file.IsOpen();
}

bool IsNT4TerminalServer()
{
    Trace("Entering - IsNT4TerminalServer");
    return IsNT4TerminalServerOn(COSVersion().GetOSCode());
}

bool IsNT4TerminalServerOn(OSCode system)
{
    if (system != osWINNT4) {
        return false;
    }
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, R"(System\CurrentControlSet\Control\ProductOptions)", 0, KEY_READ, &opened) !=
        ERROR_SUCCESS) {
        return false;
    }
    const UniqueRegKey key(opened);
    const std::vector<char> suites = ReadMultiString(key.get(), "ProductSuite");
    return std::ranges::any_of(LinesOf(suites), [](std::string_view suite) {
        return lstrcmpA(std::string(suite).c_str(), "Terminal Server") == 0;
    });
}
