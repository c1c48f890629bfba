// Runs that end before the dialog: their trace, boxes and exit code. A run that ends by itself has shown no box, which
// would have blocked it.

#include <gmock/gmock.h>

#include "CleanMachine.h"
#include "Environment.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"
#include "StartUpTrace.h"

namespace {
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

Lines Joined(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class StartUp : public CleanMachine
{
};

TEST_F(StartUp, WithoutTheSetupIniTheRunEndsWithoutABox)
{
    Folder().Remove("Morvix.ini");
    const Lines expected = Joined(LocationTrace(Folder()), {"ini file: " + Folder().At("Morvix.ini") + ", NOT FOUND\n",
                                                            "error: SetLocationInfo() failed, exiting program\n"});

    for (const char* arguments : {"", "/s /nr"}) {
        const FinishedRun run = RunMorvix(arguments);
        EXPECT_EQ(run.exitCode, -1) << arguments;
        EXPECT_EQ(run.Messages(), expected) << arguments;
    }
}

TEST_F(StartUp, WithoutTheResourceLibraryTheRunEndsWithoutABox)
{
    Folder().Remove("MorvixRes.dll");
    const Lines expected =
        Joined(LocationTrace(Folder()), {"ini file: " + Folder().At("Morvix.ini") + "\n", "Entering - GetOSLanguageID",
                                         "unable to load: " + Folder().At("MorvixRes.dll") + "\n"});

    for (const char* arguments : {"", "/s /nr"}) {
        const FinishedRun run = RunMorvix(arguments);
        EXPECT_EQ(run.exitCode, -1) << arguments;
        EXPECT_EQ(run.Messages(), expected) << arguments;
    }
}

TEST_F(StartUp, HelpEndsTheRunSilentlyWithExitCodeZero)
{
    const Lines expected =
        Joined(LocationTrace(Folder()), {"ini file: " + Folder().At("Morvix.ini") + "\n", "Entering - GetOSLanguageID",
                                         "command line: '/h', display help\n", "WinMain() exit, returning 0\n"});

    for (const char* arguments : {"/h", "/H", "/?", "/s /h /n", "value /h"}) {
        const FinishedRun run = RunMorvix(arguments);
        EXPECT_EQ(run.exitCode, 0) << arguments;
        EXPECT_EQ(run.Messages(), expected) << arguments;
    }
}

TEST_F(StartUp, CalledWithoutAPathTheProgramLooksInTheCurrentDirectory)
{
    const FinishedRun here = RunMorvixCalled("Morvix.exe", "/h", Folder().Path());
    EXPECT_EQ(here.exitCode, 0);
    EXPECT_TRUE(here.Traced("program name: Morvix.exe\n"));
    EXPECT_TRUE(here.Traced("full path: " + Folder().At("Morvix.exe") + "\n"));
    EXPECT_TRUE(here.Traced("ini file: " + Folder().At("Morvix.ini") + "\n"));

    const ScratchDirectory elsewhere;
    const FinishedRun there = RunMorvixCalled("Morvix.exe", "/h", elsewhere.Path());
    EXPECT_EQ(there.exitCode, -1);
    EXPECT_TRUE(there.Traced("full path: " + elsewhere.At("Morvix.exe") + "\n"));
    EXPECT_TRUE(there.Traced("ini file: " + elsewhere.At("Morvix.ini") + ", NOT FOUND\n"));
}

TEST_F(StartUp, TheRestartFlagOfAnEarlierRunIsDeleted)
{
    SetRegistryNumber(kResultsKey, "RebootNeeded", 1);
    Folder().Remove("Morvix.ini");

    RunMorvix("/s /nr");

    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
}

TEST_F(StartUp, ASecondInstanceEndsWithoutABoxAndTheFirstGoesOn)
{
    const auto first = StartMorvix("");
    const ProgressWindow window(*first);
    const std::string refusal = "detected previous instance of application or Tavisk is active; unable to continue\n";

    const FinishedRun silent = RunMorvix("/s /nr");
    EXPECT_EQ(silent.exitCode, -1);
    EXPECT_EQ(silent.Messages(), Joined(StartUpTrace(Folder(), {"command line: '/s', install silently\n",
                                                                "command line:  '/nr', suppress a reboot request"}),
                                        {refusal}));

    const FinishedRun interactive = RunMorvix("");
    EXPECT_EQ(interactive.exitCode, -1);
    EXPECT_EQ(interactive.Messages(), Joined(StartUpTrace(Folder(), kNoOptions), {refusal}));

    EXPECT_TRUE(first->StillRuns());
    window.Press(IDCANCEL);
    EXPECT_EQ(first->Finish().exitCode, 0);
}

TEST_F(StartUp, AWindowClassThatCannotBeRegisteredShowsABoxEvenInASilentRunAndReturnsZero)
{
    Folder().UseDouble("NetInst.dll");
    Folder().UseDouble("MorvixResClassTaken.dll", "MorvixRes.dll");

    const auto run = StartMorvix("/s");
    const MessageBoxSeen box = WaitForMessageBox(*run);
    EXPECT_EQ(box.caption, "Morvix");
    EXPECT_EQ(box.text, "This program requires Windows NT.");
    EXPECT_EQ(box.owner, nullptr);
    PressInBox(box, IDOK);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    EXPECT_THAT(Folder().Journal(), testing::IsSupersetOf({std::string("class taken"), std::string("box of type 16")}));
    EXPECT_EQ(finished.Messages(), Joined(StartUpTrace(Folder(), kSilent), {"Entering - RunningAsAdministrator"}));
}

TEST_F(StartUp, WithoutTheDebugKeyNothingIsTraced)
{
    SwitchTrace(false);

    const FinishedRun run = RunMorvix("/h");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.lines, IsEmpty());
}
} // namespace
