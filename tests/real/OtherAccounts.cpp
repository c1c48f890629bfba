#include "OtherAccounts.h"

#include <windows.h>
// The headers below need windows.h first.
#include <lmaccess.h>
#include <lmcons.h>
#include <lmerr.h>
#include <objbase.h>

#include <array>
#include <stdexcept>

#include "ChildTask.h"
#include "Environment.h"
#include "Machine.h"
#include "MachineUse.h"
#include "ProgramRun.h"
#include "ScratchDirectory.h"
#include "WideText.h"

namespace {
constexpr char kTask[] = "morvix-proof";
constexpr DWORD kLimit = 600000;

std::string ReportIn(const OpenFolder& folder)
{
    const std::string report = folder.At("report.txt");
    DeleteFileA(report.c_str());
    return report;
}

/// Runs the tool of the task scheduler, which every system since XP has.
DWORD Schedule(const std::string& arguments)
{
    const std::string tool = SystemDirectory() + "\\schtasks.exe";
    const StartedProgram started = StartProgram(tool, "\"" + tool + "\" " + arguments, SystemDirectory());
    DWORD exitCode = static_cast<DWORD>(-1);
    if (WaitForSingleObject(started.process.get(), kLimit) == WAIT_OBJECT_0) {
        GetExitCodeProcess(started.process.get(), &exitCode);
    }
    return exitCode;
}

/// A task of the system account that nobody starts but this program.
class SystemTask
{
public:
    explicit SystemTask(const std::string& command)
    {
        // One that an earlier run has left. The oldest scheduler does not replace it by itself.
        Schedule("/delete /f /tn " + std::string(kTask));
        if (Schedule("/create /ru SYSTEM /sc ONSTART /tn " + std::string(kTask) + " /tr " + command) != 0) {
            throw std::runtime_error("the task scheduler does not take the task " + command);
        }
    }
    ~SystemTask() { Schedule("/delete /f /tn " + std::string(kTask)); }
    SystemTask(const SystemTask&) = delete;
    SystemTask& operator=(const SystemTask&) = delete;

    void Start() const
    {
        if (Schedule("/run /tn " + std::string(kTask)) != 0) {
            throw std::runtime_error("the task scheduler does not start the task");
        }
    }
};

// The policies for passwords ask for letters of both cases, digits, signs and a length.
std::wstring MakePassword()
{
    GUID random{};
    CoCreateGuid(&random);
    std::array<wchar_t, 40> text{};
    StringFromGUID2(random, text.data(), static_cast<int>(text.size()));
    return L"aZ9" + std::wstring(text.data(), 1, 36);
}

constexpr wchar_t kUser[] = L"morvix-proof";

/// The local group of all users has another name in other languages.
std::wstring UsersGroup()
{
    std::array<BYTE, SECURITY_MAX_SID_SIZE> sid{};
    auto bytes = static_cast<DWORD>(sid.size());
    std::array<wchar_t, 256> name{};
    auto nameChars = static_cast<DWORD>(name.size());
    std::array<wchar_t, 256> domain{};
    auto domainChars = static_cast<DWORD>(domain.size());
    SID_NAME_USE use{};
    if (CreateWellKnownSid(WinBuiltinUsersSid, nullptr, sid.data(), &bytes) == FALSE ||
        LookupAccountSidW(nullptr, sid.data(), name.data(), &nameChars, domain.data(), &domainChars, &use) == FALSE) {
        throw std::runtime_error("the group of all users is not known, error " + std::to_string(GetLastError()));
    }
    return name.data();
}
} // namespace

std::optional<std::string> WhyNoTaskAsSystem()
{
    if (RunsInWine()) {
        return "Wine has no task scheduler: use a Windows";
    }
    return std::nullopt;
}

ChildReport DoAsSystem(const OpenFolder& folder, const std::vector<std::string>& taskAndArguments)
{
    const std::string report = ReportIn(folder);
    // The schedulers of different systems read quotation marks differently; the command has none.
    WriteFileBytes(folder.At("task.cmd"), "@" + ChildCommandLine(folder.Program(), report, taskAndArguments) + "\r\n");
    const SystemTask task(folder.At("task.cmd"));
    task.Start();
    for (const DWORD start = GetTickCount(); GetTickCount() - start < kLimit; Sleep(100)) {
        if (FileExists(report)) {
            return DecodeReport(ReadFileBytes(report));
        }
    }
    throw std::runtime_error("the task leaves no report");
}

std::optional<std::string> WhyNoOtherUser()
{
    if (RunsInWine()) {
        return "Wine has one user only: use a Windows";
    }
    if (OwnVersionOfTheSystem().productType == VER_NT_DOMAIN_CONTROLLER) {
        return "a domain controller has no local users: use another machine";
    }
    if (RunsAsSystem()) {
        return "the system account cannot start a program as another user: run it as an administrator";
    }
    return std::nullopt;
}

TemporaryUser::TemporaryUser() : m_password(MakePassword())
{
    std::wstring name = kUser;
    USER_INFO_1 user{};
    user.usri1_name = name.data();
    user.usri1_password = m_password.data();
    user.usri1_priv = USER_PRIV_USER;
    user.usri1_flags = UF_SCRIPT;
    const DWORD added = NetUserAdd(nullptr, 1, reinterpret_cast<BYTE*>(&user), nullptr);
    if (added != NERR_Success) {
        throw std::runtime_error("cannot add a user, error " + std::to_string(added));
    }
    // Only members of the group may log on here.
    LOCALGROUP_MEMBERS_INFO_3 member{};
    member.lgrmi3_domainandname = name.data();
    const DWORD joined = NetLocalGroupAddMembers(nullptr, UsersGroup().c_str(), 3, reinterpret_cast<BYTE*>(&member), 1);
    if (joined != NERR_Success && joined != ERROR_MEMBER_IN_ALIAS) {
        NetUserDel(nullptr, kUser);
        throw std::runtime_error("cannot make the user a member, error " + std::to_string(joined));
    }
}

TemporaryUser::~TemporaryUser()
{
    NetUserDel(nullptr, kUser);
}

ChildReport TemporaryUser::Do(const OpenFolder& folder, const std::vector<std::string>& taskAndArguments) const
{
    const std::string report = ReportIn(folder);
    std::wstring commandLine = Wide(ChildCommandLine(folder.Program(), report, taskAndArguments));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (CreateProcessWithLogonW(kUser, L".", m_password.c_str(), 0, nullptr, commandLine.data(), CREATE_NO_WINDOW,
                                nullptr, Wide(folder.Path()).c_str(), &startup, &started) == FALSE) {
        throw std::runtime_error("nothing starts as the user, error " + std::to_string(GetLastError()));
    }
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    return WaitForReport(process.get(), report);
}
