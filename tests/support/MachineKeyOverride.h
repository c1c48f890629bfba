#pragma once

/// Leads HKEY_LOCAL_MACHINE of this process to an empty key for the life of the object, for keys that a test cannot
/// take away from the machine or cannot add to it. The test's own short forms (RegistryKeys.h) follow.
class MachineKeyOverride
{
public:
    /// Where the machine key lies meanwhile, below HKEY_CURRENT_USER, for processes that this one starts.
    static constexpr char kUserKey[] = R"(Software\MorvixTests)";

    MachineKeyOverride();
    ~MachineKeyOverride();
    MachineKeyOverride(const MachineKeyOverride&) = delete;
    MachineKeyOverride& operator=(const MachineKeyOverride&) = delete;
};
