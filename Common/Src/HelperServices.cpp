// Services of the maker's software and of the system, and the system's own DCB.
#include "DcbQuery.h"
#include "Helper.h"
#include "HelperTrace.h"
#include "OrvDebug.h"
#include "ServicePolling.h"
#include "WmiQuery.h"

namespace {
const char* ServiceName(int kind)
{
    switch (kind) {
        case kServiceNordaDCB:
            return "NordaDCB";
        case kServiceNFCoEDCB:
            return "NFCoEDCB";
        case kServiceMSiSCSI:
            return "MSiSCSI";
        default:
            return "";
    }
}

UniqueServiceHandle OpenServiceOfKind(int kind, DWORD access)
{
    const UniqueServiceHandle manager(OpenSCManagerA(nullptr, nullptr, GENERIC_READ));
    if (!manager) {
        return nullptr;
    }
    return UniqueServiceHandle(OpenServiceA(manager.get(), ServiceName(kind), access));
}

// 0 when the status cannot be read: no state has that number.
DWORD ServiceState(SC_HANDLE service)
{
    SERVICE_STATUS status{};
    return QueryServiceStatus(service, &status) == FALSE ? 0 : status.dwCurrentState;
}

void WaitForNextLook()
{
    Sleep(kServicePollMilliseconds);
}
} // namespace

bool CHelper::IsServiceRunning(int kind)
{
    const HelperTrace trace("IsServiceRunning");
    const UniqueServiceHandle service = OpenServiceOfKind(kind, GENERIC_READ);
    return service && ServiceState(service.get()) == SERVICE_RUNNING;
}

bool CHelper::StartServiceOfKind(int kind)
{
    const HelperTrace trace("StartServiceOfKind");
    const UniqueServiceHandle service = OpenServiceOfKind(kind, GENERIC_READ | SERVICE_START);
    if (!service) {
        OrvTrace().Print("StartServiceOfKind() - Unable to open the service - exiting");
        return false;
    }
    if (StartServiceA(service.get(), 0, nullptr) == FALSE && GetLastError() != ERROR_SERVICE_ALREADY_RUNNING) {
        OrvTrace().Print("StartServiceOfKind() - Unable to start the service - exiting");
        return false;
    }
    return PollService([&] { return LookAtStart(ServiceState(service.get())); }, WaitForNextLook);
}

bool CHelper::StopServiceOfKind(int kind)
{
    const HelperTrace trace("StopServiceOfKind");
    const UniqueServiceHandle service = OpenServiceOfKind(kind, GENERIC_READ | SERVICE_STOP);
    if (!service) {
        OrvTrace().Print("StopServiceOfKind() - Unable to open the service - exiting");
        return false;
    }
    SERVICE_STATUS status{};
    const BOOL asked = ControlService(service.get(), SERVICE_CONTROL_STOP, &status);
    // A stopping service rejects controls; wait for it too.
    if (asked == FALSE && GetLastError() != ERROR_SERVICE_NOT_ACTIVE &&
        ServiceState(service.get()) != SERVICE_STOP_PENDING) {
        OrvTrace().Print("StopServiceOfKind() - Unable to stop the service - exiting");
        return false;
    }
    return PollService([&] { return LookAtStop(ServiceState(service.get())); }, WaitForNextLook);
}

bool CHelper::IsOsDcbPresent()
{
    const HelperTrace trace("IsOsDcbPresent");
    return AskWmi(kDcbNameSpace, kDcbQuery) == WmiAnswer::Rows;
}
