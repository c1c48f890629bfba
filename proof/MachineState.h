#pragma once

#include <string>

/// What a driver installation changes on a machine, one line for each thing, to be compared with a later state: the
/// registry's network devices, services, product keys and uninstall entries; INF files, driver files and the driver
/// store.
[[nodiscard]] std::string MachineState();
