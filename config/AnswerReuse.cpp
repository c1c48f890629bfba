#include "AnswerReuse.h"

#include <array>
#include <utility>

#include "Handles.h"

AnswersInUseRecord answersInUse;

namespace {
uint64_t Joined(DWORD high, DWORD low)
{
    return (uint64_t{high} << 32U) | low;
}

/// @param file  Either of the platform's records of a file's attributes; the names of the fields are the same.
template <class Attributes>
std::optional<FileStamp> StampOf(const Attributes& file)
{
    // The entry of a link tells nothing about the file behind it.
    if ((file.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return std::nullopt;
    }
    return FileStamp{.bytes = Joined(file.nFileSizeHigh, file.nFileSizeLow),
                     .writeTime = Joined(file.ftLastWriteTime.dwHighDateTime, file.ftLastWriteTime.dwLowDateTime)};
}

FileMark ReadFileMark(const std::string& path)
{
    FileMark mark;
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file.IsOpen()) {
        return mark;
    }
    mark.opened = true;
    std::array<unsigned char, 2> bytes{};
    DWORD bytesRead = 0;
    mark.read = ReadFile(file.Get(), bytes.data(), bytes.size(), &bytesRead, nullptr) != FALSE;
    mark.utf16 = bytes[0] == 0xFF && bytes[1] == 0xFE;
    return mark;
}

/// @param mark  Receives the file's mark when it is read here.
AnswersAboutFile* AnswersFor(const std::string& path, const std::optional<FileStamp>& stamp,
                             std::optional<FileMark>& mark)
{
    const auto isUtf16 = [&]() -> std::optional<bool> {
        mark = ReadFileMark(path);
        return mark->read ? std::optional(mark->utf16) : std::nullopt;
    };
    return stamp ? answersInUse.answers->About(path, *stamp, isUtf16) : nullptr;
}
} // namespace

FileVisit::FileVisit(std::string path, const WIN32_FIND_DATAA& entry)
    : m_path(std::move(path)), m_before(std::exchange(answersInUse.visit, this))
{
    if (answersInUse.answers != nullptr) {
        m_answers = AnswersFor(m_path, StampOf(entry), m_mark);
    }
}

FileVisit::~FileVisit()
{
    answersInUse.visit = m_before;
}

AnswersAboutFile* AnswersAbout(const std::string& path)
{
    if (answersInUse.answers == nullptr) {
        return nullptr;
    }
    if (answersInUse.visit != nullptr && answersInUse.visit->m_path == path) {
        return answersInUse.visit->m_answers;
    }
    WIN32_FILE_ATTRIBUTE_DATA file{};
    if (GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &file) == FALSE) {
        return nullptr;
    }
    std::optional<FileMark> mark;
    return AnswersFor(path, StampOf(file), mark);
}

FileMark MarkOf(const std::string& path)
{
    // A file that could not be opened or read a moment ago is not tried again for its mark.
    if (answersInUse.visit != nullptr && answersInUse.visit->m_path == path && answersInUse.visit->m_mark) {
        return *answersInUse.visit->m_mark;
    }
    const AnswersAboutFile* const answers = AnswersAbout(path);
    return answers == nullptr ? ReadFileMark(path)
                              : FileMark{.opened = true, .read = true, .utf16 = answers->IsUtf16()};
}
