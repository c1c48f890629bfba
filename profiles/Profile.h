#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "CodePage.h"
#include "Dialect.h"

class SectionAnswer;

/// A place in a file; every number begins with 1. A mark at the file's beginning is not counted.
struct ProfilePlace
{
    uint32_t line = 0;       ///< CR LF, CR and LF each end a line.
    uint32_t column = 0;     ///< in UTF-16 units, as editors and SARIF count
    uint32_t byteColumn = 0; ///< in bytes; differs where a character takes more than one
    bool operator==(const ProfilePlace&) const = default;
};

enum class ProfileEncoding
{
    CodePage,
    Utf8,
    Utf16,
    Utf16BigEndian
};

/// An INI or INF file, read as the platform's private-profile functions read it. Any number of threads may ask the
/// object at the same time. The lines of a section are read when they are first asked for, because a search asks for
/// few sections of a file, and indexed by name when they are asked for often. Apart from these two times a question
/// about a single-byte file allocates nothing.
class Profile
{
public:
    /// One line of a section: "name=value", or a line without an equals sign.
    struct Entry
    {
        std::string_view name;
        std::optional<std::string_view> value; ///< as in the file, quotes included; none without an equals sign
        std::string_view text;                 ///< from the name to the value, with the equals sign and its blanks
        ProfilePlace namePlace;
        ProfilePlace valuePlace; ///< of the value's first character; only with a value
    };

    /// @param bytes     The whole file; none for a file that does not exist, because the platform answers the same.
    /// @param codePage  The system's code page; must outlive the object.
    Profile(std::string bytes, const CodePage& codePage, ProfileDialect dialect);

    /// Answers GetPrivateProfileStringA. A null section reads the names of all sections, a null key the names of all
    /// keys of a section, a null default is an empty one.
    /// @param buffer  Receives what the platform writes; the other bytes stay as they are.
    /// @return the platform's number.
    uint32_t ReadString(const char* section, const char* key, const char* defaultText, std::span<char> buffer) const;

    /// Answers GetPrivateProfileSectionA. A buffer of one byte or none, for which the platform writes outside of it,
    /// receives one NUL or nothing.
    uint32_t ReadSection(const char* section, std::span<char> buffer) const;

    /// For diagnostics: the sections in the order of the file, repeated ones included. The first has no name and holds
    /// the lines before the first bracket, which only Wine reads.
    [[nodiscard]] std::size_t SectionCount() const { return m_sections.size(); }
    [[nodiscard]] std::string_view SectionName(std::size_t section) const;
    /// The place of the name, after the bracket; line 0 for the lines before the first section.
    [[nodiscard]] ProfilePlace SectionPlace(std::size_t section) const;
    [[nodiscard]] std::size_t EntryCount(std::size_t section) const;
    [[nodiscard]] Entry EntryAt(std::size_t section, std::size_t index) const;
    /// @return true for an entry that ReadSection answers: no comment, and not empty.
    [[nodiscard]] bool IsListed(std::size_t section, std::size_t index) const;
    /// @param line  Number of a line in the answer of ReadSection, the first being 0.
    /// @return the entry that ReadSection puts there; none after the last line.
    [[nodiscard]] std::optional<Entry> ListedEntry(std::size_t section, std::size_t line) const;

    /// @return true when both dialects take the same sections and entries from the file.
    [[nodiscard]] bool IsReadAlike() const { return m_isReadAlike; }

    /// @return the section that ReadSection answers for a name; none when it is missing.
    [[nodiscard]] std::optional<std::size_t> FindSection(std::string_view name) const;
    /// @return the entry that ReadString answers for two names, comments and lines without an equals sign included.
    [[nodiscard]] std::optional<Entry> FindEntry(std::string_view section, std::string_view key) const;

private:
    template <class Text>
    friend class ProfileParser;

    static constexpr uint32_t kNone = UINT32_MAX;

