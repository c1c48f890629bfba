// Real services, made for the test under the names that the library knows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "EntryPoints.h"
#include "Handles.h"
#include "Helper.h"
#include "ImportOverride.h"
#include "LibraryTrace.h"
#include "ServicePolling.h"
#include "TestFiles.h"
#include "TestThread.h"
#include "WmiQuery.h"

using ::testing::ElementsAre;
using ::testing::Pair;

namespace {
constexpr DWORD kLongWait = 60000;

/// Makes a service that is started on demand. One of the same name that was deleted may still be on its way out: its
/// process has to end first.
UniqueServiceHandle MakeService(SC_HANDLE manager, const std::string& name, const std::string& command)
{
    constexpr DWORD kPause = 10;
    for (DWORD waited = 0;; waited += kPause) {
        UniqueServiceHandle service(CreateServiceA(
            manager, name.c_str(), name.c_str(), SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START,
            SERVICE_ERROR_NORMAL, command.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
        const DWORD error = GetLastError();
        if (service) {
            return service;
        }
        if (error != ERROR_SERVICE_MARKED_FOR_DELETE || waited >= kLongWait) {
            throw std::runtime_error("cannot create the service, error " + std::to_string(error));
        }
        Sleep(kPause);
    }
}

/// A service for the life of the object.
class TestService
{
public:
    TestService(const std::string& name, const std::string& way)
    {
        if (!m_manager) {
            throw std::runtime_error("no service manager");
        }
        m_service = MakeService(m_manager.get(), name, '"' + TestFile("doubles\\test_service.exe") + "\" " + way);
    }
    ~TestService()
    {
        SERVICE_STATUS status{};
        ControlService(m_service.get(), SERVICE_CONTROL_STOP, &status);
        DeleteService(m_service.get());
    }
    TestService(const TestService&) = delete;
    TestService& operator=(const TestService&) = delete;

    [[nodiscard]] DWORD State() const
    {
        SERVICE_STATUS status{};
        QueryServiceStatus(m_service.get(), &status);
        return status.dwCurrentState;
    }

private:
    UniqueServiceHandle m_manager{OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)};
    UniqueServiceHandle m_service;
};

UniqueHandle ServiceEvent(const std::string& name)
{
    return UniqueHandle(CreateEventA(nullptr, TRUE, FALSE, (R"(Global\MorvixTestService)" + name).c_str()));
}

// What is asked of the service manager, in order. The calls go through, past the import table.
struct ServiceOpens
{
    std::vector<DWORD> managers;
    std::vector<std::pair<std::string, DWORD>> services;
};
ServiceOpens opens;

SC_HANDLE WINAPI NoteManager(LPCSTR machine, LPCSTR database, DWORD access)
{
    static const auto open = FindEntry<decltype(&OpenSCManagerA)>(GetModuleHandleA("advapi32.dll"), "OpenSCManagerA");
    EXPECT_EQ(machine, nullptr);
    EXPECT_EQ(database, nullptr);
    opens.managers.push_back(access);
    return open(machine, database, access);
}

SC_HANDLE WINAPI NoteService(SC_HANDLE manager, LPCSTR name, DWORD access)
{
    static const auto open = FindEntry<decltype(&OpenServiceA)>(GetModuleHandleA("advapi32.dll"), "OpenServiceA");
    opens.services.emplace_back(name, access);
    return open(manager, name, access);
}

class HelperServiceAccess : public ::testing::Test
{
protected:
    HelperServiceAccess() { opens = {}; }

private:
    ImportOverride m_manager{"OpenSCManagerA", reinterpret_cast<void*>(NoteManager)};
    ImportOverride m_service{"OpenServiceA", reinterpret_cast<void*>(NoteService)};
};

struct ServiceRow
{
    int kind;
    const char* name;
};
class ServiceOfKind : public ::testing::TestWithParam<ServiceRow>
{
};
} // namespace

TEST_P(ServiceOfKind, StartsRunsAndStops)
{
    const TestService service(GetParam().name, "run");
    CHelper helper;
    EXPECT_FALSE(helper.IsServiceRunning(GetParam().kind));
    EXPECT_TRUE(helper.StartServiceOfKind(GetParam().kind));
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_RUNNING));
    EXPECT_TRUE(helper.IsServiceRunning(GetParam().kind));
    EXPECT_TRUE(helper.StopServiceOfKind(GetParam().kind));
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_STOPPED));
    EXPECT_FALSE(helper.IsServiceRunning(GetParam().kind));
}

