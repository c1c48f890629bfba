#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// One line of an INF's model section, such as
/// %Nic.DeviceDesc%=Nic.ndi, PCI\VEN_5D1A&DEV_7A01&SUBSYS_A01F5D1A, PCI\VEN_5D1A&DEV_7A01

/// Longest part of a model line that is looked at, in characters.
inline constexpr std::size_t kModelLineChars = 1999;

struct ModelLine
{
    std::optional<std::string_view> descriptionKey; ///< text before the equals sign; no value when it is empty
    std::optional<std::string_view> hardwareId;     ///< first hardware ID, normalised; no value when the line has none
};

/// Takes a model line apart. Everything after the first hardware ID is ignored: compatible IDs do not count.
/// The ID comes without its bus prefix and is cut at its first double quote and then at its first "&CC_".
/// @param line  The line; only its first 1999 characters are looked at. The results refer to it.
[[nodiscard]] ModelLine ParseModelLine(std::string_view line);

/// Where a model line's description is found.
struct DescriptionLookup
{
    std::string name;     ///< entry of the "Strings" section; empty when the key names none
    std::string fallback; ///< used when that section does not have the entry
};

/// "%Nic.DeviceDesc%" gives the name "Nic.DeviceDesc" and the fallback "%Nic.DeviceDesc", the key up to the closing
/// sign. A key without per-cent signs is both; one of nothing but per-cent signs gives an empty name and itself.
/// @param descriptionKey  Text before the equals sign of a model line.
[[nodiscard]] DescriptionLookup DescriptionFor(std::string_view descriptionKey);
