#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// @return why the drivers of the kit, which are for x64, have no place on a machine; no value when they have.
/// @param native  The IMAGE_FILE_MACHINE_... number of its processor; no value where the system cannot tell it, which
///                emulates no x64 either.
[[nodiscard]] std::optional<std::string> WhyNoX64Machine(std::optional<uint16_t> native);
