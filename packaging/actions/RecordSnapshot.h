#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A registry value as stored.
struct SavedValue
{
    std::string name;
    std::uint32_t type = 0;
    /// The raw bytes.
    std::string data;

    bool operator==(const SavedValue&) const = default;
};

/// What a step may change and a rollback puts back: the records of the program, and the uninstaller's registration with
/// its data file.
struct RecordSnapshot
{
    enum class File
    {
        Missing,
        Saved,
        /// It could not be read, so a rollback does not change it.
        Unknown,
    };

    /// The values of the result key; no value when there is no such key.
    std::optional<std::vector<SavedValue>> results;
    /// The kit's entry in the uninstaller's list.
    std::optional<SavedValue> registration;
    File dataFileState = File::Missing;
    /// The bytes of the data file when they are saved.
    std::string dataFile;

    bool operator==(const RecordSnapshot&) const = default;
};

/// @return the snapshot as printable ASCII without blanks, to be passed in a property of the package.
[[nodiscard]] std::string EncodeSnapshot(const RecordSnapshot& snapshot);

/// @return no value for a text that is not from EncodeSnapshot.
[[nodiscard]] std::optional<RecordSnapshot> DecodeSnapshot(std::string_view text);
