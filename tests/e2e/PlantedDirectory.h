#pragma once

#include <string>

#include "Environment.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"

/// A current directory with planted libraries, on a system that an administrator has configured to search it early.
class PlantedDirectory
{
public:
    PlantedDirectory() { SetRegistryNumber(kKey, kMode, 0); }

    void Plant(const std::string& name) const { CopyFileTo(DoublesFolder() + R"(\planted.dll)", m_folder.At(name)); }
    [[nodiscard]] const std::string& Path() const { return m_folder.Path(); }
    [[nodiscard]] std::string Journal() const
    {
        const std::string journal = m_folder.At("journal.txt");
        return FileExists(journal) ? ReadFileBytes(journal) : std::string();
    }

private:
    static constexpr char kKey[] = R"(System\CurrentControlSet\Control\Session Manager)";
    static constexpr char kMode[] = "SafeDllSearchMode";

    ScratchDirectory m_folder;
    SavedRegistryValue m_searchMode{kKey, kMode};
};
