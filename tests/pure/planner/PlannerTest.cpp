#include "Planner.h"

#include <gtest/gtest.h>

#include "JsonCheck.h"
#include "KitOnDisk.h"
#include "PlanJson.h"

namespace {
/// A kit in a folder, and what is planned with it.
class PlannerTest : public testing::Test
{
protected:
    MachinePlan Plan(const Machine& machine, PlanWish wish = {})
    {
        m_kit = std::make_unique<KitFolder>(PlaceOf(m_folder), ProfileDialect::Windows);
        return Planner(*m_kit, std::move(wish)).Plan(machine);
    }

    static std::string PassedOver(const SearchOutcome& search)
    {
        std::string over;
        for (const JudgedInf& judged : search.passedOver) {
            over += std::string(FileNameIn(search.infs[judged.inf])) + "=" + std::string(NameOf(judged.verdict)) + " ";
        }
        return over;
    }

    TestFolder m_folder;
    std::unique_ptr<KitFolder> m_kit;
};

std::string Names(const std::vector<std::string>& names)
{
    std::string all;
    for (const std::string& name : names) {
        all += name + " ";
    }
    return all;
}
} // namespace

TEST_F(PlannerTest, NamesFileLinePassAndSectionOfTheMatch)
{
    m_folder.Write("Morvix.ini", SetupIni());
    m_folder.Write("Drv/ngea63.inf", Inf({.ids = {"VEN_5D1A&DEV_1B3C", "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A"}}));
    const MachinePlan plan = Plan(MachineWithCards({kCard}));
    ASSERT_EQ(MachineOutcome::Done, plan.outcome);
    ASSERT_EQ(1U, plan.devices.size());
    EXPECT_EQ(kServedId, plan.devices[0].acceptedBy);
    EXPECT_EQ(Presence::Unknown, plan.devices[0].presence);
    const Match& match = plan.devices[0].search->match.value();
    EXPECT_EQ(R"(C:\Kit\Drv\ngea63.inf)", match.inf);
    EXPECT_EQ(R"(C:\KIT\DRV\NGEA63.INF)", match.recordPath);
    EXPECT_EQ(8U, match.line);
    EXPECT_EQ(1U, match.column);
    EXPECT_EQ(2, match.pass);
    EXPECT_EQ("VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A", match.searchId);
    EXPECT_EQ("Norda.NTamd64", match.modelSection);
    EXPECT_EQ("Norda test adapter", match.description);
    EXPECT_EQ("10/01/2012,1.2.3.4", match.driverVersion);
}

TEST_F(PlannerTest, TheLineOfAMatchIsTheOneThatTheSearchFoundAndNoComment)
{
    const std::string copies =
        "[Old.ndi.NT]\r\nCopyFiles=Old\r\n[Old]\r\nother.sys\r\n[Nic.ndi.NT]\r\nCopyFiles=New\r\n[New]\r\n"
        "NGEA.sys\r\n[DestinationDirs]\r\nDefaultDestDir = 12\r\n";
    m_folder.Write("Morvix.ini", SetupIni());
    m_folder.Write("Drv/ngea63.inf",
                   Inf({.before = std::string(";%Nic% = Old.ndi, PCI\\") + kCard + "\r\n \r\nno value\r\n",
                        .ids = {kOtherCard, kCard},
                        .more = copies}));
    const MachinePlan plan = Plan(MachineWithCards({kCard}));
    EXPECT_EQ(11U, plan.devices[0].search->match.value().line);
    EXPECT_EQ("NGEA.sys", plan.devices[0].search->report.value().copiedFile);
}

TEST_F(PlannerTest, EachPassFindsTheIdThatBelongsToIt)
{
    const std::array<std::string, 4> ids{kCard, "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A", "VEN_5D1A&DEV_1A2B&REV_01",
                                         "VEN_5D1A&DEV_1A2B"};
    for (std::size_t pass = 0; pass < ids.size(); ++pass) {
        m_folder.Write("Morvix.ini", SetupIni());
        m_folder.Write("Drv/ngea63.inf", Inf({.ids = {ids[pass]}}));
        const MachinePlan plan = Plan(MachineWithCards({kCard}));
        ASSERT_TRUE(plan.devices[0].search->match) << pass;
        EXPECT_EQ(static_cast<int>(pass) + 1, plan.devices[0].search->match->pass);
        EXPECT_EQ(pass + 1, plan.devices[0].search->passes.size());
    }
}

