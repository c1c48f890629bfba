#include "DeviceQuery.h"

#include <algorithm>
#include <vector>

#include "EqualsIgnoringCase.h"
#include "Printable.h"
#include "TextStyle.h"

namespace {
constexpr std::string_view kBusPrefix = R"(PCI\)";
constexpr std::size_t kMostNamed = 4;

struct Candidate
{
    std::string_view key;
    FoundDevice device;
};

std::vector<Candidate> AllDevices(const MachinePlan& plan)
{
    std::vector<Candidate> all;
    for (const DevicePlan& device : plan.devices) {
        all.push_back({.key = device.key, .device = {.served = &device, .rejected = nullptr}});
    }
    for (const RejectedDevice& device : plan.rejected) {
        all.push_back({.key = device.key, .device = {.served = nullptr, .rejected = &device}});
    }
    return all;
}

bool ContainsText(std::string_view text, std::string_view part)
{
    for (std::size_t start = 0; start + part.size() <= text.size(); ++start) {
        if (EqualsIgnoringCase(text.substr(start, part.size()), part)) {
            return true;
        }
    }
    return false;
}
} // namespace

std::optional<FoundDevice> FindDevice(const MachinePlan& plan, std::string_view text, std::string& problem)
{
    const std::string asked = Printable(text);
    if (EqualsIgnoringCase(text.substr(0, kBusPrefix.size()), kBusPrefix)) {
        text.remove_prefix(kBusPrefix.size());
    }
    const std::vector<Candidate> all = AllDevices(plan);
    std::vector<Candidate> fitting;
    for (const Candidate& candidate : all) {
        if (EqualsIgnoringCase(candidate.key, text)) {
            return candidate.device;
        }
        if (ContainsText(candidate.key, text)) {
            fitting.push_back(candidate);
        }
    }
    if (fitting.size() == 1) {
        return fitting.front().device;
    }
    std::vector<std::string> names;
    for (const Candidate& candidate : fitting.empty() ? all : fitting) {
        if (names.size() == kMostNamed) {
            names.emplace_back("...");
            break;
        }
        names.push_back(Printable(candidate.key));
    }
    problem = asked + (fitting.empty() ? ": no such device on " : ": more than one device fits on ") +
              Printable(plan.name) + "; " + (fitting.empty() ? "there are: " : "name one of: ") +
              (names.empty() ? "none" : Joined(names));
    return std::nullopt;
}
