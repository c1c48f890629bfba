#include "OSPredicates.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace {
std::set<uint32_t> CodesWhere(const std::function<bool(OSCode)>& predicate)
{
    std::set<uint32_t> codes;
    for (uint32_t code = 0; code <= 25; ++code) {
        if (predicate(static_cast<OSCode>(code))) {
            codes.insert(code);
        }
    }
    return codes;
}

SystemFacts Version(uint32_t majorVersion, uint32_t minorVersion, uint32_t platform = kPlatformNT)
{
    SystemFacts facts;
    facts.valid = true;
    facts.majorVersion = majorVersion;
    facts.minorVersion = minorVersion;
    facts.platform = platform;
    return facts;
}

SystemFacts Processor(std::optional<uint16_t> architecture)
{
    SystemFacts facts;
    facts.architecture = architecture;
    return facts;
}

SystemFacts Product(uint8_t productType)
{
    SystemFacts facts;
    facts.productType = productType;
    return facts;
}

using Codes = std::set<uint32_t>;
} // namespace

TEST(OSPredicates, EachFamilyHasExactlyItsCodes)
{
    EXPECT_EQ(CodesWhere(IsWin2K3Family), (Codes{10, 11, 12}));
    EXPECT_EQ(CodesWhere(IsWin2K8Family), (Codes{15, 16, 17}));
    EXPECT_EQ(CodesWhere(IsWin7Family), (Codes{18, 19}));
    EXPECT_EQ(CodesWhere(IsWin8Family), (Codes{22, 23, 24}));
    EXPECT_EQ(CodesWhere(IsWin2K8R2Family), (Codes{20, 21}));
    EXPECT_EQ(CodesWhere(IsVistaFamily), (Codes{13, 14}));
    EXPECT_EQ(CodesWhere(IsWin8Workstation), (Codes{22, 23}));
    EXPECT_EQ(CodesWhere(IsWin8Server), (Codes{24}));
    EXPECT_EQ(CodesWhere(IsXPWorkstation), (Codes{7, 9}));
    EXPECT_EQ(CodesWhere(CanBeServerCore), (Codes{15, 16, 17, 20, 21}));
}

TEST(OSPredicates, ServerOrVistaLaterLeavesOutTheSixOneServersAndTheFiveXWorkstations)
{
    EXPECT_EQ(CodesWhere(IsServerOrVistaLater), (Codes{10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 22, 23, 24}));
}

TEST(OSPredicates, WorkstationOSLeavesOutTheIA64Workstation)
{
    EXPECT_EQ(CodesWhere(IsWorkstationOS), (Codes{7, 9, 13, 14, 18, 19, 22, 23}));
}

TEST(OSPredicates, ProcessorIsKnownOnlyFromTheNativeInformation)
{
    EXPECT_TRUE(IsIA64(Processor(6)));
    EXPECT_FALSE(IsIA64(Processor(9)));
    EXPECT_FALSE(IsIA64(Processor(0)));
    EXPECT_FALSE(IsIA64(Processor(std::nullopt)));
    EXPECT_TRUE(IsX64(Processor(9)));
    EXPECT_FALSE(IsX64(Processor(6)));
    EXPECT_FALSE(IsX64(Processor(0)));
    EXPECT_FALSE(IsX64(Processor(std::nullopt)));
}

TEST(OSPredicates, NT5AndNT6NeedTheNTFamily)
{
    EXPECT_FALSE(IsNT5OrLater(Version(4, 0)));
    EXPECT_TRUE(IsNT5OrLater(Version(5, 0)));
    EXPECT_TRUE(IsNT5OrLater(Version(10, 0)));
    EXPECT_FALSE(IsNT5OrLater(Version(5, 0, kPlatform9x)));
    EXPECT_FALSE(IsNT6OrLater(Version(5, 2)));
    EXPECT_TRUE(IsNT6OrLater(Version(6, 0)));
    EXPECT_TRUE(IsNT6OrLater(Version(7, 0)));
    EXPECT_FALSE(IsNT6OrLater(Version(6, 0, kPlatform9x)));
}

TEST(OSPredicates, XPOrLaterBeginsAfterFiveZero)
{
    EXPECT_FALSE(IsXPOrLater(Version(4, 90)));
    EXPECT_FALSE(IsXPOrLater(Version(5, 0)));
    EXPECT_TRUE(IsXPOrLater(Version(5, 1)));
    EXPECT_TRUE(IsXPOrLater(Version(5, 2)));
    EXPECT_TRUE(IsXPOrLater(Version(6, 0)));
    EXPECT_FALSE(IsXPOrLater(Version(5, 1, kPlatform9x)));
    EXPECT_FALSE(IsXPOrLater(Version(6, 0, kPlatform9x)));
}