    struct Text
    {
        uint32_t at = 0;
        uint32_t size = 0;
    };
    struct Section
    {
        Text name;
        uint32_t offset = kNone; ///< of the name in the file; none for the lines before the first section
        std::size_t begin = 0;   ///< of its lines, in units
        std::size_t end = 0;     ///< of its lines, in units
        bool canBeAsked = false; ///< a question can hold the name
    };
    struct Line
    {
        Text name;
        Text value; ///< at kNone: no equals sign
    };
    /// What a line of a file in single bytes does not need: its texts are where the file has them, and can be asked
    /// for.
    struct DecodedLine
    {
        uint32_t nameOffset = 0; ///< in the file
        uint32_t valueOffset = 0;
        bool canBeAsked = false;
    };
    struct Lines
    {
        std::once_flag read;
        std::vector<Line> lines;
        std::vector<DecodedLine> decoded; ///< as many, or none
        std::atomic<uint64_t> passed = 0; ///< lines that questions for a name went through
        std::once_flag indexed;
        std::vector<uint32_t> slots; ///< hash table of the first line of each name
    };

    [[nodiscard]] std::string_view TextOf(Text text) const
    {
        return std::string_view(m_text).substr(text.at, text.size);
    }
    [[nodiscard]] std::span<const Line> LinesOf(std::size_t section) const;
    [[nodiscard]] std::size_t HashOf(std::string_view name) const;
    [[nodiscard]] bool SameName(std::string_view left, std::string_view right) const;
    /// These two take names as AsAsked gives them.
    [[nodiscard]] std::optional<std::size_t> SectionOf(std::string_view name) const;
    /// A line of a section.
    struct Place
    {
        std::size_t section = 0;
        const Line* line = nullptr; ///< null when there is none
    };
    [[nodiscard]] Place FindLine(std::string_view section, std::string_view key) const;
    [[nodiscard]] std::string_view AsAsked(std::string_view text, std::string& room) const;
    [[nodiscard]] std::string_view Stripped(std::string_view name) const;
    [[nodiscard]] ProfilePlace PlaceOf(uint32_t offset) const;
    [[nodiscard]] Entry EntryOf(std::size_t section, const Line& line) const;
    [[nodiscard]] std::string_view WholeText(const Line& line) const;
    [[nodiscard]] static bool CanBeAsked(const Lines& lines, std::size_t line)
    {
        return lines.decoded.empty() || lines.decoded[line].canBeAsked;
    }
    [[nodiscard]] bool IsComment(const Line& line) const;
    [[nodiscard]] bool IsListed(const Line& line) const;
    [[nodiscard]] static bool HasValue(const Line& line) { return line.value.at != kNone; }
    uint32_t AnswerSectionNames(std::span<char> buffer) const;
    uint32_t AnswerKeys(std::string_view section, std::string_view defaultText, std::span<char> buffer) const;
    void PutLine(const Line& line, SectionAnswer& answer) const;
    uint32_t AnswerValue(std::string_view value, std::span<char> buffer) const;
    static std::vector<uint32_t> EmptySlots(std::size_t count);
    void ReadDecoded();
    void IndexSections();
    void IndexLines(Lines& lines) const;
    [[nodiscard]] std::size_t SectionSlot(std::string_view name) const;
    [[nodiscard]] std::size_t LineSlot(const Lines& lines, std::string_view name) const;
    [[nodiscard]] bool IsSingleByte() const;

    const CodePage* m_codePage;
    DialectRules m_rules;
    ProfileEncoding m_encoding = ProfileEncoding::CodePage;
    bool m_isReadAlike = true;
    uint32_t m_fileBytes = 0;
    std::string m_text; ///< the file, and after it the lines that read differently in the code page
    std::vector<Section> m_sections;
    std::vector<uint32_t> m_sectionSlots; ///< hash table of the first section of each name
    std::unique_ptr<Lines[]> m_lines;     ///< of each section
    mutable std::once_flag m_lineStartsFound;
    mutable std::vector<uint32_t> m_lineStarts;
};
