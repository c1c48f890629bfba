#pragma once

#include <string>
#include <vector>

#include "RecordSnapshot.h"

/// Reads what a step may change.
/// @param dataFile  Full path of the uninstaller's data file for this kit. Throws std::runtime_error when a key or a
/// value exists but cannot be read: a rollback would remove it.
[[nodiscard]] RecordSnapshot TakeSnapshot(const std::string& dataFile);

/// Restores the records: puts back what is missing or changed, and removes what was added.
/// @return lines for the log: what was put back, and what could not be.
[[nodiscard]] std::vector<std::string> RestoreSnapshot(const RecordSnapshot& snapshot, const std::string& dataFile);
