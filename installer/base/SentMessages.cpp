#include "SentMessages.h"

#include <algorithm>

bool WaitAnsweringSentMessages(HANDLE object, DWORD milliseconds)
{
    const DWORD start = GetTickCount();
    for (;;) {
        const DWORD passed = GetTickCount() - start;
        const DWORD left = milliseconds == INFINITE ? INFINITE : milliseconds - std::min(passed, milliseconds);
        const DWORD woken = MsgWaitForMultipleObjects(1, &object, FALSE, left, QS_SENDMESSAGE);
        // When the time is up, messages that keep coming must not prolong the wait.
        if (woken == WAIT_FAILED || left == 0) {
            return WaitForSingleObject(object, left) == WAIT_OBJECT_0;
        }
        if (woken != WAIT_OBJECT_0 + 1) {
            return woken == WAIT_OBJECT_0;
        }
        // This call answers the sent messages; it removes none from the queue.
        MSG message{};
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}
