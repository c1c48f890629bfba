#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <set>

#include "LanguageTable.h"
#include "TextLibrary.h"

namespace {
const std::vector<uint32_t> kTextIds = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 15, 17, 20, 21, 22, 23, 24, 1008};
constexpr int kMaximalBytes = 259;

/// @return the text in a code page; no value when the code page lacks one of its characters.
std::optional<std::string> Encode(const std::wstring& text, unsigned codePage)
{
    std::string bytes(text.size() * 3 + 1, '\0');
    BOOL replaced = FALSE;
    // UTF-8 has every character, and the platform allows no question about it.
    const bool hasAll = codePage == CP_UTF8;
    const int length =
        WideCharToMultiByte(codePage, hasAll ? 0 : WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
                            bytes.data(), static_cast<int>(bytes.size()), nullptr, hasAll ? nullptr : &replaced);
    if (length == 0 || replaced) {
        return {};
    }
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

/// @return every insert of the text: each per cent sign with what follows it that makes it one.
std::vector<std::wstring> InsertsOf(const std::wstring& text)
{
    std::vector<std::wstring> inserts;
    for (std::size_t at = text.find(L'%'); at != std::wstring::npos; at = text.find(L'%', at + 1)) {
        const bool counted = text.compare(at, 5, L"%1!u!") == 0;
        inserts.push_back(text.substr(at, counted ? 5 : 2));
    }
    return inserts;
}

bool HasTable(uint16_t language)
{
    return std::any_of(std::begin(kLanguages), std::end(kLanguages),
                       [language](const Language& row) { return row.id == language; });
}
} // namespace

TEST(Texts, EveryLanguageHasExactlyTheTextsOfTheProgram)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        SCOPED_TRACE(language.name);
        EXPECT_EQ(library.TextIds(language.id), kTextIds);
    }
}

TEST(Texts, TheEnglishTextsMeanWhatTheirNumbersMean)
{
    constexpr uint16_t kEnglish = 0x409;
    const std::vector<std::pair<uint32_t, std::wstring>> kTellingWords = {
        {1, L"Click OK"},
        {2, L"version 16.2"},
        {3, L"installation failed"},
        {4, L"installed now"},
        {5, L"No supported"},
        {6, L"Windows NT"},
        {7, L"version of Windows"},
        {8, L"administrator rights"},
        {9, L"successfully"},
        {10, L"Installing %s"},
        {13, L"management software is running"},
        {15, L"Cancel"},
        {17, L"Installation of"},
        {20, L"close all other programs"},
        {21, L"Please wait"},
        {22, L"restart it now?"},
        {23, L"Seconds until"},
        {24, L"could not be installed"},
        {1008, L"Norda Morvix Setup"},
    };
    const TextLibrary library;
    for (const auto& [id, words] : kTellingWords) {
        EXPECT_NE(library.Text(kEnglish, id).value_or(L"").find(words), std::wstring::npos) << id;
    }
    EXPECT_EQ(kTellingWords.size(), kTextIds.size());
}

TEST(Texts, EveryTextFitsTheMessageBufferInItsCodePageAndInUtf8)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        for (const unsigned codePage : {language.codePage, unsigned{CP_UTF8}}) {
            for (const uint32_t id : kTextIds) {
                SCOPED_TRACE(testing::Message() << language.name << " text " << id << " code page " << codePage);
                const std::optional<std::string> bytes = Encode(library.Text(language.id, id).value_or(L""), codePage);
                ASSERT_TRUE(bytes.has_value());
                EXPECT_LE(static_cast<int>(bytes->size()), kMaximalBytes);
            }
        }
    }
}

TEST(Texts, TheWelcomeWithItsAdviceFitsOneMessageBuffer)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        SCOPED_TRACE(language.name);
        const std::wstring both =
            library.Text(language.id, 1).value_or(L"") + library.Text(language.id, 20).value_or(L"");
        const std::optional<std::string> bytes = Encode(both, language.codePage);
        ASSERT_TRUE(bytes.has_value());
        EXPECT_LE(static_cast<int>(bytes->size()), kMaximalBytes);
    }
}

