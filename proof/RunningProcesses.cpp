#include "RunningProcesses.h"

#include <windows.h>
// tlhelp32.h needs windows.h first.
#include <tlhelp32.h>

#include <algorithm>

#include "Handles.h"

namespace {
constexpr UINT kEndedByRunner = 0xFFFFFFFF;

uint64_t StartOf(HANDLE process)
{
    FILETIME started{};
    FILETIME other{};
    if (process == nullptr || GetProcessTimes(process, &started, &other, &other, &other) == FALSE) {
        return 0;
    }
    return static_cast<uint64_t>(started.dwHighDateTime) << 32U | started.dwLowDateTime;
}

/// @return false when it does not run, or may not be ended.
bool EndProcess(const ProcessRow& row)
{
    const UniqueHandle process(OpenProcess(PROCESS_TERMINATE | PROCESS_QUERY_INFORMATION, FALSE, row.id));
    return process && StartOf(process.get()) == row.started && TerminateProcess(process.get(), kEndedByRunner) != FALSE;
}
} // namespace

ProcessRow RowOfProcess(uint32_t id)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, id));
    return {.id = id, .parent = 0, .started = StartOf(process.get())};
}

std::vector<ProcessRow> RunningProcesses()
{
    std::vector<ProcessRow> rows;
    const UniqueFile snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32First(snapshot.Get(), &entry); more != FALSE;
         more = Process32Next(snapshot.Get(), &entry)) {
        ProcessRow row = RowOfProcess(entry.th32ProcessID);
        row.parent = entry.th32ParentProcessID;
        rows.push_back(row);
    }
    return rows;
}

void EndFamily(ProcessFamily& family)
{
    // Twice, because a process may start another one while it is being ended.
    for (int round = 0; round < 2; ++round) {
        family.Grow(RunningProcesses());
        std::ranges::for_each(family.Members(), EndProcess);
    }
}
