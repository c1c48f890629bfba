#include "DeviceInstall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "DeviceFixtures.h"
#include "DevicePass.h"
#include "DevicePassState.h"
#include "DriverUpdate.h"
#include "InfReader.h"
#include "JapaneseCodePage.h"
#include "LangString.h"
#include "ResultKeys.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kHardwareId[] = "PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kInf[] = "C:\\KIT\\OTHER.INF"; // of no driver family
constexpr char kFamilyInf[] = "C:\\KIT\\NGEA64.INF";
constexpr int32_t kDeviceExists = static_cast<int32_t>(0xE0000207);

class DeviceInstall : public testing::Test
{
protected:
    DeviceInstall() { Name(kInf); }
    void Name(std::string_view infPath)
    {
        m_record.infPath.fill('\0');
        std::ranges::copy(infPath, m_record.infPath.begin());
        std::ranges::copy(std::string_view(kHardwareId), m_record.hardwareId.begin());
    }
    void Install(RecordingInstall& install)
    {
        InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, kNoProgress);
    }

    ScratchRegistryKey m_results{kBasedriversKey};
    InfKit m_kit; // an empty kit: no uninstall data file, a fresh run's state
    DriverInstallRecord m_record = RecordOf("Windows Vista");
};

/// Keeps the text that was reported last.
class Progress
{
public:
    [[nodiscard]] ReportProgressFn Report()
    {
        return [this](const std::string& text) { m_text = text; };
    }
    [[nodiscard]] const std::string& Text() const { return m_text; }

private:
    std::string m_text;
};

/// The test program's own string table (DeviceInstallTest.rc) holds text 10 in two languages.
class OwnTexts
{
public:
    explicit OwnTexts(uint16_t language)
    {
        resourceModule = GetModuleHandleA(nullptr);
        runLanguageId = language;
    }
    ~OwnTexts()
    {
        resourceModule = nullptr;
        runLanguageId = 1033;
    }
    OwnTexts(const OwnTexts&) = delete;
    OwnTexts& operator=(const OwnTexts&) = delete;
};

void Describe(std::string_view description)
{
    deviceDescription.fill('\0');
    std::ranges::copy(description, deviceDescription.begin());
}
} // namespace

TEST_F(DeviceInstall, TheDevicesDescriptionIsReportedBeforeTheInstall)
{
    const OwnTexts texts(1033);
    Progress progress;
    Describe("Norda 10G %s Adapter");
    RecordingInstall install;
    install.duringCall = [&progress] { EXPECT_EQ(progress.Text(), "Installing Norda 10G %s Adapter now"); };
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, progress.Report());
    EXPECT_EQ(install.calls.size(), 1U);
}

TEST_F(DeviceInstall, AResourceTextWithWrongPlaceholdersIsOnlyReported)
{
    const OwnTexts texts(1031);
    Progress progress;
    Describe("Norda");
    RecordingInstall install;
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, progress.Report());
    EXPECT_EQ(progress.Text(), "%n%n Norda %s %d");
}

TEST_F(DeviceInstall, TheReportedTextHasAtMost259Characters)
{
    const OwnTexts texts(1033);
    Progress progress;
    Describe(std::string(259, 'x'));
    RecordingInstall install;
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, progress.Report());
    EXPECT_EQ(progress.Text(), "Installing " + std::string(248, 'x'));
}

TEST_F(DeviceInstall, TheCutOfTheReportedTextSplitsNoCharacter)
{
    const OwnTexts texts(1033);
    Progress progress;
    const JapaneseCodePage japanese;
    Describe(std::string(247, 'x') + kJapaneseLetter);
    RecordingInstall install;
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, &install, progress.Report());
    EXPECT_EQ(progress.Text(), "Installing " + std::string(247, 'x'));
}

TEST_F(DeviceInstall, TheSourcePathExistsOnlyDuringTheCall)
{
    ASSERT_FALSE(RegistryKeyExists(kBasedriversKey));
    RecordingInstall install;
    Install(install);
    ASSERT_EQ(install.calls.size(), 1U);
    EXPECT_EQ(install.calls[0].sourcePath, kInf);
    EXPECT_TRUE(RegistryKeyExists(kBasedriversKey)) << "a missing key is created";
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "Tavunstl_source_path"), "<none>");
}

