#pragma once

/// Sends one line to the debugger output, as "NetInst: " + message, while the installer's trace is on
/// (kTraceSwitchKey). Long messages are truncated.
/// @param format  As for printf.
void NetInstTrace(const char* format, ...) noexcept __attribute__((format(ms_printf, 1, 2)));
