#include "KeptTexts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "Environment.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

namespace {
constexpr std::string_view kAnything = "<*>";
constexpr std::string_view kDigit = "<DIGIT>";
constexpr std::string_view kHexadecimal = "<%x>";

std::string WithControlCharacters(std::string text)
{
    const std::pair<std::string_view, const char*> standIns[] = {{"<LF>", "\n"}, {"<TAB>", "\t"}};
    for (const auto& [standIn, character] : standIns) {
        for (size_t at = text.find(standIn); at != std::string::npos; at = text.find(standIn, at)) {
            text.replace(at, standIn.size(), character);
        }
    }
    return text;
}

std::vector<std::string> LinesOfList(const std::string& fileName)
{
    std::vector<std::string> lines;
    std::istringstream list(ReadFileBytes(TestFile("texts\\" + fileName)));
    for (std::string line; std::getline(list, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        lines.push_back(line);
    }
    if (lines.empty()) {
        throw std::runtime_error("no texts in " + fileName);
    }
    return lines;
}

// What stands between the first and the last quotation mark.
std::string Quoted(const std::string& line)
{
    const size_t first = line.find('"');
    const size_t last = line.rfind('"');
    if (first == std::string::npos || first == last || last + 1 != line.size()) {
        throw std::runtime_error("no text in the line " + line);
    }
    return WithControlCharacters(line.substr(first + 1, last - first - 1));
}

KeptLine::Value ValueNamed(const std::string& name)
{
    const std::map<std::string, KeptLine::Value> values = {{"-", KeptLine::Value::None},
                                                           {"next", KeptLine::Value::Next},
                                                           {"previous", KeptLine::Value::Previous},
                                                           {"following", KeptLine::Value::Following},
                                                           {"version", KeptLine::Value::Version}};
    return values.at(name);
}

bool IsHexadecimalDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

bool Matches(std::string_view line, std::string_view kept)
{
    if (kept.empty()) {
        return line.empty();
    }
    if (kept.starts_with(kAnything)) {
        kept.remove_prefix(kAnything.size());
        for (size_t taken = 0; taken <= line.size(); ++taken) {
            if (Matches(line.substr(taken), kept)) {
                return true;
            }
        }
        return false;
    }
    if (line.empty()) {
        return false;
    }
    if (kept.starts_with(kDigit)) {
        return line[0] >= '0' && line[0] <= '9' && Matches(line.substr(1), kept.substr(kDigit.size()));
    }
    if (kept.starts_with(kHexadecimal)) {
        const size_t digits = static_cast<size_t>(std::ranges::find_if_not(line, IsHexadecimalDigit) - line.begin());
        return digits != 0 && Matches(line.substr(digits), kept.substr(kHexadecimal.size()));
    }
    return line[0] == kept[0] && Matches(line.substr(1), kept.substr(1));
}

bool IsVersion(const std::string& line)
{
    return std::ranges::count(line, '.') == 3 &&
           std::ranges::all_of(line, [](char c) { return c == '.' || (c >= '0' && c <= '9'); });
}

// The texts that the user sees are traced where they tell why a run ends.
bool IsUserText(const std::string& line)
{
    static const std::set<std::string> texts = [] {
        std::set<std::string> found;
        for (const unsigned id : {3U, 4U, 5U, 6U, 7U, 8U, 13U}) {
            found.insert(ResourceText(id));
        }
        return found;
    }();
    return texts.contains(line);
}

const KeptLine* Explanation(const std::vector<KeptLine>& kept, const std::string& line)
{
    const auto found =
        std::ranges::find_if(kept, [&](const KeptLine& candidate) { return Matches(line, candidate.text); });
    return found == kept.end() ? nullptr : &*found;
}

bool IsValueBehind(const KeptLine* before, const std::string& line)
{
    if (before == nullptr) {
        return false;
    }
    return before->value == KeptLine::Value::Next || (before->value == KeptLine::Value::Version && IsVersion(line));
}

// Whether the end of `text` from `at` on lies in `around` as the compiler splits what is shorter than a piece.
bool EndIsIn(std::string_view around, std::string_view text, size_t at)
{
    for (const size_t bytes : {4U, 2U, 1U}) {
        if (at + bytes <= text.size()) {
            if (around.find(text.substr(at, bytes)) == std::string_view::npos) {
                return false;
            }
            at += bytes;
        }
    }
    return at == text.size();
}

// Whether `around` has pieces of `size` bytes that lie over all of `text`; they may overlap.
bool PiecesAreIn(std::string_view around, std::string_view text, size_t size)
{
    size_t covered = 0;
    for (size_t at = 0; at + size <= text.size() && at <= covered; ++at) {
        if (around.find(text.substr(at, size)) != std::string_view::npos) {
            covered = at + size;
        }
    }
    return covered != 0 && text.size() - covered < size && EndIsIn(around, text, covered);
}

// The program's instructions, the first section of an image; all of a library. Texts that lie in one piece elsewhere
// would lend their parts to others.
std::string_view InstructionsOf(std::string_view image)
{
    if (!image.starts_with("MZ")) {
        return image;
    }
    const auto number = [&](size_t at, size_t bytes) {
        uint32_t value = 0;
        std::memcpy(&value, image.data() + at, bytes);
        return size_t{value};
    };
    const size_t header = number(0x3C, 4);
    constexpr size_t kFixedHeader = 24;
    const size_t section = header + kFixedHeader + number(header + 20, 2);
    return image.substr(number(section + 20, 4), number(section + 16, 4));
}

// Instructions carry a text in pieces of eight bytes, or of four when it is shorter, and its end in smaller ones.
bool IsInInstructions(std::string_view image, std::string_view text)
{
    const size_t size = text.size() < 8 ? 4 : 8;
    if (text.size() < size) {
        return false;
    }
    // They lie within one function, often within a few instructions.
    constexpr size_t kFunctionBytes = 512;
    const size_t reach = kFunctionBytes + text.size() * 4;
    const std::string_view first = text.substr(0, size);
    for (size_t at = image.find(first); at != std::string_view::npos; at = image.find(first, at + 1)) {
        const size_t begin = at > reach ? at - reach : 0;
        if (PiecesAreIn(image.substr(begin, 2 * reach), text, size)) {
            return true;
        }
    }
    return false;
}
} // namespace

std::vector<KeptLine> KeptLines()
{
    std::vector<KeptLine> kept;
    for (const std::string& line : LinesOfList("lines.txt")) {
        std::istringstream words(line);
        std::string where;
        std::string value;
        words >> where >> value;
        if (where == "never") {
            continue;
        }
        if (where != "run" && where != "program") {
            throw std::runtime_error("no such place: " + line);
        }
        kept.push_back({where == "run", ValueNamed(value), Quoted(line)});
    }
    return kept;
}

std::vector<std::string> KeptTexts(const std::string& fileName)
{
    std::vector<std::string> texts;
    for (const std::string& line : LinesOfList(fileName)) {
        texts.push_back(Quoted(line));
    }
    return texts;
}

bool IsKeptLine(const std::string& line, const std::string& kept)
{
    return Matches(line, kept);
}

std::vector<std::string> PartsOf(const std::string& kept)
{
    std::vector<std::string> parts;
    std::string rest = kept;
    // A number is formatted by the program, so its text holds the conversion.
    for (size_t at = rest.find(kHexadecimal); at != std::string::npos; at = rest.find(kHexadecimal)) {
        rest.replace(at, kHexadecimal.size(), "%x");
    }
    while (!rest.empty()) {
        const size_t end = std::min({rest.find(kAnything), rest.find(kDigit), rest.size()});
        if (end != 0) {
            parts.push_back(rest.substr(0, end));
        }
        rest.erase(0, end);
        if (!rest.empty()) {
            rest.erase(0, rest.find('>') + 1);
        }
    }
    return parts;
}

std::string UnkeptLine(const std::vector<std::string>& messages)
{
    static const std::vector<KeptLine> kept = KeptLines();
    const KeptLine* before = nullptr; // what explains the line before; null for a value
    bool following = false;
    for (size_t i = 0; i < messages.size(); ++i) {
        const std::string& line = messages[i];
        if (IsValueBehind(before, line)) {
            before = nullptr;
            continue;
        }
        const KeptLine* explanation = Explanation(kept, line);
        if (explanation != nullptr) {
            following = explanation->value == KeptLine::Value::Following;
        } else if (!following && !line.empty() && !IsUserText(line)) {
            const KeptLine* behind = i + 1 < messages.size() ? Explanation(kept, messages[i + 1]) : nullptr;
            if (behind == nullptr || behind->value != KeptLine::Value::Previous) {
                return "[" + line + "] behind [" + (i == 0 ? "" : messages[i - 1]) + "]";
            }
        }
        before = explanation;
    }
    return {};
}

bool HoldsText(const std::string& image, const std::string& text)
{
    std::string wide;
    for (const char c : text) {
        wide += c;
        wide += '\0';
    }
    return image.find(text) != std::string::npos || image.find(wide) != std::string::npos ||
           IsInInstructions(InstructionsOf(image), text) || IsInInstructions(InstructionsOf(image), wide);
}