TEST_F(DeviceInstall, TheSourcePathIsPlainTextAndLeavesOtherValuesAlone)
{
    SetRegistryText(kBasedriversKey, "Other", "kept");
    RecordingInstall install;
    std::optional<RegistryValue> value;
    install.duringCall = [&value] { value = ReadRegistryValue(kBasedriversKey, "Tavunstl_source_path"); };
    Install(install);
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->type, DWORD{REG_SZ});
    EXPECT_EQ(value->bytes, std::string(kInf) + '\0');
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "Other"), "kept");
}

TEST_F(DeviceInstall, ASourcePathKeyThatCannotBeCreatedDoesNotStopTheInstall)
{
    const MachineKeyOverride emptyMachine;
    // Below a key that lasts only until the next start, no lasting key can be created.
    CreateVolatileRegistryKey(R"(Software\Norda)");
    RecordingInstall install({.status = kDeviceExists, .lastError = 0});
    Install(install);
    ASSERT_EQ(install.calls.size(), 1U);
    EXPECT_EQ(install.calls[0].infPath, kInf);
    EXPECT_EQ(install.calls[0].sourcePath, "<none>");
    EXPECT_FALSE(RegistryKeyExists(kBasedriversKey));
    EXPECT_TRUE(DevicePassState.installFailed) << "the result still counts";
}

TEST_F(DeviceInstall, StatusAndLastErrorAreTracedInHexadecimal)
{
    struct Row
    {
        RecordingInstall::Answer answer;
        const char* line;
    };
    const Row rows[] = {
        {{.status = 0, .lastError = 0}, " 2K/XP UpdateDriver() returned: 0 ---> GetLastError = 0\n"},
        {{.status = 1, .lastError = 0}, " 2K/XP UpdateDriver() returned: 1 ---> GetLastError = 0\n"},
        {{.status = 0x7FFFFFFF, .lastError = 3010},
         " 2K/XP UpdateDriver() returned: 7fffffff ---> GetLastError = bc2\n"},
        {{.status = kDeviceExists, .lastError = 0xE0000207},
         " 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = e0000207\n"},
        {{.status = -1, .lastError = 5}, " 2K/XP UpdateDriver() returned: ffffffff ---> GetLastError = 5\n"},
    };
    for (const Row& row : rows) {
        TraceCapture trace;
        RecordingInstall install(row.answer);
        Install(install);
        const std::vector<std::string> messages = trace.Messages();
        ASSERT_GT(messages.size(), 3U) << row.line;
        EXPECT_EQ(messages[0], "Entering - GetLanguageSpecificString");
        EXPECT_EQ(messages[1], "==>installing driver(s)\n");
        EXPECT_EQ(messages[2], "2K/XP install: " + std::string(kHardwareId) + ", " + kInf + "\n");
        EXPECT_EQ(messages[3], row.line);
        EXPECT_EQ(messages[4], "Enter -> PostInstallRegResult\n") << "whatever the status was";
    }
}

TEST_F(DeviceInstall, OnlyTheOneStatusIsARefusal)
{
    for (const int32_t status : {0, 1, -1, static_cast<int32_t>(0xE0000206), static_cast<int32_t>(0x800F0207)}) {
        DevicePassState = {};
        RecordingInstall install({.status = status, .lastError = 0xE0000207});
        Install(install);
        EXPECT_FALSE(DevicePassState.unreportedRefusal) << std::hex << status;
        EXPECT_FALSE(DevicePassState.installFailed) << std::hex << status;
    }
    RecordingInstall install({.status = kDeviceExists, .lastError = 0});
    Install(install);
    EXPECT_TRUE(DevicePassState.unreportedRefusal) << "an INF of no family does not report it";
    EXPECT_TRUE(DevicePassState.installFailed);
}

TEST_F(DeviceInstall, ARefusalIsReportedAsFailureAndThenCleared)
{
    Name(kFamilyInf);
    RecordingInstall install({.status = kDeviceExists, .lastError = 0});
    Install(install);
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "Install"), "FAILURE");
    EXPECT_FALSE(DevicePassState.unreportedRefusal);
    EXPECT_TRUE(DevicePassState.installFailed) << "the run's outcome text still depends on it";
}