TEST_F(PlannerTest, EachInfPassedOverHasItsReasonOnce)
{
    m_folder.Write("Morvix.ini", SetupIni("InfExclude=b.inf\r\n"));
    m_folder.Write("Drv/a.inf", Inf({.ids = {"VEN_5D1A&DEV_FFFF"}}));
    m_folder.Write("Drv/b.inf", Inf({.ids = {kCard}}));
    m_folder.Write("Drv/c.inf", Inf({.signature = "$Chicago$", .ids = {kCard}}));
    m_folder.Write("Drv/d.inf", Inf({.manufacturer = "x=Someone", .ids = {kCard}}));
    m_folder.Write("Drv/ngea63.inf", Inf({.ids = {"VEN_5D1A&DEV_1A2B"}}));
    m_folder.Write("Drv/z.inf", Inf({.ids = {kOtherCard}}));
    const MachinePlan plan = Plan(MachineWithCards({kCard}));
    EXPECT_EQ(4, plan.devices[0].search->match.value().pass);
    EXPECT_EQ("a.inf=not-listed b.inf=excluded c.inf=other-signature d.inf=other-brand z.inf=not-listed ",
              PassedOver(*plan.devices[0].search));
}

TEST_F(PlannerTest, ScanAllSearchesWhatTheKitLeavesOut)
{
    m_folder.Write("Morvix.ini", SetupIni("InfExclude=b.inf\r\n"));
    m_folder.Write("Drv/b.inf", Inf({.ids = {kCard}}));
    const Machine machine = MachineWithCards({kCard});
    EXPECT_FALSE(Plan(machine).devices[0].search->match);
    EXPECT_TRUE(Plan(machine, {.system = {}, .scanAll = true}).devices[0].search->match);
}

TEST_F(PlannerTest, EachInfThatQualifiesGoesToTheDriverStoreOncePerRunAndName)
{
    m_folder.Write("Morvix.ini", SetupIni("InfDir=More\r\n"));
    m_folder.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    m_folder.Write("Drv/b.inf", Inf({}));
    m_folder.Write("More/B.INF", Inf({.ids = {kOtherCard}}));
    m_folder.Write("More/c.inf", Inf({.signature = "$Chicago$"}));
    const MachinePlan plan = Plan(MachineWithCards({kCard, kOtherCard, "VEN_5D1A&DEV_0001&SUBSYS_0&REV_01"}));
    ASSERT_EQ(3U, plan.devices.size());
    EXPECT_EQ("a.inf ", Names(plan.devices[0].store->now));
    EXPECT_EQ("b.inf ", Names(plan.devices[1].store->now));
    EXPECT_EQ("", Names(plan.devices[2].store->now));
    EXPECT_EQ(SearchVerdict::NoInf, plan.devices[2].search->verdict);
}

TEST_F(PlannerTest, DevicesForWhichNothingIsStoredShareTheListOfTheDeviceBefore)
{
    m_folder.Write("Morvix.ini", SetupIni(""));
    m_folder.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    m_folder.Write("Drv/b.inf", Inf({.ids = {kOtherCard}}));
    const MachinePlan plan = Plan(MachineWithCards({kCard, kCard, kOtherCard}));
    ASSERT_EQ(3U, plan.devices.size());
    EXPECT_EQ(plan.devices[0].store->all, plan.devices[1].store->all);
    EXPECT_EQ("a.inf ", Names(*plan.devices[1].store->all));
    EXPECT_EQ("a.inf b.inf ", Names(*plan.devices[2].store->all));
}

TEST_F(PlannerTest, ARunWithATraceStoresTheSame)
{
    m_folder.Write("Morvix.ini", SetupIni("InfDir=More\r\n"));
    m_folder.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    m_folder.Write("Drv/b.inf", Inf({}));
    m_folder.Write("More/B.INF", Inf({.ids = {kOtherCard}}));
    const Machine machine = MachineWithCards({kCard, kOtherCard});
    KitFolder kit(PlaceOf(m_folder), ProfileDialect::Windows);
    Planner planner(kit, {});
    std::string trace;
    EXPECT_EQ(PlanJsonMachine(planner.Plan(machine), kit.Paths()),
              PlanJsonMachine(planner.Plan(machine, &trace), kit.Paths()));
}

TEST_F(PlannerTest, ADeviceThatIsNotServedSaysWhy)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine = MachineWith({{"VEN_8086&DEV_1", {R"(PCI\VEN_8086&CC_020000)"}}, {"VEN_5D1A&DEV_2", {}}});
    machine.devices->push_back({.name = "VEN_5D1A&DEV_3", .instances = {}});
    machine.devices->push_back({.name = "VEN_5D1A&DEV_4", .instances = {PciInstance{}}});
    const MachinePlan plan = Plan(machine);
    EXPECT_TRUE(plan.devices.empty());
    std::string reasons;
    for (const RejectedDevice& device : plan.rejected) {
        reasons += device.key + "=" + std::string(NameOf(device.verdict)) + " ";
    }
    EXPECT_EQ(
        "VEN_8086&DEV_1=other-device VEN_5D1A&DEV_2=other-device VEN_5D1A&DEV_3=no-instance "
        "VEN_5D1A&DEV_4=no-compatible-ids ",
        reasons);
}

