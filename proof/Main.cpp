// proof_tools COMMAND [ARGUMENT...]: what proof.cmd needs and a batch file cannot do on every Windows since XP x64.
#include <windows.h>

#include <array>
#include <cstdio>
#include <exception>
#include <span>
#include <stdexcept>
#include <string>

#include "BundleRun.h"
#include "Differences.h"
#include "Files.h"
#include "Handles.h"
#include "MachineState.h"
#include "Report.h"
#include "Screenshot.h"
#include "Sha256.h"
#include "SystemFacts.h"

namespace {
// Exit codes, beside 0; proof.cmd knows them.
constexpr int kNo = 1; ///< changed files, no step left
// The command processor itself ends with 1 when it cannot start a program.
constexpr int kNotElevated = 4;
constexpr int kFailed = 5;
constexpr int kOtherRun = 6;
constexpr int kRestart = 3010;

using Arguments = std::span<char*>;

BundleFolders Folders()
{
    BundleFolders folders;
    folders.root = EnvironmentText("MORVIX_PROOF");
    folders.report = folders.root + R"(\report)";
    folders.results = EnvironmentText("MORVIX_PROOF_RESULTS");
    return folders;
}

int TellElevation(Arguments /*arguments*/)
{
    return IsElevated() ? 0 : kNotElevated;
}

int CheckSums(Arguments /*arguments*/)
{
    const std::string changed = ChangedFiles(Folders().root);
    std::fputs(changed.c_str(), stdout);
    return changed.empty() ? 0 : kNo;
}

int BeginSteps(Arguments /*arguments*/)
{
    BeginRun(Folders(), EnvironmentText("MORVIX_PROOF_STEPS"));
    return 0;
}

int RunOneStep(Arguments /*arguments*/)
{
    // The system may start the batch file once more while a run goes on, when another user logs on.
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, "Global\\MorvixProof"));
    if (!running || WaitForSingleObject(running.get(), 0) == WAIT_TIMEOUT) {
        std::fputs("proof_tools: another run goes on\n", stderr);
        return kOtherRun;
    }
    switch (RunNextStep(Folders())) {
        case AfterStep::AllDone:
            return kNo;
        case AfterStep::Restart:
            return kRestart;
        case AfterStep::GoOn:
            break;
    }
    return 0;
}

int WriteFacts(Arguments arguments)
{
    const std::string sums = ReadWholeFile(Folders().root + R"(\sums.txt)");
    WriteWholeFile(arguments[0], "bundle: " + Sha256(sums) + '\n' + SystemFacts());
    return 0;
}

int WriteMachineState(Arguments arguments)
{
    WriteWholeFile(arguments[0], MachineState());
    return 0;
}

int WriteDifferences(Arguments arguments)
{
    WriteWholeFile(arguments[2], Differences(ReadWholeFile(arguments[0]), ReadWholeFile(arguments[1])));
    return 0;
}

int WriteScreenshot(Arguments arguments)
{
    const std::string picture = Screenshot();
    if (picture.empty()) {
        throw std::runtime_error("there is no screen");
    }
    WriteWholeFile(arguments[0], picture);
    return 0;
}

int CollectLogs(Arguments arguments)
{
    CopySystemLogs(arguments[0]);
    return 0;
}

int PackReport(Arguments arguments)
{
    PackFolder(arguments[0], arguments[1]);
    return 0;
}

/// The system's own command for it differs from version to version.
int RestartMachine(Arguments /*arguments*/)
{
    HANDLE opened = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &opened) != FALSE) {
        const UniqueHandle token(opened);
        TOKEN_PRIVILEGES privileges{};
        privileges.PrivilegeCount = 1;
        privileges.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
        LookupPrivilegeValueA(nullptr, SE_SHUTDOWN_NAME, &privileges.Privileges[0].Luid);
        AdjustTokenPrivileges(token.get(), FALSE, &privileges, 0, nullptr, nullptr);
    }
    if (ExitWindowsEx(EWX_REBOOT | EWX_FORCE, SHTDN_REASON_FLAG_PLANNED) == FALSE) {
        throw std::runtime_error("the machine does not restart: error " + std::to_string(GetLastError()));
    }
    return 0;
}

struct Command
{
    const char* name;
    std::size_t arguments;
    int (*run)(Arguments);
};
constexpr auto kCommands = std::to_array<Command>({
    {"elevated", 0, TellElevation},
    {"sums", 0, CheckSums},
    {"begin", 0, BeginSteps},
    {"step", 0, RunOneStep},
    {"facts", 1, WriteFacts},
    {"state", 1, WriteMachineState},
    {"compare", 3, WriteDifferences},
    {"picture", 1, WriteScreenshot},
    {"logs", 1, CollectLogs},
    {"pack", 2, PackReport},
    {"restart", 0, RestartMachine},
});
} // namespace

int main(int argc, char** argv)
{
    const Arguments arguments = Arguments(argv, static_cast<std::size_t>(argc)).subspan(argc > 2 ? 2 : 0);
    try {
        for (const Command& command : kCommands) {
            const std::size_t given = argc > 2 ? arguments.size() : 0;
            if (argc > 1 && std::string(argv[1]) == command.name && given == command.arguments) {
                return command.run(arguments);
            }
        }
        std::fputs("usage: proof_tools COMMAND [ARGUMENT...], as proof.cmd calls it\n", stderr);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "proof_tools: %s\n", failure.what());
    }
    return kFailed;
}
