// Damaged registry values, and buffers that end where the memory ends.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "AdapterDevices.h"
#include "AdapterRegistry.h"
#include "GuardedBuffer.h"
#include "NetCfgInstance.h"
#include "NordaNetworkDevice.h"
#include "OrvRegKey.h"
#include "PendingUninstall.h"
#include "PostInstall.h"
#include "UpperCase.h"

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";

/// Stores the bytes unchanged, whatever the type makes of them.
void SetRawValue(const std::string& keyPath, const wchar_t* name, DWORD type, const std::string& bytes)
{
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, keyPath.c_str(), 0, KEY_SET_VALUE, &opened), ERROR_SUCCESS);
    const UniqueRegKey key(opened);
    ASSERT_EQ(RegSetValueExW(key.get(), name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              ERROR_SUCCESS);
}

std::string Wide(const std::string& text)
{
    std::string bytes;
    for (const char c : text) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

const std::vector<DWORD> kTypes = {REG_NONE, REG_SZ,       REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_DWORD_BIG_ENDIAN,
                                   REG_LINK, REG_MULTI_SZ, REG_QWORD,     1234};

TEST(RegistryBytes, OfAnyTypeAndLengthHaveFiveZerosAfterThem)
{
    const ScratchRegistryKey scratch(R"(SOFTWARE\MorvixTests\Bytes)");
    CreateRegistryKey(scratch.Path());
    for (const DWORD type : kTypes) {
        for (const std::size_t length : {0u, 1u, 2u, 3u, 7u, 8u, 255u, 4097u}) {
            SetRawValue(scratch.Path(), L"Value", type, std::string(length, 'v'));
            const UniqueRegKey key = OpenMachineKey(scratch.Path(), KEY_READ);
            const std::optional<std::vector<char>> bytes = ReadValueBytes(key.get(), "Value");
            ASSERT_TRUE(bytes.has_value()) << type << " of " << length;
            ASSERT_GE(bytes->size(), 5U);
            EXPECT_TRUE(std::all_of(bytes->end() - 5, bytes->end(), [](char c) { return c == '\0'; }))
                << type << " of " << length;
            const std::optional<std::string> text = ReadTextValue(key.get(), "Value");
            ASSERT_TRUE(text.has_value());
            EXPECT_LE(text->size(), length);
        }
    }
}

TEST(RegistryBytes, AMegabyteWithoutAnEndIsRead)
{
    const ScratchRegistryKey scratch(R"(SOFTWARE\MorvixTests\Bytes)");
    CreateRegistryKey(scratch.Path());
    SetRawValue(scratch.Path(), L"Value", REG_BINARY, std::string(1024 * 1024, 'v'));
    const UniqueRegKey key = OpenMachineKey(scratch.Path(), KEY_READ);
    EXPECT_EQ(ReadTextValue(key.get(), "Value"), std::string(1024 * 1024, 'v'));
}

TEST(DamagedValues, OfADeviceLeaveItWithoutAnInstanceId)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    for (const DWORD type : kTypes) {
        for (const std::size_t length : {0u, 1u, 3u, 4u, 8u, 519u, 4097u}) {
            SetRawValue(adapter.Instance(), L"Driver", type, std::string(length, '\x01'));
            const GuardedBuffer instanceId(260);
            EXPECT_EQ(GetNetCfgInstanceId(kDevice, instanceId.All()), 0);
            EXPECT_EQ(instanceId.Text(), "") << type << " of " << length;
            EXPECT_TRUE(instanceId.IsUntouchedInFront());
        }
    }
}

TEST(DamagedValues, OfADriverKeyAreAnInstanceIdOnlyWhenTheyFit)
{
    const RegistryAdapter adapter(kDevice, "9001", kTestInstance);
    const std::string driverKey = std::string(R"(SYSTEM\CurrentControlSet\Control\Class\)") + kNetworkClass + "\\9001";
    for (const std::size_t length : {1u, 258u, 259u, 260u, 32767u}) {
        SetRawValue(driverKey, L"NetCfgInstanceId", REG_SZ, Wide(std::string(length, 'i')));
        for (const std::size_t size : {1u, 2u, 259u, 260u}) {
            const GuardedBuffer instanceId(size);
            EXPECT_EQ(GetNetCfgInstanceId(kDevice, instanceId.All()), 0);
            const bool fits = length < 260 && length < size;
            EXPECT_EQ(instanceId.Text(), fits ? std::string(length, 'i') : "") << length << " into " << size;
            EXPECT_TRUE(instanceId.IsUntouchedInFront());
        }
    }
}

TEST(DamagedValues, InTheListOfCompatibleIdsNeverMakeADeviceOurs)
{
    const SimulatedDevice device(kDevice, std::nullopt);
    CreateRegistryKey(device.Instance());
    for (const DWORD type : kTypes) {
        for (const std::string& bytes :
             {std::string(), std::string(1, 'P'), std::string(3, '\0'), std::string(43, 'x'),
              Wide(R"(PCI\VEN_5D1A&CC_020000)").substr(0, 41), Wide(R"(PCI\VEN_5D1A&CC_02000%s%n)")}) {
            SetRawValue(device.Instance(), L"CompatibleIDs", type, bytes);
            EXPECT_FALSE(IsNordaNetworkDevice(kDevice, "Windows Vista")) << type << " of " << bytes.size();
        }
    }
}

TEST(GuardedPaths, AreTurnedIntoUpperCaseUpToTheLastByteAndNoFurther)
{
    for (const std::size_t size : {1u, 2u, 256u}) {
        const GuardedBuffer path(size);
        path.Fill('a');
        MakeUpperCase(path.All(), IsSystemLeadByte);
        EXPECT_EQ(path.Bytes(), std::string(size, 'A'));
        EXPECT_TRUE(path.IsUntouchedInFront());
    }
    MakeUpperCase({}, IsSystemLeadByte);
}

TEST(GuardedPaths, WithoutATerminatorAreClassifiedUpToTheirEnd)
{
    const InfKit kit;
    const GuardedBuffer path(256);
    for (const char filler : {'x', '\\', '.', '\xE9', '%'}) {
        path.Fill(filler);
        EXPECT_EQ(PostInstallRegResult(path.All()), 0);
        EXPECT_TRUE(path.IsUntouchedInFront());
    }
    EXPECT_EQ(PostInstallRegResult({}), 0);
}

TEST(GuardedValues, AreReadIntoTheRoomThatThereIs)
{
    const ScratchRegistryKey scratch(R"(SOFTWARE\MorvixTests\Guarded)");
    CreateRegistryKey(scratch.Path());
    SetRawValue(scratch.Path(), L"Value", REG_BINARY, std::string(100, 'v'));
    COrvRegKey key;
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    for (const std::size_t room : {1u, 99u, 100u, 101u}) {
        const GuardedBuffer data(room);
        DWORD size = static_cast<DWORD>(room);
        EXPECT_EQ(key.GetValue("Value", reinterpret_cast<BYTE*>(data.Data()), size), room >= 100) << room;
        EXPECT_EQ(size, 100U);
        EXPECT_TRUE(data.IsUntouchedInFront());
        EXPECT_EQ(data.Bytes().substr(std::min<std::size_t>(room, 100)), std::string(room > 100 ? room - 100 : 0, '#'));
    }
}
} // namespace
