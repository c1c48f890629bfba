#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// Bounded copy and append into fixed buffers. Every failure is written to the library trace with the caller's source
/// file and line; callers may ignore the result.

/// @param sourceFile        The caller's source file, for the error trace.
/// @param line              The caller's line, for the error trace.
/// @param destination       Receives the text; empty after a failure.
/// @param destinationBytes  Size of `destination` in bytes.
/// @param source            Text to copy.
/// @return 0; 22 for a null pointer or a size of 0; 34 when the destination is too small.
int OrvSafeCopy(const char* sourceFile, int line, char* destination, size_t destinationBytes, const char* source);

/// Appends `source` to the text in `destination`; otherwise as OrvSafeCopy. A destination without a terminator within
/// its size gives 22.
int OrvSafeCat(const char* sourceFile, int line, char* destination, size_t destinationBytes, const char* source);

/// The same for arrays of the sizes the library uses, with a trace line on entry and exit.
int OrvSafeCopy(const char* sourceFile, int line, char (&destination)[1024], const char* source);
int OrvSafeCat(const char* sourceFile, int line, char (&destination)[1024], const char* source);
int OrvSafeCat(const char* sourceFile, int line, char (&destination)[260], const char* source);

/// The library's handler for an invalid argument of a checked function: it traces one line, and the function returns
/// its error and does not end the process. The arguments are not used. The library's own checked operations always call
/// it. The first of them also installs it in the runtime, msvcrt.dll, if that has `_set_invalid_parameter_handler`;
/// otherwise the runtime's own functions report nothing here.
void OrvSecureInvalidParameterHandler(const wchar_t* expression, const wchar_t* function, const wchar_t* file,
                                      unsigned line, uintptr_t reserved);

/// Reports an invalid argument of the library's own checked operations, which bypass the runtime.
void OrvReportInvalidParameter();

using OrvInvalidParameterHandlerFn = decltype(&OrvSecureInvalidParameterHandler);

/// Written once per process, by the first bounded copy or append.
struct OrvSecureRecord
{
    /// The library's handler once its installation was requested, null before; also on a system whose runtime takes no
    /// handler.
    std::atomic<OrvInvalidParameterHandlerFn> installed{nullptr};
    /// The handler that it replaced; null when there was none or the runtime takes none.
    std::atomic<OrvInvalidParameterHandlerFn> previous{nullptr};
};
extern OrvSecureRecord OrvSecureState;
