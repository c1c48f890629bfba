#include "CloseRequest.h"

#include <gtest/gtest.h>

namespace {
bool TakeCloseRequest(HWND window)
{
    MSG message{};
    return PeekMessageA(&message, window, WM_CLOSE, WM_CLOSE, PM_REMOVE) != FALSE;
}
} // namespace

TEST(CloseRequest, WaitsInTheQueueOfTheDialogOnce)
{
    HWND window = CreateWindowA("Static", "", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    AskToClose(window);
    EXPECT_TRUE(TakeCloseRequest(window));
    EXPECT_FALSE(TakeCloseRequest(window));
    DestroyWindow(window);
}

TEST(CloseRequest, WithoutADialogIsNone)
{
    AskToClose(nullptr);
    EXPECT_FALSE(TakeCloseRequest(nullptr));
}
