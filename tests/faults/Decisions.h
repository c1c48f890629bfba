#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Outcome.h"

/// What a failing call changes, where the program cannot do without it.
struct Decision
{
    /// The call as Describe() puts it and which of its kind it is, such as "install FreeLibrary(library *) 1"; "*" is
    /// any text.
    std::string_view call;
    /// What the fault changes, as EffectsOf() puts it.
    std::string_view effects;
    /// What the trace says in addition: the beginning of a line. Without it, the trace may differ in any way.
    std::string_view says = {};
    /// The only scenario that the row is about.
    std::string_view scenario = {};
};

[[nodiscard]] std::span<const Decision> AllDecisions();

/// @return the first row about a call, or null: then the run does, traces and leaves the same as without the fault.
[[nodiscard]] const Decision* FindDecision(const std::string& scenario, const CallName& call, unsigned ordinal);

/// @return what is wrong with a run, whichever call failed: it has to end by itself with exit code 0 or -1, to close
/// what
///         it opened, and to leave each result whole. Empty when nothing is wrong.
[[nodiscard]] std::vector<std::string> BrokenInvariants(const CallName& call, const Outcome& clean,
                                                        const Outcome& faulted);

/// @return the same, and what differs from the decision about this call.
[[nodiscard]] std::vector<std::string> Complaints(const std::string& scenario, const CallName& call, unsigned ordinal,
                                                  const Outcome& clean, const Outcome& faulted);
