#pragma once

/// Makes every way in which the program can fail for good end it with a traced line, without a box:
/// - a C++ exception that nothing handles, or a language runtime that gives up, with exit code -1;
/// - an exception of the processor or the system in this program or in a library that it loaded, such as an access
///   violation or a full stack, with the exception's own code, for example 0xC0000005. The system handles it as for
///   every program: it writes its crash report and starts the debugger that is registered for that.
/// Windows XP and Server 2003 have no way to report without asking; there the administrator's settings decide whether a
/// box waits for an answer. A function that writes over its own stack frame ends the program at once with 0xC0000409,
/// without a trace, and a heap that the system finds damaged with 0xC0000374: nothing of the process can be trusted
/// then.
void EndOnEveryFault();

/// Keeps a part of the calling thread's stack for the trace of a full stack. Each thread has to ask for itself;
/// EndOnEveryFault does for the one that calls it.
void KeepStackForFaults() noexcept;

/// Ends the process with exit code -1 and, when there is memory left for it, a trace of the exception being handled.
[[noreturn]] void EndOnUnhandledFault() noexcept;
