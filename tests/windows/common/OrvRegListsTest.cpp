#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <mbctype.h>

#include "RegistryValues.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace std::string_literals;

namespace {
class RegLists : public RegistryValues
{
};
} // namespace

TEST_F(RegLists, AListIsWrittenWithATerminatorForEachTextAndOneAtTheEnd)
{
    EXPECT_TRUE(key.SetValue("list", std::vector<COrvString>{"one", "two"}));
    EXPECT_EQ(Type("list"), static_cast<DWORD>(REG_MULTI_SZ));
    EXPECT_EQ(Bytes("list"), "one\0two\0\0"s);
    EXPECT_THAT(List("list"), ElementsAre("one", "two"));
}

TEST_F(RegLists, AnEmptyListIsOneZeroByte)
{
    EXPECT_TRUE(key.SetValue("list", std::vector<COrvString>{}));
    EXPECT_EQ(Bytes("list"), "\0"s);
    EXPECT_THAT(List("list"), IsEmpty());
}

TEST_F(RegLists, AnEmptyTextInAListIsWrittenAsATerminator)
{
    EXPECT_TRUE(key.SetValue("list", std::vector<COrvString>{"one", "", "three"}));
    EXPECT_EQ(Bytes("list"), "one\0\0three\0\0"s);
}

TEST_F(RegLists, AStoredListWhoseSecondOfThreeTextsIsEmptyReadsAsTwo)
{
    SetRegistryBytes(scratch.Path(), "list", "one\0\0three\0\0"s, REG_MULTI_SZ);
    EXPECT_THAT(List("list"), ElementsAre("one", "three"));
}

TEST_F(RegLists, APlainTextReadsAsAListOfOne)
{
    SetRegistryText(scratch.Path(), "text", "one");
    EXPECT_THAT(List("text"), ElementsAre("one"));
}

TEST_F(RegLists, TheNameMayBeInTheListThatReceivesTheValues)
{
    SetRegistryList(scratch.Path(), "a name too long to be kept inside its object", {"one", "two"});
    std::vector<COrvString> list{"a name too long to be kept inside its object"};
    EXPECT_TRUE(key.GetValue(list.front(), list));
    EXPECT_THAT(list, ElementsAre("one", "two"));
}

TEST_F(RegLists, UnterminatedAndEmptyListsAreReadSafely)
{
    SetRegistryBytes(scratch.Path(), "binary", "one\0two"s, REG_BINARY);
    EXPECT_THAT(List("binary"), ElementsAre("one", "two"));
    SetUnterminated("list", "one\0two"s, REG_MULTI_SZ);
    EXPECT_THAT(List("list"), ElementsAre("one", "two"));
    SetRegistryBytes(scratch.Path(), "nothing", "", REG_MULTI_SZ);
    EXPECT_THAT(List("nothing"), IsEmpty());
}

TEST_F(RegLists, AListStoredWithAnOddNumberOfBytesIsReadSafely)
{
    // Stored as wide text and one byte of a further character.
    const char odd[] = {'o', 0, 'n', 0, 'e', 0, 0, 0, 't', 0, 'w'};
    ASSERT_EQ(RegSetValueExW(key.GetHKey(), L"odd", 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(odd), sizeof(odd)),
              ERROR_SUCCESS);
    const std::vector<std::string> texts = List("odd");
    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts[0], "one");
    EXPECT_LE(texts.size(), 2U);
}

TEST_F(RegLists, AFailedListReadLeavesAnEmptyListAndItsStatus)
{
    std::vector<COrvString> list{"before"};
    EXPECT_FALSE(key.GetValue("missing", list));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_THAT(list, IsEmpty());
    list = {"before"};
    EXPECT_FALSE(closed.GetValue("list", list));
    EXPECT_EQ(closed.LastResult(), 0);
    EXPECT_THAT(list, IsEmpty());
}

TEST_F(RegLists, AddAppendsAndMakesAMissingList)
{
    EXPECT_TRUE(key.AddValueToMultiString("list", "one"));
    EXPECT_TRUE(key.AddValueToMultiString("list", "two"));
    EXPECT_EQ(Bytes("list"), "one\0two\0\0"s);
}

TEST_F(RegLists, AddOfATextThatIsThereInAnotherLetterCaseWritesNothing)
{
    // A list that a write would change: it lacks its terminators.
    SetRegistryBytes(scratch.Path(), "list", "One\0Two"s, REG_BINARY);
    EXPECT_TRUE(key.AddValueToMultiString("list", "tWO"));
    EXPECT_EQ(Bytes("list"), "One\0Two"s);
    EXPECT_EQ(Type("list"), static_cast<DWORD>(REG_BINARY));
}

TEST_F(RegLists, AddFailsOnAClosedKey)
{
    EXPECT_FALSE(closed.AddValueToMultiString("list", "one"));
    EXPECT_EQ(closed.LastResult(), 0);
}

TEST_F(RegLists, RemoveOfAMissingValueIsTrueAndCreatesNothing)
{
    EXPECT_TRUE(key.RemoveValueFromMultiString("list", "one"));
    EXPECT_EQ(Bytes("list"), "<none>");
    EXPECT_TRUE(closed.RemoveValueFromMultiString("list", "one"));
}

