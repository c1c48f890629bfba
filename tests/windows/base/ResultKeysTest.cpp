#include "ResultKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstring>

#include "DebugOutput.h"
#include "ImportOverride.h"
#include "RegistryAccess.h"
#include "RegistryKeys.h"
#include "RunState.h"

using testing::ElementsAre;

namespace {
class ResultKeys : public testing::Test
{
protected:
    ResultKeys() : m_norda(R"(SOFTWARE\Norda)") { RunState = {}; }
    ~ResultKeys() override { RunState = {}; }

    static std::string Post(const std::string& result, const char* type, const std::string& version)
    {
        std::array<char, 260> buffer{};
        std::strcpy(buffer.data(), type);
        PostResultToRegistry(result, buffer.data(), buffer.size(), version);
        return buffer.data();
    }
    static std::string Text(const char* name) { return ReadRegistryText(kBasedriversKey, name); }
    static DWORD Type(const char* name)
    {
        const auto value = ReadRegistryValue(kBasedriversKey, name);
        return value ? value->type : 0xFFFFFFFF;
    }

private:
    ScratchRegistryKey m_norda;
};

LONG WINAPI RefuseKey(HKEY, LPCSTR, PHKEY)
{
    return ERROR_ACCESS_DENIED;
}
} // namespace

TEST_F(ResultKeys, SuccessWritesResultVersionsAndInstall)
{
    EXPECT_EQ("TAVG_PCIE_Version", Post("SUCCESS", "TAVG_PCIE_Install", "11.2.3.4"));
    EXPECT_EQ("SUCCESS", Text("TAVG_PCIE_Install"));
    EXPECT_EQ(DWORD{REG_EXPAND_SZ}, Type("TAVG_PCIE_Install"));
    EXPECT_EQ("11.2.3.4", Text("TAVG_PCIE_Version"));
    EXPECT_EQ(DWORD{REG_SZ}, Type("TAVG_PCIE_Version"));
    EXPECT_EQ("11.2.3.4", Text("Version"));
    EXPECT_EQ(DWORD{REG_SZ}, Type("Version"));
    EXPECT_EQ("SUCCESS", Text("Install"));
    EXPECT_EQ(DWORD{REG_EXPAND_SZ}, Type("Install"));
    EXPECT_EQ("<none>", Text("Reboot"));
    EXPECT_EQ(8U, ReadRegistryValue(kBasedriversKey, "Install")->bytes.size());
}

TEST_F(ResultKeys, FailureWritesNoVersionAndLeavesTheNameAlone)
{
    EXPECT_EQ("TAVX_Install", Post("FAILURE", "TAVX_Install", "1.2.3.4"));
    EXPECT_EQ("FAILURE", Text("TAVX_Install"));
    EXPECT_EQ("FAILURE", Text("Install"));
    EXPECT_EQ("<none>", Text("TAVX_Version"));
    EXPECT_EQ("<none>", Text("Version"));
}

TEST_F(ResultKeys, SingleSuccessLeavesInstallSuccess)
{
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_EQ("SUCCESS", Text("Install"));
}

TEST_F(ResultKeys, SuccessThenFailureLeavesInstallFailure)
{
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    Post("FAILURE", "TAVF_Install", "");
    EXPECT_EQ("FAILURE", Text("Install"));
    EXPECT_EQ("SUCCESS", Text("TAVX_Install"));
}

TEST_F(ResultKeys, FailureThenSuccessLeavesInstallFailure)
{
    Post("FAILURE", "TAVF_Install", "");
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_EQ("FAILURE", Text("Install"));
}

TEST_F(ResultKeys, TypeNameWithoutUnderscoreGetsVersionAppendedToTheWholeName)
{
    EXPECT_EQ("PlainVersion", Post("SUCCESS", "Plain", "5.6.7.8"));
    EXPECT_EQ("SUCCESS", Text("Plain"));
    EXPECT_EQ("5.6.7.8", Text("PlainVersion"));
}

TEST_F(ResultKeys, ResultIsComparedExactly)
{
    Post("Success", "TAVX_Install", "1.0.0.0");
    EXPECT_EQ("Success", Text("TAVX_Install"));
    EXPECT_EQ("<none>", Text("TAVX_Version"));
}

TEST_F(ResultKeys, VersionNameThatDoesNotFitItsBufferIsNotWrittenPastTheEnd)
{
    std::array<char, 16> guarded{};
    guarded.fill('#');
    std::memcpy(guarded.data(), "A_Install", 10);
    PostResultToRegistry("SUCCESS", guarded.data(), 9, "1.0.0.0");
    EXPECT_EQ("######", std::string(guarded.data() + 10, 6));
    EXPECT_EQ("SUCCESS", Text("A_Install"));
    EXPECT_EQ("1.0.0.0", Text("Version"));
}

