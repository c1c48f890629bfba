#pragma once

#include <cstdint>

/// Makes a prober factory with one reference, the caller's.
/// @param factory  Not null; receives an ISysProberInterfaceFactory, or null.
/// @return 0, or 0x8007000E when memory ran out.
int32_t MakeSysProberFactory(void** factory) noexcept;
