#include "PathResolution.h"

namespace {
constexpr int kMostLevels = 260;

std::string BaseOf(const std::string& setupDir, int levelsToRoot, LeadByteTest isLeadByte)
{
    std::string base = setupDir;
    if (levelsToRoot >= 1 && levelsToRoot <= kMostLevels) {
        for (int level = 0; level < levelsToRoot; ++level) {
            base = base.substr(0, LastBackslash(base, isLeadByte));
        }
    }
    return base;
}
} // namespace

std::size_t LastBackslash(std::string_view path, LeadByteTest isLeadByte)
{
    std::size_t last = std::string_view::npos;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (isLeadByte(static_cast<unsigned char>(path[at]))) {
            ++at;
        } else if (path[at] == '\\') {
            last = at;
        }
    }
    return last;
}

bool IsAbsolutePath(std::string_view path)
{
    return path.find(':') != std::string_view::npos;
}

std::string ResolveRelativePath(const std::string& path, const std::string& setupDir, int levelsToRoot,
                                LeadByteTest isLeadByte)
{
    std::string base = BaseOf(setupDir, levelsToRoot, isLeadByte);
    if (path.starts_with('\\')) {
        return base.substr(0, 2) + path;
    }
    if (path.starts_with('.')) {
        // The rest of the path is dropped on purpose: "." and everything that begins with it name the base.
        return base;
    }
    return WithTrailingBackslash(base, isLeadByte) + path;
}

std::string WithTrailingBackslash(std::string directory, LeadByteTest isLeadByte)
{
    if (directory.empty() || LastBackslash(directory, isLeadByte) != directory.size() - 1) {
        directory += '\\';
    }
    return directory;
}

std::string BaseNameOf(std::string_view fileName)
{
    return std::string(fileName.substr(0, fileName.rfind('.')));
}
