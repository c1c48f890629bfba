// Malformed setup INIs: what the platform reads from them counts, everything else is ignored, and the run ends.

#include <gmock/gmock.h>

#include <functional>
#include <ostream>

#include "Adapter.h"
#include "BadFiles.h"
#include "EmulatedSystem.h"
#include "OwnInfs.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kFailed[] = "GetPrivateProfileSection() failed";

/// What is found in the file.
enum class Found
{
    Nothing,    ///< no section
    Everything, ///< the directory and the section's name: the device is installed
};

struct BadIni
{
    const char* name;
    std::function<std::string(const std::string& good)> content;
    Found found;
};

void PrintTo(const BadIni& tested, std::ostream* out)
{
    *out << tested.name;
}

class BadIniRun : public DoubleRun
{
protected:
    BadIniRun() { WriteInf("one.inf", InfFor(kDevice)); }

    [[nodiscard]] std::string GoodIni() const { return ReadFileBytes(m_iniPath); }
    void WriteIni(const std::string& content) { WriteFileBytes(m_iniPath, content); }

    void ExpectInstalled() { EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice))); }
    /// The run went through all passes without a directory or without a hit.
    void ExpectNothingFound(const FinishedRun& run)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_TRUE(run.Traced("device: " + std::string(kDevice) + "\n"));
        EXPECT_TRUE(run.Traced("Pass 4"));
        EXPECT_FALSE(run.Traced("!!FOUND INF MATCH\n"));
        EXPECT_TRUE(run.Traced("************ finished enumerating registry for devices\n"));
        EXPECT_THAT(Installs(), IsEmpty());
    }

    const Adapter m_adapter{kDevice};

private:
    const std::string m_iniPath = Folder().At("Morvix.ini");
};

class BadSetupIni : public BadIniRun, public testing::WithParamInterface<BadIni>
{
};

TEST_P(BadSetupIni, CountsForWhatThePlatformReadsFromIt)
{
    WriteIni(GetParam().content(GoodIni()));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("ini file: " + Folder().At("Morvix.ini") + "\n"), 1u);
    if (GetParam().found == Found::Everything) {
        EXPECT_EQ(run.Count("infdirs: [" + Folder().At("Inf\\") + "] \n"), 1u);
        EXPECT_EQ(run.Count(kFailed), 0u);
        ExpectInstalled();
    } else {
        // Once for the directories and once for the excluded files of the one device.
        EXPECT_EQ(run.Count(kFailed), 2u);
        EXPECT_EQ(run.Count("infdirs: \n"), 1u);
        EXPECT_FALSE(run.Traced("Entering - GetInfFile"));
        ExpectNothingFound(run);
    }
}

using Text = const std::string&;

const std::vector<BadIni> kBadInis = {
    {"Empty", [](Text) { return std::string(); }, Found::Nothing},
    {"Binary", [](Text) { return BinaryNoise(65536); }, Found::Nothing},
    {"Zeros", [](Text) { return std::string(65536, '\0'); }, Found::Nothing},
    {"FiftyMegabytesInFront", [](Text good) { return FiftyMegabytesOfComments() + good; }, Found::Everything},
    {"FiftyMegabytesInTheLastLine", [](Text good) { return good + "[Last]\r\n" + FiftyMegabyteLine(); },
     Found::Everything},
    {"OneEndlessLine", OneEndlessLine, Found::Nothing},
    {"OnlyComments", OnlyComments, Found::Nothing},
    {"Utf16WithMark", [](Text good) { return kUtf16Mark + AsUtf16(good); }, Found::Everything},
    {"Utf16WithoutMark", AsUtf16, Found::Nothing},
    {"Utf8MarkBeforeAComment", [](Text good) { return kUtf8Mark + (";\r\n" + good); }, Found::Everything},
    {"Utf8MarkBeforeASection", [](Text good) { return kUtf8Mark + good; }, Found::Everything},
    {"TenThousandSections", [](Text good) { return TenThousandSections() + good; }, Found::Everything},
    {"NoBracketClosed", WithUnclosedBrackets, Found::Nothing},
    {"LevelsToRootBeyondAllNumbers",
     [](Text good) { return Replaced(good, "LevelsToRoot=0", "LevelsToRoot=99999999999999999999"); },
     Found::Everything},
    {"LevelsToRootOf32767Digits",
     [](Text good) { return Replaced(good, "LevelsToRoot=0", "LevelsToRoot=" + std::string(32767, '9')); },
     Found::Everything},
    {"SectionNameOf32767", [](Text good) { return "[" + std::string(32767, 's') + "]\r\nInfDir=X\r\n" + good; },
     Found::Everything},
};

INSTANTIATE_TEST_SUITE_P(Each, BadSetupIni, testing::ValuesIn(kBadInis),
                         [](const testing::TestParamInfo<BadIni>& tested) { return std::string(tested.param.name); });

