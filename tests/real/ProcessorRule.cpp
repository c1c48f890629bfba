#include "ProcessorRule.h"

#include <cstdio>

namespace {
constexpr uint16_t kX64 = 0x8664;
constexpr uint16_t kArm64 = 0xAA64;

std::string NameOf(uint16_t processor)
{
    if (processor == kArm64) {
        return "ARM64";
    }
    char digits[8];
    std::snprintf(digits, sizeof(digits), "0x%04X", static_cast<unsigned>(processor));
    return digits;
}
} // namespace

std::optional<std::string> WhyNoX64Machine(std::optional<uint16_t> native)
{
    if (native.value_or(kX64) == kX64) {
        return std::nullopt;
    }
    return "the processor is " + NameOf(*native) +
           ", and the programs and drivers of the kit are for x64: use a machine with an x64 processor";
}
