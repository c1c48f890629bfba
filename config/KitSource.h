#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "ModelSection.h"

/// A file's size and write time, by which a change is noticed.
struct FileStamp
{
    uint64_t bytes = 0;
    uint64_t writeTime = 0; ///< in the source's own unit
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// How a file begins.
struct FileMark
{
    bool opened = false;
    bool read = false;  ///< false also for a file that is not opened
    bool utf16 = false; ///< with the little-endian UTF-16 mark, FF FE
};

/// One entry of a directory that fits "*.inf". Directories are entries too.
struct InfEntry
{
    std::string name;
    std::optional<FileStamp> stamp; ///< no value for a link, whose entry does not describe the file
};

/// The entries of a directory that fit "*.inf", in the directory's own order.
class InfListing
{
public:
    virtual ~InfListing() = default;
    /// @return the next entry, valid until the next call; null after the last one.
    [[nodiscard]] virtual const InfEntry* Next() = 0;
};

/// What the search for INF files reads: the setup INI, the INF files and the directories that hold them. Files are
/// named by their full path on the machine. A missing file, section or key is no error: the default or nothing is read.
/// A source belongs to one thread unless it says otherwise.
class KitSource
{
public:
    virtual ~KitSource() = default;

    /// The search for another device begins: a question that was not answered for the one before may be answered now.
    virtual void BeginDevice() {}

    /// Reads one value.
    /// @param section      Section name without brackets.
    /// @param key          Key name; null reads the names of all keys, NUL-terminated and ended by an empty one.
    /// @param defaultText  Read when the key is missing.
    /// @param buffer       Cleared first; receives at most its size less one characters of a value, and a terminator.
    /// @return number of characters read, without the terminator.
    virtual uint32_t ReadText(const char* section, const char* key, const char* defaultText, std::span<char> buffer,
                              const std::string& file) = 0;

    /// Reads a section's lines, "key=value" each, NUL-terminated and ended by an empty one.
    /// @param buffer  Cleared first. When the section is missing it holds what two calls of the platform leave in it:
    ///                the names of all sections, read with a null section, and then the section itself.
    /// @return number of characters read; the buffer's size less two when the section did not fit and was cut; 0 when
    ///         the section is missing or empty.
    virtual uint32_t ReadSection(const char* section, std::span<char> buffer, const std::string& file) = 0;

    /// Reads a model section of an INF: kModelSectionBytes of it, by ReadSection. A source that keeps answers may keep
    /// the section as it was taken apart.
    /// @return never null.
    [[nodiscard]] virtual std::shared_ptr<const ModelSection> ReadModelSection(const char* section,
                                                                               const std::string& file);

    [[nodiscard]] virtual FileMark MarkOf(const std::string& file) = 0;

    /// @return no value for a file that is missing or only a link.
    [[nodiscard]] virtual std::optional<FileStamp> StampOf(const std::string& file) = 0;

    /// @param directoryPath  Ends with a backslash.
    /// @return the directory's INF files; null when there is none or the directory cannot be read.
    [[nodiscard]] virtual std::unique_ptr<InfListing> List(const std::string& directoryPath) = 0;
};
