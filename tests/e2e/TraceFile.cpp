#include "TraceFile.h"

#include <windows.h>

#include <array>
#include <sstream>
#include <string_view>

#include "Environment.h"

namespace {
constexpr size_t kLinesBefore = 3;

void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string ShortFormOf(const std::string& path)
{
    std::array<char, MAX_PATH> text{};
    GetShortPathNameA(path.c_str(), text.data(), text.size());
    return text.data();
}

// Longer paths come first, so that writing takes the closest name.
StandIns StandInsFor(const std::string& folder, const StandIns& more)
{
    StandIns standIns = more;
    const StandIns ownOnes = {{"<KIT>", folder},
                              {"<KIT-UPPER>", UpperCase(folder)},
                              {"<KIT-SHORT>", ShortFormOf(folder)},
                              {"<SYSTEM>", SystemDirectory()},
                              {"<WINDOWS>", WindowsDirectory()},
                              {"<LF>", "\n"},
                              {"<CR>", "\r"}};
    standIns.insert(standIns.end(), ownOnes.begin(), ownOnes.end());
    return standIns;
}

std::vector<std::string> ReadKept(const std::string& name, const StandIns& standIns)
{
    std::vector<std::string> lines;
    std::istringstream text(ReadFileBytes(TracesFolder() + "\\" + name));
    for (std::string line; std::getline(text, line);) {
        for (const auto& [standIn, real] : standIns) {
            ReplaceAll(line, standIn, real);
        }
        lines.push_back(line);
    }
    return lines;
}

void WriteActual(const std::string& name, const StandIns& standIns, const std::vector<std::string>& lines)
{
    std::string text;
    for (std::string line : lines) {
        for (const auto& [standIn, real] : standIns) {
            ReplaceAll(line, real, standIn);
        }
        text += line + "\n";
    }
    WriteFileBytes(TracesFolder() + "\\" + name + ".actual", text);
}

std::string LineAt(const std::vector<std::string>& lines, size_t index)
{
    return index < lines.size() ? "[" + lines[index] + "]" : "nothing more";
}
} // namespace

std::string DifferenceFromKeptTrace(const std::string& name, const RunFolder& folder,
                                    const std::vector<std::string>& lines, const StandIns& more)
{
    const auto everyLine = [](const std::vector<std::string>& all) { return all; };
    return DifferenceFromKeptTrace(name, folder.Path(), lines, everyLine, more);
}

std::string DifferenceFromKeptTrace(const std::string& name, const std::string& folder,
                                    const std::vector<std::string>& allLines, const TraceView& view,
                                    const StandIns& more)
{
    const StandIns standIns = StandInsFor(folder, more);
    const std::vector<std::string> expected = view(ReadKept(name, standIns));
    const std::vector<std::string> lines = view(allLines);
    size_t at = 0;
    while (at < expected.size() && at < lines.size() && expected[at] == lines[at]) {
        ++at;
    }
    if (at == expected.size() && at == lines.size()) {
        return {};
    }
    WriteActual(name, standIns, lines);
    std::string report = "line " + std::to_string(at + 1) + "\nexpected " + LineAt(expected, at) + "\nactual   " +
                         LineAt(lines, at) + "\nbehind";
    for (size_t before = at > kLinesBefore ? at - kLinesBefore : 0; before < at; ++before) {
        report += "\n         [" + lines[before] + "]";
    }
    return report;
}

std::vector<std::string> WithoutTheMachinesOwnDevices(const std::vector<std::string>& lines)
{
    constexpr std::string_view kPath = R"(Morvix: SYSTEM\CurrentControlSet\Enum\PCI\)";
    std::vector<std::string> kept;
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool foreign = i + 2 < lines.size() && lines[i] == "Morvix: Enter -> IsNordaNetworkDevice()\n" &&
                             lines[i + 1].starts_with(kPath) &&
                             !lines[i + 1].substr(kPath.size()).starts_with("VEN_5D1A") &&
                             lines[i + 2] == "Morvix: Exit -> IsNordaNetworkDevice()\n";
        if (foreign) {
            i += 2;
        } else {
            kept.push_back(lines[i]);
        }
    }
    return kept;
}
