#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DeviceAcceptance.h"
#include "DeviceSearch.h"
#include "Machine.h"
#include "OSCode.h"
#include "SearchLog.h"

/// What the installer would do on a machine with a kit: a value that every output prints. Paths of INF files and
/// folders are the ones on the machine; KitFolder's paths name them for the user. Texts are as they came from the
/// machine and the kit, control characters included.

/// One INF file as one search pass met it.
struct JudgedInf
{
    uint32_t inf = 0; ///< place in SearchOutcome::infs
    InfVerdict verdict = InfVerdict::NotListed;
    bool operator==(const JudgedInf&) const = default;
};

struct PassNotes
{
    int number = 1;
    std::string searchId;
    std::vector<JudgedInf> judged;
    bool operator==(const PassNotes&) const = default;
};

/// The line of an INF that lists a device.
struct Match
{
    std::string inf;        ///< full path on the machine
    std::string recordPath; ///< the same as the install record holds it; empty when it does not fit
    uint32_t line = 0;
    uint32_t column = 0;
    int pass = 1;
    std::string searchId;
    std::string modelSection;
    std::string description;
    std::string driverVersion; ///< "DriverVer" of the INF as it is written there; empty when there is none
    bool operator==(const Match&) const = default;
};

/// The value that the installer would write after an install, and what decides between success and failure.
struct Report
{
    std::string value;                     ///< name of the result value
    std::string expects;                   ///< pattern in the system's driver directory, with its leading backslash
    std::optional<std::string> copiedFile; ///< the first file that the INF copies there and that fits
    bool copiesAreKnown = false;           ///< whether the INF's lists of copied files could be followed
    bool operator==(const Report&) const = default;
};

/// The search for one device. It depends on the kit, the system, the options and the device's name alone, so machines
/// share it.
struct SearchOutcome
{
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
    std::vector<std::string> sectionNames;
    std::vector<std::string> infs;  ///< full paths, each once, in the order in which they were met
    std::vector<std::string> names; ///< of the same files, as the answers name them
    std::vector<PassNotes> passes;
    std::vector<JudgedInf> passedOver; ///< each file that was met and not chosen, once
    std::optional<Match> match;
    std::optional<Report> report; ///< of a match whose INF belongs to a driver family
    /// INF files that qualified, in order: each goes to the driver store unless one of its name has been there.
    std::vector<uint32_t> qualified;
    SearchVerdict verdict = SearchVerdict::NoInf;
    int lastPass = 1;         ///< the pass that ended the search
    bool isDmaEngine = false; ///< the INF is that of the DMA engines
    bool operator==(const SearchOutcome&) const = default;
};

/// What has gone to the driver store after a device of a run.
struct StoreState
{
    /// As the installer remembers them in this run. Devices for which nothing is stored share the list of the device
    /// before. Null in a plan that is traced.
    std::shared_ptr<const std::vector<std::string>> all;
    std::vector<std::string> now; ///< INF file names that go there for this device, in order
};

/// A device that the installer serves.
struct DevicePlan
{
    std::string key; ///< name of the device's key
    DeviceVerdict acceptance = DeviceVerdict::AcceptedById;
    std::string acceptedBy; ///< the compatible ID; empty where the name decides
    Presence presence = Presence::Unknown;
    std::size_t instances = 0;
    std::shared_ptr<const SearchOutcome> search;
    std::shared_ptr<const StoreState> store; ///< after this device
    std::vector<std::string> findings;       ///< rules of a check of the kit; empty where nobody checked it
};

/// A device that the installer leaves alone.
struct RejectedDevice
{
    std::string key;
    DeviceVerdict verdict = DeviceVerdict::OtherDevice;
};

/// The system that a machine was planned for.
struct PlannedSystem
{
    OSCode code = osUNSUPPORTED;
    SystemFacts facts;
    std::string section; ///< of Morvix.ini
    std::string family;
    std::string from;       ///< "option" or "registry"
    std::string familyFrom; ///< "option", "registry" or "system"
    std::vector<std::string> reasons;
};

enum class MachineOutcome
{
    Done,
    Fault,         ///< the run would end in the middle of the devices
    NotServed,     ///< the installer refuses such a system
    NoDevices,     ///< the registry has no PCI devices where the installer looks; the device pass would not begin
    UnknownSystem, ///< the description does not say which system it is
    Unreadable,
};

/// A reason to restart after the run.
struct RestartAnswer
{
    std::string id;            ///< "dma-engine", "iscsi-boot", "fcoe-boot"
    std::optional<bool> holds; ///< no value when the machine's description does not say
    std::string why;
};

struct MachinePlan
{
    std::string name;
    std::string source;
    SourceKind kind = SourceKind::Export;
    bool dirty = false;
    MachineOutcome outcome = MachineOutcome::Done;
    std::string problem; ///< what is missing, for an outcome that has no system
    PlannedSystem system;
    std::vector<DevicePlan> devices;
    std::vector<RejectedDevice> rejected;
    std::size_t notReached = 0; ///< devices after the one that ends the run with a fault
    std::vector<RestartAnswer> restart;
    std::vector<Diagnostic> diagnostics;
};

/// The names of reasons and outcomes in every output; they never change their meaning.
[[nodiscard]] std::string_view NameOf(InfVerdict verdict);
[[nodiscard]] std::string_view NameOf(MachineOutcome outcome);
[[nodiscard]] std::string_view NameOf(Presence presence);
[[nodiscard]] std::string_view NameOf(SearchVerdict verdict);
[[nodiscard]] std::string_view NameOf(DeviceVerdict verdict);

/// @return in words what became of an INF: "not listed" and so on.
[[nodiscard]] std::string_view InWords(InfVerdict verdict);

/// @return "SUCCESS", "FAILURE" or "unknown": what the result value would say after the platform has bound the driver,
///         on a machine that has no other file of the driver family.
[[nodiscard]] std::string_view ResultIfBound(const Report& report);

/// @return the last part of a path on the machine.
[[nodiscard]] std::string_view FileNameIn(std::string_view path);
