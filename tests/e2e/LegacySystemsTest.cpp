// The flows of the 9x family: device pass, then staging, then classification, and how such a run ends. The system
// prober says which family it is; Wine says which version it is.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <memory>

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

    static void ExpectRebootRecorded()
    {
        const std::optional<RegistryValue> reboot = ReadRegistryValue(kResultsKey, "Reboot");
        ASSERT_TRUE(reboot);
        EXPECT_EQ(reboot->type, static_cast<DWORD>(REG_SZ));
        EXPECT_EQ(reboot->bytes, kRebootYes);
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
    ExpectRebootRecorded();
    ExpectNoRestart(run);
}

TEST_F(Windows98Flow, AMissingDriverFileIsAFailureThatNeedsTheRestartToo)
{
    AddAdapter();

    const FinishedRun run = RunMorvix("/s");

    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
    ExpectRebootRecorded();
    ExpectNoRestart(run);
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
    ExpectRebootRecorded();
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

struct UserRow
{
    const char* name;
    const char* family;
    const char* options;
    bool hasAdapter;
    std::vector<unsigned> welcome; ///< texts of the dialog that waits for OK; none for a run that does not wait
    int button;                    ///< what ends the run: the finish button, or "restart later"
    const char* install;           ///< the run's result
};

class LegacyUser : public LegacySystem, public testing::WithParamInterface<UserRow>
{
};

TEST_P(LegacyUser, EndsTheRunWithTheButtonOffered)
{
    const UserRow& row = GetParam();
    SetFamily(row.family);
    const auto adapter = row.hasAdapter ? std::make_unique<Adapter>(kDevice) : nullptr;
    if (row.hasAdapter) {
        AddAdapter();
    } else {
        AddNoAdapter();
    }
    const auto run = StartMorvix(row.options);
    const ProgressWindow window(*run);
    if (!row.welcome.empty()) {
        window.WaitUntilOffered(IDOK);
        std::string welcome;
        for (const unsigned text : row.welcome) {
            welcome += ResourceText(text);
        }
        EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), welcome);
        EXPECT_EQ(window.Title(), ResourceText(1008));
        window.Press(IDOK);
    }
    window.WaitUntilOffered(row.button);
    if (row.button == ProgressWindow::kFinish) {
        EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(5));
        EXPECT_FALSE(window.Offers(ProgressWindow::kRestartNow));
    } else {
        window.WaitUntilOffered(ProgressWindow::kRestartNow);
        EXPECT_FALSE(window.Offers(ProgressWindow::kFinish));
    }
    window.Press(row.button);
    const FinishedRun finished = run->Finish();

    EXPECT_EQ(finished.exitCode, 0);
    ExpectFlow(finished);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), row.install);
    ExpectNoRestart(finished);
}

// An installer step is not silent, so it is offered the restart too.
INSTANTIATE_TEST_SUITE_P(
    Each, LegacyUser,
    testing::Values(
        UserRow{"OnWindows98WithoutADevice", "Windows 98", "", false, {1, 20}, ProgressWindow::kRestartLater, "<none>"},
        UserRow{"OnWindowsMeWithADevice", "Windows Millenium", "", true, {1}, ProgressWindow::kRestartLater, "FAILURE"},
        UserRow{"OnWindowsMeWithoutADevice", "Windows Millenium", "", false, {1}, ProgressWindow::kFinish, "<none>"},
        UserRow{"OfAnInstallerStepOnWindowsMe",
                "Windows Millenium",
                "/m",
                true,
                {},
                ProgressWindow::kRestartLater,
                "FAILURE"}),
    [](const auto& row) { return std::string(row.param.name); });
} // namespace
