#pragma once

#include <windows.h>

#include <stdexcept>

/// This process has a window station without a display for the life of the object, as a service has.
class HiddenWindowStation
{
public:
    /// Throws std::runtime_error when there can be none.
    HiddenWindowStation() : m_hidden(CreateWindowStationA("MorvixTests", 0, WINSTA_ALL_ACCESS, nullptr))
    {
        if (SetProcessWindowStation(m_hidden) == FALSE) {
            throw std::runtime_error("no hidden window station");
        }
    }
    ~HiddenWindowStation()
    {
        SetProcessWindowStation(m_before);
        CloseWindowStation(m_hidden);
    }
    HiddenWindowStation(const HiddenWindowStation&) = delete;
    HiddenWindowStation& operator=(const HiddenWindowStation&) = delete;

private:
    HWINSTA m_before = GetProcessWindowStation();
    HWINSTA m_hidden;
};