TEST(OSPredicates, Win8OrLaterGoesByCodeOrByVersionNumber)
{
    EXPECT_EQ(CodesWhere([](OSCode code) { return IsWin8OrLater(code, Version(6, 0)); }), (Codes{22, 23, 24}));
    EXPECT_TRUE(IsWin8OrLater(osUNSUPPORTED, Version(6, 2)));
    EXPECT_TRUE(IsWin8OrLater(osUNSUPPORTED, Version(6, 3)));
    EXPECT_TRUE(IsWin8OrLater(osUNSUPPORTED, Version(7, 0)));
    EXPECT_TRUE(IsWin8OrLater(osUNSUPPORTED, Version(10, 0)));
    EXPECT_FALSE(IsWin8OrLater(osUNSUPPORTED, Version(6, 1)));
    EXPECT_FALSE(IsWin8OrLater(osUNSUPPORTED, Version(5, 2)));
}

TEST(OSPredicates, VistaWorkstationNeedsTheProductTypeToo)
{
    EXPECT_TRUE(IsVistaWorkstation(osWINVISTA32, Product(kProductWorkstation)));
    EXPECT_TRUE(IsVistaWorkstation(osWINVISTA32E, Product(kProductWorkstation)));
    EXPECT_FALSE(IsVistaWorkstation(osWINVISTA32E, Product(kProductServer)));
    EXPECT_FALSE(IsVistaWorkstation(osLONGHORN32E, Product(kProductWorkstation)));
}

TEST(OSPredicates, ServicePackIsAnsweredForServer2003Only)
{
    SystemFacts facts;
    facts.servicePackMajor = 2;
    for (uint32_t code = 0; code <= 24; ++code) {
        EXPECT_EQ(Win2K3ServicePack(static_cast<OSCode>(code), facts), code >= 10 && code <= 12 ? 2U : 0U) << code;
    }
    facts.servicePackMajor = 0;
    EXPECT_EQ(Win2K3ServicePack(osWIN2K3SRV32E, facts), 0U);
}

TEST(OSPredicates, ModernServersAreTheServersFromSixZeroOnExceptOnIA64)
{
    EXPECT_EQ(CodesWhere([](OSCode code) { return IsModernServer(code, Processor(9)); }),
              (Codes{15, 16, 17, 20, 21, 24}));
    EXPECT_EQ(CodesWhere([](OSCode code) { return IsModernServer(code, Processor(std::nullopt)); }),
              (Codes{15, 16, 17, 20, 21, 24}));
    EXPECT_EQ(CodesWhere([](OSCode code) { return IsModernServer(code, Processor(6)); }), Codes{});
}

TEST(OSPredicates, GenerationIsTwoFromSixOneOnOneForSixZeroAndElseZero)
{
    EXPECT_EQ(OSGeneration(osWINXP32E, Version(5, 2)), 0);
    EXPECT_EQ(OSGeneration(osWINME, Version(4, 90, kPlatform9x)), 0);
    EXPECT_EQ(OSGeneration(osWINVISTA32E, Version(6, 0)), 1);
    EXPECT_EQ(OSGeneration(osLONGHORN32, Version(6, 0)), 1);
    EXPECT_EQ(OSGeneration(osUNSUPPORTED, Version(6, 1)), 1) << "a 32-bit 6.1 server";
    EXPECT_EQ(OSGeneration(osWINSEVEN32, Version(6, 1)), 2);
    EXPECT_EQ(OSGeneration(osWIN2K8R232E, Version(6, 0)), 2) << "a 6.1 server that reports 6.0";
    EXPECT_EQ(OSGeneration(osWINEIGHT32, Version(6, 2)), 2);
    EXPECT_EQ(OSGeneration(osUNSUPPORTED, Version(10, 0)), 2);
}

TEST(OSPredicates, DescriptionNamesEverythingTheCodeIsDecidedFrom)
{
    SystemFacts facts = Version(6, 1);
    facts.productType = 3;
    facts.architecture = kArchitectureIA64;
    EXPECT_EQ(DescribeSystem(facts), "Version: 6.1  Platform: 2   Product Type: 3   IsIA64(): 1   Proc Arch: 6");
    facts.architecture.reset();
    EXPECT_EQ(DescribeSystem(facts), "Version: 6.1  Platform: 2   Product Type: 3   IsIA64(): 0   Proc Arch: 0");
}

TEST(OSPredicates, DescriptionOfTheLargestNumbersStaysInItsBuffer)
{
    SystemFacts facts = Version(0x7FFFFFFFU, 0x7FFFFFFFU, 0x7FFFFFFFU);
    facts.productType = 255;
    facts.architecture = uint16_t{0xFFFF};
    EXPECT_EQ(
        DescribeSystem(facts),
        "Version: 2147483647.2147483647  Platform: 2147483647   Product Type: 255   IsIA64(): 0   Proc Arch: 65535");
}
