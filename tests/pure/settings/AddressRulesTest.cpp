#include "AddressRules.h"

#include <gtest/gtest.h>

namespace {
/// The number that the platform answers for a.b.c.d.
constexpr uint32_t Address(uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return a | (b << 8) | (c << 16) | (d << 24);
}
} // namespace

TEST(AddressRules, FirstOctetIsTheOneInFront)
{
    EXPECT_EQ(FirstOctet(Address(10, 20, 30, 40)), 10U);
    EXPECT_EQ(FirstOctet(kNoAddress), 255U);
}

TEST(AddressRules, MachineAddressBeginsWith1To223)
{
    EXPECT_FALSE(IsFirstOctetBetween(Address(0, 1, 1, 1), 1));
    EXPECT_TRUE(IsFirstOctetBetween(Address(1, 255, 255, 255), 1));
    EXPECT_TRUE(IsFirstOctetBetween(Address(223, 255, 255, 255), 1));
    EXPECT_FALSE(IsFirstOctetBetween(Address(224, 0, 0, 1), 1));
    EXPECT_FALSE(IsFirstOctetBetween(kNoAddress, 1));
}

TEST(AddressRules, GatewayAddressMayBeginWith0)
{
    EXPECT_TRUE(IsFirstOctetBetween(Address(0, 0, 0, 0), 0));
    EXPECT_TRUE(IsFirstOctetBetween(Address(223, 0, 0, 0), 0));
    EXPECT_FALSE(IsFirstOctetBetween(Address(224, 0, 0, 0), 0));
    EXPECT_FALSE(IsFirstOctetBetween(kNoAddress, 0));
}

TEST(SubnetMask, EveryContiguousMaskFrom128IsValid)
{
    for (unsigned ones = 1; ones <= 31; ++ones) {
        const uint32_t bits = ~0U << (32 - ones);
        EXPECT_EQ(JudgeSubnetMask(Address(bits >> 24, (bits >> 16) & 255, (bits >> 8) & 255, bits & 255)),
                  MaskVerdict::Valid)
            << ones;
    }
}

TEST(SubnetMask, OneAfterAZeroIsAGap)
{
    EXPECT_EQ(JudgeSubnetMask(Address(255, 0, 255, 0)), MaskVerdict::OneAfterZero);
    EXPECT_EQ(JudgeSubnetMask(Address(255, 255, 255, 1)), MaskVerdict::OneAfterZero);
    EXPECT_EQ(JudgeSubnetMask(Address(128, 0, 0, 1)), MaskVerdict::OneAfterZero);
    EXPECT_EQ(JudgeSubnetMask(Address(255, 255, 255, 253)), MaskVerdict::OneAfterZero);
}

TEST(SubnetMask, AllOnesCountAsAGapToo)
{
    EXPECT_EQ(JudgeSubnetMask(Address(255, 255, 255, 255)), MaskVerdict::OneAfterZero);
    EXPECT_EQ(JudgeSubnetMask(kNoAddress), MaskVerdict::OneAfterZero);
}

TEST(SubnetMask, FirstOctetBelow128IsTooSmallWhateverFollows)
{
    EXPECT_EQ(JudgeSubnetMask(Address(127, 255, 255, 0)), MaskVerdict::FirstOctetTooSmall);
    EXPECT_EQ(JudgeSubnetMask(0), MaskVerdict::FirstOctetTooSmall);
}
