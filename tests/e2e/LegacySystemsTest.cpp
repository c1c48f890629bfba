// The flows of the 9x family: device pass, then staging, then classification, and how such a run ends. The system
// prober says which family it is; Wine says which version it is.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "PlantedDirectory.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"
#include "RestartWatch.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kInf[] = "ngeatest.inf";
constexpr char kDriverFile[] = "ngea62x64.sys";
constexpr char kSetupKey[] = R"(Software\Microsoft\Windows\CurrentVersion\Setup)";

const SystemVersion kWindows98 = {"win98", "4.10", "2222", "WinNT"};
const SystemVersion kWindowsMe = {"winme", "4.90", "3000", "WinNT"};

// As long in the registry as the result "SUCCESS", and as the result "FAILURE".
const std::string kRebootYes("Yes\0\0\0\0\0", 8);

std::string FallbackFolder()
{
    return WindowsDirectory() + "\\INSTALL";
}

void RemoveFallbackFolder()
{
    for (const std::string& name : FilesMatching(FallbackFolder() + "\\*.*")) {
        DeleteFileA((FallbackFolder() + "\\" + name).c_str());
    }
    RemoveDirectoryA(FallbackFolder().c_str());
}

std::string ShortFormOf(const std::string& path)
{
    std::array<char, MAX_PATH> text{};
    GetShortPathNameA(path.c_str(), text.data(), text.size());
    return text.data();
}

// The directory in which the system looks for driver files; what the registry named before is put back.
class SourceFolder
{
public:
    SourceFolder() : m_before(ReadRegistryValue(kSetupKey, "SourcePath"))
    {
        SetRegistryText(kSetupKey, "SourcePath", m_folder.Path());
    }
    ~SourceFolder()
    {
        if (m_before) {
            SetRegistryBytes(kSetupKey, "SourcePath", m_before->bytes, m_before->type);
        } else {
            DeleteSourcePath();
        }
    }
    SourceFolder(const SourceFolder&) = delete;
    SourceFolder& operator=(const SourceFolder&) = delete;

    [[nodiscard]] std::string At(const std::string& name) const { return m_folder.At(name); }

private:
    static void DeleteSourcePath()
    {
        HKEY opened = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSetupKey, 0, KEY_SET_VALUE, &opened) == ERROR_SUCCESS) {
            const UniqueRegKey key(opened);
            RegDeleteValueA(opened, "SourcePath");
        }
    }

    ScratchDirectory m_folder;
    std::optional<RegistryValue> m_before;
};

class LegacySystem : public DoubleRun
{
protected:
    LegacySystem()
    {
        WriteInf(kInf, InfText({.ids = {kDevice}, .signature = "$Chicago$"}));
        Folder().UseDouble("Rundll.exe");
        RemoveFallbackFolder();
    }
    ~LegacySystem() override { RemoveFallbackFolder(); }

    void SetFamily(const std::string& family) { Folder().Answer("NetInst", "Family", family); }

    // The adapter as these systems list it.
    void AddAdapter(const std::vector<std::string>& instances = {"BUS_00&DEV_08"})
    {
        for (const std::string& instance : instances) {
            CreateRegistryKey(m_devices.Path() + "\\PCI\\" + kDevice + "\\" + instance);
        }
    }
    void AddNoAdapter() { CreateRegistryKey(m_devices.Path() + "\\PCI"); }

    static std::string InstancePath(const std::string& instance)
    {
        return std::string("Enum\\PCI\\") + kDevice + "\\" + instance;
    }

    // What the legacy helper writes when it is run for an instance of the device.
    std::string HelperLine(const std::string& instance)
    {
        return "Rundll [Rundll.exe Inst98.dll,EntryPoint PCI\\" + std::string(kDevice) + " " +
               InfInUpperCase(std::string("Inf\\") + kInf) + "] in [" + Folder().Path() + "] for [" +
               InstancePath(instance) + "]";
    }
    std::vector<std::string> HelperRuns() { return Folder().JournalLines("Rundll "); }

