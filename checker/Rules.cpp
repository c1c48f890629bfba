#include "Rules.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "EqualsIgnoringCase.h"
#include "RuleTables.h"

namespace {
constexpr std::string_view kPrefix = "MK";

std::vector<Rule> JoinedTables()
{
    std::vector<Rule> rules;
    for (const std::span<const Rule> table : {RulesOfSetupIni(), RulesOfInfs(), RulesOfResults()}) {
        rules.insert(rules.end(), table.begin(), table.end());
    }
    return rules;
}
} // namespace

std::span<const Rule> AllRules()
{
    static const std::vector<Rule> rules = JoinedTables();
    return rules;
}

const Rule* FindRule(int number)
{
    const std::span<const Rule> rules = AllRules();
    const auto found = std::ranges::lower_bound(rules, number, {}, &Rule::number);
    return found == rules.end() || found->number != number ? nullptr : &*found;
}

const Rule* FindRule(std::string_view id)
{
    if (EqualsIgnoringCase(id.substr(0, kPrefix.size()), kPrefix)) {
        id.remove_prefix(kPrefix.size());
    }
    int number = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), number);
    return error == std::errc() && end == id.data() + id.size() ? FindRule(number) : nullptr;
}

std::string IdOf(const Rule& rule)
{
    return std::string(kPrefix) + std::to_string(rule.number);
}
