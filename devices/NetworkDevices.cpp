#include "NetworkDevices.h"

#include <algorithm>

std::string_view FindAcceptedId(std::string_view multiString)
{
    for (;;) {
        const std::string_view entry = multiString.substr(0, multiString.find('\0'));
        if (entry.empty()) {
            return {};
        }
        const auto* const row = std::ranges::find(kAcceptedCompatibleIds, entry);
        if (row != kAcceptedCompatibleIds.end()) {
            return *row;
        }
        multiString.remove_prefix(std::min(entry.size() + 1, multiString.size()));
    }
}
