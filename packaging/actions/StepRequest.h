#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The default time limit for a program, and the longest one that can be requested.
inline constexpr std::uint32_t kDefaultTimeLimitSeconds = 900;
inline constexpr std::uint32_t kLongestTimeLimitSeconds = 86400;

/// What the package asks the driver step to do.
struct StepRequest
{
    /// Full path of the installed program.
    std::string program;
    bool oemVariant = false;
    /// Whether a failure of the step fails the package.
    bool failOnFailure = false;
    std::uint32_t timeLimitSeconds = kDefaultTimeLimitSeconds;
};

/// Reads the text that the package passes to the step, "PROGRAM|OEMVARIANT|FAILONFAILURE|STEPTIMELIMIT". A deferred
/// step cannot read the package's properties itself. The path comes first: no path contains the separator, so a
/// caller's properties cannot change which program is started. A switch is on when it is "1".
/// @return no value when a part is missing or the program is not given by its full path.
[[nodiscard]] std::optional<StepRequest> ReadStepRequest(std::string_view data);

/// @return the seconds that a property asks for; kDefaultTimeLimitSeconds for anything but a number from 1 to
///         kLongestTimeLimitSeconds.
[[nodiscard]] std::uint32_t ReadTimeLimit(std::string_view text);

/// @return the program's arguments: "/s /m", or "/s /md" for the OEM variant.
[[nodiscard]] std::string StepArguments(const StepRequest& request);

/// @return the folder of a program, without a trailing backslash.
[[nodiscard]] std::string FolderOfProgram(const std::string& program);
