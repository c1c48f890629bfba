#include "SourceFiles.h"

#include <cstdio>
#include <cstring>

#include "Inf.h"

namespace {
using PathBuffer = char[MAX_PATH];

bool Exists(const char* path) noexcept
{
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

/// One source file, as the platform resolves it.
struct SourcePlace
{
    PathBuffer diskPath{};  ///< directory of the disk, relative to the INF's
    PathBuffer filePath{};  ///< directory on the disk
    bool looseFile = false; ///< the disk has no tag file or cabinet
};

/// Field `number` of a line, empty when the line has none.
bool FieldOf(INFCONTEXT& line, DWORD number, PathBuffer& text) noexcept
{
    text[0] = '\0';
    return SetupGetStringFieldA(&line, number, text, MAX_PATH, nullptr) && text[0] != '\0';
}

bool FindSourcePlace(HINF inf, const char* file, SourcePlace& place) noexcept
{
    // The platform's own look-up of this line answers the disk's directory in place of the file's on some systems.
    INFCONTEXT line{};
    INT disk = 0;
    if ((!SetupFindFirstLineA(inf, "SourceDisksFiles.amd64", file, &line) &&
         !SetupFindFirstLineA(inf, "SourceDisksFiles", file, &line)) ||
        !SetupGetIntField(&line, 1, &disk)) {
        return false;
    }
    FieldOf(line, 2, place.filePath);
    const auto diskNumber = static_cast<UINT>(disk);
    if (!SetupGetSourceInfoA(inf, diskNumber, SRCINFO_PATH, place.diskPath, MAX_PATH, nullptr)) {
        place.diskPath[0] = '\0';
    }
    PathBuffer tag{};
    place.looseFile = !SetupGetSourceInfoA(inf, diskNumber, SRCINFO_TAGFILE, tag, MAX_PATH, nullptr) || tag[0] == '\0';
    return true;
}

/// Appends a backslash and `part` to `path`, unless `part` is empty or nothing but a backslash.
void AppendPart(char* path, std::size_t bytes, const char* part) noexcept
{
    while (*part == '\\') {
        ++part;
    }
    if (*part != '\0') {
        const std::size_t used = std::strlen(path);
        const bool separated = used > 0 && path[used - 1] == '\\';
        std::snprintf(path + used, bytes - used, "%s%s", separated ? "" : "\\", part);
    }
}

/// @return true when `file` is where the INF says, or where this library does not look.
bool IsPresent(HINF inf, const char* infDirectory, const char* file) noexcept
{
    SourcePlace place;
    if (!FindSourcePlace(inf, file, place) || !place.looseFile) {
        return true;
    }
    // Room for all four parts; a path that is longer than the platform allows is simply not found.
    char path[5 * MAX_PATH] = {};
    std::snprintf(path, sizeof(path), "%s", infDirectory);
    AppendPart(path, sizeof(path), place.diskPath);
    AppendPart(path, sizeof(path), place.filePath);
    AppendPart(path, sizeof(path), file);
    if (Exists(path)) {
        return true;
    }
    // A compressed file has an underscore for its name's last character.
    path[std::strlen(path) - 1] = '_';
    return Exists(path);
}

bool SectionIsComplete(HINF inf, const char* infDirectory, const char* copySection) noexcept
{
    INFCONTEXT line{};
    for (BOOL more = SetupFindFirstLineA(inf, copySection, nullptr, &line); more;
         more = SetupFindNextLine(&line, &line)) {
        PathBuffer name;
        // The second field is the name at the source, where it differs from the one on the system.
        if ((FieldOf(line, 2, name) || FieldOf(line, 1, name)) && !IsPresent(inf, infDirectory, name)) {
            return false;
        }
    }
    return true;
}

/// Checks every section and file of one CopyFiles line.
bool CopyLineIsComplete(HINF inf, const char* infDirectory, INFCONTEXT& line) noexcept
{
    const DWORD fields = SetupGetFieldCount(&line);
    for (DWORD field = 1; field <= fields; ++field) {
        PathBuffer entry;
        if (!FieldOf(line, field, entry)) {
            continue;
        }
        const bool complete =
            entry[0] == '@' ? IsPresent(inf, infDirectory, entry + 1) : SectionIsComplete(inf, infDirectory, entry);
        if (!complete) {
            return false;
        }
    }
    return true;
}
} // namespace

uint32_t CheckSourceFiles(const char* infPath, const char* installSection) noexcept
{
    const Inf inf(infPath);
    if (!inf.IsOpen()) {
        return FailureReason();
    }
    PathBuffer directory{};
    char* name = nullptr;
    PathBuffer section{};
    if (GetFullPathNameA(infPath, MAX_PATH, directory, &name) >= MAX_PATH || name == nullptr ||
        !SetupDiGetActualSectionToInstallA(inf.Get(), installSection, section, MAX_PATH, nullptr, nullptr)) {
        return FailureReason();
    }
    *name = '\0';
    INFCONTEXT line{};
    for (BOOL more = SetupFindFirstLineA(inf.Get(), section, "CopyFiles", &line); more;
         more = SetupFindNextMatchLineA(&line, "CopyFiles", &line)) {
        if (!CopyLineIsComplete(inf.Get(), directory, line)) {
            return ERROR_FILE_NOT_FOUND;
        }
    }
    return ERROR_SUCCESS;
}