TEST_F(PlannerTest, AKeyNameWithoutRevisionEndsTheRunUnlessAnEarlierPassFindsAnInf)
{
    const std::string broken = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A";
    const Machine machine = MachineWithCards({broken, kOtherCard});
    m_folder.Write("Morvix.ini", SetupIni());
    m_folder.Write("Drv/a.inf", Inf({.ids = {kOtherCard}}));
    MachinePlan plan = Plan(machine);
    EXPECT_EQ(MachineOutcome::Fault, plan.outcome);
    ASSERT_EQ(1U, plan.devices.size());
    EXPECT_EQ(SearchVerdict::Fault, plan.devices[0].search->verdict);
    EXPECT_EQ(1U, plan.notReached);

    m_folder.Write("Drv/b.inf", Inf({.ids = {broken}}));
    plan = Plan(machine);
    EXPECT_EQ(MachineOutcome::Done, plan.outcome);
    EXPECT_EQ(2U, plan.devices.size());
}

TEST_F(PlannerTest, PresenceIsWhatAnyInstanceSays)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine = MachineWithCards({kCard});
    auto& instances = machine.devices->front().instances;
    instances.front().presence = Presence::Absent;
    EXPECT_EQ(Presence::Absent, Plan(machine).devices[0].presence);
    instances.push_back(instances.front());
    instances.back().presence = Presence::Unknown;
    EXPECT_EQ(Presence::Unknown, Plan(machine).devices[0].presence);
    instances.back().presence = Presence::Present;
    EXPECT_EQ(Presence::Present, Plan(machine).devices[0].presence);
}

TEST_F(PlannerTest, TheSystemIsTheMachinesOwnUnlessOneIsGiven)
{
    m_folder.Write("Morvix.ini", "[WinXP32E]\r\nInfSectionName=Norda.NTamd64\r\nInfDir=Drv\r\n");
    m_folder.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    const Machine machine = MachineWithCards({kCard});
    MachinePlan plan = Plan(machine);
    EXPECT_EQ(kSection, plan.system.section);
    EXPECT_EQ("registry", plan.system.from);
    EXPECT_EQ("Windows Vista", plan.system.family);
    EXPECT_FALSE(plan.devices[0].search->match);

    plan = Plan(machine, {.system = {.section = "WinXP32E", .family = {}}});
    EXPECT_EQ("WinXP32E", plan.system.section);
    EXPECT_EQ("option", plan.system.from);
    EXPECT_EQ("Windows Whistler", plan.system.family);
    EXPECT_TRUE(plan.devices[0].search->match);

    plan = Plan(machine, {.system = {.section = "WinXP32E", .family = "Windows Millenium"}});
    EXPECT_EQ("option", plan.system.familyFrom);
    EXPECT_EQ(MachineOutcome::NoDevices, plan.outcome);
}

TEST_F(PlannerTest, AServerThatIsPlannedForItsOwnSectionStaysAServer)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine = MachineWithCards({kCard});
    machine.system.productType.value = kProductServer;
    EXPECT_EQ(osWINEIGHTSRV32E, Plan(machine, {.system = {.section = kSection, .family = {}}}).system.code);
}

TEST_F(PlannerTest, EverySectionCanBeGivenForAMachineThatTellsNothing)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine = MachineWithCards({kCard});
    machine.system = {};
    EXPECT_EQ(MachineOutcome::UnknownSystem, Plan(machine).outcome);
    for (const std::string& section : SystemSections()) {
        const MachinePlan plan = Plan(machine, {.system = {.section = section, .family = {}}});
        EXPECT_EQ(MachineOutcome::Done, plan.outcome) << section;
        EXPECT_EQ(section, plan.system.section);
    }
    EXPECT_FALSE(IsSystemSection("Win2000"));
    EXPECT_FALSE(IsSystemSection(""));
}

TEST_F(PlannerTest, AMachineWithoutPciKeyHasNoDevicePass)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine = MachineWithCards({});
    machine.devices.reset();
    const MachinePlan plan = Plan(machine);
    EXPECT_EQ(MachineOutcome::NoDevices, plan.outcome);
    EXPECT_NE(std::string::npos, plan.problem.find(R"(SYSTEM\CurrentControlSet\Enum\PCI)"));
}

TEST_F(PlannerTest, ARefusedMachineIsUnreadable)
{
    m_folder.Write("Morvix.ini", SetupIni());
    Machine machine;
    machine.refused = true;
    machine.diagnostics.push_back(
        {.severity = Severity::Error, .source = "x", .line = 0, .what = "is no export", .cure = {}});
    EXPECT_EQ(MachineOutcome::Unreadable, Plan(machine).outcome);
    EXPECT_EQ("is no export", Plan(machine).problem);
}

