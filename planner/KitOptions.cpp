#include "KitOptions.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "DeviceSearcher.h"
#include "FolderListing.h"
#include "KitLists.h"
#include "Printable.h"

namespace {
constexpr char kSetupIni[] = "Morvix.ini";

std::optional<FolderMap> ParseMap(const std::string& text, std::string& problem)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
        problem = "--map " + Printable(text) + ": not of the form FOLDER=DIR, such as --map 'D:\\=/srv/drivers'";
        return std::nullopt;
    }
    FolderMap map{.onMachine = text.substr(0, equals), .here = text.substr(equals + 1)};
    std::error_code error;
    if (!std::filesystem::is_directory(map.here, error)) {
        problem = "--map " + Printable(text) + ": " + Printable(map.here.string()) + " is not a folder here";
        return std::nullopt;
    }
    return map;
}

bool IsKit(const std::filesystem::path& folder, std::string& problem)
{
    const std::string name = Printable(folder.string());
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        problem = name + ": no such folder; KIT is the folder that holds Morvix.ini";
        return false;
    }
    const auto ini = FindPath(folder, kSetupIni);
    if (!ini) {
        problem = name + ": holds no Morvix.ini, or cannot be listed; KIT is the folder that holds it";
        return false;
    }
    if (!ReadFileBytes(*ini, error)) {
        problem = Printable(ini->string()) + ": cannot be read (" + error.message() + "); make it readable";
        return false;
    }
    return true;
}

/// How deep the installer's directory must be for the setup INI's base to be a folder above it.
int LevelsToRoot(const KitFolder::Place& place, ProfileDialect reader)
{
    constexpr uint32_t kAnyCodePage = 1252;
    KitFolder kit(place, reader);
    FolderKitSource source(kit, kAnyCodePage);
    SilentLog silent;
    std::vector<std::string> stored;
    const KitQuestion question(source, silent, {}, stored);
    return ReadLevelsToRoot(question.Search());
}
} // namespace

std::unique_ptr<KitFolder> OpenKit(const KitOptions& options, std::string& problem)
{
    KitFolder::Place place{.folder = options.folder, .setupDir = options.setupDir, .maps = {}};
    if (!IsKit(place.folder, problem)) {
        return nullptr;
    }
    for (const std::string& text : options.maps) {
        std::optional<FolderMap> map = ParseMap(text, problem);
        if (!map) {
            return nullptr;
        }
        place.maps.push_back(*std::move(map));
    }
    if (place.setupDir.empty()) {
        place.setupDir = AssumedSetupDir(0);
        place.setupDir = AssumedSetupDir(LevelsToRoot(place, options.reader));
    }
    while (place.setupDir.ends_with('\\')) {
        place.setupDir.pop_back();
    }
    return std::make_unique<KitFolder>(std::move(place), options.reader);
}
