#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// @return why a machine can prove nothing about the kit, whose programs and drivers are for x64; no value when it can.
/// @param native  The IMAGE_FILE_MACHINE_... number of its processor; no value where the system cannot tell it, which
///                emulates no x64 either.
[[nodiscard]] std::optional<std::string> WhyNoX64Machine(std::optional<uint16_t> native);
