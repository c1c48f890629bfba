#include "OrvTraceLine.h"

#include <algorithm>
#include <cstdio>

namespace {
// The last place for the line feed; the terminator follows it.
constexpr size_t kLastLineFeed = kTraceLineBytes - 2;

// What may come between the percent sign and the conversion letter.
constexpr std::string_view kModifiers = "-+ #0123456789.*hlLwI";

struct Conversion
{
    size_t length = 1; // from the percent sign to the conversion letter
    int arguments = 0;
    bool writes = false; // "%n" stores through its argument
};

// Reads the conversion at the start of `text`, which begins with a percent sign.
Conversion ReadConversion(std::string_view text)
{
    Conversion conversion;
    size_t at = 1;
    for (; at < text.size() && kModifiers.find(text[at]) != std::string_view::npos; ++at) {
        conversion.arguments += text[at] == '*' ? 1 : 0;
    }
    if (at < text.size()) {
        conversion.arguments += text[at] == '%' ? 0 : 1;
        conversion.writes = text[at] == 'n';
        ++at;
    }
    conversion.length = at;
    return conversion;
}
} // namespace

int OrvComposeTracePrefix(std::span<char, kTraceLineBytes> line, const OrvTracePrefix& prefix)
{
    const int length =
        std::snprintf(line.data(), line.size(), "%s\tPID:%x\tTID:%x\t%.2d:%.2d:%.2d.%.3d\t(%llX)\t", prefix.moduleName,
                      prefix.processId, prefix.threadId, prefix.hour, prefix.minute, prefix.second, prefix.millisecond,
                      static_cast<unsigned long long>(prefix.counter));
    return length < static_cast<int>(line.size()) ? length : -1;
}

std::span<char> OrvTraceMessageRoom(std::span<char, kTraceLineBytes> line, size_t prefixChars) noexcept
{
    const size_t start = std::min(prefixChars, kLastLineFeed);
    return line.subspan(start, std::min(kTraceMessageChars, kLastLineFeed - start));
}

void OrvFinishTraceLine(std::span<char, kTraceLineBytes> line, size_t prefixChars, std::span<const char> room,
                        int messageLength) noexcept
{
    const auto written = static_cast<size_t>(std::find(room.begin(), room.end(), '\0') - room.begin());
    const size_t length = messageLength < 0 ? written : static_cast<size_t>(messageLength);
    const size_t end = std::min(prefixChars + length, kLastLineFeed);
    line[end] = '\n';
    line[end + 1] = '\0';
}

std::string OrvMessageAsFormat(std::string_view message, int argumentCount)
{
    std::string format;
    int left = argumentCount;
    for (size_t at = 0; at < message.size();) {
        if (message[at] != '%') {
            format += message[at++];
            continue;
        }
        const Conversion conversion = ReadConversion(message.substr(at));
        if (conversion.arguments > left) {
            format += "%%";
            ++at;
            continue;
        }
        left -= conversion.arguments;
        if (!conversion.writes) {
            format += message.substr(at, conversion.length);
        }
        at += conversion.length;
    }
    return format;
}
