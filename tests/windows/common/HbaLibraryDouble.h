#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "Handles.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

/// The name by which the tests ask for an adapter.
inline constexpr wchar_t kAdapter[] = LR"(\DEVICE\{0001})";
inline constexpr char kHbaMutexName[] = R"(Global\CHBAAPINTMUT)";

/// An FCoE interface library for this process: a copy of one of the doubles, in a folder that the loader looks through,
/// with its answers and its journal. Removed by the destructor, so objects that load it must end first.
class HbaLibraryDouble
{
public:
    /// @param missingEntry  The entry point that the library lacks.
    explicit HbaLibraryDouble(const std::string& missingEntry = {})
    {
        const std::string variant = missingEntry.empty() ? "nordhapi" : "nordhapi_without_" + missingEntry;
        CopyFileTo(TestFile("doubles\\" + variant + ".dll"), m_directory.At("nordhapi.dll"));
        SetDllDirectoryA(m_directory.Path().c_str());
    }
    ~HbaLibraryDouble() { SetDllDirectoryA(nullptr); }
    HbaLibraryDouble(const HbaLibraryDouble&) = delete;
    HbaLibraryDouble& operator=(const HbaLibraryDouble&) = delete;

    void Answer(const std::string& key, const std::string& value) const
    {
        WritePrivateProfileStringA("Answers", key.c_str(), value.c_str(),
                                   m_directory.At("nordhapi.answers.ini").c_str());
    }

    /// What the library was asked since the last call, in order.
    [[nodiscard]] std::vector<std::string> TakeJournal() const
    {
        const std::string path = m_directory.At("journal.txt");
        std::vector<std::string> lines;
        if (!FileExists(path)) {
            return lines;
        }
        const std::string content = ReadFileBytes(path);
        for (size_t start = 0; start < content.size();) {
            const size_t end = content.find('\n', start);
            lines.push_back(content.substr(start, end - start));
            start = end + 1;
        }
        DeleteFileA(path.c_str());
        return lines;
    }

private:
    ScratchDirectory m_directory;
};

/// @return true while the interface library is loaded in this process.
[[nodiscard]] inline bool IsHbaLibraryLoaded()
{
    return GetModuleHandleA("nordhapi.dll") != nullptr;
}

/// Makes the machine-wide mutex unavailable without waiting: an event has its name.
class NameTakenByAnEvent
{
public:
    NameTakenByAnEvent() : m_event(CreateEventA(nullptr, TRUE, FALSE, kHbaMutexName)) {}

private:
    UniqueHandle m_event;
};
