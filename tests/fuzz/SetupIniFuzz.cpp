// The setup INI's text: lists of lines, values after markers, lists of names, numbers, tokens and paths. The whole
// input is the text, so that any setup INI is a seed.

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "IniLines.h"
#include "LegacyCommand.h"
#include "PathResolution.h"
#include "Promise.h"
#include "Tokens.h"

namespace {
std::vector<std::string> LinesByteByByte(std::string_view buffer)
{
    std::vector<std::string> lines;
    std::string line;
    for (const char c : buffer) {
        if (c != '\0') {
            line += c;
        } else if (line.empty()) {
            return lines;
        } else {
            lines.push_back(line);
            line.clear();
        }
    }
    if (!line.empty()) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string_view> CheckLines(const ExactBuffer& buffer)
{
    std::vector<std::string_view> lines = LinesOf(buffer.All());
    const std::vector<std::string> expected = LinesByteByByte(buffer.Text());
    Promise(std::ranges::equal(lines, expected), "lines are what lies between the terminators");
    std::string joined;
    for (const std::string_view line : lines) {
        Promise(LiesWithin(line, buffer.Text()), "a line lies in the buffer");
        joined.append(line).push_back('\0');
    }
    const ExactBuffer again(joined + '\0');
    Promise(std::ranges::equal(LinesOf(again.All()), lines), "lines that are stored again read the same");
    return lines;
}

void CheckMarker(std::string_view line, std::string_view marker)
{
    bool present = false;
    for (std::size_t at = 0; at + marker.size() <= line.size(); ++at) {
        present = present || line.substr(at, marker.size()) == marker;
    }
    const auto value = ValueAfterLast(line, marker);
    Promise(value.has_value() == present, "there is a value exactly when the line has the marker");
    if (value) {
        Promise(value->find(marker) == std::string_view::npos, "the value begins after the last marker");
        Promise(line.ends_with(std::string(marker) + std::string(*value)), "marker and value end the line");
    }
}

void CheckSplit(std::string_view list)
{
    const std::vector<std::string> parts = SplitFromEnd(list);
    std::vector<std::string> expected(1);
    for (const char c : list) {
        if (c == ',') {
            expected.emplace_back();
        } else {
            expected.back() += c;
        }
    }
    std::ranges::reverse(expected);
    Promise(parts == expected, "the parts between commas, last part first");
}

void CheckNumber(const std::string& text)
{
    const long number = std::strtol(text.c_str(), nullptr, 10);
    const long lowest = std::numeric_limits<int>::min();
    const long highest = std::numeric_limits<int>::max();
    Promise(LeadingNumber(text) == std::clamp(number, lowest, highest), "the number that the text begins with");
}

void CheckTokens(const std::string& text, const std::vector<std::string>& delimiterSets)
{
    std::string copy = text;
    char* rest = nullptr;
    char* from = copy.data();
    TokenCursor cursor(text);
    std::size_t round = 0;
    for (;; ++round) {
        const std::string& delimiters = delimiterSets[round % delimiterSets.size()];
        const char* expected = strtok_r(from, delimiters.c_str(), &rest);
        from = nullptr;
        const auto token = cursor.Next(delimiters);
        Promise(token.has_value() == (expected != nullptr), "a token where the runtime finds one");
        if (!token) {
            break;
        }
        Promise(*token == expected, "the token that the runtime finds");
        Promise(!token->empty() && token->find_first_of(delimiters) == std::string_view::npos,
                "no delimiter in a token");
    }
    Promise(!cursor.Next(delimiterSets.front()), "nothing follows the last token");
}

bool NoLeadByte(unsigned char)
{
    return false;
}

std::string ResolvedPlainly(const std::string& path, std::string base, int levels)
{
    for (int level = 0; levels >= 1 && levels <= 260 && level < levels; ++level) {
        const std::size_t cut = base.find_last_of('\\');
        if (cut != std::string::npos) {
            base.erase(cut);
        }
    }
    if (!path.empty() && path[0] == '\\') {
        return base.substr(0, 2) + path;
    }
    if (!path.empty() && path[0] == '.') {
        return base;
    }
    return base + (!base.empty() && base.back() == '\\' ? "" : "\\") + path;
}

void CheckResolved(const std::string& path, const std::string& base, int levels)
{
    Promise(ResolveRelativePath(path, base, levels, NoLeadByte) == ResolvedPlainly(path, base, levels),
            "a relative path lies below its base");
}

void CheckPath(const std::string& path, const std::string& base)
{
    CheckResolved(path, base, 0);
    CheckResolved(path, base, 1);
    CheckResolved(path, base, 2);
    const std::string directory = WithTrailingBackslash(path, NoLeadByte);
    Promise(directory.ends_with('\\') && directory.starts_with(path), "a directory ends with a backslash");
    Promise(directory.size() <= path.size() + 1, "one backslash is added at most");
    Promise(WithTrailingBackslash(directory, NoLeadByte) == directory, "no second backslash is added");
    Promise(IsAbsolutePath(path) == (std::ranges::count(path, ':') > 0), "a colon makes a path absolute");
    const std::string name = BaseNameOf(path);
    Promise(path.starts_with(name) &&
                (name == path ? path.find('.') == std::string::npos
                              : path[name.size()] == '.' && path.find('.', name.size() + 1) == std::string::npos),
            "a base name ends at the last full stop");
}

void CheckLegacyTexts(const std::string& text)
{
    const std::string directory = DriveAndDirectoryOf(text, NoLeadByte);
    Promise(text.starts_with(directory) && directory.size() <= kLegacyPathChars, "a directory is the path's beginning");
    const std::string rest = text.substr(directory.size());
    Promise(directory.size() == kLegacyPathChars || rest.find_first_of("\\/") == std::string::npos,
            "a directory ends at the last backslash or slash");
    const std::string cut = CutToPathLimit(text, NoLeadByte);
    Promise(text.starts_with(cut) && cut.size() == std::min(text.size(), kLegacyPathChars),
            "a path is cut at its limit");
    const std::string whole = "Rundll.exe Inst98.dll,EntryPoint PCI\\" + text + " " + cut;
    Promise(LegacyCommandLine(text, cut, NoLeadByte) == whole.substr(0, 999),
            "the command line, cut at 999 characters");
    const std::string staging = "Rundll.exe Inst98.dll,EntryPoint noID " + text;
    Promise(LegacyStagingCommandLine(text, NoLeadByte) == staging.substr(0, 999),
            "the staging command line, cut likewise");
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    // As the file is, and as the platform returns its lines.
    std::string section = input;
    std::ranges::replace(section, '\n', '\0');
    CheckLines(ExactBuffer(input));
    const ExactBuffer buffer(section);
    std::string previous = R"(E:\Kit\Setup\Bin)";
    for (const std::string_view view : CheckLines(buffer)) {
        const std::string line(view);
        CheckMarker(view, "InfDir=");
        CheckMarker(view, "InfExclude=");
        CheckSplit(view);
        CheckNumber(line);
        CheckTokens(line, {"=", "\\", "\\, "});
        CheckTokens(line, {", "});
        CheckPath(line, previous);
        CheckLegacyTexts(line);
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) {
            const std::string value = line.substr(equals + 1);
            CheckNumber(value);
            CheckPath(value, previous);
            previous = value;
        }
    }
    // The many levels cost time, so they are tried once for an input.
    for (const int levels : {260, 261, -1, LeadingNumber(previous)}) {
        CheckResolved("Drv", previous, levels);
    }
    CheckPath("", previous);
    CheckPath("Drv", "");
    return 0;
}
