#include "LegacyInstall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "DeviceFixtures.h"
#include "HelperPrograms.h"
#include "ImportOverride.h"
#include "InfReader.h"
#include "JapaneseCodePage.h"
#include "RegistryAccess.h"

using testing::ElementsAre;

namespace {
constexpr char kHardwareId[] = "PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kDeviceKey[] = "Enum\\PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kMatchedId[] = "VEN_5D1A&DEV_1A2B";
constexpr char kInf[] = "C:\\KIT\\NGEA.INF";
constexpr char kMsiKey[] = R"(SOFTWARE\Norda\MSI)";

std::string CurrentDirectory()
{
    std::array<char, MAX_PATH> directory{};
    GetCurrentDirectoryA(MAX_PATH, directory.data());
    return directory.data();
}

/// A program directory elsewhere than the current directory, on a machine without any of the keys.
class LegacyInstall : public testing::Test
{
protected:
    LegacyInstall() { std::ranges::copy(std::string_view(kMatchedId), matchedHardwareId.begin()); }
    ~LegacyInstall() override { SetCurrentDirectoryA(m_startDirectory.c_str()); }

    std::string m_startDirectory = CurrentDirectory();
    MachineKeyOverride m_emptyMachine;
    InfKit m_kit;
};

std::vector<std::string> LaunchLines(const std::string& instance, const std::string& directory)
{
    return {"setting RegPCIpath: " + instance + "\n",
            "Entering - LaunchAppandWait",
            "LaunchAppandWait(),  Rundll.exe Inst98.dll,EntryPoint PCI\\VEN_5D1A&DEV_1A2B C:\\KIT\\NGEA.INF\n",
            "current directory:  " + directory + "\n",
            "waiting for process to exit",
            "done waiting for process to exit\n"};
}
} // namespace

TEST_F(LegacyInstall, ThreeInstancesRunTheHelperThreeTimesEachUnderItsOwnPath)
{
    for (const char* instance : {"BUS_00", "BUS_01", "BUS_02"}) {
        CreateRegistryKey(std::string(kDeviceKey) + "\\" + instance);
    }
    const std::string program = m_kit.Directory().At(kRundll);
    const std::string directory = m_kit.Directory().Path();
    MakeHelperProgram(program);
    TraceCapture trace;
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);

    std::vector<std::string> expected{"Enter -> Win98Install", "g_98key: VEN_5D1A&DEV_1A2B\n",
                                      "opening registry key to enumerate: " + std::string(kDeviceKey) + "\n"};
    std::vector<std::string> instances = RegistrySubKeys(kDeviceKey);
    ASSERT_EQ(instances.size(), 3U);
    const std::vector<LegacyRun> runs = LegacyRunsOf(program);
    ASSERT_EQ(runs.size(), 3U);
    for (std::size_t index = 0; index < 3; ++index) {
        const std::string path = std::string(kDeviceKey) + "\\" + instances[index];
        EXPECT_EQ(runs[index].commandLine, "Rundll.exe Inst98.dll,EntryPoint PCI\\VEN_5D1A&DEV_1A2B C:\\KIT\\NGEA.INF");
        EXPECT_EQ(runs[index].directory, directory);
        EXPECT_EQ(runs[index].instancePath, path);
        Append(expected, LaunchLines(path, directory));
    }
    Append(expected, {"Exit -> Win98Install"});
    EXPECT_EQ(trace.Messages(), expected);
}

TEST_F(LegacyInstall, TheInstancePathStaysInTheRegistryAsExpandableText)
{
    CreateRegistryKey(std::string(kDeviceKey) + "\\BUS_00");
    Win98Install(kInf, kHardwareId);
    const std::optional<RegistryValue> value = ReadRegistryValue(kMsiKey, "RegPCIpath");
    ASSERT_TRUE(value.has_value());
    EXPECT_EQ(value->type, DWORD{REG_EXPAND_SZ});
    EXPECT_EQ(value->bytes, std::string(kDeviceKey) + "\\BUS_00" + '\0');
}

TEST_F(LegacyInstall, TheProgramsDirectoryStaysTheCurrentDirectory)
{
    ASSERT_NE(CurrentDirectory(), m_kit.Directory().Path());
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_EQ(CurrentDirectory(), m_kit.Directory().Path());
}

TEST_F(LegacyInstall, ASecondByteThatLooksLikeABackslashDoesNotEndTheProgramsDirectory)
{
    const JapaneseCodePage japanese;
    LocationInfo.programName = m_kit.Directory().At(kJapaneseLetter) + ".exe";
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_EQ(CurrentDirectory(), m_kit.Directory().Path());
}

TEST_F(LegacyInstall, ADeviceWithoutKeyEndsItWithoutARun)
{
    TraceCapture trace;
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> Win98Install", "g_98key: VEN_5D1A&DEV_1A2B\n",
                                              "opening registry key to enumerate: " + std::string(kDeviceKey) + "\n",
                                              "Exit -> Win98Install"));
    EXPECT_FALSE(RegistryKeyExists(kMsiKey));
}

TEST_F(LegacyInstall, ADeviceWithoutInstancesRunsNothing)
{
    CreateRegistryKey(kDeviceKey);
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_FALSE(RegistryKeyExists(kMsiKey));
}

