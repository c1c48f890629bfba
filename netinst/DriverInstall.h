#pragma once

#include <cstdint>

/// Makes a driver-install factory with one reference, the caller's.
/// @param factory  Not null; receives an IDriverInstallInterfaceFactory, or null.
/// @return 0, or 0x8007000E when memory ran out.
int32_t MakeDriverInstallFactory(void** factory) noexcept;