INSTANTIATE_TEST_SUITE_P(Each, ServiceOfKind,
                         ::testing::Values(ServiceRow{kServiceNordaDCB, "NordaDCB"},
                                           ServiceRow{kServiceNFCoEDCB, "NFCoEDCB"},
                                           ServiceRow{kServiceMSiSCSI, "MSiSCSI"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(HelperServices, ThreeKindsAreKnown)
{
    EXPECT_EQ(kServiceNordaDCB, 0);
    EXPECT_EQ(kServiceNFCoEDCB, 1);
    EXPECT_EQ(kServiceMSiSCSI, 2);
}

TEST(HelperServices, AServiceThatDoesNotExistFails)
{
    CHelper helper;
    const LibraryTrace trace;
    EXPECT_FALSE(helper.IsServiceRunning(kServiceNordaDCB));
    EXPECT_FALSE(helper.StartServiceOfKind(kServiceNordaDCB));
    EXPECT_FALSE(helper.StopServiceOfKind(kServiceNordaDCB));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enterning CHelper::IsServiceRunning()", "Exiting CHelper::IsServiceRunning()",
                            "Enterning CHelper::StartServiceOfKind()",
                            "StartServiceOfKind() - Unable to open the service - exiting",
                            "Exiting CHelper::StartServiceOfKind()", "Enterning CHelper::StopServiceOfKind()",
                            "StopServiceOfKind() - Unable to open the service - exiting",
                            "Exiting CHelper::StopServiceOfKind()"));
}

TEST(HelperServices, AnyOtherKindHasNoNameAndFails)
{
    const TestService service("NordaDCB", "run");
    CHelper helper;
    for (const int kind : {-1, 3, 1000}) {
        EXPECT_FALSE(helper.StartServiceOfKind(kind));
        EXPECT_FALSE(helper.IsServiceRunning(kind));
        EXPECT_FALSE(helper.StopServiceOfKind(kind));
    }
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_STOPPED));
}

TEST_F(HelperServiceAccess, WhetherAServiceRunsIsAskedWithReadAccessToItAndToTheManager)
{
    for (int kind = kServiceNordaDCB; kind <= kServiceMSiSCSI + 1; ++kind) {
        EXPECT_FALSE(CHelper().IsServiceRunning(kind));
    }
    EXPECT_THAT(opens.managers, ElementsAre(GENERIC_READ, GENERIC_READ, GENERIC_READ, GENERIC_READ));
    EXPECT_THAT(opens.services, ElementsAre(Pair("NordaDCB", GENERIC_READ), Pair("NFCoEDCB", GENERIC_READ),
                                            Pair("MSiSCSI", GENERIC_READ), Pair("", GENERIC_READ)));
}

TEST_F(HelperServiceAccess, StartingAndStoppingAskForThatRightToTheServiceAndNoMore)
{
    EXPECT_FALSE(CHelper().StartServiceOfKind(kServiceNordaDCB));
    EXPECT_FALSE(CHelper().StopServiceOfKind(kServiceNordaDCB));
    EXPECT_THAT(opens.managers, ElementsAre(GENERIC_READ, GENERIC_READ));
    EXPECT_THAT(opens.services, ElementsAre(Pair("NordaDCB", GENERIC_READ | SERVICE_START),
                                            Pair("NordaDCB", GENERIC_READ | SERVICE_STOP)));
}

TEST(HelperServices, StartingWhatRunsAndStoppingWhatDoesNotAreSuccesses)
{
    const TestService service("NordaDCB", "run");
    CHelper helper;
    EXPECT_TRUE(helper.StopServiceOfKind(kServiceNordaDCB));
    EXPECT_TRUE(helper.StartServiceOfKind(kServiceNordaDCB));
    EXPECT_TRUE(helper.StartServiceOfKind(kServiceNordaDCB));
    EXPECT_TRUE(helper.StopServiceOfKind(kServiceNordaDCB));
}

