#include "SearchIds.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace {
constexpr int32_t kNotFound = -1;

// Positions are signed 32-bit with -1 for "not found". As an unsigned size, -1 is after the end of every text.
int32_t LastPosition(std::string_view text, std::string_view marker)
{
    // Every marker begins with an ampersand, which few characters of an ID are.
    std::size_t position = text.rfind('&');
    while (position != std::string_view::npos && !text.substr(position).starts_with(marker)) {
        position = position == 0 ? std::string_view::npos : text.rfind('&', position - 1);
    }
    return position == std::string_view::npos ? kNotFound : static_cast<int32_t>(position);
}

std::string Before(std::string_view text, int32_t position)
{
    return std::string(text.substr(0, static_cast<std::size_t>(position)));
}

std::string From(std::string_view text, int32_t position)
{
    return std::string(text.substr(static_cast<std::size_t>(position)));
}
} // namespace

SearchPass PlanPass(std::string_view deviceId, int pass)
{
    const auto own = [](std::string searchId) { return SearchPass{PassVerdict::OwnId, std::move(searchId)}; };
    const int32_t revision = LastPosition(deviceId, "&REV");
    const int32_t subSystem = LastPosition(deviceId, "&SUBSYS");
    switch (pass) {
        case kFirstSearchPass:
            return own(std::string(deviceId));
        case 2:
            return revision == 0 ? SearchPass{} : own(Before(deviceId, revision));
        case 3:
            if (subSystem == 0 || revision == 0) {
                return {};
            }
            if (revision == kNotFound) {
                return {.verdict = PassVerdict::Fault, .searchId = {}};
            }
            return own(Before(deviceId, subSystem) + From(deviceId, revision));
        case kLastSearchPass:
            return subSystem == 0 ? SearchPass{} : own(Before(deviceId, subSystem));
        default:
            return {};
    }
}

std::optional<std::string> SearchIdForPass(std::string_view deviceId, int pass)
{
    SearchPass plan = PlanPass(deviceId, pass);
    switch (plan.verdict) {
        case PassVerdict::OwnId:
            return std::move(plan.searchId);
        case PassVerdict::IdOfThePassBefore:
            return std::nullopt;
        case PassVerdict::Fault:
            break;
    }
    // Throws, by design: the part to be kept is after the end of the text, and nothing in the search handles that.
    return From(deviceId, kNotFound);
}
