#pragma once

/// Makes every way in which the program can fail for good end it with exit code -1, without a box of the language
/// runtime: nobody may be there to close it.
void EndOnEveryFault();

/// Ends the process with exit code -1 and, when there is memory left for it, a trace of the exception being handled.
[[noreturn]] void EndOnUnhandledFault() noexcept;