TEST_F(LegacyInstall, AnInstanceWithoutTheKeyForItsPathIsSkippedWithoutATrace)
{
    for (const char* instance : {"BUS_00", "BUS_01"}) {
        CreateRegistryKey(std::string(kDeviceKey) + "\\" + instance);
    }
    const std::string program = m_kit.Directory().At(kRundll);
    MakeHelperProgram(program);
    // Below a key that lasts only until the next start, no lasting key can be created; the key that switches the trace
    // on exists before.
    CreateVolatileRegistryKey(R"(SOFTWARE\Norda\Basedrivers\Debug)");
    TraceCapture trace;
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_FALSE(RegistryKeyExists(kMsiKey));
    EXPECT_THAT(LegacyRunsOf(program), testing::IsEmpty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> Win98Install", "g_98key: VEN_5D1A&DEV_1A2B\n",
                                              "opening registry key to enumerate: " + std::string(kDeviceKey) + "\n",
                                              "Exit -> Win98Install"));
}

namespace {
LSTATUS WINAPI RefuseTheValue(HKEY, LPCSTR, DWORD, DWORD, const BYTE*, DWORD)
{
    return ERROR_NO_SYSTEM_RESOURCES;
}
} // namespace

TEST_F(LegacyInstall, AValueThatCannotBeWrittenDoesNotKeepTheHelperFromRunning)
{
    CreateRegistryKey(std::string(kDeviceKey) + "\\BUS_00");
    const std::string program = m_kit.Directory().At(kRundll);
    MakeHelperProgram(program);
    TraceCapture trace;
    {
        const ImportOverride refusal("RegSetValueExA", reinterpret_cast<void*>(RefuseTheValue));
        EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    }
    EXPECT_EQ(ReadRegistryValue(kMsiKey, "RegPCIpath"), std::nullopt);
    EXPECT_EQ(LegacyRunsOf(program).size(), 1U);
    std::vector<std::string> expected{"Enter -> Win98Install", "g_98key: VEN_5D1A&DEV_1A2B\n",
                                      "opening registry key to enumerate: " + std::string(kDeviceKey) + "\n"};
    Append(expected, LaunchLines(std::string(kDeviceKey) + "\\BUS_00", m_kit.Directory().Path()));
    Append(expected, {"Exit -> Win98Install"});
    EXPECT_EQ(trace.Messages(), expected);
}

TEST_F(LegacyInstall, AHelperThatCannotBeStartedDoesNotEndTheWalk)
{
    for (const char* instance : {"BUS_00", "BUS_01"}) {
        CreateRegistryKey(std::string(kDeviceKey) + "\\" + instance);
    }
    TraceCapture trace;
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ(std::ranges::count(messages, "CreateProcess() error (path too long?)"), 2);
    EXPECT_EQ(messages.back(), "Exit -> Win98Install");
}

TEST_F(LegacyInstall, AHardwareIdBeyondThePathLimitFindsNothing)
{
    const std::string longId = "PCI\\" + std::string(280, 'x');
    TraceCapture trace;
    EXPECT_EQ(Win98Install(kInf, longId), 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> Win98Install", "g_98key: VEN_5D1A&DEV_1A2B\n",
                            "opening registry key to enumerate: " + ("Enum\\" + longId).substr(0, 259) + "\n",
                            "Exit -> Win98Install"));
}

TEST_F(LegacyInstall, TheDeviceKeyIsOpenedForItsSubKeysOnlyAndTheResultKeyForEverything)
{
    CreateRegistryKey(std::string(kDeviceKey) + "\\BUS_00");
    const RegistryAccess access;
    EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    EXPECT_THAT(access.AskedFor(kDeviceKey), ElementsAre(KEY_ENUMERATE_SUB_KEYS));
    EXPECT_THAT(access.AskedFor(R"(Software\Norda\MSI)"), ElementsAre(KEY_ALL_ACCESS));
}

namespace {
int startsWithDeletion = 0;

BOOL WINAPI DeleteTheDeviceKey(LPCSTR, LPSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID, LPCSTR,
                               LPSTARTUPINFOA, LPPROCESS_INFORMATION)
{
    ++startsWithDeletion;
    DeleteRegistryTree(kDeviceKey);
    return FALSE;
}
} // namespace

TEST_F(LegacyInstall, AKeyDeletedDuringTheWalkEndsItWithoutFurtherRuns)
{
    for (const char* instance : {"BUS_00", "BUS_01", "BUS_02"}) {
        CreateRegistryKey(std::string(kDeviceKey) + "\\" + instance);
    }
    startsWithDeletion = 0;
    TraceCapture trace;
    {
        const ImportOverride deletion("CreateProcessA", reinterpret_cast<void*>(DeleteTheDeviceKey));
        EXPECT_EQ(Win98Install(kInf, kHardwareId), 0);
    }
    EXPECT_EQ(startsWithDeletion, 1);
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ(std::ranges::count(messages, "Entering - LaunchAppandWait"), 1);
    EXPECT_EQ(messages.back(), "Exit -> Win98Install");
}