TEST_F(ResultKeys, RebootIsYesWhenAFlagSaysThatARestartFollows)
{
    for (bool RunStateRecord::*flag :
         {&RunStateRecord::windows98Run, &RunStateRecord::windowsMeRun, &RunStateRecord::fcoeRestart}) {
        DeleteRegistryTree(kBasedriversKey);
        RunState = {};
        RunState.*flag = true;
        Post("FAILURE", "TAVX_Install", "");
        EXPECT_EQ("Yes", Text("Reboot"));
        EXPECT_EQ(DWORD{REG_SZ}, Type("Reboot"));
    }
}

TEST_F(ResultKeys, RebootIsStoredWithTheLengthOfTheResultText)
{
    RunState.windows98Run = true;
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_EQ(std::string("Yes\0\0\0\0\0", 8), ReadRegistryValue(kBasedriversKey, "Reboot")->bytes);
}

TEST_F(ResultKeys, PostingIsTracedInOrder)
{
    TraceCapture trace;
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> PostResultToRegistry", "Installation result is ->", "SUCCESS",
                                              "The type of driver being installed is ->", "TAVX_Install",
                                              "The driver version being installed is ->", "1.0.0.0",
                                              "First time calling PostResultToRegistry() or FAILURE found!",
                                              "Exit -> PostResultToRegistry"));
    trace.Clear();
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> PostResultToRegistry", "Installation result is ->", "SUCCESS",
                            "The type of driver being installed is ->", "TAVX_Install",
                            "The driver version being installed is ->", "1.0.0.0", "Exit -> PostResultToRegistry"));
}

TEST_F(ResultKeys, AKeyThatCannotBeCreatedStillCountsAsPosted)
{
    TraceCapture trace;
    {
        const ImportOverride refused("RegCreateKeyA", reinterpret_cast<void*>(RefuseKey));
        EXPECT_EQ("TAVX_Install", Post("SUCCESS", "TAVX_Install", "1.0.0.0"));
    }
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> PostResultToRegistry", "Installation result is ->", "SUCCESS",
                            "The type of driver being installed is ->", "TAVX_Install",
                            "The driver version being installed is ->", "1.0.0.0", "Exit -> PostResultToRegistry"));
    EXPECT_TRUE(RunState.resultAlreadyPosted);
    Post("SUCCESS", "TAVX_Install", "1.0.0.0");
    EXPECT_EQ("SUCCESS", Text("TAVX_Install"));
    EXPECT_EQ("<none>", Text("Install"));
}

TEST_F(ResultKeys, RebootNeededIsWrittenOnlyIntoAnExistingKey)
{
    SetRebootNeeded();
    EXPECT_FALSE(RegistryKeyExists(kBasedriversKey));
    CreateRegistryKey(kBasedriversKey);
    SetRebootNeeded();
    const auto value = ReadRegistryValue(kBasedriversKey, "RebootNeeded");
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(DWORD{REG_DWORD}, value->type);
    EXPECT_EQ(std::string("\1\0\0\0", 4), value->bytes);
}

TEST_F(ResultKeys, DeletingRebootNeededLeavesOtherValuesAlone)
{
    DeleteRebootNeeded();
    EXPECT_FALSE(RegistryKeyExists(kBasedriversKey));
    SetRegistryNumber(kBasedriversKey, "RebootNeeded", 1);
    SetRegistryText(kBasedriversKey, "Install", "SUCCESS");
    DeleteRebootNeeded();
    EXPECT_EQ("<none>", Text("RebootNeeded"));
    EXPECT_EQ("SUCCESS", Text("Install"));
}

TEST_F(ResultKeys, RebootNeededIsSetAndDeletedThroughAKeyOpenedWithFullAccess)
{
    CreateRegistryKey(kBasedriversKey);
    const RegistryAccess access;
    SetRebootNeeded();
    EXPECT_THAT(RegistryAccess::AskedFor(kBasedriversKey), ElementsAre(REGSAM{KEY_ALL_ACCESS}));
    DeleteRebootNeeded();
    EXPECT_THAT(RegistryAccess::AskedFor(kBasedriversKey), ElementsAre(REGSAM{KEY_ALL_ACCESS}, REGSAM{KEY_ALL_ACCESS}));
}
