#include "SystemView.h"

#include <tuple>

// The prober's families, not the device pass's.
#include "SystemFamily.h"

namespace {
constexpr uint16_t kArchitectureArm64 = 12;

/// The platform's further answers follow the version that it reports.
class ReportedVerifier : public LaterSystemVerifier
{
public:
    explicit ReportedVerifier(const SystemFacts& facts) : m_facts(facts) {}
    [[nodiscard]] bool IsSixOne() const override { return m_facts.majorVersion == 6 && m_facts.minorVersion == 1; }
    [[nodiscard]] bool IsSixTwoOrLater() const override
    {
        return std::tuple(m_facts.majorVersion, m_facts.minorVersion) >= std::tuple(6U, 2U) && m_facts.productType != 0;
    }

private:
    const SystemFacts& m_facts;
};

std::string TextOf(const VersionNumbers& version)
{
    return std::to_string(version.major) + "." + std::to_string(version.minor);
}

/// What the platform says of its processor to the program, which is one for x64.
void ReportArchitecture(const SystemDescription& system, SystemView& view)
{
    if (!system.architecture) {
        return;
    }
    const uint16_t own = *system.architecture;
    view.facts.architecture = own == kArchitectureArm64 ? kArchitectureX64 : own;
    view.reasons.push_back("processor " + std::to_string(*view.facts.architecture) + ": " + system.architecture.from);
    if (own == kArchitectureArm64) {
        view.reasons.emplace_back("the program runs emulated on ARM64, where x64 is reported to it");
    } else if (own != kArchitectureX64) {
        view.reasons.emplace_back("the program is a 64-bit one and does not start on this processor");
    }
}
} // namespace

VersionNumbers ReportedVersion(const VersionNumbers& own)
{
    constexpr uint32_t kBuildOfWindows8 = 9200;
    if (std::tuple(own.major, own.minor) <= std::tuple(6U, 2U)) {
        return own;
    }
    return {.major = 6, .minor = 2, .build = kBuildOfWindows8};
}

std::string MissingForView(const SystemDescription& system)
{
    std::string missing;
    const auto add = [&missing](bool isKnown, const std::string& what, const std::string& why) {
        if (!isKnown) {
            missing += (missing.empty() ? "" : "; ") + what + " (" + why + ")";
        }
    };
    add(static_cast<bool>(system.version), "the system's version", system.version.from);
    // Systems before 5.2 are distinguished without the product type and the processor.
    const bool isOld = system.version && std::tuple(system.version->major, system.version->minor) < std::tuple(5U, 2U);
    if (!isOld) {
        add(static_cast<bool>(system.productType), "the product type", system.productType.from);
        add(static_cast<bool>(system.architecture), "the processor", system.architecture.from);
    }
    return missing;
}

std::optional<SystemView> ViewOfSystem(const SystemDescription& system)
{
    if (!MissingForView(system).empty()) {
        return std::nullopt;
    }
    const VersionNumbers own = *system.version;
    const VersionNumbers reported = ReportedVersion(own);
    SystemView view;
    view.facts.valid = true;
    view.facts.majorVersion = reported.major;
    view.facts.minorVersion = reported.minor;
    view.facts.platform = system.platform.value.value_or(kPlatformNT);
    view.facts.productType = system.productType.value.value_or(0);
    view.facts.servicePackMajor = system.servicePack.value.value_or(0);
    view.reasons.push_back("version " + TextOf(own) + ": " + system.version.from);
    if (reported != own) {
        view.reasons.push_back("a system of version " + TextOf(own) + " reports " + TextOf(reported) +
                               " to the program");
        // The service pack that goes with the version that is reported: there was none for Windows 8.
        view.facts.servicePackMajor = 0;
    }
    if (system.productType) {
        view.reasons.push_back("product type " + std::to_string(*system.productType) + ": " + system.productType.from);
    }
    ReportArchitecture(system, view);
    view.code = DecideOSCode(view.facts, ReportedVerifier(view.facts));
    view.section = RowOf(view.code).sectionKey;
    const auto family = FamilyForVersion(view.facts.platform, reported.major, reported.minor);
    view.family = family.name;
    view.familyStatus = family.status;
    return view;
}
