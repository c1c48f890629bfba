#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// The compatible IDs of the devices that the program serves, in the order in which they are compared.
inline constexpr std::array kAcceptedCompatibleIds = std::to_array<std::string_view>({
    // Class codes of the maker's vendor number.
    R"(PCI\VEN_5D1A&CC_020000)", // Ethernet controller
    R"(PCI\VEN_5D1A&CC_070002)", // 16550-compatible serial controller
    R"(PCI\VEN_5D1A&CC_0C0701)", // IPMI KCS interface
    // Functions of the maker that do not carry a network class code.
    R"(PCI\VEN_5D1A&DEV_2A10)", // DMA engines
    R"(PCI\VEN_5D1A&DEV_2A11)",
    R"(PCI\VEN_5D1A&DEV_2A14)",
    R"(PCI\VEN_5D1A&DEV_2A15)",
    R"(PCI\VEN_5D1A&DEV_2B20)", // side-band management functions
    R"(PCI\VEN_5D1A&DEV_2B21)",
    R"(PCI\VEN_5D1A&DEV_2B24)",
    R"(PCI\VEN_5D1A&DEV_3C01)", // LAN functions of server platforms
    R"(PCI\VEN_5D1A&DEV_3C02)",
    R"(PCI\VEN_5D1A&DEV_3C05)",
    R"(PCI\VEN_5D1A&DEV_4D08)", // converged adapter functions
    R"(PCI\VEN_5D1A&DEV_4D09)",
    // The second brand's adapter.
    R"(PCI\VEN_1E2B&DEV_0C40)",
});
inline constexpr std::size_t kAcceptedClassRows = 3;

namespace accepted_ids {
constexpr bool HasShape()
{
    for (std::size_t row = 0; row < kAcceptedCompatibleIds.size(); ++row) {
        const std::string_view id = kAcceptedCompatibleIds[row];
        const bool isClassRow = row < kAcceptedClassRows;
        const bool isLastRow = row + 1 == kAcceptedCompatibleIds.size();
        if (id.size() != (isClassRow ? 22U : 21U) ||
            !id.starts_with(isLastRow ? R"(PCI\VEN_1E2B&)" : R"(PCI\VEN_5D1A&)") ||
            id.substr(13).starts_with("CC_") != isClassRow || id.substr(13).starts_with("DEV_") == isClassRow) {
            return false;
        }
    }
    return kAcceptedCompatibleIds.size() == 16;
}
static_assert(HasShape(), "three class rows, twelve device rows of the maker, one of the second brand");
} // namespace accepted_ids

/// Looks for an accepted ID in a device's list of compatible IDs; an entry counts only when it equals a row exactly.
/// @param multiString  NUL-terminated entries, ended by an empty one; a list that lacks its end stops with the text.
/// @return the row that the first accepted entry equals, empty when there is none.
[[nodiscard]] std::string_view FindAcceptedId(std::string_view multiString);
