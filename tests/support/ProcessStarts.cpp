#include "ProcessStarts.h"

#include <algorithm>
#include <cstring>

namespace {
decltype(&WaitForSingleObject) platformWait = nullptr;
decltype(&MsgWaitForMultipleObjects) platformWaitOrMessage = nullptr;
decltype(&CloseHandle) platformClose = nullptr;

std::vector<ProcessStarts::Start> starts;
std::vector<DWORD> waitLimits;
std::vector<HANDLE> processes;
std::vector<HANDLE> openHandles;

// An event that is set, like a process or thread that has ended.
HANDLE MakeEnded()
{
    openHandles.push_back(CreateEventA(nullptr, TRUE, TRUE, nullptr));
    return openHandles.back();
}

bool IsPlain(const STARTUPINFOA& record)
{
    STARTUPINFOA plain{};
    plain.cb = sizeof(plain);
    return std::memcmp(&record, &plain, sizeof(plain)) == 0;
}

BOOL WINAPI NoteStart(LPCSTR program, LPSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
                      LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags, LPVOID environment,
                      LPCSTR directory, LPSTARTUPINFOA record, LPPROCESS_INFORMATION process)
{
    starts.push_back({.commandLine = commandLine,
                      .namesTheProgram = program != nullptr,
                      .hasSecurity = processSecurity != nullptr || threadSecurity != nullptr,
                      .inherits = inherit != FALSE,
                      .flags = flags,
                      .hasEnvironment = environment != nullptr,
                      .hasDirectory = directory != nullptr,
                      .recordIsPlain = IsPlain(*record)});
    process->hProcess = MakeEnded();
    process->hThread = MakeEnded();
    processes.push_back(process->hProcess);
    return TRUE;
}

void NoteWait(HANDLE handle, DWORD milliseconds)
{
    if (std::ranges::find(processes, handle) != processes.end()) {
        waitLimits.push_back(milliseconds);
    }
}

DWORD WINAPI NoteSingleWait(HANDLE handle, DWORD milliseconds)
{
    NoteWait(handle, milliseconds);
    return platformWait(handle, milliseconds);
}

DWORD WINAPI NoteWaitOrMessage(DWORD count, const HANDLE* handles, BOOL all, DWORD milliseconds, DWORD messages)
{
    for (DWORD index = 0; index < count; ++index) {
        NoteWait(handles[index], milliseconds);
    }
    return platformWaitOrMessage(count, handles, all, milliseconds, messages);
}

BOOL WINAPI NoteClose(HANDLE handle)
{
    std::erase(openHandles, handle);
    return platformClose(handle);
}
} // namespace

ProcessStarts::ProcessStarts()
    : m_start("CreateProcessA", reinterpret_cast<void*>(NoteStart)),
      m_wait("WaitForSingleObject", InPlaceOf(platformWait, &WaitForSingleObject, &NoteSingleWait)),
      m_waitOrMessage("MsgWaitForMultipleObjects",
                      InPlaceOf(platformWaitOrMessage, &MsgWaitForMultipleObjects, &NoteWaitOrMessage)),
      m_close("CloseHandle", InPlaceOf(platformClose, &CloseHandle, &NoteClose))
{
    starts.clear();
    waitLimits.clear();
    processes.clear();
    openHandles.clear();
}

ProcessStarts::~ProcessStarts()
{
    for (const HANDLE handle : openHandles) {
        platformClose(handle);
    }
}

const std::vector<ProcessStarts::Start>& ProcessStarts::Starts()
{
    return starts;
}

const std::vector<DWORD>& ProcessStarts::WaitLimits()
{
    return waitLimits;
}

std::size_t ProcessStarts::OpenHandles()
{
    return openHandles.size();
}
