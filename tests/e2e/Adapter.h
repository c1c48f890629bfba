#pragma once

#include <string>
#include <vector>

/// What one of our network adapters reports besides its name.
inline const std::vector<std::string> kEthernetCompatibleIds = {R"(PCI\VEN_5D1A&CC_020000)", R"(PCI\VEN_5D1A&CC_0200)",
                                                                R"(PCI\CC_020000)", R"(PCI\CC_0200)"};

/// A simulated network adapter: the keys that the system makes for a PCI device. The destructor removes them.
class Adapter
{
public:
    /// @param deviceId  The device's key name, VEN_vvvv&DEV_dddd&SUBSYS_ssssssss&REV_rr; the hardware IDs are those
    ///                  that the system derives from it.
    explicit Adapter(std::string deviceId, const std::vector<std::string>& compatibleIds = kEthernetCompatibleIds);
    ~Adapter();
    Adapter(const Adapter&) = delete;
    Adapter& operator=(const Adapter&) = delete;

    [[nodiscard]] const std::string& DeviceId() const { return m_deviceId; }

    /// The device's driver key below the system's Class key, such as "{4D36E972-...}\0000", or "<none>".
    [[nodiscard]] std::string Driver() const;
    /// The device's service name, or "<none>".
    [[nodiscard]] std::string Service() const;
    /// The driver key's path below HKEY_LOCAL_MACHINE.
    [[nodiscard]] std::string DriverKey() const;

private:
    std::string m_deviceId;
    std::string m_instanceKey;
};

/// Removes every simulated adapter of our vendors and its driver key from this machine. Harmless when there is none.
void RemoveSimulatedAdapters();
