#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "CheckKit.h"

/// Findings that were accepted: one line each with rule, file and the text of the line, separated by tabs. A finding
/// that moves to another line stays accepted; another one like it does not become so.
class Baseline
{
public:
    /// @param problem  Receives in one line what is wrong with the text.
    /// @return no value for a text that is no baseline.
    [[nodiscard]] static std::optional<Baseline> Parse(std::string_view text, std::string& problem);

    /// @return the text of a baseline that accepts these findings.
    [[nodiscard]] static std::string TextFor(const KitFindings& found);

    /// Takes the accepted findings out.
    /// @return how many they were.
    std::size_t Accept(KitFindings& found);

    /// @return how many accepted findings there are no more. Ask after Accept.
    [[nodiscard]] std::size_t Unused() const;

private:
    std::map<std::tuple<int, std::string, std::string>, std::size_t> m_left;
};
