#include "TestAdapter.h"

// The header below needs windows.h first, which TestAdapter.h brings.
#include <winsvc.h>

#include <cstring>
#include <memory>
#include <stdexcept>

#include "RegistryKeys.h"

namespace {
constexpr char kService[] = "MorvixTestAdapter";
constexpr char kServiceKey[] = R"(SYSTEM\CurrentControlSet\Services\MorvixTestAdapter)";
constexpr char kParametersKey[] = R"(SYSTEM\CurrentControlSet\Services\MorvixTestAdapter\Parameters)";
constexpr DWORD kLongestWait = 20000;

struct ServiceCloser
{
    void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
};
using UniqueService = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, ServiceCloser>;

UniqueService OpenManager()
{
    UniqueService manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager) {
        throw std::runtime_error("cannot open the service manager");
    }
    return manager;
}

/// @return false when the service does not get there in time.
bool WaitForState(SC_HANDLE service, DWORD state)
{
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLongestWait; Sleep(10)) {
        SERVICE_STATUS status{};
        if (QueryServiceStatus(service, &status) != FALSE && status.dwCurrentState == state) {
            return true;
        }
    }
    return false;
}

/// Stops and removes the driver; also one left by an earlier test program.
void RemoveDriver()
{
    const UniqueService manager = OpenManager();
    const UniqueService service(OpenServiceA(manager.get(), kService, SERVICE_ALL_ACCESS));
    if (service) {
        SERVICE_STATUS status{};
        if (ControlService(service.get(), SERVICE_CONTROL_STOP, &status) != FALSE) {
            WaitForState(service.get(), SERVICE_STOPPED);
        }
        DeleteService(service.get());
    }
}

std::string AdapterKey(const std::string& instanceId)
{
    return instanceId.empty() ? kParametersKey : std::string(kParametersKey) + "\\" + instanceId;
}

uint32_t ReadNumber(const std::string& key, const std::string& name)
{
    uint32_t number = 0;
    const std::optional<RegistryValue> value = ReadRegistryValue(key, name);
    if (value && value->bytes.size() == sizeof(number)) {
        std::memcpy(&number, value->bytes.data(), sizeof(number));
    }
    return number;
}
} // namespace

TestAdapterDriver::TestAdapterDriver(const std::string& driverFile, const std::vector<Adapter>& adapters,
                                     std::optional<uint32_t> ndisVersion)
{
    RemoveDriver();
    DeleteRegistryTree(kServiceKey);
    CreateRegistryKey(kParametersKey);
    if (ndisVersion) {
        SetNdisVersion(*ndisVersion);
    }
    for (const Adapter& adapter : adapters) {
        CreateRegistryKey(AdapterKey(adapter.instanceId));
        AnswerDeviceName(adapter.instanceId, adapter.privateName + '\0');
        AnswerBootMode(adapter.instanceId, 0);
        if (!adapter.privateName.empty()) {
            SetRegistryText(AdapterKey(adapter.instanceId), "PrivateName", adapter.privateName);
        }
    }
    Start(driverFile);
}

// A driver that cannot be removed may end the test program.
// NOLINTNEXTLINE(bugprone-exception-escape)
TestAdapterDriver::~TestAdapterDriver()
{
    RemoveDriver();
    DeleteRegistryTree(kServiceKey);
}

void TestAdapterDriver::Start(const std::string& driverFile)
{
    const UniqueService manager = OpenManager();
    const UniqueService service(CreateServiceA(manager.get(), kService, kService, SERVICE_ALL_ACCESS,
                                               SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                               driverFile.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
    if (!service || StartServiceA(service.get(), 0, nullptr) == FALSE ||
        !WaitForState(service.get(), SERVICE_RUNNING)) {
        const DWORD error = GetLastError();
        RemoveDriver();
        DeleteRegistryTree(kServiceKey);
        throw std::runtime_error("cannot start the test adapter's driver " + driverFile + ", error " +
                                 std::to_string(error));
    }
}

void TestAdapterDriver::AnswerBootMode(const std::string& instanceId, uint32_t bootMode)
{
    std::string data(sizeof(bootMode), '\0');
    std::memcpy(data.data(), &bootMode, sizeof(bootMode));
    AnswerPrivateRequest(instanceId, {.status = 0, .data = data, .length = std::nullopt});
}

void TestAdapterDriver::AnswerPrivateRequest(const std::string& instanceId, const TestAdapterAnswer& answer)
{
    const std::string key = AdapterKey(instanceId);
    SetRegistryNumber(key, "AnswerStatus", answer.status);
    SetRegistryNumber(key, "AnswerLength", answer.length.value_or(static_cast<uint32_t>(answer.data.size())));
    SetRegistryBytes(key, "AnswerData", answer.data, REG_BINARY);
}

void TestAdapterDriver::FailPrivateRequest(const std::string& instanceId, uint32_t ntStatus)
{
    SetRegistryNumber(AdapterKey(instanceId), "RequestStatus", ntStatus);
}

void TestAdapterDriver::AnswerDeviceName(const std::string& instanceId, const std::string& bytes)
{
    SetRegistryBytes(AdapterKey(instanceId), "NameAnswer", bytes, REG_BINARY);
}

void TestAdapterDriver::FailDeviceName(const std::string& instanceId, uint32_t ntStatus)
{
    SetRegistryNumber(AdapterKey(instanceId), "NameStatus", ntStatus);
}

void TestAdapterDriver::AnswerLate(const std::string& instanceId, uint32_t milliseconds)
{
    SetRegistryNumber(AdapterKey(instanceId), "DelayMilliseconds", milliseconds);
}

void TestAdapterDriver::SetNdisVersion(uint32_t version)
{
    SetRegistryNumber(kParametersKey, "NdisVersion", version);
}

void TestAdapterDriver::FailNdisVersion(uint32_t ntStatus)
{
    SetRegistryNumber(kParametersKey, "NdisStatus", ntStatus);
}

void TestAdapterDriver::AnswerNdisVersionLate(uint32_t milliseconds)
{
    SetRegistryNumber(kParametersKey, "DelayMilliseconds", milliseconds);
}

TestAdapterDriver::Asked TestAdapterDriver::WhatWasAsked(const std::string& instanceId) const
{
    const std::string key = AdapterKey(instanceId);
    Asked asked{.opens = ReadNumber(key, "Opens"),
                .closes = ReadNumber(key, "Closes"),
                .nameQueries = ReadNumber(key, "NameQueries"),
                .privateRequests = ReadNumber(key, "PrivateRequests"),
                .versionQueries = ReadNumber(key, "VersionQueries"),
                .lastOid = ReadNumber(key, "LastOid"),
                .lastData = {}};
    if (const std::optional<RegistryValue> data = ReadRegistryValue(key, "LastData")) {
        asked.lastData = data->bytes;
    }
    return asked;
}

bool TestAdapterDriver::WaitUntilAllIsClosed(const std::string& instanceId) const
{
    constexpr DWORD kLongestClose = 5000;
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLongestClose; Sleep(10)) {
        const Asked asked = WhatWasAsked(instanceId);
        if (asked.closes == asked.opens) {
            return true;
        }
    }
    return false;
}
