// A service for tests:
//   test_service run        runs until it is stopped
//   test_service fail       gives up while it starts
//   test_service slow       starts, says so by setting the event "Global\MorvixTestServiceStarting", and runs once
//                           "Global\MorvixTestServiceMayRun" is set; stops in the same way with "...Stopping" and
//                           "...MayStop"
//   test_service stubborn   runs and takes no order to stop but the one of the event "Global\MorvixTestServiceMayStop"
#include <windows.h>
// winsvc.h needs windows.h first.
#include <winsvc.h>

#include <string>

#include "Handles.h"

namespace {
constexpr DWORD kLongestTest = 120000;

std::string way;
SERVICE_STATUS_HANDLE manager = nullptr;
HANDLE stopOrder = nullptr;

void Report(DWORD state, DWORD exitCode = NO_ERROR)
{
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = state == SERVICE_RUNNING && way != "stubborn" ? SERVICE_ACCEPT_STOP : 0;
    status.dwWin32ExitCode = exitCode;
    status.dwWaitHint = 60000;
    SetServiceStatus(manager, &status);
}

// Tells the test where this service is and waits for its leave to go on.
void Meet(const char* arrived, const char* leave)
{
    const UniqueHandle there(OpenEventA(EVENT_MODIFY_STATE, FALSE, arrived));
    const UniqueHandle go(OpenEventA(SYNCHRONIZE, FALSE, leave));
    if (there) {
        SetEvent(there.get());
    }
    if (go) {
        WaitForSingleObject(go.get(), kLongestTest);
    }
}

void WINAPI OnControl(DWORD control)
{
    if (control == SERVICE_CONTROL_STOP) {
        Report(SERVICE_STOP_PENDING);
        SetEvent(stopOrder);
    }
}

void WINAPI Serve(DWORD /*count*/, char** /*arguments*/)
{
    manager = RegisterServiceCtrlHandlerA("", OnControl);
    const UniqueHandle order(way == "stubborn" ? OpenEventA(SYNCHRONIZE, FALSE, R"(Global\MorvixTestServiceMayStop)")
                                               : CreateEventA(nullptr, TRUE, FALSE, nullptr));
    stopOrder = order.get();
    Report(SERVICE_START_PENDING);
    if (way == "fail") {
        Report(SERVICE_STOPPED, ERROR_GEN_FAILURE);
        return;
    }
    if (way == "slow") {
        Meet(R"(Global\MorvixTestServiceStarting)", R"(Global\MorvixTestServiceMayRun)");
    }
    Report(SERVICE_RUNNING);
    WaitForSingleObject(order.get(), kLongestTest);
    if (way == "slow") {
        Meet(R"(Global\MorvixTestServiceStopping)", R"(Global\MorvixTestServiceMayStop)");
    }
    Report(SERVICE_STOPPED);
}
} // namespace

int main(int argc, char** argv)
{
    way = argc > 1 ? argv[1] : "run";
    char name[] = "";
    const SERVICE_TABLE_ENTRYA services[] = {{name, Serve}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherA(services) != FALSE ? 0 : 1;
}
