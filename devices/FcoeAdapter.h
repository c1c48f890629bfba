#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "HbaApi.h"

/// Room for an adapter's name in the FCoE library, in wide characters with the terminator.
inline constexpr std::size_t kFcoeAdapterNameChars = 4096;

/// @param instanceId  The adapter's network-configuration instance ID.
/// @return the name under which the FCoE library knows the adapter; no value when it has no room for it.
[[nodiscard]] std::optional<std::wstring> FcoeAdapterName(std::wstring_view instanceId);

/// @param flags  The flags word of a port's FCoE properties.
/// @return true when the machine was booted over the port or reaches the disk of its page file through it; the other
///         flags say nothing about that.
[[nodiscard]] constexpr bool IsFcoeBootPort(uint32_t flags)
{
    return (flags & (kNordaRemoteBooted | kNordaRemotePageFile)) != 0;
}
