#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SearchLog.h"

/// Does the program serve a PCI device?

/// What became of a device, and why.
enum class DeviceVerdict
{
    AcceptedByName,  ///< Windows 98: the vendor number is in the key name
    AcceptedById,    ///< one of its compatible IDs is in the table
    OtherVendor,     ///< Windows 98: the vendor number is not in the key name
    NoInstance,      ///< its key has no instance, or the first one cannot be opened
    NoCompatibleIds, ///< its first instance has no list of compatible IDs
    OtherDevice,     ///< none of its compatible IDs is in the table
};

struct Acceptance
{
    DeviceVerdict verdict = DeviceVerdict::NoInstance;
    std::string_view acceptedId; ///< the row of the table that decided; empty without one

    [[nodiscard]] bool IsAccepted() const
    {
        return verdict == DeviceVerdict::AcceptedByName || verdict == DeviceVerdict::AcceptedById;
    }
};

/// What a device's first instance holds.
struct FirstInstance
{
    bool isThere = false; ///< false also when it cannot be opened
    /// The list as it is stored; no value when it cannot be read. A list that lacks its end stops with the bytes.
    std::optional<std::vector<char>> compatibleIds;
};

/// The instances of a machine's devices.
class DeviceInstances
{
public:
    virtual ~DeviceInstances() = default;
    /// @param devicePath  Path of the device's key below HKEY_LOCAL_MACHINE.
    [[nodiscard]] virtual FirstInstance FirstInstanceOf(const std::string& devicePath) = 0;
};

/// The rule of Windows 98: the maker's vendor number counts wherever it is in the name.
[[nodiscard]] Acceptance AcceptByName(std::string_view deviceKeyName);

/// The rule of every other family. Further instances of the same device do not count.
[[nodiscard]] Acceptance AcceptByIds(const FirstInstance& instance);

/// Decides by the rule of the family and says so.
/// @param deviceKeyName  Key name below the PCI key, such as VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03.
/// @param osFamily       The record's family name.
/// @param devices        Asked only where the instance counts.
[[nodiscard]] Acceptance AcceptDevice(const std::string& deviceKeyName, std::string_view osFamily,
                                      DeviceInstances& devices, SearchLog& log);
