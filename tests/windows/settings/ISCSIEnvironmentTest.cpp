// The system, its initiator, the initiator's key and its crash dump.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "HandleCount.h"
#include "ISCSIMachine.h"
#include "OSVersion.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kServerVersionLine[] = "versionInfo - BuildNumber - 6000, MajorVersion - 6, MinorVersion - 1";
} // namespace

TEST(ISCSISystem, Server2003WithAServicePackAnd60AndLaterAreRight)
{
    EXPECT_THAT(Check([] { return kServer2003.isTheRightiSCSIOS(); }).lines,
                ElementsAre(Entry("isTheRightiSCSIOS"), Exit("isTheRightiSCSIOS", false)));
    EXPECT_THAT(Check([] { return kServer2003Sp1.isTheRightiSCSIOS(); }).lines,
                ElementsAre(Entry("isTheRightiSCSIOS"), Exit("isTheRightiSCSIOS", true)));
    EXPECT_FALSE(kServer2003.isTheRightiSCSIOS());
    EXPECT_TRUE(kServer2003Sp1.isTheRightiSCSIOS());
    EXPECT_TRUE(kServer2008R2.isTheRightiSCSIOS());
}

TEST(ISCSISystem, WithoutAGivenSystemItIsTheRunningOne)
{
    const COSVersion version;
    const CISCSISupport given(version.GetOSCode(), version.Facts());
    EXPECT_EQ(CISCSISupport().isTheRightiSCSIOS(), given.isTheRightiSCSIOS());
    EXPECT_EQ(CISCSISupport().isTheRightiSCSIOS(), version.IsNT6OrLater());
}

TEST(ISCSIPatch, MissingLibraryIsTracedWithItsErrorCode)
{
    const Checked checked = Check([] { return kServer2008R2.isTheiSCSIPatchInstalled(); });
    EXPECT_FALSE(checked.result);
    EXPECT_THAT(checked.lines,
                ElementsAre(Entry("isTheiSCSIPatchInstalled"),
                            "CISCSISupport::isTheiSCSIPatchInstalled LoadLibrary of iscsidsc.dll failed - 126",
                            Exit("isTheiSCSIPatchInstalled", false)));
}

