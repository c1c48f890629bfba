#pragma once

#include <array>

#include "SetupApi.h"

/// Which devices an enumeration returns.
enum class Presence
{
    PresentOnly,
    AlsoRemoved, ///< also those of which only the registry keys are left
};

/// The instance ID of a device, terminated.
using InstanceId = std::array<char, MAX_DEVICE_ID_LEN>;

/// Enumerates the devices that have a hardware or compatible ID, ignoring letter case.
class DevicesWithId
{
public:
    /// @param api  Must outlive the object.
    /// @param id   Must outlive the object.
    /// When the devices cannot be listed, the last error says why.
    DevicesWithId(const SetupApi& api, const char* id, Presence presence) noexcept;
    ~DevicesWithId();
    DevicesWithId(const DevicesWithId&) = delete;
    DevicesWithId& operator=(const DevicesWithId&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return m_devices != INVALID_HANDLE_VALUE; }
    /// Moves to the next device, on the first call to the first one.
    /// @return false when there are no more.
    [[nodiscard]] bool Next() noexcept;

    [[nodiscard]] HDEVINFO Set() const noexcept { return m_devices; }
    [[nodiscard]] SP_DEVINFO_DATA& Device() noexcept { return m_device; }
    /// @return the current device's instance ID, which no other device has; empty when the system does not say.
    [[nodiscard]] InstanceId Instance() noexcept;

private:
    const SetupApi& m_api;
    const char* m_id;
    HDEVINFO m_devices;
    SP_DEVINFO_DATA m_device{};
    DWORD m_index = 0;
};
