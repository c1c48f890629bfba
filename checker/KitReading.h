#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "FoundFiles.h"
#include "InfFacts.h"
#include "SystemChoice.h"

/// What the installer would read of a kit on each system, by its own code, and where in the files it is.

/// One line of a system's section, as the installer sees it.
struct IniLine
{
    std::string text;
    std::string name; ///< before the equals sign, without blanks
    ProfilePlace place;
    ProfilePlace valuePlace; ///< line 0 without an equals sign
};

/// A line that names a directory or an INF file to leave out.
struct MarkedLine
{
    const IniLine* line = nullptr;
    std::string value;
};

/// An INF file that the search meets on a system.
struct MetInf
{
    InfFacts* inf = nullptr;
    std::size_t directory = 0;            ///< place in the list of directories
    std::optional<InfVerdict> passedOver; ///< why it is, when it does not qualify
    bool isStored = false;                ///< it goes to the driver store when no file of its name was met before

    [[nodiscard]] bool Qualifies() const { return !passedOver; }
};

struct SystemReading
{
    PlannedSystem system;
    ProfilePlace place; ///< of the section; line 0 when it is missing
    std::vector<IniLine> lines;
    // The installer's answers.
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
    std::vector<std::string> sectionNames;
    std::vector<MetInf> infs; ///< in the order of the search, each file once
    bool hasMetInfs = false;

    [[nodiscard]] bool HasSection() const { return place.line != 0; }
    [[nodiscard]] std::vector<MarkedLine> LinesWith(std::string_view marker) const;
    /// @return true for a name in "InfSectionName", letter case aside.
    [[nodiscard]] bool Names(std::string_view section) const;
};

class KitReading
{
public:
    KitReading(KitFolder& folder, uint32_t codePage);
    KitReading(const KitReading&) = delete;
    KitReading& operator=(const KitReading&) = delete;

    [[nodiscard]] KitFolder& Folder() { return m_folder; }
    [[nodiscard]] FolderKitSource& Source() { return m_source; }
    [[nodiscard]] FoundFiles& Files() { return m_files; }
    [[nodiscard]] KnownIds& Ids() { return m_ids; }
    [[nodiscard]] const std::string& SetupIni() const { return m_setupIni; }
    [[nodiscard]] const Profile& SetupIniText() const { return m_source.File(m_setupIni).Text(); }

    /// @param section  Of Morvix.ini. Read when it is asked for first; valid as long as the object.
    [[nodiscard]] const SystemReading& On(const std::string& section);
    /// The same without the INF files.
    [[nodiscard]] const SystemReading& IniOn(const std::string& section);
    [[nodiscard]] InfFacts& Inf(const std::string& path);

    /// @return the directory of a line, made absolute as the installer does it.
    [[nodiscard]] std::string Resolve(const SystemReading& reading, const std::string& value);
    /// @return the number of levels that the base is above the program.
    [[nodiscard]] int LevelsToRoot();
    /// @return true for a directory of which this machine can tell what is in it: one below the base, or one in a
    ///         folder that the user has mapped.
    [[nodiscard]] bool IsKnownHere(const SystemReading& reading, const std::string& value);

    [[nodiscard]] SearchTerms TermsOf(const PlannedSystem& system) const;

private:
    SystemReading& ReadingOf(const std::string& section);
    void ReadIni(SystemReading& reading);
    void MeetInfs(SystemReading& reading);

    KitFolder& m_folder;
    uint32_t m_codePage;
    FolderKitSource m_source;
    FoundFiles m_files;
    KnownIds m_ids;
    std::string m_setupIni;
    std::map<std::string, SystemReading> m_systems;
    std::map<std::string, std::unique_ptr<InfFacts>> m_infs;
};
