#include <windows.h>

#include <cstring>
#include <limits>
#include <vector>

namespace {
// No debugger is started and no box is shown: the process ends with the exception's own number.
LONG WINAPI EndWithItsNumber(EXCEPTION_POINTERS* fault)
{
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}
} // namespace

/// A program compiled like the rooms that test programs link: "overflow" and "index" end it at the spot, everything
/// else gives exit code 7.
int main(int argc, char** argv)
{
    SetUnhandledExceptionFilter(EndWithItsNumber);
    const char* const fault = argc > 1 ? argv[1] : "";
    int number = std::numeric_limits<int>::max();
    const std::vector<int> numbers(3);
    if (std::strcmp(fault, "overflow") == 0) {
        number += argc;
    }
    if (std::strcmp(fault, "index") == 0) {
        number = numbers[static_cast<std::size_t>(argc) + 1];
    }
    return number == 0 ? 1 : 7;
}
