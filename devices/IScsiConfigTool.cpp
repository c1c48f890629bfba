#include "IScsiConfigTool.h"

#include <windows.h>

#include <string>
#include <utility>

#include "ProcessStart.h"
#include "SentMessages.h"
#include "SystemDirectory.h"
#include "Trace.h"

namespace {
bool RunAndWait(std::string commandLine)
{
    const auto started = StartProcess({.commandLine = std::move(commandLine), .creationFlags = CREATE_NO_WINDOW});
    if (!started) {
        return false;
    }
    // The dialog's thread makes this call.
    WaitAnsweringSentMessages(started->process.get(), INFINITE);
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
