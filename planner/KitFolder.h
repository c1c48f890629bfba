#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "CodePage.h"
#include "Dialect.h"
#include "KitSource.h"
#include "Locks.h"
#include "Machine.h"
#include "MachinePaths.h"
#include "Profile.h"

/// A file of the kit, read and taken apart once.
class KitFile
{
public:
    /// @param bytes  No value for a file that is missing or cannot be read.
    KitFile(std::filesystem::path here, std::optional<std::string> bytes, FileStamp stamp, const CodePage& codePage,
            ProfileDialect dialect);

    [[nodiscard]] const std::filesystem::path& Here() const { return m_here; }
    [[nodiscard]] const FileMark& Mark() const { return m_mark; }
    [[nodiscard]] const FileStamp& Stamp() const { return m_stamp; }
    [[nodiscard]] const Profile& Text() const { return m_profile; }

    /// @param read  Reads the section when it has not been asked for before.
    template <class Read>
    std::shared_ptr<const ModelSection> SectionOf(const char* name, Read read) const
    {
        {
            const std::shared_lock lock(m_sectionsLock);
            if (const auto found = m_sections.find(name); found != m_sections.end()) {
                return found->second;
            }
        }
        std::shared_ptr<const ModelSection> section = read();
        const std::unique_lock lock(m_sectionsLock);
        return m_sections.try_emplace(name, std::move(section)).first->second;
    }

private:
    std::filesystem::path m_here;
    FileMark m_mark;
    FileStamp m_stamp;
    Profile m_profile;
    mutable SharedMutex m_sectionsLock;
    mutable std::map<std::string, std::shared_ptr<const ModelSection>, std::less<>> m_sections;
};

/// A kit in a folder of this machine, as an installer in it would see it. Every file and folder is read once, when it
/// is first asked for, and kept. Any number of threads may use the object.
class KitFolder
{
public:
    struct Place
    {
        std::filesystem::path folder; ///< holds Morvix.ini
        std::string setupDir;         ///< the same folder on the machine, without a trailing backslash
        std::vector<FolderMap> maps;
    };
    KitFolder(Place place, ProfileDialect dialect);
    ~KitFolder() = default;
    KitFolder(const KitFolder&) = delete;
    KitFolder& operator=(const KitFolder&) = delete;

    [[nodiscard]] const Place& Where() const { return m_place; }
    [[nodiscard]] const MachinePaths& Paths() const { return m_paths; }
    [[nodiscard]] ProfileDialect Dialect() const { return m_dialect; }

    /// @param path      Full path on the machine.
    /// @param codePage  Of the machine's 8-bit calls.
    const KitFile& File(const std::string& path, uint32_t codePage);

    /// @param directoryPath  Full path on the machine, with a backslash at its end.
    /// @return the names that a search for "*.inf" finds there; null when there is no such folder.
    const std::vector<InfEntry>* InfsIn(const std::string& directoryPath);

    /// @return what could not be read or found so far, in the order of the names. A kit that has vanished since is an
    /// error.
    [[nodiscard]] std::vector<Diagnostic> Remarks() const;

private:
    struct Folder
    {
        std::once_flag once;
        std::filesystem::path here;
        std::vector<std::string> names;
        std::unordered_set<std::string_view> known; ///< the same names
        std::vector<InfEntry> infs;
    };
    struct FileSlot
    {
        std::once_flag once;
        std::unique_ptr<const KitFile> file;
        bool isAscii = false;
    };
    using FileSlots = std::unordered_map<std::string, std::unique_ptr<FileSlot>>;

    const Folder& FolderOf(const std::string& directory);
    void ReadFolder(const std::string& directory, Folder& folder);
    const FileSlot& SlotOf(FileSlots& slots, const std::string& key, const std::string& path, uint32_t codePage);
    void ReadFile(const std::string& path, uint32_t codePage, FileSlot& slot);
    std::optional<std::filesystem::path> FindFile(const std::string& path);
    const CodePage& PageOf(uint32_t number);
    [[nodiscard]] bool HasSetupIni() const;
    void Remark(Severity severity, const std::string& source, std::string what, std::string cure);

    Place m_place;
    MachinePaths m_paths;
    ProfileDialect m_dialect;
    bool m_hadSetupIni;
    mutable SharedMutex m_lock; // of the tables; what is in them is read under its own flag
    FileSlots m_files;          // by path; read in the code page that was asked for first
    FileSlots m_filesOfPage;    // by code page and path: those of which the code page makes different texts
    std::unordered_map<std::string, std::unique_ptr<Folder>> m_folders;
    std::map<uint32_t, CodePage> m_pages; // a map: profiles keep the addresses
    mutable Mutex m_remarksLock;
    std::map<std::string, Diagnostic> m_remarks; // by source: each is mentioned once
};

/// The kit as the installer on a machine of one code page reads it. Costs nothing to make.
class FolderKitSource final : public KitSource
{
public:
    FolderKitSource(KitFolder& folder, uint32_t codePage) : m_folder(folder), m_codePage(codePage) {}

    uint32_t ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                      const std::string& file) override;
    uint32_t ReadSection(const char* section, std::span<char> buffer, const std::string& file) override;
    [[nodiscard]] std::shared_ptr<const ModelSection> ReadModelSection(const char* section,
                                                                       const std::string& file) override;
    [[nodiscard]] FileMark MarkOf(const std::string& file) override;
    [[nodiscard]] std::optional<FileStamp> StampOf(const std::string& file) override;
    [[nodiscard]] std::unique_ptr<InfListing> List(const std::string& directoryPath) override;

    [[nodiscard]] const KitFile& File(const std::string& path) const;
    [[nodiscard]] KitFolder& Folder() const { return m_folder; }

private:
    KitFolder& m_folder;
    uint32_t m_codePage;
    // The file of the last question: a search asks each one several times in a row.
    mutable std::string m_lastPath;
    mutable const KitFile* m_lastFile = nullptr;
};
