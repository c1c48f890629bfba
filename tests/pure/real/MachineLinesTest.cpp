#include "MachineLines.h"

#include <gmock/gmock.h>

namespace {
using testing::ElementsAre;

using Lines = std::vector<std::string>;
} // namespace

TEST(MachineLines, EveryOutcomeOfTheRestorePointLooksTheSame)
{
    const Lines expected = {"Morvix: CoInitialize", "Morvix: Entering BeginRestorePoint",
                            "Morvix: Exiting BeginRestorePoint", "Morvix: Exit -> InstallDrivers()\n"};
    EXPECT_EQ(WithoutMachineLines({"Morvix: CoInitialize", "Morvix: LoadLibrary failed!",
                                   "Morvix: Entering BeginRestorePoint", "Morvix: Exiting BeginRestorePoint",
                                   "Morvix: Exit -> InstallDrivers()\n"}),
              expected);
    EXPECT_EQ(
        WithoutMachineLines({"Morvix: CoInitialize", "Morvix: Entering BeginRestorePoint",
                             "Morvix: Entering - GetLanguageSpecificString",
                             "Morvix: call to restore point function failed!", "Morvix: The service does not exist",
                             "Morvix: Exiting BeginRestorePoint", "Morvix: Exit -> InstallDrivers()\n"}),
        expected);
    EXPECT_EQ(WithoutMachineLines({"Morvix: CoInitialize", "Morvix: Entering BeginRestorePoint",
                                   "Morvix: Entering - GetLanguageSpecificString",
                                   "Morvix: Successfully started the system restore point",
                                   "Morvix: Exiting BeginRestorePoint", "Morvix: Entering EndRestorePoint",
                                   "Morvix: Exiting EndRestorePoint", "Morvix: Exit -> InstallDrivers()\n"}),
              expected);
}

TEST(MachineLines, TextsThatAreLookedUpElsewhereStay)
{
    EXPECT_THAT(
        WithoutMachineLines({"Morvix: Entering - GetLanguageSpecificString", "Morvix: Entering BeginRestorePoint",
                             "Morvix: Entering - GetLanguageSpecificString", "Morvix: surprise",
                             "Morvix: Exiting BeginRestorePoint", "Morvix: Entering - GetLanguageSpecificString"}),
        ElementsAre("Morvix: Entering - GetLanguageSpecificString", "Morvix: Entering BeginRestorePoint",
                    "Morvix: surprise", "Morvix: Exiting BeginRestorePoint",
                    "Morvix: Entering - GetLanguageSpecificString"));
}

TEST(MachineLines, NetworkDevicesWithoutAnFcoeNameAreLeftOut)
{
    EXPECT_THAT(WithoutMachineLines({"Morvix: Failed to get driver key from PCI device",
                                     "Morvix: Failed to get NetCfgInstanceID from PCI device",
                                     "Morvix: Failed to enumerate any PCI devices"}),
                ElementsAre("Morvix: Failed to enumerate any PCI devices"));
}
