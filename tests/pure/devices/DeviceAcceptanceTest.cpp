#include "DeviceAcceptance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryKit.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";

/// A machine of one device.
class OneDevice final : public DeviceInstances
{
public:
    FirstInstance instance;
    std::vector<std::string> asked;

    [[nodiscard]] FirstInstance FirstInstanceOf(const std::string& devicePath) override
    {
        asked.push_back(devicePath);
        return instance;
    }
};

FirstInstance With(const std::string& ids)
{
    return {.isThere = true, .compatibleIds = std::vector<char>(ids.begin(), ids.end())};
}
const std::string kEthernet = "PCI\\VEN_5D1A&CC_020000";
} // namespace

TEST(DeviceAcceptance, TheFirstAcceptedIdOfTheInstanceDecides)
{
    const Acceptance acceptance = AcceptByIds(With("PCI\\CC_0200" + ('\0' + kEthernet) + '\0'));
    EXPECT_EQ(acceptance.verdict, DeviceVerdict::AcceptedById);
    EXPECT_EQ(acceptance.acceptedId, kEthernet);
    EXPECT_TRUE(acceptance.IsAccepted());
}

TEST(DeviceAcceptance, EveryRejectedDeviceHasAReason)
{
    struct Row
    {
        FirstInstance instance;
        DeviceVerdict verdict;
    };
    for (const Row& row :
         {Row{{}, DeviceVerdict::NoInstance},
          Row{{.isThere = true, .compatibleIds = std::nullopt}, DeviceVerdict::NoCompatibleIds},
          Row{With(""), DeviceVerdict::OtherDevice}, Row{With('\0' + kEthernet), DeviceVerdict::OtherDevice},
          Row{With("PCI\\VEN_1234&CC_020000"), DeviceVerdict::OtherDevice}}) {
        const Acceptance acceptance = AcceptByIds(row.instance);
        EXPECT_EQ(acceptance.verdict, row.verdict);
        EXPECT_EQ(acceptance.acceptedId, "");
        EXPECT_FALSE(acceptance.IsAccepted());
    }
}

TEST(DeviceAcceptance, ByNameTheVendorNumberCountsWhereverItIs)
{
    for (const char* name : {"VEN_5D1A", kDevice, "VEN_1E2B&DEV_0100&SUBSYS_VEN_5D1A"}) {
        EXPECT_EQ(AcceptByName(name).verdict, DeviceVerdict::AcceptedByName) << name;
        EXPECT_TRUE(AcceptByName(name).IsAccepted()) << name;
    }
    for (const char* name : {"", "VEN_5D1", "ven_5d1a&DEV_1A2B"}) {
        EXPECT_EQ(AcceptByName(name).verdict, DeviceVerdict::OtherVendor) << name;
        EXPECT_FALSE(AcceptByName(name).IsAccepted()) << name;
    }
}

TEST(DeviceAcceptance, OnWindows98OnlyTheNameCountsAndTheExitLineIsMissing)
{
    OneDevice devices;
    NotingLog log;
    EXPECT_EQ(AcceptDevice(kDevice, "Windows 98", devices, log).verdict, DeviceVerdict::AcceptedByName);
    EXPECT_THAT(log.lines, ElementsAre("Enter -> IsNordaNetworkDevice()\n", "win 98 "));
    log.lines.clear();
    EXPECT_EQ(AcceptDevice("VEN_1234", "Windows 98", devices, log).verdict, DeviceVerdict::OtherVendor);
    EXPECT_THAT(log.lines, ElementsAre("Enter -> IsNordaNetworkDevice()\n"));
    EXPECT_THAT(devices.asked, IsEmpty());
}

TEST(DeviceAcceptance, EveryOtherFamilyReadsTheInstanceAndTracesWhatItFound)
{
    const std::string path = std::string("SYSTEM\\CurrentControlSet\\Enum\\PCI\\") + kDevice;
    for (const char* family : {"Windows Vista", "Windows Millenium", "windows 98", ""}) {
        OneDevice devices;
        devices.instance = With(kEthernet);
        NotingLog log;
        EXPECT_TRUE(AcceptDevice(kDevice, family, devices, log).IsAccepted()) << family;
        EXPECT_THAT(log.lines, ElementsAre("Enter -> IsNordaNetworkDevice()\n", path, "Norda Network Adapter found!",
                                           "Exit -> IsNordaNetworkDevice()\n"));
        EXPECT_THAT(devices.asked, ElementsAre(path));
        devices.instance = {};
        log.lines.clear();
        EXPECT_EQ(AcceptDevice(kDevice, family, devices, log).verdict, DeviceVerdict::NoInstance) << family;
        EXPECT_THAT(log.lines,
                    ElementsAre("Enter -> IsNordaNetworkDevice()\n", path, "Exit -> IsNordaNetworkDevice()\n"));
    }
}
