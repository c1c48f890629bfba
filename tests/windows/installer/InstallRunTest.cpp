#include "InstallRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <objbase.h>
#include <setupapi.h>

#include <algorithm>

#include "DebugOutput.h"
#include "ImportOverride.h"
#include "LibraryLoads.h"
#include "RegistryKeys.h"
#include "RunOptions.h"
#include "RunState.h"
#include "TestFiles.h"
#include "WindowStations.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;

namespace {
HRESULT WINAPI RefuseSecurity(PSECURITY_DESCRIPTOR, LONG, SOLE_AUTHENTICATION_SERVICE*, void*, DWORD, DWORD, void*,
                              DWORD, void*)
{
    return RPC_E_TOO_LATE;
}

struct SecurityAskedFor
{
    int calls;
    PSECURITY_DESCRIPTOR descriptor;
    LONG services;
    SOLE_AUTHENTICATION_SERVICE* serviceList;
    DWORD authentication;
    DWORD impersonation;
    void* authenticationList;
    DWORD capabilities;
};
SecurityAskedFor security;

HRESULT WINAPI RecordSecurity(PSECURITY_DESCRIPTOR descriptor, LONG services, SOLE_AUTHENTICATION_SERVICE* serviceList,
                              void*, DWORD authentication, DWORD impersonation, void* authenticationList,
                              DWORD capabilities, void*)
{
    security = {security.calls + 1, descriptor,    services,           serviceList,
                authentication,     impersonation, authenticationList, capabilities};
    return S_OK;
}

HMODULE loadedInstead = nullptr;

// A library that nothing else in this program has loaded.
HMODULE WINAPI LoadAnotherLibrary(LPCWSTR)
{
    loadedInstead = LoadLibraryA(TestFile("versioned_file.dll").c_str());
    return loadedInstead;
}

DriverInstallRecord RecordWithoutAFlow()
{
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows NT"), record.osFamily.begin());
    return record;
}
} // namespace

TEST(InstallRun, FamilyWithoutAFlowInstallsNothingAndPostsNothing)
{
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows NT"), record.osFamily.begin());
    TraceCapture trace;
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ("Enter -> InstallDrivers()\n", messages.at(0));
    EXPECT_EQ("CoInitialize", messages.at(1));
    EXPECT_THAT(messages, Contains("unable to determine OS\n"));
    EXPECT_THAT(messages, Not(Contains(StartsWith("Enter -> EnumerateRegistryForPCIDevices"))));
    EXPECT_EQ("Exit -> InstallDrivers()\n", messages.back());
    MSG message{};
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_CLOSE, WM_CLOSE, PM_REMOVE));
}

TEST(InstallRun, WhereComCannotBeInitialisedTheRunGoesOnWithoutARestorePoint)
{
    // A thread that COM already knows as single-threaded cannot become a multithreaded one.
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows NT"), record.osFamily.begin());
    TraceCapture trace;
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enter -> InstallDrivers()\n", "CoInitialize", "Unexpected error: CoInitializeEx() failed",
                            "Entering BeginRestorePoint", "Exiting BeginRestorePoint", "unable to determine OS\n",
                            "Exit -> InstallDrivers()\n"));
    // Still initialised as before: the failed run took nothing away.
    EXPECT_EQ(S_FALSE, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    CoUninitialize();
    CoUninitialize();
}

