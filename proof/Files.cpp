#include "Files.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "Handles.h"

namespace {
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::runtime_error Failure(const std::string& what, const std::string& path)
{
    return std::runtime_error("cannot " + what + ' ' + path + ": error " + std::to_string(GetLastError()));
}

void Write(const UniqueFile& file, const std::string& path, std::string_view content)
{
    DWORD written = 0;
    if (WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) == FALSE ||
        written != content.size() || FlushFileBuffers(file.Get()) == FALSE) {
        throw Failure("write", path);
    }
}

DosTime LocalTime(const FILETIME& written)
{
    FILETIME local{};
    DosTime time;
    if (FileTimeToLocalFileTime(&written, &local) != FALSE) {
        // A time before 1980 has no form there: the earliest one stays.
        FileTimeToDosDateTime(&local, &time.date, &time.time);
    }
    return time;
}
} // namespace

std::string ReadWholeFile(const std::string& path)
{
    const UniqueFile file(CreateFileA(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    LARGE_INTEGER size{};
    if (!file.IsOpen() || GetFileSizeEx(file.Get(), &size) == FALSE) {
        throw Failure("read", path);
    }
    if (size.HighPart != 0) {
        throw std::runtime_error(path + " is too large");
    }
    std::string content(size.LowPart, '\0');
    DWORD read = 0;
    if (ReadFile(file.Get(), content.data(), size.LowPart, &read, nullptr) == FALSE) {
        throw Failure("read", path);
    }
    content.resize(read);
    return content;
}

void WriteWholeFile(const std::string& path, std::string_view content)
{
    const UniqueFile file(
        CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
    if (!file.IsOpen()) {
        throw Failure("write", path);
    }
    Write(file, path, content);
}

void AppendToFile(const std::string& path, std::string_view content)
{
    const UniqueFile file(
        CreateFileA(path.c_str(), FILE_APPEND_DATA | SYNCHRONIZE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS, 0, nullptr));
    if (!file.IsOpen()) {
        throw Failure("write", path);
    }
    Write(file, path, content);
}

bool IsFile(const std::string& path)
{
    const DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::vector<FoundFile> FilesOf(const std::string& pattern)
{
    std::vector<FoundFile> files;
    WIN32_FIND_DATAA found{};
    const UniqueSearch search(FindFirstFileA(pattern.c_str(), &found));
    if (!search.IsOpen()) {
        return files;
    }
    do {
        const std::string name = static_cast<const char*>(found.cFileName);
        if (name != "." && name != "..") {
            files.push_back({.name = name,
                             .isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0,
                             .bytes = static_cast<unsigned long long>(found.nFileSizeHigh) << 32U | found.nFileSizeLow,
                             .written = static_cast<unsigned long long>(found.ftLastWriteTime.dwHighDateTime) << 32U |
                                        found.ftLastWriteTime.dwLowDateTime,
                             .localTime = LocalTime(found.ftLastWriteTime)});
        }
    } while (FindNextFileA(search.Get(), &found) != FALSE);
    std::ranges::sort(files, {}, &FoundFile::name);
    return files;
}

std::string EnvironmentText(const char* name)
{
    std::string text(GetEnvironmentVariableA(name, nullptr, 0), '\0');
    text.resize(GetEnvironmentVariableA(name, text.data(), static_cast<DWORD>(text.size())));
    return text;
}
