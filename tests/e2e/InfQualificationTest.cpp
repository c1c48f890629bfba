// Which INF files a run takes and what it says about each. In every test the second file serves the device, so the run
// must go on after the first.

#include <gmock/gmock.h>

#include "Adapter.h"
#include "Environment.h"
#include "Handles.h"
#include "OwnInfs.h"

namespace {
using testing::AllOf;
using testing::ElementsAre;
using testing::Ne;
using testing::StartsWith;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";

class InfQualification : public DoubleRun
{
protected:
    InfQualification() { WriteInf("second.inf", InfFor(kDevice)); }

    // What the first pass traces about first.inf, up to the line that begins the next file.
    std::vector<std::string> SaidOfFirst(const FinishedRun& run)
    {
        return run.Between("processing: first.inf\n", "processing: second.inf\n");
    }

    void ExpectSecondInstalled() { EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\second.inf", kDevice))); }

    const Adapter m_adapter{kDevice};
};

TEST_F(InfQualification, AnExcludedFileIsSkippedSilentlyInAnyLetterCase)
{
    Folder().WriteSetupIni(
        {std::string("InfSectionName=") + kModelSection, "InfDir=Inf", "InfExclude=other.inf", "InfExclude=FIRST.inf"});
    WriteInf("first.inf", InfFor(kDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(run.Between("INFs to exclude:", "FIRST.inf"),
                ElementsAre("INFs to exclude:", "other.inf", "FIRST.inf"));
    EXPECT_THAT(SaidOfFirst(run), ElementsAre("processing: first.inf\n", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, WithSlashNAnExcludedFileIsUsed)
{
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Inf", "InfExclude=first.inf"});
    WriteInf("first.inf", InfFor(kDevice));

    const FinishedRun run = RunMorvix("/s /nr /n");

    EXPECT_EQ(run.Count("command line: '/n', force scan of all INF files\n"), 1u);
    EXPECT_FALSE(run.Traced("processing: second.inf\n"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\first.inf", kDevice)));
}

TEST_F(InfQualification, AFileSignedForAnotherSystemIsRefused)
{
    WriteInf("first.inf", InfText({.ids = {kDevice}, .signature = "$Chicago$"}));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(SaidOfFirst(run),
                ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode", "file is not Unicode\n",
                            "signature section match for this OS not found\n", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, AFileOfAnotherMakerIsSkipped)
{
    WriteInf("first.inf", InfText({.ids = {kDevice}, .manufacturer = "Contoso"}));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(SaidOfFirst(run), ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode",
                                              "file is not Unicode\n", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, TheBrandInLowerCaseIsNotTheBrand)
{
    WriteInf("first.inf", InfText({.ids = {kDevice}, .manufacturer = "norda"}));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(SaidOfFirst(run), ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode",
                                              "file is not Unicode\n", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, AFileThatCannotBeOpenedIsReportedAndRefused)
{
    WriteInf("first.inf", InfFor(kDevice));
    const std::string path = Folder().At("Inf\\first.inf");
    const UniqueFile locked(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(locked.IsOpen());

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(
        SaidOfFirst(run),
        ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode", "unable to open file: " + path + "\n",
                    "signature section match for this OS not found\n", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, AFileThatDoesNotListTheDeviceIsStillStored)
{
    WriteInf("first.inf", InfFor("VEN_5D1A&DEV_7A02"));
    const std::string directory = Folder().At("Inf\\");
    const std::string path = directory + "first.inf";

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(SaidOfFirst(run),
                ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode", "file is not Unicode\n",
                            "Entering - SetupCopyInf",
                            "SetupCopyOEMInfA(), src inf:" + path + ", src media loc:" + directory + "\n",
                            "Calling SetupCopyOEMInfA for " + path,
                            StartsWith("SetupCopyOEMInfA completed successfully - inf=" + path +
                                       ", oem INF= " + WindowsDirectory() + "\\inf\\"),
                            "Entering - PrintGetLastErrorMessage", Ne(""), "Adding INF first.infto vector\n",
                            "Entering - ParseINFile",
                            "ParseINFFile(): key=" + std::string(kDevice) + ", section name=" + kModelSection +
                                ", file name=" + path + "\n",
                            "Entering - GetLanguageSpecificString", "processing: second.inf\n"));
    ExpectSecondInstalled();
}

TEST_F(InfQualification, AUnicodeFileServesTheDevice)
{
    WriteInf("first.inf", AsUnicodeFile(InfFor(kDevice)));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_THAT(run.Between("processing: first.inf\n", "Entering - SetupCopyInf"),
                ElementsAre("processing: first.inf\n", "Entering - IsFileUnicode", "file is Unicode\n",
                            "Entering - SetupCopyInf"));
    EXPECT_EQ(run.Count("matched:" + std::string(kDevice) + "\n"), 1u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\first.inf", kDevice)));
}

TEST_F(InfQualification, ARefusedDeviceDoesNotStopTheNextOne)
{
    const Adapter unlisted("VEN_5D1A&DEV_7A00&SUBSYS_00115D1A&REV_03");
    WriteInf("first.inf", InfText({.ids = {unlisted.DeviceId()}, .signature = "$Chicago$"}));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    // The registry lists the unlisted device first.
    const std::string first = "device: " + unlisted.DeviceId() + "\n";
    const std::string second = "device: " + std::string(kDevice) + "\n";
    EXPECT_FALSE(run.Between(first, second).empty());
    ExpectSecondInstalled();
}
} // namespace
