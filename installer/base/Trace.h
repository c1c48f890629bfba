#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

/// Sends one line to the debugger output, as "Morvix: " + message, while the key kTraceSwitchKey exists. The key is
/// looked up on every call, so the trace can be switched on and off during a run. No newline is added: messages bring
/// their own where they need one.
/// @param message  Consumed: empty when the call returns.
void Trace(std::string&& message);

/// The same for a message in pieces, which are joined only while the trace is on.
void TracePieces(std::span<const std::string_view> pieces);

/// The same, with the pieces as arguments. Nothing is consumed.
/// @param pieces  Texts that convert to std::string_view; never a null pointer.
template <class... Pieces>
void Trace(const Pieces&... pieces)
{
    const std::array<std::string_view, sizeof...(Pieces)> views{pieces...};
    TracePieces(views);
}
