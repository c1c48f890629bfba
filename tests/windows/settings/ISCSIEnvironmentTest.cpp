#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HandleCount.h"
#include "ISCSISupport.h"
#include "InstalledHotFix.h"
#include "LibraryDouble.h"
#include "LibraryTrace.h"
#include "OSVersion.h"
#include "RegistryKeys.h"
#include "ServiceDouble.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kScsiClass[] = R"(SYSTEM\CurrentControlSet\Control\Class\{4D36E97B-E325-11CE-BFC1-08002BE10318})";
constexpr char kServerVersionLine[] = "versionInfo - BuildNumber - 6000, MajorVersion - 6, MinorVersion - 1";

SystemFacts NtFacts(uint32_t major, uint32_t minor, uint16_t servicePack)
{
    return {.valid = true,
            .majorVersion = major,
            .minorVersion = minor,
            .platform = kPlatformNT,
            .productType = kProductServer,
            .servicePackMajor = servicePack,
            .architecture = kArchitectureX64};
}
const CISCSISupport kServer2003(osWIN2K3SRV32E, NtFacts(5, 2, 0));
const CISCSISupport kServer2003Sp1(osWIN2K3SRV32E, NtFacts(5, 2, 1));
const CISCSISupport kServer2003Sp2(osWIN2K3SRV32E, NtFacts(5, 2, 2));
const CISCSISupport kServer2008(osLONGHORN32E, NtFacts(6, 0, 1));
const CISCSISupport kServer2008Sp2(osLONGHORN32E, NtFacts(6, 0, 2));
const CISCSISupport kServer2008R2(osWIN2K8R232E, NtFacts(6, 1, 0));

/// The trace lines of this class, without those of what it builds on.
std::vector<std::string> OwnLines(const LibraryTrace& trace)
{
    std::vector<std::string> own;
    for (const std::string& line : trace.Messages()) {
        if (line.find("CISCSISupport") != std::string::npos || line.starts_with("versionInfo")) {
            own.push_back(line);
        }
    }
    return own;
}

struct Checked
{
    bool result;
    std::vector<std::string> lines;
};
Checked Check(const std::function<bool()>& check)
{
    const LibraryTrace trace;
    const bool result = check();
    return {result, OwnLines(trace)};
}

std::string Entry(const std::string& name)
{
    return "Entering CISCSISupport::" + name + "()";
}
std::string Exit(const std::string& name, bool result)
{
    return "Exiting CISCSISupport::" + name + "() -> bRet is " + (result ? "1" : "0");
}

/// A controller of the SCSI adapter class, gone at the end of the object's life.
class Controller
{
public:
    Controller(const std::string& number, const std::string& deviceId) : m_key(std::string(kScsiClass) + "\\" + number)
    {
        SetRegistryText(m_key.Path(), "MatchingDeviceId", deviceId);
    }
    [[nodiscard]] std::string Parameters() const { return m_key.Path() + "\\Parameters"; }

private:
    ScratchRegistryKey m_key;
};

/// The initiator's library, telling a version.
class InitiatorLibrary : public LibraryDouble
{
public:
    InitiatorLibrary(const std::string& major, const std::string& minor, const std::string& build)
        : LibraryDouble("iscsidsc.dll", "iscsidsc.dll")
    {
        Answer("Major", major);
        Answer("Minor", minor);
        Answer("Build", build);
    }
};

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

TEST(ISCSIInitiatorKey, DeviceIdIsComparedWithoutRegardToLetterCase)
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

TEST(ISCSIHotFix, InstalledFixIsFoundAndAnyOtherIsNot)
{
    const std::string installed = AnInstalledHotFix();
    Checked checked = Check([&] { return kServer2008R2.CheckHotFixInstalled(installed); });
    EXPECT_TRUE(checked.result) << installed;
    EXPECT_THAT(checked.lines, ElementsAre(Entry("CheckHotFixInstalled"), Exit("CheckHotFixInstalled", true)));
    for (const char* other : {"KB0000000", "", "KB' OR HotFixID <> '"}) {
        checked = Check([&] { return kServer2008R2.CheckHotFixInstalled(other); });
        EXPECT_FALSE(checked.result) << other;
        EXPECT_THAT(checked.lines, ElementsAre(Entry("CheckHotFixInstalled"), Exit("CheckHotFixInstalled", false)));
    }
}

