// The search within a walk: its passes and directories.

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "DevicePassFixture.h"
#include "DevicePassState.h"

using testing::Contains;
using testing::Not;

namespace {
/// One search of the directories for an ID.
struct Search
{
    std::string id;
    int pass = 0; ///< whose title comes before it; 0 for a search without one
};

/// What a pass traces of one device. The trace is empty afterwards.
std::vector<std::string> DeviceLines(TraceCapture& trace, InfKit& kit, const std::vector<Search>& searches)
{
    std::vector<std::string> lines{"device: " + searches.front().id + "\n"};
    Append(lines, ListLines(trace));
    for (const Search& search : searches) {
        if (search.pass != 0) {
            Append(lines, {search.id, "Pass " + std::to_string(search.pass)});
        }
        Append(lines, SearchLines(trace, kit, search.id));
    }
    trace.Clear();
    return lines;
}
} // namespace

TEST_F(DevicePass, FourPassesSearchEverShorterIdsAndThenGiveUp)
{
    InfKit kit({"Drv", "More"});
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    kit.Add("More", "another.inf", "VEN_5D1A&DEV_0001");
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    const std::vector<std::string> expected = DeviceLines(trace, kit,
                                                          {{.id = kDevice},
                                                           {.id = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", .pass = 2},
                                                           {.id = "VEN_5D1A&DEV_1A2B&REV_03", .pass = 3},
                                                           {.id = "VEN_5D1A&DEV_1A2B", .pass = 4}});
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kDevice, expected));
    EXPECT_FALSE(DevicePassState.deviceMatched);
    EXPECT_TRUE(m_install.calls.empty());
}

TEST_F(DevicePass, AMatchOfALaterPassKeepsTheFullIdInTheRecord)
{
    for (const char* listed : {"VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "VEN_5D1A&DEV_1A2B&REV_03", "VEN_5D1A&DEV_1A2B"}) {
        InfKit kit;
        const std::string inf = kit.Add("Drv", "other.inf", listed);
        const SimulatedDevice device(kDevice);
        m_install.calls.clear();
        EXPECT_EQ(Run(), 0U) << listed;
        ASSERT_EQ(m_install.calls.size(), 1U) << listed;
        EXPECT_EQ(m_install.calls[0].hardwareId, "PCI\\" + std::string(kDevice)) << listed;
        EXPECT_EQ(TextIn(m_record.hardwareId), "PCI\\" + std::string(kDevice)) << listed;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf)) << listed;
    }
}

TEST_F(DevicePass, AMatchEndsTheSearchBeforeLaterPassesAndDirectories)
{
    InfKit kit({"Drv", "More"});
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_1A2B&REV_03");
    const std::string better = kit.Add("More", "another.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(better)) << "pass 2 comes before pass 3, whatever the directory";
    EXPECT_THAT(trace.Messages(), Contains("Pass 2"));
    EXPECT_THAT(trace.Messages(), Not(Contains("Pass 3")));
}

TEST_F(DevicePass, TheEarlierOfTwoDirectoriesThatListTheDeviceWins)
{
    InfKit kit({"Second", "First"});
    const std::string winner = kit.Add("Second", "other.inf", kDevice);
    kit.Add("First", "another.inf", kDevice);
    const SimulatedDevice device(kDevice);
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(winner));
}

TEST_F(DevicePass, WithinADirectoryTheFirstInfOfTheDirectorySearchWins)
{
    InfKit kit;
    kit.Add("Drv", "aaa.inf", kDevice);
    kit.Add("Drv", "bbb.inf", kDevice);
    WIN32_FIND_DATAA first{};
    const HANDLE search = FindFirstFileA((kit.SearchDirectories().front() + "*.inf").c_str(), &first);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    FindClose(search);
    const SimulatedDevice device(kDevice);
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(kit.SearchDirectories().front() + first.cFileName));
}

TEST_F(DevicePass, TheDmaEngineInfIsRecognisedInAnyLetterCase)
{
    for (const char* name : {"qdatdma.inf", "QDATDMA.INF", "QdatDma.inf"}) {
        InfKit kit;
        const std::string inf = kit.Add("Drv", name, kDevice);
        const SimulatedDevice device(kDevice);
        TraceCapture trace;
        EXPECT_EQ(Run(), 0U) << name;
        EXPECT_TRUE(DevicePassState.qdatInstalled) << name;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf)) << name;
        const std::vector<std::string> messages = trace.Messages();
        const auto match = std::ranges::find(messages, "!!FOUND INF MATCH\n");
        ASSERT_LT(match + 1, messages.end()) << name;
        EXPECT_EQ(*(match + 1), "QDATINSTALLED\n") << name;
    }
}

TEST_F(DevicePass, ADeviceWithoutRevisionRepeatsItsNameInPassTwoAndThenLeavesTheWalk)
{
    constexpr char kWithoutRevision[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kWithoutRevision);
    TraceCapture trace;
    const std::vector<std::string> expected =
        DeviceLines(trace, kit, {{.id = kWithoutRevision}, {.id = kWithoutRevision, .pass = 2}});
    EXPECT_THROW(Run(), std::out_of_range);
    std::vector<std::string> whole = WholePass(kWithoutRevision, expected);
    std::vector<std::string> messages = trace.Messages();
    ASSERT_GE(messages.size(), expected.size());
    // The walk ends in the middle, without its closing lines.
    EXPECT_EQ(std::vector(messages.end() - static_cast<std::ptrdiff_t>(expected.size()), messages.end()), expected);
    EXPECT_TRUE(std::equal(messages.begin(), messages.end(), whole.begin()));
}

TEST_F(DevicePass, ADeviceWithoutRevisionThatItsFullNameMatchesIsInstalled)
{
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    const SimulatedDevice device("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(m_install.calls.size(), 1U);
}

TEST_F(DevicePass, AMarkerAtTheStartSkipsPassesWithoutATraceAndRepeatsTheSearch)
{
    constexpr char kLeadingSubSystem[] = "&SUBSYS_00011A2B&REV_03";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kLeadingSubSystem);
    TraceCapture trace;
    const Search again{.id = "&SUBSYS_00011A2B"};
    const std::vector<std::string> expected =
        DeviceLines(trace, kit, {{.id = kLeadingSubSystem}, {.id = again.id, .pass = 2}, again, again});
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kLeadingSubSystem, expected));
}

TEST_F(DevicePass, ALeadingRevisionSkipsTheSecondAndThirdPass)
{
    constexpr char kLeadingRevision[] = "&REV_03&SUBSYS_00011A2B";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kLeadingRevision);
    TraceCapture trace;
    const Search whole{.id = kLeadingRevision};
    const std::vector<std::string> expected =
        DeviceLines(trace, kit, {whole, whole, whole, {.id = "&REV_03", .pass = 4}});
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kLeadingRevision, expected));
}

TEST_F(DevicePass, TheDmaEngineMarkCountsAnywhereInThePath)
{
    const SimulatedDevice device(kDevice);
    for (const auto& [directory, file] : {std::pair("qdatdma.info", "other.inf"), std::pair("Drv", "my qdatdma.inf"),
                                          std::pair("Drv", "qdatdma.inf.inf")}) {
        InfKit kit({directory});
        const std::string inf = kit.Add(directory, file, kDevice);
        EXPECT_EQ(Run(), 0U) << inf;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf));
        EXPECT_TRUE(DevicePassState.qdatInstalled) << inf;
    }
    InfKit kit;
    kit.Add("Drv", "qdatdma2.inf", kDevice);
    EXPECT_EQ(Run(), 0U);
    EXPECT_FALSE(DevicePassState.qdatInstalled);
}
