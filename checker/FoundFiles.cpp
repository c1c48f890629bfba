#include "FoundFiles.h"

#include "FileNames.h"
#include "FolderListing.h"

const std::optional<std::filesystem::path>& FoundFiles::Find(const std::string& path)
{
    const auto known = m_files.find(path);
    return known != m_files.end() ? known->second : m_files.emplace(path, Look(path)).first->second;
}

std::optional<std::filesystem::path> FoundFiles::Look(const std::string& path)
{
    const std::size_t end = path.find_last_of("\\/");
    const std::string name = end == std::string::npos ? std::string() : path.substr(end + 1);
    if (name.empty() || name == "." || name == "..") {
        return m_paths.Find(path);
    }
    const Folder& folder = FolderOf(path.substr(0, end + 1));
    const std::optional<std::string> found = FindFileName(folder.names, name);
    std::error_code error;
    return found && std::filesystem::exists(*folder.here / *found, error) ? std::optional(*folder.here / *found)
                                                                          : std::nullopt;
}

const FoundFiles::Folder& FoundFiles::FolderOf(const std::string& directory)
{
    const auto [known, isNew] = m_folders.try_emplace(directory);
    if (isNew) {
        known->second.here = m_paths.Find(directory);
        if (known->second.here) {
            known->second.names = NamesIn(*known->second.here);
        }
    }
    return known->second;
}
