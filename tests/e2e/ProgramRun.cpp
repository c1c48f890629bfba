#include "ProgramRun.h"

#include <algorithm>
#include <stdexcept>

namespace {
constexpr std::string_view kPrefix = "Morvix: ";
constexpr std::string_view kNetInstPrefix = "NetInst: ";
} // namespace

std::vector<std::string> FinishedRun::Messages() const
{
    std::vector<std::string> messages;
    for (const std::string& line : lines) {
        messages.push_back(line.starts_with(kPrefix) ? line.substr(kPrefix.size()) : line);
    }
    return messages;
}

size_t FinishedRun::Count(const std::string& message) const
{
    return static_cast<size_t>(std::ranges::count(lines, std::string(kPrefix) + message));
}

std::vector<std::string> FinishedRun::Between(const std::string& from, const std::string& to) const
{
    const std::vector<std::string> messages = Messages();
    const auto first = std::ranges::find(messages, from);
    const auto last = std::find(first == messages.end() ? first : first + 1, messages.end(), to);
    return last == messages.end() ? std::vector<std::string>{} : std::vector<std::string>(first, last + 1);
}

StartedProgram StartProgram(const std::string& program, std::string commandLine, const std::string& workingDirectory)
{
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    BOOL started = FALSE;
    // A busy Wine sometimes fails to start a program, with this error; the program has not run then.
    for (int attempt = 0; started == FALSE && (attempt == 0 || (attempt < 3 && GetLastError() == ERROR_INTERNAL_ERROR));
         ++attempt) {
        started = CreateProcessA(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                 workingDirectory.c_str(), &startup, &process);
    }
    if (started == FALSE) {
        throw std::runtime_error("cannot start " + commandLine + ", error " + std::to_string(GetLastError()));
    }
    CloseHandle(process.hThread);
    return {.process = UniqueHandle(process.hProcess), .processId = process.dwProcessId};
}

ProgramRun::ProgramRun(DebugOutput& output, const std::string& program, const std::string& calledAs,
                       const std::string& arguments, const std::string& workingDirectory)
    : m_output(output), m_started(StartProgram(program, "\"" + calledAs + "\" " + arguments, workingDirectory))
{
}

ProgramRun::~ProgramRun()
{
    if (StillRuns()) {
        TerminateProcess(m_started.process.get(), 99);
        WaitForSingleObject(m_started.process.get(), kLimit);
    }
}

bool ProgramRun::StillRuns() const
{
    return WaitForSingleObject(m_started.process.get(), 0) == WAIT_TIMEOUT;
}

FinishedRun ProgramRun::Finish()
{
    if (WaitForSingleObject(m_started.process.get(), kLimit) != WAIT_OBJECT_0) {
        const std::vector<std::string> lines = m_output.LinesOf(m_started.processId);
        throw std::runtime_error("the program did not end; its last trace line is [" +
                                 (lines.empty() ? std::string() : lines.back()) + "]");
    }
    DWORD code = 0;
    GetExitCodeProcess(m_started.process.get(), &code);
    FinishedRun finished = SoFar();
    finished.exitCode = static_cast<int>(code);
    return finished;
}

FinishedRun ProgramRun::SoFar() const
{
    FinishedRun run;
    for (std::string& line : m_output.LinesOf(m_started.processId)) {
        (line.starts_with(kNetInstPrefix) ? run.netInstLines : run.lines).push_back(std::move(line));
    }
    return run;
}

void ProgramRun::WaitForTrace(const std::string& text) const
{
    if (!m_output.WaitForLine(m_started.processId, text, kLimit)) {
        throw std::runtime_error("the program did not trace [" + text + "]");
    }
}
