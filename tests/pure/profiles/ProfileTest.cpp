#include "Profile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <thread>

using namespace std::string_literals;
using testing::Each;
using testing::Eq;

namespace {
constexpr char kUntouched = '\x5A';

/// What a call has counted and written, without the untouched bytes at the end.
struct Written
{
    uint32_t count;
    std::string bytes;
    bool operator==(const Written&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Written& written)
{
    return stream << written.count << " " << testing::PrintToString(written.bytes);
}

template <class Call>
Written In(std::size_t size, Call call)
{
    std::string buffer(size, kUntouched);
    const uint32_t count = call(std::span(buffer));
    buffer.resize(buffer.find_last_not_of(kUntouched) + 1);
    return {count, buffer};
}

class File
{
public:
    explicit File(std::string content, ProfileDialect dialect = ProfileDialect::Wine, uint32_t codePage = 1252)
        : m_page(codePage), m_profile(std::move(content), m_page, dialect)
    {
    }

    [[nodiscard]] Written String(const char* section, const char* key, const char* otherwise,
                                 std::size_t size = 100) const
    {
        return In(size, [&](std::span<char> buffer) { return m_profile.ReadString(section, key, otherwise, buffer); });
    }
    [[nodiscard]] Written Section(const char* section, std::size_t size = 100) const
    {
        return In(size, [&](std::span<char> buffer) { return m_profile.ReadSection(section, buffer); });
    }
    /// A value, or "-" when it is missing.
    [[nodiscard]] std::string Value(const char* section, const char* key) const
    {
        return String(section, key, "-").bytes.c_str();
    }
    /// The lines of a section, each followed by "|".
    [[nodiscard]] std::string Lines(const char* section) const
    {
        const Written written = Section(section);
        std::string lines = written.bytes.substr(0, written.count);
        std::ranges::replace(lines, '\0', '|');
        return lines;
    }
    [[nodiscard]] const Profile& Reader() const { return m_profile; }

private:
    CodePage m_page;
    Profile m_profile;
};

File Windows(const std::string& content)
{
    return File(content, ProfileDialect::Windows);
}
} // namespace

TEST(Profile, AValueIsCutToTheBufferLessItsTerminator)
{
    const File file("[A]\nk=value\n");
    EXPECT_EQ(file.String("A", "k", "", 100), (Written{5, "value\0"s}));
    EXPECT_EQ(file.String("A", "k", "", 6), (Written{5, "value\0"s}));
    EXPECT_EQ(file.String("A", "k", "", 5), (Written{4, "valu\0"s}));
    EXPECT_EQ(file.String("A", "k", "", 2), (Written{1, "v\0"s}));
    EXPECT_EQ(file.String("A", "k", "", 1), (Written{0, "\0"s}));
    EXPECT_EQ(file.String("A", "k", "", 0), (Written{0, ""}));
}

TEST(Profile, ACutListCountsTwoLessThanTheBuffer)
{
    const File file("[A]\nk1=v1\nkey2=v2\n[BB]\n");
    EXPECT_EQ(file.String("A", nullptr, "", 10), (Written{8, "k1\0key2\0\0"s}));
    EXPECT_EQ(file.String("A", nullptr, "", 9), (Written{7, "k1\0key2\0"s}));
    EXPECT_EQ(file.String(nullptr, nullptr, "", 7), (Written{5, "A\0BB\0\0"s}));
    EXPECT_EQ(file.String(nullptr, nullptr, "", 6), (Written{4, "A\0BB\0"s}));
    EXPECT_EQ(file.String(nullptr, nullptr, "", 2), (Written{0, "\0"s}));
}

TEST(Profile, ACutSectionEndsWithTwoTerminatorsWithinTheBuffer)
{
    const File file("[A]\nk1=v1\nkey2=v2\n");
    EXPECT_EQ(file.Section("A", 16), (Written{14, "k1=v1\0key2=v2\0\0"s}));
    EXPECT_EQ(file.Section("A", 15), (Written{13, "k1=v1\0key2=v2\0\0"s}));
    EXPECT_EQ(file.Section("A", 9), (Written{7, "k1=v1\0k\0\0"s}));
    EXPECT_EQ(file.Section("A", 2), (Written{0, "\0\0"s}));
    EXPECT_EQ(file.Section("none"), (Written{0, "\0\0"s}));
    EXPECT_EQ(file.Section(nullptr), (Written{0, ""}));
}

TEST(Profile, ABufferTooSmallForASectionIsNeverLeft)
{
    const File file("[A]\nk=v\n");
    EXPECT_EQ(file.Section("A", 1), (Written{0, "\0"s}));
    EXPECT_EQ(file.Section("A", 0), (Written{0, ""}));
}

TEST(Profile, AKeyListWithoutRoomOrNamesIsTheDefault)
{
    const File file("[A]\nk=v\n[lines]\nline\n[nameless]\n=1\nk=2\n[none]\n");
    EXPECT_EQ(file.String("A", nullptr, "other", 2), (Written{1, "o\0"s}));
    EXPECT_EQ(file.String("lines", nullptr, "other"), (Written{5, "other\0"s}));
    EXPECT_EQ(file.String("nameless", nullptr, "other"), (Written{5, "other\0"s}));
    EXPECT_EQ(file.String("none", nullptr, "other "), (Written{6, "other \0"s}));
}

TEST(Profile, TheListOfSectionsHasNoDefault)
{
    EXPECT_EQ(File("").String(nullptr, "k", "other"), (Written{0, "\0"s}));
    EXPECT_EQ(File("[]\n[A]\n[A]\n").String(nullptr, nullptr, "other"), (Written{4, "A\0A\0\0"s}));
}

TEST(Profile, ADefaultLosesQuotesAndTheSpacesAtItsEndButNotItsFirstCharacter)
{
    const File file("");
    EXPECT_EQ(file.String("A", "k", "other  ").bytes, "other\0"s);
    EXPECT_EQ(file.String("A", "k", "  ").bytes, " \0"s);
    EXPECT_EQ(file.String("A", "k", "other\t").bytes, "other\t\0"s);
    EXPECT_EQ(file.String("A", "k", "\"other \" ").bytes, "other \0"s);
    EXPECT_EQ(file.String("A", "k", nullptr).bytes, "\0"s);
}

TEST(Profile, ValuesLoseOnePairOfQuotesAndSectionsKeepThem)
{
    const File file("[A]\na=\"x\"\nb='x'\nc=\"x\nd=\"x'\ne=\"\nf=\"\"x\"\"\ng=\" x \"\n");
    EXPECT_EQ(file.Value("A", "a"), "x");
    EXPECT_EQ(file.Value("A", "b"), "x");
    EXPECT_EQ(file.Value("A", "c"), "\"x");
    EXPECT_EQ(file.Value("A", "d"), "\"x'");
    EXPECT_EQ(file.Value("A", "e"), "\"");
    EXPECT_EQ(file.Value("A", "f"), "\"x\"");
    EXPECT_EQ(file.Value("A", "g"), " x ");
    EXPECT_EQ(file.Lines("A"), "a=\"x\"|b='x'|c=\"x|d=\"x'|e=\"|f=\"\"x\"\"|g=\" x \"|");
}

TEST(Profile, OnWineAQuotedValueThatJustFitsLosesItsLastCharacter)
{
    const std::string content = "[A]\nk=\"value\"\n";
    EXPECT_EQ(File(content).String("A", "k", "", 7).bytes, "value\0"s);
    EXPECT_EQ(File(content).String("A", "k", "", 6).bytes, "valu\0"s);
    EXPECT_EQ(File(content).String("A", "k", "", 5).bytes, "valu\0"s);
    EXPECT_EQ(Windows(content).String("A", "k", "", 6).bytes, "value\0"s);
}

TEST(Profile, OnlyTheFirstOfRepeatedSectionsAndKeysIsFound)
{
    const File file("[A]\nk=1\nk=2\n[a]\nk=3\nm=4\n");
    EXPECT_EQ(file.Value("a", "K"), "1");
    EXPECT_EQ(file.Value("A", "m"), "-");
    EXPECT_EQ(file.Lines("A"), "k=1|k=2|");
}

TEST(Profile, AnAnswerStaysTheSameHoweverOftenItIsAskedFor)
{
    const File file("[A]\nk=1\nK=2\nother\nlast=3\n[B]\nk=4\n");
    for (int question = 0; question < 20; ++question) {
        EXPECT_EQ(file.Value("A", "k"), "1") << question;
        EXPECT_EQ(file.Value("A", "LAST"), "3") << question;
        EXPECT_EQ(file.Value("A", "other"), "-") << question;
        EXPECT_EQ(file.Value("A", "missing"), "-") << question;
        EXPECT_EQ(file.Value("B", "k"), "4") << question;
    }
}

TEST(Profile, ManyNamesBeyondAsciiAndManyLinesThatEndWithACarriageReturnAreFound)
{
    std::string sections;
    std::string lines = "[A]\r";
    for (int number = 0; number < 3000; ++number) {
        std::string name;
        for (int digit = number; name.size() < 4; digit /= 10) {
            name += static_cast<char>('\xE0' + digit % 10);
        }
        sections += "[" + name + "]\rk=" + std::to_string(number) + "\r";
        lines += name + "=" + std::to_string(number) + "\r";
    }
    const File bySection(sections, ProfileDialect::Windows);
    const File byKey(lines, ProfileDialect::Windows);
    const std::map<const char*, std::string> rows = {{"\xE2\xE1\xE0\xE0", "12"},
                                                     {"\xC2\xC1\xC0\xC0", "12"},
                                                     {"\xE9\xE9\xE9\xE2", "2999"},
                                                     {"\xEA\xE0\xE0\xE0", "-"}};
    for (const auto& [name, expected] : rows) {
        EXPECT_EQ(bySection.Value(name, "k"), expected);
        for (int question = 0; question < 40; ++question) {
            EXPECT_EQ(byKey.Value("A", name), expected);
        }
    }
}

TEST(Profile, ABracketBeginsASectionOnlyAfterBlanksAtTheBeginningOfALine)
{
    const File file("[A]\nk=[B]\n\t [C] [D]\nx[E]\n[[F]\n");
    EXPECT_EQ(file.String(nullptr, nullptr, "").bytes, "A\0C] [D\0[F\0\0"s);
    EXPECT_EQ(file.Lines("A"), "k=[B]|");
    EXPECT_EQ(file.Lines("C] [D"), "x[E]|");
}

TEST(Profile, LinesWithoutAnEqualsSignAreMissingFromKeysAndPresentInSections)
{
    const File file("[A]\nline\nk=1\n");
    EXPECT_EQ(file.String("A", nullptr, "").bytes, "k\0\0"s);
    EXPECT_EQ(file.Lines("A"), "line|k=1|");
    EXPECT_EQ(file.Value("A", "line"), "-");
}

TEST(Profile, CommentsAreInNoListButCanBeAskedFor)
{
    const File file("[A]\n ;c=1\n#d=2\nk=3 ;e\n");
    EXPECT_EQ(file.Lines("A"), "#d=2|k=3 ;e|");
    EXPECT_EQ(file.String("A", nullptr, "").bytes, "#d\0k\0\0"s);
    EXPECT_EQ(file.Value("A", ";c"), "1");
}

TEST(Profile, OfLinesWithoutANameThatFollowEachOtherTheFirstCounts)
{
    EXPECT_EQ(File("[A]\n=1\n=2\nk=3\n=4\n").Lines("A"), "=1|k=3|=4|");
}

TEST(Profile, BlanksAroundNamesAndValuesAreStripped)
{
    const File file("[ A\t]\n\x1A k \t=\v v w \f\x1A\r\n");
    EXPECT_EQ(file.Lines("A"), "k=v w|");
    EXPECT_EQ(File("[A]\nk=1\x1A"
                   "2\n")
                  .Lines("A"),
              "k=1\x1A"
              "2|");
    EXPECT_EQ(File("[A]\n\xA0k\xA0=1\n").Lines("A"), "\xA0k\xA0=1|");
}

TEST(Profile, TextAfterANulInANameOrValueIsLost)
{
    EXPECT_EQ(File("[A\0x]\nk\0y=1\0z\n"s).Lines("A"), "k=1|");
}

TEST(Profile, EveryLineEndEndsALine)
{
    for (const char* const end : {"\r\n", "\n", "\r", "\n\r", "\r\r\n"}) {
        const std::string e = end;
        EXPECT_EQ(File("[A]" + e + "k=1" + e + e + "m=2").Lines("A"), "k=1|m=2|");
    }
}

TEST(Profile, TextAfterASectionNameIsIgnored)
{
    EXPECT_EQ(File("[A] ; remark\nk=1\n").Lines("A"), "k=1|");
    EXPECT_EQ(File("[A]k=0\nk=1\n").Lines("A"), "k=1|");
}

TEST(ProfileDialect, ANameWithABracketEndsAtTheLastOneOnWineAndAtTheFirstOnWindows)
{
    const std::string content = "[a]b]\nk=1\n";
    EXPECT_EQ(File(content).Lines("a]b"), "k=1|");
    EXPECT_EQ(File(content).Lines("a"), "");
    EXPECT_EQ(Windows(content).Lines("a"), "k=1|");
}

TEST(ProfileDialect, AnUnclosedNameIsALineOnWineAndASectionOnWindows)
{
    const std::string content = "[A]\nk=1\n[b \nm=2\n";
    EXPECT_EQ(File(content).Lines("A"), "k=1|[b|m=2|");
    EXPECT_EQ(Windows(content).Lines("A"), "k=1|");
    EXPECT_EQ(Windows(content).Lines("b"), "m=2|");
}

TEST(ProfileDialect, AUtf8MarkHidesASectionInTheFirstLineOnWindowsOnly)
{
    const std::string content = "\xEF\xBB\xBF[A]\nk=1\n[B]\nm=2\n";
    EXPECT_EQ(File(content).Lines("A"), "k=1|");
    EXPECT_EQ(Windows(content).Lines("A"), "");
    EXPECT_EQ(Windows(content).Lines("B"), "m=2|");
}

TEST(ProfileDialect, BigEndianFilesAreReadOnWineOnly)
{
    const std::string content =
        "\xFE\xFF\0[\0A\0]\0\n\0k\0=\0"
        "1\0\n"s;
    EXPECT_EQ(File(content).Lines("A"), "k=1|");
    EXPECT_EQ(Windows(content).Lines("A"), "");
}

TEST(ProfileDialect, TabsAroundTheNamesOfAQuestionAreStrippedOnWineOnly)
{
    const std::string content = "[A]\nk=1\n";
    EXPECT_EQ(File(content).Value("\tA\t", "\tk\x1A"), "1");
    EXPECT_EQ(Windows(content).Value("A", "\tk"), "-");
    EXPECT_EQ(Windows(content).Value(" A ", " k "), "1");
}

TEST(ProfileDialect, TheSectionWithoutANameHoldsTheFirstLinesOnWineAndItsOwnOnWindows)
{
    const std::string content = "first=1\n[]\nsecond=2\n";
    EXPECT_EQ(File(content).Lines(""), "first=1|");
    EXPECT_EQ(Windows(content).Lines(""), "second=2|");
}

TEST(ProfileDialect, LettersBeyondAsciiHaveOneCaseOnWineAndTwoOnWindows)
{
    const std::string content = "[\xC4]\n\xD6=1\n";
    EXPECT_EQ(File(content).Lines("\xE4"), "");
    EXPECT_EQ(Windows(content).Value("\xE4", "\xF6"), "1");
}

TEST(ProfileDialect, BlanksAtTheEqualsSignAreShownInSectionsOnWindowsOnly)
{
    const std::string content = "[A]\n k = 1 \n";
    EXPECT_EQ(File(content).Lines("A"), "k=1|");
    EXPECT_EQ(Windows(content).Lines("A"), "k = 1|");
    EXPECT_EQ(Windows("\xFF\xFE[\0A\0]\0\n\0k\0 \0=\0 \0"
                      "1\0"s)
                  .Lines("A"),
              "k = 1|");
}

TEST(ProfileCodePages, Utf16IsNarrowedAndWhatTheCodePageLacksIsReplaced)
{
    const std::string content = "\xFF\xFE[\0A\0]\0\n\0k\0=\0\xE9\0\xAC\x20\x01\x41\x1D\xFF\n\0"s;
    EXPECT_EQ(File(content).Value("A", "k"), "\xE9\x80?=");
    EXPECT_EQ(File(content, ProfileDialect::Wine, 65001).Value("A", "k"),
              "\xC3\xA9\xE2\x82\xAC\xE4\x84\x81\xEF\xBC\x9D");
}

TEST(ProfileCodePages, AReplacedCharacterInANameCannotBeAskedFor)
{
    const std::string content =
        "\xFF\xFE[\0A\0]\0\n\0\x2D\x4E=\0"
        "1\0\n\0"s;
    EXPECT_EQ(File(content).Lines("A"), "?=1|");
    EXPECT_EQ(File(content).Value("A", "?"), "-");
}

TEST(ProfileCodePages, AFirstByteOfAPairHidesTheBracketThatFollows)
{
    const std::string content = "[\x83]\x83]]\nk=\x83\\\n";
    EXPECT_EQ(File(content, ProfileDialect::Wine, 932).Value("\x83]\x83]", "k"), "\x83\\");
}

TEST(ProfileCodePages, AValueIsNotCutWithinAPairButASectionIs)
{
    const File file("[A]\nk=\x83\\\x83]\n", ProfileDialect::Wine, 932);
    EXPECT_EQ(file.String("A", "k", "", 4), (Written{3, "\x83\\\x5A\0"s}));
    EXPECT_EQ(file.Section("A", 5), (Written{3, "k=\x83\0\0"s}));
}

TEST(ProfileCodePages, PairsThatDoNotExistAreReplaced)
{
    EXPECT_EQ(File("[A]\nk=\x85\x40\x87\x90\n", ProfileDialect::Wine, 932).Value("A", "k"), "\x81\x45\x81\xE0");
    EXPECT_EQ(File("[A]\nk=\x81\xFFx\n", ProfileDialect::Wine, 936).Value("A", "k"), "?x");
}

TEST(ProfileCodePages, ANameIsFoundAsItIsAskedFor)
{
    const File file("[\x81\x45]\n\x81\x45=1\n", ProfileDialect::Wine, 932);
    // A pair that does not exist is asked for as the one that replaces it, and half a pair at the end is dropped.
    EXPECT_EQ(file.Value("\x85\x40\x83", "\x85\x40\x83"), "1");
    EXPECT_EQ(file.Reader().FindSection("\x85\x40\x83"), 1U);
    EXPECT_TRUE(file.Reader().FindEntry("\x85\x40\x83", "\x85\x40\x83"));
}

TEST(ProfilePlaces, NamesAndValuesHaveLineAndColumn)
{
    const File file("\r\n[A]\r\n  key = \"v\"\rk\xE9=1\n");
    EXPECT_EQ(file.Reader().SectionPlace(1), (ProfilePlace{2, 2, 2}));
    const auto first = file.Reader().FindEntry("A", "key");
    ASSERT_TRUE(first);
    EXPECT_EQ(first->namePlace, (ProfilePlace{3, 3, 3}));
    EXPECT_EQ(first->valuePlace, (ProfilePlace{3, 9, 9}));
    EXPECT_EQ(first->value, "\"v\"");
    const auto second = file.Reader().FindEntry("A", "k\xE9");
    ASSERT_TRUE(second);
    EXPECT_EQ(second->valuePlace, (ProfilePlace{4, 4, 4}));
}

TEST(ProfilePlaces, AListedEntryIsALineOfTheSectionsAnswer)
{
    const File file("[A]\n;c=1\n\nline\n=\nk=2\n");
    EXPECT_EQ(file.Lines("A"), "line|=|k=2|");
    EXPECT_EQ(file.Reader().ListedEntry(1, 0).value().namePlace.line, 4U);
    EXPECT_EQ(file.Reader().ListedEntry(1, 1).value().namePlace.line, 5U);
    EXPECT_EQ(file.Reader().ListedEntry(1, 2).value().name, "k");
    EXPECT_FALSE(file.Reader().ListedEntry(1, 3));
}

TEST(ProfilePlaces, ColumnsCountCharactersAndByteColumnsBytes)
{
    const File utf8("\xEF\xBB\xBF[A]\nk\xC3\xA9=1\n");
    EXPECT_EQ(utf8.Reader().SectionPlace(1), (ProfilePlace{1, 2, 2}));
    EXPECT_EQ(utf8.Reader().EntryAt(1, 0).valuePlace, (ProfilePlace{2, 4, 5}));
    const File utf16(
        "\xFF\xFE[\0A\0]\0\n\0k\0=\0"
        "1\0"s);
    EXPECT_EQ(utf16.Reader().EntryAt(1, 0).valuePlace, (ProfilePlace{2, 3, 5}));
    const File japanese("[A]\n\x83\\=1\n", ProfileDialect::Wine, 932);
    EXPECT_EQ(japanese.Reader().EntryAt(1, 0).valuePlace, (ProfilePlace{2, 3, 4}));
}

TEST(Profile, ManyThreadsAskOneObject)
{
    std::string content = "[A]\n";
    for (int key = 0; key < 500; ++key) {
        content += "key" + std::to_string(key) + "=" + std::to_string(key) + "\n";
    }
    const File file(content);
    std::array<int, 4> wrong{};
    std::vector<std::thread> threads;
    for (int& count : wrong) {
        threads.emplace_back([&file, &count] {
            for (int round = 0; round < 2000; ++round) {
                const std::string number = std::to_string(round % 500);
                count += file.Value("A", ("KEY" + number).c_str()) == number ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(wrong, Each(Eq(0)));
}

namespace {
/// What a reader makes of a file: its sections with the lines of each.
std::vector<std::string> PartsOf(const Profile& profile)
{
    std::vector<std::string> parts;
    for (std::size_t section = 0; section < profile.SectionCount(); ++section) {
        parts.push_back("[" + std::string(profile.SectionName(section)));
        for (std::size_t index = 0; index < profile.EntryCount(section); ++index) {
            const Profile::Entry entry = profile.EntryAt(section, index);
            parts.push_back(std::to_string(entry.namePlace.line) + " " + std::string(entry.name) +
                            (entry.value ? "=" + std::string(*entry.value) : ""));
        }
    }
    return parts;
}
} // namespace

TEST(ProfileDialects, AreReadAlikeWhereBothTakeTheSameSectionsAndLines)
{
    const CodePage page(1252);
    constexpr auto kPieces = std::to_array<const char*>(
        {"[", "]", "a", "b=c", " ", "\t", "\n", "\r\n", ";", "\"", "[a]\n", "=", "\xEF\xBB\xBF", "\xFE\xFF", "\xE4"});
    std::mt19937 engine(1);
    int alike = 0;
    int different = 0;
    for (int number = 0; number < 20000; ++number) {
        std::string text;
        for (auto count = engine() % 12; count > 0; --count) {
            text += kPieces.at(engine() % kPieces.size());
        }
        const Profile windows(text, page, ProfileDialect::Windows);
        const Profile wine(text, page, ProfileDialect::Wine);
        EXPECT_EQ(windows.IsReadAlike(), wine.IsReadAlike()) << testing::PrintToString(text);
        const bool same = PartsOf(windows) == PartsOf(wine);
        EXPECT_TRUE(same || !windows.IsReadAlike()) << testing::PrintToString(text);
        alike += windows.IsReadAlike() ? 1 : 0;
        different += same ? 0 : 1;
    }
    EXPECT_LT(1000, alike);
    EXPECT_LT(1000, different);
}

TEST(ProfileIndex, FindsTheFirstLineOfEachNameAmongThousands)
{
    const CodePage page(1252);
    std::string text = "[one]\n";
    for (const char* const section : {"[two]\n", "[three]\n"}) {
        for (int line = 0; line < 3000; ++line) {
            text += "; a comment\nname" + std::to_string(line) + "=" + std::to_string(line) + "\nname" +
                    std::to_string(line / 2) + "=again\n";
        }
        text += section;
    }
    const Profile profile(text, page, ProfileDialect::Windows);
    for (int line = 0; line < 3000; ++line) {
        const std::string name = "NAME" + std::to_string(line);
        const auto first = profile.FindEntry("one", name);
        ASSERT_TRUE(first.has_value()) << name;
        EXPECT_EQ(static_cast<uint32_t>(line * 3 + 3), first->namePlace.line) << name;
        const auto second = profile.FindEntry("two", name);
        ASSERT_TRUE(second.has_value()) << name;
        EXPECT_EQ(static_cast<uint32_t>(9000 + 1 + line * 3 + 3), second->namePlace.line) << name;
    }
    EXPECT_FALSE(profile.FindEntry("one", "name3000").has_value());
    EXPECT_FALSE(profile.FindEntry("three", "name1").has_value());
}

TEST(ProfileEntries, AreListedUnlessTheyAreCommentsOrEmpty)
{
    const CodePage page(1252);
    const Profile profile("[a]\nb = c\n;d=e\n=\nf\n", page, ProfileDialect::Windows);
    ASSERT_EQ(4U, profile.EntryCount(1));
    EXPECT_TRUE(profile.IsListed(1, 0));
    EXPECT_FALSE(profile.IsListed(1, 1));
    EXPECT_TRUE(profile.IsListed(1, 2));
    EXPECT_TRUE(profile.IsListed(1, 3));
    EXPECT_EQ("b = c", profile.EntryAt(1, 0).text);
    EXPECT_EQ("f", profile.EntryAt(1, 3).text);
}
