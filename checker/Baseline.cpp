#include "Baseline.h"

#include <algorithm>

namespace {
constexpr std::string_view kHead = "# Accepted findings of morvix-kit check: rule, file, text of the line.\n";
} // namespace

std::optional<Baseline> Baseline::Parse(std::string_view text, std::string& problem)
{
    Baseline baseline;
    for (std::size_t number = 1; !text.empty(); ++number) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        if (line.empty() || line.starts_with('#')) {
            continue;
        }
        const std::size_t first = line.find('\t');
        const std::size_t second = first == std::string_view::npos ? first : line.find('\t', first + 1);
        const Rule* const rule = second == std::string_view::npos ? nullptr : FindRule(line.substr(0, first));
        if (rule == nullptr) {
            problem = "line " + std::to_string(number) + ": not rule, file and text with tabs between them";
            return std::nullopt;
        }
        ++baseline.m_left[{rule->number, std::string(line.substr(first + 1, second - first - 1)),
                           std::string(line.substr(second + 1))}];
    }
    return baseline;
}

std::string Baseline::TextFor(const KitFindings& found)
{
    std::string text(kHead);
    for (const Finding& finding : found.findings) {
        text += IdOf(RuleOf(finding)) + "\t" + finding.file + "\t" + finding.key + "\n";
    }
    return text;
}

std::size_t Baseline::Accept(KitFindings& found)
{
    return std::erase_if(found.findings, [this](const Finding& finding) {
        const auto left = m_left.find({finding.rule, finding.file, finding.key});
        if (left == m_left.end() || left->second == 0) {
            return false;
        }
        --left->second;
        return true;
    });
}

std::size_t Baseline::Unused() const
{
    std::size_t unused = 0;
    for (const auto& [key, count] : m_left) {
        unused += count;
    }
    return unused;
}
