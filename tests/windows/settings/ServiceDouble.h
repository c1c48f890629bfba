#pragma once

#include <windows.h>
// The header below needs windows.h first.
#include <winsvc.h>

#include <memory>
#include <string>

/// A service of the given name whose program does nothing but run; removed at the end of the object's life. Throws
/// std::runtime_error when it cannot be made, started or stopped.
class ServiceDouble
{
public:
    explicit ServiceDouble(const std::string& name);
    ~ServiceDouble();
    ServiceDouble(const ServiceDouble&) = delete;
    ServiceDouble& operator=(const ServiceDouble&) = delete;

    void Start();
    void Stop();

private:
    struct Closer
    {
        void operator()(SC_HANDLE handle) const noexcept { CloseServiceHandle(handle); }
    };
    using Handle = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, Closer>;

    void WaitFor(DWORD state);

    Handle m_manager;
    Handle m_service;
};
