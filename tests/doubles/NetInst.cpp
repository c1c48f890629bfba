// Stands in for NetInst.dll. Answers (section Answers of NetInst.answers.ini, all optional):
//   Family                     family name written into the record, "Windows Vista" when not given
//   ProberStatus               status of the system prober
//   ProberUpperHalf            upper half of the prober's 64-bit answer, which is not part of the status;
//                              0x12345678 when not given
//   CreateProberStatus, CreateDriverInstallStatus
//                              nonzero: status that goes with the prober or the driver-install interface
//   HandOutFailedFactories=1   a factory comes with its failure status too
//   ProberFactoryStatus        nonzero: the prober's factory cannot be created, with this status
//   DriverInstallFactoryStatus nonzero: the driver-install interface's factory cannot be created, with this status
//   Impersonate=1              the calling thread gets a token that nobody may open, so that the test for administrator
//                              rights fails by itself
//   InstallStatus<n>, LastError<n>, DebugKey<n>
//                              for the n-th install call, from 1: its status, the last error it leaves, and "create" or
//                              "delete" to switch the installer's trace during the call
//   FaultIn                    "prober" or "install": the call that raises a fault, which Fault names: "access" for a
//                              write to address 0, "division" for a division by 0
//   TellWhoIsAsked=1           each install call journals whether the process's set-up functions ask nobody
//   HoldInstall<n>=1           the n-th install call lasts until the file NetInst.release is beside the library

#include "NetInst.h"

#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <cstring>
#include <string>

#include "Handles.h"
#include "Journal.h"

namespace {
// Places in the 1280-byte record: texts, each with the size of its field in bytes.
constexpr size_t kFamilyOffset = 0, kFamilyBytes = 204;
constexpr size_t kInfOffset = 204, kInfBytes = 256;
constexpr size_t kHardwareIdOffset = 716, kHardwareIdBytes = 300;
constexpr char kDebugKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
constexpr char kSourcePathKey[] = R"(SOFTWARE\Norda\Basedrivers)";

std::string RecordText(const void* record, size_t offset, size_t bytes)
{
    const char* text = static_cast<const char*>(record) + offset;
    return std::string(text, strnlen(text, bytes));
}

std::string DescribeRecord(const void* record)
{
    return "family=[" + RecordText(record, kFamilyOffset, kFamilyBytes) + "] inf=[" +
           RecordText(record, kInfOffset, kInfBytes) + "] id=[" +
           RecordText(record, kHardwareIdOffset, kHardwareIdBytes) + "]";
}

// The uninstaller's source path exists only while an install call runs, so the journal is where it can be seen.
std::string SourcePath()
{
    HKEY opened = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kSourcePathKey, 0, KEY_READ, &opened) != ERROR_SUCCESS) {
        return "<none>";
    }
    const UniqueRegKey key(opened);
    char text[512] = {};
    DWORD bytes = sizeof(text) - 1;
    const LONG error =
        RegQueryValueExA(key.get(), "Tavunstl_source_path", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &bytes);
    return error == ERROR_SUCCESS ? text : "<none>";
}

void TakeAwayTheToken()
{
    HANDLE opened = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_DUPLICATE | TOKEN_QUERY, &opened);
    const UniqueHandle process(opened);
    opened = nullptr;
    const BOOL duplicated = DuplicateTokenEx(process.get(), TOKEN_IMPERSONATE | TOKEN_QUERY, nullptr, SecurityAnonymous,
                                             TokenImpersonation, &opened);
    const UniqueHandle anonymous(opened);
    const bool done = duplicated != FALSE && SetThreadToken(nullptr, anonymous.get()) != FALSE;
    WriteJournal(done ? "impersonating" : "impersonating failed " + Hex(GetLastError()));
}

void SwitchTrace(const std::string& how)
{
    if (how == "create") {
        HKEY key = nullptr;
        if (RegCreateKeyA(HKEY_LOCAL_MACHINE, kDebugKey, &key) == ERROR_SUCCESS) {
            RegCloseKey(key);
        }
    } else if (how == "delete") {
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, kDebugKey);
    }
}

void FaultWhenAskedFor(const char* call)
{
    if (Answer("FaultIn") != call) {
        return;
    }
    WriteJournal(std::string("fault in ") + call);
    // A zero that the compiler does not know of.
    const uint32_t zero = AnswerNumber("NoSuchAnswer");
    if (Answer("Fault") == "division") {
        // At run time, and not worked out by the compiler.
        const volatile uint32_t dividend = 100;
        SetLastError(dividend / zero);
    }
    *reinterpret_cast<volatile int*>(static_cast<uintptr_t>(zero)) = 1;
}

