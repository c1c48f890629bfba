// The portable reader of INI and INF files. The whole input is the file, so that an INI is a seed as it is.

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Profile.h"
#include "ProfileQuestions.h"
#include "Promise.h"

namespace {
constexpr std::size_t kQuestions = 20;

const CodePage& Western()
{
    static const CodePage page(1252);
    return page;
}

const char* CString(const std::optional<std::string>& text)
{
    return text ? text->c_str() : nullptr;
}

uint32_t Ask(const Profile& profile, const ProfileQuestion& question, std::span<char> buffer)
{
    if (question.call == ProfileQuestion::Call::Section) {
        return profile.ReadSection(CString(question.section), buffer);
    }
    return profile.ReadString(CString(question.section), CString(question.key), CString(question.defaultText), buffer);
}

std::string Answer(const Profile& profile, const ProfileQuestion& question, std::size_t size)
{
    const ExactBuffer buffer(size);
    const uint32_t count = Ask(profile, question, buffer.All());
    Promise(size == 0 ? count == 0 : count < size, "the count leaves room for a terminator");
    Promise(size == 0 || buffer.Text()[count] == '\0', "the terminator follows what is counted");
    return std::string(buffer.Text().substr(0, count));
}

void CheckAnswers(const Profile& profile, const std::vector<ProfileQuestion>& questions, std::size_t fileBytes)
{
    for (const ProfileQuestion& question : questions) {
        const std::string answer = Answer(profile, question, question.bufferBytes);
        const bool list = question.call == ProfileQuestion::Call::Section || !question.key;
        // Clearing and guarding a buffer takes most of the time; this one is longer than any answer.
        const std::string whole = Answer(profile, question, fileBytes * 3 + 100);
        // A key list without room becomes the default, and a buffer may end within a character.
        if (question.bufferBytes > (list ? 2U : 0U) && profile.SectionCount() > 0 &&
            whole.size() + 2 < question.bufferBytes) {
            Promise(answer == whole, "an answer that fits is whole");
        }
    }
}

/// The first entry of that name in the first section of that name, looked for one by one.
std::optional<Profile::Entry> FoundPlainly(const Profile& profile, std::string_view section, std::string_view key)
{
    for (std::size_t at = 0; at < profile.SectionCount(); ++at) {
        if (!SameLetters(profile.SectionName(at), section)) {
            continue;
        }
        for (std::size_t entry = 0; entry < profile.EntryCount(at); ++entry) {
            if (SameLetters(profile.EntryAt(at, entry).name, key)) {
                return profile.EntryAt(at, entry);
            }
        }
        return std::nullopt;
    }
    return std::nullopt;
}

bool IsPlain(std::string_view name)
{
    return std::ranges::all_of(name, [](char c) { return c > ' ' && c < 0x7F; });
}

/// Byte number `column` of line number `line`, both counted from 1, of an 8-bit file.
std::string_view TextAt(std::string_view file, const ProfilePlace& place)
{
    for (uint32_t line = 1; line < place.line; ++line) {
        const std::size_t end = file.find_first_of("\r\n");
        Promise(end != std::string_view::npos, "a place lies in a line that the file has");
        file.remove_prefix(end + (file.substr(end, 2) == "\r\n" ? 2 : 1));
    }
    return file.substr(place.byteColumn - 1);
}

void CheckEntries(const Profile& profile, std::string_view file)
{
    const bool marked =
        file.starts_with("\xEF\xBB\xBF") || file.starts_with("\xFF\xFE") || file.starts_with("\xFE\xFF");
    for (std::size_t section = 0; section < profile.SectionCount(); ++section) {
        const std::size_t count = std::min<std::size_t>(profile.EntryCount(section), 30);
        for (std::size_t at = 0; at < count; ++at) {
            const Profile::Entry entry = profile.EntryAt(section, at);
            if (!marked) {
                Promise(TextAt(file, entry.namePlace).starts_with(entry.name), "a name lies at its place");
                Promise(!entry.value || TextAt(file, entry.valuePlace).starts_with(*entry.value),
                        "a value lies at its place");
                Promise(entry.namePlace.column == entry.namePlace.byteColumn, "one byte is one character");
            }
            const std::string_view name = profile.SectionName(section);
            if (!marked && IsPlain(entry.name) && IsPlain(name)) {
                const auto found = profile.FindEntry(name, entry.name);
                const auto expected = FoundPlainly(profile, name, entry.name);
                Promise(
                    found.has_value() == expected.has_value() && (!found || found->namePlace == expected->namePlace),
                    "the first entry of the first section is found");
            }
        }
    }
}

/// The file as it would be in UTF-16 if each byte were a character of ISO 8859-1.
std::string Widened(std::string_view file, std::string_view mark, bool bigEndian)
{
    std::string wide(mark);
    for (const char c : file) {
        wide += bigEndian ? '\0' : c;
        wide += bigEndian ? c : '\0';
    }
    return wide;
}

void CheckUnicodeForms(const std::string& file, const std::vector<ProfileQuestion>& questions)
{
    if (std::ranges::any_of(file, [](char c) { return static_cast<unsigned char>(c) >= 0x80; })) {
        return;
    }
    const Profile plain(file, Western(), ProfileDialect::Wine);
    const Profile little(Widened(file, "\xFF\xFE", false), Western(), ProfileDialect::Wine);
    const Profile big(Widened(file, "\xFE\xFF", true), Western(), ProfileDialect::Wine);
    const Profile utf8("\xEF\xBB\xBF" + file, Western(), ProfileDialect::Wine);
    for (const ProfileQuestion& question : questions) {
        const std::string expected = Answer(plain, question, question.bufferBytes);
        for (const Profile* const other : {&little, &big, &utf8}) {
            Promise(Answer(*other, question, question.bufferBytes) == expected, "ASCII reads alike in every form");
        }
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string file(reinterpret_cast<const char*>(data), size);
    std::vector<ProfileQuestion> questions;
    for (ProfileQuestion& question : QuestionsAbout(file)) {
        if (questions.size() < kQuestions && question.bufferBytes < 2000) {
            questions.push_back(std::move(question));
        }
    }
    for (const uint32_t number : {1252U, 932U, 65001U}) {
        const CodePage page(number);
        for (const ProfileDialect dialect : {ProfileDialect::Wine, ProfileDialect::Windows}) {
            const Profile profile(file, page, dialect);
            CheckAnswers(profile, questions, size);
        }
    }
    CheckEntries(Profile(file, Western(), ProfileDialect::Wine), file);
    CheckUnicodeForms(file, questions);
    return 0;
}
