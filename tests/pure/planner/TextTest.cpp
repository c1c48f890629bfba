#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "JsonCheck.h"
#include "KitOnDisk.h"
#include "PlanJson.h"
#include "PlanText.h"
#include "Planner.h"

using testing::HasSubstr;

namespace {
const std::string kHostile =
    "VEN_5D1A&DEV_1\x1b]0;owned\x07\r\n\x9b"
    "2J\xE2\x80\xAE&REV_01";

std::string TextOfPlan(const MachinePlan& plan, const KitFolder& kit, bool coloured = false)
{
    return PlanText(plan, kit.Paths(), TextStyle(coloured));
}

bool MovesTheTerminal(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) { return (c >= 0 && c < 0x20 && c != '\n') || c == 0x7F; }) ||
           text.find("\xE2\x80\xAE") != std::string_view::npos || text.find('\x9b') != std::string_view::npos;
}
} // namespace

TEST(PlanText, IsWrittenForPeople)
{
    const TestFolder folder;
    folder.Write("Morvix.ini", SetupIni());
    folder.Write("Drv/a.inf", Inf({}));
    folder.Write("Drv/ngea63.inf", Inf({.ids = {kCard}}));
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    MachinePlan plan = Planner(kit, {}).Plan(MachineWithCards({kCard, kOtherCard}));
    plan.restart.clear();
    EXPECT_EQ(
        "PC7  PC7.reg\n"
        "    system       Win832E (registry), family \"Windows Vista\" (registry)\n"
        "  VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01\n"
        "    accepted by  PCI\\VEN_5D1A&CC_020000\n"
        "    presence     unknown: the key of a removed card stays in the registry\n"
        "    driver       Drv/ngea63.inf:7, pass 1, section [Norda.NTamd64]\n"
        "                 \"Norda test adapter\", 10/01/2012,1.2.3.4\n"
        "    passed over  not listed: Drv/a.inf\n"
        "    stored       a.inf, ngea63.inf\n"
        "    result       TAVG_PCIE_Install will be SUCCESS if there is a system32\\drivers\\NGEA*.sys after\n"
        "                 the installation\n"
        "  VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02\n"
        "    accepted by  PCI\\VEN_5D1A&CC_020000\n"
        "    presence     unknown: the key of a removed card stays in the registry\n"
        "    driver       none: no INF file lists the device in any pass\n"
        "    searched     Drv\n"
        "    passed over  not listed: Drv/a.inf, Drv/ngea63.inf\n",
        TextOfPlan(plan, kit));
}

TEST(PlanText, AHostileNameNeverMovesTheTerminal)
{
    const TestFolder folder;
    folder.Write("Morvix.ini", SetupIni());
    folder.Write("Drv/x\x1b[31m.inf", Inf({.driverVersion = "\x1b[2J", .ids = {kHostile}}));
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    Machine machine = MachineWithCards({kHostile});
    machine.name = "\x1b[2Jname";
    machine.source = "a\rb";
    Planner planner(kit, {});
    std::string trace;
    const MachinePlan plan = planner.Plan(machine, &trace);
    EXPECT_FALSE(MovesTheTerminal(TextOfPlan(plan, kit))) << TextOfPlan(plan, kit);
    EXPECT_FALSE(MovesTheTerminal(trace)) << trace;
    const std::string json = PlanJsonHead(kit) + PlanJsonMachine(plan, kit.Paths()) + PlanJsonTail();
    EXPECT_FALSE(MovesTheTerminal(json)) << json;
    EXPECT_EQ(R"("\u001b[2Jname")", MemberOf(json, "/machines/0/name"));
}

TEST(PlanText, ColoursAreForTerminalsOnly)
{
    const TestFolder folder;
    folder.Write("Morvix.ini", SetupIni());
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    const MachinePlan plan = Planner(kit, {}).Plan(MachineWithCards({kCard}));
    EXPECT_FALSE(MovesTheTerminal(TextOfPlan(plan, kit)));
    EXPECT_THAT(TextOfPlan(plan, kit, true), HasSubstr("\x1b[31m"));
}

TEST(TextStyle, ALongTextIsBrokenAtBlanksAndALongWordIsNot)
{
    std::string out;
    AppendField(out, TextStyle(false), "label", std::string(90, 'a') + " b " + std::string(80, 'c') + " d");
    EXPECT_EQ("    label        " + std::string(90, 'a') + "\n" + std::string(17, ' ') + "b " + std::string(80, 'c') +
                  "\n" + std::string(17, ' ') + "d\n",
              out);
}
