#include "FcoeBootPorts.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "AdapterRegistry.h"
#include "EntryPoints.h"
#include "FcoeAdapter.h"
#include "Handles.h"
#include "HbaApiInt.h"
#include "OrvString.h"
#include "SystemLibrary.h"
#include "Trace.h"

namespace {
constexpr GUID kNetworkAdapterClass = {0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

/// The functions that list devices. Windows XP and Server 2003 do not know their library as one of the system's own, so
/// a file of its name beside the program would come first.
struct DeviceListFunctions
{
    UniqueLibrary library = LoadSystemLibrary("setupapi.dll");
    SetupDiGetClassDevsFn list = FindEntry<SetupDiGetClassDevsFn>(library.get(), "SetupDiGetClassDevsA");
    SetupDiEnumDeviceInfoFn enumerate = FindEntry<SetupDiEnumDeviceInfoFn>(library.get(), "SetupDiEnumDeviceInfo");
    SetupDiGetDeviceRegistryPropertyFn getProperty =
        FindEntry<SetupDiGetDeviceRegistryPropertyFn>(library.get(), "SetupDiGetDeviceRegistryPropertyA");
    SetupDiDestroyDeviceInfoListFn destroy =
        FindEntry<SetupDiDestroyDeviceInfoListFn>(library.get(), "SetupDiDestroyDeviceInfoList");

    [[nodiscard]] bool AreComplete() const
    {
        return list != nullptr && enumerate != nullptr && getProperty != nullptr && destroy != nullptr;
    }
};

/// Owns a device list.
class AdapterList
{
public:
    /// @param functions  Must outlive this object.
    AdapterList(const DeviceListFunctions& functions, HDEVINFO list) : m_functions(functions), m_list(list) {}
    ~AdapterList()
    {
        if (m_list != INVALID_HANDLE_VALUE && m_functions.destroy != nullptr) {
            m_functions.destroy(m_list);
        }
    }
    AdapterList(const AdapterList&) = delete;
    AdapterList& operator=(const AdapterList&) = delete;

    /// @return false when there is no list, or a function to read it with is missing.
    [[nodiscard]] bool IsOpen() const { return m_list != INVALID_HANDLE_VALUE && m_functions.AreComplete(); }

    /// @return false when there is no such adapter; the last error then says why: ERROR_NO_MORE_ITEMS after the last.
    [[nodiscard]] bool At(DWORD index, SP_DEVINFO_DATA& device) const
    {
        device = {};
        device.cbSize = sizeof(device);
        return m_functions.enumerate(m_list, index, &device) != FALSE;
    }

    /// @return the device's driver key below the system's class key.
    [[nodiscard]] std::optional<std::string> DriverKeyOf(SP_DEVINFO_DATA& device) const
    {
        constexpr DWORD kKeyBytes = 260;
        // One byte more than is asked for: a stored text without its terminator ends there.
        std::array<char, kKeyBytes + 1> key{};
        if (m_functions.getProperty(m_list, &device, SPDRP_DRIVER, nullptr, reinterpret_cast<BYTE*>(key.data()),
                                    kKeyBytes, nullptr) == FALSE) {
            return std::nullopt;
        }
        return std::string(key.data());
    }

private:
    const DeviceListFunctions& m_functions;
    HDEVINFO m_list;
};

/// @return the name under which the FCoE library knows the adapter.
std::optional<std::wstring> AdapterNameOf(const std::string& driverKey)
{
    const UniqueRegKey key = OpenDriverKey(driverKey);
    const std::optional<std::string> instanceId = key ? ReadTextValue(key.get(), kNetCfgInstanceIdValue) : std::nullopt;
    if (!instanceId) {
        return std::nullopt;
    }
    std::array<wchar_t, kFcoeAdapterNameChars> wide{};
    const int chars = COrvString::OrvMultiByteToWideChar(CP_ACP, 0, instanceId->c_str(), -1, wide.data(),
                                                         static_cast<int>(wide.size()));
    // The conversion tells the length of the whole text, also of one that it had to cut.
    if (chars < 1 || static_cast<std::size_t>(chars) > wide.size()) {
        return std::nullopt;
    }
    return FcoeAdapterName(wide.data());
}

bool AskFcoeLibrary(const std::wstring& adapterName)
{
    constexpr bool kHasEthernet = true;
    CHBAAPIInt library;
    NORDA_FCANDNICPROPERTIES properties{};
    if (library.InitHBAAPIMod(adapterName.c_str(), kHasEthernet)) {
        HBA_HANDLE handle = 0;
        if (library.GetAdapterHandle(adapterName.c_str(), handle)) {
            library.GetFCEthernetProperties(handle, &properties);
            library.CloseAdapHandle(handle);
        }
        library.DeInitHBAAPIMod();
    }
    return IsFcoeBootPort(properties.Flags);
}

bool IsBootPort(const AdapterList& adapters, SP_DEVINFO_DATA& device)
{
    const std::optional<std::string> driverKey = adapters.DriverKeyOf(device);
    if (!driverKey) {
        Trace("Failed to get driver key from PCI device");
        return false;
    }
    // A name that is too long for the library names no adapter that it could know.
    const std::optional<std::wstring> adapterName = AdapterNameOf(*driverKey);
    if (!adapterName) {
        Trace("Failed to get NetCfgInstanceID from PCI device");
        return false;
    }
    return AskFcoeLibrary(*adapterName);
}

bool BootPortIsAmong(const AdapterList& adapters)
{
    if (!adapters.IsOpen()) {
        Trace("Failed to enumerate any PCI devices");
        return false;
    }
    bool found = false;
    SP_DEVINFO_DATA device;
    // Every adapter is asked, also after one that is a boot port.
    for (DWORD index = 0; adapters.At(index, device); ++index) {
        found = IsBootPort(adapters, device) || found;
    }
    const DWORD endedBy = GetLastError();
    if (!found) {
        Trace(endedBy == ERROR_NO_MORE_ITEMS ? "Exhausted list of PCI devices" : "Failed to enumerate all PCI devices");
    }
    return found;
}
} // namespace

bool AreFCoEBootEnabledPortsAmong(HDEVINFO adapters)
{
    const DeviceListFunctions functions;
    return BootPortIsAmong(AdapterList(functions, adapters));
}

bool AreFCoEBootEnabledPortsPresent()
{
    Trace("Entering -> AreFCoEBootEnabledPortsPresent()");
    const DeviceListFunctions functions;
    const bool found = BootPortIsAmong(AdapterList(
        functions, functions.AreComplete() ? functions.list(&kNetworkAdapterClass, nullptr, nullptr, DIGCF_PRESENT)
                                           : INVALID_HANDLE_VALUE));
    Trace("Exiting -> AreFCoEBootEnabledPortsPresent()");
    return found;
}