    // The three steps follow each other and nothing of the NT flow is done.
    static void ExpectFlow(const FinishedRun& run)
    {
        std::vector<std::string> steps = run.Messages();
        const std::vector<std::string> known = {"Enter -> EnumerateRegistryForPCIDevices()\n",
                                                "Exit -> EnumerateRegistryForPCIDevices()\n",
                                                "Enter -> CopyFilesToCabDir\n",
                                                "Exit -> CopyFilesToCabDir\n",
                                                "Enter -> PostInstallRegResult\n",
                                                "ScanForHardwareChanges()\n",
                                                "Entering -> AreFCoEBootEnabledPortsPresent()",
                                                "Exit -> InstallDrivers()\n"};
        std::erase_if(steps, [&](const std::string& step) { return std::ranges::count(known, step) == 0; });
        EXPECT_THAT(steps, ElementsAre("Enter -> EnumerateRegistryForPCIDevices()\n",
                                       "Exit -> EnumerateRegistryForPCIDevices()\n", "Enter -> CopyFilesToCabDir\n",
                                       "Exit -> CopyFilesToCabDir\n", "Enter -> PostInstallRegResult\n",
                                       "Exit -> InstallDrivers()\n"));
    }

    void ExpectNoInterface() { EXPECT_THAT(Folder().JournalLines("DllGetClassFactoryObject IDriver"), IsEmpty()); }

    void ExpectNoRestart(const FinishedRun& run) const
    {
        EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
        EXPECT_EQ(m_restarts.Refused(), 0u);
    }

    const ScratchRegistryKey m_devices{"Enum"};
    const SourceFolder m_source;
    const RestartWatch m_restarts;
};

class Windows98Flow : public LegacySystem
{
protected:
    Windows98Flow() { SetFamily("Windows 98"); }
};

TEST_F(Windows98Flow, RunsTheHelperOncePerInstanceEachUnderItsOwnPath)
{
    AddAdapter({"BUS_00&DEV_08", "BUS_00&DEV_09", "BUS_01&DEV_08"});

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(HelperRuns(), testing::UnorderedElementsAre(HelperLine("BUS_00&DEV_08"), HelperLine("BUS_00&DEV_09"),
                                                            HelperLine("BUS_01&DEV_08")));
    EXPECT_EQ(run.Count("win 98 "), 1u);
    EXPECT_EQ(run.Count("98 install: PCI\\" + std::string(kDevice) + ", " +
                        InfInUpperCase(std::string("Inf\\") + kInf) + "\n"),
              1u);
    // The last one stays.
    const std::vector<std::string> instances = RegistrySubKeys(std::string("Enum\\PCI\\") + kDevice);
    EXPECT_EQ(ReadRegistryText(R"(SOFTWARE\Norda\MSI)", "RegPCIpath"), InstancePath(instances.back()));
    ExpectNoInterface();
}

TEST_F(Windows98Flow, StagesAndClassifiesAfterThePassAndEndsASilentRunWithoutARestart)
{
    AddAdapter();
    CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\" + kDriverFile, DriverPath(kDriverFile));

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    ExpectFlow(run);
    EXPECT_EQ(ReadFileBytes(m_source.At(kInf)), ReadFileBytes(Folder().At(std::string("Inf\\") + kInf)));
    EXPECT_FALSE(FileExists(FallbackFolder()));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
    const std::optional<RegistryValue> reboot = ReadRegistryValue(kResultsKey, "Reboot");
    ASSERT_TRUE(reboot);
    EXPECT_EQ(reboot->type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(reboot->bytes, kRebootYes);
    ExpectNoRestart(run);
}

TEST_F(Windows98Flow, AMissingDriverFileIsAFailureThatNeedsTheRestartToo)
{
    AddAdapter();

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
    const std::optional<RegistryValue> reboot = ReadRegistryValue(kResultsKey, "Reboot");
    ASSERT_TRUE(reboot);
    EXPECT_EQ(reboot->bytes, kRebootYes);
    ExpectNoRestart(run);
}

TEST_F(Windows98Flow, OffersTheRestartToTheUserWhateverWasFound)
{
    AddNoAdapter();
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(1) + ResourceText(20));
    EXPECT_EQ(window.Title(), ResourceText(1008));
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kRestartNow);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    window.Press(ProgressWindow::kRestartLater);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    ExpectFlow(finished);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "<none>");
    ExpectNoRestart(finished);
}

