#include "AddressRules.h"

namespace {
constexpr unsigned kMaskBits = 32;

// The number with the first octet in the highest 8 bits.
constexpr uint32_t FirstOctetInFront(uint32_t address)
{
    return (address << 24) | ((address & 0xFF00) << 8) | ((address >> 8) & 0xFF00) | (address >> 24);
}

constexpr uint32_t ShiftLeft(uint32_t mask, unsigned count)
{
    return mask << (count % kMaskBits);
}

// Shift counts are taken modulo 32, so a mask of all ones never shows a zero; its count ends above 32.
constexpr unsigned CountLeadingOnes(uint32_t mask)
{
    constexpr uint32_t kTopBit = 0x80000000;
    unsigned count = 0;
    while (count <= kMaskBits && (ShiftLeft(mask, count) & kTopBit) != 0) {
        ++count;
    }
    return count;
}
} // namespace

MaskVerdict JudgeSubnetMask(uint32_t mask)
{
    constexpr uint32_t kLowestFirstOctet = 128;
    if (FirstOctet(mask) < kLowestFirstOctet) {
        return MaskVerdict::FirstOctetTooSmall;
    }
    const uint32_t bits = FirstOctetInFront(mask);
    // The count of a mask of all ones exceeds its width, so bits remain here: all ones are rejected like a mask with a
    // gap, deliberately.
    return ShiftLeft(bits, CountLeadingOnes(bits)) == 0 ? MaskVerdict::Valid : MaskVerdict::OneAfterZero;
}