class SysProber final : public ISysProberInterface
{
public:
    int64_t __stdcall IdentifySystem(void* record) override
    {
        const std::string family = Answer("Family", "Windows Vista");
        std::memcpy(record, family.c_str(), family.size() + 1);
        const uint32_t status = AnswerNumber("ProberStatus");
        WriteJournal("IdentifySystem " + Hex(status));
        FaultWhenAskedFor("prober");
        const uint64_t upperHalf = Answer("ProberUpperHalf").empty() ? 0x1234'5678 : AnswerNumber("ProberUpperHalf");
        return static_cast<int64_t>(upperHalf << 32 | status);
    }
    int32_t __stdcall Release() override
    {
        WriteJournal("SysProber Release");
        return 0;
    }
};

class SysProberFactory final : public ISysProberInterfaceFactory
{
public:
    int32_t __stdcall CreateSysProber(ISysProberInterface** out) override
    {
        static SysProber prober;
        WriteJournal("CreateSysProber");
        if (AnswerNumber("Impersonate") != 0) {
            TakeAwayTheToken();
        }
        *out = &prober;
        return static_cast<int32_t>(AnswerNumber("CreateProberStatus"));
    }
    int32_t __stdcall Release() override
    {
        WriteJournal("SysProberFactory Release");
        return 0;
    }
};

class DriverInstall final : public IDriverInstallInterface
{
public:
    int32_t __stdcall AddRef() override
    {
        WriteJournal("DriverInstall AddRef");
        return 1;
    }
    int32_t __stdcall Release() override
    {
        WriteJournal("DriverInstall Release");
        return 0;
    }
    int32_t __stdcall InstallForRecord(void* record, int32_t flags) override
    {
        const std::string call = std::to_string(++m_calls);
        const uint32_t status = AnswerNumber("InstallStatus" + call);
        WriteJournal("InstallForRecord " + DescribeRecord(record) + " flags=" + std::to_string(flags) + " source=[" +
                     SourcePath() + "]");
        FaultWhenAskedFor("install");
        if (AnswerNumber("TellWhoIsAsked") != 0) {
            WriteJournal("SetupGetNonInteractiveMode " + std::to_string(SetupGetNonInteractiveMode()));
        }
        SwitchTrace(Answer("DebugKey" + call));
        if (AnswerNumber("HoldInstall" + call) != 0) {
            HoldUntilThereIs("NetInst.release");
        }
        SetLastError(AnswerNumber("LastError" + call));
        return static_cast<int32_t>(status);
    }

private:
    unsigned m_calls = 0;
};

class DriverInstallFactory final : public IDriverInstallInterfaceFactory
{
public:
    int32_t __stdcall CreateDriverInstall(IDriverInstallInterface** out, void* record) override
    {
        static DriverInstall driverInstall;
        WriteJournal("CreateDriverInstall " + DescribeRecord(record));
        *out = &driverInstall;
        return static_cast<int32_t>(AnswerNumber("CreateDriverInstallStatus"));
    }
    int32_t __stdcall Release() override
    {
        WriteJournal("DriverInstallFactory Release");
        return 0;
    }
};

template <class Factory>
int32_t HandOut(const std::string& statusKey, void** factory)
{
    static Factory instance;
    const uint32_t status = AnswerNumber(statusKey);
    *factory = status == 0 || AnswerNumber("HandOutFailedFactories") != 0 ? &instance : nullptr;
    return static_cast<int32_t>(status);
}
} // namespace

extern "C" __declspec(dllexport) int32_t __stdcall DllGetClassFactoryObject(const char* factoryName, void** factory)
{
    const std::string name = factoryName;
    WriteJournal("DllGetClassFactoryObject " + name);
    if (name == kSysProberFactoryName) {
        return HandOut<SysProberFactory>("ProberFactoryStatus", factory);
    }
    if (name == kDriverInstallFactoryName) {
        return HandOut<DriverInstallFactory>("DriverInstallFactoryStatus", factory);
    }
    *factory = nullptr;
    return static_cast<int32_t>(CLASS_E_CLASSNOTAVAILABLE);
}
