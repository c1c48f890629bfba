// Every system, every set of options and every kind of machine against each other: exit code, dialog, registry, files,
// restart and trace. With MORVIX_FULL_MATRIX in the environment all of them run, else a choice in which every two of
// them that may matter to each other meet.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <set>

#include "Environment.h"
#include "MatrixRun.h"
#include "RegistryKeys.h"

namespace {
using testing::ElementsAreArray;
using testing::IsEmpty;

std::vector<std::string> LinesAboutOptions(const FinishedRun& run)
{
    std::vector<std::string> lines = run.Messages();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("command line:"); });
    return lines;
}

std::vector<std::string> InfsHandedToTheStore(const FinishedRun& run)
{
    const std::string before = "Adding INF ";
    const std::string after = "to vector\n";
    std::vector<std::string> names;
    for (const std::string& line : run.Messages()) {
        if (line.starts_with(before) && line.ends_with(after)) {
            names.push_back(line.substr(before.size(), line.size() - before.size() - after.size()));
        }
    }
    return names;
}

std::vector<std::string> NamesIn(const std::string& folder)
{
    std::vector<std::string> names = FilesMatching(folder + "\\*");
    std::erase_if(names, [](const std::string& name) { return name == "." || name == ".."; });
    return names;
}

class Matrix : public MatrixRun
{
protected:
    void ExpectTheWayOfTheRun(const FinishedRun& run)
    {
        const ExpectedRun& expected = Expected();
        EXPECT_THAT(LinesAboutOptions(run), ElementsAreArray(expected.commandLine));
        EXPECT_EQ(run.Count("WinMain() exit, returning 0\n"), expected.end == End::Help ? 1u : 0u);
        EXPECT_EQ(run.Count("Entering - IsTaviskActive"), expected.asksForManagementSoftware ? 1u : 0u);
        if (expected.end == End::Refusal) {
            EXPECT_EQ(run.Count(ResourceText(expected.lastText)), 1u);
        }
        EXPECT_EQ(run.Count("Entering - InstallThread"), expected.installRuns ? 1u : 0u);
        EXPECT_EQ(run.Count("Exit -> InstallDrivers()\n"), expected.installRuns ? 1u : 0u);
        EXPECT_EQ(run.Count("ScanForHardwareChanges()\n"), expected.hardwareScans);
        EXPECT_EQ(run.Count("Enter -> CopyFilesToCabDir\n"), expected.staged ? 1u : 0u);
        ExpectTheSearch(run);
        ExpectTheInstall(run);
        const size_t restarts = expected.restart ? 1 : 0;
        EXPECT_EQ(run.Count("Entering - RestartMachine"), restarts);
        EXPECT_EQ(Restarts(), restarts);
    }

    void ExpectTheSearch(const FinishedRun& run)
    {
        const ExpectedRun& expected = Expected();
        EXPECT_EQ(run.Count("Entering - GetInfDirs"), expected.directoryLookUps);
        if (expected.directoryLookUps != 0) {
            EXPECT_EQ(run.Count(expected.detection), expected.directoryLookUps);
        }
        const MatrixSystem& system = *GetParam().system;
        const std::string directories =
            !system.hasDrivers ? "infdirs: \n"
                               : "infdirs: [" + Folder().At(std::string("Spare\\") + system.section) + "\\] [" +
                                     Folder().At(std::string("Drv\\") + system.kit.folder) + "\\] \n";
        EXPECT_EQ(run.Count(directories), expected.directoryLookUps);
        for (size_t pass = 2; pass <= 4; ++pass) {
            EXPECT_EQ(run.Count("Pass " + std::to_string(pass)), pass <= expected.passes ? 1u : 0u) << pass;
        }
        EXPECT_THAT(InfsHandedToTheStore(run), ElementsAreArray(expected.storedInfs));
    }

    void ExpectTheInstall(const FinishedRun& run)
    {
        const ExpectedRun& expected = Expected();
        EXPECT_EQ(run.Count("!!FOUND INF MATCH\n"), expected.driver.size());
        EXPECT_EQ(run.Count("==>installing driver(s)\n"), expected.driver.size());
        for (const ExpectedDriver& driver : expected.driver) {
            EXPECT_EQ(run.Count("2K/XP install: PCI\\" + std::string(kServedDevice) + ", " +
                                UpperCase(Folder().At(driver.inf)) + "\n"),
                      1u);
        }
        const bool success = expected.result == "SUCCESS";
        const bool failure = expected.result == "FAILURE";
        EXPECT_EQ(run.Count("Driver sys file found in \\system32\\drivers"), success ? 1u : 0u);
        EXPECT_EQ(run.Count("Driver sys file NOT found in \\system32\\drivers"), failure ? 1u : 0u);
        // The 9x flows classify what was installed last, which here is nothing.
        EXPECT_EQ(run.Count("A device other than a network device was installed"), expected.staged ? 1u : 0u);
    }

    void ExpectTheRegistry() const
    {
        const ExpectedRun& expected = Expected();
        // The key of the trace was there before; the restart flag that was there too is gone.
        std::vector<std::string> lines = {"[Basedrivers]", "[Basedrivers\\Debug]"};
        if (!expected.result.empty()) {
            const std::string& prefix = expected.driver.front().resultPrefix;
            lines.push_back("Basedrivers: " + prefix + "Install (REG_EXPAND_SZ) " + expected.result);
            lines.push_back("Basedrivers: Install (REG_EXPAND_SZ) " + expected.result);
            lines.emplace_back("[Tavunstl]");
            lines.emplace_back("[Tavunstl\\Dins]");
            lines.emplace_back("Tavunstl\\Dins: Morvix.din (REG_SZ) Morvix.Uninstall");
        }
        if (expected.result == "SUCCESS") {
            const std::string version = FileVersionOf(DistFolder() + "\\" + expected.versionFile.kitPath);
            ASSERT_NE(version, "<none>");
            lines.push_back("Basedrivers: " + expected.driver.front().resultPrefix + "Version (REG_SZ) " + version);
            lines.push_back("Basedrivers: Version (REG_SZ) " + version);
        }
        EXPECT_THAT(MatrixMachine::RegistryLines(), testing::UnorderedElementsAreArray(lines));
        EXPECT_EQ(MatrixMachine::SourcePath(), OnMachine().GivenSourcePath());
    }

