#pragma once

#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <memory>

struct DeviceSetCloser
{
    void operator()(void* devices) const noexcept { SetupDiDestroyDeviceInfoList(devices); }
};
using UniqueDeviceSet = std::unique_ptr<void, DeviceSetCloser>;

/// Which devices a walk sees.
enum class Presence
{
    PresentOnly,
    AlsoRemoved, ///< also those of which only the keys are left
};

/// A walk over the devices that have a hardware or compatible ID, letter case aside.
class DevicesWithId
{
public:
    /// @param id  Must outlive the walk. When the devices cannot be listed, the last error says why.
    DevicesWithId(const char* id, Presence presence) noexcept;

    [[nodiscard]] bool IsOpen() const noexcept { return m_devices != nullptr; }
    /// Goes to the next device, at first to the first one.
    /// @return false when there is none.
    [[nodiscard]] bool Next() noexcept;

    [[nodiscard]] HDEVINFO Set() const noexcept { return m_devices.get(); }
    [[nodiscard]] SP_DEVINFO_DATA& Device() noexcept { return m_device; }

private:
    const char* m_id;
    UniqueDeviceSet m_devices;
    SP_DEVINFO_DATA m_device{};
    DWORD m_index = 0;
};
