// The language of the dialog. What the dialog does is seen in runs of the whole program.
#include "ProgressDialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "DialogControls.h"
#include "ImportOverride.h"
#include "LangString.h"
#include "RunOptions.h"

using testing::ElementsAre;

namespace {
constexpr uint16_t kEnglish = 0x0409;
constexpr uint16_t kGerman = 0x0407;
constexpr uint16_t kFrench = 0x040C;
constexpr uint16_t kItalian = 0x0410;

std::string TextOf(HWND window)
{
    std::array<char, 64> text{};
    GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
    return text.data();
}

/// The dialog of an interactive run, which waits for OK. The test program's own resources (ProgressDialogTest.rc) have
/// template and texts in three languages.
class DialogLanguage : public testing::Test
{
protected:
    DialogLanguage()
    {
        RunOptions = {};
        resourceModule = GetModuleHandleA(nullptr);
        installThreadParameters = {.record = &m_record};
    }
    ~DialogLanguage() override
    {
        SetThreadLocale(m_localeBefore);
        resourceModule = nullptr;
        runLanguageId = kEnglish;
        installThreadParameters = {};
    }

    /// @return the title, which is a text, and the caption of a button, which is the template's.
    static std::array<std::string, 2> TitleAndButton()
    {
        const HWND dialog = CreateProgressDialog(nullptr);
        EXPECT_NE(dialog, nullptr);
        std::array<std::string, 2> texts{TextOf(dialog), TextOf(GetDlgItem(dialog, kFinishButton))};
        // Another procedure, because the dialog's own would post the end of a message loop.
        SetWindowLongPtrA(dialog, DWLP_DLGPROC, 0);
        DestroyWindow(dialog);
        return texts;
    }

private:
    DriverInstallRecord m_record;
    const LCID m_localeBefore = GetThreadLocale();
};
} // namespace

TEST_F(DialogLanguage, IsThatOfTheRunInTemplateAndTextsWhateverTheUsersIs)
{
    for (const uint16_t user : {kEnglish, kGerman, kFrench, kItalian}) {
        SetThreadLocale(user);
        runLanguageId = kEnglish;
        EXPECT_THAT(TitleAndButton(), ElementsAre("caption", "Finish")) << user;
        runLanguageId = kGerman;
        EXPECT_THAT(TitleAndButton(), ElementsAre("Titel", "Fertig")) << user;
        runLanguageId = kFrench;
        EXPECT_THAT(TitleAndButton(), ElementsAre("titre", "Terminer")) << user;
        EXPECT_EQ(GetThreadLocale(), user) << "afterwards the thread's locale is as it was";
    }
}

namespace {
/// The thread's language settings, in order; "none" where its own list is removed.
std::vector<std::string> preferred;

BOOL WINAPI NotePreferred(DWORD format, const wchar_t* languages, ULONG* count)
{
    constexpr DWORD kLanguageIdentifiers = 4;
    EXPECT_EQ(format, kLanguageIdentifiers);
    EXPECT_EQ(count, nullptr);
    std::string list;
    for (; languages != nullptr && *languages != L'\0'; ++languages) {
        list += static_cast<char>(*languages);
    }
    if (languages != nullptr) {
        EXPECT_EQ(languages[1], L'\0') << "a list ends with two terminators";
    }
    preferred.push_back(languages == nullptr ? "none" : list);
    return TRUE;
}

decltype(&GetProcAddress) realGetProcAddress = nullptr;

FARPROC WINAPI WithNotes(HMODULE module, LPCSTR name)
{
    return std::strcmp(name, "SetThreadPreferredUILanguages") == 0 ? std::bit_cast<FARPROC>(&NotePreferred)
                                                                   : realGetProcAddress(module, name);
}

FARPROC WINAPI WithoutPreferredLanguages(HMODULE module, LPCSTR name)
{
    return std::strcmp(name, "SetThreadPreferredUILanguages") == 0 ? nullptr : realGetProcAddress(module, name);
}
} // namespace

TEST_F(DialogLanguage, IsPreferredOnTheThreadWhileTheDialogIsMadeAndThenTakenBack)
{
    realGetProcAddress = &GetProcAddress;
    const ImportOverride notes("GetProcAddress", reinterpret_cast<void*>(WithNotes));
    preferred.clear();
    runLanguageId = 0x0C04;
    TitleAndButton();
    runLanguageId = kGerman;
    TitleAndButton();
    EXPECT_THAT(preferred, ElementsAre("0C04", "none", "0407", "none"));
}

TEST_F(DialogLanguage, OnASystemWithoutPreferredLanguagesTheThreadsLocaleDecides)
{
    realGetProcAddress = &GetProcAddress;
    const ImportOverride without("GetProcAddress", reinterpret_cast<void*>(WithoutPreferredLanguages));
    SetThreadLocale(kFrench);
    runLanguageId = kGerman;
    EXPECT_THAT(TitleAndButton(), ElementsAre("Titel", "Fertig"));
}
