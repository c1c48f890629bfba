#include "Explain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "KitOnDisk.h"
#include "Planner.h"

using testing::HasSubstr;

namespace {
class ExplainTest : public testing::Test
{
protected:
    ExplainTest() : m_kit(PlaceOf(m_folder), ProfileDialect::Windows)
    {
        m_folder.Write("Morvix.ini", SetupIni("InfDir=More\r\nInfExclude=out.inf\r\n"));
        m_folder.Write("Drv/chicago.inf", Inf({.signature = "$Chicago$", .ids = {kCard}}));
        m_folder.Write("Drv/bare.inf", Inf({.before = "%Nic% = Nic.ndi, VEN_5D1A&DEV_1A2B\r\n"}));
        m_folder.Write("Drv/compatible.inf", Inf({.ids = {"VEN_5D1A&DEV_FFFF, PCI\\ven_5d1a&dev_1a2b"}}));
        m_folder.Write("Drv/form.inf", Inf({.ids = {"VEN_5D1A&DEV_1A2B&SUBSYS_FFFF5D1A"}}));
        m_folder.Write("Drv/late.inf", Inf({.ids = {"VEN_5D1A&DEV_1A2B"}}));
        m_folder.Write("Drv/mapped.inf", Inf({.ids = {kOtherCard},
                                              .more = "[Norda.NTx86]\r\n%Nic%=Nic.ndi, PCI\\VEN_5D1A&DEV_1A2B\r\n"}));
        m_folder.Write("Drv/small.inf", Inf({.ids = {kOtherCard},
                                             .more = "[Norda.NTx86]\r\n%Nic%=Nic.ndi, pci\\ven_5d1a&dev_1a2b\r\n"}));
        m_folder.Write("Drv/ngea63.inf", Inf({.ids = {"VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A"}}));
        m_folder.Write("Drv/none.inf", Inf({.manufacturer = "x=y"}));
        m_folder.Write("Drv/out.inf", Inf({.ids = {kCard}}));
        m_folder.Write("More/twin.inf", Inf({.ids = {"VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A"}}));
        m_folder.Write("Unused/lost.inf", Inf({.ids = {kCard}}));
        m_folder.Write("More/none.inf", Inf({}));
    }

    [[nodiscard]] std::string WhyNotOf(const std::string& inf)
    {
        Planner planner(m_kit, {});
        const Machine machine = MachineWithCards({kCard});
        const MachinePlan plan = planner.Plan(machine);
        const SearchTerms terms = planner.TermsFor(machine, plan.system);
        FolderKitSource source(m_kit, terms.codePage);
        std::string problem;
        const std::string answer = WhyNot(plan, plan.devices.front(), inf, source, terms, problem);
        return answer.empty() ? "problem: " + problem : answer;
    }

    TestFolder m_folder;
    KitFolder m_kit;
};
} // namespace

TEST_F(ExplainTest, TheStoryTellsEveryPassUpToTheMatch)
{
    const MachinePlan plan = Planner(m_kit, {}).Plan(MachineWithCards({kCard}));
    const std::string story =
        ExplainDevice(plan, {.served = &plan.devices[0], .rejected = nullptr}, m_kit.Paths(), TextStyle(false));
    EXPECT_THAT(story, HasSubstr("VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01 on PC7 (PC7.reg)"));
    EXPECT_THAT(story, HasSubstr(R"(PCI\VEN_5D1A&CC_020000)"));
    EXPECT_THAT(story, HasSubstr("where to search: Drv, More"));
    EXPECT_THAT(story, HasSubstr("Drv/out.inf: excluded by Morvix.ini"));
    EXPECT_THAT(story, HasSubstr("Pass 2 looks for VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A"));
    EXPECT_THAT(story, HasSubstr("Drv/ngea63.inf:7: [Norda.NTamd64] lists the device; the search ends"));
    EXPECT_EQ(std::string::npos, story.find("Pass 3"));
}

