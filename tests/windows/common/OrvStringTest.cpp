#include "OrvString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <memory>
#include <stdexcept>

#include "LibraryTrace.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
constexpr char kHandlerLine[] = "OrvSecureInvalidParameterHandler : ERROR";

std::vector<std::string> Texts(const std::vector<COrvString>& list)
{
    std::vector<std::string> texts;
    for (const COrvString& text : list) {
        texts.push_back(text.Text());
    }
    return texts;
}

// The runtime's characters are those of another locale for the life of the object.
class CharacterLocale
{
public:
    explicit CharacterLocale(const char* locale) : m_before(std::setlocale(LC_CTYPE, nullptr))
    {
        if (std::setlocale(LC_CTYPE, locale) == nullptr) {
            throw std::runtime_error(std::string("the runtime knows no locale ") + locale);
        }
    }
    ~CharacterLocale() { std::setlocale(LC_CTYPE, m_before.c_str()); }
    CharacterLocale(const CharacterLocale&) = delete;
    CharacterLocale& operator=(const CharacterLocale&) = delete;

private:
    std::string m_before;
};
constexpr char kWesternLocale[] = "English_United States.1252";
constexpr char kRussianLocale[] = "Russian_Russia.1251";

COrvString Changed(const char* text, void (COrvString::*change)())
{
    COrvString changed(text);
    (changed.*change)();
    return changed;
}
} // namespace

TEST(String, StartsEmpty)
{
    const COrvString text;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_EQ(text.Length(), 0U);
    EXPECT_STREQ(text, "");
}

TEST(String, IsBuiltFromAndAssignedText)
{
    COrvString text("abc");
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(text.Length(), 3U);
    EXPECT_FALSE(text.IsEmpty());
    text = "other";
    EXPECT_STREQ(text, "other");
    text = std::string("third");
    EXPECT_STREQ(text, "third");
    const COrvString copied(text);
    EXPECT_STREQ(copied, "third");
    text = copied;
    EXPECT_STREQ(text, "third");
    EXPECT_STREQ(COrvString(std::string("fourth")), "fourth");
}

TEST(String, ANullPointerGivesAnEmptyString)
{
    const char* none = nullptr;
    const wchar_t* wideNone = nullptr;
    EXPECT_TRUE(COrvString(none).IsEmpty());
    EXPECT_TRUE(COrvString(wideNone).IsEmpty());
    COrvString text("abc");
    text = none;
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_FALSE(text == none);
}

TEST(String, CanBeAssignedAPartOfItself)
{
    COrvString text("a long text that does not fit into the object itself");
    text = static_cast<const char*>(text) + 7;
    EXPECT_STREQ(text, "text that does not fit into the object itself");
}

TEST(String, ANumberBecomesDecimalText)
{
    const LibraryTrace trace;
    EXPECT_STREQ(COrvString(0), "0");
    EXPECT_STREQ(COrvString(999999999), "999999999");
    EXPECT_STREQ(COrvString(-99999999), "-99999999");
    COrvString text("before");
    text = 42;
    EXPECT_STREQ(text, "42");
    EXPECT_THAT(trace.Messages(), IsEmpty());
}

TEST(String, AssigningAThousandMillionOverflowsTheConversionBufferAndIsReported)
{
    const LibraryTrace trace;
    COrvString text("before");
    text = 1000000000;
    EXPECT_STREQ(text, "");
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine));
    EXPECT_STREQ(COrvString(-100000000), "");
    EXPECT_STREQ(COrvString(static_cast<int>(0x80000000)), "");
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine, kHandlerLine, kHandlerLine));
}

TEST(String, CopyIsAnotherObject)
{
    COrvString text("abc");
    const std::unique_ptr<COrvString> copy(text.Copy());
    text.ClearString();
    EXPECT_TRUE(text.IsEmpty());
    EXPECT_STREQ(*copy, "abc");
}

TEST(String, ComparesExactlyAndByteByByte)
{
    const COrvString text("abc");
    EXPECT_TRUE(text == "abc");
    EXPECT_FALSE(text == "Abc");
    EXPECT_TRUE(text == COrvString("abc"));
    EXPECT_FALSE(text == COrvString("abcd"));
    EXPECT_TRUE(text == std::string("abc"));
    EXPECT_TRUE(text < COrvString("abd"));
    EXPECT_FALSE(text < COrvString("abc"));
    EXPECT_TRUE(COrvString("Z") < COrvString("a"));
    EXPECT_TRUE(COrvString("z") < COrvString("\xE9"));
}