TEST(ISCSIHotFix, Server2003Sp2NeedsNoQuestion)
{
    const Checked checked = Check([] { return kServer2003Sp2.isTheiSCSIHotFixInstalled(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(Entry("isTheiSCSIHotFixInstalled"),
                                           "CISCSISupport::isTheiSCSIHotFixInstalled() This is WS03 SP2, no need to "
                                           "call CheckiSCSIHotFixInstalled()",
                                           Exit("isTheiSCSIHotFixInstalled", true)));
}

TEST(ISCSIHotFix, OtherSystemsAreAskedForTheirFixes)
{
    // No machine of today has these two.
    EXPECT_THAT(Check([] { return kServer2003Sp1.isTheiSCSIHotFixInstalled(); }).lines,
                ElementsAre(Entry("isTheiSCSIHotFixInstalled"), Entry("CheckHotFixInstalled"),
                            Exit("CheckHotFixInstalled", false), Exit("isTheiSCSIHotFixInstalled", false)));
    EXPECT_THAT(Check([] { return kServer2003Sp1.IsTheiSCSIDumpHotFixInstalled_OnW2K3(); }).lines,
                ElementsAre(Entry("IsTheiSCSIDumpHotFixInstalled_OnW2K3"), Entry("CheckHotFixInstalled"),
                            Exit("CheckHotFixInstalled", false), Exit("IsTheiSCSIDumpHotFixInstalled_OnW2K3", false)));
}

TEST(ISCSIHotFix, Server2008NeedsTheDumpFixUntilServicePack2)
{
    EXPECT_THAT(Check([] { return kServer2008.IsISCSIDumpHotFixNeeded_OnW2K8(); }).lines,
                ElementsAre(Entry("IsISCSIDumpHotFixNeeded_OnW2K8"), Exit("IsISCSIDumpHotFixNeeded_OnW2K8", true)));
    EXPECT_THAT(Check([] { return kServer2008Sp2.IsISCSIDumpHotFixNeeded_OnW2K8(); }).lines,
                ElementsAre(Entry("IsISCSIDumpHotFixNeeded_OnW2K8"), Exit("IsISCSIDumpHotFixNeeded_OnW2K8", false)));
}

TEST(ISCSIService, RunningServiceIsSeenAndAStoppedOrMissingOneIsNot)
{
    constexpr char kEntryLine[] = "Entering CISCSISupport::IsTheIscsiServiceRunning";
    constexpr char kRuns[] = "Leaving CISCSISupport::IsTheIscsiServiceRunning - return value is: 1";
    constexpr char kDoesNot[] = "Leaving CISCSISupport::IsTheIscsiServiceRunning - return value is: 0";
    EXPECT_THAT(Check([] { return kServer2008R2.IsTheIscsiServiceRunning(); }).lines,
                ElementsAre(kEntryLine, kDoesNot));
    ServiceDouble service("MSiSCSI");
    EXPECT_FALSE(kServer2008R2.IsTheIscsiServiceRunning()) << "installed, not started";
    service.Start();
    const Checked checked = Check([] { return kServer2008R2.IsTheIscsiServiceRunning(); });
    EXPECT_TRUE(checked.result);
    EXPECT_THAT(checked.lines, ElementsAre(kEntryLine, kRuns));
    service.Stop();
    EXPECT_FALSE(kServer2008R2.IsTheIscsiServiceRunning());
}

namespace {
/// The four answers, in the order in which they are handed out.
struct Answers
{
    bool rightOS = true;
    bool patchInstalled = true;
    bool initiatorKeyPresent = true;
    bool crashDumpEnabled = true;
    bool result = true;
    bool operator==(const Answers&) const = default;
};

Answers Ask(const CISCSISupport& support, bool before)
{
    Answers answers{before, before, before, before, before};
    answers.result = support.IsiSCSISupported(answers.rightOS, answers.patchInstalled, answers.initiatorKeyPresent,
                                              answers.crashDumpEnabled);
    return answers;
}
} // namespace

TEST(ISCSISupported, NothingHoldsOnAMachineWithoutISCSI)
{
    EXPECT_EQ(Ask(kServer2003, true), (Answers{false, false, false, false, false}));
    EXPECT_EQ(Ask(kServer2008R2, true), (Answers{true, false, false, false, false}));
}

TEST(ISCSISupported, EachAnswerIsHandedOutInItsPlace)
{
    const Controller initiator("9002", R"(root\iscsiprt)");
    {
        const InitiatorLibrary library("6", "1", "6000");
        EXPECT_EQ(Ask(kServer2003, false), (Answers{false, true, false, false, false}));
    }
    CreateRegistryKey(initiator.Parameters());
    EXPECT_EQ(Ask(kServer2003, false), (Answers{false, false, true, false, false}));
    SetRegistryText(initiator.Parameters(), "DumpMiniPort", "iSCSDump.sys");
    EXPECT_EQ(Ask(kServer2003, false), (Answers{false, false, true, true, false}));
}

TEST(ISCSISupported, TheFirstThreeMakeTheResultAndTheFourthDoesNot)
{
    const InitiatorLibrary library("6", "1", "6000");
    const Controller initiator("9002", R"(root\iscsiprt)");
    CreateRegistryKey(initiator.Parameters());
    EXPECT_EQ(Ask(kServer2008R2, false), (Answers{true, true, true, false, true}));
    EXPECT_EQ(Ask(kServer2003, false), (Answers{false, true, true, false, false}));
    SetRegistryText(initiator.Parameters(), "DumpMiniPort", "iSCSDump.sys");
    EXPECT_EQ(Ask(kServer2008R2, false), (Answers{true, true, true, true, true}));
}

TEST(ISCSISupported, AllFourAreAskedInOrderWhateverTheFirstAnswers)
{
    std::vector<std::string> lines = Check([] { return Ask(kServer2003, true).result; }).lines;
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("Entering"); });
    EXPECT_THAT(lines,
                ElementsAre(Entry("IsiSCSISupported"), Entry("isTheRightiSCSIOS"), Entry("isTheiSCSIPatchInstalled"),
                            Entry("isTheiSCSIInitiatorKeyPresent"), Entry("GetIscsiInitiatorKey"),
                            Entry("IsCrashDumpEnabled"), Entry("GetIscsiInitiatorKey")));
}

TEST(ISCSISupported, ThousandCallsLeaveNoHandleOpen)
{
    const Controller other("9001", "other");
    const Controller initiator("9002", R"(root\iscsiprt)");
    CreateRegistryKey(initiator.Parameters());
    static_cast<void>(Ask(kServer2008R2, false));
    const unsigned before = CountOwnHandles();
    for (int call = 0; call < 1000; ++call) {
        static_cast<void>(Ask(kServer2008R2, false));
    }
    EXPECT_EQ(CountOwnHandles(), before);
}
