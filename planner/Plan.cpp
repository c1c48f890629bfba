#include "Plan.h"

#include "RecordNames.h"

std::string_view NameOf(InfVerdict verdict)
{
    switch (verdict) {
        case InfVerdict::ListsDevice:
            return "lists-device";
        case InfVerdict::Excluded:
            return "excluded";
        case InfVerdict::OtherSignature:
            return "other-signature";
        case InfVerdict::OtherBrand:
            return "other-brand";
        case InfVerdict::NotListed:
            return "not-listed";
    }
    return "unknown";
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
