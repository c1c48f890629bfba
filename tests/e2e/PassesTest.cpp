// Which INF a device gets: the four passes from the exact ID to the shortest, the order of folders and of files.

#include <gmock/gmock.h>

#include <ostream>
#include <utility>

#include "Adapter.h"
#include "OwnInfs.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kWithoutRevision[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A";
constexpr char kWithoutSubsystem[] = "VEN_5D1A&DEV_7A01&REV_03";
constexpr char kVendorAndDevice[] = "VEN_5D1A&DEV_7A01";

using Steps = std::vector<std::pair<std::string, std::string>>;

// The passes after the first as traced: the search ID, then the pass label.
Steps PassesTraced(const FinishedRun& run)
{
    Steps steps;
    const std::vector<std::string> messages = run.Messages();
    for (size_t i = 1; i < messages.size(); ++i) {
        if (messages[i].starts_with("Pass ")) {
            steps.emplace_back(messages[i - 1], messages[i]);
        }
    }
    return steps;
}

struct PassCase
{
    const char* name;
    const char* listedId;
    Steps passes;
};

void PrintTo(const PassCase& tested, std::ostream* out)
{
    *out << tested.name;
}

class WinningPass : public DoubleRun, public testing::WithParamInterface<PassCase>
{
};

TEST_P(WinningPass, InstallsTheDeviceUnderItsFullId)
{
    const Adapter adapter(kDevice);
    WriteInf("one.inf", InfFor(GetParam().listedId));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(PassesTraced(run), GetParam().passes);
    EXPECT_EQ(run.Count("matched:" + std::string(GetParam().listedId) + "\n"), 1u);
    EXPECT_EQ(run.Count("!!FOUND INF MATCH\n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

INSTANTIATE_TEST_SUITE_P(FourPasses, WinningPass,
                         testing::Values(PassCase{"FullId", kDevice, {}},
                                         PassCase{"WithoutRevision", kWithoutRevision, {{kWithoutRevision, "Pass 2"}}},
                                         PassCase{"WithoutSubsystemButWithRevision",
                                                  kWithoutSubsystem,
                                                  {{kWithoutRevision, "Pass 2"}, {kWithoutSubsystem, "Pass 3"}}},
                                         PassCase{"NeitherSubsystemNorRevision",
                                                  kVendorAndDevice,
                                                  {{kWithoutRevision, "Pass 2"},
                                                   {kWithoutSubsystem, "Pass 3"},
                                                   {kVendorAndDevice, "Pass 4"}}}),
                         [](const testing::TestParamInfo<PassCase>& tested) { return std::string(tested.param.name); });

using Passes = DoubleRun;

TEST_F(Passes, ADeviceThatNoInfListsIsLeftAloneAfterTheFourthPass)
{
    const Adapter adapter(kDevice);
    WriteInf("one.inf", InfFor("VEN_5D1A&DEV_7A02"));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(PassesTraced(run).size(), 3u);
    EXPECT_FALSE(run.Traced("!!FOUND INF MATCH\n"));
    EXPECT_FALSE(run.Traced("==>installing driver(s)\n"));
    EXPECT_THAT(Installs(), IsEmpty());
}

TEST_F(Passes, TheEarlierFolderOfTheSetupIniWinsWhateverTheFoldersAreCalled)
{
    const Adapter adapter(kDevice);
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Zulu", "InfDir=Alpha"});
    Folder().Write("Zulu\\one.inf", InfFor(kDevice));
    Folder().Write("Alpha\\one.inf", InfFor(kDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.Count("infdirs: [" + Folder().At("Zulu\\") + "] [" + Folder().At("Alpha\\") + "] \n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Zulu\\one.inf", kDevice)));
}

TEST_F(Passes, TheExactIdInALaterFolderWinsOverAShorterOneInAnEarlierFolder)
{
    const Adapter adapter(kDevice);
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=First", "InfDir=Second"});
    Folder().Write("First\\short.inf", InfFor(kVendorAndDevice));
    Folder().Write("Second\\exact.inf", InfFor(kDevice));

    RunMorvix("/s /nr");

    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Second\\exact.inf", kDevice)));
}

TEST_F(Passes, TheFirstFileOfAFolderThatListsTheDeviceWinsAndTheNextIsNotReached)
{
    const Adapter adapter(kDevice);
    WriteInf("alpha.inf", InfFor(kDevice));
    WriteInf("beta.inf", InfFor(kDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\alpha.inf", kDevice)));
    EXPECT_TRUE(run.Traced("processing: alpha.inf\n"));
    EXPECT_FALSE(run.Traced("processing: beta.inf\n"));
    EXPECT_TRUE(run.Traced("Adding INF alpha.infto vector\n"));
    EXPECT_FALSE(run.Traced("Adding INF beta.infto vector\n"));
}

TEST_F(Passes, AnInfNameIsStoredOncePerRunAcrossDevicesPassesAndFolders)
{
    const Adapter first("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03");
    const Adapter second("VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_03");
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=First", "InfDir=Second"});
    Folder().Write("First\\same.inf", InfFor("VEN_5D1A&DEV_7A01"));
    Folder().Write("Second\\SAME.INF", InfFor("VEN_5D1A&DEV_7A02"));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(Installs(), ElementsAre(InstallLine("First\\same.inf", first.DeviceId()),
                                        InstallLine("Second\\SAME.INF", second.DeviceId())));
    EXPECT_EQ(run.Count("Entering - SetupCopyInf"), 1u);
    EXPECT_EQ(run.Count("Adding INF same.infto vector\n"), 1u);
}

TEST_F(Passes, ADeviceOfAnotherMakerIsNotSearchedForAndOursAfterItIsFound)
{
    const Adapter foreign("VEN_5D1A&DEV_7A00&SUBSYS_00115D1A&REV_03",
                          {R"(PCI\VEN_5D1B&CC_020000)", R"(PCI\CC_020000)"});
    const Adapter ours(kDevice);
    WriteInf("one.inf", InfText({.ids = {kDevice, foreign.DeviceId()}}));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_FALSE(run.Traced("device: " + foreign.DeviceId() + "\n"));
    EXPECT_EQ(run.Count("Norda Network Adapter found!"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}
} // namespace
