#pragma once

#include <cstdint>

/// Rules for addresses and masks. An address is the number that the platform's text-to-address function returns: its
/// first octet is in the lowest 8 bits. Text that is not an address gives all ones, which no rule accepts.

/// The platform's result for text that is not an address.
inline constexpr uint32_t kNoAddress = 0xFFFFFFFF;

[[nodiscard]] constexpr uint32_t FirstOctet(uint32_t address)
{
    return address & 0xFF;
}

/// The highest first octet that a single machine may have; multicast addresses start above it.
inline constexpr uint32_t kHighestFirstOctet = 223;

/// @param lowest  1 for a machine's address, 0 for a gateway's.
[[nodiscard]] constexpr bool IsFirstOctetBetween(uint32_t address, uint32_t lowest)
{
    return FirstOctet(address) >= lowest && FirstOctet(address) <= kHighestFirstOctet;
}

enum class MaskVerdict
{
    Valid,
    FirstOctetTooSmall, ///< below 128: the mask does not begin with a one
    OneAfterZero,       ///< the ones are not all in front; a mask of all ones counts as this
};

[[nodiscard]] MaskVerdict JudgeSubnetMask(uint32_t mask);
