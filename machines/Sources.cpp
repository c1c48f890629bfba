#include "Sources.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <utility>

#include "StoredText.h"

namespace {
namespace fs = std::filesystem;

// A list may name lists; one that names itself would never end.
constexpr int kMostListsInLists = 8;

std::u16string UpperCaseFileName(const fs::path& path)
{
    return UpperCaseName(FromUtf8(path.filename().string()));
}

/// An export, or a SYSTEM hive, by its name.
bool LooksLikeMachine(const fs::path& path)
{
    constexpr std::array kEndings = std::to_array<std::u16string_view>({u".REG", u".HIV", u".HIVE"});
    const std::u16string name = UpperCaseFileName(path);
    return name == u"SYSTEM" ||
           std::ranges::any_of(kEndings, [&name](std::u16string_view ending) { return name.ends_with(ending); });
}

class Expansion
{
public:
    void Add(const std::string& argument, const fs::path& base, int depth)
    {
        if (argument == "-") {
            m_found.sources.push_back({.place = MachineSource::Place::StandardInput, .path = argument});
        } else if (argument == "live") {
            m_found.sources.push_back({.place = MachineSource::Place::ThisMachine, .path = argument});
        } else if (argument.starts_with('@')) {
            AddList(base / fs::path(argument.substr(1)), depth);
        } else {
            AddPath(base / fs::path(argument));
        }
    }
    [[nodiscard]] MachineSources Take() { return std::move(m_found); }

private:
    void Complain(const fs::path& path, std::string what, std::string cure = {})
    {
        m_found.diagnostics.push_back({.severity = Severity::Error,
                                       .source = path.string(),
                                       .line = 0,
                                       .what = std::move(what),
                                       .cure = std::move(cure)});
    }

    void AddPath(const fs::path& path)
    {
        std::error_code error;
        const fs::file_status status = fs::status(path, error);
        if (!fs::exists(status)) {
            const bool isMissing = status.type() == fs::file_type::not_found;
            Complain(path, isMissing ? "no such file or folder" : "cannot be opened: " + error.message());
        } else if (fs::is_directory(status)) {
            AddFolder(path);
        } else {
            m_found.sources.push_back({.place = MachineSource::Place::File, .path = path.string()});
        }
    }

    void AddFolder(const fs::path& folder)
    {
        std::error_code error;
        std::vector<std::pair<std::u16string, std::string>> files;
        for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
            std::error_code ignored;
            if (LooksLikeMachine(at->path()) && !at->is_directory(ignored)) {
                files.emplace_back(UpperCaseFileName(at->path()), at->path().string());
            }
        }
        if (error) {
            Complain(folder, "cannot be listed: " + error.message());
        } else if (files.empty()) {
            Complain(folder, "has no registry exports (.reg) and no SYSTEM hive", "name the files");
        }
        // Names that differ in letter case only keep an order of their own.
        std::ranges::sort(files);
        for (auto& [upper, path] : files) {
            m_found.sources.push_back({.place = MachineSource::Place::File, .path = std::move(path)});
        }
    }

    void AddList(const fs::path& list, int depth)
    {
        if (depth == kMostListsInLists) {
            Complain(list, "lists are nested too deeply; does this one name itself?");
            return;
        }
        std::error_code ignored;
        std::ifstream lines(list, std::ios::binary);
        if (!lines || fs::is_directory(list, ignored)) {
            Complain(list, "the list cannot be opened");
            return;
        }
        std::string line;
        while (std::getline(lines, line)) {
            constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
            std::string_view argument = line;
            argument.remove_prefix(argument.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
            while (argument.ends_with('\r') || argument.ends_with(' ') || argument.ends_with('\t')) {
                argument.remove_suffix(1);
            }
            if (!argument.empty() && !argument.starts_with('#')) {
                Add(std::string(argument), list.parent_path(), depth + 1);
            }
        }
        if (lines.bad()) {
            Complain(list, "the list cannot be read to its end");
        }
    }

    MachineSources m_found;
};
} // namespace

MachineSources ExpandSources(std::span<const std::string> arguments)
{
    Expansion expansion;
    for (const std::string& argument : arguments) {
        expansion.Add(argument, {}, 0);
    }
    return expansion.Take();
}

std::vector<std::string> PathsOf(const MachineSources& machines)
{
    std::vector<std::string> paths;
    for (const MachineSource& source : machines.sources) {
        if (source.place == MachineSource::Place::File) {
            paths.push_back(source.path);
        }
    }
    return paths;
}
