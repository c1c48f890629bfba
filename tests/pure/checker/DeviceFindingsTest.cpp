#include "DeviceFindings.h"

#include <gtest/gtest.h>

#include "Kits.h"
#include "PlanJson.h"
#include "Planner.h"

namespace {
const std::string kFirst = Model("VEN_5D1A&DEV_7A01");
constexpr char kFirstCard[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_01";
constexpr char kSecondCard[] = "VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_01";

using Ids = std::vector<std::string>;

/// @return the rules whose findings concern a card, in a kit on Windows 8.
Ids FindingsOfCard(const KitFiles& changes, const char* card, const std::vector<std::string>& systems = {"Win832E"})
{
    const TestFolder folder;
    WriteKit(folder, KitWith(changes));
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    const MachinePlan plan = Planner(kit, {}).Plan(MachineWithCards({card}));
    return FindingsOf(plan.devices.at(0), plan.system.section, CheckKit(kit, nullptr, {.systems = systems}),
                      kit.Paths());
}
} // namespace

TEST(DeviceFindings, AreNoneInAPerfectKit)
{
    EXPECT_EQ(Ids(), FindingsOfCard({}, kFirstCard));
}

TEST(DeviceFindings, AboutAnIdConcernTheDevicesThatAreSearchedByIt)
{
    const KitFiles kit{{kPerfectInf, InfWithModels(kFirst + Model("VEN_5D1A&DEV_7A02;second"))}};
    EXPECT_EQ(Ids(), FindingsOfCard(kit, kFirstCard));
    EXPECT_EQ(Ids{"MK304"}, FindingsOfCard(kit, kSecondCard));
}

TEST(DeviceFindings, AboutAnInfFileConcernTheDevicesThatGetIt)
{
    const KitFiles kit{{kPerfectInf, InfWithModels(kFirst + Model("VEN_5D1A&DEV_7A02"))}, {"Drv/ngea.cat", ""}};
    EXPECT_EQ(Ids{"MK505"}, FindingsOfCard(kit, kFirstCard));
    EXPECT_EQ(Ids(), FindingsOfCard(kit, "VEN_5D1A&DEV_7A03&SUBSYS_00115D1A&REV_01"));
}

TEST(DeviceFindings, AboutTheSystemsSectionConcernTheDevicesWithoutADriver)
{
    const KitFiles kit{{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\nInfDir=..\\More\n")}};
    EXPECT_EQ(Ids(), FindingsOfCard(kit, kFirstCard));
    EXPECT_EQ(Ids{"MK105"}, FindingsOfCard(kit, kSecondCard));
}

TEST(DeviceFindings, OfOtherSystemsDoNotCount)
{
    const KitFiles kit{{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\n") +
                                          "[Win732E]\nInfSectionName=Norda.NTamd64\nInfDir=..\\More\n"}};
    EXPECT_EQ(Ids(), FindingsOfCard(kit, kSecondCard, {"Win732E", "Win832E"}));
}

TEST(DeviceFindings, AnAcceptedDeviceThatOtherSystemsListIsOne)
{
    const KitFiles kit{{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\n") +
                                          "[Win732E]\nInfSectionName=Norda.NTamd64\nInfDir=Seven\n"},
                       {"Seven/ngea.inf", InfWithModels(Model("VEN_5D1A&DEV_2A10"))}};
    const std::vector<std::string> both{"Win732E", "Win832E"};
    EXPECT_EQ(Ids{"MK701"}, FindingsOfCard(kit, "VEN_5D1A&DEV_2A10&SUBSYS_00115D1A&REV_01", both));
    EXPECT_EQ(Ids(), FindingsOfCard(kit, kSecondCard, both));
}

TEST(DeviceFindings, AreInThePlansJson)
{
    const TestFolder folder;
    WriteKit(folder, PerfectKit());
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    MachinePlan plan = Planner(kit, {}).Plan(MachineWithCards({kFirstCard}));
    EXPECT_NE(std::string::npos, PlanJsonMachine(plan, kit.Paths()).find("\"findings\":[]"));
    plan.devices.at(0).findings = {"MK401", "MK505"};
    EXPECT_NE(std::string::npos, PlanJsonMachine(plan, kit.Paths()).find("\"findings\":[\"MK401\",\"MK505\"]"));
}
