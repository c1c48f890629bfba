#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "OrvDebug.h"
#include "OrvSecure.h"
#include "ScratchDirectory.h"

/// One line of a library trace file.
struct LibraryTraceLine
{
    /// Module, "PID:x", "TID:x", time, "(counter)".
    std::vector<std::string> prefix;
    std::string message;
};

/// The lines of a trace file, without their line ends. Throws std::runtime_error for a line that is not whole.
inline std::vector<LibraryTraceLine> ReadLibraryTrace(const std::string& path)
{
    constexpr size_t kPrefixFields = 5;
    const std::string content = ReadFileBytes(path);
    std::vector<LibraryTraceLine> lines;
    for (size_t start = 0; start < content.size();) {
        // The file is a text file: a line feed is stored after a carriage return.
        const size_t end = content.find("\r\n", start);
        if (end == std::string::npos) {
            throw std::runtime_error("the last trace line has no end");
        }
        LibraryTraceLine line;
        size_t at = start;
        for (size_t field = 0; field < kPrefixFields; ++field) {
            const size_t tab = content.find('\t', at);
            if (tab == std::string::npos || tab > end) {
                throw std::runtime_error("torn trace line: " + content.substr(start, end - start));
            }
            line.prefix.push_back(content.substr(at, tab - at));
            at = tab + 1;
        }
        line.message = content.substr(at, end - at);
        lines.push_back(std::move(line));
        start = end + 2;
    }
    return lines;
}

/// The messages of a trace file, without their prefixes.
inline std::vector<std::string> ReadLibraryMessages(const std::string& path)
{
    std::vector<std::string> messages;
    for (LibraryTraceLine& line : ReadLibraryTrace(path)) {
        messages.push_back(std::move(line.message));
    }
    return messages;
}

/// The environment variable "Temp" with another value for the life of the object.
class TempVariable
{
public:
    explicit TempVariable(const std::string& value)
    {
        char before[MAX_PATH]{};
        GetEnvironmentVariableA("Temp", before, sizeof(before));
        m_before = before;
        SetEnvironmentVariableA("Temp", value.c_str());
    }
    ~TempVariable() { SetEnvironmentVariableA("Temp", m_before.c_str()); }
    TempVariable(const TempVariable&) = delete;
    TempVariable& operator=(const TempVariable&) = delete;

private:
    std::string m_before;
};

/// Closes a trace object, which programs keep open to their end.
inline void CloseTrace(COrvDebug& object)
{
    struct Closer : COrvDebug
    {
        static auto Entry() { return &Closer::Close; }
    };
    (object.*Closer::Entry())();
}

/// The library trace object, configured for the life of the object with a file of its own, then as it was before.
class LibraryTrace
{
public:
    explicit LibraryTrace(uint32_t level = 3)
    {
        // The installation of the invalid-parameter handler traces once per process: get it done.
        char room[2];
        OrvSafeCopy("LibraryTrace", __LINE__, room, sizeof(room), "");
        CloseTrace(OrvTrace());
        // The module whose file name is used as given.
        if (OrvTrace().Configure("Kwelpad", Path().c_str(), level, 0, 0, nullptr) != 0) {
            throw std::runtime_error("the library trace cannot be configured");
        }
    }
    ~LibraryTrace() { CloseTrace(OrvTrace()); }
    LibraryTrace(const LibraryTrace&) = delete;
    LibraryTrace& operator=(const LibraryTrace&) = delete;

    [[nodiscard]] std::string Path() const { return m_directory.At("library.log"); }

    /// The messages traced so far.
    [[nodiscard]] std::vector<std::string> Messages() const { return ReadLibraryMessages(Path()); }

private:
    ScratchDirectory m_directory;
};