TEST_F(DeviceInstall, WithoutAnInterfaceEveryInstallCountsAsRefused)
{
    Name(kFamilyInf);
    TraceCapture trace;
    InstallMatchedDevice(InstallRoute::DriverInterface, m_record, kDevice, nullptr, kNoProgress);
    EXPECT_THAT(trace.Messages(), Contains(" 2K/XP UpdateDriver() returned: e0000207 ---> GetLastError = 57\n"));
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "TAVG_PCIE_Install"), "FAILURE");
    EXPECT_TRUE(DevicePassState.installFailed);
}

TEST_F(DeviceInstall, TheStorageTestIsAskedOnlyAfterAnInstallWithoutErrorAndUntilItSaysYes)
{
    constexpr char kAsked[] = "Enter -> GetNetCfgInstanceId()\n";
    TraceCapture trace;
    RecordingInstall withError({.status = 0, .lastError = 2});
    EXPECT_THAT(TraceOf(trace, [&] { Install(withError); }), Not(Contains(kAsked)));

    RecordingInstall withoutError({.status = -1, .lastError = 0});
    const std::vector<std::string> lines = TraceOf(trace, [&] { Install(withoutError); });
    ASSERT_THAT(lines, Contains(kAsked));
    EXPECT_EQ(*(std::ranges::find(lines, kAsked) + 1), kDevice);

    DevicePassState.storageAdapterFound = true;
    EXPECT_THAT(TraceOf(trace, [&] { Install(withoutError); }), Not(Contains(kAsked)));
}

TEST_F(DeviceInstall, TheMilleniumRouteUsesTheDriverUpdateOnly)
{
    const MachineKeyOverride emptyMachine;
    RecordingInstall install;
    TraceCapture trace;
    // What the platform makes of a device that it does not have is its own.
    const std::vector<std::string> updateLines = TraceOf(trace, [] { UpdateDriver(kInf, kHardwareId); });
    ASSERT_EQ(updateLines.size(), 1U);
    InstallMatchedDevice(InstallRoute::DriverUpdate, m_record, kDevice, &install, kNoProgress);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - GetLanguageSpecificString", "==>installing driver(s)\n",
                            "ME install: " + std::string(kHardwareId) + ", " + kInf + "\n", updateLines[0]));
    EXPECT_TRUE(install.calls.empty());
}

TEST_F(DeviceInstall, TheLegacyRouteUsesTheLegacyInstallerOnly)
{
    const MachineKeyOverride emptyMachine;
    RecordingInstall install;
    TraceCapture trace;
    InstallMatchedDevice(InstallRoute::LegacyInstaller, m_record, kDevice, &install, kNoProgress);
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Entering - GetLanguageSpecificString", "==>installing driver(s)\n",
                    "98 install: " + std::string(kHardwareId) + ", " + kInf + "\n", "Enter -> Win98Install",
                    "g_98key: \n", "opening registry key to enumerate: Enum\\" + std::string(kHardwareId) + "\n",
                    "Exit -> Win98Install"));
    EXPECT_TRUE(install.calls.empty());
}

TEST_F(DeviceInstall, TheOlderFamiliesWalkTheirOwnKeyAndNeedNoInterface)
{
    // The walk reads "Enum\PCI"; on the millennium edition, the compatible IDs come from the NT key; on 98
    // they are not read.
    const MachineKeyOverride emptyMachine;
    m_kit.Add("Drv", "other.inf", kDevice, "Norda", "$Chicago$");
    CreateRegistryKey("Enum\\PCI\\" + std::string(kDevice));
    struct Row
    {
        const char* family;
        const char* line;
    };
    for (const Row& row : {Row{"Windows Millenium", "ME install: "}, Row{"Windows 98", "98 install: "}}) {
        std::optional<SimulatedDevice> compatibleIds;
        if (row.family == std::string("Windows Millenium")) {
            compatibleIds.emplace(kDevice);
        }
        DevicePassState = {};
        DriverInstallRecord record = RecordOf(row.family);
        TraceCapture trace;
        EXPECT_EQ(RunDevicePass(record, nullptr, kNoProgress), 0U) << row.family;
        EXPECT_THAT(trace.Messages(),
                    Contains(row.line + std::string(kHardwareId) + ", " + std::string(TextIn(record.infPath)) + "\n"))
            << row.family;
        EXPECT_TRUE(DevicePassState.deviceMatched) << row.family;
    }
}
