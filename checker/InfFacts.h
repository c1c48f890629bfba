#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceSearcher.h"
#include "DriverVersion.h"
#include "SetupInf.h"

/// One INF file of the kit, as the installer reads it beside what set-up makes of it.

/// A line of a model section.
struct ModelEntry
{
    ProfilePlace place;
    std::string text;                     ///< "name=value"
    bool isRead = false;                  ///< it lies before the cut of a long section
    std::optional<std::string> found;     ///< the ID that the installer compares, in upper case
    const SetupInf::Line* line = nullptr; ///< the line of set-up that begins here; null within a continued one
    std::string setupId;                  ///< the first ID of that line in the form that is compared

    /// @return the hardware ID as set-up reads it; empty when there is none.
    [[nodiscard]] std::string_view HardwareId() const { return line == nullptr ? std::string_view() : line->Field(1); }
    [[nodiscard]] std::string_view InstallSection() const
    {
        return line == nullptr ? std::string_view() : line->Field(0);
    }
    bool servesDevice = false; ///< the installer finds an ID of an accepted vendor here that a pass searches
};

class InfFacts
{
public:
    /// @param path  On the machine.
    InfFacts(std::string path, FolderKitSource& source);
    InfFacts(const InfFacts&) = delete;
    InfFacts& operator=(const InfFacts&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::string_view FileName() const { return FileNameIn(m_path); }
    [[nodiscard]] const Profile& Text() const { return m_text; }
    [[nodiscard]] const SetupInf& Setup() const { return m_setup; }
    [[nodiscard]] const DriverVersion& Version() const { return m_version; }
    [[nodiscard]] bool IsOfNetworkClass() const;

    /// @return the entries of the first section of the name, which is the one that the installer reads.
    [[nodiscard]] const std::vector<ModelEntry>& EntriesOf(const std::string& section);
    /// @return the place of a section's name; the file's beginning when there is none.
    [[nodiscard]] ProfilePlace PlaceOfSection(std::string_view section) const;
    /// @return the place of a section's line, or of the section.
    [[nodiscard]] ProfilePlace PlaceOfKey(std::string_view section, std::string_view key) const;

    /// @return the names of all model sections that [Manufacturer] leads to and that exist, for whatever system.
    [[nodiscard]] const std::vector<std::string>& ModelSections();
    /// @return true when one of them, or one of `others`, lists an ID of an accepted vendor: the file is meant for the
    ///         kit's adapters.
    [[nodiscard]] bool IsMeantForOurs(const std::vector<std::string>& others);

private:
    std::vector<ModelEntry> ReadEntries(const std::string& section) const;

    std::string m_path;
    FolderKitSource& m_source;
    const Profile& m_text;
    SetupInf m_setup;
    DriverVersion m_version;
    std::map<std::string, std::vector<ModelEntry>, std::less<>> m_entries;
    std::optional<std::vector<std::string>> m_modelSections;
    std::optional<bool> m_isMeantForOurs;
};
