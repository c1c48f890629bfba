#pragma once

#include <cstdint>

/// Makes a driver-install factory with one reference, which the caller owns.
/// @param factory  Not null; receives an IDriverInstallInterfaceFactory, or null.
/// @return 0, or 0x8007000E when out of memory.
int32_t MakeDriverInstallFactory(void** factory) noexcept;
