#include "ISCSIRules.h"

#include <gtest/gtest.h>

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

TEST(ISCSIRules, BootLunGoesTo255)
{
    EXPECT_TRUE(IsBootLunInRange(0));
    EXPECT_TRUE(IsBootLunInRange(255));
    EXPECT_FALSE(IsBootLunInRange(256));
    EXPECT_FALSE(IsBootLunInRange(0xFFFFFFFF));
}

TEST(ISCSIRules, TargetPortGoesFrom1025To65535)
{
    EXPECT_FALSE(IsTargetPortInRange(1024));
    EXPECT_TRUE(IsTargetPortInRange(1025));
    EXPECT_TRUE(IsTargetPortInRange(65535));
    EXPECT_FALSE(IsTargetPortInRange(65536));
    EXPECT_FALSE(IsTargetPortInRange(0));
    EXPECT_FALSE(IsTargetPortInRange(-1));
    EXPECT_FALSE(IsTargetPortInRange(-2147483647 - 1));
}

TEST(ISCSIRules, VlanIdGoesTo4096Inclusive)
{
    EXPECT_TRUE(IsVlanIdInRange(0));
    EXPECT_TRUE(IsVlanIdInRange(4096));
    EXPECT_FALSE(IsVlanIdInRange(4097));
    EXPECT_FALSE(IsVlanIdInRange(0xFFFFFFFF));
}

TEST(ISCSIRules, Server2003BootsFromItsFirstServicePackOn)
{
    for (const OSCode server : {osWIN2K3SRV32, osWIN2K3SRV64, osWIN2K3SRV32E}) {
        EXPECT_FALSE(CanBootOverISCSI(server, Facts(5, 2, 0))) << server;
        EXPECT_TRUE(CanBootOverISCSI(server, Facts(5, 2, 1))) << server;
        EXPECT_TRUE(CanBootOverISCSI(server, Facts(5, 2, 2))) << server;
    }
}

TEST(ISCSIRules, OlderSystemsAndWorkstationsOf5DoNotBoot)
{
    EXPECT_FALSE(CanBootOverISCSI(osWINXP32, Facts(5, 1, 3)));
    EXPECT_FALSE(CanBootOverISCSI(osWINXP32E, Facts(5, 2, 2)));
    EXPECT_FALSE(CanBootOverISCSI(osWINXP64, Facts(5, 2, 2)));
    EXPECT_FALSE(CanBootOverISCSI(osWIN2K, Facts(5, 0, 4)));
    EXPECT_FALSE(CanBootOverISCSI(osWINNT4, Facts(4, 0, 6)));
}

TEST(ISCSIRules, EverySystemFrom60OnBoots)
{
    EXPECT_TRUE(CanBootOverISCSI(osWINVISTA32, Facts(6, 0)));
    EXPECT_TRUE(CanBootOverISCSI(osLONGHORN32E, Facts(6, 0, 1)));
    EXPECT_TRUE(CanBootOverISCSI(osWIN2K8R232E, Facts(6, 1)));
    EXPECT_TRUE(CanBootOverISCSI(osWINEIGHTSRV32E, Facts(6, 2)));
    EXPECT_TRUE(CanBootOverISCSI(osUNSUPPORTED, Facts(10, 0))) << "also one without a name here";
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
    EXPECT_FALSE(IsInitiatorRecentEnough({}));
    EXPECT_FALSE(IsInitiatorRecentEnough({.major = 1, .minor = 6, .build = 9999}));
    EXPECT_FALSE(IsInitiatorRecentEnough({.major = 2, .minor = 0, .build = 1894}));
    EXPECT_TRUE(IsInitiatorRecentEnough({.major = 2, .minor = 0, .build = 1895}));
    EXPECT_TRUE(IsInitiatorRecentEnough({.major = 2, .minor = 0, .build = 3825}));
    EXPECT_TRUE(IsInitiatorRecentEnough({.major = 2, .minor = 1, .build = 0}));
    EXPECT_TRUE(IsInitiatorRecentEnough({.major = 6, .minor = 0, .build = 0}));
}

TEST(ISCSIRules, Server2003HasTheInitiatorHotFixFromServicePack2On)
{
    EXPECT_FALSE(ServicePackHasInitiatorHotFix(osWIN2K3SRV32E, Facts(5, 2, 1)));
    EXPECT_TRUE(ServicePackHasInitiatorHotFix(osWIN2K3SRV32E, Facts(5, 2, 2)));
    EXPECT_TRUE(ServicePackHasInitiatorHotFix(osWIN2K3SRV32, Facts(5, 2, 2)));
    EXPECT_FALSE(ServicePackHasInitiatorHotFix(osWINXP32E, Facts(5, 2, 2)));
    EXPECT_FALSE(ServicePackHasInitiatorHotFix(osLONGHORN32E, Facts(6, 0, 2)));
}

TEST(ISCSIRules, Server2008NeedsTheDumpHotFixUntilServicePack2)
{
    for (const OSCode server : {osLONGHORN32, osLONGHORN32E, osLONGHORN64}) {
        EXPECT_TRUE(IsServer2008DumpHotFixNeeded(server, Facts(6, 0, 1))) << server;
        EXPECT_FALSE(IsServer2008DumpHotFixNeeded(server, Facts(6, 0, 2))) << server;
    }
    EXPECT_FALSE(IsServer2008DumpHotFixNeeded(osWINVISTA32E, Facts(6, 0, 1)));
    EXPECT_FALSE(IsServer2008DumpHotFixNeeded(osWIN2K8R232E, Facts(6, 1, 0)));
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
