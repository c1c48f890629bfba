#include "Progress.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "Lines.h"

namespace {
constexpr std::array<std::string_view, 3> kWords{"begun", "restart", "ended"};
}

Progress::Progress(std::string_view kept)
{
    const std::size_t end = kept.rfind('\n');
    for (const std::string_view line : LinesOf(kept.substr(0, end == std::string_view::npos ? 0 : end + 1))) {
        const std::size_t blank = line.find(' ');
        const std::string_view word = line.substr(0, blank);
        const std::string rest(blank == std::string_view::npos ? "" : line.substr(blank + 1));
        if (word == "steps") {
            m_chosen = rest;
        } else if (std::ranges::count(kWords, word) > 0) {
            m_lastWord[rest] = word;
        } else {
            throw std::invalid_argument("state.txt: " + std::string(line));
        }
    }
}

std::optional<Progress::Next> Progress::FirstUnfinished(const std::vector<Step>& steps) const
{
    for (const Step& step : steps) {
        const auto found = m_lastWord.find(step.name);
        const std::string_view word = found == m_lastWord.end() ? std::string_view() : std::string_view(found->second);
        if (word != "ended") {
            return Next{.step = &step, .afterRestart = word == "restart", .wasInterrupted = word == "begun"};
        }
    }
    return std::nullopt;
}

std::string Progress::Line(std::string_view word, std::string_view rest)
{
    return std::string(word) + ' ' + std::string(rest) + '\n';
}
