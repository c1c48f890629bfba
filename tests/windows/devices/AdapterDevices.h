#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "DeviceFixtures.h"
#include "HandleCount.h"
#include "Handles.h"
#include "RegistryKeys.h"
#include "TestAdapter.h"
#include "TestFiles.h"

/// What the tests of the storage-boot checks share.

inline constexpr char kTestInstance[] = "{5D1A0001-0000-4000-8000-00AA00BB00CC}";
inline constexpr char kTestPrivateName[] = "{5D1A0001-0000-4000-8000-00AA00BB00CC}_Private";
inline constexpr char kNetworkClass[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";

[[nodiscard]] inline std::string TestDriverFile()
{
    return TestFile(R"(doubles\test_adapter.sys)");
}

/// @return how many more handles this process has open after the calls than before them. The first call, which may set
///         up what stays for the life of the process, does not count.
[[nodiscard]] inline int HandlesLeftBy(int calls, const std::function<void()>& call)
{
    call();
    const unsigned before = CountOwnHandles();
    {
        const UniqueHandle one(CreateEventA(nullptr, TRUE, FALSE, nullptr));
        EXPECT_EQ(CountOwnHandles(), before + 1) << "this count does not see handles";
    }
    for (int index = 0; index < calls; ++index) {
        call();
    }
    return static_cast<int>(CountOwnHandles()) - static_cast<int>(before);
}

/// A network adapter in the registry, as the class enumeration finds it: the device and, when it has a driver key, its
/// key below the network class. Both are gone at the end of the object's life.
class RegistryAdapter
{
public:
    /// @param keyName     The device's key name.
    /// @param driverKey   Number of its driver key, such as "9001"; without a value it has none.
    /// @param instanceId  Its network-configuration instance ID; without a value there is no such value.
    RegistryAdapter(const std::string& keyName, const std::optional<std::string>& driverKey,
                    const std::optional<std::string>& instanceId)
        : m_device(keyName),
          m_driver(std::string(R"(SYSTEM\CurrentControlSet\Control\Class\)") + kNetworkClass + "\\" +
                   driverKey.value_or("9999"))
    {
        SetRegistryText(m_device.Instance(), "ClassGUID", kNetworkClass);
        SetRegistryText(m_device.Instance(), "Class", "Net");
        if (driverKey) {
            SetRegistryText(m_device.Instance(), "Driver", std::string(kNetworkClass) + "\\" + *driverKey);
            CreateRegistryKey(DriverKey());
        }
        if (instanceId) {
            SetRegistryText(DriverKey(), "NetCfgInstanceId", *instanceId);
        }
    }

    [[nodiscard]] const std::string& DriverKey() const { return m_driver.Path(); }
    [[nodiscard]] std::string Instance() const { return m_device.Instance(); }

private:
    SimulatedDevice m_device;
    ScratchRegistryKey m_driver;
};
