// Searches in several threads, each with its own kit and system: nothing is shared between them. The program is built
// with the thread sanitizer, which ends it at a data race.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <barrier>
#include <thread>

#include "DeviceAcceptance.h"
#include "DeviceSearch.h"
#include "InstallResult.h"
#include "KeptAnswers.h"
#include "MemoryKit.h"

namespace {
constexpr char kBoard[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kUnknown[] = "VEN_5D1A&DEV_9999&SUBSYS_00011A2B&REV_03";
constexpr char kWithoutRevision[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2C";

/// A machine whose devices are all Ethernet adapters.
class Adapters final : public DeviceInstances
{
public:
    [[nodiscard]] FirstInstance FirstInstanceOf(const std::string& /*devicePath*/) override
    {
        constexpr std::string_view kIds = "PCI\\VEN_5D1A&CC_020000";
        return {.isThere = true, .compatibleIds = std::vector<char>(kIds.begin(), kIds.end())};
    }
};

/// What a plan for one machine says.
struct Plan
{
    std::vector<std::string> lines;
    std::vector<std::string> stored;
    std::vector<std::string> results;
    friend bool operator==(const Plan&, const Plan&) = default;
};

/// @param number  Machines differ by it: their kit, their system and what their kit lists.
Plan PlanMachine(int number)
{
    const OSCode system = number % 2 == 0 ? osWINSEVEN32E : osWINEIGHT32E;
    const std::string inf = "C:\\Kit\\Drv\\NGEA" + std::to_string(number) + ".inf";
    MemorySearch memory;
    memory.kit.Add(R"(C:\Kit\Morvix.ini)",
                   "[" + std::string(RowOf(system).sectionKey) + "]\nInfSectionName=Norda.NTamd64\nInfDir=Drv\n");
    memory.kit.Add(inf, InfThatLists("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B"));
    KeptAnswers answers(memory.kit);
    KitSearch search = memory.Over(answers);
    search.system = system;
    Adapters adapters;
    Plan plan;
    for (const char* device : {kBoard, kUnknown, kBoard, kWithoutRevision}) {
        if (!AcceptDevice(device, search.family, adapters, memory.log).IsAccepted()) {
            continue;
        }
        DeviceMatch match = SearchForDevice(search, device);
        const auto expected = ClassifyInf(match.recordPath, system, search.isLeadByte, memory.log);
        plan.results.push_back(std::to_string(static_cast<int>(match.verdict)) + " " + std::to_string(match.pass) +
                               " " + match.infPath + (expected ? " " + expected->filePattern : ""));
    }
    plan.lines = memory.log.lines;
    plan.stored = memory.log.stored;
    return plan;
}
} // namespace

TEST(TwoKits, InTwoThreadsGiveWhatEachGivesAlone)
{
    constexpr int kMachines = 2;
    constexpr int kRounds = 20;
    std::vector<Plan> alone;
    for (int machine = 0; machine < kMachines; ++machine) {
        alone.push_back(PlanMachine(machine));
    }
    EXPECT_NE(alone[0], alone[1]);
    EXPECT_THAT(alone[0].results, testing::ElementsAre(R"(0 2 C:\Kit\Drv\NGEA0.inf \NGEA62*.sys)", "1 4 ",
                                                       R"(0 2 C:\Kit\Drv\NGEA0.inf \NGEA62*.sys)", "2 3 "));
    std::barrier together(kMachines);
    std::vector<std::vector<Plan>> beside(kMachines);
    {
        std::vector<std::jthread> threads;
        for (int machine = 0; machine < kMachines; ++machine) {
            threads.emplace_back([&, machine] {
                for (int round = 0; round < kRounds; ++round) {
                    together.arrive_and_wait();
                    beside[static_cast<std::size_t>(machine)].push_back(PlanMachine(machine));
                }
            });
        }
    }
    for (std::size_t machine = 0; machine < beside.size(); ++machine) {
        EXPECT_EQ(beside[machine], std::vector<Plan>(kRounds, alone[machine])) << machine;
    }
}
