#include "InstallerSearch.h"

#include <windows.h>

#include <array>
#include <utility>

#include "InfReader.h"
#include "InfStore.h"
#include "LangString.h"
#include "LocationInfo.h"
#include "OrvSecure.h"
#include "RunOptions.h"
#include "Trace.h"

namespace {
constexpr char kThisFile[] = "InstallerSearch";
}

void InstallerLog::SayPieces(std::span<const std::string_view> pieces)
{
    TracePieces(pieces);
}

void InstallerLog::Store(const std::string& infPath, const std::string& sourceDirectory)
{
    SetupCopyInf(infPath, sourceDirectory);
}

void InstallerLog::Reached(SearchStep step)
{
    switch (step) {
        case SearchStep::DirectoryResolved: {
            // Directories are relative to the program's directory; the current one is read and not used.
            std::array<char, MAX_PATH> currentDirectory{};
            GetCurrentDirectoryA(MAX_PATH, currentDirectory.data());
            return;
        }
        case SearchStep::DescriptionSought: {
            // Loaded only to be traced: nothing shows this text here.
            std::array<char, kMessageBytes> text{};
            LoadLangString(resourceModule, kStringRestorePoint, text.data(), kMessageBytes);
            return;
        }
        case SearchStep::DescriptionCopied: {
            // The first bounded copy of a process installs the library's handler for invalid parameters.
            std::array<char, 1> unused{};
            OrvSafeCopy(kThisFile, __LINE__, unused.data(), unused.size(), "");
            return;
        }
        case SearchStep::DescriptionTooLong: {
            std::array<char, 1> noRoom{};
            OrvSafeCopy(kThisFile, __LINE__, noRoom.data(), noRoom.size(), "description key");
            return;
        }
    }
}

KitSearch SearchOfThisRun(KitSource& source, SearchLog& log, OSCode system, std::string family)
{
    return {.source = source,
            .log = log,
            .setupDir = LocationInfo.setupDir,
            .system = system,
            .family = std::move(family),
            .forceInfScan = RunOptions.forceInfScan,
            .isLeadByte = IsSystemLeadByte,
            .storedInfs = CopiedInfList.names,
            .matchedHardwareId = matchedHardwareId,
            .deviceDescription = deviceDescription};
}
