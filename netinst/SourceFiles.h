#pragma once

#include <cstdint>

/// Looks whether the files that an install section copies lie where its INF says. A platform that misses one asks for
/// the disk, or asks again and again where it has nobody to ask; a driver kit on disk has all its files or is damaged.
/// Files in cabinets or on disks with a tag file are the platform's own business and are not looked for.
/// @param infPath         Full path of the INF.
/// @param installSection  Install section without the parts that name a system or processor.
/// @return 0 when no file is missing; ERROR_FILE_NOT_FOUND (2) when one is; the platform's reason when the INF cannot
/// be
///         read.
[[nodiscard]] uint32_t CheckSourceFiles(const char* infPath, const char* installSection) noexcept;
