#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "FaultChannel.h"

/// One call of a run that can fail.
struct CallName
{
    CallThread thread = CallThread::Main;
    std::string function;
    std::string label;

    auto operator<=>(const CallName&) const = default;
};

/// What a run did and left, in lines that do not depend on where the test lies.
struct Outcome
{
    /// What the main thread did, what the install thread did, what is left: results, files, open handles, exit code.
    std::vector<std::string> lines;
    bool reached = false; ///< the call that was to fail was made
    bool ended = true;    ///< the program ended within the limit
    unsigned long exitCode = 0;

    /// How often each call that can fail was made.
    std::map<CallName, unsigned> calls;
    /// Calls that the table of calls does not know.
    std::vector<std::string> unknownCalls;
    /// For each memory request, in order, what stands for its call stack.
    std::vector<std::uint32_t> memoryStacks;
    unsigned memoryRequests = 0;
    unsigned memoryRequestsOfStart = 0; ///< those made before the program's own code
    /// Which functions of the import table were called, in its order.
    std::vector<bool> importCalled;
};

/// @return what `with` has more (+) and less (-) than `without`, in order; of many lines in a row, the first and the
///         last. Empty when both are the same.
[[nodiscard]] std::vector<std::string> Difference(const std::vector<std::string>& without,
                                                  const std::vector<std::string>& with);
