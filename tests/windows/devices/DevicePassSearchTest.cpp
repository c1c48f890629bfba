// The search within a walk: its passes and directories.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "DevicePassFixture.h"
#include "DevicePassState.h"

using testing::Contains;
using testing::Not;

TEST_F(DevicePass, FourPassesSearchEverShorterIdsAndThenGiveUp)
{
    InfKit kit({"Drv", "More"});
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    kit.Add("More", "another.inf", "VEN_5D1A&DEV_0001");
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kDevice) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kDevice));
    const std::array<std::string, 3> ids{"VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "VEN_5D1A&DEV_1A2B&REV_03",
                                         "VEN_5D1A&DEV_1A2B"};
    for (std::size_t index = 0; index < ids.size(); ++index) {
        Append(expected, {ids[index], "Pass " + std::to_string(index + 2)});
        Append(expected, SearchLines(trace, kit, ids[index]));
    }
    trace.Clear();
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
    std::vector<std::string> expected{"device: " + std::string(kWithoutRevision) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kWithoutRevision));
    Append(expected, {kWithoutRevision, "Pass 2"});
    Append(expected, SearchLines(trace, kit, kWithoutRevision));

    trace.Clear();
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
    std::vector<std::string> expected{"device: " + std::string(kLeadingSubSystem) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kLeadingSubSystem));
    Append(expected, {"&SUBSYS_00011A2B", "Pass 2"});
    for (int pass = 2; pass <= 4; ++pass) {
        Append(expected, SearchLines(trace, kit, "&SUBSYS_00011A2B"));
    }
    trace.Clear();
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
    std::vector<std::string> expected{"device: " + std::string(kLeadingRevision) + "\n"};
    Append(expected, ListLines(trace));
    for (int pass = 1; pass <= 3; ++pass) {
        Append(expected, SearchLines(trace, kit, kLeadingRevision));
    }
    Append(expected, {"&REV_03", "Pass 4"});
    Append(expected, SearchLines(trace, kit, "&REV_03"));
    trace.Clear();
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
