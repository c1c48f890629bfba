#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "DeviceFixtures.h"
#include "DevicePass.h"
#include "ResultKeys.h"

inline constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
inline constexpr char kOtherDevice[] = "VEN_5D1A&DEV_1A2C&SUBSYS_00011A2C&REV_03";

/// Device passes on this machine's registry.
class DevicePass : public testing::Test
{
protected:
    ScratchRegistryKey m_results{kBasedriversKey};
    DriverInstallRecord m_record = RecordOf("Windows Vista");
    RecordingInstall m_install;

    uint32_t Run() { return RunDevicePass(m_record, &m_install, kNoProgress); }
};

/// The lines of a whole pass in which `linesOfTested` follow the acceptance of device `tested` and every other device
/// of this machine is rejected.
[[nodiscard]] std::vector<std::string> WholePass(const std::string& tested,
                                                 const std::vector<std::string>& linesOfTested);

/// The lines of the list reading that begins each device's search.
[[nodiscard]] std::vector<std::string> ListLines(TraceCapture& trace);

/// The lines of one search through the kit's directories, up to the first match.
[[nodiscard]] std::vector<std::string> SearchLines(TraceCapture& trace, const InfKit& kit, const std::string& searchId);

/// The lines of a device's storage-adapter test, for a device without a network-configuration instance.
[[nodiscard]] std::vector<std::string> StorageLines(const std::string& device);

/// The lines of an install by the driver-install interface of an INF that belongs to no driver family.
[[nodiscard]] std::vector<std::string> InstallLines(const std::string& device, const std::string& infPath,
                                                    const std::string& answer);

/// @return the key names of both devices, in the registry's own order.
[[nodiscard]] std::vector<std::string> BothInOrder();