TEST(String, ConcatenationIsANewString)
{
    const COrvString left("ab");
    const COrvString right("cd");
    EXPECT_STREQ(left + right, "abcd");
    EXPECT_STREQ(left + "x", "abx");
    EXPECT_STREQ("x" + left, "xab");
    EXPECT_STREQ(left, "ab");
}

TEST(String, CharacterClassesAreTheLibrarys)
{
    EXPECT_TRUE(COrvString::IsAlphaChar('q'));
    EXPECT_FALSE(COrvString::IsAlphaChar('\xE9'));
    EXPECT_TRUE(COrvString::IsNumericChar('9'));
    EXPECT_FALSE(COrvString::IsNumericChar('a'));
    EXPECT_TRUE(COrvString::IsSymbolicChar(' '));
    EXPECT_FALSE(COrvString::IsSymbolicChar('\x7F'));
    EXPECT_TRUE(COrvString::IsHexadecimal('F'));
    EXPECT_FALSE(COrvString::IsHexadecimal('G'));
}

TEST(StringType, LettersOnlyRefusesASpaceAndAllowsAByteOfNoClass)
{
    EXPECT_FALSE(COrvString("two words").IsStringType(1));
    EXPECT_TRUE(COrvString("caf\xE9").IsStringType(1));
    EXPECT_TRUE(COrvString("two words").IsStringType(1 | 4));
    EXPECT_TRUE(COrvString("").IsStringType(0));
    EXPECT_TRUE(COrvString("12ab").IsStringHexadecimal());
    EXPECT_TRUE(COrvString("").IsStringHexadecimal());
    EXPECT_FALSE(COrvString("12ag").IsStringHexadecimal());
}

TEST(StringTrim, ATextThatStartsWithATabStaysAsItIs)
{
    EXPECT_STREQ(Changed("\t  a", &COrvString::TrimLeft), "\t  a");
    EXPECT_STREQ(Changed("a \t", &COrvString::TrimRight), "a \t");
}

TEST(StringTrim, TakesSpacesFromEitherOrBothEnds)
{
    EXPECT_STREQ(Changed("  a b  ", &COrvString::TrimLeft), "a b  ");
    EXPECT_STREQ(Changed("  a b  ", &COrvString::TrimRight), "  a b");
    EXPECT_STREQ(Changed("  a b  ", &COrvString::Trim), "a b");
    EXPECT_STREQ(Changed("   ", &COrvString::Trim), "");
}

TEST(StringCase, LettersAreFoldedAndTheRestStays)
{
    EXPECT_STREQ(Changed("aZ 1-\xE9", &COrvString::MakeUpper), "AZ 1-\xE9");
    EXPECT_STREQ(Changed("aZ 1-\xC9", &COrvString::MakeLower), "az 1-\xC9");
    const std::string longText(5000, 'x');
    EXPECT_STREQ(Changed(longText.c_str(), &COrvString::MakeUpper), std::string(5000, 'X').c_str());
    EXPECT_STREQ(Changed("", &COrvString::MakeUpper), "");
}

TEST(StringCase, LettersAreThoseOfTheCurrentLocale)
{
    {
        const CharacterLocale western(kWesternLocale);
        EXPECT_STREQ(Changed("caf\xE9 \xD7", &COrvString::MakeUpper), "CAF\xC9 \xD7");
        EXPECT_STREQ(Changed("CAF\xC9 \xF7", &COrvString::MakeLower), "caf\xE9 \xF7");
    }
    {
        const CharacterLocale russian(kRussianLocale);
        EXPECT_STREQ(Changed("\xF7\xFF", &COrvString::MakeUpper), "\xD7\xDF");
        EXPECT_STREQ(Changed("\xD7\xDF", &COrvString::MakeLower), "\xF7\xFF");
    }
    EXPECT_STREQ(Changed("\xE9", &COrvString::MakeUpper), "\xE9") << "without a locale";
}

TEST(StringCase, CompareIKnowsTheLettersOfTheCurrentLocaleAndTheOperatorsDoNot)
{
    const COrvString lower("caf\xE9");
    const COrvString upper("CAF\xC9");
    EXPECT_FALSE(lower.CompareI(upper)) << "without a locale";
    const CharacterLocale western(kWesternLocale);
    EXPECT_TRUE(lower.CompareI(upper));
    EXPECT_FALSE(lower == upper);
    EXPECT_TRUE(upper < lower);
    EXPECT_TRUE(COrvString("z") < COrvString("\xE9"));
}

