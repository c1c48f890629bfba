#include "DevicesWithId.h"

#include <cstring>
#include <new>

namespace {
/// @return true when the multi-string property `property` of the device has the entry `wanted`.
bool HasId(HDEVINFO devices, SP_DEVINFO_DATA& device, DWORD property, const char* wanted) noexcept
{
    DWORD bytes = 0;
    SetupDiGetDeviceRegistryPropertyA(devices, &device, property, nullptr, nullptr, 0, &bytes);
    // The two spare zero bytes end the list even when the stored one is not ended.
    constexpr DWORD kSpareBytes = 2;
    const std::unique_ptr<char[]> ids(new (std::nothrow) char[bytes + kSpareBytes]());
    if (!ids || !SetupDiGetDeviceRegistryPropertyA(devices, &device, property, nullptr,
                                                   reinterpret_cast<BYTE*>(ids.get()), bytes, nullptr)) {
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

DevicesWithId::DevicesWithId(const char* id, Presence presence) noexcept : m_id(id)
{
    const DWORD which = DIGCF_ALLCLASSES | (presence == Presence::PresentOnly ? DIGCF_PRESENT : 0U);
    if (const HDEVINFO listed = SetupDiGetClassDevsA(nullptr, nullptr, nullptr, which);
        listed != INVALID_HANDLE_VALUE) {
        m_devices.reset(listed);
    }
    m_device.cbSize = sizeof(m_device);
}

bool DevicesWithId::Next() noexcept
{
    while (SetupDiEnumDeviceInfo(m_devices.get(), m_index, &m_device)) {
        ++m_index;
        if (HasId(m_devices.get(), m_device, SPDRP_HARDWAREID, m_id) ||
            HasId(m_devices.get(), m_device, SPDRP_COMPATIBLEIDS, m_id)) {
            return true;
        }
    }
    return false;
}
