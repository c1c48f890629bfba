#pragma once

#include <string>
#include <variant>

#include "Commands.h"

/// What the arguments ask for: a command, or only a text such as the help.
struct PrintedAnswer
{
    std::string text;
    ExitCode code = ExitCode::Clean; ///< Usage: the text says what is wrong and goes to standard error
};
using Request =
    std::variant<PlanCommand, ExplainCommand, DiffCommand, ReportCommand, CheckCommand, RulesCommand, PrintedAnswer>;

[[nodiscard]] Request ParseCommandLine(int argc, const char* const* argv);
