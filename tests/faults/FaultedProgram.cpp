#include "FaultedProgram.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "Environment.h"
#include "ProgramRun.h"

namespace {
void ReplaceAll(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

std::string ShortForm(const std::string& path)
{
    std::array<char, MAX_PATH> text{};
    GetShortPathNameA(path.c_str(), text.data(), text.size());
    return text.data();
}

// Longer paths come first.
std::vector<std::pair<std::string, std::string>> StandIns(const std::string& folder)
{
    return {{"<KIT>", folder},
            {"<KIT-UPPER>", UpperCase(folder)},
            {"<KIT-SHORT>", ShortForm(folder)},
            {"<SYSTEM>", SystemDirectory()},
            {"<WINDOWS>", WindowsDirectory()},
            {"<LF>", "\n"},
            {"<CR>", "\r"}};
}

template <std::size_t size>
void Put(std::array<char, size>& field, const std::string& text)
{
    if (text.size() >= size) {
        throw std::runtime_error("too long for the plan: " + text);
    }
    field.fill('\0');
    std::ranges::copy(text, field.begin());
}

constexpr const char* kKindNames[] = {"", "key", "", "", "", "device list", "", "SID of", "COM"};

std::string DescribeOpen(const OwnedHandle& handle)
{
    const std::string kind = kKindNames[handle.kind];
    return "still open: " + kind + (kind.empty() ? "" : " ") + handle.label.data();
}
} // namespace

std::string WithStandIns(std::string text, const std::string& folder)
{
    for (const auto& [standIn, real] : StandIns(folder)) {
        ReplaceAll(text, real, standIn);
    }
    return text;
}

std::string WithoutStandIns(std::string text, const std::string& folder)
{
    for (const auto& [standIn, real] : StandIns(folder)) {
        ReplaceAll(text, standIn, real);
    }
    return text;
}

FaultedProgram::FaultedProgram()
    : m_mapping(
          CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(FaultChannel), kFaultChannelName))
{
    if (!m_mapping || GetLastError() == ERROR_ALREADY_EXISTS) {
        throw std::runtime_error("the channel to the program under test cannot be opened");
    }
    m_channel = static_cast<FaultChannel*>(MapViewOfFile(m_mapping.get(), FILE_MAP_WRITE, 0, 0, sizeof(FaultChannel)));
    if (m_channel == nullptr) {
        throw std::runtime_error("the channel to the program under test cannot be mapped");
    }
}

FaultedProgram::~FaultedProgram()
{
    UnmapViewOfFile(m_channel);
}

void FaultedProgram::LayDown(const Start& start, const Fault& fault)
{
    std::memset(static_cast<void*>(m_channel), 0, offsetof(FaultChannel, text));
    std::memset(static_cast<void*>(m_channel->owned.data()), 0, sizeof(m_channel->owned));
    m_channel->memoryRequests = 0;
    m_channel->memoryRequestsOfStart = 0;
    m_channel->importCalled.fill(0);
    FaultPlan& plan = m_channel->plan;
    Put(plan.function, fault.call.function);
    Put(plan.label, WithoutStandIns(fault.call.label, start.folder));
    plan.thread = fault.call.thread;
    plan.ordinal = fault.ordinal;
    plan.memoryRequest = fault.memoryRequest;
    plan.memoryIsOut = fault.memoryIsOut ? 1 : 0;
    plan.interactive = start.interactive ? 1 : 0;
    plan.noteMemory = start.noteMemory ? 1 : 0;
}

Outcome FaultedProgram::Run(const Start& start, const Fault& fault)
{
    LayDown(start, fault);
    const std::string program = start.folder + "\\Morvix.exe";
    const StartedProgram started = StartProgram(program, "\"" + program + "\" " + start.arguments, start.folder);
    HANDLE const process = started.process.get();
    Outcome outcome;
    outcome.ended = WaitForSingleObject(process, kLimit) == WAIT_OBJECT_0;
    if (!outcome.ended) {
        TerminateProcess(process, 99);
        WaitForSingleObject(process, kLimit);
    }
    GetExitCodeProcess(process, &outcome.exitCode);
    Read(start.folder, outcome);
    return outcome;
}

void FaultedProgram::Read(const std::string& folder, Outcome& outcome) const
{
    outcome.reached = m_channel->reached != 0;
    std::vector<std::string> installLines;
    const std::string_view all(m_channel->text.data(), static_cast<std::size_t>(m_channel->textBytes));
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = all.find('\x1e', at);
        const char kind = all[at];
        const auto by = static_cast<CallThread>(all[at + 1]);
        std::string text = WithStandIns(std::string(all.substr(at + 2, end - at - 2)), folder);
        constexpr std::string_view kTrace = "trace Morvix: ";
        if (text.starts_with(kTrace)) {
            text = "trace: " + text.substr(kTrace.size());
        }
        at = end + 1;
        if (kind == 'C') {
            const std::size_t middle = text.find('\x1f');
            ++outcome.calls[{by, text.substr(0, middle), text.substr(middle + 1)}];
        } else if (kind == 'U') {
            outcome.unknownCalls.push_back(text);
        } else if (text != "!") {
            (by == CallThread::Main ? outcome.lines : installLines).push_back(text);
        }
    }
    outcome.lines.insert(outcome.lines.end(), installLines.begin(), installLines.end());
    std::vector<std::string> open;
    for (const OwnedHandle& handle : m_channel->owned) {
        if (handle.kind != 0 && std::string_view(handle.label.data()) != kRuntimes) {
            open.push_back(WithStandIns(DescribeOpen(handle), folder));
        }
    }
    std::ranges::sort(open);
    outcome.lines.insert(outcome.lines.end(), open.begin(), open.end());
    outcome.lines.push_back(outcome.ended ? "exit code " + std::to_string(static_cast<int>(outcome.exitCode))
                                          : "does not end");
    outcome.memoryRequests = static_cast<unsigned>(m_channel->memoryRequests);
    outcome.memoryRequestsOfStart = static_cast<unsigned>(m_channel->memoryRequestsOfStart);
    const std::size_t noted = std::min<std::size_t>(outcome.memoryRequests, m_channel->memoryStacks.size());
    outcome.memoryStacks.assign(m_channel->memoryStacks.begin(),
                                m_channel->memoryStacks.begin() + static_cast<std::ptrdiff_t>(noted));
    outcome.importCalled.assign(m_channel->importCalled.begin(), m_channel->importCalled.end());
}
