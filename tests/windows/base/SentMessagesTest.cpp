#include "SentMessages.h"

#include <gtest/gtest.h>

#include <atomic>

#include "Handles.h"
#include "ImportOverride.h"
#include "TestThread.h"

namespace {
constexpr DWORD kGenerous = 60000;
constexpr DWORD kShort = 50;
constexpr UINT kSent = WM_APP + 1;
constexpr UINT kPosted = WM_APP + 2;

std::atomic<int> answeredMessages;

LRESULT CALLBACK CountSent(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == kSent) {
        ++answeredMessages;
        return 7;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

/// A window of the test's own thread, and an event to wait for.
class SentMessages : public testing::Test
{
protected:
    SentMessages()
    {
        answeredMessages = 0;
        SetWindowLongPtrA(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(CountSent));
    }
    ~SentMessages() override { DestroyWindow(m_window); }

    const HWND m_window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    const UniqueHandle m_event{CreateEventA(nullptr, TRUE, FALSE, nullptr)};
};
} // namespace

TEST_F(SentMessages, WaitEndsWithTheObjectOrTheTime)
{
    EXPECT_FALSE(WaitAnsweringSentMessages(m_event.get(), 0));
    EXPECT_FALSE(WaitAnsweringSentMessages(m_event.get(), kShort));
    SetEvent(m_event.get());
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), 0));
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), kShort));
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), INFINITE));
}

TEST_F(SentMessages, AreAnsweredDuringTheWaitWhichGoesOn)
{
    LRESULT answer = 0;
    TestThread sender([&] {
        answer = SendMessageA(m_window, kSent, 0, 0) + SendMessageA(m_window, kSent, 0, 0);
        // Only now: a wait that ended with the first message would be over without the event.
        SetEvent(m_event.get());
    });
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), INFINITE));
    sender.join();
    EXPECT_EQ(answer, 14);
    EXPECT_EQ(answeredMessages, 2);
}

TEST_F(SentMessages, PostedMessagesStayInTheQueue)
{
    PostMessageA(m_window, kPosted, 0, 0);
    TestThread sender([&] {
        SendMessageA(m_window, kSent, 0, 0);
        SetEvent(m_event.get());
    });
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), kGenerous));
    sender.join();
    MSG message{};
    EXPECT_NE(PeekMessageA(&message, m_window, kPosted, kPosted, PM_REMOVE), FALSE);
}

namespace {
int waitsWithoutTime = 0;

/// A queue in which a sent message is always waiting. A caller that continues after its time eventually gets an error.
DWORD WINAPI AlwaysAMessage(DWORD, const HANDLE*, BOOL, DWORD milliseconds, DWORD)
{
    constexpr int kEnough = 10;
    waitsWithoutTime += milliseconds == 0 ? 1 : 0;
    return waitsWithoutTime < kEnough ? WAIT_OBJECT_0 + 1 : DWORD{WAIT_TIMEOUT};
}
} // namespace

TEST_F(SentMessages, ThatKeepComingDoNotProlongTheWait)
{
    waitsWithoutTime = 0;
    const ImportOverride always("MsgWaitForMultipleObjects", reinterpret_cast<void*>(AlwaysAMessage));
    EXPECT_FALSE(WaitAnsweringSentMessages(m_event.get(), kShort));
    EXPECT_EQ(waitsWithoutTime, 1);
    SetEvent(m_event.get());
    EXPECT_TRUE(WaitAnsweringSentMessages(m_event.get(), 0)) << "what is signalled by then counts";
}

TEST_F(SentMessages, ObjectThatCannotBeWaitedForEndsTheWait)
{
    EXPECT_FALSE(WaitAnsweringSentMessages(nullptr, INFINITE));
}
