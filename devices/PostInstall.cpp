#include "PostInstall.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "DevicePassState.h"
#include "FileVersion.h"
#include "Handles.h"
#include "InstallResult.h"
#include "InstallerSearch.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "OrvSecure.h"
#include "RecordNames.h"
#include "ResultKeys.h"
#include "SystemDirectory.h"
#include "Trace.h"

namespace {
/// @return the name of the first file that the directory search returns, or no value when nothing matches or the
///         directory is not known.
std::optional<std::string> FindFirstFileName(const std::string& directory, const std::string& pattern)
{
    if (directory.empty()) {
        return std::nullopt;
    }
    WIN32_FIND_DATAA found{};
    const UniqueSearch search(FindFirstFileA((directory + pattern).c_str(), &found));
    return search.IsOpen() ? std::optional<std::string>(found.cFileName) : std::nullopt;
}

void PostVerdict(ResultVerdict verdict, const ExpectedResult& expected, const std::string& driverFile)
{
    std::array<char, MAX_PATH> valueName{};
    OrvSafeCopy("PostInstall", __LINE__, valueName.data(), valueName.size(), expected.valueName.c_str());
    std::array<char, MAX_PATH> version{};
    std::string_view result = kResultFailure;
    switch (verdict) {
        case ResultVerdict::DriverFilePresent:
            result = kResultSuccess;
            Trace(R"(Driver sys file found in \system32\drivers)");
            GetModuleVersion(driverFile, version);
            break;
        case ResultVerdict::DriverRefused:
            // One failed install is reported once.
            DevicePassState.unreportedRefusal = false;
            [[fallthrough]];
        case ResultVerdict::DriverFileMissing:
            Trace(R"(Driver sys file NOT found in \system32\drivers)");
            break;
    }
    PostResultToRegistry(std::string(result), valueName.data(), valueName.size(), version.data());
}

std::span<char> TextOf(std::span<char> buffer)
{
    return {buffer.begin(), std::ranges::find(buffer, '\0')};
}
} // namespace

int PostInstallRegResult(std::span<char> infPath)
{
    return PostInstallRegResultFor(COSVersion().GetOSCode(), infPath);
}

int PostInstallRegResultFor(OSCode system, std::span<char> infPath)
{
    Trace("Enter -> PostInstallRegResult\n");
    const std::string systemDirectory = SystemDirectory();
    const std::string driverDirectory = systemDirectory.empty() ? std::string() : systemDirectory + R"(\drivers)";
    InstallerLog log;
    const std::optional<ExpectedResult> expected = ClassifyInf(TextOf(infPath), system, IsSystemLeadByte, log);
    if (!expected) {
        return 0;
    }
    const std::optional<std::string> driverFile = FindFirstFileName(driverDirectory, expected->filePattern);
    PostVerdict(VerdictOnInstall(driverFile.has_value(), DevicePassState.unreportedRefusal), *expected,
                driverDirectory + "\\" + driverFile.value_or(""));
    UpdateTavunstRegistry();
    Trace("Exit -> PostInstallRegResult\n");
    return 1;
}

void UpdateTavunstRegistry()
{
    Trace("Entering -> UpdateTavunstRegistry()");
    const std::string directory = SystemDirectory();
    const std::string target = directory + R"(\Morvix.din)";
    if (!directory.empty() &&
        CopyFileA((LocationInfo.setupDir + R"(\Morvix.din)").c_str(), target.c_str(), FALSE) != FALSE) {
        // The kit may be on a read-only medium; the copy must stay replaceable.
        SetFileAttributesA(target.c_str(), FILE_ATTRIBUTE_NORMAL);
        HKEY opened = nullptr;
        if (RegCreateKeyA(HKEY_LOCAL_MACHINE, kRegistrationKey, &opened) == ERROR_SUCCESS) {
            const UniqueRegKey key(opened);
            constexpr std::string_view kEntry{"Morvix.Uninstall\0", 17};
            RegSetValueExA(key.get(), kRegistrationValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(kEntry.data()),
                           static_cast<DWORD>(kEntry.size()));
        }
    }
    Trace("Exiting -> UpdateTavunstRegistry()");
}
