#pragma once

#include "FaultChannel.h"

#include <string>
#include <string_view>

/// Writes what the program under test does into the channel. Nothing here changes the calling thread's last error.

/// @return the channel, or null when the program was not started by the test.
[[nodiscard]] FaultChannel* Channel();

[[nodiscard]] CallThread CurrentCallThread();

/// @param kind  C, E or U: see FaultChannel.
void WriteLine(char kind, std::string_view text);

enum class HandleKind : std::uint32_t
{
    RegistryKey = 1,
    Kernel,
    Search,
    Library,
    DeviceList,
    Memory,
    Sid,
    Com,
};

/// A call handed out `handle`; `label` says for what.
void Own(HandleKind kind, const void* handle, std::string_view label);
/// The handle was given back. One that nobody holds is reported as an effect: it was closed twice or never opened.
void Disown(HandleKind kind, const void* handle);
/// Gives the handle of that label that was opened last another label.
void RelabelLast(HandleKind kind, std::string_view label, std::string_view newLabel);
/// @return what the handle was opened for, or an empty text.
[[nodiscard]] std::string LabelOf(const void* handle);
