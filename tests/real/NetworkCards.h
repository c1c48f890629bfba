#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <cfgmgr32.h>
#include <setupapi.h>

#include <string>
#include <vector>

/// How near to real hardware a network device is.
enum class Bus
{
    Pci,
    Other,   ///< also the one by which a virtual machine reaches its host
    Software ///< devices that the system itself has made up
};

/// A network device that is present.
struct NetworkCard
{
    std::string instanceId;
    std::string hardwareId; ///< the most exact one
    std::string name;
    std::string service;
    std::string infName; ///< as the system keeps it, such as "netkvm.inf" or "oem3.inf"
    DEVINST node = 0;
    Bus bus = Bus::Software;

    /// Whether its driver came with the system.
    [[nodiscard]] bool HasInBoxDriver() const;
};

/// @return the present devices of the network class, in the order of their buses.
[[nodiscard]] std::vector<NetworkCard> PresentNetworkCards();

/// What a device says of itself.
struct CardState
{
    ULONG status = 0;  ///< DN_... bits
    ULONG problem = 0; ///< CM_PROB_... number, 0 for none
};
/// Throws std::runtime_error when the device does not say.
[[nodiscard]] CardState StateOf(const NetworkCard& card);

/// @return the full path of an INF file of the system beside which its driver files are.
[[nodiscard]] std::string PathOfInf(const std::string& infName);
