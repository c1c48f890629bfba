#include <windows.h>
// oleauto.h needs windows.h first.
#include <oleauto.h>

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>

#include "ImportOverride.h"
#include "OrvString.h"

namespace {
constexpr unsigned kWestern = 1252;
constexpr unsigned kJapanese = 932;
constexpr LCID kJapaneseLocale = 0x0411;

// Another locale, and with it another ANSI code page, for this thread.
class ThreadLocale
{
public:
    explicit ThreadLocale(LCID locale) : m_before(GetThreadLocale()) { SetThreadLocale(locale); }
    ~ThreadLocale() { SetThreadLocale(m_before); }
    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;

private:
    LCID m_before;
};

// Conversions that fail, the second one after it has told how much room it needs.
int WINAPI RefuseToWiden(UINT, DWORD, LPCCH, int, LPWSTR, int)
{
    return 0;
}
int WINAPI MeasureOnly(UINT, DWORD, LPCCH source, int, LPWSTR target, int)
{
    return target == nullptr ? static_cast<int>(std::strlen(source)) + 1 : 0;
}
} // namespace

TEST(CodePage, LocaleZeroIsTheSystems)
{
    EXPECT_EQ(COrvString::GetCodePage(0), GetACP());
}

TEST(CodePage, EachLocaleHasItsOwn)
{
    EXPECT_EQ(COrvString::GetCodePage(0x0409), 1252U);
    EXPECT_EQ(COrvString::GetCodePage(0x0411), 932U);
    EXPECT_EQ(COrvString::GetCodePage(0x0419), 1251U);
}

TEST(CodePage, AnUnknownLocaleGivesZero)
{
    EXPECT_EQ(COrvString::GetCodePage(0xFFFE), 0U);
}

TEST(StringFromWide, UsesTheThreadsCodePage)
{
    const ThreadLocale western(0x0409);
    EXPECT_STREQ(COrvString(L"caf\u00E9"), "caf\xE9");
    const ThreadLocale japanese(kJapaneseLocale);
    EXPECT_STREQ(COrvString(L"\u3042b"),
                 "\x82\xA0"
                 "b");
    EXPECT_STREQ(COrvString(L""), "");
}

TEST(StringToBstr, UsesTheThreadsCodePageAndIsFreedByTheCaller)
{
    const ThreadLocale japanese(kJapaneseLocale);
    wchar_t* const text =
        static_cast<wchar_t*>(COrvString("\x82\xA0"
                                         "b"));
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, L"\u3042b");
    EXPECT_EQ(SysStringLen(text), 2U);
    SysFreeString(text);
    wchar_t* const empty = static_cast<wchar_t*>(COrvString());
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(SysStringLen(empty), 0U);
    SysFreeString(empty);
}

TEST(StringToBstr, ATextThatCannotBeConvertedGivesNoBstr)
{
    const COrvString text("text");
    for (int WINAPI (*const refuse)(UINT, DWORD, LPCCH, int, LPWSTR, int) : {RefuseToWiden, MeasureOnly}) {
        wchar_t* result = nullptr;
        {
            const ImportOverride refused("MultiByteToWideChar", reinterpret_cast<void*>(refuse));
            result = static_cast<wchar_t*>(text);
        }
        EXPECT_EQ(result, nullptr);
        SysFreeString(result);
    }
}

TEST(Widen, ATerminatedTextIsConvertedWithItsTerminator)
{
    wchar_t target[10];
    std::wmemset(target, L'#', 10);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "caf\xE9", -1, target, 10), 5);
    EXPECT_STREQ(target, L"caf\u00E9");
    EXPECT_EQ(target[5], L'#');
}

TEST(Widen, ATargetThatIsTooSmallTakesTheStartAndATerminator)
{
    wchar_t target[10];
    std::wmemset(target, L'#', 10);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, target, 3), 6);
    EXPECT_STREQ(target, L"he");
    EXPECT_EQ(target[3], L'#');
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, target, 1), 6);
    EXPECT_STREQ(target, L"");
}

TEST(Widen, TheTerminatorReplacesTheLastCharacterOfASourceWithALength)
{
    wchar_t target[10]{};
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", 5, target, 10), 5);
    EXPECT_STREQ(target, L"hell");
}

TEST(Widen, ATargetLengthOfMinusOneIsNoLimit)
{
    wchar_t target[10]{};
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, target, -1), 6);
    EXPECT_STREQ(target, L"hello");
}

