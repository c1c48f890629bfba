#pragma once

#include <string>

#include "Handles.h"

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
    void WaitFor(DWORD state);

    UniqueServiceHandle m_manager;
    UniqueServiceHandle m_service;
};
