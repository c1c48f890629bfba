#include "Verdicts.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "Environment.h"
#include "ScratchDirectory.h"

namespace {
constexpr char kIndent[] = "    ";
constexpr char kGoesOn[] = "goes on";
constexpr char kLosesALine[] = "loses a line";

std::string PathOf(const std::string& scenario)
{
    const std::string traces = TracesFolder();
    return traces.substr(0, traces.rfind('\\')) + "\\verdicts\\" + scenario + ".txt";
}

std::string OrdinalsText(const std::vector<unsigned>& ordinals)
{
    std::string text;
    for (std::size_t i = 0; i < ordinals.size();) {
        std::size_t last = i;
        while (last + 1 < ordinals.size() && ordinals[last + 1] == ordinals[last] + 1) {
            ++last;
        }
        text += (text.empty() ? "" : ",") + std::to_string(ordinals[i]);
        if (last > i) {
            text += "-" + std::to_string(ordinals[last]);
        }
        i = last + 1;
    }
    return text;
}

std::vector<unsigned> ParseOrdinals(const std::string& text)
{
    std::vector<unsigned> ordinals;
    std::istringstream parts(text);
    for (std::string part; std::getline(parts, part, ',');) {
        const std::size_t dash = part.find('-');
        const auto first = static_cast<unsigned>(std::stoul(part));
        const auto last = dash == std::string::npos ? first : static_cast<unsigned>(std::stoul(part.substr(dash + 1)));
        for (unsigned ordinal = first; ordinal <= last; ++ordinal) {
            ordinals.push_back(ordinal);
        }
    }
    return ordinals;
}

/// "main Function(label) 1-3"
Verdict ParseHeader(const std::string& line)
{
    const std::size_t blank = line.find(' ');
    const std::size_t open = line.find('(');
    const std::size_t close = line.rfind(") ");
    const std::string thread = line.substr(0, blank);
    if (open == std::string::npos || close == std::string::npos || (thread != "main" && thread != "install")) {
        throw std::runtime_error("not a verdict: " + line);
    }
    Verdict verdict;
    verdict.call.thread = thread == "main" ? CallThread::Main : CallThread::Install;
    verdict.call.function = line.substr(blank + 1, open - blank - 1);
    verdict.call.label = line.substr(open + 1, close - open - 1);
    verdict.ordinals = ParseOrdinals(line.substr(close + 2));
    return verdict;
}
} // namespace

std::vector<Verdict> ReadVerdicts(const std::string& scenario)
{
    std::vector<Verdict> verdicts;
    if (!FileExists(PathOf(scenario))) {
        return verdicts;
    }
    std::istringstream text(ReadFileBytes(PathOf(scenario)));
    for (std::string line; std::getline(text, line);) {
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() != ' ') {
            verdicts.push_back(ParseHeader(line));
        } else if (verdicts.empty()) {
            throw std::runtime_error("nothing to belong to: " + line);
        } else {
            verdicts.back().expected.push_back(line.substr(sizeof(kIndent) - 1));
        }
    }
    return verdicts;
}

void WriteVerdicts(const std::string& scenario, const std::vector<Verdict>& verdicts)
{
    std::string text;
    for (const Verdict& verdict : verdicts) {
        text += Describe(verdict.call) + " " + OrdinalsText(verdict.ordinals) + "\n";
        for (const std::string& line : verdict.expected) {
            text += kIndent + line + "\n";
        }
    }
    WriteFileBytes(PathOf(scenario) + ".actual", text);
}

std::vector<std::string> WordsFor(const std::vector<std::string>& difference)
{
    if (difference.empty()) {
        return {kGoesOn};
    }
    if (difference.size() == 1 && difference.front().starts_with("- trace: ")) {
        return {kLosesALine};
    }
    return difference;
}

std::string Describe(const CallName& call)
{
    return (call.thread == CallThread::Main ? "main " : "install ") + call.function + "(" + call.label + ")";
}

bool ComesByChance(const CallName& call)
{
    static const std::vector<std::string> kFunctions = {"GetMessageA", "IsDialogMessageA", "GetDlgItem",
                                                        "MsgWaitForMultipleObjects"};
    return call.thread == CallThread::Main && std::ranges::find(kFunctions, call.function) != kFunctions.end();
}
