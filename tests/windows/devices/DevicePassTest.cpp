#include "DevicePass.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <utility>

#include "AnswerReuse.h"
#include "CallCount.h"
#include "DeviceFixtures.h"
#include "DevicePassState.h"
#include "EntryPoints.h"
#include "EnumerationEnd.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "InfSearch.h"
#include "RegistryAccess.h"
#include "ResultKeys.h"
#include "SearchIds.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
constexpr char kOtherDevice[] = "VEN_5D1A&DEV_1A2C&SUBSYS_00011A2C&REV_03";

class DevicePass : public testing::Test
{
protected:
    ScratchRegistryKey m_results{kBasedriversKey};
    DriverInstallRecord m_record = RecordOf("Windows Vista");
    RecordingInstall m_install;

    uint32_t Run() { return EnumerateRegistryForPCIDevices(m_record, &m_install, nullptr); }
};

/// The lines of a whole pass in which `linesOfTested` follow the acceptance of device `tested` and every other device
/// of this machine is rejected.
std::vector<std::string> WholePass(const std::string& tested, const std::vector<std::string>& linesOfTested)
{
    std::vector<std::string> lines{"Enter -> EnumerateRegistryForPCIDevices()\n",
                                   "************ enumerating registry for devices...\n"};
    for (const std::string& name : RegistrySubKeys(kPciKey)) {
        Append(lines, {"Enter -> IsNordaNetworkDevice()\n", std::string(kPciKey) + "\\" + name});
        if (name == tested) {
            Append(lines, {"Norda Network Adapter found!"});
        }
        Append(lines, {"Exit -> IsNordaNetworkDevice()\n"});
        if (name == tested) {
            Append(lines, linesOfTested);
        }
    }
    Append(lines,
           {"************ finished enumerating registry for devices\n", "Exit -> EnumerateRegistryForPCIDevices()\n"});
    return lines;
}

/// The lines of the list reading that begins each device's search.
std::vector<std::string> ListLines(TraceCapture& trace)
{
    return TraceOf(trace, [] {
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        GetInfDirs(directories, excludes);
    });
}

/// The lines of one search through the kit's directories, up to the first match.
std::vector<std::string> SearchLines(TraceCapture& trace, const InfKit& kit, const std::string& searchId)
{
    std::vector<std::string> lines;
    for (const std::string& directory : kit.SearchDirectories()) {
        lines.push_back(directory);
        std::array<char, 260> infPath{};
        bool found = false;
        Append(lines, TraceOf(trace, [&] {
                   found = GetInfFile(searchId.c_str(), directory, RecordOf("Windows Vista"), infPath.data(), {});
               }));
        if (found) {
            break;
        }
    }
    return lines;
}

/// The lines of a device's storage-adapter test, for a device without a network-configuration instance.
std::vector<std::string> StorageLines(const std::string& device)
{
    return {"Enter -> GetNetCfgInstanceId()\n", device, "Exit -> GetNetCfgInstanceId()\n"};
}

/// The lines of an install by the driver-install interface of an INF that belongs to no driver family.
std::vector<std::string> InstallLines(const std::string& device, const std::string& infPath, const std::string& answer)
{
    const std::string upper = UpperCased(infPath);
    return {"!!FOUND INF MATCH\n",
            "Entering - GetLanguageSpecificString",
            "==>installing driver(s)\n",
            "2K/XP install: PCI\\" + device + ", " + upper + "\n",
            " 2K/XP UpdateDriver() returned: " + answer + "\n",
            "Enter -> PostInstallRegResult\n",
            "inf file name and path is ->",
            upper,
            "inf file name is ->",
            upper.substr(upper.rfind('\\')),
            "A device other than a network device was installed"};
}
} // namespace

TEST_F(DevicePass, FamilyThatIsNotServedFailsWithoutEnumerating)
{
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    m_record = RecordOf("Windows XP");
    EXPECT_EQ(Run(), 0xFFFFFFFFU);
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> EnumerateRegistryForPCIDevices()\n",
                                              "Exit -> EnumerateRegistryForPCIDevices()\n"));
    EXPECT_TRUE(m_install.calls.empty());
}

