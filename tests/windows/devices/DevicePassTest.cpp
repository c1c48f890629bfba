// The walk: what it visits, what it installs and what the record holds afterwards.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <optional>

#include "DevicePassFixture.h"
#include "DevicePassState.h"
#include "EnumerationEnd.h"
#include "RegistryAccess.h"

using testing::Contains;
using testing::ElementsAre;

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
    EXPECT_FALSE(DevicePassState.deviceMatched);
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
        EXPECT_TRUE(DevicePassState.deviceMatched) << family;
        EXPECT_FALSE(DevicePassState.qdatInstalled) << family;
        EXPECT_FALSE(DevicePassState.installFailed) << family;
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
    EXPECT_TRUE(DevicePassState.deviceMatched);
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

TEST_F(DevicePass, ADeviceAfterAMatchThatNoInfListsIsNotInstalledAndTheRecordStays)
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

TEST_F(DevicePass, ThePciKeyIsOpenedForItsSubKeysOnly)
{
    const InfKit kit;
    const RegistryAccess access;
    EXPECT_EQ(Run(), 0U);
    EXPECT_THAT(access.AskedFor(kPciKey), ElementsAre(KEY_ENUMERATE_SUB_KEYS));
}
