#include "DeviceSearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KeptAnswers.h"
#include "MemoryKit.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kIni[] = R"(C:\Kit\Morvix.ini)";

class DeviceSearch : public testing::Test
{
protected:
    DeviceSearch() { SetDirectories("InfDir=First\nInfDir=Second\n"); }
    void SetDirectories(const std::string& lines)
    {
        m_memory.kit.Add(kIni, "[Win732E]\nInfSectionName=Norda.NTamd64\n" + lines);
    }
    void Add(const std::string& path, const std::string& id) { m_memory.kit.Add("C:\\Kit\\" + path, InfThatLists(id)); }
    DeviceMatch Find(const std::string& device = kDevice) { return SearchForDevice(m_memory.Search(), device); }

    MemorySearch m_memory;
};
} // namespace

TEST_F(DeviceSearch, AMatchOfTheFirstPassNamesTheInf)
{
    Add("Second\\net.inf", kDevice);
    const DeviceMatch match = Find();
    EXPECT_EQ(match.verdict, SearchVerdict::Matched);
    EXPECT_EQ(match.pass, 1);
    EXPECT_EQ(match.infPath, R"(C:\Kit\Second\net.inf)");
    EXPECT_EQ(match.recordPath, R"(C:\KIT\SECOND\NET.INF)");
    EXPECT_FALSE(match.isDmaEngine);
    EXPECT_EQ(m_memory.log.lines.front(), "device: " + std::string(kDevice) + "\n");
    EXPECT_EQ(m_memory.log.lines.back(), "!!FOUND INF MATCH\n");
    EXPECT_EQ(TextIn(m_memory.deviceDescription), "Adapter " + std::string(kDevice));
}

TEST_F(DeviceSearch, FourPassesLookForEverShorterIdsInEveryDirectory)
{
    const DeviceMatch match = Find();
    EXPECT_EQ(match.verdict, SearchVerdict::NoInf);
    EXPECT_EQ(match.pass, 4);
    EXPECT_EQ(match.infPath, "");
    EXPECT_THAT(m_memory.log.passes,
                ElementsAre("1 VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03", "2 VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B",
                            "3 VEN_5D1A&DEV_1A2B&REV_03", "4 VEN_5D1A&DEV_1A2B"));
    EXPECT_EQ(std::ranges::count(m_memory.log.lines, "C:\\Kit\\First\\"), 4);
    EXPECT_EQ(std::ranges::count(m_memory.log.lines, "C:\\Kit\\Second\\"), 4);
    for (const char* line : {"VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "Pass 2", "VEN_5D1A&DEV_1A2B&REV_03", "Pass 3",
                             "VEN_5D1A&DEV_1A2B", "Pass 4"}) {
        EXPECT_EQ(std::ranges::count(m_memory.log.lines, line), 1) << line;
    }
    EXPECT_FALSE(m_memory.log.Said("Pass 1"));
    EXPECT_FALSE(m_memory.log.Said("!!FOUND INF MATCH\n"));
}

