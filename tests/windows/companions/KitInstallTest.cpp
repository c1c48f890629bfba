#include <gtest/gtest.h>
#include <windows.h>

#include "CompanionFiles.h"
#include "NetInstClient.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "SimulatedAdapter.h"

namespace {
struct SystemRow
{
    const char* wineVersion;
    KitDirectory directory;
};
// The x64 systems that can be chosen by name: workstation and server of each generation, the last one as workstation.
constexpr SystemRow kSystems[] = {
    {"winxp64", kKitDirectories[0]}, {"win2003", kKitDirectories[0]}, {"vista", kKitDirectories[1]},
    {"win2008", kKitDirectories[1]}, {"win7", kKitDirectories[2]},    {"win2008r2", kKitDirectories[2]},
    {"win8", kKitDirectories[3]},
};

struct FamilyRow
{
    const char* prefix;
    const char* service;
    const char* version;
    const char* device;
};
constexpr FamilyRow kFamilies[] = {
    {"ngea", "NGEA", "11.4", "VEN_5D1A&DEV_1A2B&SUBSYS_0C0F5D1A&REV_07"},
    {"nxga", "NXGA", "3.2", "VEN_5D1A&DEV_1B3C&SUBSYS_0C0F5D1A&REV_07"},
    {"nf6a", "NF6A", "9.13", "VEN_5D1A&DEV_1C4D&SUBSYS_0C0F5D1A&REV_07"},
    {"ngp1", "NGP1", "8.10", "VEN_5D1A&DEV_1D5E&SUBSYS_0C0F5D1A&REV_07"},
};

std::string InstallOn(const SystemRow& system, const SimulatedAdapter& adapter, const std::string& infName)
{
    const std::string inf = KitFile(std::string("Drv\\") + system.directory.name + "\\" + infName);
    return RunTaskOnSystem(system.wineVersion, "install " + adapter.HardwareId() + " " + inf);
}
} // namespace

TEST(Kit, EveryFamilyInstallsOnEverySystem)
{
    for (const SystemRow& system : kSystems) {
        for (const FamilyRow& family : kFamilies) {
            SCOPED_TRACE(std::string(system.wineVersion) + " " + family.prefix);
            const SimulatedAdapter adapter(family.device);
            const std::string name = std::string(family.prefix) + system.directory.generation + "x64";
            EXPECT_EQ(InstallOn(system, adapter, name + ".inf"), "00000000 00000000");
            EXPECT_EQ(adapter.Value("Service"), family.service);
            const bool ownName = std::string(system.directory.generation) == "62";
            EXPECT_EQ(FileVersionOf(SystemDriverFile((ownName ? name : family.prefix) + ".sys")),
                      std::string(family.version) + "." + system.directory.generation + ".0");
        }
    }
}

TEST(Kit, TheDmaEngineInstallsOnEverySystem)
{
    for (const SystemRow& system : kSystems) {
        SCOPED_TRACE(system.wineVersion);
        const SimulatedAdapter adapter("VEN_5D1A&DEV_2A10&SUBSYS_0C0F5D1A&REV_07", "System");
        EXPECT_EQ(InstallOn(system, adapter, "qdatdma.inf"), "00000000 00000000");
        EXPECT_EQ(adapter.Value("Service"), "QDATDMA");
        EXPECT_EQ(FileVersionOf(SystemDriverFile("qdatdma.sys")), "1.3.12.0");
    }
}

TEST(Kit, TheMostExactModelNamesTheDevice)
{
    const SystemRow system = kSystems[6];
    const std::pair<const char*, const char*> devices[] = {
        {"VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01", "Norda NG1000E Gigabit Server Adapter, Revision 1"},
        {"VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_02", "Norda NG1000E Gigabit Server Adapter"},
        {"VEN_5D1A&DEV_1A2B&SUBSYS_00025D1A&REV_01", "Norda NG1000E Gigabit Network Connection"}};
    for (const auto& [device, description] : devices) {
        SCOPED_TRACE(device);
        const SimulatedAdapter adapter(device);
        EXPECT_EQ(InstallOn(system, adapter, "ngea63x64.inf"), "00000000 00000000");
        EXPECT_EQ(adapter.Value("DeviceDesc"), description);
    }
}

TEST(Kit, EveryDriverLoadsAndUnloadsAsAKernelService)
{
    const SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
    ASSERT_NE(manager, nullptr);
    int drivers = 0;
    for (const KitDirectory& directory : kKitDirectories) {
        const std::string path = KitFile(std::string("Drv\\") + directory.name);
        for (const std::string& file : FilesIn(path, "*.sys")) {
            SCOPED_TRACE(std::string(directory.name) + "\\" + file);
            ++drivers;
            // A name of its own: the end of a driver may be noted only after the next one has started.
            const std::string name = "MorvixKitTest" + std::to_string(drivers);
            const SC_HANDLE service = CreateServiceA(
                manager, name.c_str(), nullptr, SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START,
                SERVICE_ERROR_NORMAL, (path + "\\" + file).c_str(), nullptr, nullptr, nullptr, nullptr, nullptr);
            ASSERT_NE(service, nullptr) << GetLastError();
            EXPECT_TRUE(StartServiceA(service, 0, nullptr)) << GetLastError();
            SERVICE_STATUS status{};
            EXPECT_TRUE(QueryServiceStatus(service, &status));
            EXPECT_EQ(status.dwCurrentState, static_cast<DWORD>(SERVICE_RUNNING));
            EXPECT_TRUE(ControlService(service, SERVICE_CONTROL_STOP, &status)) << GetLastError();
            EXPECT_TRUE(DeleteService(service));
            CloseServiceHandle(service);
        }
    }
    CloseServiceHandle(manager);
    EXPECT_EQ(drivers, 20);
}
