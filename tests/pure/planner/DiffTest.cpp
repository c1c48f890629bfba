#include "Diff.h"

#include <gmock/gmock.h>

#include "JsonCheck.h"
#include "KitOnDisk.h"
#include "Planner.h"

using testing::HasSubstr;

namespace {
/// Two kits of one INF each, and a machine with one card.
class DiffTest : public testing::Test
{
protected:
    DiffTest() : m_oldKit(PlaceOf(m_old), ProfileDialect::Windows), m_newKit(PlaceOf(m_new), ProfileDialect::Windows)
    {
        m_old.Write("Morvix.ini", SetupIni());
        m_new.Write("Morvix.ini", SetupIni());
    }

    MachineDiff Diff(const Machine& machine = MachineWithCards({kCard}))
    {
        return DiffOf(Planner(m_oldKit, {}).Plan(machine), Planner(m_newKit, {}).Plan(machine));
    }
    std::string Text(const MachineDiff& diff) const
    {
        return DiffText(diff, m_oldKit.Paths(), m_newKit.Paths(), TextStyle(false));
    }

    TestFolder m_old;
    TestFolder m_new;
    KitFolder m_oldKit;
    KitFolder m_newKit;
};

struct VersionRow
{
    std::string_view before;
    std::string_view after;
    DriverChange change;
};
} // namespace

TEST_F(DiffTest, ADriverIsComparedByVersionAndDate)
{
    const std::array rows = std::to_array<VersionRow>({
        {"10/01/2012,1.2.3.4", "10/01/2012,1.2.3.4", DriverChange::Same},
        {"10/01/2012,1.9.0.0", "10/01/2012,1.10.0.0", DriverChange::Newer},
        {"10/01/2012,2.0", "10/01/2013,1.0", DriverChange::Older},
        {"10/01/2012,1.0", "10/02/2012,1.0", DriverChange::Newer},
        {"%Ver%", "%Ver%", DriverChange::Same},
        {"%Ver%", "10/01/2012,1.0", DriverChange::Unknown},
    });
    for (const VersionRow& row : rows) {
        const TestFolder before;
        const TestFolder after;
        before.Write("Morvix.ini", SetupIni());
        after.Write("Morvix.ini", SetupIni());
        before.Write("Drv/a.inf", Inf({.driverVersion = std::string(row.before), .ids = {kCard}}));
        after.Write("Drv/b.inf", Inf({.driverVersion = std::string(row.after), .ids = {kCard}}));
        KitFolder oldKit(PlaceOf(before), ProfileDialect::Windows);
        KitFolder newKit(PlaceOf(after), ProfileDialect::Windows);
        const Machine machine = MachineWithCards({kCard});
        const MachineDiff diff = DiffOf(Planner(oldKit, {}).Plan(machine), Planner(newKit, {}).Plan(machine));
        EXPECT_EQ(row.change, diff.devices.front().change) << row.before << " " << row.after;
    }
}

TEST_F(DiffTest, ALostDriverIsNamedAndCounted)
{
    m_old.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    const MachineDiff diff = Diff();
    EXPECT_EQ(DriverChange::Lost, diff.devices.front().change);
    EXPECT_EQ(
        "PC7  PC7.reg  Win832E\n"
        "  lost     VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01\n"
        "           Drv/a.inf 10/01/2012,1.2.3.4 -> no driver\n",
        Text(diff));
    DiffSummary summary;
    summary.Add(diff);
    EXPECT_EQ("1 machine: 1 would lose a driver, 0 would change otherwise, 0 would stay as they are\n",
              SummaryText(summary));
}

TEST_F(DiffTest, AMachineThatCannotBePlannedIsCountedAsSuch)
{
    m_old.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    Machine machine = MachineWithCards({kCard});
    machine.refused = true;
    DiffSummary summary;
    summary.Add(Diff());
    summary.Add(Diff(machine));
    EXPECT_EQ(
        "2 machines: 1 would lose a driver, 0 would change otherwise, 0 would stay as they are, 1 could not be "
        "planned\n",
        SummaryText(summary));
    EXPECT_THAT(DiffJsonTail(summary), HasSubstr(R"("unknown":1)"));
}

TEST_F(DiffTest, AGainedDriverChangesTheMachineAndLosesNothing)
{
    m_new.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    const MachineDiff diff = Diff();
    EXPECT_TRUE(diff.Has(DriverChange::Gained));
    EXPECT_FALSE(diff.Has(DriverChange::Lost));
    EXPECT_TRUE(diff.Changes());
}

TEST_F(DiffTest, WhatStaysIsNotPrinted)
{
    m_old.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    m_new.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    EXPECT_EQ("", Text(Diff(MachineWithCards({kCard, kOtherCard}))));
}

