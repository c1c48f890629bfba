#pragma once

#include <string>
#include <vector>

#include "Outcome.h"

/// @return what the fault changed besides the trace, in words, sorted and joined by ", ": "-" for what did not happen
/// or
///         is not there, "+" for what did or is only with the fault, "~" for what differs. A handle that only the
///         faulted run left open counts; one that only the clean run left open does not.
[[nodiscard]] std::string EffectsOf(const Outcome& clean, const Outcome& faulted);

/// @return whether the faulted run traced a line that begins with `text` and that the clean run did not trace as often.
[[nodiscard]] bool TracesMore(const Outcome& clean, const Outcome& faulted, const std::string& text);

/// @return the call in one line, such as "main RegOpenKeyExA(SOFTWARE\Norda)".
[[nodiscard]] std::string Describe(const CallName& call);

/// @return whether the number of such calls is chance: how many messages a window gets differs from run to run.
[[nodiscard]] bool ComesByChance(const CallName& call);
