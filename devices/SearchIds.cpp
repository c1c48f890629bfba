#include "SearchIds.h"

#include <cstddef>
#include <cstdint>

namespace {
constexpr int32_t kNotFound = -1;

// Positions are signed 32-bit with -1 for "not found". As an unsigned size, -1 lies behind the end of every text.
int32_t LastPosition(std::string_view text, std::string_view marker)
{
    const std::size_t position = text.rfind(marker);
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

std::optional<std::string> SearchIdForPass(std::string_view deviceId, int pass)
{
    const int32_t revision = LastPosition(deviceId, "&REV");
    const int32_t subSystem = LastPosition(deviceId, "&SUBSYS");
    switch (pass) {
        case kFirstSearchPass:
            return std::string(deviceId);
        case 2:
            if (revision == 0) {
                return std::nullopt;
            }
            return Before(deviceId, revision);
        case 3:
            if (subSystem == 0 || revision == 0) {
                return std::nullopt;
            }
            // An ID without a revision throws here, by design: nothing in the search handles it.
            return Before(deviceId, subSystem) + From(deviceId, revision);
        case kLastSearchPass:
            if (subSystem == 0) {
                return std::nullopt;
            }
            return Before(deviceId, subSystem);
        default:
            return std::nullopt;
    }
}
