// The promise to an administrator: Morvix.exe /s /nr installs the drivers of this system and says so in the registry.

#include <gmock/gmock.h>

#include <memory>
#include <ostream>

#include "Adapter.h"
#include "CleanMachine.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "KitAdapters.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"

namespace {
constexpr char kNetClass[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";

struct SystemCase
{
    const char* name;
    SystemVersion version;
    KitSystem kit;
    const char* detectionLine;
    const char* modelSection;
};

void PrintTo(const SystemCase& system, std::ostream* out)
{
    *out << system.name;
}

class SilentRun : public CleanMachine, public testing::WithParamInterface<SystemCase>
{
protected:
    SilentRun()
    {
        for (const KitAdapter& adapter : kKitAdapters) {
            m_adapters.push_back(std::make_unique<Adapter>(adapter.deviceId));
        }
    }

    static void ExpectInstalled(const KitAdapter& expected, const Adapter& adapter, const std::string& kitFile)
    {
        SCOPED_TRACE(expected.deviceId);
        const std::string fileName = kitFile.substr(kitFile.rfind('\\') + 1);
        ASSERT_TRUE(FileExists(DriverPath(fileName)));
        EXPECT_EQ(ReadFileBytes(DriverPath(fileName)), ReadFileBytes(kitFile));

        EXPECT_TRUE(UpperCase(adapter.Driver()).starts_with(kNetClass)) << adapter.Driver();
        // What the INF says of itself in the driver key.
        EXPECT_EQ(ReadRegistryText(adapter.DriverKey() + "\\Ndi", "Service"), adapter.Service());
        const std::string service = R"(SYSTEM\CurrentControlSet\Services\)" + adapter.Service();
        EXPECT_TRUE(UpperCase(ReadRegistryText(service, "ImagePath")).ends_with("\\" + UpperCase(fileName)));

        const std::string prefix = expected.resultPrefix;
        EXPECT_EQ(ReadRegistryText(kResultsKey, prefix + "Install"), "SUCCESS");
        EXPECT_EQ(ReadRegistryText(kResultsKey, prefix + "Version"), FileVersionOf(kitFile));
    }

    std::vector<std::unique_ptr<Adapter>> m_adapters;
};

TEST_P(SilentRun, InstallsEveryAdapterAndReportsIt)
{
    const SystemCase& system = GetParam();
    const EmulatedSystem emulated(system.version);
    const std::string kitFolder = std::string("Drv\\") + system.kit.folder;
    if (std::string(system.kit.folder) == "WinXPx64" && std::string(system.version.version) == "5.1") {
        // 5.1 is a 32-bit system for the program, and the kit has no 32-bit drivers.
        Folder().WriteSetupIni({"InfSectionName=Norda.NTamd64", "InfDir=" + kitFolder, "InfExclude=qdatdma.inf"});
    }

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count(system.detectionLine), kKitAdapters.size());
    EXPECT_TRUE(run.Traced(std::string("section names from ini: ") + system.modelSection + "\n"));
    for (size_t i = 0; i < kKitAdapters.size(); ++i) {
        const std::string file = Folder().At(kitFolder + "\\" + KitDriverFile(kKitAdapters[i].driver, system.kit));
        ExpectInstalled(kKitAdapters[i], *m_adapters[i], file);
    }
    const std::string lastFile = Folder().At(kitFolder + "\\" + KitDriverFile(kKitAdapters.back().driver, system.kit));
    EXPECT_NE(FileVersionOf(lastFile), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Version"), FileVersionOf(lastFile));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "Reboot"));
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "Tavunstl_source_path"));

    EXPECT_EQ(ReadFileBytes(SystemDirectory() + "\\Morvix.din"), ReadFileBytes(Folder().At("Morvix.din")));
    EXPECT_EQ(ReadRegistryText(R"(SOFTWARE\Norda\Tavunstl\Dins)", "Morvix.din"), "Morvix.Uninstall");
}

