#include "NetworkDevices.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {
std::string List(const std::vector<std::string>& entries)
{
    std::string bytes;
    for (const std::string& entry : entries) {
        bytes += entry + '\0';
    }
    return bytes + '\0';
}
} // namespace

TEST(NetworkDevices, TheClassRowsComeFirstAndTheSecondBrandLast)
{
    EXPECT_THAT(
        kAcceptedCompatibleIds,
        testing::ElementsAre(R"(PCI\VEN_5D1A&CC_020000)", R"(PCI\VEN_5D1A&CC_070002)", R"(PCI\VEN_5D1A&CC_0C0701)",
                             R"(PCI\VEN_5D1A&DEV_2A10)", R"(PCI\VEN_5D1A&DEV_2A11)", R"(PCI\VEN_5D1A&DEV_2A14)",
                             R"(PCI\VEN_5D1A&DEV_2A15)", R"(PCI\VEN_5D1A&DEV_2B20)", R"(PCI\VEN_5D1A&DEV_2B21)",
                             R"(PCI\VEN_5D1A&DEV_2B24)", R"(PCI\VEN_5D1A&DEV_3C01)", R"(PCI\VEN_5D1A&DEV_3C02)",
                             R"(PCI\VEN_5D1A&DEV_3C05)", R"(PCI\VEN_5D1A&DEV_4D08)", R"(PCI\VEN_5D1A&DEV_4D09)",
                             R"(PCI\VEN_1E2B&DEV_0C40)"));
}

TEST(NetworkDevices, EveryRowIsAcceptedWhereverItIsInTheList)
{
    for (const std::string_view id : kAcceptedCompatibleIds) {
        EXPECT_EQ(FindAcceptedId(List({std::string(id)})), id);
        EXPECT_EQ(FindAcceptedId(List({"PCI\\CC_0180", std::string(id), "PCI\\CC_018000"})), id);
    }
}

TEST(NetworkDevices, EveryDeviceRowIsAcceptedWhateverTheClassCode)
{
    for (std::size_t row = kAcceptedClassRows; row < kAcceptedCompatibleIds.size(); ++row) {
        const std::string id(kAcceptedCompatibleIds[row]);
        EXPECT_EQ(FindAcceptedId(List({id + "&REV_01", id, "PCI\\VEN_5D1A&CC_088000", "PCI\\CC_0880"})), id);
    }
}

TEST(NetworkDevices, OnlyAnExactlyEqualEntryIsAccepted)
{
    for (const char* entry :
         {"PCI\\VEN_5D1A&CC_0200", "PCI\\VEN_5D1A&CC_02000001", "pci\\ven_5d1a&cc_020000", " PCI\\VEN_5D1A&CC_020000",
          "PCI\\VEN_5D1A&CC_020000 ", "PCI\\VEN_5D1A&DEV_2A10&REV_01"}) {
        EXPECT_EQ(FindAcceptedId(List({entry})), "") << entry;
    }
}

TEST(NetworkDevices, AnotherVendorsNetworkControllerIsRejected)
{
    EXPECT_EQ(FindAcceptedId(List({"PCI\\VEN_1234&DEV_0001", "PCI\\VEN_1234&CC_020000", "PCI\\VEN_1234&CC_0200"})), "");
}

TEST(NetworkDevices, AClassEntryWithoutVendorIsRejected)
{
    EXPECT_EQ(FindAcceptedId(List({"PCI\\VEN_5D1A", "PCI\\CC_020000", "PCI\\CC_0200"})), "");
}

TEST(NetworkDevices, TheFirstAcceptedEntryWins)
{
    EXPECT_EQ(FindAcceptedId(List({"PCI\\VEN_5D1A&DEV_2A10", "PCI\\VEN_5D1A&CC_020000"})), "PCI\\VEN_5D1A&DEV_2A10");
}

TEST(NetworkDevices, TheListEndsAtItsFirstEmptyEntry)
{
    EXPECT_EQ(FindAcceptedId(List({"PCI\\CC_0200", "", "PCI\\VEN_5D1A&CC_020000"})), "");
    EXPECT_EQ(FindAcceptedId(List({"", "PCI\\VEN_5D1A&CC_020000"})), "");
}

TEST(NetworkDevices, EmptyAndUnterminatedListsHaveADefinedEnd)
{
    EXPECT_EQ(FindAcceptedId(""), "");
    EXPECT_EQ(FindAcceptedId(std::string_view("\0", 1)), "");
    EXPECT_EQ(FindAcceptedId("PCI\\CC_0200"), "");
    EXPECT_EQ(FindAcceptedId("PCI\\VEN_5D1A&CC_020000"), "PCI\\VEN_5D1A&CC_020000");
}
