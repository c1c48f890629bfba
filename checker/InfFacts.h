#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceSearcher.h"
#include "DriverVersion.h"
#include "KnownIds.h"
#include "SetupInf.h"
#include "SetupModels.h"

/// One INF file of the kit, as the installer reads it beside what set-up makes of it.

/// A line of a model section.
struct ModelEntry
{
    ProfilePlace place;
    bool isRead = false;              ///< it lies before the cut of a long section
    bool isLong = false;              ///< only a part of it is looked at
    bool isSetupLine = false;         ///< a line of set-up begins here; false within a continued one
    const KnownId* found = nullptr;   ///< the ID that the installer compares; null when it finds none
    std::string_view installSection;  ///< as set-up reads it
    std::string_view hardwareId;      ///< the first one, as set-up reads it; empty when there is none
    const KnownId* setupId = nullptr; ///< the same in the form that is compared; never null

    /// @return true when the installer finds an ID of an accepted vendor here that a pass searches.
    [[nodiscard]] bool ServesDevice() const { return found != nullptr && found->servesDevice; }
};

/// An ID and the line that has it.
struct PlacedId
{
    ProfilePlace place;
    const KnownId* id = nullptr;
};

/// The model sections of one name. The installer reads the first one, set-up all of them.
struct ModelLines
{
    std::vector<ModelEntry> entries;      ///< of the first one
    std::vector<PlacedId> following;      ///< further IDs of the lines that the installer reads, if they serve a device
    std::vector<const KnownId*> setupIds; ///< all IDs that set-up reads, sorted by address
    /// The first ID of an accepted vendor in a later section that the first one does not list, at that section's name.
    std::optional<PlacedId> repeated;
    bool listsOurs = false; ///< set-up reads an ID of an accepted vendor
};

class InfFacts
{
public:
    /// @param path  On the machine.
    /// @param ids   Of all files of the kit.
    InfFacts(std::string path, FolderKitSource& source, KnownIds& ids);
    InfFacts(const InfFacts&) = delete;
    InfFacts& operator=(const InfFacts&) = delete;

    [[nodiscard]] const std::string& Path() const { return m_path; }
    [[nodiscard]] std::string_view FileName() const { return FileNameIn(m_path); }
    [[nodiscard]] const Profile& Text() const { return m_text; }
    [[nodiscard]] const SetupInf& Setup() const { return m_setup; }
    [[nodiscard]] const DriverVersion& Version() const { return m_version; }
    [[nodiscard]] bool IsOfNetworkClass() const;

    /// @return the lines of a model section; none when it is missing.
    [[nodiscard]] const ModelLines& LinesOf(const std::string& section);
    [[nodiscard]] const std::vector<ModelEntry>& EntriesOf(const std::string& section)
    {
        return LinesOf(section).entries;
    }
    /// @return what [Manufacturer] leads to.
    [[nodiscard]] const std::vector<ModelsOfMaker>& Makers();
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
    [[nodiscard]] ModelLines ReadLines(const std::string& section) const;
    [[nodiscard]] std::vector<ModelEntry> ReadEntries(std::size_t section, const char* name) const;
    void AddSetup(std::size_t section, ModelLines& lines) const;

    std::string m_path;
    FolderKitSource& m_source;
    KnownIds& m_ids;
    const Profile& m_text;
    SetupInf m_setup;
    DriverVersion m_version;
    std::map<std::string, ModelLines, std::less<>> m_modelLines;
    std::optional<std::vector<ModelsOfMaker>> m_makers;
    std::optional<std::vector<std::string>> m_modelSections;
};
