#include "ResultKeyAccess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "NetInst.h"
#include "RegistryKeys.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {
constexpr char kKey[] = R"(SOFTWARE\Norda\Basedrivers)";

class ResultKeyAccess : public testing::Test
{
protected:
    static void Record(const std::string& name, const std::string& text, DWORD type = REG_EXPAND_SZ)
    {
        SetRegistryText(kKey, name, text, type);
    }
    static std::string Text(const char* name) { return ReadRegistryText(kKey, name); }

private:
    ScratchRegistryKey m_norda{R"(SOFTWARE\Norda)"};
};
} // namespace

TEST_F(ResultKeyAccess, WithoutTheKeyNothingIsRecorded)
{
    const ResultRecords records = ReadResultRecords();
    EXPECT_EQ(records.install, "");
    EXPECT_EQ(records.version, "");
    EXPECT_THAT(records.failedFamilies, IsEmpty());
    EXPECT_FALSE(records.restartNeeded);
    EXPECT_FALSE(records.libraryNeedsRestart);
}

TEST_F(ResultKeyAccess, ForgettingDoesNotCreateTheKey)
{
    ForgetEarlierFailures();
    EXPECT_FALSE(RegistryKeyExists(kKey));
    EXPECT_FALSE(RegistryKeyExists(kNetInstKey));
}

TEST_F(ResultKeyAccess, ReadsTheRestartThatTheInstallerLibraryHasRecorded)
{
    SetRegistryNumber(kNetInstKey, kNetInstRestartValue, 1);
    EXPECT_TRUE(ReadResultRecords().libraryNeedsRestart);
    EXPECT_FALSE(ReadResultRecords().restartNeeded);
    SetRegistryNumber(kNetInstKey, kNetInstRestartValue, 0);
    EXPECT_FALSE(ReadResultRecords().libraryNeedsRestart);
}

TEST_F(ResultKeyAccess, TheRestartMarkOfTheInstallerLibraryIsForgotten)
{
    SetRegistryNumber(kNetInstKey, kNetInstRestartValue, 1);
    SetRegistryNumber(kNetInstKey, "Other", 1);
    ForgetEarlierFailures();
    EXPECT_FALSE(ReadRegistryValue(kNetInstKey, kNetInstRestartValue).has_value());
    EXPECT_TRUE(ReadRegistryValue(kNetInstKey, "Other").has_value());
}

TEST_F(ResultKeyAccess, ReadsWhatARunHasRecorded)
{
    Record("Install", "FAILURE");
    Record("TAVG_PCIE_Install", "SUCCESS");
    Record("TAVX_Install", "FAILURE");
    Record("TAVF_Install", "FAILURE");
    Record("Version", "11.4.62.0", REG_SZ);
    SetRegistryNumber(kKey, "RebootNeeded", 1);

    const ResultRecords records = ReadResultRecords();

    EXPECT_EQ(records.install, "FAILURE");
    EXPECT_EQ(records.version, "11.4.62.0");
    EXPECT_THAT(records.failedFamilies, UnorderedElementsAre("TAVX", "TAVF"));
    EXPECT_TRUE(records.restartNeeded);
}

TEST_F(ResultKeyAccess, ARestartIsNeededOnlyByANumberOtherThanZero)
{
    SetRegistryNumber(kKey, "RebootNeeded", 0);
    EXPECT_FALSE(ReadResultRecords().restartNeeded);
    SetRegistryText(kKey, "RebootNeeded", "1");
    EXPECT_FALSE(ReadResultRecords().restartNeeded);
    SetRegistryBytes(kKey, "RebootNeeded", std::string(8, '\1'), REG_BINARY);
    EXPECT_FALSE(ReadResultRecords().restartNeeded);
}

TEST_F(ResultKeyAccess, TextsAreReadUpToTheirEndHoweverTheyAreStored)
{
    SetRegistryBytes(kKey, "Install", std::string("SUCCESS\0rest", 12), REG_EXPAND_SZ);
    SetRegistryBytes(kKey, "Version", "1.2.3.4", REG_SZ);
    EXPECT_EQ(ReadResultRecords().install, "SUCCESS");
    EXPECT_EQ(ReadResultRecords().version, "1.2.3.4");
    SetRegistryBytes(kKey, "Install", "FAILURE", REG_BINARY);
    EXPECT_EQ(ReadResultRecords().install, "");
}

TEST_F(ResultKeyAccess, FailuresAndTheRestartMarkOfEarlierRunsAreForgotten)
{
    Record("Install", "FAILURE");
    Record("TAVX_Install", "FAILURE");
    Record("TAVF_Install", "FAILURE");
    Record("TAVG_Install", "SUCCESS");
    Record("Version", "11.4.62.0", REG_SZ);
    Record("Reboot", "Yes", REG_SZ);
    SetRegistryNumber(kKey, "RebootNeeded", 1);

    ForgetEarlierFailures();

    EXPECT_EQ(Text("Install"), "<none>");
    EXPECT_EQ(Text("TAVX_Install"), "<none>");
    EXPECT_EQ(Text("TAVF_Install"), "<none>");
    EXPECT_FALSE(ReadRegistryValue(kKey, "RebootNeeded").has_value());
    EXPECT_EQ(Text("TAVG_Install"), "SUCCESS");
    EXPECT_EQ(Text("Version"), "11.4.62.0");
    EXPECT_EQ(Text("Reboot"), "Yes");
}

TEST_F(ResultKeyAccess, ASuccessOfAnEarlierRunStays)
{
    Record("Install", "SUCCESS");
    ForgetEarlierFailures();
    EXPECT_EQ(Text("Install"), "SUCCESS");
}
