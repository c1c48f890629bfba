#include "ServedDevice.h"

#include <gtest/gtest.h>
#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <string>

#include "CompanionFiles.h"
#include "ScratchDirectory.h"
#include "SimulatedAdapter.h"

namespace {
std::string GigabitInf()
{
    return KitFile("Drv\\Win7x64\\ngea62x64.inf");
}
} // namespace

TEST(ServedDevice, ADeviceThatTheInfDoesNotServeDoesNotHideTheNextOne)
{
    // Both have the ID that is asked about, which the INF does not list; it lists another one of the second device.
    const SimulatedAdapter first("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    const SimulatedAdapter second("VEN_5D1A&DEV_1A2B&SUBSYS_00035D1A&REV_01");
    const ScratchDirectory kit;
    WriteFileBytes(kit.At("kit.inf"),
                   "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\n"
                   "ClassGUID={4D36E972-E325-11CE-BFC1-08002BE10318}\r\nProvider=Norda\r\n"
                   "[Manufacturer]\r\nNorda=Models,NTamd64\r\n"
                   "[Models.NTamd64]\r\nSecond=Install,PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00035D1A\r\n"
                   "[Install]\r\nCharacteristics=0x84\r\n");
    EXPECT_EQ(CheckServedDevice("PCI\\VEN_5D1A&DEV_1A2B", kit.At("kit.inf").c_str()), 0u);
    EXPECT_EQ(CheckServedDevice(first.HardwareId().c_str(), kit.At("kit.inf").c_str()),
              static_cast<uint32_t>(ERROR_NO_COMPAT_DRIVERS));
    EXPECT_EQ(CheckServedDevice(second.HardwareId().c_str(), kit.At("kit.inf").c_str()), 0u);
}

TEST(ServedDevice, CompatibleIdsCountAndLetterCaseDoesNot)
{
    const SimulatedAdapter adapter("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    EXPECT_EQ(CheckServedDevice("PCI\\VEN_5D1A&CC_020000", GigabitInf().c_str()), 0u);
    EXPECT_EQ(CheckServedDevice("pci\\ven_5d1a&dev_1a2b", GigabitInf().c_str()), 0u);
}

TEST(ServedDevice, AnInfPathThatDoesNotFitServesNothing)
{
    const SimulatedAdapter adapter("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    std::string path = GigabitInf();
    while (path.size() < MAX_PATH) {
        path.insert(path.rfind('\\'), "\\.");
    }
    EXPECT_NE(CheckServedDevice("PCI\\VEN_5D1A&DEV_1A2B", path.c_str()), 0u);
}