TEST_F(BadIniRun, NulsAtLineEndsAndOldMacLineEndsReadAsThePlatformReadsThem)
{
    const std::string good = GoodIni();
    for (const std::string& content : {WithNuls(good), WithOldMacLineEnds(good)}) {
        WriteIni(content);
        std::vector<char> lines(520);
        // All sections are alike.
        GetPrivateProfileSectionA("Win732E", lines.data(), static_cast<DWORD>(lines.size()),
                                  Folder().At("Morvix.ini").c_str());
        const std::string first = lines.data();

        const FinishedRun run = RunMorvix("/s /nr");

        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.Traced("!!FOUND INF MATCH\n"), first == std::string("InfSectionName=") + kModelSection) << first;
        EXPECT_TRUE(run.Traced("************ finished enumerating registry for devices\n"));
    }
    if (RunsInWine()) {
        EXPECT_EQ(Installs().size(), 2u);
    }
}

TEST_F(BadIniRun, ADirectoryNameThatIsTooLongFindsNothingAndTheNextDirectoryIsSearched)
{
    for (const std::size_t length : {std::size_t{259}, std::size_t{260}, std::size_t{480}}) {
        const std::string longName(length, 'd');
        Folder().WriteSetupIni({"InfDir=" + longName, "InfDir=Inf"});
        // Read by its key, so it may be after the part of the section that is read.
        Folder().WriteSetupIni({"InfDir=" + longName, "InfDir=Inf", std::string("InfSectionName=") + kModelSection});
        const FinishedRun run = RunMorvix("/s /nr");
        EXPECT_EQ(run.exitCode, 0) << length;
        EXPECT_EQ(run.Count("infdirs: [" + Folder().At(longName + "\\") + "] [" + Folder().At("Inf\\") + "] \n"), 1u)
            << length;
        EXPECT_EQ(run.Count(Folder().At(longName + "\\")), 1u) << length;
    }
    const std::string line = InstallLine("Inf\\one.inf", kDevice);
    EXPECT_THAT(Installs(), ElementsAre(line, line, line));
}

TEST_F(BadIniRun, ADirectoryNameOf32767CharactersIsCutWithItsSectionAndTheLinesBeforeItCount)
{
    const std::string longName(32767, 'd');
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Inf", "InfDir=" + longName});
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("GetPrivateProfileSection() increasing size of section buffer\n"), 1u);
    ExpectInstalled();

    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=" + longName, "InfDir=Inf"});
    Folder().Remove("journal.txt");
    ExpectNothingFound(RunMorvix("/s /nr"));
}

TEST_F(BadIniRun, AModelSectionNameOf259CharactersIsTheLongestThatCounts)
{
    const std::string longest(259, 'm');
    const std::string inf = Replaced(InfFor(kDevice), kModelSection, longest);
    WriteInf("one.inf", inf);
    Folder().WriteSetupIni({"InfSectionName=" + longest, "InfDir=Inf"});
    FinishedRun run = RunMorvix("/s /nr");
    EXPECT_TRUE(run.Traced("added section name: " + longest + "\n"));
    ExpectInstalled();

    // One of 260 is cut, and the rest of the name is in no INF.
    const std::string tooLong(260, 'm');
    WriteInf("one.inf", Replaced(inf, longest, tooLong));
    Folder().WriteSetupIni({"InfSectionName=" + tooLong, "InfDir=Inf"});
    Folder().Remove("journal.txt");
    run = RunMorvix("/s /nr");
    EXPECT_TRUE(run.Traced("added section name: " + longest + "\n"));
    ExpectNothingFound(run);
}

TEST_F(BadIniRun, FormatCharactersAreTextLikeAnyOther)
{
    const std::string strange = "%s%n%s%x%08X%*d%1!s!";
    Folder().WriteSetupIni({"InfSectionName=" + strange + "," + kModelSection, "InfDir=" + strange, "InfDir=Inf",
                            "InfExclude=" + strange});
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.Count("infdirs: [" + Folder().At(strange + "\\") + "] [" + Folder().At("Inf\\") + "] \n"), 1u);
    EXPECT_EQ(run.Count(strange), 1u); // the excluded file
    EXPECT_TRUE(run.Traced("section names from ini: " + strange + "," + kModelSection + "\n"));
    ExpectInstalled();
}

TEST_F(BadIniRun, AnExcludedNameOf32767CharactersIsCutAndExcludesNothing)
{
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Inf",
                            "InfExclude=" + std::string(32767, 'x'), "InfExclude=one.inf"});
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, 0);
    ExpectInstalled();
}

TEST_F(BadIniRun, ADirectoryInItsPlaceIsAMissingFile)
{
    Folder().Remove("Morvix.ini");
    ASSERT_NE(CreateDirectoryA(Folder().At("Morvix.ini").c_str(), nullptr), FALSE);
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, -1);
    EXPECT_EQ(run.Count("ini file: " + Folder().At("Morvix.ini") + ", NOT FOUND\n"), 1u);
    EXPECT_EQ(run.Messages().back(), "error: SetLocationInfo() failed, exiting program\n");
}
} // namespace
