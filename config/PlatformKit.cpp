#include "PlatformKit.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>

#include "Handles.h"

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
    explicit PlatformListing(const std::string& directoryPath)
        : m_search(FindFirstFileA((directoryPath + "*.inf").c_str(), &m_file))
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
        if (!std::exchange(m_isFirst, false) && FindNextFileA(m_search.Get(), &m_file) == FALSE) {
            return nullptr;
        }
        m_entry = {.name = m_file.cFileName, .stamp = StampFrom(m_file)};
        return &m_entry;
    }

private:
    WIN32_FIND_DATAA m_file{};
    UniqueSearch m_search;
    bool m_isFirst = true;
    InfEntry m_entry;
};
} // namespace

uint32_t PlatformKit::ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                               const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    return GetPrivateProfileStringA(section, key, defaultText, buffer.data(), static_cast<DWORD>(buffer.size()),
                                    file.c_str());
}

uint32_t PlatformKit::ReadSection(const char* section, std::span<char> buffer, const std::string& file)
{
    std::ranges::fill(buffer, '\0');
    const auto size = static_cast<DWORD>(buffer.size());
    // The names of all sections are read first and not used. What lies in the buffer after a section that the file does
    // not have is what these two calls together leave there.
    GetPrivateProfileStringA(nullptr, nullptr, nullptr, buffer.data(), size, file.c_str());
    return GetPrivateProfileSectionA(section, buffer.data(), size, file.c_str());
}

FileMark PlatformKit::MarkOf(const std::string& file)
{
    FileMark mark;
    const UniqueFile opened(CreateFileA(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!opened.IsOpen()) {
        return mark;
    }
    mark.opened = true;
    std::array<unsigned char, 2> bytes{};
    DWORD bytesRead = 0;
    mark.read = ReadFile(opened.Get(), bytes.data(), bytes.size(), &bytesRead, nullptr) != FALSE;
    mark.utf16 = bytes[0] == 0xFF && bytes[1] == 0xFE;
    return mark;
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
