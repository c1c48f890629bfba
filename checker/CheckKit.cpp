#include "CheckKit.h"

#include <algorithm>

#include "Checks.h"
#include "OSCode.h"

namespace {
/// This build of the installer is a program for x64.
bool RunsInstaller(const std::string& section)
{
    return section.ends_with("32E");
}

std::vector<std::string> SystemsToCheck(KitReading& reading, const CheckWish& wish)
{
    if (!wish.systems.empty()) {
        return wish.systems;
    }
    std::vector<std::string> systems;
    for (const std::string& section : SystemSections()) {
        if (RunsInstaller(section) || !reading.On(section).infs.empty()) {
            systems.push_back(section);
        }
    }
    return systems;
}
} // namespace

KitFindings CheckKit(KitFolder& kit, KitFolder* other, const CheckWish& wish)
{
    KitReading reading(kit, wish.codePage);
    FindingList findings(kit);
    const KitCheck check{.reading = reading, .findings = findings, .systems = SystemsToCheck(reading, wish)};
    CheckBase(check);
    for (const std::string& system : check.systems) {
        const SystemReading& on = reading.On(system);
        CheckSystemSection(check, on);
        if (on.HasSection()) {
            CheckQualification(check, on);
            CheckSectionNames(check, on);
            CheckFileNames(check, on);
        }
    }
    CheckModelSections(check);
    CheckOrder(check);
    CheckPackages(check);
    CheckUnsearchedInfs(check);
    CheckUnnamedSections(check);
    CheckAcceptedDevices(check);
    CheckStaleFiles(check);
    if (other != nullptr) {
        KitReading otherReading(*other, wish.codePage);
        CheckReaders(check, otherReading);
    }
    return {.systems = check.systems, .findings = findings.Sorted()};
}

const Rule& RuleOf(const Finding& finding)
{
    return *FindRule(finding.rule);
}
