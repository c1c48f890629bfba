#include "UnhandledFault.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "EntryPoints.h"
#include "RunOptions.h"
#include "Trace.h"
#include "WindowStation.h"

// GCOVR_EXCL_START: the process ends without writing counts; DeviceFault in morvix_e2e and morvix_faults run it
namespace {
/// Whether the system reports faults without a box.
bool reportsQuietly = false;

[[noreturn]] void EndAsFailed() noexcept
{
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(-1));
    // Not reached: the line above ends this process.
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

// Freed when memory runs out, so that there is enough for the destructors and for the trace.
constexpr std::size_t kReserveBytes = 65536;
std::atomic<void*> reserve = nullptr;

// Called for each request that finds no memory.
void OnMemoryOut()
{
    void* const held = reserve.exchange(nullptr);
    if (held == nullptr) {
        // The reserve is used up too: not even an exception could be thrown.
        EndAsFailed();
    }
    std::free(held);
    throw std::bad_alloc();
}

extern "C" void EndOnAbort(int /*signal*/)
{
    EndAsFailed();
}

std::string Hex(std::uintptr_t number)
{
    std::array<char, 2 + 2 * sizeof(number) + 1> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "0x%llX", static_cast<unsigned long long>(number)));
    return text.data();
}

/// @return file name and offset of the module that holds `address`, or the address itself.
std::string PlaceOf(const void* address)
{
    HMODULE module = nullptr;
    std::array<char, MAX_PATH> path{};
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const char*>(address), &module) == FALSE ||
        GetModuleFileNameA(module, path.data(), path.size() - 1) == 0) {
        return Hex(reinterpret_cast<std::uintptr_t>(address));
    }
    const std::string_view file(path.data());
    return std::string(file.substr(file.rfind('\\') + 1)) + "+" +
           Hex(reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module));
}

// The language runtime's own filter: it turns an uncaught C++ exception into a call of terminate.
LPTOP_LEVEL_EXCEPTION_FILTER runtimeFilter = nullptr;
std::atomic<bool> faultTraced = false;

bool IsOfTheLanguageRuntime(DWORD code)
{
    // "GCC" with the bits of an exception that a program defines; the lowest four bits of the first digit vary.
    constexpr DWORD kFixedBits = 0x20FFFFFF;
    constexpr DWORD kGccException = 0x20474343;
    return (code & kFixedBits) == kGccException;
}

/// Called for an exception of the processor or the system that nothing handles, on the thread that raised it.
LONG WINAPI TraceFault(EXCEPTION_POINTERS* fault)
{
    const EXCEPTION_RECORD& record = *fault->ExceptionRecord;
    if (IsOfTheLanguageRuntime(record.ExceptionCode) && runtimeFilter != nullptr) {
        return runtimeFilter(fault);
    }
    // If the process is damaged enough to fail here too, this function is called again, on this or another thread.
    if (!faultTraced.exchange(true)) {
        try {
            Trace("unhandled fault: exception ", Hex(record.ExceptionCode), " at ", PlaceOf(record.ExceptionAddress),
                  "\n");
        } catch (...) { // NOLINT(bugprone-empty-catch): without memory even for the trace, the exit code has to do
        }
    }
    if (!reportsQuietly && (RunOptions.silent || !WindowsAreSeen())) {
        // Before Vista only this suppresses the system's box, and its report too.
        SetErrorMode(SetErrorMode(0) | SEM_NOGPFAULTERRORBOX);
    }
    // The system reports the fault and ends the process with the exception's code.
    return EXCEPTION_CONTINUE_SEARCH;
}

/// Makes the system report without asking: nobody may be there to answer.
void ReportFaultsQuietly()
{
    using WerSetFlagsFn = HRESULT(WINAPI*)(DWORD);
    constexpr DWORD kNoUserInterface = 0x20; // WER_FAULT_REPORTING_NO_UI
    const auto setFlags = FindEntry<WerSetFlagsFn>(GetModuleHandleA("kernel32.dll"), "WerSetFlags");
    reportsQuietly = setFlags != nullptr && SUCCEEDED(setFlags(kNoUserInterface));
}

/// Windows 7 and later may swallow an exception that leaves a window procedure; the dialog would then just freeze.
void LetFaultsLeaveWindowProcedures()
{
    using GetPolicyFn = BOOL(WINAPI*)(DWORD*);
    using SetPolicyFn = BOOL(WINAPI*)(DWORD);
    constexpr DWORD kCallbackFilter = 1; // PROCESS_CALLBACK_FILTER_ENABLED
    const HMODULE kernel = GetModuleHandleA("kernel32.dll");
    const auto get = FindEntry<GetPolicyFn>(kernel, "GetProcessUserModeExceptionPolicy");
    const auto set = FindEntry<SetPolicyFn>(kernel, "SetProcessUserModeExceptionPolicy");
    DWORD policy = 0;
    if (get != nullptr && set != nullptr && get(&policy) != FALSE) {
        set(policy & ~kCallbackFilter);
    }
}
} // namespace
// GCOVR_EXCL_STOP

void KeepStackForFaults() noexcept
{
    ULONG bytes = 65536;
    SetThreadStackGuarantee(&bytes);
}

void EndOnEveryFault()
{
    KeepStackForFaults();
    ReportFaultsQuietly();
    LetFaultsLeaveWindowProcedures();
    runtimeFilter = SetUnhandledExceptionFilter(TraceFault);
    std::set_terminate(EndOnUnhandledFault);
    reserve = std::malloc(kReserveBytes);
    std::set_new_handler(OnMemoryOut);
    // The language runtime aborts when it runs out of memory, and would report that in a box.
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