TEST_F(Windows98Flow, OnWindows98ItselfRunsTheHelperAfterTheStagingFromItsOwnDirectory)
{
    const EmulatedSystem emulated(kWindows98);
    AddAdapter();

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    // No setup INI has drivers for this system: nothing is found or staged, and the helper is given the fallback.
    EXPECT_THAT(HelperRuns(), ElementsAre("Rundll [Rundll.exe Inst98.dll,EntryPoint noID " + FallbackFolder() +
                                          "\\] in [" + ShortFormOf(Folder().Path()) + "] for [<none>]"));
    EXPECT_EQ(run.Count("new cab dir: " + FallbackFolder() + "\\\n"), 1u);
    EXPECT_TRUE(FileExists(FallbackFolder()));
    ExpectFlow(run);
    ExpectNoRestart(run);
}

class WindowsMeFlow : public LegacySystem
{
protected:
    WindowsMeFlow() { SetFamily("Windows Millenium"); }
};

TEST_F(WindowsMeFlow, UpdatesTheDriverThenStagesThenClassifiesAndEndsASilentRunWithoutARestart)
{
    const Adapter adapter(kDevice);
    AddAdapter();
    CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\" + kDriverFile, DriverPath(kDriverFile));

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    ExpectFlow(run);
    const std::string inf = InfInUpperCase(std::string("Inf\\") + kInf);
    EXPECT_THAT(run.Between("==>installing driver(s)\n", "drivers upgraded\n"),
                ElementsAre("==>installing driver(s)\n", "ME install: PCI\\" + std::string(kDevice) + ", " + inf + "\n",
                            "drivers upgraded\n"));
    EXPECT_NE(adapter.Driver(), "<none>");
    EXPECT_TRUE(FileExists(m_source.At(kInf)));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
    const std::optional<RegistryValue> reboot = ReadRegistryValue(kResultsKey, "Reboot");
    ASSERT_TRUE(reboot);
    EXPECT_EQ(reboot->bytes, kRebootYes);
    EXPECT_THAT(HelperRuns(), IsEmpty());
    ExpectNoInterface();
    ExpectNoRestart(run);
}

TEST_F(WindowsMeFlow, DoesNotLoadTheDriverUpdateFromTheCurrentDirectory)
{
    const Adapter adapter(kDevice);
    AddAdapter();
    const NativeLibrary driverUpdate("newdev");
    const PlantedDirectory directory;
    directory.Plant("newdev.dll");

    const FinishedRun run = RunMorvixCalled(Folder().At("Morvix.exe"), "/s", directory.Path());

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("drivers upgraded\n"));
    EXPECT_EQ(directory.Journal(), "");
}

TEST_F(WindowsMeFlow, WithADeviceOffersTheRestartToTheUser)
{
    const Adapter adapter(kDevice);
    AddAdapter();
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(1));
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    window.Press(ProgressWindow::kRestartLater);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    ExpectFlow(finished);
    ExpectNoRestart(finished);
}

TEST_F(WindowsMeFlow, WithoutADeviceSaysSoAtTheFinishButton)
{
    AddNoAdapter();
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(5));
    EXPECT_FALSE(window.Offers(ProgressWindow::kRestartNow));
    window.Press(ProgressWindow::kFinish);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    ExpectFlow(finished);
    ExpectNoRestart(finished);
}

TEST_F(WindowsMeFlow, OnWindowsMeItselfStagesWithoutTheHelper)
{
    const EmulatedSystem emulated(kWindowsMe);
    AddNoAdapter();

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("new cab dir: " + FallbackFolder() + "\\\n"), 1u);
    EXPECT_THAT(HelperRuns(), IsEmpty());
    ExpectFlow(run);
}

// A Windows Installer step is not silent, so it is offered the restart too.
TEST_F(WindowsMeFlow, AnInstallerStepThatIsNotSilentIsOfferedTheRestart)
{
    const Adapter adapter(kDevice);
    AddAdapter();
    const auto run = StartMorvix("/m");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(ProgressWindow::kRestartLater);
    window.Press(ProgressWindow::kRestartLater);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    ExpectNoRestart(finished);
}
} // namespace
