#pragma once

#include <string>
#include <vector>

#include "FaultedProgram.h"
#include "Outcome.h"

/// @return what is wrong with a run that lacked memory: it has to end by itself, either as if nothing had happened or
///         with exit code -1 and its trace, and to leave nothing half written. Empty when nothing is wrong. Two things
///         are allowed to a run that has not done anything yet: the language runtime does not look at what it requests
///         before the program's own code, so the system may end the program there; and where there never was any
///         memory, none could be put by for the trace.
[[nodiscard]] std::vector<std::string> Complaints(const Outcome& clean, const Outcome& faulted, const Fault& fault);

/// @return the first request from each place in the program.
[[nodiscard]] std::vector<unsigned> FirstRequests(const Outcome& clean);