TEST_F(DevicePass, MissingPciKeyFailsWithoutAnotherMessage)
{
    const MachineKeyOverride emptyMachine;
    for (const char* family :
         {"Windows Millenium", "Windows Whistler", "Windows 2000", "Windows Vista", "Windows 98"}) {
        TraceCapture trace;
        m_record = RecordOf(family);
        EXPECT_EQ(Run(), 0xFFFFFFFFU) << family;
        EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> EnumerateRegistryForPCIDevices()\n",
                                                  "Exit -> EnumerateRegistryForPCIDevices()\n"))
            << family;
    }
}

TEST_F(DevicePass, RejectedDevicesLeaveEverythingAsItWas)
{
    const InfKit kit;
    const SimulatedDevice device(kDevice, {{R"(PCI\VEN_1234&CC_020000)", R"(PCI\CC_020000)"}});
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass("none", {}));
    EXPECT_EQ(DevicePassState.deviceMatched, 0U);
    EXPECT_EQ(TextIn(m_record.hardwareId), "");
}

TEST_F(DevicePass, EmptyPciKeyGivesAnEmptyWalk)
{
    const MachineKeyOverride emptyMachine;
    CreateRegistryKey(kPciKey);
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass("none", {}));
}

TEST_F(DevicePass, EveryNTFamilyInstallsAMatchOfTheFirstPass)
{
    InfKit kit;
    const std::string inf = kit.Add("Drv", "other.inf", kDevice);
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kDevice) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kDevice));
    Append(expected, InstallLines(kDevice, inf, "0 ---> GetLastError = 0"));
    Append(expected, StorageLines(kDevice));

    for (const char* family : {"Windows Vista", "Windows Whistler", "Windows 2000"}) {
        trace.Clear();
        m_install.calls.clear();
        DevicePassState = {};
        m_record = RecordOf(family);
        EXPECT_EQ(Run(), 0U) << family;
        EXPECT_EQ(trace.Messages(), WholePass(kDevice, expected)) << family;
        ASSERT_EQ(m_install.calls.size(), 1U) << family;
        EXPECT_EQ(m_install.calls[0].infPath, UpperCased(inf)) << family;
        EXPECT_EQ(m_install.calls[0].hardwareId, "PCI\\" + std::string(kDevice)) << family;
        EXPECT_EQ(m_install.calls[0].flags, 0) << family;
        EXPECT_EQ(DevicePassState.deviceMatched, 1U) << family;
        EXPECT_EQ(DevicePassState.qdatInstalled, 0U) << family;
        EXPECT_EQ(DevicePassState.installFailed, 0U) << family;
    }
}

TEST_F(DevicePass, FourPassesSearchEverShorterIdsAndThenGiveUp)
{
    InfKit kit({"Drv", "More"});
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    kit.Add("More", "another.inf", "VEN_5D1A&DEV_0001");
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kDevice) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kDevice));
    const std::array<std::string, 3> ids{"VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "VEN_5D1A&DEV_1A2B&REV_03",
                                         "VEN_5D1A&DEV_1A2B"};
    for (std::size_t index = 0; index < ids.size(); ++index) {
        Append(expected, {ids[index], "Pass " + std::to_string(index + 2)});
        Append(expected, SearchLines(trace, kit, ids[index]));
    }
    trace.Clear();
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kDevice, expected));
    EXPECT_EQ(DevicePassState.deviceMatched, 0U);
    EXPECT_TRUE(m_install.calls.empty());
}

TEST_F(DevicePass, AMatchOfALaterPassKeepsTheFullIdInTheRecord)
{
    for (const char* listed : {"VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", "VEN_5D1A&DEV_1A2B&REV_03", "VEN_5D1A&DEV_1A2B"}) {
        InfKit kit;
        const std::string inf = kit.Add("Drv", "other.inf", listed);
        const SimulatedDevice device(kDevice);
        m_install.calls.clear();
        EXPECT_EQ(Run(), 0U) << listed;
        ASSERT_EQ(m_install.calls.size(), 1U) << listed;
        EXPECT_EQ(m_install.calls[0].hardwareId, "PCI\\" + std::string(kDevice)) << listed;
        EXPECT_EQ(TextIn(m_record.hardwareId), "PCI\\" + std::string(kDevice)) << listed;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf)) << listed;
    }
}

