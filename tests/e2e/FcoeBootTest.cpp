// Machines that boot or page over FCoE: their network drivers are only updated when the installed management extension
// supports it, or when an installer package requests it.

#include <gmock/gmock.h>

#include <ostream>

#include "Environment.h"
#include "ProgramWindows.h"
#include "StorageBoot.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDebugKey[] = R"(SOFTWARE\NORDA\Network_Services\Debug)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\Network_Services\ORV2)";
constexpr char kCheckBegun[] = "Entering -> AreFCoEBootEnabledPortsPresent()";
constexpr char kCheckDone[] = "Exiting -> AreFCoEBootEnabledPortsPresent()";
constexpr char kExhausted[] = "Exhausted list of PCI devices";
constexpr char kInf[] = "ngeatest.inf";
constexpr char kDriverFile[] = "ngea62x64.sys";

// One adapter with a driver of the PCI Express family, so that an install posts a result.
class FcoeBoot : public StorageRun
{
protected:
    FcoeBoot()
    {
        WriteInf(kInf, InfFor(kFirstDevice));
        CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\" + kDriverFile, DriverPath(kDriverFile));
    }

    void ExpectInstalled(const FinishedRun& run)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_THAT(Installs(), ElementsAre(InstallLine(std::string("Inf\\") + kInf, kFirstDevice)));
        EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
    }

    // The run ended by itself and changed nothing: not even the installer library was called for an install.
    void ExpectRefused(const FinishedRun& run)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.Count(kCheckBegun), 1u);
        EXPECT_EQ(run.Count(kCheckDone), 1u);
        EXPECT_FALSE(run.Traced("ScanForHardwareChanges()\n"));
        EXPECT_FALSE(run.Traced("Enter -> EnumerateRegistryForPCIDevices()\n"));
        EXPECT_EQ(run.Count("Exit -> InstallDrivers()\n"), 1u);
        EXPECT_THAT(Folder().JournalLines("DllGetClassFactoryObject IDriverInstall"), IsEmpty());
        EXPECT_THAT(Installs(), IsEmpty());
        EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "<none>");
        ExpectNoRebootNeeded();
        ExpectNoRestart(run);
    }

    static std::string Reboot()
    {
        const std::optional<RegistryValue> value = ReadRegistryValue(kResultsKey, "Reboot");
        return value ? value->bytes : "<none>";
    }

    const InstalledAdapter m_adapter{kFirstDevice, "9001", kFirstInstance};
};

// As long in the registry as the result "SUCCESS".
const std::string kRebootYes("Yes\0\0\0\0\0", 8);

std::vector<std::string> QuestionsAbout(const std::string& instanceId, const std::string& handle)
{
    return {"NORDA_InitializeLibrary",
            "HBA_RegisterLibrary",
            "NORDA_GetFCoEControllerInfo [\\DEVICE\\" + instanceId + "]",
            "NORDA_GetFCoEControllerHandle [\\DEVICE\\" + instanceId + "]",
            "NORDA_GetFCAndNICProperties " + handle,
            "CloseAdapter " + handle};
}

// What the doubles were asked between the probing of the system and the installs.
std::vector<std::string> FcoeQuestions(const RunFolder& folder)
{
    std::vector<std::string> lines = folder.Journal();
    std::erase_if(lines, [](const std::string& line) {
        return !line.starts_with("NORDA_") && !line.starts_with("HBA_") && !line.starts_with("CloseAdapter");
    });
    return lines;
}

struct ExtensionCase
{
    const char* name;
    const char* version; // or null for none
};

void PrintTo(const ExtensionCase& extension, std::ostream* out)
{
    *out << extension.name;
}

std::string NameOf(const testing::TestParamInfo<ExtensionCase>& extension)
{
    return extension.param.name;
}

class OldExtension : public FcoeBoot, public testing::WithParamInterface<ExtensionCase>
{
};