TEST_F(ExplainTest, WhyNotNamesTheFirstThingThatKeptAnInfFromWinning)
{
    EXPECT_THAT(WhyNotOf("ngea63.inf"), HasSubstr("wins: it lists the device in pass 2"));
    EXPECT_THAT(WhyNotOf("chicago.inf"), HasSubstr("its Signature is not \"$Windows NT$\""));
    EXPECT_THAT(WhyNotOf("Drv/none.inf"), HasSubstr("[Manufacturer]"));
    EXPECT_THAT(WhyNotOf("out.inf"), HasSubstr("InfExclude"));
    EXPECT_THAT(WhyNotOf("late.inf"), HasSubstr("Drv/ngea63.inf had won in pass 2"));
    EXPECT_THAT(WhyNotOf("more\\TWIN.inf"), HasSubstr("which is searched before it"));
    EXPECT_THAT(WhyNotOf("lost.inf"), HasSubstr("Unused/lost.inf is in no folder"));
    EXPECT_THAT(WhyNotOf("bare.inf"), HasSubstr("line 7, in section [Norda.NTamd64], names it without a bus prefix"));
    EXPECT_THAT(WhyNotOf("compatible.inf"), HasSubstr("line 7, in section [Norda.NTamd64], lists VEN_5D1A&DEV_FFFF "
                                                      "first and names it only as a compatible ID"));
    EXPECT_THAT(WhyNotOf("form.inf"), HasSubstr("line 7, in section [Norda.NTamd64], lists "
                                                "VEN_5D1A&DEV_1A2B&SUBSYS_FFFF5D1A, which no pass looks for"));
    EXPECT_THAT(WhyNotOf("mapped.inf"), HasSubstr("line 9, in section [Norda.NTx86]"));
    EXPECT_THAT(WhyNotOf("small.inf"), HasSubstr("line 9, in section [Norda.NTx86]"));
    EXPECT_THAT(WhyNotOf(m_folder.Path().string() + "/More/twin.inf"), HasSubstr("which is searched before it"));
    EXPECT_THAT(WhyNotOf("More/none.inf"), HasSubstr("nor VEN_5D1A&DEV_1A2B anywhere else"));
    EXPECT_EQ("problem: absent.inf: no such file in the kit; name it by its path in the kit, or by its name alone",
              WhyNotOf("absent.inf"));
    EXPECT_EQ("problem: none.inf: more than one file fits; name one of: Drv/none.inf, More/none.inf",
              WhyNotOf("none.inf"));
}

TEST_F(ExplainTest, ADeviceIsFoundByNameHardwareIdOrAPartThatIsItsAlone)
{
    const MachinePlan plan =
        Planner(m_kit, {}).Plan(MachineWith({{kCard, {kServedId}}, {"VEN_8086&DEV_1", {}}, {"VEN_8086&DEV_12", {}}}));
    std::string problem;
    EXPECT_EQ(&plan.devices[0], FindDevice(plan, kCard, problem)->served);
    EXPECT_EQ(&plan.devices[0], FindDevice(plan, R"(pci\ven_5d1a&dev_1a2b&subsys_00015D1A)", problem)->served);
    EXPECT_EQ(&plan.devices[0], FindDevice(plan, "1A2B", problem)->served);
    EXPECT_EQ(&plan.rejected[0], FindDevice(plan, "VEN_8086&DEV_1", problem)->rejected);
    EXPECT_FALSE(FindDevice(plan, "VEN_8086", problem));
    EXPECT_EQ("VEN_8086: more than one device fits on PC7; name one of: VEN_8086&DEV_1, VEN_8086&DEV_12", problem);
    EXPECT_FALSE(FindDevice(plan, "\x1b[2J", problem));
    EXPECT_THAT(problem, HasSubstr(R"(\x1B[2J: no such device on PC7; there are: )"));
}