TEST(ISCSIPatch, RecentInitiatorIsAcceptedAndItsVersionTraced)
{
    const InitiatorLibrary library("6", "1", "6000");
    const Checked checked = Check([] { return kServer2008R2.isTheiSCSIPatchInstalled(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(Entry("isTheiSCSIPatchInstalled"), kServerVersionLine,
                                           Exit("isTheiSCSIPatchInstalled", true)));
    EXPECT_THAT(library.TakeJournal(), ElementsAre("GetIScsiVersionInformation"));
}

TEST(ISCSIPatch, OldInitiatorIsRejected)
{
    const InitiatorLibrary library("2", "0", "1894");
    const Checked checked = Check([] { return kServer2003Sp1.isTheiSCSIPatchInstalled(); });
    EXPECT_FALSE(checked.result);
    EXPECT_THAT(checked.lines, Contains("versionInfo - BuildNumber - 1894, MajorVersion - 2, MinorVersion - 0"));
    library.Answer("Build", "1895");
    EXPECT_TRUE(kServer2003Sp1.isTheiSCSIPatchInstalled());
}

TEST(ISCSIPatch, QueryThatFailsAndLibraryWithoutTheQueryAreRejected)
{
    {
        const InitiatorLibrary library("6", "1", "6000");
        library.Answer("Status", "5");
        const Checked checked = Check([] { return kServer2008R2.isTheiSCSIPatchInstalled(); });
        EXPECT_FALSE(checked.result);
        EXPECT_THAT(checked.lines, Contains("CISCSISupport::isTheiSCSIPatchInstalled GetIScsiVersionInformation failed "
                                            "- Status - 5"));
    }
    const LibraryDouble library("NetInstWithoutExport.dll", "iscsidsc.dll");
    const Checked checked = Check([] { return kServer2008R2.isTheiSCSIPatchInstalled(); });
    EXPECT_FALSE(checked.result);
    EXPECT_THAT(checked.lines, Contains("CISCSISupport::isTheiSCSIPatchInstalled GetProcAddress of "
                                        "GetIScsiVersionInformation failed - 127"));
}

TEST(ISCSIPatch, ThousandCallsLeaveNoHandleAndNoLibrary)
{
    const InitiatorLibrary library("6", "1", "6000");
    library.Answer("Quiet", "1");
    EXPECT_TRUE(kServer2008R2.isTheiSCSIPatchInstalled());
    const unsigned before = CountOwnHandles();
    for (int call = 0; call < 1000; ++call) {
        static_cast<void>(kServer2008R2.isTheiSCSIPatchInstalled());
    }
    EXPECT_EQ(CountOwnHandles(), before);
    EXPECT_EQ(GetModuleHandleA("iscsidsc.dll"), nullptr);
}

TEST(ISCSIInitiatorKey, IsFoundAmongOtherControllers)
{
    const Controller first("9001", R"(pci\ven_8086&dev_2922)");
    const Controller initiator("9002", R"(root\iscsiprt)");
    const Controller last("9003", "");
    SetRegistryText(initiator.Parameters(), "Marker", "the initiator's");
    COrvRegKey key;
    EXPECT_THAT(Check([&] { return kServer2008R2.GetIscsiInitiatorKey(key); }).lines,
                ElementsAre(Entry("GetIscsiInitiatorKey"), Exit("GetIscsiInitiatorKey", true)));
    COrvString marker;
    EXPECT_TRUE(key.GetValue("Marker", marker));
    EXPECT_EQ(marker.Text(), "the initiator's");
    EXPECT_THAT(Check([] { return kServer2008R2.isTheiSCSIInitiatorKeyPresent(); }).lines,
                ElementsAre(Entry("isTheiSCSIInitiatorKeyPresent"), Entry("GetIscsiInitiatorKey"),
                            Exit("GetIscsiInitiatorKey", true), Exit("isTheiSCSIInitiatorKeyPresent", true)));
}

TEST(ISCSIInitiatorKey, DeviceIdIsComparedIgnoringLetterCase)
{
    const Controller initiator("9002", R"(ROOT\ISCSIPRT)");
    CreateRegistryKey(initiator.Parameters());
    EXPECT_TRUE(kServer2008R2.isTheiSCSIInitiatorKeyPresent());
}

TEST(ISCSIInitiatorKey, WithoutAnInitiatorOrItsParametersThereIsNone)
{
    COrvRegKey key;
    EXPECT_FALSE(kServer2008R2.GetIscsiInitiatorKey(key));
    EXPECT_THAT(Check([] { return kServer2008R2.isTheiSCSIInitiatorKeyPresent(); }).lines,
                ElementsAre(Entry("isTheiSCSIInitiatorKeyPresent"), Entry("GetIscsiInitiatorKey"),
                            Exit("GetIscsiInitiatorKey", false), Exit("isTheiSCSIInitiatorKeyPresent", false)));
    const Controller other("9001", R"(root\iscsiprt2)");
    CreateRegistryKey(other.Parameters());
    EXPECT_FALSE(kServer2008R2.isTheiSCSIInitiatorKeyPresent());
    const Controller initiator("9002", R"(root\iscsiprt)");
    EXPECT_FALSE(kServer2008R2.isTheiSCSIInitiatorKeyPresent()) << "no key Parameters";
    EXPECT_EQ(key.GetHKey(), nullptr);
}

TEST(ISCSICrashDump, OnlyTheExactDriverNameEnablesIt)
{
    constexpr char kUnknown[] = "CISCSISupport::IsCrashDumpEnabled unknown crash dump driver is installed";
    const Controller initiator("9002", R"(root\iscsiprt)");
    CreateRegistryKey(initiator.Parameters());
    Checked checked = Check([] { return kServer2008R2.IsCrashDumpEnabled(); });
    EXPECT_FALSE(checked.result) << "no value";
    EXPECT_THAT(checked.lines, Not(Contains(kUnknown)));

    SetRegistryText(initiator.Parameters(), "DumpMiniPort", "iSCSDump.sys");
    checked = Check([] { return kServer2008R2.IsCrashDumpEnabled(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(Entry("IsCrashDumpEnabled"), Entry("GetIscsiInitiatorKey"),
                                           Exit("GetIscsiInitiatorKey", true), Exit("IsCrashDumpEnabled", true)));

    for (const char* other : {"iscsdump.sys", "iSCSDump.sys ", "iSCSDump", "other.sys", ""}) {
        SetRegistryText(initiator.Parameters(), "DumpMiniPort", other);
        checked = Check([] { return kServer2008R2.IsCrashDumpEnabled(); });
        EXPECT_FALSE(checked.result) << other;
        EXPECT_THAT(checked.lines, Contains(kUnknown)) << other;
    }
}

TEST(ISCSICrashDump, EnablingWritesTheDriverNameAsText)
{
    const Controller initiator("9002", R"(root\iscsiprt)");
    CreateRegistryKey(initiator.Parameters());
    EXPECT_THAT(Check([] { return kServer2008R2.EnableCrashDump(); }).lines,
                ElementsAre(Entry("EnableCrashDump"), Entry("GetIscsiInitiatorKey"), Exit("GetIscsiInitiatorKey", true),
                            Exit("EnableCrashDump", true)));
    const std::optional<RegistryValue> value = ReadRegistryValue(initiator.Parameters(), "DumpMiniPort");
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->type, DWORD{REG_SZ});
    EXPECT_EQ(value->bytes, std::string("iSCSDump.sys") + '\0');
    EXPECT_TRUE(kServer2008R2.IsCrashDumpEnabled());
}

TEST(ISCSICrashDump, WithoutAnInitiatorItCannotBeEnabled)
{
    EXPECT_THAT(Check([] { return kServer2008R2.EnableCrashDump(); }).lines,
                ElementsAre(Entry("EnableCrashDump"), Entry("GetIscsiInitiatorKey"),
                            Exit("GetIscsiInitiatorKey", false), Exit("EnableCrashDump", false)));
    EXPECT_FALSE(kServer2008R2.IsCrashDumpEnabled());
}
