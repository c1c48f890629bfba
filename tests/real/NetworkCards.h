#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <cfgmgr32.h>
#include <setupapi.h>

#include <string>
#include <vector>

#include "CardChoice.h"

/// A network device that is present.
struct NetworkCard
{
    CardFacts facts;
    std::string hardwareId; ///< the most exact one
    std::string name;
    std::string service;
    std::string infName; ///< as the system keeps it, such as "netkvm.inf" or "oem3.inf"
    DEVINST node = 0;
};

/// @return the present devices of the network class.
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
