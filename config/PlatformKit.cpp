#include "PlatformKit.h"

#include <windows.h>

#include <utility>

#include "AnswerReuse.h"
#include "Handles.h"
#include "ProfileReading.h"

namespace {
uint64_t Joined(DWORD high, DWORD low)
{
    return (uint64_t{high} << 32U) | low;
}

/// @param file  Either of the platform's records of a file's attributes; the names of the fields are the same.
template <class Attributes>
std::optional<FileStamp> StampFrom(const Attributes& file)
{
    // The entry of a link describes the link, not the file that it leads to.
    if ((file.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return std::nullopt;
    }
    return FileStamp{.bytes = Joined(file.nFileSizeHigh, file.nFileSizeLow),
                     .writeTime = Joined(file.ftLastWriteTime.dwHighDateTime, file.ftLastWriteTime.dwLowDateTime)};
}

class PlatformListing final : public InfListing
{
public:
    explicit PlatformListing(std::string directory)
        : m_directory(std::move(directory)), m_search(FindFirstFileA((m_directory + "*.inf").c_str(), &m_file))
    {
    }
    ~PlatformListing() override
    {
        // The search stays open for the rest of the run: one handle per directory searched, by design.
        static_cast<void>(m_search.Release());
    }
    PlatformListing(const PlatformListing&) = delete;
    PlatformListing& operator=(const PlatformListing&) = delete;

    [[nodiscard]] bool IsOpen() const { return m_search.IsOpen(); }

    [[nodiscard]] const InfEntry* Next() override
    {
        m_visit.reset();
        if (!std::exchange(m_isFirst, false) && FindNextFileA(m_search.Get(), &m_file) == FALSE) {
            return nullptr;
        }
        m_entry = {.name = m_file.cFileName, .stamp = StampFrom(m_file)};
        m_visit.emplace(m_directory + m_entry.name, m_file);
        return &m_entry;
    }

private:
    std::string m_directory;
    WIN32_FIND_DATAA m_file{};
    UniqueSearch m_search;
    bool m_isFirst = true;
    InfEntry m_entry;
    std::optional<FileVisit> m_visit;
};
} // namespace

uint32_t PlatformKit::ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                               const std::string& file)
{
    return ReadProfileText(section, key, defaultText, buffer, file);
}

uint32_t PlatformKit::ReadSection(const char* section, std::span<char> buffer, const std::string& file)
{
    return ReadProfileSection(section, buffer, file);
}

std::shared_ptr<const ModelSection> PlatformKit::ReadModelSection(const char* section, const std::string& file)
{
    return ::ReadModelSection(section, file);
}

FileMark PlatformKit::MarkOf(const std::string& file)
{
    return ::MarkOf(file);
}

std::optional<FileStamp> PlatformKit::StampOf(const std::string& file)
{
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    return GetFileAttributesExA(file.c_str(), GetFileExInfoStandard, &attributes) == FALSE ? std::nullopt
                                                                                           : StampFrom(attributes);
}

std::unique_ptr<InfListing> PlatformKit::List(const std::string& directoryPath)
{
    auto listing = std::make_unique<PlatformListing>(directoryPath);
    return listing->IsOpen() ? std::move(listing) : nullptr;
}
