#include "NetCfgInstance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "AdapterDevices.h"
#include "DebugOutput.h"
#include "Handles.h"
#include "RegistryAccess.h"

using testing::ElementsAre;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";

/// Asks for a device's instance ID with a buffer that is not empty at first, and checks what never changes.
std::string InstanceIdOf(const std::string& deviceKeyName = kDevice)
{
    std::array<char, 264> memory;
    memory.fill('#');
    EXPECT_EQ(GetNetCfgInstanceId(deviceKeyName, std::span(memory).first(260)), 0);
    EXPECT_EQ(std::string(memory.data() + 260, 4), "####") << "bytes after the output were touched";
    return memory.data();
}
} // namespace

TEST(NetCfgInstance, IdOfTheFirstInstanceIsTracedOnEntryAndExit)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    TraceCapture trace;
    EXPECT_EQ(InstanceIdOf(), kTestInstance);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> GetNetCfgInstanceId()\n", kDevice, "Exit -> GetNetCfgInstanceId()\n"));
}

TEST(NetCfgInstance, FurtherInstancesAreIgnored)
{
    const RegistryAdapter adapter(kDevice, std::nullopt, std::nullopt);
    const RegistryAdapter other("VEN_5D1A&DEV_9999", "9001", kTestInstance);
    SetRegistryText(std::string(kPciKey) + "\\" + kDevice + R"(\9&second)", "Driver",
                    std::string(kNetworkClass) + "\\9001");
    EXPECT_EQ(InstanceIdOf(), "");
}

TEST(NetCfgInstance, MissingDeviceInstanceOrDriverLeavesTheIdEmptyWithTheSameTrace)
{
    TraceCapture trace;
    EXPECT_EQ(InstanceIdOf(), "") << "no device";
    CreateRegistryKey(std::string(kPciKey) + "\\" + kDevice);
    EXPECT_EQ(InstanceIdOf(), "") << "no instance";
    {
        const RegistryAdapter adapter(kDevice, std::nullopt, std::nullopt);
        EXPECT_EQ(InstanceIdOf(), "") << "no driver key";
        SetRegistryText(adapter.Instance(), "Driver", R"({4D36E972-E325-11CE-BFC1-08002BE10318}\no such key)");
        EXPECT_EQ(InstanceIdOf(), "") << "a driver key that does not exist";
    }
    const RegistryAdapter adapter(kDevice, "9001", std::nullopt);
    EXPECT_EQ(InstanceIdOf(), "") << "no instance ID";
    std::vector<std::string> expected;
    for (int call = 0; call < 5; ++call) {
        Append(expected, {"Enter -> GetNetCfgInstanceId()\n", kDevice, "Exit -> GetNetCfgInstanceId()\n"});
    }
    EXPECT_EQ(trace.Messages(), expected);
}

TEST(NetCfgInstance, IdOf259CharactersIsTakenWhole)
{
    const std::string longest(259, 'i');
    const RegistryAdapter adapter(kDevice, "9001", longest);
    EXPECT_EQ(InstanceIdOf(), longest);
}

TEST(NetCfgInstance, IdOf260BytesWithoutATerminatorLeavesEvenALargerTextEmpty)
{
    const RegistryAdapter adapter(kDevice, "9001", "short");
    HKEY opened = nullptr;
    const std::string driverKey =
        std::string(R"(SYSTEM\CurrentControlSet\Control\Class\)") + kNetworkClass + R"(\9001)";
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, driverKey.c_str(), 0, KEY_SET_VALUE, &opened), ERROR_SUCCESS);
    const UniqueRegKey key(opened);
    // The platform adds a terminator that follows what it is given.
    const std::string unterminated(261, 'i');
    ASSERT_EQ(RegSetValueExA(key.get(), "NetCfgInstanceId", 0, REG_SZ,
                             reinterpret_cast<const BYTE*>(unterminated.data()), 260),
              ERROR_SUCCESS);
    std::array<char, 300> text{"before"};
    EXPECT_EQ(GetNetCfgInstanceId(kDevice, text), 0);
    EXPECT_STREQ(text.data(), "");
}

TEST(NetCfgInstance, LongerIdsLeaveTheTextEmpty)
{
    for (const std::size_t length : {260U, 261U, 4096U}) {
        const RegistryAdapter adapter(kDevice, "9001", std::string(length, 'i'));
        EXPECT_EQ(InstanceIdOf(), "") << length;
    }
}

