#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Composition of one trace line: prefix, message, line feed.

inline constexpr size_t kTraceLineBytes = 1152;
inline constexpr size_t kTraceMessageBytes = 1024;
/// Longest message text, in characters.
inline constexpr size_t kTraceMessageChars = kTraceMessageBytes - 1;

struct OrvTracePrefix
{
    const char* moduleName = "";
    uint32_t processId = 0;
    uint32_t threadId = 0;
    // Local time.
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    /// The raw high-resolution performance counter.
    uint64_t counter = 0;
};

/// Writes the prefix: module name, process and thread id in hexadecimal, local time, counter in hexadecimal, each
/// followed by a tab.
/// @return its length in characters, or -1 when it is longer than 1151 (only an overlong module name makes it so).
[[nodiscard]] int OrvComposeTracePrefix(std::span<char, kTraceLineBytes> line, const OrvTracePrefix& prefix);

/// The place for the message after a prefix of `prefixChars`: 1023 characters, fewer after an overlong prefix, since
/// the line feed and the terminator must follow.
[[nodiscard]] std::span<char> OrvTraceMessageRoom(std::span<char, kTraceLineBytes> line, size_t prefixChars) noexcept;

/// Ends the line with a line feed and a terminator, never beyond the line feed's last place, 1150.
/// @param room           The place of the message as OrvTraceMessageRoom gave it.
/// @param messageLength  What the formatter returned; a negative value means that the message filled the room or could
///                       not be formatted to its end: what was written counts.
void OrvFinishTraceLine(std::span<char, kTraceLineBytes> line, size_t prefixChars, std::span<const char> room,
                        int messageLength) noexcept;

/// Makes a platform message usable as a format that is given `argumentCount` zero arguments. Conversions are kept,
/// since such a message is interpreted as a format; only what could read beyond the arguments or write through one is
/// changed: a percent sign after the last argument prints as itself, and "%n" is removed.
[[nodiscard]] std::string OrvMessageAsFormat(std::string_view message, int argumentCount);
