#include "Plan.h"

#include "RecordNames.h"

namespace {
/// How an outcome is named in every output, and what it is in words.
struct Wording
{
    std::string_view name;
    std::string_view words;
};

Wording WordingOf(InfVerdict verdict)
{
    switch (verdict) {
        case InfVerdict::ListsDevice:
            return {.name = "lists-device", .words = "lists the device"};
        case InfVerdict::Excluded:
            return {.name = "excluded", .words = "excluded by Morvix.ini"};
        case InfVerdict::OtherSignature:
            return {.name = "other-signature", .words = "signature of another system"};
        case InfVerdict::OtherBrand:
            return {.name = "other-brand", .words = "no brand of ours"};
        case InfVerdict::NotListed:
            return {.name = "not-listed", .words = "not listed"};
    }
    return {.name = "unknown", .words = {}};
}
} // namespace

std::string_view NameOf(InfVerdict verdict)
{
    return WordingOf(verdict).name;
}

std::string_view InWords(InfVerdict verdict)
{
    return WordingOf(verdict).words;
}

std::string_view NameOf(MachineOutcome outcome)
{
    switch (outcome) {
        case MachineOutcome::Done:
            return "ok";
        case MachineOutcome::Fault:
            return "fault";
        case MachineOutcome::NotServed:
            return "not-served";
        case MachineOutcome::NoDevices:
            return "no-devices";
        case MachineOutcome::UnknownSystem:
            return "unknown-system";
        case MachineOutcome::Unreadable:
            return "unreadable";
    }
    return "unknown";
}

std::string_view NameOf(Presence presence)
{
    switch (presence) {
        case Presence::Unknown:
            return "unknown";
        case Presence::Present:
            return "present";
        case Presence::Absent:
            return "absent";
    }
    return "unknown";
}

std::string_view NameOf(SearchVerdict verdict)
{
    switch (verdict) {
        case SearchVerdict::Matched:
            return "matched";
        case SearchVerdict::NoInf:
            return "no-inf";
        case SearchVerdict::Fault:
            return "fault";
    }
    return "unknown";
}

std::string_view NameOf(DeviceVerdict verdict)
{
    switch (verdict) {
        case DeviceVerdict::AcceptedByName:
            return "accepted-by-name";
        case DeviceVerdict::AcceptedById:
            return "accepted-by-id";
        case DeviceVerdict::OtherVendor:
            return "other-vendor";
        case DeviceVerdict::NoInstance:
            return "no-instance";
        case DeviceVerdict::NoCompatibleIds:
            return "no-compatible-ids";
        case DeviceVerdict::OtherDevice:
            return "other-device";
    }
    return "unknown";
}

std::string_view ResultIfBound(const Report& report)
{
    if (!report.copiesAreKnown) {
        return "unknown";
    }
    return report.copiedFile ? kResultSuccess : kResultFailure;
}

std::string_view FileNameIn(std::string_view path)
{
    const std::size_t backslash = path.rfind('\\');
    return backslash == std::string_view::npos ? path : path.substr(backslash + 1);
}
