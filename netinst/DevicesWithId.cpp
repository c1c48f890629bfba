#include "DevicesWithId.h"

#include <cstring>
#include <memory>
#include <new>

namespace {
/// @return true when the multi-string property `property` of the device contains `wanted`.
bool HasId(const SetupApi& api, HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property, const char* wanted) noexcept
{
    DWORD bytes = 0;
    api.getDeviceRegistryProperty(devices, &device, property, nullptr, nullptr, 0, &bytes);
    // The two spare zero bytes terminate the list even when the stored one is not terminated.
    constexpr DWORD kSpareBytes = 2;
    const std::unique_ptr<char[]> ids(new (std::nothrow) char[bytes + kSpareBytes]());
    if (!ids || !api.getDeviceRegistryProperty(devices, &device, property, nullptr, reinterpret_cast<BYTE*>(ids.get()),
                                               bytes, nullptr)) {
        return false;
    }
    for (const char* id = ids.get(); *id != '\0'; id += std::strlen(id) + 1) {
        if (lstrcmpiA(id, wanted) == 0) {
            return true;
        }
    }
    return false;
}
} // namespace

DevicesWithId::DevicesWithId(const SetupApi& api, const char* id, Presence presence) noexcept
    : m_api(api),
      m_id(id),
      m_devices(api.getClassDevs(nullptr, nullptr, nullptr,
                                 DIGCF_ALLCLASSES | (presence == Presence::PresentOnly ? DIGCF_PRESENT : 0U)))
{
    m_device.cbSize = sizeof(m_device);
}

DevicesWithId::~DevicesWithId()
{
    if (IsOpen()) {
        m_api.destroyDeviceInfoList(m_devices);
    }
}

bool DevicesWithId::Next() noexcept
{
    while (m_api.enumDeviceInfo(m_devices, m_index, &m_device)) {
        ++m_index;
        if (HasId(m_api, m_devices, m_device, SPDRP_HARDWAREID, m_id) ||
            HasId(m_api, m_devices, m_device, SPDRP_COMPATIBLEIDS, m_id)) {
            return true;
        }
    }
    return false;
}

InstanceId DevicesWithId::Instance() noexcept
{
    InstanceId id{};
    if (!m_api.getDeviceInstanceId(m_devices, &m_device, id.data(), static_cast<DWORD>(id.size()), nullptr)) {
        id.front() = '\0';
    }
    return id;
}
