#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How the outcome of a step is known.
enum class JudgedBy
{
    Results, ///< a GoogleTest program, which writes its results
    ExitCode ///< any other program: 0 is success
};

/// One line of steps.txt.
struct Step
{
    std::string name; ///< letters, digits and "_": it names files
    unsigned limitSeconds = 0;
    JudgedBy judgedBy = JudgedBy::Results;
    std::string command;
};

/// Reads lines of the form "name|limit in seconds|command"; "#" begins a comment line. A command after "exit-code " is
/// judged by its exit code.
/// Throws std::invalid_argument, which names the line, for any other line and for a name that comes twice.
[[nodiscard]] std::vector<Step> ParseSteps(std::string_view text);

/// The steps that `wanted` names, separated by spaces, in the order of the list; all when it is empty.
/// Throws std::invalid_argument for a name that no step has.
[[nodiscard]] std::vector<Step> ChooseSteps(const std::vector<Step>& steps, std::string_view wanted);
