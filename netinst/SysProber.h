#pragma once

#include <cstdint>

/// Makes a prober factory with one reference, which the caller owns.
/// @param factory  Not null; receives an ISysProberInterfaceFactory, or null.
/// @return 0, or 0x8007000E when out of memory.
int32_t MakeSysProberFactory(void** factory) noexcept;
