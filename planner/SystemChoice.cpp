#include "SystemChoice.h"

#include <algorithm>
#include <array>

#include "SystemView.h"

namespace {
/// The versions, products and processors of all systems that have a section: a section's own facts are found by trying.
constexpr std::array kVersions = std::to_array<VersionNumbers>({{5, 1, 0}, {5, 2, 0}, {6, 0, 0}, {6, 1, 0}, {6, 2, 0}});
constexpr std::array<uint8_t, 2> kProducts{kProductWorkstation, kProductServer};
constexpr std::array<uint16_t, 3> kProcessors{kArchitectureX64, 0, kArchitectureIA64};

template <class T>
Fact<T> Assumed(T value)
{
    return {.value = value, .from = "option --system"};
}

std::optional<SystemView> ViewOfSection(const std::string& section)
{
    for (const VersionNumbers& version : kVersions) {
        for (const uint8_t product : kProducts) {
            for (const uint16_t processor : kProcessors) {
                SystemDescription system;
                system.version = Assumed(version);
                system.platform = Assumed(kPlatformNT);
                system.servicePack = Assumed(uint16_t{0});
                system.productType = Assumed(product);
                system.architecture = Assumed(processor);
                std::optional<SystemView> view = ViewOfSystem(system);
                if (view && view->section == section) {
                    return view;
                }
            }
        }
    }
    return std::nullopt;
}
} // namespace

bool IsSystemSection(std::string_view section)
{
    return !section.empty() && std::ranges::find(kSystems, section, &SystemRow::sectionKey) != kSystems.end();
}

std::vector<std::string> SystemSections()
{
    std::vector<std::string> sections;
    for (const SystemRow& row : kSystems) {
        if (!row.sectionKey.empty() && (sections.empty() || sections.back() != row.sectionKey)) {
            sections.emplace_back(row.sectionKey);
        }
    }
    return sections;
}

std::optional<PlannedSystem> ChooseSystem(const Machine& machine, const SystemWish& wish, std::string& problem)
{
    std::optional<SystemView> view = ViewOfSystem(machine.system);
    PlannedSystem system;
    system.from = "registry";
    system.familyFrom = "registry";
    if (!wish.section.empty() && (!view || view->section != wish.section)) {
        // Workstation and server of 6.2 share their section: a machine that has it stays what it is.
        view = ViewOfSection(wish.section);
        system.familyFrom = "system";
    }
    if (!wish.section.empty()) {
        system.from = "option";
    }
    if (!view) {
        problem = "the system is not known: " + MissingForView(machine.system);
        return std::nullopt;
    }
    system.code = view->code;
    system.facts = view->facts;
    system.section = view->section;
    system.family = view->family;
    system.reasons = view->reasons;
    if (!wish.family.empty()) {
        system.family = wish.family;
        system.familyFrom = "option";
    } else if (view->familyStatus != 0) {
        problem = "the installer refuses this system: its family \"" + system.family + "\" is not served";
    }
    return system;
}