TEST_F(DevicePass, AMatchEndsTheSearchBeforeLaterPassesAndDirectories)
{
    InfKit kit({"Drv", "More"});
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_1A2B&REV_03");
    const std::string better = kit.Add("More", "another.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(better)) << "pass 2 comes before pass 3, whatever the directory";
    EXPECT_THAT(trace.Messages(), Contains("Pass 2"));
    EXPECT_THAT(trace.Messages(), Not(Contains("Pass 3")));
}

TEST_F(DevicePass, TheEarlierOfTwoDirectoriesThatListTheDeviceWins)
{
    InfKit kit({"Second", "First"});
    const std::string winner = kit.Add("Second", "other.inf", kDevice);
    kit.Add("First", "another.inf", kDevice);
    const SimulatedDevice device(kDevice);
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(winner));
}

TEST_F(DevicePass, WithinADirectoryTheFirstInfOfTheDirectorySearchWins)
{
    InfKit kit;
    kit.Add("Drv", "aaa.inf", kDevice);
    kit.Add("Drv", "bbb.inf", kDevice);
    WIN32_FIND_DATAA first{};
    const HANDLE search = FindFirstFileA((kit.SearchDirectories().front() + "*.inf").c_str(), &first);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    FindClose(search);
    const SimulatedDevice device(kDevice);
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(kit.SearchDirectories().front() + first.cFileName));
}

TEST_F(DevicePass, TheDmaEngineInfIsRecognisedInAnyLetterCase)
{
    for (const char* name : {"qdatdma.inf", "QDATDMA.INF", "QdatDma.inf"}) {
        InfKit kit;
        const std::string inf = kit.Add("Drv", name, kDevice);
        const SimulatedDevice device(kDevice);
        TraceCapture trace;
        EXPECT_EQ(Run(), 0U) << name;
        EXPECT_EQ(DevicePassState.qdatInstalled, 1U) << name;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf)) << name;
        const std::vector<std::string> messages = trace.Messages();
        const auto match = std::ranges::find(messages, "!!FOUND INF MATCH\n");
        ASSERT_LT(match + 1, messages.end()) << name;
        EXPECT_EQ(*(match + 1), "QDATINSTALLED\n") << name;
    }
}

TEST_F(DevicePass, TwoMatchesAreBothInstalledInRegistryOrder)
{
    InfKit kit;
    const std::string inf = kit.Add("Drv", "first.inf", kDevice);
    const std::string otherInf = kit.Add("Drv", "second.inf", kOtherDevice);
    const SimulatedDevice other(kOtherDevice);
    const SimulatedDevice device(kDevice);
    std::vector<std::string> expected;
    for (const std::string& name : RegistrySubKeys(kPciKey)) {
        if (name == kDevice || name == kOtherDevice) {
            expected.push_back("PCI\\" + name);
        }
    }
    ASSERT_EQ(expected.size(), 2U);
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[0].hardwareId, expected[0]);
    EXPECT_EQ(m_install.calls[1].hardwareId, expected[1]);
    EXPECT_EQ(TextIn(m_record.hardwareId), expected[1]) << "the record keeps the last matched device";
    EXPECT_EQ(m_install.calls[0].infPath, UpperCased(expected[0] == "PCI\\" + std::string(kDevice) ? inf : otherInf));
}

TEST_F(DevicePass, ADeviceIsInstalledBeforeTheNextOneIsRead)
{
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_1A2B");
    const SimulatedDevice device(kDevice);
    std::optional<SimulatedDevice> later;
    m_install.duringCall = [&later] {
        if (!later) {
            later.emplace("VEN_5D1A&DEV_1A2B&SUBSYS_FFFFFFFF&REV_03");
        }
    };
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(m_install.calls.size(), 2U) << "a device that appears during an install is still met";
}

TEST_F(DevicePass, ADeviceWithoutRevisionRepeatsItsNameInPassTwoAndThenLeavesTheWalk)
{
    constexpr char kWithoutRevision[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kWithoutRevision);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kWithoutRevision) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kWithoutRevision));
    Append(expected, {kWithoutRevision, "Pass 2"});
    Append(expected, SearchLines(trace, kit, kWithoutRevision));

    trace.Clear();
    EXPECT_THROW(Run(), std::out_of_range);
    std::vector<std::string> whole = WholePass(kWithoutRevision, expected);
    std::vector<std::string> messages = trace.Messages();
    ASSERT_GE(messages.size(), expected.size());
    // The walk ends in the middle, without its closing lines.
    EXPECT_EQ(std::vector(messages.end() - static_cast<std::ptrdiff_t>(expected.size()), messages.end()), expected);
    EXPECT_TRUE(std::equal(messages.begin(), messages.end(), whole.begin()));
}

