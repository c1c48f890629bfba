// An INF's text: model lines, descriptions, brands, signatures, names. The whole input is the text, so that any INF is
// a seed.

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"
#include "InfModelLine.h"
#include "InfQualification.h"
#include "IniLines.h"
#include "KeptAnswers.h"
#include "ModelSection.h"
#include "NameList.h"
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

/// The section that is read once against a walk over its lines.
void CheckModelSection(const ExactBuffer& buffer, const std::vector<std::string_view>& lines)
{
    const ModelSection section(static_cast<uint32_t>(buffer.Size()), buffer.All());
    Promise(section.WasRead() == (buffer.Size() != 0), "read unless the platform has nothing");
    Promise(section.LineCount() == lines.size(), "every line");
    std::vector<PlainModelLine> parts;
    for (std::size_t line = 0; line < lines.size(); ++line) {
        parts.push_back(ReadModelLine(std::string(lines[line])));
        Promise(section.DescriptionKey(line) == parts.back().descriptionKey.value_or(""), "a line's description key");
        Promise(section.HardwareId(line) == parts.back().hardwareId.value_or(""), "a line's hardware ID");
    }
    std::vector<std::string> keys{"", "VEN_5D1A&DEV_1A2B", std::string(lines.empty() ? "" : lines.front())};
    for (std::size_t line = 0; line < parts.size() && line < 16; ++line) {
        std::string key = parts[line].hardwareId.value_or("none");
        keys.push_back(key);
        std::ranges::transform(key, key.begin(), Upper);
        keys.push_back(key);
        keys.push_back(key + "x");
    }
    for (const std::string& key : keys) {
        std::optional<std::size_t> expected;
        for (std::size_t line = 0; line < parts.size() && !expected; ++line) {
            if (parts[line].hardwareId && SameLetters(*parts[line].hardwareId, key)) {
                expected = line;
            }
        }
        Promise(section.LineOf(key) == expected, "the first line with the key, letter case aside");
    }
}

/// A source that answers every question with a text of its own and counts what it is asked.
class CountedSource final : public KitSource
{
public:
    std::string answer;
    FileStamp stamp;
    bool readable = true;
    int asked = 0;
    int opened = 0;

    uint32_t ReadText(const char* /*section*/, const char* /*key*/, const char* /*defaultText*/, std::span<char> buffer,
                      const std::string& /*file*/) override
    {
        return Fill(buffer);
    }
    uint32_t ReadSection(const char* /*section*/, std::span<char> buffer, const std::string& /*file*/) override
    {
        return Fill(buffer);
    }
    [[nodiscard]] FileMark MarkOf(const std::string& /*file*/) override
    {
        ++opened;
        return {.opened = true, .read = readable, .utf16 = false};
    }
    [[nodiscard]] std::optional<FileStamp> StampOf(const std::string& /*file*/) override { return stamp; }
    [[nodiscard]] std::unique_ptr<InfListing> List(const std::string& /*directoryPath*/) override { return nullptr; }

private:
    uint32_t Fill(std::span<char> buffer)
    {
        ++asked;
        std::ranges::fill(buffer, '\0');
        std::ranges::copy(answer.substr(0, buffer.size()), buffer.begin());
        return 7;
    }
};

/// An answer comes back as it was given, in a buffer of its size.
void CheckAnswer(const ExactBuffer& given)
{
    CountedSource source;
    source.answer = given.Text();
    KeptAnswers answers(source);
    for (const std::size_t size : {given.Size() / 2, given.Size(), given.Size() + 9}) {
        std::string expected = source.answer;
        expected.resize(size);
        for (int round = 0; round < 3; ++round) {
            const ExactBuffer buffer(size);
            Promise(answers.ReadSection("Section", buffer.All(), "file") == 7, "the number that the source returned");
            Promise(buffer.Text() == expected, "what the source left in the buffer");
        }
    }
    Promise(source.asked <= 6, "nothing is asked more than twice");
}

/// Keeps answers about the lines' files and asks again only when a file has changed.
void CheckKeeping(const std::vector<std::string_view>& lines)
{
    CountedSource source;
    KeptAnswers answers(source);
    std::map<std::string, FileStamp> known;
    int expectedOpened = 0;
    for (const std::string_view line : lines) {
        // The first letter is the file; the others say how it is now.
        const std::string path(line.substr(0, 1));
        source.stamp = {line.size() % 3, line.size() > 1 ? static_cast<uint64_t>(line[1] & 1) : 0};
        source.readable = line.size() < 3 || line[2] != '!';
        const bool isKept = known.contains(path) && known[path] == source.stamp;
        const std::string section = std::to_string(line.size() % 4);
        source.answer = section + path;
        for (const bool again : {false, true}) {
            const int askedBefore = source.asked;
            expectedOpened += isKept || (again && source.readable) ? 0 : 1;
            const ExactBuffer buffer(8);
            Promise(answers.ReadText(section.c_str(), "", "", buffer.All(), path) == 7, "the source's number");
            Promise(UpToNul(buffer.Text()) == UpToNul(source.answer), "its own answer");
            Promise(!(again && (isKept || source.readable) && source.asked != askedBefore),
                    "no question is asked twice");
        }
        if (isKept || source.readable) {
            known[path] = source.stamp;
        } else {
            known.erase(path);
        }
    }
    Promise(source.opened == expectedOpened, "a file is opened again when it has changed");
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
    CheckModelSection(buffer, lines);
    CheckAnswer(buffer);
    CheckKeeping(lines);
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
