#include "AgentLibraries.h"

#include <algorithm>

#include "AsciiCase.h"
#include "TwoByteText.h"

namespace {
constexpr std::string_view kExtension = ".DLL";

bool SameName(std::string_view left, std::string_view right) noexcept
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerAscii(a) == LowerAscii(b); });
}

bool IsLetter(char c) noexcept
{
    return LowerAscii(c) >= 'a' && LowerAscii(c) <= 'z';
}

bool IsFullPath(std::string_view path) noexcept
{
    const bool onDrive = path.size() >= 3 && IsLetter(path[0]) && path[1] == ':' && path[2] == '\\';
    return onDrive || (path.size() > 2 && path.starts_with(R"(\\)"));
}
} // namespace

const AgentLibrary* FindAgentLibrary(std::span<const AgentLibrary> libraries, std::string_view shortName) noexcept
{
    const auto found = std::find_if(libraries.begin(), libraries.end(), [&](const AgentLibrary& library) {
        return SameName(library.shortName, shortName);
    });
    return found == libraries.end() ? nullptr : &*found;
}

std::optional<std::string> AgentLibraryPath(std::string_view directory, std::string_view fileName,
                                            LeadByteTest isLeadByte)
{
    if (!IsFullPath(directory) || fileName.empty()) {
        return std::nullopt;
    }
    std::string path(directory);
    if (!EndsWithBackslash(path, isLeadByte)) {
        path += '\\';
    }
    path += fileName;
    path += kExtension;
    return path;
}
