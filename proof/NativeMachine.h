#pragma once

#include <cstdint>
#include <optional>

/// @return the IMAGE_FILE_MACHINE_... number of the machine's own processor, also for an emulated program; no value on
///         systems that cannot tell it, such as those before Windows 10.
[[nodiscard]] std::optional<uint16_t> NativeMachine();
