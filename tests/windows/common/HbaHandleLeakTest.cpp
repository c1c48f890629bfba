// No operation of the FCoE access or of the helpers keeps a handle: each is called 1,000 times between two counts.
#include <gtest/gtest.h>

#include <functional>

#include "HandleCount.h"
#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "HbaOperations.h"
#include "Helper.h"
#include "ProductKeys.h"
#include "RegistryKeys.h"
#include "WmiQuery.h"

namespace {
constexpr int kCalls = 1000;
constexpr char kTern[] = R"(SOFTWARE\NORDA\Network_Services\TERN)";

/// @return how many handles 1,000 calls have added.
int HandlesKept(const std::function<void()>& call)
{
    // The first call is for what the platform sets up once.
    call();
    const unsigned before = CountOwnHandles();
    for (int i = 0; i < kCalls; ++i) {
        call();
    }
    return static_cast<int>(CountOwnHandles()) - static_cast<int>(before);
}

struct HelperRow
{
    std::string name;
    std::function<void(CHelper&)> call;
};

const HelperRow kHelperRows[] = {
    {"IsDcbInstalled", [](CHelper& helper) { EXPECT_TRUE(helper.IsDcbInstalled()); }},
    {"IsFcoeInstalled", [](CHelper& helper) { EXPECT_FALSE(helper.IsFcoeInstalled()); }},
    {"IsTernInstalled", [](CHelper& helper) { EXPECT_FALSE(helper.IsTernInstalled()); }},
    {"IsZorInstalled", [](CHelper& helper) { EXPECT_FALSE(helper.IsZorInstalled()); }},
    {"IsIscsiInstalled", [](CHelper& helper) { EXPECT_FALSE(helper.IsIscsiInstalled()); }},
    {"IsDebugEnbled", [](CHelper& helper) { EXPECT_TRUE(helper.IsDebugEnbled()); }},
    {"IsSettingDebugable",
     [](CHelper& helper) {
         DWORD value = 0;
         EXPECT_FALSE(helper.IsSettingDebugable("missing", value));
     }},
    {"GetDebugString",
     [](CHelper& helper) {
         COrvString text;
         EXPECT_FALSE(helper.GetDebugString("missing", text));
     }},
    {"IsDebugFeatureOn", [](CHelper& helper) { EXPECT_FALSE(helper.IsDebugFeatureOn()); }},
    {"GetInstalledLanguage",
     [](CHelper& helper) {
         COrvString text;
         EXPECT_EQ(helper.GetInstalledLanguage(text), -1);
     }},
    {"IsServiceRunning", [](CHelper& helper) { EXPECT_FALSE(helper.IsServiceRunning(kServiceNordaDCB)); }},
    // Stopping a stopped service makes the same calls as any other stop, without the wait.
    {"StopServiceOfKind", [](CHelper& helper) { EXPECT_TRUE(helper.StopServiceOfKind(kServiceNordaDCB)); }},
    // A service that cannot be started fails after everything is open.
    {"StartServiceOfKind", [](CHelper& helper) { EXPECT_FALSE(helper.StartServiceOfKind(kServiceNordaDCB)); }},
    {"IsOsDcbPresent", [](CHelper& helper) { static_cast<void>(helper.IsOsDcbPresent()); }},
    {"GetStatusText",
     [](CHelper& helper) {
         static constexpr AgentLibrary kLibraries[] = {
             {"NetShell", "StatusTexts", R"(SOFTWARE\NORDA\Network_Services\TERN)", "ResourcePath"}};
         COrvString text;
         EXPECT_TRUE(helper.GetStatusText(kLibraries, 5, text));
     }},
    {"LoadAgentLibrary",
     [](CHelper& helper) {
         static constexpr AgentLibrary kLibraries[] = {
             {"Agent", "nordhapi", R"(SOFTWARE\NORDA\Network_Services\TERN)", "ResourcePath"}};
         EXPECT_TRUE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
     }},
};

class HelperHandles : public ::testing::TestWithParam<HelperRow>
{
};
class HbaOperationHandles : public ::testing::TestWithParam<HbaOperationRow>
{
};
} // namespace

TEST_P(HbaOperationHandles, OneThousandCallsKeepNone)
{
    const HbaLibraryDouble library;
    library.Answer("Quiet", "1");
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    EXPECT_EQ(HandlesKept([&] { EXPECT_TRUE(GetParam().call(hba)); }), 0);
}

INSTANTIATE_TEST_SUITE_P(Each, HbaOperationHandles, ::testing::ValuesIn(HbaOperationRows()),
                         [](const auto& row) { return row.param.name; });

TEST(HbaHandles, OneThousandLoadsAndUnloadsKeepNone)
{
    const HbaLibraryDouble library;
    library.Answer("Quiet", "1");
    CHBAAPIInt hba;
    EXPECT_EQ(HandlesKept([&] {
                  EXPECT_TRUE(hba.InitHBAAPIMod(L"adapter", true));
                  EXPECT_TRUE(hba.DeInitHBAAPIMod());
              }),
              0);
}

TEST(HbaHandles, OneThousandFailedLoadsKeepNone)
{
    CHBAAPIInt hba;
    EXPECT_EQ(HandlesKept([&] { EXPECT_FALSE(hba.InitHBAAPIMod()); }), 0);
}

TEST(HbaHandles, OneThousandOpenedAskedAndClosedAdaptersKeepNone)
{
    const HbaLibraryDouble library;
    library.Answer("Quiet", "1");
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    EXPECT_EQ(HandlesKept([&] {
                  HBA_HANDLE handle = 0;
                  NORDA_FCANDNICPROPERTIES properties{};
                  EXPECT_TRUE(hba.GetAdapterHandle(L"adapter", handle));
                  EXPECT_TRUE(hba.GetFCEthernetProperties(handle, &properties));
                  EXPECT_TRUE(hba.CloseAdapHandle(handle));
              }),
              0);
}

TEST(HbaHandles, OneThousandMutexesThatCannotBeHadKeepNone)
{
    const NameTakenByAnEvent taken;
    CHBAAPIInt hba;
    HBA_HANDLE handle = 0;
    EXPECT_EQ(HandlesKept([&] {
                  EXPECT_FALSE(hba.InitHBAAPIMod());
                  EXPECT_FALSE(hba.GetAdapterHandle(L"adapter", handle));
                  EXPECT_TRUE(hba.DeInitHBAAPIMod());
              }),
              0);
}

TEST_P(HelperHandles, OneThousandCallsKeepNone)
{
    const ScratchRegistryKey registry(kNetworkServices);
    SetRegistryText(kTern, "InstalledTERN_DCB", "1");
    SetRegistryText(kTern, "InstalledTERN_FCOE", "0");
    SetRegistryNumber(kProduct, "Debugging", 1);
    const std::string self = TestFile("doubles\\nordhapi.dll");
    SetRegistryText(kTern, "ResourcePath", self.substr(0, self.rfind('\\')));
    const UniqueServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    const UniqueServiceHandle service(CreateServiceA(
        manager.get(), "NordaDCB", "NordaDCB", SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START,
        SERVICE_ERROR_NORMAL, R"(C:\no such folder\no_such.exe)", nullptr, nullptr, nullptr, nullptr, nullptr));
    ASSERT_TRUE(service);
    CHelper helper;
    const int kept = HandlesKept([&] { GetParam().call(helper); });
    DeleteService(service.get());
    EXPECT_EQ(kept, 0);
}

INSTANTIATE_TEST_SUITE_P(Each, HelperHandles, ::testing::ValuesIn(kHelperRows),
                         [](const auto& row) { return row.param.name; });
