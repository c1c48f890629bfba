#pragma once

#include <array>
#include <span>

#include "Rules.h"

/// The parts of the table of rules, by number.
[[nodiscard]] std::span<const Rule> RulesOfSetupIni(); ///< 1xx
[[nodiscard]] std::span<const Rule> RulesOfInfs();     ///< 2xx and 3xx
[[nodiscard]] std::span<const Rule> RulesOfResults();  ///< 4xx to 7xx
