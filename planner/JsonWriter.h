#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Appends JSON to a text as it comes, so that a document of any length needs no memory of its own. The caller sees to
/// the order of keys and values.
class JsonWriter
{
public:
    /// @param out  Must outlive the writer.
    explicit JsonWriter(std::string& out) : m_out(out) {}

    JsonWriter& BeginObject() { return Open('{'); }
    JsonWriter& EndObject() { return Close('}'); }
    JsonWriter& BeginArray() { return Open('['); }
    JsonWriter& EndArray() { return Close(']'); }

    /// @param key  Plain ASCII of this program's own.
    JsonWriter& Key(std::string_view key);

    /// Bytes that are not UTF-8 become U+FFFD. What could steer a terminal is escaped: control characters, line
    /// separators and the marks that turn the direction of writing.
    JsonWriter& Text(std::string_view text);
    JsonWriter& TextOrNull(const std::optional<std::string>& text)
    {
        return text ? Text(std::string_view(*text)) : Null();
    }
    JsonWriter& Number(uint64_t number) { return Plain(std::to_string(number)); }
    JsonWriter& Truth(bool value) { return Plain(value ? "true" : "false"); }
    JsonWriter& Null() { return Plain("null"); }

    /// Appends one or more values that are JSON already.
    JsonWriter& Plain(std::string_view json);

private:
    JsonWriter& Open(char bracket);
    JsonWriter& Close(char bracket);
    void Separate();

    std::string& m_out;
    bool m_first = true; ///< nothing comes before the next key or value in its brackets
};
