#include "ProfileQuestions.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

#include "Choices.h"
#include "Profile.h"

namespace {
constexpr std::size_t kNamesAFile = 6;

const char* CString(const std::optional<std::string>& text)
{
    return text ? text->c_str() : nullptr;
}

/// What may be a name in the content: text between line ends, brackets and equals signs, without the NULs of UTF-16.
std::vector<std::string> NamesIn(const std::string& content)
{
    std::string text = content;
    std::erase(text, '\0');
    std::vector<std::string> names;
    std::string name;
    for (const char c : text.substr(0, 4000)) {
        if (std::string_view("\r\n[]=").find(c) == std::string_view::npos) {
            name += c;
        } else if (!name.empty() && name.size() <= 60) {
            names.push_back(std::exchange(name, {}));
        } else {
            name.clear();
        }
    }
    return names;
}

class Questioner
{
public:
    explicit Questioner(const std::string& content)
        : m_choices(SeedOf(content)),
          m_names(NamesIn(content)),
          m_codePage(1252),
          m_profile(content, m_codePage, ProfileDialect::Wine)
    {
    }

    std::vector<ProfileQuestion> Ask()
    {
        using Call = ProfileQuestion::Call;
        AskInSizes({.call = Call::String, .section = {}, .key = {}, .defaultText = Default()});
        AskInSizes({.call = Call::Section, .section = "", .key = {}, .defaultText = {}});
        for (std::size_t round = 0; round < kNamesAFile; ++round) {
            const std::string section = SectionName();
            AskInSizes({.call = Call::Section, .section = section, .key = {}, .defaultText = {}});
            AskInSizes({.call = Call::String, .section = section, .key = {}, .defaultText = Default()});
            AskInSizes({.call = Call::String, .section = section, .key = KeyName(), .defaultText = Default()});
            AskInSizes({.call = Call::String, .section = section, .key = KeyName(), .defaultText = Default()});
        }
        AskInSizes({.call = Call::Section, .section = {}, .key = {}, .defaultText = {}});
        AskInSizes({.call = Call::String, .section = {}, .key = KeyName(), .defaultText = Default()});
        return std::move(m_questions);
    }

private:
    static uint32_t SeedOf(const std::string& content)
    {
        uint32_t seed = 2166136261U;
        for (const char c : content) {
            seed = (seed ^ static_cast<unsigned char>(c)) * 16777619U;
        }
        return seed;
    }

    std::string SectionName()
    {
        const std::size_t section = m_choices.Below(m_profile.SectionCount());
        return m_choices.OnceIn(4) ? AnyName() : Spelt(std::string(m_profile.SectionName(section)));
    }

    std::string KeyName()
    {
        const std::size_t section = m_choices.Below(m_profile.SectionCount());
        const std::size_t count = m_profile.EntryCount(section);
        if (count == 0 || m_choices.OnceIn(4)) {
            return AnyName();
        }
        return Spelt(std::string(m_profile.EntryAt(section, m_choices.Below(std::min<std::size_t>(count, 20))).name));
    }

    std::string AnyName()
    {
        if (m_names.empty() || m_choices.OnceIn(6)) {
            constexpr auto kOthers =
                std::to_array<std::string_view>({"", " ", "nowhere", "\t", "A", "k", "[A]", "=", "?"});
            return std::string(m_choices.OneOf(kOthers));
        }
        return Spelt(m_choices.OneOf(m_names));
    }

    /// The name, sometimes in other letters or with blanks around it.
    std::string Spelt(std::string name)
    {
        if (m_choices.OnceIn(4)) {
            for (char& c : name) {
                const bool letter =
                    (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0xC0;
                c = static_cast<char>(letter ? c ^ 0x20 : c);
            }
        }
        constexpr auto kAround = std::to_array<std::string_view>({" ", "\t", "  ", "\x1A", "\v", "\xA0"});
        if (m_choices.OnceIn(8)) {
            name.insert(0, m_choices.OneOf(kAround));
        }
        if (m_choices.OnceIn(8)) {
            name += m_choices.OneOf(kAround);
        }
        return name;
    }

    std::optional<std::string> Default()
    {
        constexpr auto kDefaults = std::to_array<std::string_view>(
            {"", "Manufacturer", "a longer default", "\"quoted\"", "'single' ", "blank  ", "   ", "\"open", "\"",
             "\"\"", "\t", "tab\t ", "\"blank \" ", "\xE9\x80", "\x83\x5C\x83"});
        if (m_choices.OnceIn(8)) {
            return std::nullopt;
        }
        return std::string(m_choices.OneOf(kDefaults));
    }

    void AskInSizes(ProfileQuestion question)
    {
        m_room.resize(40000);
        const bool whole = question.call == ProfileQuestion::Call::Section;
        const uint32_t count = whole ? m_profile.ReadSection(CString(question.section), m_room)
                                     : m_profile.ReadString(CString(question.section), CString(question.key),
                                                            CString(question.defaultText), m_room);
        const uint32_t program = m_choices.OneOf(kProgramBufferBytes);
        const auto tiny = static_cast<uint32_t>(m_choices.Below(12));
        const auto fitting = count + static_cast<uint32_t>(m_choices.Below(5));
        const auto within = static_cast<uint32_t>(m_choices.Below(count + 1));
        for (const uint32_t size : {program, tiny, fitting, within}) {
            question.bufferBytes = whole ? std::max(size, 2U) : size;
            m_questions.push_back(question);
        }
    }

    Choices m_choices;
    std::vector<std::string> m_names;
    CodePage m_codePage;
    Profile m_profile;
    std::vector<char> m_room;
    std::vector<ProfileQuestion> m_questions;
};

std::string QuotedOrNull(const std::optional<std::string>& text)
{
    return text ? Quoted(*text) : "null";
}
} // namespace

std::vector<ProfileQuestion> QuestionsAbout(const std::string& content)
{
    return Questioner(content).Ask();
}

std::string Quoted(const std::string& bytes)
{
    std::string quoted = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        if (byte >= 0x20 && byte < 0x7F) {
            quoted += c;
        } else {
            std::array<char, 8> octal{};
            static_cast<void>(std::snprintf(octal.data(), octal.size(), "\\%03o", byte));
            quoted += octal.data();
        }
    }
    return quoted + '"';
}

std::string Describe(const ProfileQuestion& question)
{
    const std::string bytes = std::to_string(question.bufferBytes) + " bytes";
    if (question.call == ProfileQuestion::Call::Section) {
        return "section " + QuotedOrNull(question.section) + ", " + bytes;
    }
    return "string " + QuotedOrNull(question.section) + ", " + QuotedOrNull(question.key) + ", default " +
           QuotedOrNull(question.defaultText) + ", " + bytes;
}
