#include "Steps.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <stdexcept>

#include "Lines.h"

namespace {
constexpr std::string_view kByExitCode = "exit-code ";

bool IsName(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_") ==
                                std::string_view::npos;
}

bool HasStep(const std::vector<Step>& steps, std::string_view name)
{
    return std::ranges::any_of(steps, [&](const Step& step) { return step.name == name; });
}

Step ParseStep(std::string_view line)
{
    const auto wrong = [&] { return std::invalid_argument("steps.txt: " + std::string(line)); };
    const std::size_t first = line.find('|');
    const std::size_t second = first == std::string_view::npos ? first : line.find('|', first + 1);
    if (second == std::string_view::npos) {
        throw wrong();
    }
    Step step;
    step.name = line.substr(0, first);
    const std::string_view limit = line.substr(first + 1, second - first - 1);
    const auto [end, error] = std::from_chars(limit.data(), limit.data() + limit.size(), step.limitSeconds);
    std::string_view command = line.substr(second + 1);
    if (command.starts_with(kByExitCode)) {
        step.judgedBy = JudgedBy::ExitCode;
        command.remove_prefix(kByExitCode.size());
    }
    step.command = command;
    if (!IsName(step.name) || error != std::errc() || end != limit.data() + limit.size() || step.limitSeconds == 0 ||
        command.empty()) {
        throw wrong();
    }
    return step;
}
} // namespace

std::vector<Step> ParseSteps(std::string_view text)
{
    std::vector<Step> steps;
    for (const std::string_view line : LinesOf(text)) {
        if (line.starts_with('#')) {
            continue;
        }
        Step step = ParseStep(line);
        if (HasStep(steps, step.name)) {
            throw std::invalid_argument("steps.txt has two steps " + step.name);
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

std::vector<Step> ChooseSteps(const std::vector<Step>& steps, std::string_view wanted)
{
    std::istringstream words{std::string(wanted)};
    std::vector<std::string> names;
    for (std::string name; words >> name;) {
        if (!HasStep(steps, name)) {
            throw std::invalid_argument("there is no step " + name);
        }
        names.push_back(name);
    }
    if (names.empty()) {
        return steps;
    }
    std::vector<Step> chosen;
    std::ranges::copy_if(steps, std::back_inserter(chosen),
                         [&](const Step& step) { return std::ranges::count(names, step.name) > 0; });
    return chosen;
}
