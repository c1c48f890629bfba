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
    bool looseFile = false; ///< the disk has no cabinet or tag file
};

/// Reads field `number` of a line into `text`, which is empty when the line has no such field.
/// @return true when it is not empty.
bool FieldOf(const SetupApi& api, INFCONTEXT& line, DWORD number, PathBuffer& text) noexcept
{
    text[0] = '\0';
    return api.getStringField(&line, number, text, MAX_PATH, nullptr) && text[0] != '\0';
}

bool FindSourcePlace(const Inf& inf, const char* file, SourcePlace& place) noexcept
{
    const SetupApi& api = inf.Api();
    // On some systems the platform's own look-up of this line returns the disk's directory instead of the file's.
    INFCONTEXT line{};
    INT disk = 0;
    if ((!api.findFirstLine(inf.Get(), "SourceDisksFiles.amd64", file, &line) &&
         !api.findFirstLine(inf.Get(), "SourceDisksFiles", file, &line)) ||
        !api.getIntField(&line, 1, &disk)) {
        return false;
    }
    FieldOf(api, line, 2, place.filePath);
    const auto diskNumber = static_cast<UINT>(disk);
    if (!api.getSourceInfo(inf.Get(), diskNumber, SRCINFO_PATH, place.diskPath, MAX_PATH, nullptr)) {
        place.diskPath[0] = '\0';
    }
    PathBuffer tag{};
    place.looseFile =
        !api.getSourceInfo(inf.Get(), diskNumber, SRCINFO_TAGFILE, tag, MAX_PATH, nullptr) || tag[0] == '\0';
    return true;
}

/// Appends a backslash and `part` to `path`, unless `part` is empty or consists of backslashes only.
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

/// @return true when `file` is where the INF says, or in a place that is not checked.
bool IsPresent(const Inf& inf, const char* infDirectory, const char* file) noexcept
{
    SourcePlace place;
    if (!FindSourcePlace(inf, file, place) || !place.looseFile) {
        return true;
    }
    // Large enough for all four parts; a path that is longer than the platform allows is not found.
    char path[5 * MAX_PATH] = {};
    std::snprintf(path, sizeof(path), "%s", infDirectory);
    AppendPart(path, sizeof(path), place.diskPath);
    AppendPart(path, sizeof(path), place.filePath);
    AppendPart(path, sizeof(path), file);
    if (Exists(path)) {
        return true;
    }
    // The name of a compressed file ends with an underscore in place of its last character.
    path[std::strlen(path) - 1] = '_';
    return Exists(path);
}

bool SectionIsComplete(const Inf& inf, const char* infDirectory, const char* copySection) noexcept
{
    const SetupApi& api = inf.Api();
    INFCONTEXT line{};
    for (BOOL more = api.findFirstLine(inf.Get(), copySection, nullptr, &line); more;
         more = api.findNextLine(&line, &line)) {
        PathBuffer name;
        // The second field is the name in the kit, if it differs from the name on the system.
        if ((FieldOf(api, line, 2, name) || FieldOf(api, line, 1, name)) && !IsPresent(inf, infDirectory, name)) {
            return false;
        }
    }
    return true;
}

/// Checks every section and file of one CopyFiles line.
bool CopyLineIsComplete(const Inf& inf, const char* infDirectory, INFCONTEXT& line) noexcept
{
    const DWORD fields = inf.Api().getFieldCount(&line);
    for (DWORD field = 1; field <= fields; ++field) {
        PathBuffer entry;
        if (!FieldOf(inf.Api(), line, field, entry)) {
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

uint32_t CheckSourceFiles(const SetupApi& api, const char* infPath, const char* installSection) noexcept
{
    const Inf inf(api, infPath);
    if (!inf.IsOpen()) {
        return FailureReason();
    }
    PathBuffer directory{};
    char* name = nullptr;
    PathBuffer section{};
    if (GetFullPathNameA(infPath, MAX_PATH, directory, &name) >= MAX_PATH || name == nullptr ||
        !api.getActualSectionToInstall(inf.Get(), installSection, section, MAX_PATH, nullptr, nullptr)) {
        return FailureReason();
    }
    *name = '\0';
    INFCONTEXT line{};
    for (BOOL more = api.findFirstLine(inf.Get(), section, "CopyFiles", &line); more;
         more = api.findNextMatchLine(&line, "CopyFiles", &line)) {
        if (!CopyLineIsComplete(inf, directory, line)) {
            return ERROR_FILE_NOT_FOUND;
        }
    }
    return ERROR_SUCCESS;
}
