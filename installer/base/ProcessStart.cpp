#include "ProcessStart.h"

#include "ErrorMode.h"

namespace {
const char* TextOrNull(const std::string& text)
{
    return text.empty() ? nullptr : text.c_str();
}
} // namespace

std::optional<StartedProcess> StartProcess(ProcessStart start)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    const StartErrorMode inherited;
    if (CreateProcessA(TextOrNull(start.program), start.commandLine.data(), nullptr, nullptr, FALSE,
                       start.creationFlags, nullptr, TextOrNull(start.directory), &startup, &started) == FALSE) {
        return std::nullopt;
    }
    return StartedProcess{UniqueHandle(started.hProcess), UniqueHandle(started.hThread)};
}
