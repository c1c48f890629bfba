// Several runs at the same moment: one of them installs, and the others say why they do not.

#include <gmock/gmock.h>

#include <algorithm>

#include "Adapter.h"
#include "OwnInfs.h"

namespace {
using testing::ElementsAre;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kRefused[] = "detected previous instance of application or Tavisk is active; unable to continue\n";

class SeveralRuns : public DoubleRun
{
protected:
    SeveralRuns() { WriteInf("one.inf", InfFor(kDevice)); }

    const Adapter m_adapter{kDevice};
};

TEST_F(SeveralRuns, AtTheSameMomentInstallTheDeviceOnce)
{
    constexpr int kRuns = 4;
    // The one that installs stays until all have decided.
    Folder().Answer("NetInst", "HoldInstall1", "1");
    std::vector<std::unique_ptr<ProgramRun>> runs;
    for (int number = 0; number < kRuns; ++number) {
        runs.push_back(StartMorvix("/s /nr"));
    }
    // All but one end by themselves.
    std::vector<FinishedRun> refused;
    const DWORD start = GetTickCount();
    while (runs.size() > 1 && GetTickCount() - start < ProgramRun::kLimit) {
        const auto ended = std::ranges::find_if(runs, [](const auto& run) { return !run->StillRuns(); });
        if (ended == runs.end()) {
            Sleep(20);
            continue;
        }
        refused.push_back((*ended)->Finish());
        runs.erase(ended);
    }
    Folder().Write("NetInst.release", "");
    ASSERT_EQ(runs.size(), 1u);
    const FinishedRun worked = runs.front()->Finish();

    EXPECT_EQ(worked.exitCode, 0);
    for (const FinishedRun& run : refused) {
        EXPECT_EQ(run.exitCode, -1);
        EXPECT_EQ(run.Messages().back(), kRefused);
        EXPECT_FALSE(run.Traced("Enter -> InstallDrivers()\n"));
    }
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));

    // And when it is over, the next one may.
    Folder().Answer("NetInst", "HoldInstall1", "0");
    EXPECT_EQ(RunMorvix("/s /nr").exitCode, 0);
    EXPECT_EQ(Installs().size(), 2u);
}

TEST_F(SeveralRuns, FromTwoFoldersInstallTheDeviceOnce)
{
    const RunFolder other;
    other.UseDouble("NetInst.dll");
    Folder().Answer("NetInst", "HoldInstall1", "1");
    const auto first = StartMorvix("/s /nr");
    first->WaitForTrace("2K/XP install: ");

    const std::string program = other.At("Morvix.exe");
    const FinishedRun second = ProgramRun(Output(), program, program, "/s /nr", other.Path()).Finish();
    Folder().Write("NetInst.release", "");

    EXPECT_EQ(second.exitCode, -1);
    EXPECT_EQ(second.Messages().back(), kRefused);
    EXPECT_EQ(first->Finish().exitCode, 0);
    EXPECT_EQ(Installs().size(), 1u);
    EXPECT_TRUE(other.JournalLines("InstallForRecord").empty());
}
} // namespace
