#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A machine as its registry describes it: what the installer would see there of the system and of the PCI devices.
/// Every text is the bytes that an 8-bit registry call returns on that machine, in its own code page.

/// What a description was read from.
enum class SourceKind
{
    Export, ///< a registry export
    Hive,   ///< an offline SYSTEM hive
    Live,   ///< the registry of the machine that this program runs on
};

enum class Severity
{
    Note,    ///< worth knowing; the answers do not depend on it
    Warning, ///< something is missing or was assumed; the rest is answered
    Error,   ///< no answer: the machine is refused
};

/// @return "note", "warning" or "error".
[[nodiscard]] std::string_view NameOf(Severity severity);

/// Something to tell the user about an input.
struct Diagnostic
{
    Severity severity = Severity::Warning;
    std::string source;   ///< the file, as the user named it
    std::size_t line = 0; ///< counted from 1; 0 when the remark concerns no line
    std::string what;     ///< one line without control characters
    std::string cure;     ///< what the user can do about it; empty when there is nothing to do
};

/// @return "source:line: what; cure", on one line.
[[nodiscard]] std::string TextOf(const Diagnostic& diagnostic);

/// Something known of a machine, or not known, and where it comes from.
template <class T>
struct Fact
{
    std::optional<T> value;
    std::string from; ///< the registry value, or the reasoning; why it is not known when there is no value

    [[nodiscard]] explicit operator bool() const { return value.has_value(); }
    [[nodiscard]] const T& operator*() const { return *value; }
    [[nodiscard]] const T* operator->() const { return &*value; }
    bool operator==(const Fact&) const = default;
};

// The types of registry values that matter here, as the platform numbers them.
inline constexpr uint32_t kRegistryText = 1;           // REG_SZ
inline constexpr uint32_t kRegistryExpandableText = 2; // REG_EXPAND_SZ
inline constexpr uint32_t kRegistryBinary = 3;         // REG_BINARY
inline constexpr uint32_t kRegistryNumber = 4;         // REG_DWORD
inline constexpr uint32_t kRegistryTextList = 7;       // REG_MULTI_SZ

/// A registry value as an 8-bit call returns it: the types that hold text in the machine's code page, every other type
/// as it is stored. A terminator that is not stored is missing here too.
struct EightBitValue
{
    uint32_t type = 0;
    std::string bytes;
    bool operator==(const EightBitValue&) const = default;
};

/// @return the text of a value of a type that holds text, up to its first NUL; empty for every other type.
[[nodiscard]] std::string_view TextIn(const EightBitValue& value);
/// @return the number in a value of 4 bytes.
[[nodiscard]] std::optional<uint32_t> NumberIn(const EightBitValue& value);

enum class Presence
{
    Unknown, ///< not recorded for a machine that is not running
    Present,
    Absent, ///< the card was removed; only its key is left
};

/// One instance of a PCI device: a sub-key of the device's key.
struct PciInstance
{
    std::string name;
    std::optional<EightBitValue> compatibleIds;
    std::optional<EightBitValue> hardwareIds;
    std::optional<EightBitValue> setupClass;
    std::optional<EightBitValue> setupClassGuid;
    std::optional<EightBitValue> service;
    std::optional<EightBitValue> driver;
    std::optional<EightBitValue> configFlags;
    std::optional<EightBitValue> description;
    std::optional<EightBitValue> friendlyName;
    Presence presence = Presence::Unknown;
    bool operator==(const PciInstance&) const = default;
};

/// The values of an instance and the names that they have in the registry.
inline constexpr std::array kInstanceValues =
    std::to_array<std::pair<std::string_view, std::optional<EightBitValue> PciInstance::*>>({
        {"CompatibleIDs", &PciInstance::compatibleIds},
        {"HardwareID", &PciInstance::hardwareIds},
        {"Class", &PciInstance::setupClass},
        {"ClassGUID", &PciInstance::setupClassGuid},
        {"Service", &PciInstance::service},
        {"Driver", &PciInstance::driver},
        {"ConfigFlags", &PciInstance::configFlags},
        {"DeviceDesc", &PciInstance::description},
        {"FriendlyName", &PciInstance::friendlyName},
    });

/// A PCI device: a sub-key of "Enum\PCI". The installer looks at the first instance only.
struct PciDevice
{
    std::string name; ///< key name, such as "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01"
    std::vector<PciInstance> instances;
    bool operator==(const PciDevice&) const = default;
};

/// The devices in the registry's own order, that of their names in upper case; no value when the key "Enum\PCI" is
/// missing, which ends the installer's device pass with an error.
using PciDevices = std::optional<std::vector<PciDevice>>;

struct VersionNumbers
{
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
    bool operator==(const VersionNumbers&) const = default;
};

/// What the registry says of the system. These are the system's own facts; SystemView.h says what the installer makes
/// of them.
struct SystemDescription
{
    Fact<VersionNumbers> version;
    Fact<uint32_t> platform;     ///< kPlatform9x or kPlatformNT
    Fact<uint16_t> servicePack;  ///< major number of the service pack
    Fact<uint8_t> productType;   ///< kProductWorkstation and so on
    Fact<uint16_t> architecture; ///< native processor: 0 x86, 5 ARM, 6 IA-64, 9 x64, 12 ARM64
    Fact<uint32_t> codePage;     ///< of the 8-bit calls
    Fact<std::vector<std::string>> productSuites;
    Fact<std::string> productName;
    Fact<std::string> installationType; ///< "Client", "Server", "Server Core"; from 6.1 on
    Fact<std::string> computerName;
    bool operator==(const SystemDescription&) const = default;
};

/// What a registry says about the reasons to restart. Whether a machine boots over iSCSI or FCoE is not in it: only the
/// drivers know.
struct RestartDescription
{
    /// Version of the network driver interface: major number in the high 16 bits, minor number in the low 16.
    Fact<uint32_t> ndisVersion;
    /// The initiator is installed as a controller.
    Fact<bool> iscsiInitiatorPresent;
    /// The initiator is recent enough to boot.
    Fact<bool> iscsiInitiatorRecent;
    /// The initiator's dump driver is the one that works.
    Fact<bool> iscsiCrashDumpEnabled;
    /// Version of the management extension; FCoE boot allows a run only from a certain one on.
    Fact<std::string> extensionVersion;
    bool operator==(const RestartDescription&) const = default;
};

struct Machine
{
    std::string name;   ///< for people: see NameOfMachine
    std::string source; ///< the file, as the user named it; "-" or "live"
    SourceKind kind = SourceKind::Export;
    bool refused = false;   ///< not read, or not to be relied on: the diagnostics say why, everything below is empty
    bool dirty = false;     ///< a hive that was not closed: its latest changes may be missing
    std::string controlSet; ///< the control set that was read, such as "ControlSet001"; empty when there is none
    SystemDescription system;
    RestartDescription restart;
    PciDevices devices;     ///< of the NT systems, in the control set
    PciDevices devicesOf9x; ///< of the 9x systems, in "Enum\PCI" below the root
    std::vector<Diagnostic> diagnostics;
};

/// @param family  Family name, as the system prober writes it into the install record.
/// @return the devices where the installer looks for them on a system of that family; nothing for a family that it does
///         not serve.
[[nodiscard]] const PciDevices& DevicesForFamily(const Machine& machine, std::string_view family);
