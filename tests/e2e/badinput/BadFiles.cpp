#include "BadFiles.h"

#include <cstdint>
#include <stdexcept>

namespace {
constexpr std::size_t kFiftyMegabytes = 50u * 1024 * 1024;

std::string ReplacedEverywhere(std::string text, const std::string& part, const std::string& replacement)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + replacement.size())) {
        text.replace(at, part.size(), replacement);
    }
    return text;
}
} // namespace

std::string BinaryNoise(std::size_t bytes)
{
    std::string noise;
    uint32_t state = 12345;
    while (noise.size() < bytes) {
        state = state * 1664525 + 1013904223;
        noise += static_cast<char>(state >> 24);
    }
    return noise;
}

std::string FiftyMegabytesOfComments()
{
    const std::string line = ";" + std::string(997, '-') + "\r\n";
    std::string text;
    text.reserve(kFiftyMegabytes + line.size());
    while (text.size() < kFiftyMegabytes) {
        text += line;
    }
    return text;
}

std::string FiftyMegabyteLine()
{
    return ";" + std::string(kFiftyMegabytes, '-');
}

std::string TenThousandSections()
{
    std::string text;
    for (int number = 0; number < 10000; ++number) {
        text += "[Section" + std::to_string(number) + "]\r\nKey=Value\r\n";
    }
    return text;
}

std::string OnlyComments(const std::string& good)
{
    return ";" + ReplacedEverywhere(good, "\r\n", "\r\n;");
}

std::string OneEndlessLine(const std::string& good)
{
    std::string text = ReplacedEverywhere(good, "\r\n", "");
    while (text.size() < 1024u * 1024) {
        text += text;
    }
    return text;
}

std::string WithNuls(const std::string& good)
{
    return ReplacedEverywhere(good, "\r\n", std::string("\0\r\n", 3));
}

std::string WithOldMacLineEnds(const std::string& good)
{
    return ReplacedEverywhere(good, "\r\n", "\r");
}

std::string AsUtf16(const std::string& good)
{
    std::string text;
    for (const char c : good) {
        text += c;
        text += '\0';
    }
    return text;
}

std::string WithUnclosedBrackets(const std::string& good)
{
    return ReplacedEverywhere(good, "]\r\n", "\r\n");
}

std::string Replaced(std::string text, const std::string& part, const std::string& replacement)
{
    const std::size_t at = text.find(part);
    if (at == std::string::npos) {
        throw std::runtime_error("there is no [" + part + "]");
    }
    return text.replace(at, part.size(), replacement);
}
