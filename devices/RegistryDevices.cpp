#include "RegistryDevices.h"

#include "AdapterRegistry.h"
#include "Handles.h"

FirstInstance RegistryDevices::FirstInstanceOf(const std::string& devicePath)
{
    const UniqueRegKey deviceKey = OpenMachineKey(devicePath, KEY_ENUMERATE_SUB_KEYS);
    const std::optional<std::string> instance = deviceKey ? FirstSubKey(deviceKey.get()) : std::nullopt;
    if (!instance) {
        return {};
    }
    const UniqueRegKey instanceKey = OpenMachineKey(devicePath + "\\" + *instance, KEY_READ);
    if (!instanceKey) {
        return {};
    }
    return {.isThere = true, .compatibleIds = ReadValueBytes(instanceKey.get(), "CompatibleIDs")};
}
