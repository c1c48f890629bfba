// What is installed and what is being debugged, as the registry tells it.
#include "Helper.h"
#include "ProductKeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LibraryTrace.h"
#include "RegistryAccess.h"
#include "RegistryKeys.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
constexpr char kTern[] = R"(SOFTWARE\NORDA\Network_Services\TERN)";

struct InstallStateRow
{
    std::string name;
    bool (CHelper::*isInstalled)();
    std::string value;
    std::string unreadable;
    std::string notInstalled;
};

const InstallStateRow kInstallStates[] = {
    {"IsDcbInstalled", &CHelper::IsDcbInstalled, "InstalledTERN_DCB",
     "IsDcbInstalled() - Unable to open the DCB installation status registry value - exiting",
     "IsDcbInstalled() - DCB was not installed - exiting"},
    {"IsFcoeInstalled", &CHelper::IsFcoeInstalled, "InstalledTERN_FCOE",
     "IsFcoeInstalled() - Unable to open the Fcoe installation status registry value - exiting",
     "IsFcoeInstalled() - fcoe was not installed - exiting"},
    {"IsTernInstalled", &CHelper::IsTernInstalled, "InstalledTERN",
     "IsTernInstalled() - Unable to open the TERN installation status registry value - exiting",
     "IsTernInstalled() - TERN was not installed - exiting"},
    {"IsZorInstalled", &CHelper::IsZorInstalled, "InstalledTERN_ZOR",
     "IsZorInstalled() - Unable to open the ZOR installation status registry value - exiting",
     "IsZorInstalled() - ZOR was not installed - exiting"},
    // The texts of FCoE, on purpose.
    {"IsIscsiInstalled", &CHelper::IsIscsiInstalled, "InstalledTERN_ISCSI",
     "IsIscsiInstalled() - Unable to open the Fcoe installation status registry value - exiting",
     "IsIscsiInstalled() - fcoe was not installed - exiting"},
};

class InstallState : public ::testing::TestWithParam<InstallStateRow>
{
protected:
    /// Asks, and traces the answer's lines.
    bool Ask()
    {
        const LibraryTrace trace;
        const bool answer = (CHelper().*GetParam().isInstalled)();
        messages = trace.Messages();
        return answer;
    }
    [[nodiscard]] std::string Entering() const { return "Enterning CHelper::" + GetParam().name + "()"; }
    [[nodiscard]] std::string Exiting() const { return "Exiting CHelper::" + GetParam().name + "()"; }

    const ScratchRegistryKey registry{kNetworkServices};
    std::vector<std::string> messages;
};

class DebugSwitches : public ::testing::Test
{
protected:
    const ScratchRegistryKey registry{kNetworkServices};
    CHelper helper;
    DWORD value = 55;
    COrvString text{"before"};
};
} // namespace

using InstalledLanguage = DebugSwitches;
using DebugFeature = DebugSwitches;

TEST_P(InstallState, TheTextOneIsInstalled)
{
    SetRegistryText(kTern, GetParam().value, "1");
    EXPECT_TRUE(Ask());
    EXPECT_THAT(messages, ElementsAre(Entering(), Exiting()));
}

TEST_P(InstallState, WithoutTheKeyNothingIsInstalled)
{
    EXPECT_FALSE(Ask());
    EXPECT_THAT(
        messages,
        ElementsAre(Entering(), GetParam().name + "() - Unable to open the TERN registry key - exiting", Exiting()));
}

TEST_P(InstallState, WithoutItsValueItIsNotInstalled)
{
    for (const InstallStateRow& other : kInstallStates) {
        if (other.name != GetParam().name) {
            SetRegistryText(kTern, other.value, "1");
        }
    }
    EXPECT_FALSE(Ask());
    EXPECT_THAT(messages, ElementsAre(Entering(), GetParam().unreadable, Exiting()));
}

TEST_P(InstallState, OnlyTheExactTextCounts)
{
    for (const char* text : {"1 ", " 1", "0", "", "01", "yes"}) {
        SetRegistryText(kTern, GetParam().value, text);
        EXPECT_FALSE(Ask()) << '"' << text << '"';
        EXPECT_THAT(messages, ElementsAre(Entering(), GetParam().notInstalled, Exiting()));
    }
}

TEST_P(InstallState, TheNumberOneIsNotInstalled)
{
    SetRegistryNumber(kTern, GetParam().value, 1);
    EXPECT_FALSE(Ask());
    EXPECT_THAT(messages, ElementsAre(Entering(), GetParam().notInstalled, Exiting()));
}