INSTANTIATE_TEST_SUITE_P(EverySystem, SilentRun,
                         testing::Values(SystemCase{"WindowsXP",
                                                    {"winxp", "5.1", "2600", "WinNT"},
                                                    {"WinXPx64", "51"},
                                                    "osWINXP32 detected\n",
                                                    "Norda.NTamd64"},
                                         SystemCase{"WindowsXPx64",
                                                    {"winxp64", "5.2", "3790", "WinNT"},
                                                    {"WinXPx64", "51"},
                                                    "osWINXP32E detected\n",
                                                    "Norda.NTamd64"},
                                         SystemCase{"WindowsServer2003",
                                                    {"win2003", "5.2", "3790", "ServerNT"},
                                                    {"WinXPx64", "51"},
                                                    "osWIN2K3SRV32E detected\n",
                                                    "Norda.NTamd64"},
                                         SystemCase{"WindowsVista",
                                                    {"vista", "6.0", "6002", "WinNT"},
                                                    {"WinVistax64", "60"},
                                                    "osWINVISTA32E detected\n",
                                                    "Norda.NTamd64.6.0"},
                                         SystemCase{"WindowsServer2008",
                                                    {"win2008", "6.0", "6002", "ServerNT"},
                                                    {"WinVistax64", "60"},
                                                    "osLONGHORN32E detected\n",
                                                    "Norda.NTamd64.6.0"},
                                         SystemCase{"WindowsServer2008DomainController",
                                                    {nullptr, "6.0", "6002", "LanmanNT"},
                                                    {"WinVistax64", "60"},
                                                    "osLONGHORN32E detected\n",
                                                    "Norda.NTamd64.6.0"},
                                         SystemCase{"Windows7",
                                                    {nullptr, "6.1", "7601", "WinNT"},
                                                    {"Win7x64", "62"},
                                                    "osWINSEVEN32E detected\n",
                                                    "Norda.NTamd64.6.1"},
                                         SystemCase{"WindowsServer2008R2",
                                                    {nullptr, "6.1", "7601", "ServerNT"},
                                                    {"Win7x64", "62"},
                                                    "osWIN2K8R232E detected\n",
                                                    "Norda.NTamd64.6.1"},
                                         SystemCase{"Windows8",
                                                    {"win8", "6.2", "9200", "WinNT"},
                                                    {"Win8x64", "63"},
                                                    "osWINEIGHT32E detected\n",
                                                    "Norda.NTamd64.6.2"},
                                         SystemCase{"Windows8Server",
                                                    {nullptr, "6.2", "9200", "ServerNT"},
                                                    {"Win8x64", "63"},
                                                    "osWINEIGHT32E detected\n",
                                                    "Norda.NTamd64.6.2"}),
                         [](const testing::TestParamInfo<SystemCase>& tested) {
                             return std::string(tested.param.name);
                         });

/// A file in the system's driver directory, removed by the destructor.
class OldDriverFile
{
public:
    OldDriverFile(const std::string& source, const std::string& name) : m_path(DriverPath(name))
    {
        CopyFileTo(source, m_path);
    }
    ~OldDriverFile() { DeleteFileA(m_path.c_str()); }
    OldDriverFile(const OldDriverFile&) = delete;
    OldDriverFile& operator=(const OldDriverFile&) = delete;

private:
    std::string m_path;
};

class KitOnAnUpgradedSystem : public CleanMachine
{
protected:
    // Files with all names that drivers of older systems and kits have had are there, with another version.
    void ExpectTheNewVersion(const SystemVersion& version, const KitSystem& kit)
    {
        SCOPED_TRACE(kit.folder);
        const EmulatedSystem emulated(version);
        const Adapter adapter(kKitAdapters[0].deviceId);
        const std::string old = DistFolder() + "\\Drv\\WinXPx64\\ngea.sys";
        std::vector<std::unique_ptr<OldDriverFile>> left;
        for (const char* name : {"ngea.sys", "ngea51x64.sys", "ngea60x64.sys", "ngea62x64.sys", "ngea63x64.sys"}) {
            left.push_back(std::make_unique<OldDriverFile>(old, name));
        }
        const std::string own =
            DistFolder() + "\\Drv\\" + kit.folder + "\\" + KitDriverFile(kKitAdapters[0].driver, kit);
        ASSERT_NE(FileVersionOf(own), FileVersionOf(old));

        EXPECT_EQ(RunMorvix("/s /nr").exitCode, 0);
        EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
        EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Version"), FileVersionOf(own));
    }
};

TEST_F(KitOnAnUpgradedSystem, TheResultTellsTheVersionOfTheNewDriverBesideWhatOlderSystemsLeft)
{
    ExpectTheNewVersion({"vista", "6.0", "6002", "WinNT"}, {"WinVistax64", "60"});
    ExpectTheNewVersion({nullptr, "6.1", "7601", "WinNT"}, {"Win7x64", "62"});
    ExpectTheNewVersion({"win8", "6.2", "9200", "WinNT"}, {"Win8x64", "63"});
}

