#include "HeldProgram.h"

// tlhelp32.h needs windows.h first.
#include <tlhelp32.h>

#include <string_view>

#include "Handles.h"
#include "TestFiles.h"

namespace {
// Only guards against hanging.
constexpr DWORD kEndMilliseconds = 300000;
constexpr char kName[] = "a program.exe";
} // namespace

HeldProgram::HeldProgram() : m_program(m_scratch.At(kName))
{
    CopyFileTo(TestFile("command_line_recorder.exe"), m_program);
    WriteFileBytes(m_program + ".hold", "");
}

HeldProgram::~HeldProgram()
{
    std::vector<UniqueHandle> processes;
    for (const DWORD id : RunningChildren()) {
        processes.emplace_back(OpenProcess(SYNCHRONIZE, FALSE, id));
    }
    DeleteFileA((m_program + ".hold").c_str());
    for (const UniqueHandle& process : processes) {
        WaitForSingleObject(process.get(), kEndMilliseconds);
    }
}

ProgramStart HeldProgram::Start() const
{
    return {m_program, "/s /m", m_scratch.Path()};
}

std::vector<DWORD> HeldProgram::RunningChildren()
{
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 process{};
    process.dwSize = sizeof(process);
    std::vector<DWORD> children;
    for (BOOL more = Process32First(snapshot.get(), &process); more != FALSE;
         more = Process32Next(snapshot.get(), &process)) {
        // The platform may have started processes of its own in the name of this one.
        if (process.th32ParentProcessID == GetCurrentProcessId() && std::string_view(process.szExeFile) == kName) {
            children.push_back(process.th32ProcessID);
        }
    }
    return children;
}
