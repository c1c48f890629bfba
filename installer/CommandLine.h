#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "RunOptions.h"

/// Option token, such as "/s", to the values that followed it. Keys are ordered byte by byte.
using OptionMap = std::map<std::string, std::vector<std::string>>;

/// Sorts the process arguments into options and their values. A token is an option when it is at least two characters
/// long, begins with "/" and its second character is not a digit; values before the first option are ignored.
/// @param optionMap  Cleared first.
/// @return the number of distinct options.
int ParseCommandLine(OptionMap& optionMap, int argc, const char* const* argv);

/// @return true when `token` is an option of the command line; exact and case-sensitive.
bool HasOption(const OptionMap& optionMap, std::string_view token);

/// What a command line means for the run.
struct CommandLineDecision
{
    bool help = false; ///< the run ends at once with exit code 0
    RunOptionsRecord options;
    std::vector<std::string> traceLines; ///< what start-up traces about it, in order
};

/// Decides the run from its options. In a silent run "/r" wins over "/nr" and either of them cancels "/m" and "/md"; in
/// an interactive run "/r" and "/nr" are ignored. Administrators' scripts rely on this precedence.
CommandLineDecision DecideOptions(const OptionMap& optionMap);
