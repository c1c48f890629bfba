#include "UnhandledFault.h"

#include <windows.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include "Trace.h"

// GCOVR_EXCL_START: the process ends without writing counts; DeviceFault in morvix_e2e and morvix_faults run it
namespace {
[[noreturn]] void EndAsFailed() noexcept
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(-1));
    // Not reached: the line above ends this very process.
    std::_Exit(-1);
}

std::string NameOfFault()
{
    try {
        if (const std::exception_ptr fault = std::current_exception()) {
            std::rethrow_exception(fault);
        }
    } catch (const std::exception& fault) {
        return fault.what();
    } catch (...) {
        return "not a standard exception";
    }
    return "unknown";
}

// Given back when memory runs out, so that there is enough for undoing what was begun and for the trace.
constexpr std::size_t kReserveBytes = 65536;
std::atomic<void*> reserve = nullptr;

// Called for each request that finds no memory.
void OnMemoryOut()
{
    void* const held = reserve.exchange(nullptr);
    if (held == nullptr) {
        // The reserve is used up as well: not even an exception could be made.
        EndAsFailed();
    }
    std::free(held);
    throw std::bad_alloc();
}

extern "C" void EndOnAbort(int /*signal*/)
{
    EndAsFailed();
}
} // namespace
// GCOVR_EXCL_STOP

void EndOnEveryFault()
{
    // A damaged library is answered with a trace, not with a system box.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    std::set_terminate(EndOnUnhandledFault);
    reserve = std::malloc(kReserveBytes);
    std::set_new_handler(OnMemoryOut);
    // The language runtime gives up when it lacks memory for its own needs, and would say so in a box.
    _set_error_mode(_OUT_TO_STDERR);
    static_cast<void>(std::signal(SIGABRT, EndOnAbort));
}

// GCOVR_EXCL_START: as above
void EndOnUnhandledFault() noexcept
{
    try {
        Trace("unhandled fault: ", NameOfFault(), "\n");
    } catch (...) { // NOLINT(bugprone-empty-catch): without memory even for the trace, the exit code has to do
    }
    EndAsFailed();
}
// GCOVR_EXCL_STOP
