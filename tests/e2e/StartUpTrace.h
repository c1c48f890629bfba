#pragma once

#include <string>
#include <vector>

#include "RunFolder.h"

/// What a run traces from its start until the previous-instance test, both included.
/// @param options  The lines about the command line, as the program words them.
[[nodiscard]] std::vector<std::string> StartUpTrace(const RunFolder& folder, const std::vector<std::string>& options);

/// The part of it up to the setup INI's line, which is not included.
[[nodiscard]] std::vector<std::string> LocationTrace(const RunFolder& folder);

// The lines about the command line.
inline const std::vector<std::string> kNoOptions = {"command line: no options, install in GUI mode\n"};
inline const std::vector<std::string> kSilent = {"command line: '/s', install silently\n"};
