#include <windows.h>
// ntsecapi.h needs windows.h first.
#include <ntsecapi.h>

#include <cstdint>

// Support for functions with a guarded stack frame: a value that cannot be guessed, and the end of a program whose
// frame was overwritten. The compiler's own library gets its value through a cryptographic provider, which takes a
// fifth of a silent run's start; the system's generator that the provider uses answers at once. The names are the
// compiler's.

namespace {
constexpr DWORD kStackBufferOverrun = 0xC0000409;
} // namespace

extern "C" {
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier)
uintptr_t __stack_chk_guard = 0xB5402A2A6AB500;

// GCOVR_EXCL_START: the process ends without writing counts; StackGuard in windows_base runs it
// NOLINTNEXTLINE(clang-diagnostic-reserved-identifier)
[[noreturn]] void __stack_chk_fail()
{
    // Nothing in this process can be trusted any more: no handler, destructor or trace runs.
    TerminateProcess(GetCurrentProcess(), kStackBufferOverrun);
    __builtin_trap();
}
// GCOVR_EXCL_STOP
}

namespace {
/// Runs before every other constructor. Its own frame must not be guarded: the value changes while it runs.
__attribute__((constructor(101), no_stack_protector)) void ChooseGuard()
{
    uintptr_t guard = 0;
    if (RtlGenRandom(&guard, sizeof(guard)) == FALSE) {
        // GCOVR_EXCL_START: only morvix_faults makes the generator fail, in a program that is not counted
        LARGE_INTEGER counter{};
        QueryPerformanceCounter(&counter);
        guard = static_cast<uintptr_t>(counter.QuadPart) * 0x9E3779B97F4A7C15U ^
                (uintptr_t{GetCurrentProcessId()} << 32U) ^ reinterpret_cast<uintptr_t>(&guard);
        // GCOVR_EXCL_STOP
    }
    // A text that runs over its buffer cannot write a zero and go on.
    constexpr uintptr_t kZeroByte = 0xFF;
    __stack_chk_guard = guard & ~kZeroByte;
}
} // namespace