TEST_P(OldExtension, EndsASilentRunOfABootPortWithoutABoxAndWithoutAnInstall)
{
    UseFcoeLibrary("1");
    if (GetParam().version != nullptr) {
        SetExtensionVersion(GetParam().version);
    }

    // Nobody is there to close a box: the run ends by itself.
    const FinishedRun run = RunMorvix("/s");

    ExpectRefused(run);
    EXPECT_EQ(Reboot(), "<none>");
    EXPECT_FALSE(run.Traced(kExhausted));
}

INSTANTIATE_TEST_SUITE_P(Versions, OldExtension,
                         testing::Values(ExtensionCase{"Missing", nullptr}, ExtensionCase{"Before16", "15.9"},
                                         ExtensionCase{"Version16_1", "16.1"},
                                         ExtensionCase{"OnlyTheFirstTwoPartsCount", "16.1.99.99"}),
                         NameOf);

class NewExtension : public FcoeBoot, public testing::WithParamInterface<ExtensionCase>
{
};

TEST_P(NewExtension, LetsASilentRunOfABootPortInstallAndRestart)
{
    UseFcoeLibrary("1");
    SetExtensionVersion(GetParam().version);

    const FinishedRun run = RunMorvix("/s");

    ExpectInstalled(run);
    EXPECT_EQ(Reboot(), kRebootYes);
    ExpectRestart(run);
    ExpectNoRebootNeeded();
}

INSTANTIATE_TEST_SUITE_P(Versions, NewExtension,
                         testing::Values(ExtensionCase{"Version16_2", "16.2"},
                                         ExtensionCase{"MinorsCompareAsNumbers", "16.10.0.0"},
                                         ExtensionCase{"Version17_0", "17.0"}),
                         NameOf);

TEST_F(FcoeBoot, PageFileOnTheRemoteDiskCountsLikeTheBoot)
{
    UseFcoeLibrary("2");
    SetExtensionVersion("16.1");

    ExpectRefused(RunMorvix("/s"));
}

TEST_F(FcoeBoot, PortThatNeitherBootsNorPagesIsInstalledWithoutARestart)
{
    UseFcoeLibrary("4");
    SetExtensionVersion("16.1");

    const FinishedRun run = RunMorvix("/s");

    ExpectInstalled(run);
    EXPECT_EQ(run.Between(kCheckBegun, kCheckDone), (std::vector<std::string>{kCheckBegun, kExhausted, kCheckDone}));
    EXPECT_EQ(FcoeQuestions(Folder()), QuestionsAbout(kFirstInstance, "7"));
    EXPECT_EQ(Reboot(), "<none>");
    ExpectNoRestart(run);
}

TEST_F(FcoeBoot, EveryAdapterIsAskedEvenAfterABootPort)
{
    const InstalledAdapter second(kSecondDevice, "9002", kSecondInstance);
    UseFcoeLibrary("1");
    Folder().Answer("nordhapi", std::string(R"(Handle.\DEVICE\)") + kFirstInstance, "11");
    Folder().Answer("nordhapi", std::string(R"(Handle.\DEVICE\)") + kSecondInstance, "12");

    ExpectRefused(RunMorvix("/s"));

    std::vector<std::string> expected = QuestionsAbout(kFirstInstance, "11");
    for (const std::string& question : QuestionsAbout(kSecondInstance, "12")) {
        expected.push_back(question);
    }
    EXPECT_EQ(FcoeQuestions(Folder()), expected);
}

TEST_F(FcoeBoot, BootPortAfterAnAdapterWithoutInstanceIdIsFound)
{
    const Adapter withoutDriver("VEN_5D1A&DEV_7A00&SUBSYS_00115D1A&REV_03");
    UseFcoeLibrary("1");

    const FinishedRun run = RunMorvix("/s");

    ExpectRefused(run);
    EXPECT_THAT(run.Between(kCheckBegun, kCheckDone),
                ElementsAre(kCheckBegun, "Failed to get driver key from PCI device", kCheckDone));
}

TEST_F(FcoeBoot, WithoutTheLibraryNoPortIsABootPort)
{
    SetExtensionVersion("16.1");

    const FinishedRun run = RunMorvix("/s");

    ExpectInstalled(run);
    EXPECT_TRUE(run.Traced(kExhausted));
    EXPECT_EQ(Reboot(), "<none>");
    ExpectNoRestart(run);
}

