#include "MachineKeyOverride.h"

#include <windows.h>

#include <stdexcept>
#include <string>

#include "Handles.h"
#include "RegistryKeys.h"

MachineKeyOverride::MachineKeyOverride()
{
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, kUserKey, &key) != ERROR_SUCCESS) {
        throw std::runtime_error("the key for this process cannot be opened");
    }
    const UniqueRegKey owner(key);
    if (RegOverridePredefKey(HKEY_LOCAL_MACHINE, key) != ERROR_SUCCESS) {
        throw std::runtime_error("HKEY_LOCAL_MACHINE cannot be led elsewhere");
    }
}

MachineKeyOverride::~MachineKeyOverride()
{
    for (const std::string& name : RegistrySubKeys("")) {
        DeleteRegistryTree(name);
    }
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteKeyA(HKEY_CURRENT_USER, kUserKey);
}