TEST(Texts, TheProgressTextTakesOneNameAndTheCountdownOneNumberAndNoOtherTextAnything)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        for (const uint32_t id : kTextIds) {
            SCOPED_TRACE(testing::Message() << language.name << " text " << id);
            std::vector<std::wstring> expected;
            if (id == 10 || id == 23) {
                expected.push_back(id == 10 ? L"%s" : L"%1!u!");
            }
            EXPECT_EQ(InsertsOf(library.Text(language.id, id).value_or(L"")), expected);
        }
    }
}

TEST(Texts, TheCountdownFormatsItsNumberInEveryLanguage)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        SCOPED_TRACE(language.name);
        const std::string text = Encode(library.Text(language.id, 23).value_or(L""), language.codePage).value_or("");
        DWORD_PTR arguments[] = {20};
        std::array<char, 520> formatted{};
        ASSERT_GT(FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, text.c_str(), 0, 0,
                                 formatted.data(), static_cast<DWORD>(formatted.size()),
                                 reinterpret_cast<va_list*>(arguments)),
                  0U);
        EXPECT_NE(std::string(formatted.data()).find("20"), std::string::npos);
        EXPECT_EQ(std::string(formatted.data()).find('%'), std::string::npos);
    }
}

TEST(Texts, TheTextsNameWhatTheUserMustKnow)
{
    const TextLibrary library;
    for (const Language& language : kLanguages) {
        SCOPED_TRACE(language.name);
        const auto text = [&](uint32_t id) { return library.Text(language.id, id).value_or(L""); };
        EXPECT_THAT(text(1), testing::AllOf(testing::HasSubstr(L"Morvix"), testing::HasSubstr(L"Norda")));
        EXPECT_THAT(text(2), testing::AllOf(testing::HasSubstr(L"FCoE"), testing::HasSubstr(L"16.2")));
        EXPECT_THAT(text(6), testing::HasSubstr(L"Windows NT"));
        EXPECT_THAT(text(7), testing::HasSubstr(L"Windows"));
        EXPECT_THAT(text(1008), testing::HasSubstr(L"Norda Morvix"));
    }
}

TEST(Texts, NoTwoLanguagesShareTheirWelcome)
{
    const TextLibrary library;
    std::set<std::wstring> welcomes;
    for (const Language& language : kLanguages) {
        welcomes.insert(library.Text(language.id, 1).value_or(L""));
    }
    // The two Chinese scripts serve five regions.
    EXPECT_EQ(welcomes.size(), 10U);
}

TEST(Texts, EveryLanguageThatTheProgramMayAskForHasItsTexts)
{
    constexpr uint16_t kJapanese = 17;
    constexpr uint16_t kKorean = 18;
    for (uint32_t system = 0; system <= 0xFFFF; ++system) {
        const uint16_t wanted = LanguageForSystem(static_cast<uint16_t>(system)).id;
        const uint16_t primary = wanted & 0x3FFU;
        // Systems exist with one region each of Japanese and Korean.
        const bool otherRegion = (primary == kJapanese || primary == kKorean) && wanted >> 10 != 1;
        if (wanted != 0 && !otherRegion) {
            EXPECT_TRUE(HasTable(wanted)) << wanted;
        }
    }
    EXPECT_TRUE(HasTable(kFallbackLanguage));
}

TEST(TextLibrary, HasNoCodeToRun)
{
    const TextLibrary library;
    const auto* base = reinterpret_cast<const unsigned char*>(library.Module());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    EXPECT_EQ(nt->OptionalHeader.AddressOfEntryPoint, 0U);
    EXPECT_EQ(nt->OptionalHeader.SizeOfCode, 0U);
}
