#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "JsonWriter.h"
#include "Utf8.h"

/// A text of any bytes is valid JSON that steers no terminal, and another reader gets it back, bytes that are not UTF-8
/// replaced one by one.

namespace {
void Require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

std::string Expected(std::string_view text)
{
    std::string expected;
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        expected += character.bytes == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, character.bytes);
        text.remove_prefix(character.bytes == 0 ? 1 : character.bytes);
    }
    return expected;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string json;
    JsonWriter(json).Text(text);
    for (std::string_view rest = json; !rest.empty();) {
        const Utf8Character character = FirstCharacter(rest);
        Require(character.bytes != 0 && !SteersTerminal(character.value));
        rest.remove_prefix(character.bytes);
    }
    const nlohmann::json read = nlohmann::json::parse(json, nullptr, false);
    Require(read.is_string() && read.get<std::string>() == Expected(text));
    return 0;
}
