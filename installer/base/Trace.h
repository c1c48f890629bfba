#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

/// Sends one line to the debugger output, as "Morvix: " + message, while the key kTraceSwitchKey exists. The key is
/// looked up on every call, so the trace can be switched on and off during a run. No newline is added: messages carry
/// their own where they want one.
/// @param message  Consumed: empty when the call returns.
void Trace(std::string&& message);

/// The same for a message in pieces, which are put together only while the trace is on.
void TracePieces(std::span<const std::string_view> pieces);

/// The same, given one by one. Nothing is consumed.
/// @param pieces  Each a text that turns into a std::string_view; a null pointer is not one.
template <class... Pieces>
void Trace(const Pieces&... pieces)
{
    const std::array<std::string_view, sizeof...(Pieces)> views{pieces...};
    TracePieces(views);
}