TEST_P(InstallState, AValueTooLongToBeAFlagIsUnreadable)
{
    SetRegistryText(kTern, GetParam().value, std::string(600, '1'));
    EXPECT_FALSE(Ask());
    EXPECT_THAT(messages, ElementsAre(Entering(), GetParam().unreadable, Exiting()));
}

INSTANTIATE_TEST_SUITE_P(Each, InstallState, ::testing::ValuesIn(kInstallStates),
                         [](const auto& row) { return row.param.name; });

TEST_F(DebugSwitches, DebuggingIsOnOnlyWhenItsNumberIsOne)
{
    for (const DWORD number : {0u, 2u, 0xFFFFFFFFu}) {
        SetRegistryNumber(kProduct, "Debugging", number);
        EXPECT_FALSE(helper.IsDebugEnbled()) << number;
    }
    SetRegistryNumber(kProduct, "Debugging", 1);
    const LibraryTrace trace;
    EXPECT_TRUE(helper.IsDebugEnbled());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enterning CHelper::IsDebugEnbled()", "Opened COrvRegKey::GetValue ",
                            "Opened COrvRegKey::GetValue :0", "Opened COrvRegKey::GetValue :1",
                            "IsDebugEnbled() - debugging is enabled - exiting", "Exiting CHelper::IsDebugEnbled()"));
}

TEST_F(DebugSwitches, DebuggingThatIsOffSaysNothingMore)
{
    SetRegistryNumber(kProduct, "Debugging", 0);
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsDebugEnbled());
    EXPECT_THAT(trace.Messages(), ElementsAre("Enterning CHelper::IsDebugEnbled()", "Opened COrvRegKey::GetValue ",
                                              "Opened COrvRegKey::GetValue :0", "Opened COrvRegKey::GetValue :1",
                                              "Exiting CHelper::IsDebugEnbled()"));
}

TEST_F(DebugSwitches, WithoutTheProductKeyTheTextNamesAnotherKey)
{
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsDebugEnbled());
    EXPECT_THAT(trace.Messages(), ElementsAre("Enterning CHelper::IsDebugEnbled()",
                                              "IsDebugEnbled() - Unable to open the TERN registry key - exiting",
                                              "Exiting CHelper::IsDebugEnbled()"));
}

TEST_F(DebugSwitches, WithoutTheValueOrWithATextDebuggingIsOff)
{
    CreateRegistryKey(kProduct);
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsDebugEnbled());
    EXPECT_THAT(trace.Messages(), ElementsAre("Enterning CHelper::IsDebugEnbled()", "Opened COrvRegKey::GetValue ",
                                              "Opened COrvRegKey::GetValue :2", "Opened COrvRegKey::GetValue :0",
                                              "IsDebugEnbled() - Unable to open the debug registry value - exiting",
                                              "Exiting CHelper::IsDebugEnbled()"));
    SetRegistryText(kProduct, "Debugging", "1");
    EXPECT_FALSE(helper.IsDebugEnbled());
}

TEST_F(DebugSwitches, WithDebuggingOffASettingIsFalseAndTheValueUntouched)
{
    SetRegistryNumber(kProduct, "Debugging", 0);
    SetRegistryNumber(kDebug, "Setting", 1);
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
    EXPECT_EQ(value, 55u);
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Enterning CHelper::IsSettingDebugable()", "Enterning CHelper::IsDebugEnbled()",
                    "Opened COrvRegKey::GetValue ", "Opened COrvRegKey::GetValue :0", "Opened COrvRegKey::GetValue :1",
                    "Exiting CHelper::IsDebugEnbled()", "IsSettingDebugable() - debugging is not turned on - exiting",
                    "Exiting CHelper::IsDebugEnbled()"));
}

TEST_F(DebugSwitches, ASettingIsReadAndTheExitLineNamesTheOtherOperation)
{
    SetRegistryNumber(kProduct, "Debugging", 1);
    SetRegistryNumber(kDebug, "Setting", 17);
    const LibraryTrace trace;
    EXPECT_TRUE(helper.IsSettingDebugable("Setting", value));
    EXPECT_EQ(value, 17u);
    EXPECT_EQ(trace.Messages().front(), "Enterning CHelper::IsSettingDebugable()");
    EXPECT_EQ(trace.Messages().back(), "Exiting CHelper::IsDebugEnbled()");
}

