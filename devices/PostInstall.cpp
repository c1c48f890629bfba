#include "PostInstall.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "DevicePassState.h"
#include "DriverFamilies.h"
#include "DriverInstallRecord.h"
#include "FileVersion.h"
#include "Handles.h"
#include "LocationInfo.h"
#include "OSPredicates.h"
#include "OSVersion.h"
#include "OrvSecure.h"
#include "PathCase.h"
#include "ResultKeys.h"
#include "SystemDirectory.h"
#include "Trace.h"
#include "TwoByteText.h"

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

void PostFamilyResult(OSCode system, const DriverFamily& family, const std::string& driverDirectory)
{
    std::array<char, MAX_PATH> valueName{};
    OrvSafeCopy("PostInstall", __LINE__, valueName.data(), valueName.size(), std::string(family.resultPrefix).c_str());
    OrvSafeCat("PostInstall", __LINE__, valueName.data(), valueName.size(), "Install");

    const std::optional<std::string> driverFile =
        FindFirstFileName(driverDirectory, DriverFilePattern(family, IsWin7Family(system) || IsWin2K8R2Family(system)));
    const bool failedBefore = DevicePassState.installErrorCode == kRememberedInstallError;
    std::array<char, MAX_PATH> version{};
    const bool succeeded = driverFile && !failedBefore;
    if (succeeded) {
        Trace(R"(Driver sys file found in \system32\drivers)");
        GetModuleVersion(driverDirectory + "\\" + *driverFile, version);
    } else {
        Trace(R"(Driver sys file NOT found in \system32\drivers)");
        if (failedBefore) {
            // One failed install is reported once.
            DevicePassState.installErrorCode = 0;
        }
    }
    PostResultToRegistry(std::string(succeeded ? kResultSuccess : kResultFailure), valueName.data(), valueName.size(),
                         version.data());
}

std::span<char> TextOf(std::span<char> buffer)
{
    return {buffer.begin(), std::ranges::find(buffer, '\0')};
}

/// @return the text from its last backslash on; the whole text, which no family's prefix fits, when it has none.
std::string_view FileNameOf(std::string_view path)
{
    const std::size_t backslash = LastBackslash(path, IsSystemLeadByte);
    return backslash == std::string_view::npos ? path : path.substr(backslash);
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

    const std::span<char> path = TextOf(infPath);
    const std::string_view pathText(path.data(), path.size());
    const std::string_view fileName = FileNameOf(pathText);
    Trace("inf file name and path is ->");
    Trace(pathText);
    Trace("inf file name is ->");
    Trace(fileName);

    // The caller keeps the path in upper case, by design; the family names are in upper case as they stand.
    MakePathUpperCase(path);
    const DriverFamily* family = FamilyOfInf(fileName);
    if (family == nullptr) {
        Trace("A device other than a network device was installed");
        return 0;
    }
    PostFamilyResult(system, *family, driverDirectory);
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
        // The kit may lie on a read-only medium; the copy must stay replaceable.
        SetFileAttributesA(target.c_str(), FILE_ATTRIBUTE_NORMAL);
        HKEY opened = nullptr;
        if (RegCreateKeyA(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Norda\Tavunstl\Dins)", &opened) == ERROR_SUCCESS) {
            const UniqueRegKey key(opened);
            constexpr std::string_view kEntry{"Morvix.Uninstall\0", 17};
            RegSetValueExA(key.get(), "Morvix.din", 0, REG_SZ, reinterpret_cast<const BYTE*>(kEntry.data()),
                           static_cast<DWORD>(kEntry.size()));
        }
    }
    Trace("Exiting -> UpdateTavunstRegistry()");
}
