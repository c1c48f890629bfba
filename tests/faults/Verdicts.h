#pragma once

#include <string>
#include <vector>

#include "Outcome.h"

/// What a run makes of one failing call.
struct Verdict
{
    CallName call;
    std::vector<unsigned> ordinals; ///< the calls of this name that it holds for, from 1
    /// "goes on" when the run does and leaves the same as without the fault; "loses a line" when a line of the trace is
    /// missing and nothing else differs; otherwise the difference.
    std::vector<std::string> expected;
};

/// The kept verdicts of a scenario, in the order of the file; none when there is no file, which leaves its calls
/// without one. Throws std::runtime_error for a line that makes no sense.
[[nodiscard]] std::vector<Verdict> ReadVerdicts(const std::string& scenario);

/// Writes `verdicts` beside the kept ones as <scenario>.txt.actual.
void WriteVerdicts(const std::string& scenario, const std::vector<Verdict>& verdicts);

/// @return the words for a difference.
[[nodiscard]] std::vector<std::string> WordsFor(const std::vector<std::string>& difference);

/// @return the call in one line, such as "main RegOpenKeyExA(SOFTWARE\Norda)".
[[nodiscard]] std::string Describe(const CallName& call);

/// @return whether the number of such calls is chance: how many messages a window gets differs from run to run.
[[nodiscard]] bool ComesByChance(const CallName& call);
