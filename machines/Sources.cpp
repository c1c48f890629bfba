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

// How many lists may name each other in a row.
constexpr std::size_t kMostListsInLists = 8;

/// Without the mark of a file in UTF-8, and without blanks on either side.
std::string_view ArgumentIn(std::string_view line)
{
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    constexpr std::string_view kBlanks = " \t\r";
    line.remove_prefix(line.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

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
    void Add(const std::string& argument, const fs::path& base)
    {
        if (argument == "-") {
            m_found.sources.push_back({.place = MachineSource::Place::StandardInput, .path = argument});
        } else if (argument == "live") {
            m_found.sources.push_back({.place = MachineSource::Place::ThisMachine, .path = argument});
        } else if (argument.starts_with('@')) {
            AddList(base / fs::path(argument.substr(1)));
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

    void AddList(const fs::path& list)
    {
        std::error_code error;
        const fs::path canonical = fs::weakly_canonical(list, error);
        if (std::ranges::find(m_open, canonical) != m_open.end()) {
            Complain(list, "the list names itself", "remove the line that names it");
            return;
        }
        if (m_open.size() == kMostListsInLists) {
            Complain(list, "lists are nested too deeply", "name its machines in the list that names it");
            return;
        }
        std::ifstream lines(list, std::ios::binary);
        if (!lines || fs::is_directory(list, error)) {
            Complain(list, "the list cannot be opened", "name a text file with one machine a line");
            return;
        }
        m_open.push_back(canonical);
        std::string line;
        while (std::getline(lines, line)) {
            const std::string_view argument = ArgumentIn(line);
            if (!argument.empty() && !argument.starts_with('#')) {
                Add(std::string(argument), list.parent_path());
            }
        }
        if (lines.bad()) {
            Complain(list, "the list cannot be read to its end", "copy it and try again");
        }
        m_open.pop_back();
    }

    std::vector<fs::path> m_open; // the lists that are being read, each named by the one before
    MachineSources m_found;
};
} // namespace

MachineSources ExpandSources(std::span<const std::string> arguments)
{
    Expansion expansion;
    for (const std::string& argument : arguments) {
        expansion.Add(argument, {});
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
