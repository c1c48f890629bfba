#pragma once

/// Redirects HKEY_LOCAL_MACHINE of this process to an empty key during the object's lifetime, for keys that a test
/// cannot remove from the machine or add to it. The test's own short forms (RegistryKeys.h) follow.
class MachineKeyOverride
{
public:
    /// Where the machine key is meanwhile, below HKEY_CURRENT_USER, for processes that this one starts.
    static constexpr char kUserKey[] = R"(Software\MorvixTests)";

    MachineKeyOverride();
    ~MachineKeyOverride();
    MachineKeyOverride(const MachineKeyOverride&) = delete;
    MachineKeyOverride& operator=(const MachineKeyOverride&) = delete;
};
