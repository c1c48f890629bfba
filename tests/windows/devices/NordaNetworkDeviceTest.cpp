#include "NordaNetworkDevice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DeviceFixtures.h"
#include "NetworkDevices.h"
#include "RegistryAccess.h"

using testing::ElementsAre;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";

bool Accepted(const std::string& family = "Windows Vista")
{
    return IsNordaNetworkDevice(kDevice, family);
}
} // namespace

TEST(NordaNetworkDevice, AnAcceptedDeviceIsTracedFromEntryToExit)
{
    const SimulatedDevice device(kDevice);
    TraceCapture trace;
    EXPECT_TRUE(Accepted());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> IsNordaNetworkDevice()\n", std::string(kPciKey) + "\\" + kDevice,
                            "Norda Network Adapter found!", "Exit -> IsNordaNetworkDevice()\n"));
}

TEST(NordaNetworkDevice, EveryFamilyButWindows98ReadsTheNTKey)
{
    const SimulatedDevice device(kDevice);
    for (const char* family :
         {"Windows Millenium", "Windows 2000", "Windows Whistler", "Windows Vista", "windows 98", ""}) {
        EXPECT_TRUE(Accepted(family)) << family;
    }
}

TEST(NordaNetworkDevice, EveryRowOfTheTableIsAccepted)
{
    for (const std::string_view id : kAcceptedCompatibleIds) {
        const SimulatedDevice device(kDevice, {{R"(PCI\VEN_5D1A&CC_FF0000)", std::string(id)}});
        EXPECT_TRUE(Accepted()) << id;
    }
}

TEST(NordaNetworkDevice, OnWindows98TheVendorNumberAnywhereInTheNameIsEnough)
{
    TraceCapture trace;
    EXPECT_TRUE(IsNordaNetworkDevice("VEN_5D1A&DEV_0100&SUBSYS_00000000&REV_01", "Windows 98"));
    EXPECT_THAT(trace.Messages(), ElementsAre("Enter -> IsNordaNetworkDevice()\n", "win 98 "));
    EXPECT_TRUE(IsNordaNetworkDevice("VEN_1E2B&DEV_0100&VEN_5D1A&REV_01", "Windows 98"));
}

TEST(NordaNetworkDevice, OnWindows98OtherVendorsAreRejectedWithoutTheExitLine)
{
    const SimulatedDevice device("VEN_1E2B&DEV_0100&SUBSYS_00015D1A&REV_01");
    TraceCapture trace;
    // The vendor's number without "VEN_" before it is not the vendor.
    EXPECT_FALSE(IsNordaNetworkDevice("VEN_1E2B&DEV_0100&SUBSYS_00015D1A&REV_01", "Windows 98"));
    EXPECT_FALSE(IsNordaNetworkDevice("ven_5d1a&DEV_0100", "Windows 98"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> IsNordaNetworkDevice()\n", "Enter -> IsNordaNetworkDevice()\n"));
}

TEST(NordaNetworkDevice, ADeviceWithoutKeyIsRejected)
{
    TraceCapture trace;
    EXPECT_FALSE(Accepted());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> IsNordaNetworkDevice()\n", std::string(kPciKey) + "\\" + kDevice,
                            "Exit -> IsNordaNetworkDevice()\n"));
}

TEST(NordaNetworkDevice, ADeviceWithoutInstanceIsRejected)
{
    const ScratchRegistryKey key(std::string(kPciKey) + "\\" + kDevice);
    CreateRegistryKey(key.Path());
    SetRegistryList(key.Path(), "CompatibleIDs", {kEthernetId});
    TraceCapture trace;
    EXPECT_FALSE(Accepted());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> IsNordaNetworkDevice()\n", key.Path(), "Exit -> IsNordaNetworkDevice()\n"));
}

TEST(NordaNetworkDevice, AnInstanceWithoutCompatibleIdsIsRejected)
{
    const SimulatedDevice device(kDevice, std::nullopt);
    SetRegistryList(device.Instance(), "HardwareID", {kEthernetId});
    EXPECT_FALSE(Accepted());
}

TEST(NordaNetworkDevice, AnEmptyListOrOneThatStartsEmptyIsRejected)
{
    const SimulatedDevice device(kDevice, std::nullopt);
    SetRegistryBytes(device.Instance(), "CompatibleIDs", "", REG_MULTI_SZ);
    EXPECT_FALSE(Accepted());
    SetRegistryBytes(device.Instance(), "CompatibleIDs", std::string("\0PCI\\VEN_5D1A&CC_020000\0", 24), REG_MULTI_SZ);
    EXPECT_FALSE(Accepted());
}

TEST(NordaNetworkDevice, AListWithoutItsTerminatorsIsReadToItsEnd)
{
    const SimulatedDevice device(kDevice, std::nullopt);
    SetRegistryBytes(device.Instance(), "CompatibleIDs", kEthernetId, REG_MULTI_SZ);
    EXPECT_TRUE(Accepted());
    SetRegistryBytes(device.Instance(), "CompatibleIDs", std::string("PCI\\CC_0200\0", 12) + kEthernetId, REG_BINARY);
    EXPECT_TRUE(Accepted());
}

TEST(NordaNetworkDevice, AnotherVendorsNetworkControllerIsRejected)
{
    const SimulatedDevice device(kDevice, {{R"(PCI\VEN_1234&CC_020000)", R"(PCI\VEN_1234&CC_0200)"}});
    EXPECT_FALSE(Accepted());
}

TEST(NordaNetworkDevice, TheClassWithoutTheVendorIsRejected)
{
    const SimulatedDevice device(kDevice, {{R"(PCI\VEN_5D1A)", R"(PCI\CC_020000)"}});
    EXPECT_FALSE(Accepted());
}

TEST(NordaNetworkDevice, AShorterOrLongerClassCodeIsRejected)
{
    const SimulatedDevice device(kDevice, {{R"(PCI\VEN_5D1A&CC_0200)", R"(PCI\VEN_5D1A&CC_02000001)"}});
    EXPECT_FALSE(Accepted());
}

TEST(NordaNetworkDevice, OnlyTheFirstInstanceIsRead)
{
    const SimulatedDevice device(kDevice, {{R"(PCI\CC_0200)"}});
    SetRegistryList(device.Path() + "\\another instance", "CompatibleIDs", {kEthernetId});
    const std::vector<std::string> instances = RegistrySubKeys(device.Path());
    ASSERT_EQ(instances.size(), 2U);
    const bool firstIsAccepted = instances[0] == "another instance";
    EXPECT_EQ(Accepted(), firstIsAccepted);

    // The other way round.
    SetRegistryList(device.Instance(), "CompatibleIDs", {kEthernetId});
    SetRegistryList(device.Path() + "\\another instance", "CompatibleIDs", {R"(PCI\CC_0200)"});
    EXPECT_EQ(Accepted(), !firstIsAccepted);
}

TEST(NordaNetworkDevice, KeysAreOpenedOnlyForWhatIsReadFromThem)
{
    const SimulatedDevice device(kDevice);
    const RegistryAccess access;
    EXPECT_TRUE(Accepted());
    EXPECT_THAT(access.AskedFor(device.Path()), ElementsAre(KEY_ENUMERATE_SUB_KEYS));
    EXPECT_THAT(access.AskedFor(device.Instance()), ElementsAre(KEY_READ));
}
