#pragma once

#include <string>

/// Sends one line to the debugger output, as "Morvix: " + message, while the key SOFTWARE\Norda\Basedrivers\Debug
/// exists under HKEY_LOCAL_MACHINE. The key is looked for on every call, so the trace can be switched on and off during
/// a run. No newline is added: messages carry their own where they want one.
/// @param message  Consumed: empty when the call returns.
void Trace(std::string&& message);
