#pragma once

#include <cstdint>

#include "LeadByte.h"

/// The decisions of the library trace: what each level writes, and where the log file is.
///
/// level  Print                error                registry consulted
/// 0      nothing              nothing              no
/// 1      file                 file                 yes
/// 2      nothing              file                 yes
/// 3      file                 file                 no
/// 4      file and debugger    file and debugger    no
/// Any other level behaves as 3.

[[nodiscard]] bool OrvPrintWrites(uint32_t level) noexcept;
[[nodiscard]] bool OrvErrorWrites(uint32_t level) noexcept;
[[nodiscard]] bool OrvMirrorsToDebugger(uint32_t level) noexcept;
[[nodiscard]] bool OrvConsultsRegistry(uint32_t level) noexcept;

/// The level at which an error line is written while the trace level is `level`: errors go to the file at level 2 too.
[[nodiscard]] uint32_t OrvErrorLineLevel(uint32_t level) noexcept;

/// @return true for a file name of 1 to 245 characters.
[[nodiscard]] bool OrvIsLogFileName(const char* fileName) noexcept;

enum class OrvLogDirectory
{
    None,         ///< The file name is used unchanged.
    InstalledDir, ///< The directory that the registry names.
    Temp,         ///< The directory of the environment variable "Temp".
};

/// Where the log file of a module is.
/// @param plainFileName     The module's file name is used unchanged.
/// @param setUpModule       The module runs before anything is installed, so the registry is not read.
/// @param productKeyOpened  The product's key could be opened.
[[nodiscard]] OrvLogDirectory OrvChooseLogDirectory(bool plainFileName, bool setUpModule,
                                                    bool productKeyOpened) noexcept;

/// @return the part of `path` from its last backslash on, or null when it has none.
[[nodiscard]] const char* OrvNameWithBackslash(const char* path, LeadByteTest isLeadByte);
