#include "ServedFamilies.h"

#include <gtest/gtest.h>

#include <string>

namespace {
struct Expected
{
    const char* name;
    const char* key;
    InstallRoute route;
};
constexpr Expected kExpected[] = {
    {"Windows Millenium", "Enum\\PCI", InstallRoute::DriverUpdate},
    {"Windows Whistler", "SYSTEM\\CurrentControlSet\\Enum\\PCI", InstallRoute::DriverInterface},
    {"Windows 2000", "SYSTEM\\CurrentControlSet\\Enum\\PCI", InstallRoute::DriverInterface},
    {"Windows Vista", "SYSTEM\\CurrentControlSet\\Enum\\PCI", InstallRoute::DriverInterface},
    {"Windows 98", "Enum\\PCI\\", InstallRoute::LegacyInstaller},
};
} // namespace

TEST(ServedFamilies, EachFamilyHasItsKeyAndRoute)
{
    for (const Expected& expected : kExpected) {
        const auto family = FindServedFamily(expected.name);
        ASSERT_TRUE(family.has_value()) << expected.name;
        EXPECT_STREQ(family->pciKey, expected.key) << expected.name;
        EXPECT_EQ(family->route, expected.route) << expected.name;
    }
    EXPECT_EQ(kServedFamilies.size(), std::size(kExpected));
}

TEST(ServedFamilies, OtherNamesAreNotServed)
{
    for (const char* name : {"Windows XP", "Windows NT", "", "windows vista", "Windows Vista ", "Windows", "Windows 9",
                             "Windows Millennium"}) {
        EXPECT_FALSE(FindServedFamily(name).has_value()) << name;
    }
}
