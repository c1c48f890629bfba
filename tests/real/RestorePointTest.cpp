// The restore point of a run, where the system keeps restore points.

#include <gmock/gmock.h>

#include <optional>

#include "Bundle.h"
#include "EntryPoints.h"
#include "Machine.h"
#include "MachineUse.h"
#include "RegistryKeys.h"
#include "RunFolder.h"
#include "RunOfAnEmptyMachine.h"
#include "SystemLibrary.h"

namespace {
constexpr char kRestoreKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\SystemRestore)";
constexpr char kPolicyKey[] = R"(SOFTWARE\Policies\Microsoft\Windows NT\SystemRestore)";

bool IsZeroOrMissing(const char* key, const char* name)
{
    const auto value = ReadRegistryValue(key, name);
    return !value || value->bytes.find_first_not_of('\0') == std::string::npos;
}

std::optional<std::string> WhyNoRestorePoints()
{
    if (RunsInWine()) {
        return "Wine keeps no restore points: use a Windows";
    }
    if (OwnVersionOfTheSystem().productType != VER_NT_WORKSTATION) {
        return "servers keep no restore points: use a workstation";
    }
    const UniqueLibrary library = LoadSystemLibrary("srclient.dll");
    if (!library || FindEntry<SetRestorePointFn>(library.get(), "SRSetRestorePointW") == nullptr) {
        return "this system has no System Restore: use another edition";
    }
    // Up to XP the system says where it is off, since Vista where it is on.
    const bool isOff = OwnVersionOfTheSystem().major < 6 ? !IsZeroOrMissing(kRestoreKey, "DisableSR")
                                                         : IsZeroOrMissing(kRestoreKey, "RPSessionInterval");
    if (isOff || !IsZeroOrMissing(kPolicyKey, "DisableSR")) {
        return "System Restore is off: switch the protection of the system's drive on";
    }
    return std::nullopt;
}

class RestorePoint : public EmptyMachine
{
protected:
    void SetUp() override
    {
        if (const auto why = WhyNoRestorePoints()) {
            GTEST_SKIP() << NotHere(*why);
        }
        EmptyMachine::SetUp();
    }
};
} // namespace

TEST_F(RestorePoint, IsBegunBeforeTheDevicesAndEndedAfterThem)
{
    // Since Windows 8 the system passes over a point that comes too soon after another one.
    const SavedRegistryValue frequency(kRestoreKey, "SystemRestorePointCreationFrequency");
    SetRegistryNumber(kRestoreKey, "SystemRestorePointCreationFrequency", 0);
    const RunFolder folder;

    const FinishedRun run = RunSilentlyIn(folder.Path());

    ExpectSilentRun(run, folder.Path());
    EXPECT_THAT(run.Between("Entering BeginRestorePoint", "Exiting BeginRestorePoint"),
                testing::ElementsAre("Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                                     "Successfully started the system restore point", "Exiting BeginRestorePoint"));
    EXPECT_THAT(
        run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
        testing::ElementsAre("Entering EndRestorePoint", "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
}
