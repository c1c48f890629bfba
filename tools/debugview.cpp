// debugview <output file> <command line>
// Starts a program, writes every line that it sends to the debugger into the output file, and ends with its exit code.

#include <windows.h>

#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#include "DebugOutput.h"
#include "Handles.h"

namespace {
constexpr int kCannotRun = 125;
constexpr DWORD kLookMilliseconds = 100;

/// Removes the first argument from a command line; the rest keeps its quotes, for the program to start.
std::string TakeArgument(std::string& commandLine)
{
    const bool quoted = commandLine.starts_with('"');
    const size_t end = quoted ? commandLine.find('"', 1) : commandLine.find(' ');
    const size_t begin = quoted ? 1 : 0;
    std::string argument = commandLine.substr(begin, end == std::string::npos ? end : end - begin);
    const size_t next = end == std::string::npos ? end : commandLine.find_first_not_of(' ', quoted ? end + 1 : end);
    commandLine = next == std::string::npos ? "" : commandLine.substr(next);
    return argument;
}

int Run(const std::string& outputPath, std::string commandLine)
{
    std::ofstream output(outputPath, std::ios::binary | std::ios::trunc);
    if (!output) {
        std::fprintf(stderr, "debugview: cannot write %s\n", outputPath.c_str());
        return kCannotRun;
    }
    DebugOutput debugOutput;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started) ==
        FALSE) {
        std::fprintf(stderr, "debugview: cannot start %s: error %lu\n", commandLine.c_str(), GetLastError());
        return kCannotRun;
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    // The lines are written while the program runs, so that a script can follow it.
    size_t written = 0;
    for (bool running = true; running;) {
        running = WaitForSingleObject(process.get(), kLookMilliseconds) == WAIT_TIMEOUT;
        const std::vector<std::string> lines = debugOutput.LinesOf(started.dwProcessId);
        for (; written < lines.size(); ++written) {
            output << lines[written] << (lines[written].ends_with('\n') ? "" : "\n");
        }
        if (!output.flush()) {
            std::fprintf(stderr, "debugview: cannot write %s\n", outputPath.c_str());
            return kCannotRun;
        }
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process.get(), &exitCode);
    return static_cast<int>(exitCode);
}
} // namespace

int main()
{
    std::string commandLine = GetCommandLineA();
    TakeArgument(commandLine);
    const std::string outputPath = TakeArgument(commandLine);
    if (outputPath.empty() || commandLine.empty()) {
        std::fputs("usage: debugview <output file> <command line>\n", stderr);
        return kCannotRun;
    }
    try {
        return Run(outputPath, commandLine);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "debugview: %s\n", failure.what());
        return kCannotRun;
    }
}
