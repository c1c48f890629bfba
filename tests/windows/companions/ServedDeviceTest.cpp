#include "ServedDevice.h"

#include <gtest/gtest.h>

#include <string>

#include "CompanionFiles.h"
#include "ScratchDirectory.h"
#include "SetupApi.h"
#include "SimulatedAdapter.h"

namespace {
std::string GigabitInf()
{
    return KitFile("Drv\\Win7x64\\ngea62x64.inf");
}

uint32_t Check(const std::string& hardwareId, const std::string& infPath)
{
    return CheckServedDevice(SetupApi(), hardwareId.c_str(), infPath.c_str());
}
} // namespace

TEST(ServedDevice, ADeviceThatTheInfDoesNotSupportDoesNotHideTheNextOne)
{
    // Both have the ID that is asked for, which the INF does not list; it lists another ID of the second device.
    const SimulatedAdapter first("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    const SimulatedAdapter second("VEN_5D1A&DEV_1A2B&SUBSYS_00035D1A&REV_01");
    const ScratchDirectory kit;
    WriteFileBytes(kit.At("kit.inf"),
                   "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\n"
                   "ClassGUID={4D36E972-E325-11CE-BFC1-08002BE10318}\r\nProvider=Norda\r\n"
                   "[Manufacturer]\r\nNorda=Models,NTamd64\r\n"
                   "[Models.NTamd64]\r\nSecond=Install,PCI\\VEN_5D1A&DEV_1A2B&SUBSYS_00035D1A\r\n"
                   "[Install]\r\nCharacteristics=0x84\r\n");
    EXPECT_EQ(Check("PCI\\VEN_5D1A&DEV_1A2B", kit.At("kit.inf")), 0u);
    EXPECT_EQ(Check(first.HardwareId(), kit.At("kit.inf")), static_cast<uint32_t>(ERROR_NO_COMPAT_DRIVERS));
    EXPECT_EQ(Check(second.HardwareId(), kit.At("kit.inf")), 0u);
}

TEST(ServedDevice, CompatibleIdsMatchAndLetterCaseIsIgnored)
{
    const SimulatedAdapter adapter("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    EXPECT_EQ(Check("PCI\\VEN_5D1A&CC_020000", GigabitInf()), 0u);
    EXPECT_EQ(Check("pci\\ven_5d1a&dev_1a2b", GigabitInf()), 0u);
}

TEST(ServedDevice, AnInfPathThatIsTooLongSupportsNothing)
{
    const SimulatedAdapter adapter("VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01");
    std::string path = GigabitInf();
    while (path.size() < MAX_PATH) {
        path.insert(path.rfind('\\'), "\\.");
    }
    EXPECT_NE(Check("PCI\\VEN_5D1A&DEV_1A2B", path), 0u);
}
