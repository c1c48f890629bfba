#pragma once

#include <string>
#include <vector>

/// An adapter that the system sees: a device key with its IDs, and no driver yet. The destructor removes everything
/// that an installation adds for it: class key, service, driver file and the stored copy of the INF.
class SimulatedAdapter
{
public:
    /// @param device     Key name below the PCI bus: VEN_....&DEV_....&SUBSYS_........&REV_..
    /// @param className  "Net" or "System".
    explicit SimulatedAdapter(const std::string& device, const std::string& className = "Net");
    ~SimulatedAdapter();
    SimulatedAdapter(const SimulatedAdapter&) = delete;
    SimulatedAdapter& operator=(const SimulatedAdapter&) = delete;

    /// @return the device's full hardware ID.
    [[nodiscard]] std::string HardwareId() const { return "PCI\\" + m_device; }
    /// @return a text value of the device key, "<none>" when it is missing.
    [[nodiscard]] std::string Value(const std::string& name) const;
    /// @return the class key that the device was bound to, below HKEY_LOCAL_MACHINE; empty while it has no driver.
    [[nodiscard]] std::string ClassKey() const;

private:
    void RemoveTraces();

    std::string m_device;
};

/// Deletes what an install of driver `name` left: the driver file and the system's copy of the INF, both of that name.
void RemoveInstalledFiles(const std::string& name);

/// @return the full path of `name` in the system's driver directory.
[[nodiscard]] std::string SystemDriverFile(const std::string& name);

/// @return the version "a.b.c.d" of a file's version resource, empty when it has none.
[[nodiscard]] std::string FileVersionOf(const std::string& path);
