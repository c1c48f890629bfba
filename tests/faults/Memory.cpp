#include "Memory.h"

#include <algorithm>
#include <set>

namespace {
std::set<std::string> LeftBy(const Outcome& outcome)
{
    std::set<std::string> left;
    for (const std::string& line : outcome.lines) {
        if (line.starts_with("left: ")) {
            left.insert(line);
        }
    }
    return left;
}

bool TellsOf(const std::set<std::string>& left, const std::string& value)
{
    return std::ranges::any_of(left, [&](const std::string& line) { return line.find(value) != std::string::npos; });
}

bool IsTrace(const std::string& line)
{
    return line.starts_with("trace: ");
}

bool Restarts(const Outcome& outcome)
{
    return std::ranges::any_of(outcome.lines, [](const std::string& line) { return line.starts_with("restart"); });
}

bool IsPending(const std::string& line)
{
    return line.find("pending ") != std::string::npos;
}

/// What is there before the run.
bool IsTheMachinesOwn(const std::string& line)
{
    return IsPending(line) || line.find("OEMVersion") != std::string::npos;
}

/// Values are whole or not there at all, "Install" comes last, and what exists during an install only is gone.
void LookForHalfWritten(const Outcome& clean, const Outcome& faulted, std::vector<std::string>& complaints)
{
    const std::set<std::string> whole = LeftBy(clean);
    const std::set<std::string> left = LeftBy(faulted);
    for (const std::string& line : left) {
        // The entry that the run removes from the list of pending operations may still be on it, and the value that
        // names the legacy helper's device changes during the run.
        const bool comesAndGoes = IsPending(line) || line.find("RegPCIpath") != std::string::npos;
        if (!whole.contains(line) && !comesAndGoes) {
            complaints.push_back("only with the fault " + line);
        }
    }
    if (TellsOf(left, R"(Basedrivers\\Install type)")) {
        for (const std::string& line : whole) {
            if (line.find("Version type") != std::string::npos && !left.contains(line)) {
                complaints.push_back("\"Install\" is there without " + line);
            }
        }
    }
}
} // namespace

std::vector<std::string> Complaints(const Outcome& clean, const Outcome& faulted, const Fault& fault)
{
    std::vector<std::string> complaints;
    if (!faulted.reached) {
        complaints.emplace_back("the request is not made");
    }
    if (!faulted.ended) {
        complaints.emplace_back("the run does not end");
    }
    LookForHalfWritten(clean, faulted, complaints);
    if (faulted.exitCode == clean.exitCode && LeftBy(faulted) == LeftBy(clean) &&
        Restarts(faulted) == Restarts(clean)) {
        // What needed the memory was done without.
        return complaints;
    }
    const bool didNothing =
        std::ranges::all_of(LeftBy(faulted), IsTheMachinesOwn) && std::ranges::none_of(faulted.lines, IsTrace);
    if (didNothing && fault.memoryRequest <= clean.memoryRequestsOfStart) {
        // The language's own start ends the process then.
        return complaints;
    }
    if (static_cast<int>(faulted.exitCode) != -1) {
        complaints.push_back("exit code " + std::to_string(static_cast<int>(faulted.exitCode)));
    }
    const bool neverHadAny = didNothing && fault.memoryIsOut;
    if (!neverHadAny && std::ranges::count(faulted.lines, "trace: unhandled fault: std::bad_alloc<LF>") != 1) {
        complaints.emplace_back("no trace of the fault");
    }
    return complaints;
}

std::vector<unsigned> FirstRequests(const Outcome& clean)
{
    std::vector<unsigned> requests;
    std::set<std::uint32_t> places;
    for (unsigned i = 0; i < clean.memoryStacks.size(); ++i) {
        if (places.insert(clean.memoryStacks[i]).second) {
            requests.push_back(i + 1);
        }
    }
    return requests;
}
