// The four conditions of iSCSI boot, asked together.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandleCount.h"
#include "ISCSIMachine.h"
#include "LibraryLoads.h"

using testing::ElementsAre;

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

TEST(ISCSISupported, EachAnswerIsReturnedInItsPlace)
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
    EXPECT_EQ(Ask(kServer2008R2, false), (Answers{true, true, false, false, false}));
    const Controller initiator("9002", R"(root\iscsiprt)");
    CreateRegistryKey(initiator.Parameters());
    EXPECT_EQ(Ask(kServer2008R2, false), (Answers{true, true, true, false, true}));
    EXPECT_EQ(Ask(kServer2003, false), (Answers{false, true, true, false, false}));
    SetRegistryText(initiator.Parameters(), "DumpMiniPort", "iSCSDump.sys");
    EXPECT_EQ(Ask(kServer2008R2, false), (Answers{true, true, true, true, true}));
}

TEST(ISCSISupported, AllFourAreCheckedInOrderRegardlessOfTheFirst)
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

TEST(ISCSISupported, ALibraryWithoutTheEntryPointIsFreedAgain)
{
    const InitiatorLibrary library("6", "1", "6000");
    const LibraryLoads loads("GetIScsiVersionInformation");
    EXPECT_FALSE(kServer2008R2.isTheiSCSIPatchInstalled());
    EXPECT_THAT(loads.Loaded(), ElementsAre("iscsidsc.dll"));
    EXPECT_TRUE(loads.StillLoaded().empty());
}
