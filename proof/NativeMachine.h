#pragma once

#include <cstdint>
#include <optional>

/// @return the IMAGE_FILE_MACHINE_... number of the machine's own processor, also for an emulated program; no value on
///         systems before Windows 10, which cannot tell it.
[[nodiscard]] std::optional<uint16_t> NativeMachine();
