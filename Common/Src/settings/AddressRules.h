#pragma once

#include <cstdint>

/// Rules for addresses and masks. An address is the number that the platform's text-to-address function answers: its
/// first octet is in the lowest 8 bits. Text that is no address gives all ones there, and so no rule accepts it.

/// What the platform answers for text that is no address.
inline constexpr uint32_t kNoAddress = 0xFFFFFFFF;

[[nodiscard]] constexpr uint32_t FirstOctet(uint32_t address)
{
    return address & 0xFF;
}

/// The highest first octet that a single machine may have; multicast addresses begin behind it.
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
    OneAfterZero,       ///< the ones are not all in front; a mask of all ones counts as such
};

[[nodiscard]] MaskVerdict JudgeSubnetMask(uint32_t mask);