TEST_F(RegLists, RemoveOfTheOnlyTextWritesAOneByteEmptyList)
{
    SetRegistryList(scratch.Path(), "list", {"One"});
    EXPECT_TRUE(key.RemoveValueFromMultiString("list", "oNE"));
    EXPECT_EQ(Bytes("list"), "\0"s);
    EXPECT_EQ(Type("list"), static_cast<DWORD>(REG_MULTI_SZ));
}

TEST_F(RegLists, RemoveTakesEveryEqualTextAndKeepsTheOrder)
{
    SetRegistryList(scratch.Path(), "list", {"a", "X", "b", "x", "xx"});
    EXPECT_TRUE(key.RemoveValueFromMultiString("list", "x"));
    EXPECT_THAT(List("list"), ElementsAre("a", "b", "xx"));
}

TEST_F(RegLists, RemoveWithoutAMatchWritesNothing)
{
    SetRegistryBytes(scratch.Path(), "list", "One\0Two"s, REG_BINARY);
    EXPECT_TRUE(key.RemoveValueFromMultiString("list", "three"));
    EXPECT_EQ(Bytes("list"), "One\0Two"s);
}

TEST_F(RegLists, RemoveThroughAKeyOpenForReadingFails)
{
    SetRegistryList(scratch.Path(), "list", {"one", "two"});
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    EXPECT_FALSE(key.RemoveValueFromMultiString("list", "one"));
    EXPECT_EQ(key.LastResult(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Bytes("list"), "one\0two\0\0"s);
}

TEST_F(RegLists, IsValueComparesWholeTextsWithoutLetterCase)
{
    SetRegistryList(scratch.Path(), "list", {"One", "Two"});
    EXPECT_TRUE(key.IsValueInMultiString("list", "tWO"));
    EXPECT_FALSE(key.IsValueInMultiString("list", "Tw"));
    EXPECT_FALSE(key.IsValueInMultiString("missing", "One"));
    EXPECT_FALSE(closed.IsValueInMultiString("list", "One"));
}

TEST_F(RegLists, AFileNameInLowerCaseFindsTheFullPathAsStored)
{
    SetRegistryList(scratch.Path(), "list",
                    {R"(\??\C:\Other\Thing.exe)", R"(\??\C:\Windows\System32\TavUnstl.EXE)", R"(tavunstl.exe)"});
    COrvString match("before");
    EXPECT_TRUE(key.IsSubStringValueInMultiString("list", "tavunstl.exe", match));
    EXPECT_STREQ(match, R"(\??\C:\Windows\System32\TavUnstl.EXE)");
}

TEST_F(RegLists, TheSubstringItselfMayBeInAnyLetterCase)
{
    SetRegistryList(scratch.Path(), "list", {R"(\??\C:\Windows\system32\tavunstl.exe)"});
    COrvString match;
    EXPECT_TRUE(key.IsSubStringValueInMultiString("list", R"(SYSTEM32\TavUnstl.exe)", match));
    EXPECT_STREQ(match, R"(\??\C:\Windows\system32\tavunstl.exe)");
}

TEST_F(RegLists, AnEmptySubstringFindsTheFirstText)
{
    SetRegistryList(scratch.Path(), "list", {"One", "Two"});
    COrvString match;
    EXPECT_TRUE(key.IsSubStringValueInMultiString("list", "", match));
    EXPECT_STREQ(match, "One");
}

TEST_F(RegLists, ASubstringThatIsNowhereLeavesTheMatchUntouched)
{
    SetRegistryList(scratch.Path(), "list", {"One", "Two"});
    COrvString match("before");
    EXPECT_FALSE(key.IsSubStringValueInMultiString("list", "three", match));
    EXPECT_FALSE(key.IsSubStringValueInMultiString("missing", "One", match));
    EXPECT_FALSE(closed.IsSubStringValueInMultiString("list", "One", match));
    EXPECT_STREQ(match, "before");
}

namespace {
class MultibyteCodePage
{
public:
    explicit MultibyteCodePage(int codePage) : m_before(_getmbcp()) { _setmbcp(codePage); }
    ~MultibyteCodePage() { _setmbcp(m_before); }
    MultibyteCodePage(const MultibyteCodePage&) = delete;
    MultibyteCodePage& operator=(const MultibyteCodePage&) = delete;

private:
    int m_before;
};
} // namespace

TEST_F(RegLists, TheSecondByteOfACharacterIsNotALetterInAMultibyteCodePage)
{
    // 0x83 0x41 and 0x83 0x61 are two different characters of code page 932, and differ in "letter case" elsewhere.
    SetRegistryList(scratch.Path(), "list", {"\x83\x41"});
    {
        const MultibyteCodePage western(1252);
        EXPECT_TRUE(key.IsValueInMultiString("list", "\x83\x61"));
    }
    const MultibyteCodePage japanese(932);
    EXPECT_FALSE(key.IsValueInMultiString("list", "\x83\x61"));
}
