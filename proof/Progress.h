#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Steps.h"

/// How far a run of the bundle has come, kept in state.txt, to which each change adds a line: it outlives the end of
/// the program and of the machine.
class Progress
{
public:
    /// The kept text: "steps" with the names that were chosen, then "begun NAME", "restart NAME" and "ended NAME". A
    /// last line without its end was being written when the machine ended, and is ignored. Throws std::invalid_argument
    /// for any other line.
    explicit Progress(std::string_view kept);

    [[nodiscard]] const std::string& ChosenSteps() const { return m_chosen; }

    struct Next
    {
        const Step* step = nullptr;
        bool afterRestart = false;   ///< it asked for a restart, and goes on
        bool wasInterrupted = false; ///< the machine or the run ended in it: it is not tried again
    };
    /// The first step that has not ended; nothing when all have.
    [[nodiscard]] std::optional<Next> FirstUnfinished(const std::vector<Step>& steps) const;

    [[nodiscard]] static std::string StepsLine(std::string_view chosen) { return Line("steps", chosen); }
    [[nodiscard]] static std::string BegunLine(const Step& step) { return Line("begun", step.name); }
    [[nodiscard]] static std::string RestartLine(const Step& step) { return Line("restart", step.name); }
    [[nodiscard]] static std::string EndedLine(const Step& step) { return Line("ended", step.name); }

private:
    [[nodiscard]] static std::string Line(std::string_view word, std::string_view rest);

    std::string m_chosen;
    std::map<std::string, std::string, std::less<>> m_lastWord; ///< of each step
};
