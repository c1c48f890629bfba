#pragma once

#include <cstddef>
#include <string>

#include "RecordNames.h"

/// The run's outward report: values of kBasedriversKey.

/// Deletes "RebootNeeded", so that the value is about this run only. Nothing is reported when there is none.
void DeleteRebootNeeded();

/// Sets "RebootNeeded" to 1 (REG_DWORD). The key is opened, not created: without it nothing is written or reported.
void SetRebootNeeded();

/// Records the outcome of one installed driver.
/// @param result          "SUCCESS" or "FAILURE".
/// @param driverType      Value name, such as "TAVX_Install". Modified: after a success it is cut after its last
///                        underscore and ends in "Version".
/// @param driverTypeBytes Size of the `driverType` buffer in bytes.
/// @param version         Version text; used after a success only.
void PostResultToRegistry(const std::string& result, char* driverType, size_t driverTypeBytes,
                          const std::string& version);
