#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

/// Every call that the program can make to the platform: each function of its import table and each entry point that it
/// looks up at run time. A call that is not in this table makes the tests fail: whoever adds one says here how it
/// fails.

enum class CallKind
{
    Fails,   ///< can fail: the tests make it fail
    Sure,    ///< gives an answer in every case
    Runtime, ///< the language runtime's own: starting, ending, text, numbers, locks
    Unused,  ///< listed for parts that no run reaches; a run that calls it makes the tests fail
    Data,    ///< not a function
};

/// What tells one call of a function from another: the text or number in an argument.
enum class LabelPart : std::uint8_t
{
    None,
    Text,     ///< 8-bit text
    WideText, ///< UTF-16 text
    Number,
    Message,  ///< number of a window message
    SizeOnly, ///< "size" when the argument is null: the call only asks how much room is needed
    Owned,    ///< what the handle was opened for
};

struct Label
{
    LabelPart part = LabelPart::None;
    std::uint8_t argument = 0;
};

struct PlatformCall
{
    std::string_view name;
    CallKind kind = CallKind::Sure;
    std::uint64_t result = 0;    ///< what the failed call returns
    std::uint32_t lastError = 0; ///< the last error that it leaves; 0 leaves it as it is
    std::array<Label, 2> label{};
};

[[nodiscard]] std::span<const PlatformCall> PlatformCalls();
/// @return the call's row, or null for a call that is not in the table.
[[nodiscard]] const PlatformCall* FindPlatformCall(std::string_view name);
