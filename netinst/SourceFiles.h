#pragma once

#include <cstdint>

class SetupApi;

/// Checks whether the files that an install section copies are where its INF says. A platform that misses one asks for
/// the disk, or asks again and again where nobody can answer; a driver kit on disk has all its files or is damaged.
/// Files in cabinets or on disks with a tag file are left to the platform and are not checked.
/// @param infPath         Full path of the INF.
/// @param installSection  Install section without its system or processor suffix.
/// @return 0 when no file is missing; ERROR_FILE_NOT_FOUND (2) when one is; the platform's reason when the INF cannot
///         be read.
[[nodiscard]] uint32_t CheckSourceFiles(const SetupApi& api, const char* infPath, const char* installSection) noexcept;
