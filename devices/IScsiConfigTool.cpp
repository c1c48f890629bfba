#include "IScsiConfigTool.h"

#include <windows.h>

#include <string>

#include "ErrorMode.h"
#include "Handles.h"
#include "SentMessages.h"
#include "SystemDirectory.h"
#include "Trace.h"

namespace {
bool Start(std::string& commandLine, PROCESS_INFORMATION& process)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    const StartErrorMode inherited;
    return CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr, nullptr,
                          &startup, &process) != FALSE;
}

bool RunAndWait(std::string commandLine)
{
    PROCESS_INFORMATION process{};
    if (!Start(commandLine, process)) {
        return false;
    }
    const UniqueHandle processOwner(process.hProcess);
    const UniqueHandle threadOwner(process.hThread);
    // The dialog's thread makes this call.
    WaitAnsweringSentMessages(process.hProcess, INFINITE);
    return true;
}
} // namespace

void CalliSCSIConfigExe()
{
    Trace("Entering CalliSCSIConfigExe");
    const std::string directory = SystemDirectory();
    if (directory.empty() || !RunAndWait(directory + R"(\iscsivrf.exe /verify /fix)")) {
        Trace("Failed to call iSCSI command line utility.");
    }
    Trace("Leaving CalliSCSIConfigExe");
}
