#include "Bundle.h"

#include <windows.h>

#include <cstdlib>
#include <filesystem>

#include "TestFiles.h"

namespace {
std::string FolderFromEnvironment(const char* name, const std::string& otherwise)
{
    const char* value = std::getenv(name);
    const std::string given = value == nullptr || *value == '\0' ? otherwise : value;
    // Whole, because other programs get paths below it and have other current directories.
    std::string path = std::filesystem::absolute(given).make_preferred().string();
    while (path.ends_with('\\')) {
        path.pop_back();
    }
    return path;
}

std::string BundleFolder()
{
    const std::string ownFolder = TestFile("");
    const std::size_t last = ownFolder.rfind('\\', ownFolder.size() - 2);
    return FolderFromEnvironment("MORVIX_PROOF", ownFolder.substr(0, last));
}
} // namespace

void UseBundle()
{
    _putenv(("MORVIX_DIST=" + BundleFolder() + "\\dist").c_str());
}

std::string PackagePath(const std::string& name)
{
    return BundleFolder() + "\\packages\\" + name;
}

std::string ResultFile(const std::string& name)
{
    const std::string folder = FolderFromEnvironment("MORVIX_PROOF_RESULTS", BundleFolder() + "\\results");
    std::filesystem::create_directories(folder);
    DeleteFileA((folder + "\\" + name).c_str());
    return folder + "\\" + name;
}
