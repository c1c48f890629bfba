#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// The fields of the caller's install record that this library reads and writes. The record has 1280 bytes and is
/// passed by address. These positions are the interface, so they are defined here and not taken from the caller's
/// headers.
inline constexpr std::size_t kRecordBytes = 1280;

struct RecordField
{
    std::size_t offset; ///< bytes from the start of the record
    std::size_t bytes;  ///< size of the field, the terminator included
};
inline constexpr RecordField kFamilyField{0, 204};
inline constexpr RecordField kInfPathField{204, 256};
inline constexpr RecordField kHardwareIdField{716, 300};
static_assert(kHardwareIdField.offset + kHardwareIdField.bytes <= kRecordBytes);

/// A field's text, always terminated: a caller's field that is full to its last byte has no terminator.
using FieldText = std::array<char, kHardwareIdField.bytes + 1>;
static_assert(kInfPathField.bytes < std::tuple_size_v<FieldText>);

/// Copies the text of `field` out of `record`.
/// @param record  1280 bytes.
/// @return the text up to its terminator or the end of its field, terminated.
[[nodiscard]] FieldText ReadField(const void* record, RecordField field) noexcept;

/// Clears `field` of `record` and writes `text` into it, truncated so that a terminator always fits.
/// @param record  1280 bytes.
void WriteField(void* record, RecordField field, std::string_view text) noexcept;
