// Refusals by the system prober and by the test for administrator rights: traced always, shown unless silent.

#include <gmock/gmock.h>

#include "CleanMachine.h"
#include "Environment.h"
#include "ProgramWindows.h"
#include "StartUpTrace.h"

namespace {
using testing::ElementsAre;

using Lines = std::vector<std::string>;

constexpr char kLookUp[] = "Entering - GetLanguageSpecificString";

class ProberRefusal : public CleanMachine
{
protected:
    // Runs once silently and once with a box, and checks everything visible of both.
    void ExpectRefusal(const Lines& afterPreviousInstance, const std::string& text)
    {
        Lines silent = StartUpTrace(Folder(), kSilent);
        silent.insert(silent.end(), afterPreviousInstance.begin(), afterPreviousInstance.end());
        const FinishedRun silentRun = RunMorvix("/s");
        EXPECT_EQ(silentRun.exitCode, -1);
        EXPECT_EQ(silentRun.Messages(), silent);

        Lines shown = StartUpTrace(Folder(), kNoOptions);
        shown.insert(shown.end(), afterPreviousInstance.begin(), afterPreviousInstance.end());
        // The caption is looked up after the text was traced.
        shown.push_back(kLookUp);
        const auto run = StartMorvix("");
        const MessageBoxSeen box = WaitForMessageBox(*run);
        EXPECT_EQ(box.caption, ResourceText(3));
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.owner, nullptr);
        PressInBox(box, IDOK);
        const FinishedRun shownRun = run->Finish();
        EXPECT_EQ(shownRun.exitCode, -1);
        EXPECT_EQ(shownRun.Messages(), shown);
    }

    void ExpectRefusalOfStatus(const std::string& status, const std::string& family, unsigned textId)
    {
        Folder().UseDouble("NetInst.dll");
        Folder().Answer("NetInst", "ProberStatus", status);
        Folder().Answer("NetInst", "Family", family);
        const std::string text = ResourceText(textId);
        ExpectRefusal({"Entering - RunningAsAdministrator", kLookUp, text}, text);
    }
};

TEST_F(ProberRefusal, AUserWithoutAdministratorRightsGetsAMessage)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "Impersonate", "1");
    const std::string text = ResourceText(8);

    ExpectRefusal({"Entering - RunningAsAdministrator", kLookUp, text}, text);

    // The prober was created, but nobody asked it about the system.
    const Lines once = {"DllGetClassFactoryObject ISysProberInterfaceFactory", "CreateSysProber", "impersonating",
                        "SysProberFactory Release", "SysProber Release"};
    Lines twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(Folder().Journal(), twice);
}

TEST_F(ProberRefusal, WithoutRightsTheProbersOwnRefusalIsIgnored)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "Impersonate", "1");
    Folder().Answer("NetInst", "ProberStatus", "0x80640013");
    const std::string text = ResourceText(8);

    ExpectRefusal({"Entering - RunningAsAdministrator", kLookUp, text}, text);
}

TEST_F(ProberRefusal, Status10SaysThatThereIsNoSupportedAdapter)
{
    ExpectRefusalOfStatus("0x80640010", "Windows Vista", 5);
}

TEST_F(ProberRefusal, Status11SaysThatTheMachineIsNotReady)
{
    ExpectRefusalOfStatus("0x80640011", "Windows Vista", 4);
}

TEST_F(ProberRefusal, Status13OnWindowsNTSaysThatWindowsNTIsNotSupported)
{
    ExpectRefusalOfStatus("0x80640013", "WINDOWS nt", 6);
}

TEST_F(ProberRefusal, Status13ElsewhereSaysThatTheSystemIsNotSupported)
{
    ExpectRefusalOfStatus("0x80640013", "Windows NT 5", 7);
}

TEST_F(ProberRefusal, AnUnknownStatusShowsAnEmptyText)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberStatus", "0x80640012");

    ExpectRefusal({"Entering - RunningAsAdministrator", ""}, "");
}

TEST_F(ProberRefusal, APositiveStatusIsARefusalToo)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberStatus", "1");

    ExpectRefusal({"Entering - RunningAsAdministrator", ""}, "");
}

TEST_F(ProberRefusal, OnlyTheLow32BitsOfTheAnswerCount)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberStatus", "0");
    for (const char* upperHalf : {"0x00000001", "0x80640010", "0xFFFFFFFF"}) {
        Folder().Answer("NetInst", "ProberUpperHalf", upperHalf);
        const FinishedRun run = RunMorvix("/s /nr");
        EXPECT_EQ(run.exitCode, 0) << upperHalf;
        EXPECT_TRUE(run.Traced("Entering - InstallThread")) << upperHalf;
    }
    Folder().Answer("NetInst", "ProberUpperHalf", "0");
    ExpectRefusalOfStatus("0x80640010", "Windows Vista", 5);
}

TEST_F(ProberRefusal, AProberThatComesWithAFailureIsReleased)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "CreateProberStatus", "0x80004005");

    ExpectRefusal({""}, "");

    const Lines once = {"DllGetClassFactoryObject ISysProberInterfaceFactory", "CreateSysProber", "SysProber Release",
                        "SysProberFactory Release"};
    Lines twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(Folder().Journal(), twice);
}

TEST_F(ProberRefusal, AFactoryThatComesWithAFailureIsReleased)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberFactoryStatus", "0x80004005");
    Folder().Answer("NetInst", "HandOutFailedFactories", "1");

    ExpectRefusal({""}, "");

    EXPECT_THAT(Folder().Journal(),
                ElementsAre("DllGetClassFactoryObject ISysProberInterfaceFactory", "SysProberFactory Release",
                            "DllGetClassFactoryObject ISysProberInterfaceFactory", "SysProberFactory Release"));
}

TEST_F(ProberRefusal, AProberFactoryThatCannotBeCreatedEndsTheRun)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberFactoryStatus", "0x80004005");

    ExpectRefusal({""}, "");

    EXPECT_THAT(Folder().Journal(), ElementsAre("DllGetClassFactoryObject ISysProberInterfaceFactory",
                                                "DllGetClassFactoryObject ISysProberInterfaceFactory"));
}

TEST_F(ProberRefusal, AMissingInstallerLibraryEndsTheRun)
{
    Folder().Remove("NetInst.dll");

    ExpectRefusal({"unable to load: " + Folder().At("NetInst.dll") + "\n", ""}, "");
}

TEST_F(ProberRefusal, AnInstallerLibraryWithoutItsExportEndsTheRun)
{
    Folder().UseDouble("NetInstWithoutExport.dll", "NetInst.dll");

    ExpectRefusal({"unable to load: " + Folder().At("NetInst.dll") + "\n", ""}, "");
}

TEST_F(ProberRefusal, ThroughTheLibraryInOrderAndReleasingEverything)
{
    Folder().UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "ProberStatus", "0x80640010");

    RunMorvix("/s");

    EXPECT_THAT(Folder().Journal(),
                ElementsAre("DllGetClassFactoryObject ISysProberInterfaceFactory", "CreateSysProber",
                            "SysProberFactory Release", "IdentifySystem 0x80640010", "SysProber Release"));
}
} // namespace
