#include "StepRequest.h"

#include <charconv>

namespace {
constexpr char kSeparator = '|';

/// Takes the part before the next separator off `rest`; no value when there is no separator left.
std::optional<std::string_view> TakePart(std::string_view& rest)
{
    const size_t end = rest.find(kSeparator);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view part = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return part;
}

std::uint32_t TimeLimit(std::string_view text)
{
    std::uint32_t seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    const bool isNumber = error == std::errc() && stop == end;
    return isNumber && seconds >= 1 && seconds <= kLongestTimeLimitSeconds ? seconds : kDefaultTimeLimitSeconds;
}
} // namespace

std::optional<StepRequest> ReadStepRequest(std::string_view data)
{
    const std::optional<std::string_view> oemVariant = TakePart(data);
    const std::optional<std::string_view> failOnFailure = TakePart(data);
    const std::optional<std::string_view> timeLimit = TakePart(data);
    // A folder from a package ends in a backslash.
    while (data.ends_with('\\')) {
        data.remove_suffix(1);
    }
    if (!timeLimit || data.empty()) {
        return std::nullopt;
    }
    StepRequest request;
    request.oemVariant = *oemVariant == "1";
    request.failOnFailure = *failOnFailure == "1";
    request.timeLimitSeconds = TimeLimit(*timeLimit);
    request.folder = data;
    return request;
}

std::string StepCommandLine(const StepRequest& request)
{
    return "\"" + request.folder + "\\Morvix.exe\" /s " + (request.oemVariant ? "/md" : "/m");
}
