// The promise to an administrator: Morvix.exe /s /nr installs the drivers of this system and says so in the registry.

#include <gmock/gmock.h>

#include <memory>
#include <ostream>

#include "Adapter.h"
#include "CleanMachine.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "KitAdapters.h"
#include "RegistryKeys.h"

namespace {
constexpr char kResults[] = R"(SOFTWARE\Norda\Basedrivers)";
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
        EXPECT_EQ(ReadRegistryText(kResults, prefix + "Install"), "SUCCESS");
        EXPECT_EQ(ReadRegistryText(kResults, prefix + "Version"), FileVersionOf(kitFile));
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
        const std::string file = Folder().At(kitFolder + "\\" + KitDriverFile(kKitAdapters[i], system.kit));
        ExpectInstalled(kKitAdapters[i], *m_adapters[i], file);
    }
    const std::string lastFile = Folder().At(kitFolder + "\\" + KitDriverFile(kKitAdapters.back(), system.kit));
    EXPECT_NE(FileVersionOf(lastFile), "<none>");
    EXPECT_EQ(ReadRegistryText(kResults, "Version"), FileVersionOf(lastFile));
    EXPECT_EQ(ReadRegistryText(kResults, "Install"), "SUCCESS");
    EXPECT_FALSE(ReadRegistryValue(kResults, "Reboot"));
    EXPECT_FALSE(ReadRegistryValue(kResults, "RebootNeeded"));
    EXPECT_FALSE(ReadRegistryValue(kResults, "Tavunstl_source_path"));

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
    EXPECT_EQ(ReadRegistryText(kResults, "Install"), "<none>");
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
    EXPECT_EQ(ReadRegistryText(kResults, "Install"), "SUCCESS");
    EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
    EXPECT_FALSE(ReadRegistryValue(kResults, "RebootNeeded"));
}

TEST_F(NoRestart, SlashNrCancelsInstallerModeSoNoFlagIsLeftForTheInstaller)
{
    const FinishedRun run = RunMorvix("/s /nr /m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_FALSE(run.Traced("command line: '/s /m', install MSI\n"));
    EXPECT_FALSE(run.Traced("Entering - RestartMachine"));
    EXPECT_FALSE(ReadRegistryValue(kResults, "RebootNeeded"));
}
} // namespace
