#include "PendingUninstall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DeviceFixtures.h"
#include "ImportOverride.h"

using testing::ElementsAre;

namespace {
constexpr char kKey[] = R"(SYSTEM\CurrentControlSet\Control\Session Manager)";
constexpr char kValue[] = "PendingFileRenameOperations";
constexpr char kUninstaller[] = R"(\??\C:\Windows\system32\Tavunstl.exe)";
constexpr char kOther[] = R"(\??\C:\Windows\Temp\other.tmp)";

/// The machine's own list is put back at the end.
class PendingUninstall : public testing::Test
{
protected:
    PendingUninstall() { Delete(); }
    ~PendingUninstall() override
    {
        Delete();
        if (m_saved) {
            SetRegistryBytes(kKey, kValue, m_saved->bytes, m_saved->type);
        }
    }
    static std::string Stored()
    {
        const std::optional<RegistryValue> value = ReadRegistryValue(kKey, kValue);
        return value ? value->bytes : "<none>";
    }

private:
    static void Delete()
    {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_SET_VALUE, &key) == ERROR_SUCCESS) {
            RegDeleteValueA(key, kValue);
            RegCloseKey(key);
        }
    }

    std::optional<RegistryValue> m_saved = ReadRegistryValue(kKey, kValue);
};

LSTATUS WINAPI RefuseToWrite(HKEY, LPCSTR, DWORD, DWORD, const BYTE*, DWORD)
{
    return ERROR_ACCESS_DENIED;
}

std::string List(const std::vector<std::string>& entries)
{
    std::string bytes;
    for (const std::string& entry : entries) {
        bytes += entry + '\0';
    }
    return bytes + '\0';
}
} // namespace

TEST_F(PendingUninstall, TheUninstallersEntryIsRemovedAndTheOthersStay)
{
    SetRegistryList(kKey, kValue, {kOther, kUninstaller, R"(\??\C:\last.tmp)"});
    TraceCapture trace;
    EXPECT_EQ(isRegEntryTAVUnstl(), 1);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering isRegEntryTAVUnstl", "Successfully removed TAVUnstl from registry"));
    EXPECT_EQ(Stored(), List({kOther, R"(\??\C:\last.tmp)"}));
}

TEST_F(PendingUninstall, TheEntryIsFoundInAnyLetterCase)
{
    SetRegistryList(kKey, kValue, {R"(\??\C:\WINDOWS\System32\TAVUNSTL.EXE)", kOther});
    EXPECT_EQ(isRegEntryTAVUnstl(), 1);
    EXPECT_EQ(Stored(), List({kOther}));
}

TEST_F(PendingUninstall, TheOnlyEntryLeavesAnEmptyList)
{
    SetRegistryList(kKey, kValue, {kUninstaller});
    EXPECT_EQ(isRegEntryTAVUnstl(), 1);
    EXPECT_EQ(Stored(), std::string(1, '\0'));
}

TEST_F(PendingUninstall, AListWithoutTheUninstallerIsUnchanged)
{
    SetRegistryList(kKey, kValue, {kOther, R"(\??\C:\Windows\Tavunstl.exe)"});
    TraceCapture trace;
    EXPECT_EQ(isRegEntryTAVUnstl(), 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering isRegEntryTAVUnstl", "TAVUnstl value was not in the substring"));
    EXPECT_EQ(Stored(), List({kOther, R"(\??\C:\Windows\Tavunstl.exe)"}));
}

TEST_F(PendingUninstall, AMissingListIsNotCreated)
{
    TraceCapture trace;
    EXPECT_EQ(isRegEntryTAVUnstl(), 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering isRegEntryTAVUnstl", "TAVUnstl value was not in the substring"));
    EXPECT_EQ(Stored(), "<none>");
}

TEST_F(PendingUninstall, AKeyThatCannotBeOpenedIsTraced)
{
    const MachineKeyOverride emptyMachine;
    TraceCapture trace;
    EXPECT_EQ(isRegEntryTAVUnstl(), 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering isRegEntryTAVUnstl", "Unable to access REG_TAVUNSTL_SESSIONMANAGER Key"));
}

TEST_F(PendingUninstall, AListThatCannotBeWrittenIsTracedAndUnchanged)
{
    SetRegistryList(kKey, kValue, {kOther, kUninstaller});
    TraceCapture trace;
    {
        const ImportOverride denied("RegSetValueExA", reinterpret_cast<void*>(RefuseToWrite));
        EXPECT_EQ(isRegEntryTAVUnstl(), 0);
    }
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering isRegEntryTAVUnstl", "Not able to remove TAVUnstl from MultiString"));
    EXPECT_EQ(Stored(), List({kOther, kUninstaller}));
}

TEST_F(PendingUninstall, EmptyHalvesOfOtherEntriesAreLost)
{
    // Each deletion is a file and an empty text.
    SetRegistryBytes(kKey, kValue, List({kOther, "", kUninstaller, "", R"(\??\C:\last.tmp)", ""}), REG_MULTI_SZ);
    EXPECT_EQ(isRegEntryTAVUnstl(), 1);
    EXPECT_EQ(Stored(), List({kOther, R"(\??\C:\last.tmp)"}));
}
