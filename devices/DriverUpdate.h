#pragma once

#include <cstdint>
#include <string>

/// Lets the platform bind every present device of a hardware ID to an INF's driver, also when the present driver is as
/// good or better. Whether the platform wants a restart is not looked at.
/// @return the platform's result, nonzero for success; 0 without a trace when the system has no driver update.
uint32_t UpdateDriver(const std::string& infPath, const std::string& hardwareId);