TEST_F(DeviceSearch, AnEarlierPassWinsOverAnEarlierDirectory)
{
    Add("First\\revision.inf", "VEN_5D1A&DEV_1A2B&REV_03");
    Add("Second\\board.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    const DeviceMatch match = Find();
    EXPECT_EQ(match.infPath, R"(C:\Kit\Second\board.inf)");
    EXPECT_EQ(match.pass, 2);
    EXPECT_FALSE(m_memory.log.Said("Pass 3"));
}

TEST_F(DeviceSearch, WithinAPassTheEarlierDirectoryWins)
{
    SetDirectories("InfDir=Second\nInfDir=First\n");
    Add("First\\a.inf", kDevice);
    Add("Second\\b.inf", kDevice);
    EXPECT_EQ(Find().infPath, R"(C:\Kit\Second\b.inf)");
    EXPECT_FALSE(m_memory.log.Said("C:\\Kit\\First\\"));
}

TEST_F(DeviceSearch, ExcludedFilesAreLeftOut)
{
    SetDirectories("InfDir=First\nInfExclude=a.inf\n");
    Add("First\\a.inf", kDevice);
    EXPECT_EQ(Find().verdict, SearchVerdict::NoInf);
}

TEST_F(DeviceSearch, ASkippedPassRepeatsTheSearchWithoutALabel)
{
    EXPECT_EQ(Find("&REV_03").verdict, SearchVerdict::NoInf);
    EXPECT_THAT(m_memory.log.passes, ElementsAre("1 &REV_03", "2 &REV_03", "3 &REV_03", "4 &REV_03"));
    EXPECT_FALSE(m_memory.log.Said("Pass 2"));
    EXPECT_FALSE(m_memory.log.Said("Pass 3"));
    EXPECT_TRUE(m_memory.log.Said("Pass 4"));
}

TEST_F(DeviceSearch, ASubSystemWithoutARevisionEndsInAFaultBeforeItsThirdPass)
{
    const DeviceMatch match = Find("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    EXPECT_EQ(match.verdict, SearchVerdict::Fault);
    EXPECT_EQ(match.pass, 3);
    EXPECT_THAT(m_memory.log.passes,
                ElementsAre("1 VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "2 VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B"));
    EXPECT_FALSE(m_memory.log.Said("Pass 3"));
}

TEST_F(DeviceSearch, ASubSystemWithoutARevisionThatIsListedIsNotAFault)
{
    Add("First\\a.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    EXPECT_EQ(Find("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B").verdict, SearchVerdict::Matched);
}

TEST_F(DeviceSearch, TheDmaEngineInfIsRecognisedInAnyLetterCaseAndAnywhereInThePath)
{
    for (const char* path : {"First\\qdatdma.inf", "First\\QdatDma.inf", "First\\xqdatdma.infx.inf"}) {
        m_memory.kit.files.clear();
        SetDirectories("InfDir=First\n");
        Add(path, kDevice);
        EXPECT_TRUE(Find().isDmaEngine) << path;
        EXPECT_EQ(m_memory.log.lines.back(), "QDATINSTALLED\n") << path;
    }
}

TEST_F(DeviceSearch, APathOf256CharactersDoesNotFitIntoTheRecord)
{
    const std::string directory = R"(C:\Kit\First\)";
    for (const std::size_t length : {254U, 255U, 256U, 300U}) {
        m_memory.kit.files.clear();
        SetDirectories("InfDir=First\n");
        const std::string name = std::string(length - directory.size() - 11, 'n') + "qdatdma.inf";
        Add("First\\" + name, kDevice);
        const DeviceMatch match = Find();
        EXPECT_EQ(match.infPath.size(), length);
        EXPECT_EQ(match.recordPath.size(), length < 256 ? length : 0);
        EXPECT_EQ(match.isDmaEngine, length < 256) << "the record's path counts";
    }
}

TEST_F(DeviceSearch, SecondBytesOfTwoByteCharactersStayInTheRecordsPath)
{
    SetDirectories("InfDir=First\n");
    Add("First\\\x83z.inf", kDevice);
    KitSearch search = m_memory.Search();
    search.isLeadByte = [](unsigned char byte) { return byte == 0x83; };
    EXPECT_EQ(SearchForDevice(search, kDevice).recordPath, "C:\\KIT\\FIRST\\\x83z.INF");
}

TEST_F(DeviceSearch, EachDeviceAsksAgainForWhatTheOneBeforeDidNotFind)
{
    Add("First\\a.inf", "VEN_5D1A&DEV_0000");
    KeptAnswers answers(m_memory.kit);
    const KitSearch search = m_memory.Over(answers);
    EXPECT_EQ(SearchForDevice(search, kDevice).verdict, SearchVerdict::NoInf);
    // As if the file could not be read before: its size and time are the same.
    m_memory.kit.files[R"(C:\Kit\First\a.inf)"].text = InfThatLists(kDevice);
    EXPECT_EQ(SearchForDevice(search, kDevice).verdict, SearchVerdict::NoInf) << "what was read is kept";
    m_memory.kit.files[R"(C:\Kit\First\a.inf)"].stamp.bytes = 2;
    EXPECT_EQ(SearchForDevice(search, kDevice).verdict, SearchVerdict::Matched);
}

TEST_F(DeviceSearch, ASectionThatCouldNotBeReadForOneDeviceIsReadForTheNext)
{
    const std::string inf = R"(C:\Kit\First\a.inf)";
    SetDirectories("InfDir=First\n");
    Add("First\\a.inf", kDevice);
    KeptAnswers answers(m_memory.kit);
    const KitSearch search = m_memory.Over(answers);
    EXPECT_TRUE(answers.MarkOf(inf).read);
    m_memory.kit.files[inf].readable = false;
    EXPECT_EQ(SearchForDevice(search, kDevice).verdict, SearchVerdict::NoInf);
    m_memory.kit.files[inf].readable = true;
    EXPECT_EQ(SearchForDevice(search, kDevice).verdict, SearchVerdict::Matched);
}

TEST_F(DeviceSearch, KeptAnswersChangeNeitherTraceNorResult)
{
    Add("First\\a.inf", "VEN_5D1A&DEV_0000");
    Add("First\\b.inf", "VEN_5D1A&DEV_1A2B");
    m_memory.kit.Add("C:\\Kit\\Second\\c.inf", "[Version]\nSignature=other\n");
    MemorySearch plain;
    plain.kit = m_memory.kit;
    KeptAnswers answers(m_memory.kit);
    const KitSearch kept = m_memory.Over(answers);
    const KitSearch asked = plain.Search();
    for (const char* device : {kDevice, "VEN_5D1A&DEV_9999&REV_01", kDevice, ""}) {
        EXPECT_EQ(SearchForDevice(kept, device).infPath, SearchForDevice(asked, device).infPath);
    }
    EXPECT_EQ(m_memory.log.lines, plain.log.lines);
    EXPECT_EQ(m_memory.log.stored, plain.log.stored);
    EXPECT_EQ(m_memory.log.judged, plain.log.judged);
    EXPECT_EQ(m_memory.deviceDescription, plain.deviceDescription);
    EXPECT_LT(m_memory.kit.profileReads, plain.kit.profileReads / 2);
}