TEST(HelperServices, AServiceThatGivesUpWhileItStartsIsAFailure)
{
    const TestService service("NordaDCB", "fail");
    CHelper helper;
    EXPECT_FALSE(helper.StartServiceOfKind(kServiceNordaDCB));
    EXPECT_FALSE(helper.IsServiceRunning(kServiceNordaDCB));
}

TEST(HelperServices, AServiceThatCannotBeStartedIsAFailure)
{
    const UniqueServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    const UniqueServiceHandle service = MakeService(manager.get(), "NordaDCB", R"(C:\no such folder\no_such.exe)");
    const LibraryTrace trace;
    EXPECT_FALSE(CHelper().StartServiceOfKind(kServiceNordaDCB));
    DeleteService(service.get());
    EXPECT_THAT(trace.Messages(), ElementsAre("Enterning CHelper::StartServiceOfKind()",
                                              "StartServiceOfKind() - Unable to start the service - exiting",
                                              "Exiting CHelper::StartServiceOfKind()"));
}

TEST(HelperServices, AServiceOnItsWayIsWaitedForAndDoesNotCountAsRunning)
{
    const UniqueHandle starting = ServiceEvent("Starting");
    const UniqueHandle mayRun = ServiceEvent("MayRun");
    const UniqueHandle stopping = ServiceEvent("Stopping");
    const UniqueHandle mayStop = ServiceEvent("MayStop");
    const TestService service("NordaDCB", "slow");
    CHelper helper;
    bool runningOnTheWayUp = true;
    bool runningOnTheWayDown = true;
    TestThread up([&] {
        WaitForSingleObject(starting.get(), kLongWait);
        runningOnTheWayUp = CHelper().IsServiceRunning(kServiceNordaDCB);
        SetEvent(mayRun.get());
    });
    EXPECT_TRUE(helper.StartServiceOfKind(kServiceNordaDCB));
    up.join();
    EXPECT_FALSE(runningOnTheWayUp);
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_RUNNING));
    TestThread down([&] {
        WaitForSingleObject(stopping.get(), kLongWait);
        runningOnTheWayDown = CHelper().IsServiceRunning(kServiceNordaDCB);
        SetEvent(mayStop.get());
    });
    EXPECT_TRUE(helper.StopServiceOfKind(kServiceNordaDCB));
    down.join();
    EXPECT_FALSE(runningOnTheWayDown);
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_STOPPED));
}

TEST(HelperServices, AServiceThatIgnoresStopIsAFailure)
{
    const UniqueHandle mayStop = ServiceEvent("MayStop");
    const TestService service("NordaDCB", "stubborn");
    CHelper helper;
    ASSERT_TRUE(helper.StartServiceOfKind(kServiceNordaDCB));
    const LibraryTrace trace;
    EXPECT_FALSE(helper.StopServiceOfKind(kServiceNordaDCB));
    EXPECT_EQ(service.State(), static_cast<DWORD>(SERVICE_RUNNING));
    EXPECT_THAT(trace.Messages(), ElementsAre("Enterning CHelper::StopServiceOfKind()",
                                              "StopServiceOfKind() - Unable to stop the service - exiting",
                                              "Exiting CHelper::StopServiceOfKind()"));
    SetEvent(mayStop.get());
    EXPECT_TRUE(PollService([&] { return LookAtStop(service.State()); }, [] { Sleep(kServicePollMilliseconds); }));
}

TEST(HelperServices, TheSystemsOwnDcbIsThereWhenItAnswersAboutItsSettings)
{
    const WmiAnswer answer = AskWmi(LR"(root\standardcimv2)", L"SELECT * FROM MSFT_NetQosDcbxSettingData");
    const LibraryTrace trace;
    EXPECT_EQ(CHelper().IsOsDcbPresent(), answer == WmiAnswer::Rows);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enterning CHelper::IsOsDcbPresent()", "Exiting CHelper::IsOsDcbPresent()"));
}
