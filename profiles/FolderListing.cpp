#include "FolderListing.h"

#include <array>
#include <fstream>
#include <system_error>

#include "FileNames.h"

std::vector<std::string> NamesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        names.push_back(entry->path().filename().string());
        entry.increment(error);
    }
    return names;
}

std::optional<std::filesystem::path> FindPath(const std::filesystem::path& folder, std::string_view path)
{
    std::filesystem::path place = folder;
    while (!path.empty()) {
        const std::size_t end = path.find_first_of("\\/");
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(end == std::string_view::npos ? path.size() : end + 1);
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            place /= part;
            continue;
        }
        const auto name = FindFileName(NamesIn(place), part);
        if (!name) {
            return std::nullopt;
        }
        place /= *name;
    }
    std::error_code error;
    return std::filesystem::exists(place, error) ? std::optional(place) : std::nullopt;
}

std::optional<std::string> ReadFileBytes(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string bytes;
    if (const auto size = std::filesystem::file_size(file, error); !error) {
        bytes.reserve(size);
    }
    // Not byte by byte: a kit has tens of megabytes.
    std::array<char, 16384> block; // NOLINT(cppcoreguidelines-pro-type-member-init): only what was read is looked at
    while (stream.read(block.data(), block.size()) || stream.gcount() != 0) {
        bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    return stream.bad() || !stream.is_open() ? std::nullopt : std::optional(std::move(bytes));
}