class RefusedDriver : public CleanMachine
{
protected:
    const EmulatedSystem m_windows8{{"win8", "6.2", "9200", "WinNT"}};
    const Adapter m_adapter{kKitAdapters[0].deviceId};
    const OldDriverFile m_old{DistFolder() + "\\Drv\\WinXPx64\\ngea.sys", "ngea.sys"};
};

TEST_F(RefusedDriver, IsAFailureEvenWithAnOlderDriverFile)
{
    Folder().Remove("Drv\\Win8x64\\ngea.sys");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = 2\n"), 1u);
    EXPECT_EQ(run.Count("Driver sys file NOT found in \\system32\\drivers"), 1u);
    EXPECT_THAT(run.netInstLines, testing::ElementsAre("NetInst: PCI\\" + std::string(kKitAdapters[0].deviceId) +
                                                       ": driver refused, error 00000002\n"));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Version"), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
    EXPECT_EQ(m_adapter.Driver(), "<none>");
}

TEST_F(RefusedDriver, IsShownToTheUser)
{
    Folder().Remove("Drv\\Win8x64\\ngea.sys");
    const auto run = StartMorvix("");
    const ProgressWindow window(*run);
    window.WaitUntilOffered(IDOK);
    window.Press(IDOK);
    window.WaitUntilOffered(ProgressWindow::kFinish);
    EXPECT_EQ(window.TextOf(ProgressWindow::kStatus), ResourceText(24));
    window.Press(ProgressWindow::kFinish);
    EXPECT_EQ(run->Finish().exitCode, 0);
}

class AnotherInstallerLibrary : public CleanMachine
{
};

TEST_F(AnotherInstallerLibrary, ThatKeepsTheContractWorksToo)
{
    const EmulatedSystem windows8({"win8", "6.2", "9200", "WinNT"});
    Folder().UseDouble("PlainNetInst.dll", "NetInst.dll");
    const Adapter first(kKitAdapters[0].deviceId);
    const Adapter second(kKitAdapters[1].deviceId);
    Folder().Remove("Drv\\Win8x64\\nxga.sys");
    SetRegistryNumber(R"(SOFTWARE\Norda\NetInst)", "RestartNeeded", 1);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: 0 ---> GetLastError = 0\n"), 1u);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = 2\n"), 1u);
    EXPECT_EQ(first.Service(), "NGEA");
    EXPECT_EQ(second.Service(), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "FAILURE");
    EXPECT_FALSE(ReadRegistryValue(R"(SOFTWARE\Norda\NetInst)", "RestartNeeded"));
}

class UnsupportedSystem : public CleanMachine
{
};

TEST_F(UnsupportedSystem, Windows2000GetsNoDriversAndTheRunEndsAsUsual)
{
    const EmulatedSystem emulated({"win2k", "5.0", "2195", "WinNT"});
    const Adapter adapter(kKitAdapters[0].deviceId);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("unsupported os detected\n"), 1u);
    EXPECT_EQ(run.Count("infdirs: \n"), 1u);
    EXPECT_EQ(adapter.Driver(), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "<none>");
}

TEST_F(UnsupportedSystem, WindowsNT4IsRefusedByTheSystemProber)
{
    const EmulatedSystem emulated({"nt40", "4.0", "1381", "WinNT"});
    const Adapter adapter(kKitAdapters[0].deviceId);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, -1);
    EXPECT_TRUE(run.Traced(ResourceText(6)));
    EXPECT_EQ(adapter.Driver(), "<none>");
}

TEST_F(UnsupportedSystem, Windows95IsRefusedByTheSystemProber)
{
    const EmulatedSystem emulated({"win95", "4.0", "950", "WinNT"});

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, -1);
    EXPECT_TRUE(run.Traced(ResourceText(7)));
}

class NoRestart : public CleanMachine
{
};

TEST_F(NoRestart, SlashNrEndsTheRunWithoutARestartOrItsFlag)
{
    const Adapter adapter(kKitAdapters[0].deviceId);

    const FinishedRun run = RunMorvix("/S /NR");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("command line:  '/nr', suppress a reboot request"), 1u);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
    EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
}

TEST_F(NoRestart, SlashNrCancelsInstallerModeSoNoFlagIsLeftForTheInstaller)
{
    const FinishedRun run = RunMorvix("/s /nr /m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_FALSE(run.Traced("command line: '/s /m', install MSI\n"));
    EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "RebootNeeded"));
}
} // namespace