TEST(Widen, ImpossibleArgumentsGive0AndTouchNothing)
{
    wchar_t target[2] = L"#";
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, nullptr, 10), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, target, 0), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -1, target, -2), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", -2, target, 2), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "hello", 0, target, 2), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, nullptr, -1, target, 2), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(99999, 0, "hello", -1, target, 2), 0);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "\xFF", -1, target, 2), 0);
    EXPECT_STREQ(target, L"#");
}

TEST(Narrow, ConvertsWithDefaultCharacterAndReportsItsUse)
{
    char target[10];
    std::memset(target, '#', sizeof(target));
    BOOL used = FALSE;
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"a\u3042b", -1, target, 10, "!", &used), 4);
    EXPECT_STREQ(target, "a!b");
    EXPECT_EQ(target[4], '#');
    EXPECT_TRUE(used);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"ab", -1, target, 10, "!", &used), 3);
    EXPECT_FALSE(used);
}

TEST(Narrow, CountsBytesAndCutsAtTheTargetLength)
{
    char target[10]{};
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kJapanese, 0, L"\u3042\u3042", -1, target, 10, nullptr, nullptr), 5);
    EXPECT_STREQ(target, "\x82\xA0\x82\xA0");
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kJapanese, 0, L"hello", -1, target, 4, nullptr, nullptr), 6);
    EXPECT_STREQ(target, "hel");
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kJapanese, 0, L"hello", 5, target, 10, nullptr, nullptr), 5);
    EXPECT_STREQ(target, "hell");
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kJapanese, 0, L"hello", -1, target, -1, nullptr, nullptr), 6);
    EXPECT_STREQ(target, "hello");
}

TEST(Narrow, ImpossibleArgumentsGive0AndTouchNothing)
{
    char target[2] = "#";
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"hello", -1, nullptr, 10, nullptr, nullptr), 0);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"hello", -1, target, 0, nullptr, nullptr), 0);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"hello", -1, target, -2, nullptr, nullptr), 0);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"hello", -2, target, 2, nullptr, nullptr), 0);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"hello", 0, target, 2, nullptr, nullptr), 0);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(99999, 0, L"hello", -1, target, 2, nullptr, nullptr), 0);
    EXPECT_STREQ(target, "#");
}

TEST(WidenAlloc, AllocatesWhatTheTextNeedsAndDeallocResetsThePointer)
{
    wchar_t* target = nullptr;
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar_alloc(kJapanese, 0,
                                                       "\x82\xA0"
                                                       "b",
                                                       target),
              3);
    ASSERT_NE(target, nullptr);
    EXPECT_STREQ(target, L"\u3042b");
    COrvString::OrvMultiByteToWideChar_dealloc(target);
    EXPECT_EQ(target, nullptr);
    COrvString::OrvMultiByteToWideChar_dealloc(target);
    EXPECT_EQ(target, nullptr);
}

TEST(WidenAlloc, NeverOverwrites)
{
    wchar_t kept[] = L"kept";
    wchar_t* target = kept;
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar_alloc(kWestern, 0, "hello", target), 0);
    EXPECT_EQ(target, kept);
    EXPECT_STREQ(kept, L"kept");
}

TEST(WidenAlloc, AFailedConversionGives0AndNoArray)
{
    wchar_t* target = nullptr;
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar_alloc(99999, 0, "hello", target), 0);
    EXPECT_EQ(target, nullptr);
}

TEST(NarrowAlloc, AllocatesWhatTheTextNeedsAndDeallocResetsThePointer)
{
    char* target = nullptr;
    BOOL used = FALSE;
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte_alloc(kWestern, 0, L"a\u3042", target, "?", &used), 3);
    ASSERT_NE(target, nullptr);
    EXPECT_STREQ(target, "a?");
    EXPECT_TRUE(used);
    COrvString::OrvWideCharToMultiByte_dealloc(target);
    EXPECT_EQ(target, nullptr);
    COrvString::OrvWideCharToMultiByte_dealloc(target);
    EXPECT_EQ(target, nullptr);
}

TEST(NarrowAlloc, NeverOverwrites)
{
    char kept[] = "kept";
    char* target = kept;
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte_alloc(kWestern, 0, L"hello", target, nullptr, nullptr), 0);
    EXPECT_EQ(target, kept);
    EXPECT_STREQ(kept, "kept");
}

TEST(NarrowAlloc, AFailedConversionGives0AndNoArray)
{
    char* target = nullptr;
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte_alloc(99999, 0, L"hello", target, nullptr, nullptr), 0);
    EXPECT_EQ(target, nullptr);
}
