#pragma once

#include <windows.h>

/// Waits for an object on a thread that has windows. Messages that other threads send to them are answered meanwhile: a
/// thread that only waited would block every sender, and every broadcast of the system. Posted messages stay in the
/// queue.
/// @param object        A handle that can be waited for, such as a thread's or a process's.
/// @param milliseconds  Longest wait; INFINITE for no limit.
/// @return true when the object is signalled; false when the time is up or the platform cannot wait for it.
bool WaitAnsweringSentMessages(HANDLE object, DWORD milliseconds);
