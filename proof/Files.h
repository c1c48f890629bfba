#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ZipArchive.h"

/// All bytes of a file, which other programs may still be writing.
/// Throws std::runtime_error, which names it, when it cannot be read.
[[nodiscard]] std::string ReadWholeFile(const std::string& path);

/// Replaces a file, and returns when the disk has it.
/// Throws std::runtime_error, which names it, when it cannot be written.
void WriteWholeFile(const std::string& path, std::string_view content);

/// Adds to the end of a file, and returns when the disk has it: it survives the end of the machine.
/// Throws std::runtime_error, which names it, when it cannot be written.
void AppendToFile(const std::string& path, std::string_view content);

[[nodiscard]] bool IsFile(const std::string& path);

/// A file or folder as a search finds it.
struct FoundFile
{
    std::string name;
    bool isFolder = false;
    unsigned long long bytes = 0;
    unsigned long long written = 0; ///< the system's time
    DosTime localTime;
};

/// What a folder has, sorted by name, without "." and "..".
/// @param pattern  A path whose last part may have "*".
[[nodiscard]] std::vector<FoundFile> FilesOf(const std::string& pattern);

/// The value of an environment variable; empty when there is none.
[[nodiscard]] std::string EnvironmentText(const char* name);