    void ExpectTheFiles() const
    {
        const ExpectedRun& expected = Expected();
        std::vector<std::string> drivers;
        for (const ExpectedFile& file : expected.filesAfter) {
            drivers.push_back(file.name);
            EXPECT_EQ(ReadFileBytes(DriverPath(file.name)), ReadFileBytes(DistFolder() + "\\" + file.kitPath));
        }
        EXPECT_THAT(MatrixMachine::DriverFiles(), ElementsAreArray(drivers));
        EXPECT_THAT(MatrixMachine::StoredInfs(), testing::UnorderedElementsAreArray(expected.storedInfs));
        const std::string uninstallData = SystemDirectory() + "\\Morvix.din";
        EXPECT_EQ(FileExists(uninstallData), !expected.result.empty());
        if (FileExists(uninstallData)) {
            EXPECT_EQ(ReadFileBytes(uninstallData), ReadFileBytes(Folder().At("Morvix.din")));
        }
        EXPECT_EQ(FileExists(MatrixMachine::StagingFolder()), expected.staged);
        EXPECT_THAT(NamesIn(OnMachine().GivenSourcePath()), IsEmpty());
        EXPECT_THAT(FolderChanges(), IsEmpty());
    }

    void ExpectTheAdapter() const
    {
        const Adapter* adapter = OnMachine().NetworkAdapter();
        if (adapter == nullptr) {
            return;
        }
        if (!Expected().installed) {
            EXPECT_EQ(adapter->Service(), "<none>");
            return;
        }
        EXPECT_EQ(adapter->Service(), Expected().driver.front().service);
        // What the INF says of itself in the driver key.
        EXPECT_EQ(ReadRegistryText(adapter->DriverKey() + "\\Ndi", "Service"), Expected().driver.front().service);
    }

    // What the doubles were asked: the restore point around the work, the refused install, the legacy helper.
    void ExpectTheJournal()
    {
        const ExpectedRun& expected = Expected();
        std::vector<std::string> points = Folder().JournalLines("SRSetRestorePointW");
        for (std::string& line : points) {
            line = line.substr(0, line.find(" description"));
        }
        std::vector<std::string> expectedPoints;
        if (expected.installRuns) {
            expectedPoints = {"SRSetRestorePointW event=102 type=10 sequence=0",
                              "SRSetRestorePointW event=103 type=10 sequence=1"};
        }
        EXPECT_THAT(points, ElementsAreArray(expectedPoints));

        std::vector<std::string> installs;
        if (expected.interfaceAsked) {
            const std::string inf = UpperCase(Folder().At(expected.driver.front().inf));
            installs.push_back("InstallForRecord family=[" + std::string(GetParam().system->family) + "] inf=[" + inf +
                               "] id=[PCI\\" + kServedDevice + "] flags=0 source=[" + inf + "]");
        }
        EXPECT_THAT(Folder().JournalLines("InstallForRecord"), ElementsAreArray(installs));

        const std::vector<std::string> helperRuns = Folder().JournalLines("Rundll ");
        ASSERT_EQ(helperRuns.size(), expected.helperRuns ? 1u : 0u);
        for (const std::string& line : helperRuns) {
            EXPECT_TRUE(line.starts_with("Rundll [Rundll.exe Inst98.dll,EntryPoint noID " +
                                         MatrixMachine::StagingFolder() + "\\] in ["))
                << line;
        }
    }
};

TEST_P(Matrix, EndsAsTheRulesSay)
{
    const FinishedRun run = GoThrough();

    EXPECT_EQ(run.exitCode, Expected().exitCode);
    ExpectTheWayOfTheRun(run);
    ExpectTheRegistry();
    ExpectTheFiles();
    ExpectTheAdapter();
    ExpectTheJournal();
}

std::vector<MatrixRow> RowsToRun()
{
    return std::getenv("MORVIX_FULL_MATRIX") != nullptr ? AllRows() : CoveringRows();
}

std::string RowName(const testing::TestParamInfo<MatrixRow>& row)
{
    return NameOf(row.param);
}

INSTANTIATE_TEST_SUITE_P(Run, Matrix, testing::ValuesIn(RowsToRun()), RowName);

TEST(MatrixChoice, LetsEverySystemMeetEveryModeAndEveryMachineAndEveryOptionSetEveryMachine)
{
    std::set<std::string> met;
    for (const MatrixRow& row : CoveringRows()) {
        const std::string system = row.system->name;
        met.insert(system + " mode " + std::to_string(static_cast<int>(row.options->mode)));
        met.insert(system + " on " + NameOf(row.machine));
        met.insert(std::string(row.options->name) + " on " + NameOf(row.machine));
    }
    for (const MatrixRow& row : AllRows()) {
        const std::string system = row.system->name;
        EXPECT_TRUE(met.contains(system + " mode " + std::to_string(static_cast<int>(row.options->mode))));
        EXPECT_TRUE(met.contains(system + " on " + NameOf(row.machine)));
        EXPECT_TRUE(met.contains(std::string(row.options->name) + " on " + NameOf(row.machine)));
    }
    EXPECT_EQ(kMatrixSystems.size(), 16u);
}
} // namespace
