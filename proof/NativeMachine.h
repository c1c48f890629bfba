#pragma once

#include <cstdint>
#include <optional>

/// @return the IMAGE_FILE_MACHINE_... number of the machine's own processor, also for an emulated program; no value
/// where
///         the system cannot tell it, before Windows 10.
[[nodiscard]] std::optional<uint16_t> NativeMachine();
