// When the uninstaller's value of the INF that is being installed is there.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>

#include "DeviceFixtures.h"
#include "DeviceInstall.h"
#include "ImportOverride.h"
#include "ResultKeys.h"

using testing::ElementsAre;

namespace {
constexpr char kInf[] = R"(C:\KIT\NGEA64.INF)"; // of a driver family

// The value at the time of certain trace lines.
std::vector<std::string> seen;

void WINAPI SeeValue(LPCSTR line)
{
    for (const char* const watched : {"2K/XP install: ", "Enter -> PostInstallRegResult\n"}) {
        if (std::string_view(line).find(watched) != std::string_view::npos) {
            seen.push_back(ReadRegistryText(kBasedriversKey, "Tavunstl_source_path"));
        }
    }
}
} // namespace

TEST(SourcePath, IsSetAfterTheInstallIsTracedAndDeletedBeforeTheClassificationBegins)
{
    const ScratchRegistryKey results(kBasedriversKey);
    const InfKit kit;
    // Without this key nothing is traced.
    CreateRegistryKey(std::string(kBasedriversKey) + R"(\Debug)");
    DriverInstallRecord record = RecordOf("Windows Vista");
    std::ranges::copy(std::string_view(kInf), record.infPath.begin());
    RecordingInstall install;
    seen.clear();
    {
        const ImportOverride lines("OutputDebugStringA", reinterpret_cast<void*>(SeeValue));
        InstallMatchedDevice(InstallRoute::DriverInterface, record, "VEN_5D1A&DEV_1A2B", &install, kNoProgress);
    }
    ASSERT_EQ(install.calls.size(), 1U);
    EXPECT_EQ(install.calls[0].sourcePath, kInf);
    EXPECT_THAT(seen, ElementsAre("<none>", "<none>"));
    EXPECT_EQ(ReadRegistryText(kBasedriversKey, "TAVG_PCIE_Install"), "FAILURE") << "it was classified";
}
