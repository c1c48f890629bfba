#pragma once

#include <string>

/// A new empty directory below the temporary directory, removed with its content at the end of the object's life.
class ScratchDirectory
{
public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    /// The directory's full path without a trailing backslash.
    [[nodiscard]] const std::string& Path() const { return m_path; }
    /// The full path of `name` in the directory.
    [[nodiscard]] std::string At(const std::string& name) const { return m_path + "\\" + name; }

private:
    std::string m_path;
};

/// Writes a file as given, byte for byte, and creates the directories above it. Throws std::runtime_error on failure.
void WriteFileBytes(const std::string& path, const std::string& content);
/// @return the file's bytes; throws std::runtime_error when it cannot be read.
[[nodiscard]] std::string ReadFileBytes(const std::string& path);
[[nodiscard]] bool FileExists(const std::string& path);
/// Copies a file, creating the directories above the target.
void CopyFileTo(const std::string& source, const std::string& target);
/// Copies a directory with everything below it.
void CopyTree(const std::string& source, const std::string& target);
