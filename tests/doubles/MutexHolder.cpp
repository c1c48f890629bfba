// Another process with a mutex: takes it, says so by setting an event, and keeps it until a second event is set.
//   mutex_holder <mutex> <taken event> <release event> [abandon]
// With "abandon" it ends without releasing the mutex. The exit code is 0 when all of that could be done.
#include <windows.h>

#include <cstring>

#include "Handles.h"

int main(int argc, char** argv)
{
    if (argc < 4) {
        return 1;
    }
    const UniqueHandle mutex(CreateMutexA(nullptr, FALSE, argv[1]));
    const UniqueHandle taken(OpenEventA(EVENT_MODIFY_STATE, FALSE, argv[2]));
    const UniqueHandle release(OpenEventA(SYNCHRONIZE, FALSE, argv[3]));
    // A test that dies must not leave this process running for ever.
    constexpr DWORD kLongestTest = 120000;
    if (!mutex || !taken || !release || WaitForSingleObject(mutex.get(), kLongestTest) != WAIT_OBJECT_0 ||
        SetEvent(taken.get()) == FALSE || WaitForSingleObject(release.get(), kLongestTest) != WAIT_OBJECT_0) {
        return 2;
    }
    const bool abandon = argc > 4 && std::strcmp(argv[4], "abandon") == 0;
    return abandon || ReleaseMutex(mutex.get()) != FALSE ? 0 : 3;
}
