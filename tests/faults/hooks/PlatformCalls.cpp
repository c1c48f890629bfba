#include "PlatformCalls.h"

#include <algorithm>

namespace {
using enum CallKind;

// Errors as the platform reports them.
constexpr std::uint32_t kNotFound = 2, kPathNotFound = 3, kAccessDenied = 5, kInvalidHandle = 6, kNoMemory = 8;
constexpr std::uint32_t kGeneralFailure = 31, kInvalidParameter = 87, kModuleNotFound = 126, kProcedureNotFound = 127;
constexpr std::uint32_t kNoMoreFiles = 18, kNoResources = 1450, kNotSupported = 50, kInvalidData = 13;
constexpr std::uint64_t kInvalidHandleValue = ~std::uint64_t{0};
constexpr std::uint64_t kWaitFailed = 0xFFFFFFFF;
constexpr std::uint32_t kOutOfMemoryStatus = 0x8007000E;
constexpr std::uint64_t kOutOfMemoryResult = kOutOfMemoryStatus;

constexpr Label Text(std::uint8_t argument)
{
    return {LabelPart::Text, argument};
}
constexpr Label WideText(std::uint8_t argument)
{
    return {LabelPart::WideText, argument};
}
constexpr Label Number(std::uint8_t argument)
{
    return {LabelPart::Number, argument};
}
constexpr Label Owned(std::uint8_t argument)
{
    return {LabelPart::Owned, argument};
}
constexpr Label SizeOnly(std::uint8_t argument)
{
    return {LabelPart::SizeOnly, argument};
}
constexpr Label Message(std::uint8_t argument)
{
    return {LabelPart::Message, argument};
}

/// Returns its status.
constexpr PlatformCall Status(std::string_view name, std::uint32_t status, Label first = {}, Label second = {})
{
    return {name, Fails, status, 0, {first, second}};
}
/// Returns 0, FALSE or null and leaves an error.
constexpr PlatformCall Zero(std::string_view name, std::uint32_t error, Label first = {}, Label second = {})
{
    return {name, Fails, 0, error, {first, second}};
}
constexpr PlatformCall Answer(std::string_view name, std::uint64_t result, std::uint32_t error, Label first = {},
                              Label second = {})
{
    return {name, Fails, result, error, {first, second}};
}
constexpr PlatformCall Of(CallKind kind, std::string_view name)
{
    return {name, kind, 0, 0, {}};
}

constexpr std::array kCalls = std::to_array<PlatformCall>({
    // Registry
    Status("RegOpenKeyA", kAccessDenied, Text(1)),
    Status("RegOpenKeyExA", kAccessDenied, Text(1)),
    Status("RegCreateKeyA", kAccessDenied, Text(1)),
    Status("RegCreateKeyExA", kAccessDenied, Text(1)),
    Status("RegQueryValueExA", kNoResources, Text(1), SizeOnly(4)),
    Status("RegSetValueExA", kAccessDenied, Text(1)),
    Status("RegDeleteValueA", kAccessDenied, Text(1)),
    Status("RegEnumKeyExA", kNoResources, Owned(0), Number(1)),
    Status("RegCloseKey", kInvalidHandle, Owned(0)),
    Of(Unused, "RegDeleteKeyA"),
    Of(Unused, "RegEnumValueA"),
    Of(Unused, "RegFlushKey"),

    // Security
    Zero("OpenThreadToken", kAccessDenied),
    Zero("OpenProcessToken", kAccessDenied, Number(1)),
    Zero("GetTokenInformation", kAccessDenied, SizeOnly(2)),
    Zero("AllocateAndInitializeSid", kNoMemory),
    Zero("LookupPrivilegeValueA", 1313, Text(1)),
    Zero("AdjustTokenPrivileges", kAccessDenied),
    Of(Sure, "EqualSid"),
    Of(Sure, "FreeSid"),
    Of(Unused, "OpenSCManagerA"),
    Of(Unused, "OpenServiceA"),
    Of(Unused, "QueryServiceStatus"),
    Of(Unused, "StartServiceA"),
    Of(Unused, "ControlService"),
    Of(Unused, "CloseServiceHandle"),
    // Random numbers, under the name that the system library exports them by: the stack guard's, then the runtime's.
    Zero("SystemFunction036", 0),
    Of(Unused, "CryptAcquireContextA"),
    Of(Unused, "CryptGenRandom"),
    Of(Unused, "CryptReleaseContext"),

    // Files and directories
    Answer("CreateFileA", kInvalidHandleValue, kAccessDenied, Text(0)),
    Zero("ReadFile", kGeneralFailure, Owned(0)),
    Zero("CopyFileA", kAccessDenied, Text(0)),
    Zero("CreateDirectoryA", kAccessDenied, Text(0)),
    Answer("FindFirstFileA", kInvalidHandleValue, kAccessDenied, Text(0)),
    Zero("FindNextFileA", kGeneralFailure, Owned(0)),
    Zero("FindClose", kInvalidHandle, Owned(0)),
    Answer("GetFileAttributesA", 0xFFFFFFFF, kAccessDenied, Text(0)),
    Zero("GetFileAttributesExA", kAccessDenied, Text(0)),
    Zero("SetFileAttributesA", kAccessDenied, Text(0)),
    Zero("GetCurrentDirectoryA", kAccessDenied),
    Zero("SetCurrentDirectoryA", kAccessDenied, Text(0)),
    Zero("GetSystemDirectoryA", kAccessDenied),
    Zero("GetWindowsDirectoryA", kAccessDenied),
    Zero("GetShortPathNameA", kAccessDenied, Text(0)),
    Zero("DeviceIoControl", kNotSupported, Number(1)),
    Zero("GetOverlappedResult", kGeneralFailure),
    Zero("GetFileVersionInfoSizeA", kNotFound, Text(0)),
    Zero("GetFileVersionInfoA", kInvalidData, Text(0)),
    Zero("VerQueryValueA", 0),

    // Profile files: a file or section that cannot be read reads as empty.
    Zero("GetPrivateProfileStringA", kAccessDenied, Text(0), Text(1)),
    Zero("GetPrivateProfileSectionA", kAccessDenied, Text(0)),

    // Libraries and entry points
    Zero("LoadLibraryA", kModuleNotFound, Text(0)),
    Zero("LoadLibraryExA", kModuleNotFound, Text(0)),
    Zero("LoadLibraryW", kModuleNotFound, WideText(0)),
    Zero("FreeLibrary", kInvalidHandle, Owned(0)),
    Zero("GetModuleHandleA", kModuleNotFound, Text(0)),
    Zero("FindActCtxSectionStringA", 14001, Text(3)),
    Zero("GetProcAddress", kProcedureNotFound, Text(1)),
    Zero("FindResourceExA", 1814, Number(2)),
    Zero("LoadResource", 1812),
    Zero("LockResource", 0),
    Zero("SizeofResource", 1812),

    // Processes, threads, locks
    Zero("CreateProcessA", kNotFound, Text(1)),
    Zero("CreateThread", kNoMemory),
    Zero("CreateMutexA", kAccessDenied, Text(2)),
    Zero("ReleaseMutex", 288, Owned(0)),
    Zero("CreateEventA", kNoMemory),
    Answer("WaitForSingleObject", kWaitFailed, kInvalidHandle, Owned(0)),
    Answer("MsgWaitForMultipleObjects", kWaitFailed, kInvalidHandle),
    Zero("CloseHandle", kInvalidHandle, Owned(0)),

    // Windows
    Zero("RegisterWindowMessageA", kNoMemory),
    Zero("RegisterClassA", 1410),
    Zero("LoadCursorA", 1814),
    Zero("FindWindowA", kNotFound),
    Zero("CreateDialogParamA", 1813),
    Answer("GetMessageA", 0xFFFFFFFF, 1400),
    Zero("IsDialogMessageA", 0),
    Zero("PostMessageA", 1816, Message(1)),
    Zero("SendMessageA", 0, Number(1)),
    Zero("GetDlgItem", 1421, Number(1)),
    Zero("SetDlgItemTextA", 1421, Number(1)),
    Zero("SetWindowTextA", 1400, Text(1)),
    Zero("SetTimer", kNoMemory, Number(1)),
    Zero("KillTimer", kInvalidParameter, Number(1)),
    Zero("DestroyWindow", 1400),
    Zero("MessageBoxA", kNoMemory, Text(1)),
    Zero("ExitWindowsEx", 1314),
    Zero("wsprintfA", 0),
    Of(Sure, "DefDlgProcA"),
    Of(Sure, "DispatchMessageA"),
    Of(Sure, "TranslateMessage"),
    // Both answer what was before.
    Of(Sure, "EnableWindow"),
    Of(Sure, "ShowWindow"),
    Of(Sure, "ShowWindowAsync"),
    Of(Sure, "IsWindowEnabled"),
    Of(Sure, "PeekMessageA"),
    Of(Sure, "PostQuitMessage"),
    Of(Unused, "LoadStringA"),
    // Made only when the message queue is full.
    Of(Unused, "SendNotifyMessageA"),

    // Devices
    Answer("SetupDiGetClassDevsA", kInvalidHandleValue, kGeneralFailure),
    Zero("SetupDiEnumDeviceInfo", kGeneralFailure, Number(1)),
    Zero("SetupDiGetDeviceRegistryPropertyA", kInvalidData, Number(2)),
    Zero("SetupDiDestroyDeviceInfoList", kInvalidHandle),

    // COM
    Status("CoInitializeEx", static_cast<std::uint32_t>(kOutOfMemoryResult)),
    Status("CoInitializeSecurity", static_cast<std::uint32_t>(kOutOfMemoryResult)),
    Of(Sure, "CoUninitialize"),
    Of(Unused, "CoCreateInstance"),
    Of(Unused, "CoSetProxyBlanket"),
    Of(Unused, "SysAllocString"),
    Of(Unused, "SysFreeString"),

    // The system
    Zero("GetVersionExA", 122),
    Zero("VerifyVersionInfoA", 1150),
    Zero("FormatMessageA", kNoMemory),
    Zero("MultiByteToWideChar", 1113),
    Zero("WideCharToMultiByte", 122),
    Answer("LocalFree", 1, kInvalidHandle),
    Of(Sure, "VerSetConditionMask"),
    Of(Sure, "GetSystemDefaultLangID"),
    Of(Sure, "GetThreadLocale"),
    Zero("SetThreadLocale", kInvalidParameter),
    Zero("SetThreadPreferredUILanguages", kInvalidParameter),
    Of(Sure, "GetTickCount"),
    Zero("ProcessIdToSessionId", kAccessDenied),
    Zero("GetProcessWindowStation", kAccessDenied),
    Zero("GetUserObjectInformationA", kInvalidHandle),
    // Its result is the mode before, and it does not fail.
    Of(Sure, "SetupSetNonInteractiveMode"),
    Of(Sure, "IsDBCSLeadByte"),
    Of(Sure, "GetACP"),
    Of(Sure, "lstrcmpA"),
    Of(Sure, "OutputDebugStringA"),
    Zero("SetDllDirectoryA", kNoMemory),
    Zero("SetThreadStackGuarantee", kInvalidParameter),
    Status("WerSetFlags", kOutOfMemoryStatus),
    Of(Unused, "GetModuleFileNameA"),
    Of(Unused, "GetModuleHandleExA"),
    Of(Sure, "SetErrorMode"),
    Of(Sure, "GetLastError"),
    Of(Sure, "SetLastError"),
    Of(Sure, "GetCurrentProcess"),
    Of(Sure, "GetCurrentProcessId"),
    Of(Sure, "GetCurrentThread"),
    Of(Sure, "GetCurrentThreadId"),
    Of(Sure, "TerminateProcess"),
    Of(Unused, "ExpandEnvironmentStringsA"),
    Of(Unused, "GetLocaleInfoA"),
    Of(Unused, "GetLocalTime"),

    // Memory
    Zero("malloc", 0),
    Of(Unused, "calloc"),
    Of(Unused, "realloc"),

    // The language runtime
    Of(Runtime, "AddVectoredExceptionHandler"),
    Of(Runtime, "CreateSemaphoreA"),
    Of(Runtime, "CreateSemaphoreW"),
    Of(Runtime, "DeleteCriticalSection"),
    Of(Runtime, "DuplicateHandle"),
    Of(Runtime, "EnterCriticalSection"),
    Of(Runtime, "GetEnvironmentVariableA"),
    Of(Runtime, "GetHandleInformation"),
    Of(Runtime, "GetModuleHandleW"),
    Of(Runtime, "GetProcessAffinityMask"),
    Of(Runtime, "GetStartupInfoA"),
    Of(Runtime, "GetSystemTimeAsFileTime"),
    Of(Runtime, "GetThreadContext"),
    Of(Runtime, "GetThreadPriority"),
    Of(Runtime, "GetTickCount64"),
    Of(Runtime, "InitializeCriticalSection"),
    Of(Runtime, "IsDBCSLeadByteEx"),
    Of(Runtime, "IsDebuggerPresent"),
    Of(Runtime, "LeaveCriticalSection"),
    Of(Runtime, "OpenProcess"),
    Of(Runtime, "QueryPerformanceCounter"),
    Of(Runtime, "RaiseException"),
    Of(Runtime, "ReleaseSemaphore"),
    Of(Runtime, "RemoveVectoredExceptionHandler"),
    Of(Runtime, "ResetEvent"),
    Of(Runtime, "ResumeThread"),
    Of(Runtime, "RtlCaptureContext"),
    Of(Runtime, "RtlLookupFunctionEntry"),
    Of(Runtime, "RtlUnwindEx"),
    Of(Runtime, "RtlVirtualUnwind"),
    Of(Runtime, "SetEvent"),
    Of(Runtime, "SetProcessAffinityMask"),
    Of(Runtime, "SetThreadContext"),
    Of(Runtime, "SetThreadPriority"),
    Of(Runtime, "SetUnhandledExceptionFilter"),
    Of(Runtime, "Sleep"),
    Of(Runtime, "SuspendThread"),
    Of(Runtime, "TlsAlloc"),
    Of(Runtime, "TlsFree"),
    Of(Runtime, "TlsGetValue"),
    Of(Runtime, "TlsSetValue"),
    Of(Runtime, "TryEnterCriticalSection"),
    Of(Runtime, "VirtualProtect"),
    Of(Runtime, "VirtualQuery"),
    Of(Runtime, "WaitForMultipleObjects"),
    Of(Runtime, "__C_specific_handler"),
    Of(Runtime, "_set_error_mode"),
    Of(Runtime, "___lc_codepage_func"),
    Of(Runtime, "___mb_cur_max_func"),
    Of(Runtime, "__getmainargs"),
    Of(Runtime, "__iob_func"),
    Of(Runtime, "__set_app_type"),
    Of(Runtime, "__setusermatherr"),
    Of(Runtime, "_amsg_exit"),
    Of(Runtime, "_beginthreadex"),
    Of(Runtime, "_cexit"),
    Of(Runtime, "_endthreadex"),
    Of(Runtime, "_errno"),
    Of(Runtime, "_exit"),
    Of(Runtime, "_filelengthi64"),
    Of(Runtime, "_fileno"),
    Of(Runtime, "_initterm"),
    Of(Runtime, "_mbsicmp"),
    Of(Runtime, "_mbsstr"),
    Of(Runtime, "_onexit"),
    Of(Runtime, "_setjmp"),
    Of(Runtime, "_snprintf"),
    Of(Runtime, "_strlwr"),
    Of(Runtime, "_strupr"),
    Of(Runtime, "_ultoa"),
    Of(Runtime, "_vsnprintf"),
    Of(Runtime, "abort"),
    Of(Runtime, "atoi"),
    Of(Runtime, "exit"),
    Of(Runtime, "fclose"),
    Of(Runtime, "fflush"),
    Of(Runtime, "fopen"),
    Of(Runtime, "fprintf"),
    Of(Runtime, "fputc"),
    Of(Runtime, "fputs"),
    Of(Runtime, "free"),
    Of(Runtime, "fwrite"),
    Of(Runtime, "localeconv"),
    Of(Runtime, "memchr"),
    Of(Runtime, "memcmp"),
    Of(Runtime, "memcpy"),
    Of(Runtime, "memmove"),
    Of(Runtime, "memset"),
    Of(Runtime, "printf"),
    Of(Runtime, "signal"),
    Of(Runtime, "strchr"),
    Of(Runtime, "strcmp"),
    Of(Runtime, "strerror"),
    Of(Runtime, "strlen"),
    Of(Runtime, "strncmp"),
    Of(Runtime, "strrchr"),
    Of(Runtime, "vfprintf"),
    Of(Runtime, "wcslen"),
    Of(Runtime, "longjmp"),
    Of(Runtime, "_write"),
    Of(Runtime, "_strdup"),
    Of(Runtime, "_read"),
    Of(Runtime, "_open"),
    Of(Runtime, "_close"),
    Of(Data, "__argc"),
    Of(Data, "__argv"),
    Of(Data, "__initenv"),
    Of(Data, "_acmdln"),
    Of(Data, "_commode"),
    Of(Data, "_fmode"),

    // Entry points looked up at run time
    Of(Sure, "GetNativeSystemInfo"),
    Zero("InitCommonControlsEx", 0),
    Zero("SetupCopyOEMInfA", kAccessDenied),
    Zero("SRSetRestorePointW", kAccessDenied),
    Zero("UpdateDriverForPlugAndPlayDevicesA", kNotFound),
    Status("CM_Locate_DevNodeA", 0x0D),
    Status("CM_Reenumerate_DevNode", 0x13),
    Status("DllGetClassFactoryObject", static_cast<std::uint32_t>(kOutOfMemoryResult), Text(0)),
    Status("NORDA_InitializeLibrary", 1),
    Status("HBA_RegisterLibrary", 1),
    Status("NORDA_GetFCoEControllerInfo", 1),
    Status("NORDA_GetFCoEControllerHandle", 0),
    Status("NORDA_GetFCAndNICProperties", 1),
    Status("GetIScsiVersionInformation", 1),
});
} // namespace

std::span<const PlatformCall> PlatformCalls()
{
    return kCalls;
}

const PlatformCall* FindPlatformCall(std::string_view name)
{
    const auto* const row = std::ranges::find(kCalls, name, &PlatformCall::name);
    return row == kCalls.end() ? nullptr : row;
}
