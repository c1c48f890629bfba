#include "FleetReport.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "FleetPlans.h"
#include "FleetVerdict.h"
#include "OSCode.h"
#include "SystemNames.h"

namespace {
class FleetReportTest : public testing::Test
{
protected:
    std::string Verdict() const { return VerdictOf(m_report).sentence; }

    MachinePaths m_paths{"kit", R"(C:\Kit)", {}};
    FleetReport m_report{m_paths};
};

MachinePlan Ended(std::string name, MachineOutcome outcome)
{
    MachinePlan plan = PlanOf(std::move(name), {});
    plan.outcome = outcome;
    plan.problem = "the reason";
    return plan;
}
} // namespace

TEST_F(FleetReportTest, MachinesWithTheSameSystemAndDevicesAreOneGroup)
{
    m_report.Add(PlanOf("A", {Device(kCard, Found("a.inf")), Device(kOtherCard, Found("b.inf"))}));
    // In another order, and found by another search.
    m_report.Add(PlanOf("B", {Device(kOtherCard, Found("b.inf")), Device(kCard, Found("a.inf"))}));
    m_report.Add(PlanOf("C", {Device(kCard, Found("a.inf"))}));
    m_report.Add(PlanOf("D", {Device(kCard, Found("a.inf"))}, "Win832E"));
    m_report.Finish();
    ASSERT_EQ(3U, m_report.Groups().size());
    EXPECT_EQ(2U, m_report.Groups()[0].machines.size());
    EXPECT_EQ("B", m_report.Groups()[0].machines[1].name);
    EXPECT_EQ("fleet/B.reg", m_report.Groups()[0].machines[1].source);
    ASSERT_EQ(3U, m_report.Trails().size());
    EXPECT_EQ(3U, m_report.Trails()[0].machines);
}

TEST_F(FleetReportTest, OtherAnswersAreOtherGroups)
{
    MachinePlan absent = PlanOf("B", {Device(kCard, Found("a.inf"))});
    absent.devices.front().presence = Presence::Absent;
    MachinePlan assumed = PlanOf("C", {Device(kCard, Found("a.inf"))});
    assumed.system.from = "option";
    MachinePlan leaves = PlanOf("D", {Device(kCard, Found("a.inf"))});
    leaves.rejected = {{.key = "VEN_5D1A&DEV_9999", .verdict = DeviceVerdict::NoInstance}};
    m_report.Add(PlanOf("A", {Device(kCard, Found("a.inf"))}));
    m_report.Add(absent);
    m_report.Add(assumed);
    m_report.Add(leaves);
    m_report.Add(PlanOf("E", {Device(kCard, Found("other.inf"))}));
    EXPECT_EQ(5U, m_report.Groups().size());
    EXPECT_EQ(2U, m_report.Trails().size());
}

TEST_F(FleetReportTest, DevicesOfOtherMakersMakeNoGroup)
{
    MachinePlan other = PlanOf("B", {Device(kCard, Found("a.inf"))});
    other.rejected = {{.key = "VEN_1234&DEV_0001", .verdict = DeviceVerdict::OtherVendor}};
    m_report.Add(PlanOf("A", {Device(kCard, Found("a.inf"))}));
    m_report.Add(other);
    EXPECT_EQ(1U, m_report.Groups().size());
}

TEST_F(FleetReportTest, TextsThatRunIntoEachOtherStayApart)
{
    MachinePlan one = Ended("A", MachineOutcome::NotServed);
    MachinePlan other = Ended("B", MachineOutcome::NotServed);
    one.system.section = "ab";
    one.system.family = "c";
    other.system.section = "a";
    other.system.family = "bc";
    m_report.Add(one);
    m_report.Add(other);
    EXPECT_EQ(2U, m_report.Groups().size());
}