TEST_F(FcoeBoot, InstallerStepsInstallWhateverTheExtensionAndRecordTheRestart)
{
    UseFcoeLibrary("1");
    SetExtensionVersion("16.1");
    for (const char* options : {"/s /m", "/m"}) {
        SCOPED_TRACE(options);
        DeleteFileA(Folder().At("journal.txt").c_str());
        DeleteRegistryTree(kResultsKey);
        SwitchTrace(true);

        const FinishedRun run = RunMorvix(options);

        ExpectInstalled(run);
        EXPECT_EQ(Reboot(), kRebootYes);
        ExpectRebootNeeded();
        ExpectNoRestart(run);
    }
}

class BrokenExtension : public FcoeBoot, public testing::WithParamInterface<ExtensionCase>
{
};

TEST_P(BrokenExtension, VersionWithoutTwoPartsEndsTheRunAsAFault)
{
    SetExtensionVersion(GetParam().version);

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(static_cast<DWORD>(run.exitCode), 0xFFFFFFFF);
    ASSERT_FALSE(run.lines.empty());
    EXPECT_EQ(run.lines.back(), "Morvix: unhandled fault: invalid vector<T> subscript\n");
    EXPECT_THAT(Installs(), IsEmpty());
    ExpectNoRestart(run);
}

INSTANTIATE_TEST_SUITE_P(Versions, BrokenExtension,
                         testing::Values(ExtensionCase{"OnePart", "16"}, ExtensionCase{"Empty", ""}), NameOf);

TEST_F(FcoeBoot, BrokenExtensionVersionIsIgnoredInAnInstallerStep)
{
    SetExtensionVersion("16");

    ExpectInstalled(RunMorvix("/s /m"));
}

class FcoeDebugging : public FcoeBoot, public testing::WithParamInterface<const char*>
{
};

TEST_P(FcoeDebugging, MakesABootPortWhenItIsSwitchedOn)
{
    UseFcoeLibrary("0");
    SetRegistryNumber(kProductKey, "Debugging", 1);
    SetRegistryNumber(kDebugKey, GetParam(), 1);

    ExpectRefused(RunMorvix("/s"));
}

INSTANTIATE_TEST_SUITE_P(Values, FcoeDebugging, testing::Values("FcoE_RemoteBooted", "FcoE_RemotePageFile"),
                         [](const testing::TestParamInfo<const char*>& value) { return std::string(value.param); });

TEST_F(FcoeBoot, DebugValueMakesABootPortEvenWhenTheLibraryFails)
{
    UseFcoeLibrary("0");
    Folder().Answer("nordhapi", "Status.NORDA_GetFCAndNICProperties", "1");
    SetRegistryNumber(kProductKey, "Debugging", 1);
    SetRegistryNumber(kDebugKey, "FcoE_RemoteBooted", 1);

    ExpectRefused(RunMorvix("/s"));
}

TEST_F(FcoeBoot, DebugValuesDoNothingWhileDebuggingIsOff)
{
    UseFcoeLibrary("0");
    SetRegistryNumber(kProductKey, "Debugging", 0);
    SetRegistryNumber(kDebugKey, "FcoE_RemoteBooted", 1);
    SetRegistryNumber(kDebugKey, "FcoE_RemotePageFile", 1);

    const FinishedRun run = RunMorvix("/s");

    ExpectInstalled(run);
    EXPECT_TRUE(run.Traced(kExhausted));
}

TEST_F(FcoeBoot, DebugValuesDoNothingWithoutTheLibrary)
{
    SetRegistryNumber(kProductKey, "Debugging", 1);
    SetRegistryNumber(kDebugKey, "FcoE_RemoteBooted", 1);

    ExpectInstalled(RunMorvix("/s"));
}

class InteractiveFcoeBoot : public FcoeBoot
{
protected:
    InteractiveFcoeBoot() { UseFcoeLibrary("1"); }

    // Starts the installation and returns when the dialog offers the restart.
    static void RunUntilRestartIsOffered(const ProgressWindow& window)
    {
        window.WaitUntilOffered(IDOK);
        window.Press(IDOK);
        window.WaitUntilOffered(ProgressWindow::kRestartLater);
    }
};

