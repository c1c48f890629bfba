#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Plan.h"

/// Plans as the planner makes them, for reports.

inline constexpr char kCard[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01";
inline constexpr char kOtherCard[] = "VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02";

/// A search that ends at line 20 of Drv\<inf>, after one file that does not list the device.
inline SearchOutcome Found(std::string_view inf)
{
    SearchOutcome search;
    search.verdict = SearchVerdict::Matched;
    search.directories = {R"(C:\Kit\Drv\)"};
    search.infs = {R"(C:\Kit\Drv\other.inf)", R"(C:\Kit\Drv\)" + std::string(inf)};
    search.passedOver = {{.inf = 0, .verdict = InfVerdict::NotListed}};
    search.match = Match{.inf = search.infs.back(),
                         .recordPath = search.infs.back(),
                         .line = 20,
                         .column = 1,
                         .pass = 1,
                         .searchId = {},
                         .modelSection = "Norda.NTamd64",
                         .description = "Norda Adapter",
                         .driverVersion = "10/01/2012,1.2.3.4"};
    search.report =
        Report{.value = "TAVG_Install", .expects = R"(\NGEA*.sys)", .copiedFile = "ngea.sys", .copiesAreKnown = true};
    return search;
}

inline SearchOutcome NotFound()
{
    SearchOutcome search;
    search.directories = {R"(C:\Kit\Drv\)"};
    search.infs = {R"(C:\Kit\Drv\other.inf)"};
    search.passedOver = {{.inf = 0, .verdict = InfVerdict::NotListed}};
    return search;
}

inline DevicePlan Device(std::string key, SearchOutcome search)
{
    return {.key = std::move(key),
            .acceptance = DeviceVerdict::AcceptedById,
            .acceptedBy = R"(PCI\VEN_5D1A&CC_020000)",
            .presence = Presence::Unknown,
            .instances = 1,
            .search = std::make_shared<const SearchOutcome>(std::move(search)),
            .store = nullptr,
            .findings = {}};
}

inline MachinePlan PlanOf(std::string name, std::vector<DevicePlan> devices, std::string section = "Win732E")
{
    MachinePlan plan;
    plan.source = "fleet/" + name + ".reg";
    plan.name = std::move(name);
    plan.system.section = std::move(section);
    plan.system.family = "Windows Vista";
    plan.system.from = "registry";
    plan.system.familyFrom = "registry";
    plan.system.reasons = {"version 6.1: somewhere"};
    plan.devices = std::move(devices);
    return plan;
}
