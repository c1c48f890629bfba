#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// How long the program may take when the package says nothing else, and the longest time that can be asked for.
inline constexpr std::uint32_t kDefaultTimeLimitSeconds = 900;
inline constexpr std::uint32_t kLongestTimeLimitSeconds = 86400;

/// What the package asks the driver step to do.
struct StepRequest
{
    bool oemVariant = false;
    /// Whether a failure of the step fails the package.
    bool failOnFailure = false;
    std::uint32_t timeLimitSeconds = kDefaultTimeLimitSeconds;
    /// Full path of the kit's folder without a trailing backslash.
    std::string folder;
};

/// Reads the text that the package hands to the step, "OEMVARIANT|FAILONFAILURE|STEPTIMELIMIT|INSTALLDIR". Such a step
/// cannot read the package's properties itself.
/// A switch is on when it is "1". A time limit that is no number from 1 to kLongestTimeLimitSeconds means the default.
/// @return no value when a part or the folder is missing.
[[nodiscard]] std::optional<StepRequest> ReadStepRequest(std::string_view data);

/// @return the command line of the program: "/s /m", or "/s /md" for the OEM variant.
[[nodiscard]] std::string StepCommandLine(const StepRequest& request);