TEST_F(FleetReportTest, WhatNeedsSomebodyComesFirst)
{
    SearchOutcome failing = Found("a.inf");
    failing.report->copiedFile.reset();
    MachinePlan breaking = PlanOf("BREAKS", {Device(kCard, NotFound())});
    breaking.outcome = MachineOutcome::Fault;
    MachineDiff diff;
    diff.devices = {
        {.key = kCard, .change = DriverChange::Lost, .before = Found("old.inf").match, .after = std::nullopt}};
    m_report.Add(PlanOf("NONE", {}));
    m_report.Add(PlanOf("ALL", {Device(kCard, Found("a.inf"))}));
    m_report.Add(PlanOf("DOUBT", {Device(kCard, failing)}));
    m_report.Add(Ended("REFUSED", MachineOutcome::NotServed));
    m_report.Add(PlanOf("LACKS", {Device(kCard, Found("a.inf")), Device(kOtherCard, NotFound())}));
    m_report.Add(breaking);
    m_report.Add(PlanOf("LOSES", {Device(kCard, NotFound())}), diff, m_paths);
    m_report.Finish();
    std::vector<std::string> names;
    for (const FleetGroup& group : m_report.Groups()) {
        names.push_back(group.machines.front().name);
    }
    const std::vector<std::string> expected{"LOSES", "BREAKS", "LACKS", "REFUSED", "DOUBT", "ALL", "NONE"};
    EXPECT_EQ(expected, names);
    ASSERT_EQ(1U, m_report.Groups().front().lost.size());
    EXPECT_EQ("Drv/old.inf 10/01/2012,1.2.3.4", m_report.Groups().front().lost.front().driver);
    EXPECT_EQ(
        "Of 7 machines, 1 loses a driver, 1 has a run that breaks off, 1 lacks a driver, 1 is refused by the "
        "installer, and 1 has a doubtful result; the other 2 get a driver for every adapter.",
        Verdict());
}

TEST_F(FleetReportTest, LargeGroupsComeBeforeSmallOnes)
{
    m_report.Add(PlanOf("A", {Device(kCard, Found("a.inf"))}));
    m_report.Add(PlanOf("B", {Device(kOtherCard, Found("b.inf"))}));
    m_report.Add(PlanOf("C", {Device(kOtherCard, Found("b.inf"))}));
    m_report.Finish();
    EXPECT_EQ("B", m_report.Groups().front().machines.front().name);
}

TEST_F(FleetReportTest, MachinesWithoutAnAnswerAreNamedAndInNoGroup)
{
    MachinePlan unreadable = Ended("A", MachineOutcome::Unreadable);
    unreadable.diagnostics = {
        {.severity = Severity::Error, .source = "A.reg", .line = 7, .what = "cut off", .cure = "export it again"}};
    m_report.Add(unreadable);
    m_report.Add(Ended("B", MachineOutcome::UnknownSystem));
    m_report.AddUnreadable({.severity = Severity::Error, .source = "C.reg", .line = 0, .what = "missing", .cure = {}});
    EXPECT_EQ(3U, m_report.Machines());
    EXPECT_TRUE(m_report.Groups().empty());
    ASSERT_EQ(3U, m_report.Unknown().size());
    EXPECT_EQ("cut off", m_report.Unknown().front().reasons.front().what);
    EXPECT_EQ("Of 3 machines, 3 could not be read.", Verdict());
}

TEST_F(FleetReportTest, TheSameRemarkIsMadeOnce)
{
    for (const char* const name : {"A", "B"}) {
        MachinePlan plan = PlanOf(name, {});
        plan.diagnostics = {
            {.severity = Severity::Warning, .source = name, .line = 0, .what = "was not closed", .cure = "close it"}};
        m_report.Add(plan);
    }
    ASSERT_EQ(1U, m_report.Remarks().size());
    EXPECT_EQ((std::vector<std::string>{"A", "B"}), m_report.Remarks().front().sources);
}