TEST(StringCase, CompareIIgnoresLetterCaseOnlyAndChangesNothing)
{
    const COrvString text("MixedCase");
    COrvString other("mIXEDcASE");
    EXPECT_TRUE(text.CompareI(other));
    EXPECT_STREQ(text, "MixedCase");
    EXPECT_STREQ(other, "mIXEDcASE");
    EXPECT_FALSE(text.CompareI("MixedCases"));
    EXPECT_TRUE(COrvString("").CompareI(""));
}

TEST(StringSplit, WithoutASeparatorTheListIsEmptyAndTheResultFalse)
{
    std::vector<COrvString> parts{"left over"};
    EXPECT_FALSE(COrvString("").Split(',', parts));
    EXPECT_THAT(parts, IsEmpty());
    parts = {"left over"};
    EXPECT_FALSE(COrvString("abc").Split(',', parts));
    EXPECT_THAT(parts, IsEmpty());
}

TEST(StringSplit, EmptyPartsAreKeptInsideAndInFrontButNotAtTheEnd)
{
    std::vector<COrvString> parts{"left over"};
    EXPECT_TRUE(COrvString(",a,,b,").Split(',', parts));
    EXPECT_THAT(Texts(parts), ElementsAre("", "a", "", "b"));
    EXPECT_TRUE(COrvString(",").Split(',', parts));
    EXPECT_THAT(Texts(parts), ElementsAre(""));
}

TEST(StringSplit, TheTextItselfMayBeInTheList)
{
    std::vector<COrvString> parts{"a,b"};
    EXPECT_TRUE(parts[0].Split(',', parts));
    EXPECT_THAT(Texts(parts), ElementsAre("a", "b"));
}

TEST(StringFormat, ReplacesTheTextAndReturnsItsLength)
{
    COrvString text("before");
    EXPECT_EQ(text.FormatString("%s-%d-%08X", "a", -5, 0xBEEFU), 13);
    EXPECT_STREQ(text, "a--5-0000BEEF");
    EXPECT_EQ(text.FormatString("[%s]", static_cast<const char*>(text)), 15);
    EXPECT_STREQ(text, "[a--5-0000BEEF]");
}

TEST(StringFormat, HoldsAtMost1023Characters)
{
    COrvString text;
    EXPECT_EQ(text.FormatString("%s", std::string(1023, 'a').c_str()), 1023);
    EXPECT_EQ(text.Text(), std::string(1023, 'a'));
    EXPECT_EQ(text.FormatString("%s", std::string(1024, 'b').c_str()), -1);
    EXPECT_EQ(text.Text(), std::string(1023, 'b'));
    EXPECT_EQ(text.FormatString("%s", std::string(50000, 'c').c_str()), -1);
    EXPECT_EQ(text.Text(), std::string(1023, 'c'));
}

TEST(StringFormat, ANullFormatGives0AndLeavesTheTextUnchanged)
{
    COrvString text("before");
    const char* none = nullptr;
    EXPECT_EQ(text.FormatString(none), 0);
    EXPECT_STREQ(text, "before");
}

namespace {
std::string Digits(size_t length)
{
    std::string digits;
    for (size_t i = 0; i < length; ++i) {
        digits += static_cast<char>('0' + i % 10);
    }
    return digits;
}
} // namespace

TEST(StringResource, IsLoadedWholeWhateverItsLength)
{
    HINSTANCE self = GetModuleHandleA(nullptr);
    COrvString text("before");
    EXPECT_EQ(text.LoadStringA(self, 101), 10);
    EXPECT_STREQ(text, "short text");
    struct Row
    {
        unsigned long id;
        int length;
    };
    // 1023 and 2047 fill a buffer exactly and so might have been cut.
    for (const Row row : {Row{102, 1022}, Row{103, 1023}, Row{104, 2047}, Row{105, 5000}}) {
        EXPECT_EQ(text.LoadStringA(self, row.id), row.length);
        EXPECT_EQ(text.Text(), Digits(static_cast<size_t>(row.length)));
    }
}

TEST(StringResource, AMissingOneGives0AndAnEmptyText)
{
    COrvString text("before");
    EXPECT_EQ(text.LoadStringA(GetModuleHandleA(nullptr), 999), 0);
    EXPECT_STREQ(text, "");
}

TEST(StringResource, ANullModuleGives0AndLeavesTheTextUnchanged)
{
    COrvString text("before");
    EXPECT_EQ(text.LoadStringA(nullptr, 101), 0);
    EXPECT_STREQ(text, "before");
}
