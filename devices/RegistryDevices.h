#pragma once

#include "DeviceAcceptance.h"

/// The devices of this machine's registry.
class RegistryDevices final : public DeviceInstances
{
public:
    [[nodiscard]] FirstInstance FirstInstanceOf(const std::string& devicePath) override;
};
