#include "KitFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>
#include <utility>

#include "FileNames.h"
#include "FolderListing.h"

namespace {
FileMark MarkIn(const std::optional<std::string>& bytes)
{
    FileMark mark;
    mark.opened = bytes.has_value();
    mark.read = mark.opened;
    mark.utf16 = mark.opened && bytes->starts_with("\xFF\xFE");
    return mark;
}

FileStamp StampOfFile(const std::filesystem::path& file)
{
    std::error_code error;
    const auto bytes = std::filesystem::file_size(file, error);
    const auto written = std::filesystem::last_write_time(file, error);
    if (error) {
        return {};
    }
    return {.bytes = bytes, .writeTime = static_cast<uint64_t>(written.time_since_epoch().count())};
}

/// Such a text is the same in every code page.
bool IsAscii(std::string_view bytes)
{
    // Eight at a time: of a large kit this reads every byte.
    uint64_t all = 0;
    std::size_t at = 0;
    for (uint64_t word = 0; at + sizeof word <= bytes.size(); at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        all |= word;
    }
    return (all & 0x8080808080808080U) == 0 &&
           std::ranges::all_of(bytes.substr(at), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// The entries that a folder listed when it was read.
class KeptListing final : public InfListing
{
public:
    explicit KeptListing(const std::vector<InfEntry>& entries) : m_next(entries.begin()), m_end(entries.end()) {}

    const InfEntry* Next() override { return m_next == m_end ? nullptr : &*m_next++; }

private:
    std::vector<InfEntry>::const_iterator m_next;
    std::vector<InfEntry>::const_iterator m_end;
};
} // namespace

KitFile::KitFile(std::filesystem::path here, std::optional<std::string> bytes, FileStamp stamp,
                 const CodePage& codePage, ProfileDialect dialect)
    : m_here(std::move(here)),
      m_mark(MarkIn(bytes)),
      m_stamp(stamp),
      m_profile(std::move(bytes).value_or(std::string()), codePage, dialect)
{
}

KitFolder::KitFolder(Place place, ProfileDialect dialect)
    : m_place(std::move(place)),
      m_paths(m_place.folder, m_place.setupDir, m_place.maps),
      m_dialect(dialect),
      m_hadSetupIni(HasSetupIni())
{
}

bool KitFolder::HasSetupIni() const
{
    return FindPath(m_place.folder, "Morvix.ini").has_value();
}

const KitFile& KitFolder::File(const std::string& path, uint32_t codePage)
{
    const FileSlot& slot = SlotOf(m_files, path, path, codePage);
    if (slot.isAscii) {
        return *slot.file;
    }
    return *SlotOf(m_filesOfPage, std::to_string(codePage) + ' ' + path, path, codePage).file;
}

const KitFolder::FileSlot& KitFolder::SlotOf(FileSlots& slots, const std::string& key, const std::string& path,
                                             uint32_t codePage)
{
    FileSlot* slot = nullptr;
    {
        const std::shared_lock lock(m_lock);
        const auto found = slots.find(key);
        slot = found == slots.end() ? nullptr : found->second.get();
    }
    if (slot == nullptr) {
        const std::unique_lock lock(m_lock);
        slot = slots.try_emplace(key, std::make_unique<FileSlot>()).first->second.get();
    }
    std::call_once(slot->once, [&] { ReadFile(path, codePage, *slot); });
    return *slot;
}

void KitFolder::ReadFile(const std::string& path, uint32_t codePage, FileSlot& slot)
{
    std::optional<std::string> bytes;
    FileStamp stamp;
    const std::optional<std::filesystem::path> here = FindFile(path);
    if (here) {
        stamp = StampOfFile(*here);
        std::error_code error;
        bytes = ReadFileBytes(*here, error);
        if (error && error != std::errc::is_a_directory) {
            Remark(Severity::Error, here->string(), "cannot be read (" + error.message() + "), and counts as empty",
                   "make it readable, and plan again");
        }
    }
    slot.isAscii = !bytes || IsAscii(*bytes);
    slot.file = std::make_unique<const KitFile>(here.value_or(std::filesystem::path()), std::move(bytes), stamp,
                                                PageOf(codePage), m_dialect);
    if (!slot.file->Text().IsReadAlike()) {
        Remark(Severity::Note, here->string(), "Windows and Wine read a mark or a section name of it differently",
               "plan with --reader wine too; morvix-kit check says what changes (MK601)");
    }
}

std::optional<std::filesystem::path> KitFolder::FindFile(const std::string& path)
{
    const std::size_t backslash = path.rfind('\\');
    if (backslash == std::string::npos) {
        return std::nullopt;
    }
    const Folder& folder = FolderOf(path.substr(0, backslash + 1));
    const std::string name = path.substr(backslash + 1);
    if (folder.known.contains(name)) {
        return folder.here / name;
    }
    const std::optional<std::string> other = FindFileName(folder.names, name);
    return other ? std::optional(folder.here / *other) : std::nullopt;
}

const std::vector<InfEntry>* KitFolder::InfsIn(const std::string& directoryPath)
{
    const Folder& folder = FolderOf(directoryPath);
    return folder.infs.empty() ? nullptr : &folder.infs;
}

const KitFolder::Folder& KitFolder::FolderOf(const std::string& directory)
{
    Folder* folder = nullptr;
    {
        const std::shared_lock lock(m_lock);
        const auto found = m_folders.find(directory);
        folder = found == m_folders.end() ? nullptr : found->second.get();
    }
    if (folder == nullptr) {
        const std::unique_lock lock(m_lock);
        folder = m_folders.try_emplace(directory, std::make_unique<Folder>()).first->second.get();
    }
    std::call_once(folder->once, [&] { ReadFolder(directory, *folder); });
    return *folder;
}

void KitFolder::ReadFolder(const std::string& directory, Folder& folder)
{
    if (!m_paths.IsCovered(directory)) {
        Remark(Severity::Warning, directory, "is a folder of the machine that is not known here, and counts as missing",
               "say with --map '" + directory.substr(0, directory.find('\\') + 1) + "=DIR' where its files are");
        return;
    }
    const std::optional<std::filesystem::path> here = m_paths.Find(directory);
    std::error_code error;
    if (!here || !std::filesystem::is_directory(*here, error)) {
        return;
    }
    const std::filesystem::directory_iterator opened(*here, error);
    if (error) {
        Remark(Severity::Error, here->string(), "cannot be read (" + error.message() + "), and counts as empty",
               "make it readable, and plan again");
        return;
    }
    folder.here = *here;
    folder.names = NamesIn(*here);
    folder.known.insert(folder.names.begin(), folder.names.end());
    for (std::string& name : ListInfNames(folder.names)) {
        folder.infs.push_back({.name = std::move(name), .stamp = std::nullopt});
    }
}

const CodePage& KitFolder::PageOf(uint32_t number)
{
    const std::unique_lock lock(m_lock);
    return m_pages.try_emplace(number, number).first->second;
}

void KitFolder::Remark(Severity severity, const std::string& source, std::string what, std::string cure)
{
    const std::lock_guard lock(m_remarksLock);
    m_remarks.try_emplace(
        source,
        Diagnostic{
            .severity = severity, .source = source, .line = 0, .what = std::move(what), .cure = std::move(cure)});
}

std::vector<Diagnostic> KitFolder::Remarks() const
{
    const std::lock_guard lock(m_remarksLock);
    std::vector<Diagnostic> remarks;
    for (const auto& [source, remark] : m_remarks) {
        remarks.push_back(remark);
    }
    if (m_hadSetupIni && !HasSetupIni()) {
        remarks.push_back({.severity = Severity::Error,
                           .source = m_place.folder.string(),
                           .line = 0,
                           .what = "has vanished while it was read: files that were not read before count as missing",
                           .cure = "plan again when the folder is back"});
    }
    return remarks;
}

const KitFile& FolderKitSource::File(const std::string& path) const
{
    if (m_lastFile == nullptr || path != m_lastPath) {
        m_lastFile = &m_folder.File(path, m_codePage);
        m_lastPath = path;
    }
    return *m_lastFile;
}

uint32_t FolderKitSource::ReadText(const char* section, const char* key, const char* defaultText,
                                   std::span<char> buffer, const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    return File(file).Text().ReadString(section, key, defaultText, buffer);
}

uint32_t FolderKitSource::ReadSection(const char* section, std::span<char> buffer, const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    const Profile& profile = File(file).Text();
    profile.ReadString(nullptr, nullptr, nullptr, buffer);
    return profile.ReadSection(section, buffer);
}

std::shared_ptr<const ModelSection> FolderKitSource::ReadModelSection(const char* section, const std::string& file)
{
    return File(file).SectionOf(section, [&] { return KitSource::ReadModelSection(section, file); });
}

FileMark FolderKitSource::MarkOf(const std::string& file)
{
    return File(file).Mark();
}

std::optional<FileStamp> FolderKitSource::StampOf(const std::string& file)
{
    const KitFile& found = File(file);
    return found.Mark().opened ? std::optional(found.Stamp()) : std::nullopt;
}

std::unique_ptr<InfListing> FolderKitSource::List(const std::string& directoryPath)
{
    const std::vector<InfEntry>* const entries = m_folder.InfsIn(directoryPath);
    return entries == nullptr ? nullptr : std::make_unique<KeptListing>(*entries);
}