TEST_F(FleetReportTest, TheVerdictIsOneSentence)
{
    EXPECT_EQ("No machine was found.", Verdict());
    m_report.Add(PlanOf("A", {}));
    EXPECT_EQ("The machine has no adapter that Morvix serves.", Verdict());
    m_report.Add(PlanOf("B", {Device(kCard, Found("a.inf"))}));
    EXPECT_EQ("All 2 machines get a driver for every adapter.", Verdict());
    EXPECT_EQ(FleetMark::Good, VerdictOf(m_report).mark);
    m_report.AddUnreadable({.severity = Severity::Error, .source = "C", .line = 0, .what = {}, .cure = {}});
    EXPECT_EQ("Of 3 machines, 1 could not be read; the other 2 get a driver for every adapter.", Verdict());
    EXPECT_EQ(FleetMark::Doubtful, VerdictOf(m_report).mark);
    m_report.Add(PlanOf("D", {Device(kCard, NotFound())}));
    EXPECT_EQ("Of 4 machines, 1 lacks a driver and 1 could not be read; the other 2 get a driver for every adapter.",
              Verdict());
    EXPECT_EQ(FleetMark::Bad, VerdictOf(m_report).mark);
}

TEST_F(FleetReportTest, GroupsBeyondTheLimitsAreFoldedByStateAndSystem)
{
    const auto card = [](int number) {
        return "VEN_5D1A&DEV_1A2B&SUBSYS_0000" + std::to_string(1000 + number) + "&REV_01";
    };
    for (int number = 0; number < 8; ++number) {
        m_report.Add(PlanOf("M" + std::to_string(number),
                            {Device(card(number), number == 5 ? NotFound() : Found("ngea.inf"))},
                            number < 7 ? "Win732E" : "Win832E"));
    }
    m_report.Finish({.groups = 2, .trails = 100});
    const std::vector<FleetGroup>& groups = m_report.Groups();
    ASSERT_EQ(4U, groups.size());
    EXPECT_EQ(FleetState::Lacks, groups[0].state);
    EXPECT_EQ("M5", groups[0].machines.at(0).name);
    EXPECT_EQ(0U, groups[1].folded);
    EXPECT_EQ(5U, groups[2].folded);
    EXPECT_EQ(5U, groups[2].machines.size());
    EXPECT_EQ(5U, groups[2].unknownPresences);
    EXPECT_TRUE(groups[2].devices.empty());
    EXPECT_EQ("Win832E", groups[3].system.section);
    EXPECT_EQ(6U, m_report.FoldedMachines());
    EXPECT_EQ(7U, m_report.Machines(FleetState::Served));
    ASSERT_EQ(2U, m_report.Trails().size());
    EXPECT_EQ(card(5), m_report.Trails()[groups[0].devices.at(0).trail].device.key);
    EXPECT_EQ(1U, m_report.Trails()[1].machines);
}

TEST_F(FleetReportTest, TheDevicesOfTheShownGroupsHaveALimitToo)
{
    for (int number = 0; number < 4; ++number) {
        const std::string revision = "&REV_0" + std::to_string(number);
        m_report.Add(PlanOf("M" + std::to_string(number), {Device("VEN_5D1A&DEV_1A2B" + revision, Found("ngea.inf")),
                                                           Device("VEN_5D1A&DEV_1A2C" + revision, Found("ngea.inf"))}));
    }
    m_report.Finish({.groups = 100, .trails = 5});
    EXPECT_EQ(3U, m_report.Groups().size());
    EXPECT_EQ(4U, m_report.Trails().size());
    EXPECT_EQ(2U, m_report.FoldedMachines());
}

TEST(SystemNames, EverySystemHasANameForPeople)
{
    for (const SystemRow& row : kSystems) {
        if (!row.sectionKey.empty()) {
            EXPECT_NE(row.sectionKey, NameOfSystem(row.sectionKey));
        }
    }
    EXPECT_EQ("Windows 7 x64", NameOfSystem("Win732E"));
    EXPECT_EQ("Other", NameOfSystem("Other"));
}
