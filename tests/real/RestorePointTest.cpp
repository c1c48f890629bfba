// The restore point of a run, where the system keeps restore points.

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <optional>

#include "Bundle.h"
#include "EntryPoints.h"
#include "Machine.h"
#include "MachineUse.h"
#include "RegistryKeys.h"
#include "RunFolder.h"
#include "RunOfAnEmptyMachine.h"
#include "SystemLibrary.h"
#include "WideText.h"
#include "WmiQuery.h"

namespace {
constexpr char kRestoreKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion\SystemRestore)";
constexpr wchar_t kRestoreNamespace[] = L"root\\default";
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

/// What asks for the restore points of driver installations since now, which the system keeps by their time in UTC.
std::wstring QueryForPointsSinceNow()
{
    SYSTEMTIME now{};
    GetSystemTime(&now);
    std::array<char, 160> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(),
                                    "SELECT * FROM SystemRestore WHERE RestorePointType = %d AND CreationTime > "
                                    "'%04u%02u%02u%02u%02u%02u.000000-000'",
                                    DEVICE_DRIVER_INSTALL, now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                                    now.wSecond));
    return Wide(text.data());
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

TEST_F(RestorePoint, IsBegunBeforeTheDevicesEndedAfterThemAndKept)
{
    // Since Windows 8 the system passes over a point that comes too soon after another one.
    const SavedRegistryValue frequency(kRestoreKey, "SystemRestorePointCreationFrequency");
    SetRegistryNumber(kRestoreKey, "SystemRestorePointCreationFrequency", 0);
    const RunFolder folder;
    const std::wstring query = QueryForPointsSinceNow();
    ASSERT_EQ(AskWmi(kRestoreNamespace, query.c_str()), WmiAnswer::NoRows);
    // Times are kept in whole seconds: the point must not have this one.
    Sleep(1100);

    const FinishedRun run = RunSilentlyIn(folder.Path());

    ExpectSilentRun(run, folder.Path());
    EXPECT_THAT(run.Between("Entering BeginRestorePoint", "Exiting BeginRestorePoint"),
                testing::ElementsAre("Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                                     "Successfully started the system restore point", "Exiting BeginRestorePoint"));
    EXPECT_THAT(
        run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
        testing::ElementsAre("Entering EndRestorePoint", "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
    EXPECT_EQ(AskWmi(kRestoreNamespace, query.c_str()), WmiAnswer::Rows) << "the system has no point of this run";
}
