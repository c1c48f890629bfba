#pragma once

#include <windows.h>

#include <array>
#include <cstdint>

/// What the test and the hooks in the program under test tell each other: one block of shared memory, made by the test
/// before the program starts and read when it has ended, however it ended.

inline constexpr char kFaultChannelName[] = "MorvixFaultChannel";
inline constexpr std::size_t kLabelBytes = 400;
/// Label of what the language runtime holds for itself.
inline constexpr char kRuntimes[] = "the runtime's";

/// The thread that a call was made on.
enum class CallThread : std::uint8_t
{
    Main = 'm',
    Install = 'i',
};

/// Something that a call handed out and that is to be given back.
struct OwnedHandle
{
    std::uint64_t value;
    std::uint32_t kind; ///< HandleKind; 0 marks a free place
    std::array<char, kLabelBytes> label;
};

/// Which call is to fail: the `ordinal`-th call, from 1, of `function` with `label` on `thread`. 0 lets all calls
/// through.
struct FaultPlan
{
    std::array<char, 64> function;
    std::array<char, kLabelBytes> label;
    CallThread thread;
    std::uint32_t ordinal;
    /// Which request for memory fails, from 1, whichever thread makes it and by whichever function; 0 for none.
    std::uint32_t memoryRequest;
    /// From then on there is no more memory than what is given back.
    std::uint32_t memoryIsOut;
    /// A hidden user presses OK and, at the end, the finish button.
    std::uint32_t interactive;
    /// Note the call stacks of memory requests.
    std::uint32_t noteMemory;
};

struct FaultChannel
{
    FaultPlan plan;

    volatile LONG reached; ///< the planned call was made
    std::uint32_t calls;   ///< calls that match the plan so far, on that thread only

    /// What the program did, in order: lines of a kind, the thread, and the text, ended by "\x1e". The kinds: C is a
    /// call that can fail (function, "\x1f", label), E an effect, U a call that the table of calls does not know.
    volatile LONG textBytes;
    std::array<char, 4 << 20> text;

    std::array<OwnedHandle, 256> owned;

    /// One entry for each memory request: a number that stands for its call stack and thread.
    volatile LONG memoryRequests;
    /// How many of them the language runtime made before it came to the program's own code.
    LONG memoryRequestsOfStart;
    std::array<std::uint32_t, 1 << 16> memoryStacks;

    /// For each import in the order of the import table: whether it was called.
    std::array<std::uint8_t, 512> importCalled;
};
