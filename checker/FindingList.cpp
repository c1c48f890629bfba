#include "FindingList.h"

#include <algorithm>

#include "SourceLines.h"

void FindingList::Add(int rule, const std::string& path, const ProfilePlace& place, const std::string& what,
                      const std::string& system, const std::string& key)
{
    const uint32_t line = std::max(place.line, 1U);
    const uint32_t column = std::max(place.column, 1U);
    const auto [known, isNew] = m_known.try_emplace(std::tuple(rule, path, line, column, what), m_findings.size());
    if (isNew) {
        m_findings.push_back({.rule = rule,
                              .file = m_folder.Paths().NameOf(path),
                              .here = m_files.Find(path).value_or(std::filesystem::path()),
                              .line = line,
                              .column = column,
                              .what = what,
                              .systems = {},
                              .key = key});
    }
    std::vector<std::string>& systems = m_findings[known->second].systems;
    if (!system.empty() && std::ranges::find(systems, system) == systems.end()) {
        systems.push_back(system);
    }
}

std::vector<Finding> FindingList::Sorted()
{
    std::ranges::stable_sort(m_findings, {}, [](const Finding& finding) {
        return std::tie(finding.file, finding.line, finding.column, finding.rule);
    });
    SourceLines lines;
    for (Finding& finding : m_findings) {
        if (finding.key.empty()) {
            finding.key = lines.NormalisedLine(finding.here, finding.line);
        }
    }
    m_known.clear();
    return std::move(m_findings);
}
