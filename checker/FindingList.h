#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "CheckKit.h"
#include "FoundFiles.h"
#include "Profile.h"

/// Collects findings. One that several systems share is one finding.
class FindingList
{
public:
    explicit FindingList(KitFolder& folder) : m_folder(folder), m_files(folder.Paths()) {}

    /// @param path    Of the file on the machine.
    /// @param place   Line 0 counts as the file's beginning.
    /// @param system  Section of Morvix.ini; empty for what concerns no system.
    /// @param key     For a finding whose line does not tell it from others; empty: the line's text.
    void Add(int rule, const std::string& path, const ProfilePlace& place, const std::string& what,
             const std::string& system, const std::string& key = {});

    /// @return the findings by file, line, column and rule, each with the text of its line as its key.
    [[nodiscard]] std::vector<Finding> Sorted();

private:
    KitFolder& m_folder;
    FoundFiles m_files;
    std::vector<Finding> m_findings;
    std::map<std::tuple<int, std::string, uint32_t, uint32_t, std::string>, std::size_t> m_known;
};