TEST_F(DevicePass, ADeviceWithoutRevisionThatItsFullNameMatchesIsInstalled)
{
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    const SimulatedDevice device("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(m_install.calls.size(), 1U);
}

TEST_F(DevicePass, AMarkerAtTheStartSkipsPassesWithoutATraceAndRepeatsTheSearch)
{
    constexpr char kLeadingSubSystem[] = "&SUBSYS_00011A2B&REV_03";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kLeadingSubSystem);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kLeadingSubSystem) + "\n"};
    Append(expected, ListLines(trace));
    Append(expected, SearchLines(trace, kit, kLeadingSubSystem));
    Append(expected, {"&SUBSYS_00011A2B", "Pass 2"});
    for (int pass = 2; pass <= 4; ++pass) {
        Append(expected, SearchLines(trace, kit, "&SUBSYS_00011A2B"));
    }
    trace.Clear();
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kLeadingSubSystem, expected));
}

TEST_F(DevicePass, ALeadingRevisionSkipsTheSecondAndThirdPass)
{
    constexpr char kLeadingRevision[] = "&REV_03&SUBSYS_00011A2B";
    InfKit kit;
    kit.Add("Drv", "other.inf", "VEN_5D1A&DEV_0000");
    const SimulatedDevice device(kLeadingRevision);
    TraceCapture trace;
    std::vector<std::string> expected{"device: " + std::string(kLeadingRevision) + "\n"};
    Append(expected, ListLines(trace));
    for (int pass = 1; pass <= 3; ++pass) {
        Append(expected, SearchLines(trace, kit, kLeadingRevision));
    }
    Append(expected, {"&REV_03", "Pass 4"});
    Append(expected, SearchLines(trace, kit, "&REV_03"));
    trace.Clear();
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(trace.Messages(), WholePass(kLeadingRevision, expected));
}

TEST_F(DevicePass, AnInfPathTooLongForTheRecordLeavesItEmptyAndWithinItsField)
{
    InfKit kit;
    std::string name(256 - kit.SearchDirectories().front().size() - 4, 'n');
    name += ".inf"; // The full path has exactly 256 characters: one too many with its terminator.
    const std::string inf = kit.Add("Drv", name, kDevice);
    ASSERT_EQ(inf.size(), 256U);
    const SimulatedDevice device(kDevice);
    m_record.infPath.fill('x');
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].infPath, "");
    EXPECT_EQ(m_record.reservedOne, DriverInstallRecord{}.reservedOne);
    EXPECT_EQ(DevicePassState.deviceMatched, 1U);
}

TEST_F(DevicePass, AKeyDeletedDuringTheWalkEndsIt)
{
    const MachineKeyOverride emptyMachine;
    InfKit kit;
    kit.Add("Drv", "other.inf", kDevice);
    const SimulatedDevice device(kDevice);
    LSTATUS statusAfterDeletion = ERROR_NO_MORE_ITEMS;
    m_install.duringCall = [&statusAfterDeletion] {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, kPciKey, 0, KEY_ENUMERATE_SUB_KEYS, &key), ERROR_SUCCESS);
        DeleteRegistryTree(kPciKey);
        std::array<char, 256> name{};
        DWORD length = name.size();
        statusAfterDeletion = RegEnumKeyExA(key, 1, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        RegCloseKey(key);
    };
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(m_install.calls.size(), 1U);
    EXPECT_NE(statusAfterDeletion, ERROR_NO_MORE_ITEMS) << "the walk had no error to get over";
    EXPECT_NE(statusAfterDeletion, ERROR_SUCCESS);

    // Each error is a visit of a device without a name, until there are too many of them.
    std::vector<std::string> visits;
    for (uint32_t error = 0; error < EnumerationEnd::kMaxErrorsInARow; ++error) {
        Append(visits,
               {"Enter -> IsNordaNetworkDevice()\n", std::string(kPciKey) + "\\", "Exit -> IsNordaNetworkDevice()\n"});
    }
    const std::vector<std::string> messages = trace.Messages();
    const auto first = std::ranges::find(messages, visits[1]);
    ASSERT_NE(first, messages.end());
    Append(visits,
           {"************ finished enumerating registry for devices\n", "Exit -> EnumerateRegistryForPCIDevices()\n"});
    EXPECT_EQ(std::vector(first - 1, messages.end()), visits);
}

