#include "PathResolution.h"

#include "TwoByteText.h"

namespace {
constexpr int kMostLevels = 260;

std::string BaseOf(const std::string& setupDir, int levelsToRoot, LeadByteTest isLeadByte)
{
    std::string base = setupDir;
    if (levelsToRoot <= kMostLevels) {
        for (int level = 0; level < levelsToRoot; ++level) {
            base = base.substr(0, LastBackslash(base, isLeadByte));
        }
    }
    return base;
}
} // namespace

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
    if (!EndsWithBackslash(directory, isLeadByte)) {
        directory += '\\';
    }
    return directory;
}

std::string BaseNameOf(std::string_view fileName)
{
    return std::string(fileName.substr(0, fileName.rfind('.')));
}