TEST_F(InteractiveFcoeBoot, WithAnOldExtensionTellsTheUserAndEndsWithoutAnInstall)
{
    SetExtensionVersion("16.1");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    const MessageBoxSeen box = WaitForMessageBox(*run);
    EXPECT_EQ(box.text, ResourceText(2));
    EXPECT_EQ(box.caption, ResourceText(3));
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_TRUE(run->StillRuns());
    PressInBox(box, IDOK);

    ExpectRefused(run->Finish());
}

TEST_F(InteractiveFcoeBoot, WithANewExtensionInstallsAndOffersTheRestart)
{
    SetExtensionVersion("16.2");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);

    EXPECT_TRUE(window.Offers(ProgressWindow::kRestartNow));
    EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    window.Press(ProgressWindow::kRestartLater);
    const MessageBoxSeen question = WaitForMessageBox(*run);
    EXPECT_EQ(question.text, ResourceText(22));
    EXPECT_EQ(question.caption, ResourceText(1008));
    PressInBox(question, IDNO);
    const FinishedRun finished = run->Finish();

    ExpectInstalled(finished);
    EXPECT_EQ(Reboot(), kRebootYes);
    ExpectNoRebootNeeded();
    ExpectNoRestart(finished);
}

TEST_F(InteractiveFcoeBoot, WhileTheQuestionIsOpenTheCountdownIsStopped)
{
    constexpr DWORD kMoreThanTwoTicks = 2500;
    SetExtensionVersion("16.2");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    window.Press(ProgressWindow::kRestartLater);
    const MessageBoxSeen question = WaitForMessageBox(*run);
    const std::string before = window.TextOf(ProgressWindow::kStatus);
    Sleep(kMoreThanTwoTicks);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), before);
    PressInBox(question, IDNO);

    ExpectNoRestart(run->Finish());
}

TEST_F(InteractiveFcoeBoot, RestartNowRestartsWithoutAQuestion)
{
    SetExtensionVersion("17.0");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    window.Press(ProgressWindow::kRestartNow);
    run->WaitForTrace("Entering - RestartMachine");

    ExpectRestart(run->SoFar());
}

std::string CountdownText(int seconds)
{
    std::string text = ResourceText(23);
    const std::string insert = "%1!u!";
    return text.replace(text.find(insert), insert.size(), std::to_string(seconds));
}

TEST_F(InteractiveFcoeBoot, CountdownRunsFrom20To0AndRestartsOnThe21stTick)
{
    SetExtensionVersion("17.0");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    RunUntilRestartIsOffered(window);
    const DWORD start = GetTickCount();
    const std::string done = ResourceText(9);
    std::vector<std::string> texts;
    // A slow machine may not show each of them, but in this order.
    while (!run->SoFar().Traced("Entering - RestartMachine") && GetTickCount() - start < ProgramRun::kLimit) {
        const std::string text = window.TextOf(ProgressWindow::kStatus);
        if (text != done && (texts.empty() || texts.back() != text)) {
            texts.push_back(text);
        }
        Sleep(50);
    }

    ASSERT_FALSE(texts.empty());
    EXPECT_EQ(texts.front(), CountdownText(20));
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), CountdownText(0));
    auto seen = texts.begin();
    for (int seconds = 20; seconds >= 0 && seen != texts.end(); --seconds) {
        seen += *seen == CountdownText(seconds) ? 1 : 0;
    }
    EXPECT_EQ(seen, texts.end()) << *seen;
    EXPECT_GE(GetTickCount() - start, 19000u);
    ExpectRestart(run->SoFar());
}

TEST_F(InteractiveFcoeBoot, InTheOemVariantRestartLaterLeavesTheRestartToTheInstaller)
{
    SetExtensionVersion("16.1");
    const auto run = StartMorvix("/md");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    window.Press(ProgressWindow::kRestartLater);
    const FinishedRun finished = run->Finish();

    ExpectInstalled(finished);
    ExpectRebootNeeded();
    ExpectNoRestart(finished);
}
} // namespace
