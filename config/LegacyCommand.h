#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "LeadByte.h"

/// Longest path that the legacy install works with; longer ones are cut and so name nothing.
inline constexpr std::size_t kLegacyPathChars = 259;

/// @return drive and directory of a path, up to and including its last backslash or slash; only the drive when it has
///         neither; empty for a bare name.
[[nodiscard]] std::string DriveAndDirectoryOf(std::string_view path, LeadByteTest isLeadByte);

/// The legacy install helper's command line for a matched device.
/// @param matchedId  Hardware ID of the INF line that matched, without its bus prefix.
[[nodiscard]] std::string LegacyCommandLine(std::string_view matchedId, std::string_view infPath,
                                            LeadByteTest isLeadByte);

/// The legacy install helper's command line after the driver files were staged: no device, only where the files are.
/// @param cabDirectory  Ends with a backslash.
[[nodiscard]] std::string LegacyStagingCommandLine(std::string_view cabDirectory, LeadByteTest isLeadByte);

/// @return `path` cut to kLegacyPathChars.
[[nodiscard]] std::string CutToPathLimit(std::string_view path, LeadByteTest isLeadByte);