TEST_F(DebugSwitches, ASettingThatIsMissingIsFalseAndZero)
{
    SetRegistryNumber(kProduct, "Debugging", 1);
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
    EXPECT_EQ(value, 0u);
}

TEST_F(DebugSwitches, ASettingThatIsNotANumberIsFalse)
{
    SetRegistryNumber(kProduct, "Debugging", 1);
    SetRegistryText(kDebug, "Setting", "1");
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
    EXPECT_EQ(value, static_cast<DWORD>('1'));
    SetRegistryText(kDebug, "Setting", "a long text");
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
    SetRegistryBytes(kDebug, "Setting", std::string("\1\0\0\0", 4), REG_BINARY);
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
}

TEST_F(DebugSwitches, WithDebuggingOffATextIsFalseAndUntouched)
{
    SetRegistryText(kDebug, "Text", "stored");
    const LibraryTrace trace;
    EXPECT_FALSE(helper.GetDebugString("Text", text));
    EXPECT_EQ(text.Text(), "before");
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Enterning CHelper::GetDebugString()", "Enterning CHelper::IsDebugEnbled()",
                    "IsDebugEnbled() - Unable to open the TERN registry key - exiting",
                    "Exiting CHelper::IsDebugEnbled()", "GetDebugString() - debugging is not turned on - exiting",
                    "Exiting CHelper::GetDebugString()"));
}

TEST_F(DebugSwitches, ATextIsReadWithDebuggingOn)
{
    SetRegistryNumber(kProduct, "Debugging", 1);
    SetRegistryText(kDebug, "Text", "stored");
    EXPECT_TRUE(helper.GetDebugString("Text", text));
    EXPECT_EQ(text.Text(), "stored");
    EXPECT_FALSE(helper.GetDebugString("Other", text));
    EXPECT_EQ(text.Text(), "");
}

TEST_F(DebugFeature, IsOnOnlyWhenItsNumberIsOneAndTracesNothing)
{
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    CreateRegistryKey(kTern);
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    SetRegistryText(kTern, "DebugFeature", "1");
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    SetRegistryBytes(kTern, "DebugFeature", std::string("\1\0\0\0", 4), REG_BINARY);
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    SetRegistryNumber(kTern, "DebugFeature", 2);
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    SetRegistryNumber(kTern, "DebugFeature", 1);
    EXPECT_TRUE(helper.IsDebugFeatureOn());
    EXPECT_THAT(trace.Messages(), IsEmpty());
}

TEST_F(InstalledLanguage, IsTheRecordedShortName)
{
    SetRegistryText(kProduct, "InstalledLangShortString", "ENU");
    EXPECT_EQ(helper.GetInstalledLanguage(text), 0);
    EXPECT_EQ(text.Text(), "ENU");
}

TEST_F(InstalledLanguage, WithoutKeyOrValueItIsMinusOne)
{
    EXPECT_EQ(helper.GetInstalledLanguage(text), -1);
    EXPECT_EQ(text.Text(), "");
    CreateRegistryKey(kProduct);
    EXPECT_EQ(helper.GetInstalledLanguage(text), -1);
}

TEST(HelperKeys, AreOpenedForReading)
{
    const ScratchRegistryKey scratch(kNetworkServices);
    CreateRegistryKey(kTern);
    SetRegistryNumber(kProduct, "Debugging", 1);
    CreateRegistryKey(kDebug);
    CHelper helper;
    DWORD value = 0;
    COrvString text;
    const RegistryAccess access;
    for (const InstallStateRow& row : kInstallStates) {
        EXPECT_FALSE((helper.*row.isInstalled)());
    }
    EXPECT_FALSE(helper.IsDebugFeatureOn());
    EXPECT_FALSE(helper.IsSettingDebugable("Setting", value));
    EXPECT_FALSE(helper.GetDebugString("Text", text));
    EXPECT_EQ(helper.GetInstalledLanguage(text), -1);
    const REGSAM read = KEY_READ;
    // Five components and the debug feature; twice the switch and once the language; once each debug value.
    EXPECT_EQ(RegistryAccess::AskedFor(std::string(kTern) + "\\"), std::vector<REGSAM>(6, read));
    EXPECT_EQ(RegistryAccess::AskedFor(kProduct), std::vector<REGSAM>(3, read));
    EXPECT_EQ(RegistryAccess::AskedFor(kDebug), std::vector<REGSAM>(2, read));
}