TEST_F(DevicePass, TheWalkTracesNothingWhileTheTraceIsOff)
{
    InfKit kit;
    kit.Add("Drv", "other.inf", kDevice);
    const SimulatedDevice device(kDevice);
    DebugOutput output;
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(m_install.calls.size(), 1U);
    for (const std::string& line : output.OwnLines()) {
        EXPECT_FALSE(line.starts_with("Morvix: ")) << line;
    }
}

namespace {
/// The private-profile functions are asked this often by `action`.
uint64_t ProfileReads(const std::function<void()>& action)
{
    const CallCount texts("GetPrivateProfileStringA");
    const CallCount sections("GetPrivateProfileSectionA");
    action();
    return texts.Calls() + sections.Calls();
}
} // namespace

TEST_F(DevicePass, NumberOfProfileReadsDependsOnNeitherDevicesNorPasses)
{
    InfKit kit({"Drv", "Drv2"});
    kit.Add("Drv", "tav1.inf", "VEN_5D1A&DEV_0001");
    kit.Add("Drv", "tav2.inf", "VEN_5D1A&DEV_0002");
    kit.Add("Drv2", "tav3.inf", "VEN_5D1A&DEV_0003");
    // What is not there is asked for once more with each device.
    const std::string ini = kit.Directory().At("Morvix.ini");
    WriteFileBytes(ini, "[Config]\r\nLevelsToRoot=0\r\n" + ReadFileBytes(ini));
    const uint64_t onePassOfOneDevice = ProfileReads([&] {
        const AnswerReuse reuse;
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        GetInfDirs(directories, excludes);
        for (const std::string& directory : directories) {
            std::array<char, 260> infPath{};
            EXPECT_FALSE(GetInfFile(kDevice, directory, m_record, infPath.data(), excludes));
        }
    });
    EXPECT_GT(onePassOfOneDevice, 0U);
    const SimulatedDevice first(kDevice);
    EXPECT_EQ(ProfileReads([this] { Run(); }), onePassOfOneDevice) << "four passes";
    const SimulatedDevice second(kOtherDevice);
    const SimulatedDevice third("VEN_5D1A&DEV_1A2D&SUBSYS_00011A2D&REV_04");
    EXPECT_EQ(ProfileReads([this] { Run(); }), onePassOfOneDevice) << "three devices, twelve passes";
    EXPECT_TRUE(m_install.calls.empty());
}

TEST_F(DevicePass, InfThatChangesDuringAnInstallIsReadAgainForTheNextDevice)
{
    InfKit kit;
    const std::string path = kit.Add("Drv", "tav1.inf", kDevice);
    const SimulatedDevice first(kDevice);
    const SimulatedDevice second(kOtherDevice);
    m_install.duringCall = [&] { kit.Add("Drv", "tav1.inf", kOtherDevice, "the next device"); };
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, std::string("PCI\\") + kOtherDevice);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(path));
}

TEST_F(DevicePass, NextPassOfARunAsksThePlatformAnew)
{
    InfKit kit;
    kit.Add("Drv", "tav1.inf", "VEN_5D1A&DEV_0001");
    const SimulatedDevice device(kDevice);
    const uint64_t first = ProfileReads([this] { Run(); });
    EXPECT_EQ(ProfileReads([this] { Run(); }), first);
    EXPECT_EQ(answersInUse.answers, nullptr);
}

TEST_F(DevicePass, FaultThatEndsTheWalkEndsTheReuseOfAnswersToo)
{
    const InfKit kit;
    const SimulatedDevice device("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
    EXPECT_THROW(Run(), std::out_of_range);
    EXPECT_EQ(answersInUse.answers, nullptr);
}

namespace {
/// @return the key names of both devices, in the registry's own order.
std::vector<std::string> BothInOrder()
{
    std::vector<std::string> names;
    for (const std::string& name : RegistrySubKeys(kPciKey)) {
        if (name == kDevice || name == kOtherDevice) {
            names.push_back(name);
        }
    }
    return names;
}
} // namespace

TEST_F(DevicePass, SetupIniThatChangesDuringAnInstallCountsForTheNextDevice)
{
    InfKit kit;
    const SimulatedDevice device(kDevice);
    const SimulatedDevice other(kOtherDevice);
    const std::vector<std::string> order = BothInOrder();
    ASSERT_EQ(order.size(), 2U);
    kit.Add("Drv", "tav1.inf", order[0]);
    const std::string inf = kit.Add("More", "tav2.inf", order[1]);
    m_install.duringCall = [&kit] {
        const std::string ini = kit.Directory().At("Morvix.ini");
        WriteFileBytes(ini, ReadFileBytes(ini) + "InfDir=More\r\n");
    };
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, "PCI\\" + order[1]);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(inf));
}

