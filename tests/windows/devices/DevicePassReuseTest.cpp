// What a walk asks the platform again, and what it does not.

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "CallCount.h"
#include "DevicePassFixture.h"
#include "EntryPoints.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "InfDirectory.h"
#include "InstallerSearch.h"
#include "KeptAnswers.h"
#include "KitLists.h"
#include "OSVersion.h"
#include "SearchIds.h"

namespace {
/// The private-profile functions are asked this often by `action`.
uint64_t ProfileReads(const std::function<void()>& action)
{
    const CallCount texts("GetPrivateProfileStringA");
    const CallCount sections("GetPrivateProfileSectionA");
    action();
    return texts.Calls() + sections.Calls();
}
} // namespace

TEST_F(DevicePass, NumberOfProfileReadsDependsOnNeitherDevicesNorPasses)
{
    InfKit kit({"Drv", "Drv2"});
    kit.Add("Drv", "tav1.inf", "VEN_5D1A&DEV_0001");
    kit.Add("Drv", "tav2.inf", "VEN_5D1A&DEV_0002");
    kit.Add("Drv2", "tav3.inf", "VEN_5D1A&DEV_0003");
    // What is not there is asked for once more with each device.
    const std::string ini = kit.Directory().At("Morvix.ini");
    WriteFileBytes(ini, "[Config]\r\nLevelsToRoot=0\r\n" + ReadFileBytes(ini));
    const uint64_t onePassOfOneDevice = ProfileReads([&] {
        PlatformKit platform;
        KeptAnswers answers(platform);
        InstallerLog log;
        const KitSearch search =
            SearchOfThisRun(answers, log, COSVersion().GetOSCode(), std::string(kFamilyWindowsVista));
        std::vector<std::string> directories;
        std::vector<std::string> excludes;
        ReadInfLists(search, directories, excludes);
        for (const std::string& directory : directories) {
            EXPECT_EQ(FindInf(search, kDevice, directory, excludes), std::nullopt);
        }
    });
    EXPECT_GT(onePassOfOneDevice, 0U);
    const SimulatedDevice first(kDevice);
    EXPECT_EQ(ProfileReads([this] { Run(); }), onePassOfOneDevice) << "four passes";
    const SimulatedDevice second(kOtherDevice);
    const SimulatedDevice third("VEN_5D1A&DEV_1A2D&SUBSYS_00011A2D&REV_04");
    EXPECT_EQ(ProfileReads([this] { Run(); }), onePassOfOneDevice) << "three devices, twelve passes";
    EXPECT_TRUE(m_install.calls.empty());
}

TEST_F(DevicePass, InfThatChangesDuringAnInstallIsReadAgainForTheNextDevice)
{
    InfKit kit;
    const std::string path = kit.Add("Drv", "tav1.inf", kDevice);
    const SimulatedDevice first(kDevice);
    const SimulatedDevice second(kOtherDevice);
    m_install.duringCall = [&] { kit.Add("Drv", "tav1.inf", kOtherDevice, "the next device"); };
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, std::string("PCI\\") + kOtherDevice);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(path));
}

TEST_F(DevicePass, NextPassOfARunAsksThePlatformAnew)
{
    InfKit kit;
    kit.Add("Drv", "tav1.inf", "VEN_5D1A&DEV_0001");
    const SimulatedDevice device(kDevice);
    const uint64_t first = ProfileReads([this] { Run(); });
    EXPECT_EQ(ProfileReads([this] { Run(); }), first);
}

TEST_F(DevicePass, SetupIniThatChangesDuringAnInstallCountsForTheNextDevice)
{
    InfKit kit;
    const SimulatedDevice device(kDevice);
    const SimulatedDevice other(kOtherDevice);
    const std::vector<std::string> order = BothInOrder();
    ASSERT_EQ(order.size(), 2U);
    kit.Add("Drv", "tav1.inf", order[0]);
    const std::string inf = kit.Add("More", "tav2.inf", order[1]);
    m_install.duringCall = [&kit] {
        const std::string ini = kit.Directory().At("Morvix.ini");
        WriteFileBytes(ini, ReadFileBytes(ini) + "InfDir=More\r\n");
    };
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, "PCI\\" + order[1]);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(inf));
}

namespace {
/// An INF that nobody else can open once the platform is first asked about it, which is after its mark was read.
struct InfToLock
{
    std::string path; ///< empty once it is locked
    std::optional<UniqueFile> locked;
};
InfToLock infToLock;

DWORD WINAPI LockAndAsk(LPCSTR section, LPCSTR key, LPCSTR defaultText, LPSTR buffer, DWORD size, LPCSTR file)
{
    static const auto ask =
        FindEntry<decltype(&GetPrivateProfileStringA)>(GetModuleHandleA("kernel32.dll"), "GetPrivateProfileStringA");
    if (file != nullptr && file == infToLock.path) {
        infToLock.path.clear();
        infToLock.locked.emplace(CreateFileA(file, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_TRUE(infToLock.locked->IsOpen());
    }
    return ask(section, key, defaultText, buffer, size, file);
}
} // namespace

TEST_F(DevicePass, AnInfThatIsLockedDuringOneDevicesPassesIsFoundForTheNextDevice)
{
    InfKit kit;
    const SimulatedDevice device(kDevice);
    const SimulatedDevice other(kOtherDevice);
    const std::vector<std::string> order = BothInOrder();
    ASSERT_EQ(order.size(), 2U);
    const std::string inf = kit.Add("Drv", "tav1.inf", order[1]);
    infToLock.path = inf;
    // The first device matches in its third pass, so that the locked INF has been asked about twice by then.
    kit.Add("Drv", "tav2.inf", SearchIdForPass(order[0], 3).value());
    m_install.duringCall = [] { infToLock.locked.reset(); };
    const ImportOverride lock("GetPrivateProfileStringA", reinterpret_cast<void*>(LockAndAsk));
    TraceCapture trace;
    EXPECT_EQ(Run(), 0U);
    ASSERT_EQ(m_install.calls.size(), 2U);
    EXPECT_EQ(m_install.calls[1].hardwareId, "PCI\\" + order[1]);
    EXPECT_EQ(m_install.calls[1].infPath, UpperCased(inf));
    EXPECT_EQ(std::ranges::count(trace.Messages(), "signature section match for this OS not found\n"), 3)
        << "once in each pass of the first device";
}
