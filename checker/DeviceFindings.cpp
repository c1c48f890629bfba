#include "DeviceFindings.h"

#include <algorithm>

#include "SearchIds.h"

namespace {
/// @return the hardware ID with which the finding's text begins; empty when it begins with something else.
std::string_view IdNamedBy(const Finding& finding)
{
    const std::string_view word = std::string_view(finding.what).substr(0, finding.what.find(' '));
    return word.starts_with("VEN_") ? word : std::string_view();
}

class Device
{
public:
    Device(const DevicePlan& device, const MachinePaths& paths)
        : m_inf(device.search->match ? paths.NameOf(device.search->match->inf) : std::string())
    {
        for (int pass = kFirstSearchPass; pass <= kLastSearchPass; ++pass) {
            m_ids.push_back(PlanPass(device.key, pass).searchId);
        }
    }

    [[nodiscard]] bool IsConcernedBy(const Finding& finding, const std::string& setupIni) const
    {
        const std::string_view id = IdNamedBy(finding);
        if (!id.empty() && std::ranges::find(m_ids, id) != m_ids.end()) {
            return true;
        }
        // A finding about a pair of INF files speaks for all IDs that they share.
        const bool isOfIdsOnly = !id.empty() && (finding.rule < 401 || finding.rule > 403);
        return !isOfIdsOnly && finding.file == (m_inf.empty() ? setupIni : m_inf);
    }

private:
    std::string m_inf; ///< that was chosen; empty when none was
    std::vector<std::string> m_ids;
};
} // namespace

std::vector<std::string> FindingsOf(const DevicePlan& device, const std::string& system, const KitFindings& found,
                                    const MachinePaths& paths)
{
    const Device concerned(device, paths);
    const std::string setupIni = "Morvix.ini";
    std::vector<std::string> ids;
    for (const Finding& finding : found.findings) {
        const bool isOfSystem =
            finding.systems.empty() || std::ranges::find(finding.systems, system) != finding.systems.end();
        std::string id = IdOf(RuleOf(finding));
        if (isOfSystem && concerned.IsConcernedBy(finding, setupIni) && std::ranges::find(ids, id) == ids.end()) {
            ids.push_back(std::move(id));
        }
    }
    return ids;
}
