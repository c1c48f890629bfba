// The restart countdown, tick by tick, with the platform's side of it noted.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <array>

#include "DialogControls.h"
#include "ImportOverride.h"
#include "LangString.h"
#include "MessageFormats.h"
#include "ProgressDialog.h"
#include "RestartMessage.h"
#include "RunOptions.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
HWND dialogWindow = nullptr;
std::vector<std::string> effects;

std::string NameOf(HWND window)
{
    return window == dialogWindow ? "" : " of another window";
}

UINT_PTR WINAPI NoteTimer(HWND window, UINT_PTR timer, UINT milliseconds, TIMERPROC procedure)
{
    effects.push_back("timer " + std::to_string(timer) + NameOf(window) + ": " + std::to_string(milliseconds) +
                      (procedure == nullptr ? "" : " with a procedure"));
    return 1;
}

BOOL WINAPI NoteKill(HWND window, UINT_PTR timer)
{
    effects.push_back("kill " + std::to_string(timer) + NameOf(window));
    return TRUE;
}

BOOL WINAPI NoteRestart(UINT flags, DWORD reason)
{
    effects.push_back("restart " + std::to_string(flags) + " " + std::to_string(reason));
    return TRUE;
}

BOOL WINAPI LeavePrivileges(HANDLE, BOOL, PTOKEN_PRIVILEGES, DWORD, PTOKEN_PRIVILEGES, PDWORD)
{
    return TRUE;
}

/// A dialog of the status text alone, never shown, whose timers are only noted. No restart reaches the system.
class Countdown : public testing::Test
{
protected:
    Countdown()
        : m_window(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr)),
          m_status(CreateWindowA("STATIC", "", WS_CHILD, 0, 0, 9, 9, m_window,
                                 reinterpret_cast<HMENU>(UINT_PTR{kStatusText}), nullptr, nullptr))
    {
        dialogWindow = m_window;
        resourceModule = GetModuleHandleA(nullptr);
        effects.clear();
    }
    ~Countdown() override
    {
        RunOptions = {};
        resourceModule = nullptr;
        DestroyWindow(m_window);
    }

    INT_PTR Offer() { return ProgressDialogProc(m_window, restartMessage, 0, 0); }
    INT_PTR Tick() { return ProgressDialogProc(m_window, WM_TIMER, 0, 0); }
    [[nodiscard]] std::string Status() const
    {
        std::array<char, 300> text{};
        GetWindowTextA(m_status, text.data(), static_cast<int>(text.size()));
        return text.data();
    }

    void ExpectCountdownToTheRestart()
    {
        ASSERT_NE(m_status, nullptr);
        EXPECT_EQ(Offer(), 1);
        EXPECT_THAT(effects, ElementsAre("timer 0: 1000"));
        effects.clear();
        for (int seconds = 20; seconds > 0; --seconds) {
            EXPECT_EQ(Tick(), 1);
            EXPECT_EQ(Status(), "restart in " + std::to_string(seconds) + " seconds");
            ASSERT_THAT(effects, IsEmpty()) << seconds;
        }
        EXPECT_EQ(Tick(), 1);
        EXPECT_EQ(Status(), "restart in 0 seconds");
        EXPECT_THAT(effects, ElementsAre("kill 0", "restart 2 0"));
    }

private:
    HWND m_window;
    HWND m_status;
    const ImportOverride m_timer{"SetTimer", reinterpret_cast<void*>(NoteTimer)};
    const ImportOverride m_kill{"KillTimer", reinterpret_cast<void*>(NoteKill)};
    const ImportOverride m_restart{"ExitWindowsEx", reinterpret_cast<void*>(NoteRestart)};
    const ImportOverride m_privileges{"AdjustTokenPrivileges", reinterpret_cast<void*>(LeavePrivileges)};
};
} // namespace

TEST_F(Countdown, The21stTickKillsItsTimerAndThenRestarts)
{
    ExpectCountdownToTheRestart();
}

TEST_F(Countdown, AStepOfTheOemVariantRestartsByItselfToo)
{
    RunOptions.msiMode = 1;
    RunOptions.oemGui = 1;
    ExpectCountdownToTheRestart();
}

TEST_F(Countdown, AnotherOfferStartsItAnew)
{
    Offer();
    for (int tick = 0; tick < 20; ++tick) {
        Tick();
    }
    effects.clear();
    ExpectCountdownToTheRestart();
}

TEST_F(Countdown, EachTextIsFormattedIntoAtLeast260CharactersAndFreed)
{
    Offer();
    const MessageFormats formats;
    Tick();
    EXPECT_THAT(formats.Calls(),
                ElementsAre(MessageFormats::Call{.flags = 0x2500, .message = 0, .language = 0, .size = 260}));
    EXPECT_EQ(formats.Allocated(), 1U);
    EXPECT_EQ(formats.Freed(), 1U);
}
