#include "RecordSnapshot.h"

#include <charconv>

namespace {
// A snapshot is a list of entries, each ending in ";", whose fields end in ",": a letter, then numbers and bytes in
// hexadecimal digits.
constexpr char kEntryEnd = ';';
constexpr char kFieldEnd = ',';
constexpr std::string_view kResultKeyEntry = "K";
constexpr std::string_view kResultEntry = "V";
constexpr std::string_view kRegistrationEntry = "R";
constexpr std::string_view kFileEntry = "F";
constexpr std::string_view kUnknownFileEntry = "U";
// Ends the text, so that a text that was cut off is rejected.
constexpr std::string_view kEnd = "end";
constexpr int kHexBase = 16;

std::string ToHex(std::string_view bytes)
{
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += kDigits[value / kHexBase];
        text += kDigits[value % kHexBase];
    }
    return text;
}

template <class Number>
bool ReadNumber(std::string_view text, Number& number, int base)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && stop == end;
}

std::optional<std::string> FromHex(std::string_view text)
{
    std::string bytes;
    for (size_t at = 0; at < text.size(); at += 2) {
        unsigned char value = 0;
        // from_chars accepts no sign for an unsigned number, so two characters are two digits.
        if (at + 1 == text.size() || !ReadNumber(text.substr(at, 2), value, kHexBase)) {
            return std::nullopt;
        }
        bytes += static_cast<char>(value);
    }
    return bytes;
}

void AddEntry(std::string& text, std::string_view letter, const std::vector<std::string>& fields = {})
{
    text += letter;
    text += kFieldEnd;
    for (const std::string& field : fields) {
        text += field;
        text += kFieldEnd;
    }
    text += kEntryEnd;
}

void AddValue(std::string& text, std::string_view letter, const SavedValue& value)
{
    AddEntry(text, letter, {ToHex(value.name), std::to_string(value.type), ToHex(value.data)});
}

/// @return what `end` ends; a rest without one is left out.
std::vector<std::string_view> Split(std::string_view text, char end)
{
    std::vector<std::string_view> parts;
    for (size_t at = text.find(end); at != std::string_view::npos; at = text.find(end)) {
        parts.push_back(text.substr(0, at));
        text.remove_prefix(at + 1);
    }
    return parts;
}

std::optional<SavedValue> ReadValue(const std::vector<std::string_view>& fields)
{
    constexpr size_t kFields = 4;
    SavedValue value;
    if (fields.size() != kFields || !ReadNumber(fields[2], value.type, 10)) {
        return std::nullopt;
    }
    const std::optional<std::string> name = FromHex(fields[1]);
    const std::optional<std::string> data = FromHex(fields[3]);
    if (!name || !data) {
        return std::nullopt;
    }
    value.name = *name;
    value.data = *data;
    return value;
}

bool ReadFileEntry(const std::vector<std::string_view>& fields, RecordSnapshot& snapshot)
{
    const std::optional<std::string> bytes = fields.size() == 2 ? FromHex(fields[1]) : std::nullopt;
    if (!bytes) {
        return false;
    }
    snapshot.dataFileState = RecordSnapshot::File::Saved;
    snapshot.dataFile = *bytes;
    return true;
}

bool ReadEntry(const std::vector<std::string_view>& fields, RecordSnapshot& snapshot)
{
    const std::string_view letter = fields.empty() ? std::string_view() : fields.front();
    if (letter == kResultKeyEntry) {
        snapshot.results.emplace();
        return true;
    }
    if (letter == kResultEntry) {
        const std::optional<SavedValue> value = ReadValue(fields);
        if (!value || !snapshot.results) {
            return false;
        }
        snapshot.results->push_back(*value);
        return true;
    }
    if (letter == kRegistrationEntry) {
        snapshot.registration = ReadValue(fields);
        return snapshot.registration.has_value();
    }
    if (letter == kUnknownFileEntry) {
        snapshot.dataFileState = RecordSnapshot::File::Unknown;
        return true;
    }
    return letter == kFileEntry && ReadFileEntry(fields, snapshot);
}
} // namespace

std::string EncodeSnapshot(const RecordSnapshot& snapshot)
{
    std::string text;
    if (snapshot.results) {
        AddEntry(text, kResultKeyEntry);
        for (const SavedValue& value : *snapshot.results) {
            AddValue(text, kResultEntry, value);
        }
    }
    if (snapshot.registration) {
        AddValue(text, kRegistrationEntry, *snapshot.registration);
    }
    if (snapshot.dataFileState == RecordSnapshot::File::Saved) {
        AddEntry(text, kFileEntry, {ToHex(snapshot.dataFile)});
    } else if (snapshot.dataFileState == RecordSnapshot::File::Unknown) {
        AddEntry(text, kUnknownFileEntry);
    }
    text += kEnd;
    return text;
}

std::optional<RecordSnapshot> DecodeSnapshot(std::string_view text)
{
    RecordSnapshot snapshot;
    if (!text.ends_with(kEnd)) {
        return std::nullopt;
    }
    for (const std::string_view entry : Split(text, kEntryEnd)) {
        if (!ReadEntry(Split(entry, kFieldEnd), snapshot)) {
            return std::nullopt;
        }
    }
    return snapshot;
}