TEST_F(DiffTest, AnotherInfFileOfTheSameVersionIsSaidWithTheResultThatChanges)
{
    m_old.Write("Drv/ngea.inf", Inf({.ids = {kCard, kOtherCard}}));
    m_new.Write("Drv/other.inf", Inf({.ids = {kCard}}));
    m_new.Write("Drv/NGEB.inf", Inf({.ids = {kOtherCard}}));
    const MachineDiff diff = Diff(MachineWithCards({kCard, kOtherCard}));
    EXPECT_EQ(
        "PC7  PC7.reg  Win832E\n"
        "  same     VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01\n"
        "           Drv/ngea.inf 10/01/2012,1.2.3.4 -> Drv/other.inf 10/01/2012,1.2.3.4\n"
        "           same version, other INF file; result value TAVG_PCIE_Install -> none\n"
        "  same     VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02\n"
        "           Drv/ngea.inf 10/01/2012,1.2.3.4 -> Drv/NGEB.inf 10/01/2012,1.2.3.4\n"
        "           same version, other INF file\n",
        Text(diff));
    EXPECT_TRUE(diff.Changes());
    EXPECT_FALSE(diff.Has(DriverChange::Lost));
    const std::string json = DiffJsonMachine(diff, m_oldKit.Paths(), m_newKit.Paths());
    EXPECT_EQ(R"("same")", MemberOf(json, "/devices/0/change"));
    EXPECT_EQ(R"("TAVG_PCIE_Install")", MemberOf(json, "/devices/0/old/result"));
    EXPECT_EQ("null", MemberOf(json, "/devices/0/new/result"));
    EXPECT_EQ("true", MemberOf(json, "/devices/0/otherInf"));
    EXPECT_EQ("true", MemberOf(json, "/devices/0/otherResult"));
    EXPECT_EQ("true", MemberOf(json, "/devices/1/otherInf"));
    EXPECT_EQ("false", MemberOf(json, "/devices/1/otherResult"));
}

TEST_F(DiffTest, TheResultOfANewerDriverIsSaidWhenItChanges)
{
    m_old.Write("Drv/ngea.inf", Inf({.ids = {kCard}}));
    m_new.Write("Drv/nf6a.inf", Inf({.driverVersion = "10/01/2012,1.3", .ids = {kCard}}));
    EXPECT_THAT(Text(Diff()), HasSubstr("  newer "));
    EXPECT_THAT(Text(Diff()), HasSubstr("\n           result value TAVG_PCIE_Install -> "));
}

TEST_F(DiffTest, APackageInAnotherFolderStaysTheSame)
{
    m_old.Write("Drv/ngea.inf", Inf({.ids = {kCard}}));
    m_new.Write("Morvix.ini", "[Win832E]\r\nInfSectionName=Norda.NTamd64\r\nInfDir=New\r\n");
    m_new.Write("New/NGEA.INF", Inf({.ids = {kCard}}));
    EXPECT_EQ("", Text(Diff()));
}

TEST_F(DiffTest, ARunThatNowEndsWithAFaultLosesTheDriversAfterIt)
{
    const std::string broken = "VEN_5D1A&DEV_1A2A&SUBSYS_00015D1A";
    m_old.Write("Drv/a.inf", Inf({.ids = {broken, kCard}}));
    m_new.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    const MachineDiff diff = Diff(MachineWithCards({broken, kCard}));
    EXPECT_EQ(MachineOutcome::Fault, diff.after);
    ASSERT_EQ(2U, diff.devices.size());
    EXPECT_EQ(DriverChange::Lost, diff.devices[0].change);
    EXPECT_EQ(DriverChange::Lost, diff.devices[1].change);
}

TEST_F(DiffTest, JsonNamesBothSides)
{
    m_old.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    const MachineDiff diff = Diff();
    DiffSummary summary;
    summary.Add(diff);
    const std::string json = DiffJsonHead(m_oldKit, m_newKit) +
                             DiffJsonMachine(diff, m_oldKit.Paths(), m_newKit.Paths()) + DiffJsonTail(summary);
    EXPECT_EQ(R"("morvix-diff/1")", MemberOf(json, "/schema"));
    EXPECT_EQ(R"("lost")", MemberOf(json, "/machines/0/devices/0/change"));
    EXPECT_EQ(R"("Drv/a.inf")", MemberOf(json, "/machines/0/devices/0/old/inf"));
    EXPECT_EQ("null", MemberOf(json, "/machines/0/devices/0/new"));
    EXPECT_EQ("1", MemberOf(json, "/summary/losing"));
}
