#include "Staging.h"

#include <windows.h>

#include <array>
#include <vector>

#include "Handles.h"
#include "InfSearch.h"
#include "LastError.h"
#include "LegacyCommand.h"
#include "LocationInfo.h"
#include "OSVersion.h"
#include "PathResolution.h"
#include "ProcessLaunch.h"
#include "Trace.h"

namespace {
constexpr char kSetupKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Setup)";
constexpr REGSAM kReadWrite = KEY_READ | KEY_WRITE;
constexpr char kSourcePath[] = "SourcePath";

/// @return the cab directory as the registry names it; empty when it names none.
std::string ReadSourcePath()
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSetupKey, 0, kReadWrite, &opened) != ERROR_SUCCESS) {
        return {};
    }
    const UniqueRegKey key(opened);
    // One byte more than the platform may fill, so that a text without its terminator ends inside.
    std::array<char, 257> text{};
    DWORD bytes = text.size() - 1;
    if (RegQueryValueExA(key.get(), kSourcePath, nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes) !=
        ERROR_SUCCESS) {
        return {};
    }
    return text.data();
}

/// @return the fallback directory with a trailing backslash, made when it is missing; empty when the platform does not
///         tell where Windows lies.
std::string FallbackDirectory()
{
    std::array<char, MAX_PATH> windows{};
    const UINT length = GetWindowsDirectoryA(windows.data(), MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        return {};
    }
    const std::string directory = windows.data() + std::string(R"(\INSTALL)");
    CreateDirectoryA(directory.c_str(), nullptr);
    // The fallback is not written to "SourcePath": that would go through the key of ReadSourcePath, which is closed by
    // now, so the write would change nothing and the registry keeps naming its own directory.
    return directory + "\\";
}

bool CopyInfDirectories(OSCode system, const std::string& cabDirectory)
{
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
    GetInfDirsFor(system, directories, excludes);
    bool copied = false;
    for (const std::string& directory : directories) {
        copied = CopyAllFiles(directory, cabDirectory) == 1 || copied;
    }
    return copied;
}

bool CopyOneFile(const std::string& source, const std::string& destination, bool hasPlace)
{
    SetLastError(ERROR_PATH_NOT_FOUND);
    if (hasPlace) {
        SetFileAttributesA(destination.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (CopyFileA(source.c_str(), destination.c_str(), FALSE) != FALSE) {
            Trace("copied file to: ", destination, "\n");
            return true;
        }
    }
    const DWORD error = GetLastError();
    Trace("src: ", source, "\ndst: ", destination, "\n");
    SetLastError(error);
    PrintGetLastErrorMessage();
    return false;
}
} // namespace

void CopyFilesToCabDir()
{
    CopyFilesToCabDirFor(COSVersion().GetOSCode());
}

void CopyFilesToCabDirFor(OSCode system)
{
    Trace("Enter -> CopyFilesToCabDir\n");
    const std::string sourcePath = ReadSourcePath();
    // A directory that the registry does not name stays without a name: a lone backslash would mean the root of
    // whatever drive is the current one.
    std::string cabDirectory = sourcePath.empty() ? std::string() : WithTrailingBackslash(sourcePath, IsSystemLeadByte);
    Trace("cab dir: ", cabDirectory, "\n");
    if (!CopyInfDirectories(system, cabDirectory)) {
        const std::string fallback = FallbackDirectory();
        Trace("new cab dir: ", fallback, "\n");
        CopyInfDirectories(system, fallback);
        // Without a Windows directory there is none to fall back to.
        if (!fallback.empty()) {
            cabDirectory = fallback;
        }
    }
    if (system == osWIN98) {
        Win98InfNotAvail(cabDirectory);
    }
    Trace("Exit -> CopyFilesToCabDir\n");
}

int CopyAllFiles(const std::string& sourceDirectory, const std::string& destinationDirectory)
{
    Trace("Entering - CopyAllFiles");
    WIN32_FIND_DATAA entry{};
    UniqueSearch search(FindFirstFileA((sourceDirectory + "*.*").c_str(), &entry));
    if (!search.IsOpen()) {
        Trace("no files found in source directory\n");
        return 0;
    }
    int copied = 0;
    do {
        const std::string name = entry.cFileName;
        if (CopyOneFile(sourceDirectory + name, destinationDirectory + name, !destinationDirectory.empty())) {
            copied = 1;
        }
    } while (FindNextFileA(search.Get(), &entry) != FALSE);
    Trace(GetLastError() == ERROR_NO_MORE_FILES ? "Found all of the files\n" : "Unable to find next file\n");
    if (FindClose(search.Release()) == FALSE) {
        Trace("Unable to close search handle\n");
    }
    return copied;
}

int Win98InfNotAvail(const std::string& cabDirectory)
{
    Trace("Enter -> Win98InfNotAvail\n");
    const std::string command = LegacyStagingCommandLine(cabDirectory, IsSystemLeadByte);
    const std::string directory = DriveAndDirectoryOf(LocationInfo.programName, IsSystemLeadByte);
    std::array<char, MAX_PATH> shortForm{};
    const DWORD chars = GetShortPathNameA(directory.c_str(), shortForm.data(), MAX_PATH);
    SetCurrentDirectoryA(chars == 0 || chars >= MAX_PATH ? directory.c_str() : shortForm.data());
    Trace("Exit -> Win98InfNotAvail\n");
    return LaunchAppandWait(command);
}
