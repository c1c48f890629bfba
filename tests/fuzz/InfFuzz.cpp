// An INF's text: model lines, descriptions, brands, signatures, names. The whole input is the text, so that an INF is a
// seed as it stands.

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DriverInstallRecord.h"
#include "InfModelLine.h"
#include "InfQualification.h"
#include "IniLines.h"
#include "Promise.h"

namespace {
struct PlainModelLine
{
    std::optional<std::string> descriptionKey;
    std::optional<std::string> hardwareId;
};

std::optional<std::string> TextOf(const char* token)
{
    return token == nullptr ? std::nullopt : std::optional<std::string>(token);
}

/// The rule in the words of the runtime: a cleared buffer, a bounded copy, three calls of the tokenizer, two cuts.
PlainModelLine ReadModelLine(const std::string& line)
{
    std::array<char, 2000> buffer{};
    line.copy(buffer.data(), buffer.size() - 1);
    PlainModelLine parts;
    char* rest = nullptr;
    parts.descriptionKey = TextOf(strtok_r(buffer.data(), "=", &rest));
    if (strtok_r(nullptr, "\\", &rest) == nullptr) {
        return parts;
    }
    char* id = strtok_r(nullptr, "\\, ", &rest);
    if (id != nullptr) {
        for (const char* mark : {"\"", "&CC_"}) {
            if (char* cut = std::strstr(id, mark)) {
                *cut = '\0';
            }
        }
    }
    parts.hardwareId = TextOf(id);
    return parts;
}

ModelLine CheckModelLine(std::string_view line)
{
    const ModelLine parts = ParseModelLine(line);
    const PlainModelLine expected = ReadModelLine(std::string(line));
    Promise(parts.descriptionKey == expected.descriptionKey, "the description key that the runtime finds");
    Promise(parts.hardwareId == expected.hardwareId, "the hardware ID that the runtime finds");
    if (parts.hardwareId) {
        const std::string_view id = *parts.hardwareId;
        Promise(LiesWithin(id, line.substr(0, kModelLineChars)), "an ID lies in the part that is looked at");
        Promise(id.find_first_of("\\, \"") == std::string_view::npos && id.find("&CC_") == std::string_view::npos,
                "an ID comes without bus prefix, quote and class code");
    }
    return parts;
}

void CheckDescription(const std::string& key)
{
    const DescriptionLookup lookup = DescriptionFor(key);
    std::string buffer = key;
    char* rest = nullptr;
    const char* name = strtok_r(buffer.data(), "%", &rest);
    Promise(lookup.name == (name == nullptr ? "" : name), "the string name that the runtime finds");
    // The tokenizer has put its terminator into the buffer.
    Promise(lookup.fallback == buffer.c_str(), "the fallback is the key up to the closing sign");
    Promise(lookup.name.find('%') == std::string::npos, "a string name holds no per-cent sign");
}

void CheckBrand(const std::string& value)
{
    bool named = false;
    std::string token;
    for (const char c : value + ',') {
        if (c != ',' && c != ' ') {
            token += c;
            continue;
        }
        named = named || token == "Norda" || token == "NORDA" || token == "Lumarc";
        token.clear();
    }
    Promise(NamesOurBrand(value) == named, "a brand counts as a whole token in its own letters");
}

void CheckNames(const std::vector<std::string_view>& lines)
{
    std::vector<std::string> names;
    for (const std::string_view line : lines) {
        bool present = false;
        for (const std::string& name : names) {
            const bool same = SameLetters(name, line);
            Promise(EqualsIgnoringCase(name, line) == same, "names are equal but for their letters' case");
            Promise(EqualsIgnoringCase(line, name) == same, "whichever of them comes first");
            present = present || same;
        }
        Promise(ContainsName(names, line) == present, "a name is in a list when one of its entries equals it");
        // A few are enough: every line is compared with every name.
        if (names.size() < 8) {
            names.emplace_back(line);
        }
    }
}

void CheckSignature(std::string_view family)
{
    std::string_view expected;
    if (family == "Windows Millenium" || family == "Windows 98") {
        expected = "$Chicago$";
    } else if (family == "Windows Whistler" || family == "Windows 2000" || family == "Windows Vista") {
        expected = "$Windows NT$";
    }
    Promise(ExpectedSignature(family) == expected, "the signature of a family");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string section(reinterpret_cast<const char*>(data), size);
    std::ranges::replace(section, '\n', '\0');
    const ExactBuffer buffer(section);
    const std::vector<std::string_view> lines = LinesOf(buffer.All());
    for (const std::string_view line : lines) {
        const ModelLine parts = CheckModelLine(line);
        CheckDescription(std::string(parts.descriptionKey.value_or("")));
        CheckDescription(std::string(line));
        CheckBrand(std::string(line));
        CheckSignature(line);
    }
    CheckNames(lines);
    for (const char* family :
         {"Windows Millenium", "Windows 98", "Windows Whistler", "Windows 2000", "Windows Vista"}) {
        CheckSignature(family);
    }
    // A section of one endless line.
    std::string whole = section;
    std::erase(whole, '\0');
    CheckModelLine(whole);
    return 0;
}