TEST_F(PlannerTest, TheResultRestsOnAFileThatTheInfCopies)
{
    const std::string copies =
        "[Nic.ndi.NT]\r\nCopyFiles=Files\r\n[Files]\r\nNGEA.sys ; the driver\r\n"
        "[DestinationDirs]\r\nDefaultDestDir = 12\r\n";
    m_folder.Write("Morvix.ini", SetupIni() + "[Win732E]\r\nInfSectionName=Norda.NTamd64\r\nInfDir=Drv\r\n");
    m_folder.Write("Drv/ngea63.inf", Inf({.ids = {kCard}, .more = copies}));
    const Machine machine = MachineWithCards({kCard});
    const Report report = Plan(machine).devices[0].search->report.value();
    EXPECT_EQ("TAVG_PCIE_Install", report.value);
    EXPECT_EQ(R"(\NGEA*.sys)", report.expects);
    EXPECT_EQ("NGEA.sys", report.copiedFile);
    EXPECT_EQ("SUCCESS", ResultIfBound(report));

    const Report on61 =
        Plan(machine, {.system = {.section = "Win732E", .family = {}}}).devices[0].search->report.value();
    EXPECT_EQ(R"(\NGEA62*.sys)", on61.expects);
    EXPECT_EQ("FAILURE", ResultIfBound(on61));

    m_folder.Write("Drv/ngea63.inf", Inf({.ids = {kCard}}));
    EXPECT_EQ("unknown", ResultIfBound(Plan(machine).devices[0].search->report.value()));

    std::filesystem::rename(m_folder.Path() / "Drv/ngea63.inf", m_folder.Path() / "Drv/other.inf");
    EXPECT_FALSE(Plan(machine).devices[0].search->report);
}

TEST_F(PlannerTest, MachinesOfOneSystemShareASearchAndOthersDoNot)
{
    m_folder.Write("Morvix.ini", SetupIni());
    m_folder.Write("Drv/a.inf", Inf({.ids = {kCard}}));
    KitFolder kit(PlaceOf(m_folder), ProfileDialect::Windows);
    Planner planner(kit, {});
    Machine machine = MachineWithCards({kCard});
    const auto first = planner.Plan(machine).devices[0].search;
    EXPECT_EQ(first, planner.Plan(machine).devices[0].search);
    machine.system.version.value = VersionNumbers{6, 1, 7601};
    const auto other = planner.Plan(machine).devices[0].search;
    EXPECT_NE(first, other);
    EXPECT_FALSE(other->match);
}

TEST_F(PlannerTest, JsonHasTheKeysOfTheSchema)
{
    m_folder.Write("Morvix.ini", SetupIni());
    m_folder.Write("Drv/a.inf", Inf({}));
    m_folder.Write("Drv/ngea63.inf", Inf({.ids = {kCard}}));
    const MachinePlan plan = Plan(MachineWithCards({kCard}));
    const std::string json = PlanJsonHead(*m_kit) + PlanJsonMachine(plan, m_kit->Paths()) + PlanJsonTail();
    EXPECT_EQ(R"("morvix-plan/1")", MemberOf(json, "/schema"));
    EXPECT_EQ(R"("C:\\Kit")", MemberOf(json, "/kit/setupDir"));
    EXPECT_EQ(R"("windows")", MemberOf(json, "/kit/reader"));
    EXPECT_EQ(R"("PC7")", MemberOf(json, "/machines/0/name"));
    EXPECT_EQ(R"("ok")", MemberOf(json, "/machines/0/outcome"));
    EXPECT_EQ(R"("Win832E")", MemberOf(json, "/machines/0/system/section"));
    EXPECT_EQ(R"("Drv/ngea63.inf")", MemberOf(json, "/machines/0/devices/0/match/inf"));
    EXPECT_EQ("7", MemberOf(json, "/machines/0/devices/0/match/line"));
    EXPECT_EQ("1", MemberOf(json, "/machines/0/devices/0/match/pass"));
    EXPECT_EQ(R"([{"inf":"Drv/a.inf","reason":"not-listed"}])", MemberOf(json, "/machines/0/devices/0/passedOver"));
    EXPECT_EQ(R"(["a.inf","ngea63.inf"])", MemberOf(json, "/machines/0/devices/0/stored"));
    EXPECT_EQ(R"("TAVG_PCIE_Install")", MemberOf(json, "/machines/0/devices/0/report/value"));
    EXPECT_EQ("[]", MemberOf(json, "/machines/0/devices/0/findings"));
}
