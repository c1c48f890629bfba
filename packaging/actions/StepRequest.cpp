#include "StepRequest.h"

#include <charconv>

namespace {
constexpr char kSeparator = '|';

/// Removes the part before the next separator from `rest`; no value when there is no separator.
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

/// "C:\x\y.exe": a drive, a folder and a name. A kit is never installed on a share.
bool IsFullPath(std::string_view path)
{
    constexpr size_t kDriveChars = 3;
    return path.size() > kDriveChars && path.substr(1, 2) == ":\\" && !path.ends_with('\\');
}
} // namespace

std::optional<StepRequest> ReadStepRequest(std::string_view data)
{
    const std::optional<std::string_view> program = TakePart(data);
    const std::optional<std::string_view> oemVariant = TakePart(data);
    const std::optional<std::string_view> failOnFailure = TakePart(data);
    if (!failOnFailure || !IsFullPath(*program)) {
        return std::nullopt;
    }
    StepRequest request;
    request.program = *program;
    request.oemVariant = *oemVariant == "1";
    request.failOnFailure = *failOnFailure == "1";
    request.timeLimitSeconds = ReadTimeLimit(data);
    return request;
}

std::uint32_t ReadTimeLimit(std::string_view text)
{
    std::uint32_t seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, seconds);
    const bool isNumber = error == std::errc() && stop == end;
    return isNumber && seconds >= 1 && seconds <= kLongestTimeLimitSeconds ? seconds : kDefaultTimeLimitSeconds;
}

std::string StepArguments(const StepRequest& request)
{
    return request.oemVariant ? "/s /md" : "/s /m";
}

std::string FolderOfProgram(const std::string& program)
{
    return program.substr(0, program.rfind('\\'));
}
