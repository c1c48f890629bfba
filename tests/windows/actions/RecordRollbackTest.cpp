#include "RecordRollback.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "ImportOverride.h"
#include "RecordNames.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::ElementsAre;

namespace {
class RecordRollback : public testing::Test
{
protected:
    [[nodiscard]] std::string File() const { return m_scratch.At("Morvix.din"); }

    /// What a run of the program leaves.
    void RunLeavesRecords() const
    {
        SetRegistryText(kBasedriversKey, "Install", "FAILURE", REG_EXPAND_SZ);
        SetRegistryText(kBasedriversKey, "TAVX_Install", "FAILURE", REG_EXPAND_SZ);
        SetRegistryNumber(kBasedriversKey, "RebootNeeded", 1);
        SetRegistryText(kRegistrationKey, kRegistrationValue, "Morvix.Uninstall");
        WriteFileBytes(File(), "of the run");
    }

    /// @return the records as they are now.
    [[nodiscard]] RecordSnapshot Now() const
    {
        RecordSnapshot snapshot = TakeSnapshot(File());
        if (snapshot.results) {
            std::sort(snapshot.results->begin(), snapshot.results->end(),
                      [](const SavedValue& left, const SavedValue& right) { return left.name < right.name; });
        }
        return snapshot;
    }

private:
    ScratchRegistryKey m_norda{R"(SOFTWARE\Norda)"};
    ScratchDirectory m_scratch;
};

LSTATUS WINAPI DeniedOpen(HKEY, const char*, DWORD, REGSAM, HKEY*)
{
    return ERROR_ACCESS_DENIED;
}
} // namespace

TEST_F(RecordRollback, RemovesWhatWasNotThereBefore)
{
    const RecordSnapshot before = Now();
    RunLeavesRecords();

    EXPECT_THAT(RestoreSnapshot(before, File()),
                ElementsAre("rolled back: the result values", "rolled back: the uninstaller's registration",
                            "rolled back: " + File()));

    EXPECT_FALSE(RegistryKeyExists(kBasedriversKey));
    EXPECT_FALSE(ReadRegistryValue(kRegistrationKey, kRegistrationValue).has_value());
    EXPECT_FALSE(FileExists(File()));
}

TEST_F(RecordRollback, PutsBackWhatWasThereBeforeByteForByte)
{
    SetRegistryText(kBasedriversKey, "Install", "SUCCESS", REG_EXPAND_SZ);
    SetRegistryText(kBasedriversKey, "Version", "11.4.62.0");
    SetRegistryBytes(kBasedriversKey, "Odd", std::string("a\0b", 3), REG_BINARY);
    SetRegistryBytes(kBasedriversKey, "Empty", "", REG_SZ);
    SetRegistryText(kRegistrationKey, kRegistrationValue, "Earlier.Uninstall");
    WriteFileBytes(File(), std::string("of an earlier kit\0", 18));
    const RecordSnapshot before = Now();
    EXPECT_EQ(before.results->size(), 4U);

    RunLeavesRecords();
    DeleteRegistryTree(kRegistrationKey);
    EXPECT_NE(Now(), before);
    static_cast<void>(RestoreSnapshot(before, File()));

    EXPECT_EQ(Now(), before);
}

TEST_F(RecordRollback, OtherKitsStayRegistered)
{
    const RecordSnapshot before = Now();
    RunLeavesRecords();
    SetRegistryText(kRegistrationKey, "Other.din", "Other.Uninstall");
    static_cast<void>(RestoreSnapshot(before, File()));
    EXPECT_EQ(ReadRegistryText(kRegistrationKey, "Other.din"), "Other.Uninstall");
}

TEST_F(RecordRollback, TheSnapshotSurvivesItsWayThroughThePackage)
{
    SetRegistryText(kBasedriversKey, "Install", "SUCCESS", REG_EXPAND_SZ);
    WriteFileBytes(File(), std::string(5000, 'x'));
    const RecordSnapshot before = Now();
    EXPECT_EQ(DecodeSnapshot(EncodeSnapshot(before)), before);
}

TEST_F(RecordRollback, ADataFileThatCannotBeSavedIsLeftAloneAndTheLogSaysSo)
{
    WriteFileBytes(File(), std::string(262145, 'x'));
    const RecordSnapshot before = Now();
    EXPECT_EQ(before.dataFileState, RecordSnapshot::File::Unknown);
    WriteFileBytes(File(), "of the run");
    EXPECT_EQ(RestoreSnapshot(before, File()).back(), "cannot be rolled back: " + File());
    EXPECT_EQ(ReadFileBytes(File()), "of the run");
}

TEST_F(RecordRollback, NothingIsAssumedAboutAKeyThatCannotBeRead)
{
    const ImportOverride denied("RegOpenKeyExA", reinterpret_cast<void*>(&DeniedOpen));
    EXPECT_THROW(static_cast<void>(TakeSnapshot(File())), std::runtime_error);
}