TEST(NetCfgInstance, LongerIdsAreRefusedAlsoByALargerOutput)
{
    const RegistryAdapter adapter(kDevice, "9001", std::string(260, 'i'));
    std::array<char, 1024> large{};
    EXPECT_EQ(GetNetCfgInstanceId(kDevice, large), 0);
    EXPECT_STREQ(large.data(), "");
}

TEST(NetCfgInstance, OutputThatIsTooSmallStaysEmpty)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    std::array<char, 8> small{'#', '#', '#', '#', '#', '#', '#', '#'};
    EXPECT_EQ(GetNetCfgInstanceId(kDevice, std::span(small).first(4)), 0);
    EXPECT_STREQ(small.data(), "");
    EXPECT_EQ(std::string(small.data() + 4, 4), "####");
    EXPECT_EQ(GetNetCfgInstanceId(kDevice, {}), 0);
}

TEST(NetCfgInstance, StoredTextsWithoutTheirTerminatorsAreRead)
{
    const RegistryAdapter adapter(kDevice, "9001", std::nullopt);
    SetRegistryBytes(adapter.Instance(), "Driver", std::string(kNetworkClass) + "\\9001", REG_SZ);
    SetRegistryBytes(adapter.DriverKey(), "NetCfgInstanceId", kTestInstance, REG_SZ);
    EXPECT_EQ(InstanceIdOf(), kTestInstance);
}

TEST(NetCfgInstance, EmptyValuesAreEmptyIds)
{
    const RegistryAdapter adapter(kDevice, "9001", "");
    EXPECT_EQ(InstanceIdOf(), "");
    SetRegistryBytes(adapter.DriverKey(), "NetCfgInstanceId", "", REG_BINARY);
    EXPECT_EQ(InstanceIdOf(), "");
}

TEST(NetCfgInstance, PathOfMoreThan259CharactersIsNotOpened)
{
    // The path of the device's instance is the key name, the PCI key's 33 characters, two backslashes and the instance.
    const std::size_t room = 259 - 33 - 2 - std::string("3&11583659&0&18").size();
    const std::string fits(room, 'V');
    {
        const RegistryAdapter adapter(fits, "9001", kTestInstance);
        EXPECT_EQ(InstanceIdOf(fits), kTestInstance);
    }
    const RegistryAdapter adapter(fits + 'V', "9001", kTestInstance);
    EXPECT_EQ(InstanceIdOf(fits + 'V'), "");
    EXPECT_EQ(InstanceIdOf(std::string(255, 'V')), "");
}

TEST(NetCfgInstance, ThousandCallsLeaveNoHandleOpen)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    const RegistryAdapter without("VEN_5D1A&DEV_9999", "9002", std::nullopt);
    EXPECT_EQ(HandlesLeftBy(1000,
                            [] {
                                std::array<char, 260> id{};
                                GetNetCfgInstanceId(kDevice, id);
                                GetNetCfgInstanceId("VEN_5D1A&DEV_9999", id);
                                GetNetCfgInstanceId("VEN_0000", id);
                            }),
              0);
}

TEST(NetCfgInstance, ValueOfMoreThan260StoredBytesIsNotRead)
{
    const RegistryAdapter adapter(kDevice, "9001", std::nullopt);
    std::string stored = kTestInstance;
    stored.resize(260, '\0');
    SetRegistryBytes(adapter.DriverKey(), "NetCfgInstanceId", stored, REG_SZ);
    EXPECT_EQ(InstanceIdOf(), kTestInstance);
    stored.resize(261, '\0');
    SetRegistryBytes(adapter.DriverKey(), "NetCfgInstanceId", stored, REG_SZ);
    EXPECT_EQ(InstanceIdOf(), "");
}

TEST(NetCfgInstance, KeysAreOpenedOnlyForWhatIsReadFromThem)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    const RegistryAccess access;
    EXPECT_EQ(InstanceIdOf(), kTestInstance);
    EXPECT_THAT(access.AskedFor(std::string(kPciKey) + "\\" + kDevice), ElementsAre(KEY_ENUMERATE_SUB_KEYS));
    EXPECT_THAT(access.AskedFor(adapter.Instance()), ElementsAre(KEY_READ));
    EXPECT_THAT(access.AskedFor(adapter.DriverKey()), ElementsAre(KEY_READ));
}