namespace {
/// An INF that nobody else can open any more once the platform is first asked about it, which is after its mark was
/// read.
struct InfToLock
{
    std::string path; ///< empty once it is locked
    std::optional<UniqueFile> locked;
};
InfToLock infToLock;

DWORD WINAPI LockAndAsk(LPCSTR section, LPCSTR key, LPCSTR defaultText, LPSTR buffer, DWORD size, LPCSTR file)
{
    static const auto ask =
        FindEntry<decltype(&GetPrivateProfileStringA)>(GetModuleHandleA("kernel32.dll"), "GetPrivateProfileStringA");
    if (file != nullptr && file == infToLock.path) {
        infToLock.path.clear();
        infToLock.locked.emplace(CreateFileA(file, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_TRUE(infToLock.locked->IsOpen());
    }
    return ask(section, key, defaultText, buffer, size, file);
}
} // namespace

TEST_F(DevicePass, AnInfThatIsLockedDuringOneDevicesPassesServesTheNextDevice)
{
    InfKit kit;
    const SimulatedDevice device(kDevice);
    const SimulatedDevice other(kOtherDevice);
    const std::vector<std::string> order = BothInOrder();
    ASSERT_EQ(order.size(), 2U);
    const std::string inf = kit.Add("Drv", "tav1.inf", order[1]);
    infToLock.path = inf;
    // The first device matches in its third pass, so that the locked INF has been asked about twice by then.
    kit.Add("Drv", "tav2.inf", SearchIdForPass(order[0], 3).value());
    m_install.duringCall = [] { infToLock.locked.reset(); };
    const ImportOverride lock("GetPrivateProfileStringA", reinterpret_cast<void*>(LockAndAsk));
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, "PCI\\" + order[1]);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(inf));
    EXPECT_EQ(std::ranges::count(trace.Messages(), "signature section match for this OS not found\n"), 3)
        << "once in each pass of the first device";
}

TEST_F(DevicePass, ADeviceBehindAMatchThatNoInfListsIsNotInstalledAndTheRecordStays)
{
    InfKit kit;
    const SimulatedDevice device(kDevice);
    const SimulatedDevice other(kOtherDevice);
    const std::vector<std::string> order = BothInOrder();
    ASSERT_EQ(order.size(), 2U);
    const std::string inf = kit.Add("Drv", "tav1.inf", order[0]);
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    EXPECT_THAT(trace.Messages(), Contains("device: " + order[1] + "\n")) << "the other device was searched for";
    ASSERT_EQ(m_install.calls.size(), 1U);
    EXPECT_EQ(m_install.calls[0].hardwareId, "PCI\\" + order[0]);
    EXPECT_EQ(TextIn(m_record.hardwareId), "PCI\\" + order[0]);
    EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf));
}

TEST_F(DevicePass, TheDmaEngineMarkCountsAnywhereInThePath)
{
    const SimulatedDevice device(kDevice);
    for (const auto& [directory, file] : {std::pair("qdatdma.info", "other.inf"), std::pair("Drv", "my qdatdma.inf"),
                                          std::pair("Drv", "qdatdma.inf.inf")}) {
        InfKit kit({directory});
        const std::string inf = kit.Add(directory, file, kDevice);
        EXPECT_EQ(Run(), 0U) << inf;
        EXPECT_EQ(TextIn(m_record.infPath), UpperCased(inf));
        EXPECT_EQ(DevicePassState.qdatInstalled, 1U) << inf;
    }
    InfKit kit;
    kit.Add("Drv", "qdatdma2.inf", kDevice);
    EXPECT_EQ(Run(), 0U);
    EXPECT_EQ(DevicePassState.qdatInstalled, 0U);
}

TEST_F(DevicePass, ThePciKeyIsOpenedForItsSubKeysOnly)
{
    const InfKit kit;
    const RegistryAccess access;
    EXPECT_EQ(Run(), 0U);
    EXPECT_THAT(access.AskedFor(kPciKey), ElementsAre(KEY_ENUMERATE_SUB_KEYS));
}
