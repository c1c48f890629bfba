#include "ISCSIRules.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

namespace {
SystemFacts Facts(uint32_t major, uint32_t minor, uint16_t servicePack = 0)
{
    return {.valid = true,
            .majorVersion = major,
            .minorVersion = minor,
            .platform = kPlatformNT,
            .productType = kProductServer,
            .servicePackMajor = servicePack,
            .architecture = kArchitectureX64};
}
} // namespace

TEST(ISCSIRules, NumbersHaveTheirRanges)
{
    const struct
    {
        const char* number;
        std::function<bool(int64_t)> isInRange;
        int64_t lowest;
        int64_t highest;
        std::vector<int64_t> outside;
    } rows[] = {
        {"boot LUN", [](int64_t n) { return IsBootLunInRange(static_cast<uint32_t>(n)); }, 0, 255, {256, 0xFFFFFFFF}},
        {"target port",
         [](int64_t n) { return IsTargetPortInRange(static_cast<int32_t>(n)); },
         1025,
         65535,
         {1024, 65536, 0, -1, std::numeric_limits<int32_t>::min()}},
        {"VLAN ID", [](int64_t n) { return IsVlanIdInRange(static_cast<uint32_t>(n)); }, 0, 4096, {4097, 0xFFFFFFFF}},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(row.isInRange(row.lowest)) << row.number;
        EXPECT_TRUE(row.isInRange(row.highest)) << row.number;
        for (const int64_t number : row.outside) {
            EXPECT_FALSE(row.isInRange(number)) << row.number << " " << number;
        }
    }
}

TEST(ISCSIRules, SystemsBootFromServer2003ServicePack1OnAndNeedTheirHotFixes)
{
    const struct
    {
        OSCode system;
        SystemFacts facts;
        bool boots;
        bool hasInitiatorHotFix;
        bool needsDumpHotFix;
    } rows[] = {
        // Server 2003
        {osWIN2K3SRV32, Facts(5, 2, 0), false, false, false},
        {osWIN2K3SRV32, Facts(5, 2, 1), true, false, false},
        {osWIN2K3SRV32, Facts(5, 2, 2), true, true, false},
        {osWIN2K3SRV64, Facts(5, 2, 0), false, false, false},
        {osWIN2K3SRV64, Facts(5, 2, 1), true, false, false},
        {osWIN2K3SRV64, Facts(5, 2, 2), true, true, false},
        {osWIN2K3SRV32E, Facts(5, 2, 0), false, false, false},
        {osWIN2K3SRV32E, Facts(5, 2, 1), true, false, false},
        {osWIN2K3SRV32E, Facts(5, 2, 2), true, true, false},
        // older systems and workstations
        {osWINXP32, Facts(5, 1, 3), false, false, false},
        {osWINXP32E, Facts(5, 2, 2), false, false, false},
        {osWINXP64, Facts(5, 2, 2), false, false, false},
        {osWIN2K, Facts(5, 0, 4), false, false, false},
        {osWINNT4, Facts(4, 0, 6), false, false, false},
        // everything from 6.0 on, also a system without a name here
        {osWINVISTA32, Facts(6, 0), true, false, false},
        {osWINVISTA32E, Facts(6, 0, 1), true, false, false},
        {osLONGHORN32, Facts(6, 0, 1), true, false, true},
        {osLONGHORN32, Facts(6, 0, 2), true, false, false},
        {osLONGHORN32E, Facts(6, 0, 1), true, false, true},
        {osLONGHORN32E, Facts(6, 0, 2), true, false, false},
        {osLONGHORN64, Facts(6, 0, 1), true, false, true},
        {osLONGHORN64, Facts(6, 0, 2), true, false, false},
        {osWIN2K8R232E, Facts(6, 1, 0), true, false, false},
        {osWINEIGHTSRV32E, Facts(6, 2), true, false, false},
        {osUNSUPPORTED, Facts(10, 0), true, false, false},
    };
    for (const auto& [system, facts, boots, hasInitiatorHotFix, needsDumpHotFix] : rows) {
        SCOPED_TRACE(testing::Message() << "system " << system << " of " << facts.majorVersion << '.'
                                        << facts.minorVersion << " service pack " << facts.servicePackMajor);
        EXPECT_EQ(CanBootOverISCSI(system, facts), boots);
        EXPECT_EQ(ServicePackHasInitiatorHotFix(system, facts), hasInitiatorHotFix);
        EXPECT_EQ(IsServer2008DumpHotFixNeeded(system, facts), needsDumpHotFix);
    }
}

TEST(ISCSIRules, SystemOfUnknownVersionAndThe9xFamilyDoNotBoot)
{
    EXPECT_FALSE(CanBootOverISCSI(osUNSUPPORTED, SystemFacts{}));
    SystemFacts unread = Facts(6, 1);
    unread.valid = false;
    EXPECT_FALSE(CanBootOverISCSI(osWIN2K8R232E, unread));
    SystemFacts millennium = Facts(6, 0);
    millennium.platform = kPlatform9x;
    EXPECT_FALSE(CanBootOverISCSI(osWINME, millennium));
}

TEST(ISCSIRules, InitiatorMustBe20Build1895OrLater)
{
    for (const InitiatorVersion& early : std::to_array<InitiatorVersion>({{}, {1, 6, 9999}, {2, 0, 1894}})) {
        EXPECT_FALSE(IsInitiatorRecentEnough(early)) << early.major << '.' << early.minor << '.' << early.build;
    }
    for (const InitiatorVersion& late :
         std::to_array<InitiatorVersion>({{2, 0, 1895}, {2, 0, 3825}, {2, 1, 0}, {6, 0, 0}})) {
        EXPECT_TRUE(IsInitiatorRecentEnough(late)) << late.major << '.' << late.minor << '.' << late.build;
    }
}

TEST(ISCSIRules, HotFixesHaveTheirIdentifiers)
{
    EXPECT_STREQ(kInitiatorHotFix, "KB902113");
    EXPECT_STREQ(kServer2003DumpHotFix, "KB939875");
}

TEST(ISCSIRules, HotFixQueryAsksForTheIdentifier)
{
    EXPECT_EQ(HotFixQuery(L"KB902113"), L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = 'KB902113'");
}

TEST(ISCSIRules, QuotationMarksAndBackslashesInAnIdentifierDoNotEndTheQuery)
{
    EXPECT_EQ(HotFixQuery(L"a'b\\c"), L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = 'a\\'b\\\\c'");
    EXPECT_EQ(HotFixQuery(L""), L"SELECT * FROM Win32_QuickFixEngineering WHERE HotFixID = ''");
}