TEST(InstallRun, FailedDevicePassReturnsMinusOneAndLeavesTheRestorePointOpen)
{
    const ScratchRegistryKey enumKey("Enum");
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows Millenium"), record.osFamily.begin());
    RunOptions.silent = 1;
    ASSERT_EQ(nullptr, GetModuleHandleA("srclient.dll"));
    TraceCapture trace;
    EXPECT_EQ(-1, InstallDrivers(record, nullptr));
    RunOptions = {};
    RunState = {};
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ("Exit -> EnumerateRegistryForPCIDevices()\n", messages.back());
    EXPECT_THAT(messages, Not(Contains("Entering EndRestorePoint")));
    // Its library stays loaded.
    ASSERT_NE(nullptr, GetModuleHandleA("srclient.dll"));
    FreeLibrary(GetModuleHandleA("srclient.dll"));
    EXPECT_EQ(nullptr, GetModuleHandleA("srclient.dll"));
    // COM stays initialised too.
    EXPECT_EQ(S_FALSE, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    CoUninitialize();
    CoUninitialize();
}

TEST(InstallRun, WhereComSecurityCannotBeSetTheRunGoesOnWithItsRestorePoint)
{
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows NT"), record.osFamily.begin());
    TraceCapture trace;
    {
        const ImportOverride refused("CoInitializeSecurity", reinterpret_cast<void*>(RefuseSecurity));
        EXPECT_EQ(0, InstallDrivers(record, nullptr));
    }
    const std::vector<std::string> messages = trace.Messages();
    ASSERT_GE(messages.size(), 4U);
    EXPECT_EQ("CoInitialize", messages[1]);
    EXPECT_EQ("CoInitializeSecurity() failed", messages[2]);
    EXPECT_EQ("Entering BeginRestorePoint", messages[3]);
    EXPECT_THAT(messages, Contains("Entering - GetLanguageSpecificString")) << "the restore point was tried";
    EXPECT_EQ("Exit -> InstallDrivers()\n", messages.back());
}

TEST(InstallRun, ComSecurityIsSetForConnectionsWithImpersonationAndNothingElse)
{
    security = {};
    DriverInstallRecord record = RecordWithoutAFlow();
    const ImportOverride recorded("CoInitializeSecurity", reinterpret_cast<void*>(RecordSecurity));
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    EXPECT_EQ(1, security.calls);
    EXPECT_EQ(nullptr, security.descriptor);
    EXPECT_EQ(-1, security.services);
    EXPECT_EQ(nullptr, security.serviceList);
    EXPECT_EQ(2U, security.authentication);
    EXPECT_EQ(3U, security.impersonation);
    EXPECT_EQ(nullptr, security.authenticationList);
    EXPECT_EQ(0U, security.capabilities);
}

TEST(InstallRun, AFinishedRunLeavesNeitherComNorTheRestorePointLibrary)
{
    DriverInstallRecord record = RecordWithoutAFlow();
    loadedInstead = nullptr;
    {
        const ImportOverride instead("LoadLibraryW", reinterpret_cast<void*>(LoadAnotherLibrary));
        EXPECT_EQ(0, InstallDrivers(record, nullptr));
    }
    EXPECT_NE(nullptr, loadedInstead);
    EXPECT_EQ(nullptr, GetModuleHandleA("versioned_file.dll"));
    // S_FALSE would say that this thread still had COM.
    EXPECT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    CoUninitialize();
}

TEST(InstallRun, ARestorePointLibraryWithoutItsFunctionIsFreedAtTheEnd)
{
    DriverInstallRecord record = RecordWithoutAFlow();
    TraceCapture trace;
    const LibraryLoads loads("SRSetRestorePointW");
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    EXPECT_THAT(loads.Loaded(), ElementsAre("srclient.dll"));
    EXPECT_TRUE(loads.StillLoaded().empty());
    EXPECT_THAT(trace.Messages(), Contains("Failed to find SRSetRestorePointW."));
}

TEST(InstallRun, ThePlatformAsksOnlyWhereSomebodyCanAnswer)
{
    DriverInstallRecord record = RecordWithoutAFlow();
    SetupSetNonInteractiveMode(FALSE);
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    EXPECT_FALSE(SetupGetNonInteractiveMode()) << "an interactive run";
    {
        const HiddenWindowStation hidden;
        EXPECT_EQ(0, InstallDrivers(record, nullptr));
    }
    EXPECT_TRUE(SetupGetNonInteractiveMode()) << "where nobody sees a window";
    SetupSetNonInteractiveMode(FALSE);
    RunOptions.silent = 1;
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    EXPECT_TRUE(SetupGetNonInteractiveMode()) << "a silent run";
    RunOptions = {};
    SetupSetNonInteractiveMode(FALSE);
}
