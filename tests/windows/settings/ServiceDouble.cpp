#include "ServiceDouble.h"

#include <stdexcept>

#include "TestFiles.h"

ServiceDouble::ServiceDouble(const std::string& name)
    : m_manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)),
      m_service(CreateServiceA(m_manager.get(), name.c_str(), name.c_str(), SERVICE_ALL_ACCESS,
                               SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                               ("\"" + TestFile(R"(doubles\test_service.exe)") + "\" run").c_str(), nullptr, nullptr,
                               nullptr, nullptr, nullptr))
{
    if (!m_service) {
        throw std::runtime_error("cannot make the service " + name);
    }
}

ServiceDouble::~ServiceDouble()
{
    SERVICE_STATUS status{};
    ControlService(m_service.get(), SERVICE_CONTROL_STOP, &status);
    DeleteService(m_service.get());
}

void ServiceDouble::Start()
{
    if (StartServiceA(m_service.get(), 0, nullptr) == FALSE) {
        throw std::runtime_error("cannot start the service");
    }
    WaitFor(SERVICE_RUNNING);
}

void ServiceDouble::Stop()
{
    SERVICE_STATUS status{};
    if (ControlService(m_service.get(), SERVICE_CONTROL_STOP, &status) == FALSE) {
        throw std::runtime_error("cannot stop the service");
    }
    WaitFor(SERVICE_STOPPED);
}

void ServiceDouble::WaitFor(DWORD state)
{
    constexpr DWORD kLongestWait = 20000;
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLongestWait; Sleep(10)) {
        SERVICE_STATUS status{};
        if (QueryServiceStatus(m_service.get(), &status) != FALSE && status.dwCurrentState == state) {
            return;
        }
    }
    throw std::runtime_error("the service does not get where it is wanted");
}
