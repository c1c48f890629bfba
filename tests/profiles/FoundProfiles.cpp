#include "FoundProfiles.h"

#include <array>

using namespace std::string_view_literals;

namespace {
constexpr auto kFound = std::to_array<std::string_view>({
#include "FoundProfiles.inc"
});
} // namespace

std::span<const std::string_view> FoundProfiles()
{
    return kFound;
}
