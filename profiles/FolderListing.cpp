#include "FolderListing.h"

#include <array>
#include <cerrno>
#include <fstream>

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

namespace {
/// The streams of the library leave the cause in `errno`; not every one of theirs does.
std::error_code CauseOfTheStream()
{
    return {errno == 0 ? EIO : errno, std::generic_category()};
}
} // namespace

std::optional<std::string> ReadFileBytes(const std::filesystem::path& file, std::error_code& error)
{
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    if (!std::filesystem::is_regular_file(status)) {
        if (!error) {
            error = make_error_code(std::filesystem::is_directory(status) ? std::errc::is_a_directory
                                                                          : std::errc::not_supported);
        }
        return std::nullopt;
    }
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream.is_open()) {
        error = CauseOfTheStream();
        return std::nullopt;
    }
    std::string bytes;
    if (const auto size = std::filesystem::file_size(file, error); !error) {
        bytes.reserve(size);
    }
    error.clear();
    errno = 0;
    // Not byte by byte: a kit has tens of megabytes.
    std::array<char, 16384> block; // NOLINT(cppcoreguidelines-pro-type-member-init): only what was read is looked at
    while (stream.read(block.data(), block.size()) || stream.gcount() != 0) {
        bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad()) {
        error = CauseOfTheStream();
        return std::nullopt;
    }
    return bytes;
}

std::optional<std::string> ReadFileBytes(const std::filesystem::path& file)
{
    std::error_code error;
    return ReadFileBytes(file, error);
}
