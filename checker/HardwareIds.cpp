#include "HardwareIds.h"

#include <algorithm>

#include "AsciiCase.h"
#include "EqualsIgnoringCase.h"
#include "InfModelLine.h"
#include "NetworkDevices.h"
#include "SearchIds.h"

namespace {
constexpr std::string_view kBus = R"(PCI\)";

/// @return the part of an ID with this name, such as "&REV_03"; empty when it has none.
std::string_view PartOf(std::string_view id, std::string_view name)
{
    const std::size_t start = id.find(name);
    if (start == std::string_view::npos) {
        return {};
    }
    const std::size_t end = id.find('&', start + 1);
    return id.substr(start, end == std::string_view::npos ? end : end - start);
}

bool HasHexDigits(std::string_view part, std::size_t name, std::size_t digits)
{
    return part.size() == name + digits && part.find_first_not_of("0123456789ABCDEF", name) == std::string_view::npos;
}

/// @return a key name of a device of which the ID could be a shorter form.
std::string KeyNameFor(std::string_view id)
{
    const std::string_view vendor = PartOf(id, "VEN_");
    const std::string_view device = PartOf(id, "&DEV_");
    std::string_view subSystem = PartOf(id, "&SUBSYS_");
    subSystem = subSystem.empty() ? "&SUBSYS_00000000" : subSystem;
    std::string_view revision = PartOf(id, "&REV_");
    revision = revision.empty() ? "&REV_00" : revision;
    const bool wellFormed = HasHexDigits(vendor, 4, 4) && HasHexDigits(device, 5, 4) && HasHexDigits(subSystem, 8, 8) &&
                            HasHexDigits(revision, 5, 2);
    return wellFormed ? std::string(vendor).append(device).append(subSystem).append(revision) : std::string();
}
} // namespace

std::string ComparedId(std::string_view hardwareId)
{
    if (!EqualsIgnoringCase(hardwareId.substr(0, kBus.size()), kBus)) {
        return {};
    }
    std::string line = "model=install,";
    line += hardwareId;
    std::ranges::transform(line, line.begin(), [](char c) { return UpperAscii(c); });
    return std::string(ParseModelLine(line).hardwareId.value_or(std::string_view()));
}

std::string_view WithoutBus(std::string_view hardwareId)
{
    return hardwareId.substr(kBus.size());
}

bool IsSearched(const std::string& compared)
{
    const std::string key = KeyNameFor(compared);
    if (key.empty()) {
        return false;
    }
    for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
        if (PlanPass(key, pass).searchId == compared) {
            return true;
        }
    }
    return false;
}

bool IsOfAcceptedVendor(std::string_view compared)
{
    constexpr std::size_t kVendorSize = std::string_view("VEN_0000").size();
    return std::ranges::any_of(kAcceptedCompatibleIds, [compared](std::string_view row) {
        return compared.substr(0, kVendorSize) == row.substr(kBus.size(), kVendorSize);
    });
}

bool NamesClassOnly(std::string_view hardwareId)
{
    const std::string upper = UpperAscii(hardwareId);
    return upper.find("CC_") != std::string::npos && upper.find("&DEV_") == std::string::npos;
}
