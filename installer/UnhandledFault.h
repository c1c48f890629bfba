#pragma once

/// Makes every fatal failure end the program with a traced line, without a box:
/// - a C++ exception that nothing handles, or a language runtime that gives up, with exit code -1;
/// - an exception of the processor or the system in this program or in a library that it loaded, such as an access
///   violation or a stack overflow, with the exception's own code, for example 0xC0000005. The system handles it as for
///   every program: it writes its crash report and starts the registered debugger.
/// Windows XP and Server 2003 have no way to report without asking; there the administrator's settings decide whether a
/// box appears. A function that writes over its own stack frame ends the program at once with 0xC0000409, without a
/// trace, and a heap that the system finds damaged with 0xC0000374: the process can no longer be trusted then.
void EndOnEveryFault();

/// Reserves a part of the calling thread's stack for tracing a stack overflow. Each thread calls it for itself;
/// EndOnEveryFault does so for its caller.
void KeepStackForFaults() noexcept;

/// Ends the process with exit code -1 and, when there is memory left for it, a trace of the exception being handled.
[[noreturn]] void EndOnUnhandledFault() noexcept;
