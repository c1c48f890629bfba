// How a run treats the results of the driver-install interface.

#include <gmock/gmock.h>

#include "Adapter.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"

namespace {
using testing::Contains;
using testing::ElementsAre;

constexpr char kFirstDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kSecondDevice[] = "VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_03";
// File names that belong to the 10 gigabit and to the PCI Express family.
constexpr char kFirstInf[] = "nxgatest.inf";
constexpr char kSecondInf[] = "ngeatest.inf";

// Two adapters of two families, whose driver files are there already: only the interface's answer can make a failure.
class InstallAnswers : public DoubleRun
{
protected:
    InstallAnswers()
    {
        WriteInf(kFirstInf, InfFor(kFirstDevice));
        WriteInf(kSecondInf, InfFor(kSecondDevice));
        for (const auto* file : {"nxga62x64.sys", "ngea62x64.sys"}) {
            CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\" + file, DriverPath(file));
        }
    }

    void Answer(const std::string& key, const std::string& value) { Folder().Answer("NetInst", key, value); }

    void ExpectBothInstallsWereTried()
    {
        EXPECT_THAT(Installs(), ElementsAre(InstallLine(std::string("Inf\\") + kFirstInf, kFirstDevice),
                                            InstallLine(std::string("Inf\\") + kSecondInf, kSecondDevice)));
    }

    // Everything traced about the first device's install, from its call to the next device.
    static std::vector<std::string> SaidOfFirstInstall(const FinishedRun& run)
    {
        return run.Between("==>installing driver(s)\n", "Exit -> PostInstallRegResult\n");
    }

    const Adapter m_first{kFirstDevice};
    const Adapter m_second{kSecondDevice};
};

TEST_F(InstallAnswers, StatusE0000207MakesTheFirstResultAFailureAndTheNextDeviceIsJudgedByItself)
{
    Answer("InstallStatus1", "0xE0000207");
    Answer("LastError1", "0xE0000207");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstallsWereTried();
    const std::string inf = UpperCase(Folder().At(std::string("Inf\\") + kFirstInf));
    EXPECT_THAT(
        SaidOfFirstInstall(run),
        ElementsAre("==>installing driver(s)\n", "2K/XP install: PCI\\" + std::string(kFirstDevice) + ", " + inf + "\n",
                    " 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = e0000207\n",
                    "Enter -> PostInstallRegResult\n", "inf file name and path is ->", inf, "inf file name is ->",
                    "\\NXGATEST.INF", "Driver sys file NOT found in \\system32\\drivers",
                    "Enter -> PostResultToRegistry", "Installation result is ->", "FAILURE",
                    "The type of driver being installed is ->", "TAVX_Install",
                    "The driver version being installed is ->", "",
                    "First time calling PostResultToRegistry() or FAILURE found!", "Exit -> PostResultToRegistry",
                    "Entering -> UpdateTavunstRegistry()", "Exiting -> UpdateTavunstRegistry()",
                    "Exit -> PostInstallRegResult\n"));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Version"), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Version"), FileVersionOf(DriverPath("ngea62x64.sys")));
    // A later success never overwrites an earlier failure.
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
}

TEST_F(InstallAnswers, StatusE0000207AfterASuccessTurnsTheWholeResultIntoAFailure)
{
    Answer("InstallStatus2", "0xE0000207");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstallsWereTried();
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Version"), FileVersionOf(DriverPath("nxga62x64.sys")));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
    EXPECT_EQ(run.Count("First time calling PostResultToRegistry() or FAILURE found!"), 2u);
}

TEST_F(InstallAnswers, AnotherNegativeStatusIsTracedAndTheDriverFileDecides)
{
    Answer("InstallStatus1", "0x80070005");
    Answer("LastError1", "5");
    ASSERT_NE(DeleteFileA(DriverPath("ngea62x64.sys").c_str()), FALSE);
    Answer("InstallStatus2", "0xE000020B");
    Answer("LastError2", "0xE000020B");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstallsWereTried();
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: 80070005 ---> GetLastError = 5\n"), 1u);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: e000020b ---> GetLastError = e000020b\n"), 1u);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Version"), FileVersionOf(DriverPath("nxga62x64.sys")));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
}

TEST_F(InstallAnswers, APositiveStatusIsNotAFailure)
{
    // Positive, so not the failure that the same digits with a top bit would be.
    Answer("InstallStatus1", "0x60000207");
    Answer("LastError1", "259");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstallsWereTried();
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: 60000207 ---> GetLastError = 103\n"), 1u);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: 0 ---> GetLastError = 0\n"), 1u);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "SUCCESS");
}

TEST_F(InstallAnswers, AnInfOfNoFamilyIsReportedInTheTraceOnly)
{
    WriteInf(kFirstInf, InfFor("VEN_5D1A&DEV_7A09"));
    // The prefix is inside the name, not at its start.
    WriteInf("myngea.inf", InfFor(kFirstDevice));
    const Adapter& unclassified = m_first;

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(Installs(), Contains(InstallLine("Inf\\myngea.inf", unclassified.DeviceId())));
    EXPECT_EQ(run.Count("A device other than a network device was installed"), 1u);
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "<none>");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "SUCCESS");
}

TEST_F(InstallAnswers, WithoutADriverInstallInterfaceEveryMatchedDeviceCountsAsRefused)
{
    Answer("DriverInstallFactoryStatus", "0x80004005");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("no driver-install interface: status 80004005\n"), 1u);
    EXPECT_EQ(run.Count("==>installing driver(s)\n"), 2u);
    EXPECT_EQ(run.Count(" 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = 57\n"), 2u);
    EXPECT_TRUE(Installs().empty());
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVX_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Install"), "FAILURE");
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "Version"));
}

TEST_F(InstallAnswers, ADriverInstallInterfaceIsNotMentioned)
{
    EXPECT_EQ(RunMorvix("/s /nr").Count("no driver-install interface: status 0\n"), 0u);
}

TEST_F(InstallAnswers, OnlyAnUnattendedRunSilencesThePlatform)
{
    Answer("TellWhoIsAsked", "1");
    RunMorvix("/m");
    EXPECT_THAT(Folder().JournalLines("SetupGetNonInteractiveMode"),
                ElementsAre("SetupGetNonInteractiveMode 0", "SetupGetNonInteractiveMode 0"));
    RunMorvix("/s /m");
    EXPECT_THAT(Folder().JournalLines("SetupGetNonInteractiveMode"),
                ElementsAre("SetupGetNonInteractiveMode 0", "SetupGetNonInteractiveMode 0",
                            "SetupGetNonInteractiveMode 1", "SetupGetNonInteractiveMode 1"));
}

TEST_F(InstallAnswers, ADriverInstallInterfaceThatComesWithAFailureIsReleasedAndNotUsed)
{
    Answer("CreateDriverInstallStatus", "0x80004005");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(Installs().empty());
    EXPECT_EQ(Folder().JournalLines("DriverInstall Release").size(), 1u);
}

TEST_F(InstallAnswers, TheUninstallersSourcePathExistsOnlyDuringTheInstallCall)
{
    RunMorvix("/s /nr");

    // The journal line shows what the double saw during the call.
    ExpectBothInstallsWereTried();
    EXPECT_FALSE(ReadRegistryValue(kResultsKey, "Tavunstl_source_path"));
}
} // namespace
