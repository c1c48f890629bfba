#include "TrackedCalls.h"

#include <windows.h>
// The headers below need windows.h first.
#include <objbase.h>
#include <setupapi.h>

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include "ImportHooks.h"
#include "Journal.h"
#include "User.h"

namespace {
std::string TextOr(const char* text, const char* otherwise = "")
{
    return text == nullptr ? otherwise : text;
}

void Effect(const std::string& text)
{
    const DWORD lastError = GetLastError();
    WriteLine('E', text);
    SetLastError(lastError);
}

/// Notes a handle when the call gave one.
template <class Handle>
Handle Opened(HandleKind kind, Handle handle, const std::string& label)
{
    const DWORD lastError = GetLastError();
    if (handle != nullptr && std::bit_cast<HANDLE>(handle) != INVALID_HANDLE_VALUE) {
        Own(kind, std::bit_cast<const void*>(handle), label);
    }
    SetLastError(lastError);
    return handle;
}

template <class Handle>
void Closing(HandleKind kind, Handle handle)
{
    const DWORD lastError = GetLastError();
    Disown(kind, std::bit_cast<const void*>(handle));
    SetLastError(lastError);
}

// --- registry

LSTATUS WINAPI OpenKey(HKEY root, LPCSTR path, PHKEY key)
{
    const LSTATUS status = RegOpenKeyA(root, path, key);
    if (status == ERROR_SUCCESS) {
        Opened(HandleKind::RegistryKey, *key, TextOr(path));
    }
    return status;
}

LSTATUS WINAPI OpenKeyEx(HKEY root, LPCSTR path, DWORD options, REGSAM access, PHKEY key)
{
    const LSTATUS status = RegOpenKeyExA(root, path, options, access, key);
    if (status == ERROR_SUCCESS) {
        Opened(HandleKind::RegistryKey, *key, TextOr(path));
    }
    return status;
}

LSTATUS WINAPI CreateKey(HKEY root, LPCSTR path, PHKEY key)
{
    const LSTATUS status = RegCreateKeyA(root, path, key);
    if (status == ERROR_SUCCESS) {
        Opened(HandleKind::RegistryKey, *key, TextOr(path));
    }
    return status;
}

LSTATUS WINAPI CreateKeyEx(HKEY root, LPCSTR path, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                           LPSECURITY_ATTRIBUTES security, PHKEY key, LPDWORD disposition)
{
    const LSTATUS status = RegCreateKeyExA(root, path, reserved, keyClass, options, access, security, key, disposition);
    if (status == ERROR_SUCCESS) {
        Opened(HandleKind::RegistryKey, *key, TextOr(path));
    }
    return status;
}

// Other machines have other PCI devices of their own: only the simulated adapters are listed, so that each call is the
// same call everywhere.
LSTATUS WINAPI ListSubKey(HKEY key, DWORD index, LPSTR name, LPDWORD length, LPDWORD reserved, LPSTR keyClass,
                          LPDWORD classLength, PFILETIME written)
{
    const DWORD room = *length;
    if (!LabelOf(key).ends_with(R"(CurrentControlSet\Enum\PCI)")) {
        return RegEnumKeyExA(key, index, name, length, reserved, keyClass, classLength, written);
    }
    constexpr std::string_view kVendor = "VEN_5D1A";
    for (DWORD at = 0, ours = 0;; ++at) {
        *length = room;
        const LSTATUS status = RegEnumKeyExA(key, at, name, length, reserved, keyClass, classLength, written);
        if (status != ERROR_SUCCESS || (std::string_view(name).starts_with(kVendor) && ours++ == index)) {
            return status;
        }
    }
}

LSTATUS WINAPI CloseRegistryKey(HKEY key)
{
    Closing(HandleKind::RegistryKey, key);
    return RegCloseKey(key);
}

// --- kernel objects

HANDLE WINAPI OpenFileHandle(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                             DWORD flags, HANDLE like)
{
    return Opened(HandleKind::Kernel, CreateFileA(path, access, share, security, disposition, flags, like),
                  "file " + TextOr(path));
}

HANDLE WINAPI MakeEvent(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL set, LPCSTR name)
{
    return Opened(HandleKind::Kernel, CreateEventA(security, manual, set, name), "event");
}

HANDLE WINAPI MakeMutex(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCSTR name)
{
    return Opened(HandleKind::Kernel, CreateMutexA(security, owned, name), "mutex " + TextOr(name));
}

BOOL WINAPI OpenProcessTokenHandle(HANDLE process, DWORD access, PHANDLE token)
{
    const BOOL opened = OpenProcessToken(process, access, token);
    if (opened != FALSE) {
        Opened(HandleKind::Kernel, *token, "token");
    }
    return opened;
}

BOOL WINAPI OpenThreadTokenHandle(HANDLE thread, DWORD access, BOOL asSelf, PHANDLE token)
{
    const BOOL opened = OpenThreadToken(thread, access, asSelf, token);
    if (opened != FALSE) {
        Opened(HandleKind::Kernel, *token, "token");
    }
    return opened;
}

// The language runtime keeps an event and a handle for each thread that it did not start, the main thread's to the end.
BOOL WINAPI CopyHandle(HANDLE fromProcess, HANDLE handle, HANDLE toProcess, PHANDLE copy, DWORD access, BOOL inherit,
                       DWORD options)
{
    const BOOL copied = DuplicateHandle(fromProcess, handle, toProcess, copy, access, inherit, options);
    if (copied != FALSE) {
        Opened(HandleKind::Kernel, *copy, kRuntimes);
        RelabelLast(HandleKind::Kernel, "event", kRuntimes);
    }
    return copied;
}

// No program is started: what would wait for it finds that it has ended.
BOOL WINAPI StartProgram(LPCSTR /*program*/, LPSTR commandLine, LPSECURITY_ATTRIBUTES /*processSecurity*/,
                         LPSECURITY_ATTRIBUTES /*threadSecurity*/, BOOL /*inherit*/, DWORD flags,
                         LPVOID /*environment*/, LPCSTR /*directory*/, LPSTARTUPINFOA /*startup*/,
                         LPPROCESS_INFORMATION process)
{
    Effect("starts " + TextOr(commandLine) + ", flags " + std::to_string(flags));
    process->hProcess = Opened(HandleKind::Kernel, CreateEventA(nullptr, TRUE, TRUE, nullptr), "process");
    process->hThread = Opened(HandleKind::Kernel, CreateEventA(nullptr, TRUE, TRUE, nullptr), "process's thread");
    return TRUE;
}

HANDLE WINAPI StartThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID parameter,
                          DWORD flags, LPDWORD id)
{
    const HANDLE thread = CreateThread(security, stack, start, parameter, flags, id);
    const DWORD lastError = GetLastError();
    TellInstallThread(thread);
    SetLastError(lastError);
    return Opened(HandleKind::Kernel, thread, "install thread");
}

DWORD WINAPI Await(HANDLE handle, DWORD milliseconds)
{
    if (milliseconds == 0 && LabelOf(handle) == "install thread") {
        // Asked whether it still runs.
        AwaitInstallThread();
    }
    return WaitForSingleObject(handle, milliseconds);
}

BOOL WINAPI CloseKernelHandle(HANDLE handle)
{
    Closing(HandleKind::Kernel, handle);
    return CloseHandle(handle);
}

// --- searches, libraries, devices, memory

HANDLE WINAPI StartSearch(LPCSTR pattern, LPWIN32_FIND_DATAA found)
{
    return Opened(HandleKind::Search, FindFirstFileA(pattern, found), "search " + TextOr(pattern));
}

BOOL WINAPI EndSearch(HANDLE search)
{
    Closing(HandleKind::Search, search);
    return FindClose(search);
}

HMODULE WINAPI Load(LPCSTR path)
{
    return Opened(HandleKind::Library, LoadLibraryA(path), "library " + TextOr(path));
}

HMODULE WINAPI LoadFrom(LPCSTR path, HANDLE file, DWORD flags)
{
    return Opened(HandleKind::Library, LoadLibraryExA(path, file, flags), "library " + TextOr(path));
}

HMODULE WINAPI LoadWide(LPCWSTR path)
{
    std::string narrow;
    for (const wchar_t* at = path; *at != L'\0'; ++at) {
        narrow += static_cast<char>(*at);
    }
    return Opened(HandleKind::Library, LoadLibraryW(path), "library " + narrow);
}

BOOL WINAPI Unload(HMODULE library)
{
    Closing(HandleKind::Library, library);
    return FreeLibrary(library);
}

FARPROC WINAPI FindEntryPoint(HMODULE library, LPCSTR name)
{
    const FARPROC found = GetProcAddress(library, name);
    if (found == nullptr || reinterpret_cast<std::uint64_t>(name) <= 0xFFFF) {
        return found;
    }
    const DWORD lastError = GetLastError();
    const auto hooked = std::bit_cast<FARPROC>(HookEntryPoint(name, std::bit_cast<void*>(found)));
    SetLastError(lastError);
    return hooked;
}

HDEVINFO WINAPI ListDevices(const GUID* deviceClass, PCSTR enumerator, HWND parent, DWORD flags)
{
    return Opened(HandleKind::DeviceList, SetupDiGetClassDevsA(deviceClass, enumerator, parent, flags), "device list");
}

BOOL WINAPI EndDeviceList(HDEVINFO list)
{
    Closing(HandleKind::DeviceList, list);
    return SetupDiDestroyDeviceInfoList(list);
}

DWORD WINAPI Format(DWORD flags, LPCVOID source, DWORD message, DWORD language, LPSTR buffer, DWORD size,
                    va_list* arguments)
{
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) != 0) {
        // The system's own texts differ from one system and language to the next.
        const std::string text = "text of error " + std::to_string(message);
        auto* const made = static_cast<char*>(LocalAlloc(LMEM_FIXED, text.size() + 1));
        std::copy_n(text.c_str(), text.size() + 1, made);
        *reinterpret_cast<char**>(buffer) = Opened(HandleKind::Memory, made, "message text");
        return static_cast<DWORD>(text.size());
    }
    const DWORD length = FormatMessageA(flags, source, message, language, buffer, size, arguments);
    if (length != 0 && (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0) {
        Opened(HandleKind::Memory, *reinterpret_cast<void**>(buffer), "message text");
    }
    return length;
}

HLOCAL WINAPI FreeLocalMemory(HLOCAL memory)
{
    Closing(HandleKind::Memory, memory);
    return LocalFree(memory);
}

BOOL WINAPI MakeSid(PSID_IDENTIFIER_AUTHORITY authority, BYTE count, DWORD a, DWORD b, DWORD c, DWORD d, DWORD e,
                    DWORD f, DWORD g, DWORD h, PSID* sid)
{
    const BOOL made = AllocateAndInitializeSid(authority, count, a, b, c, d, e, f, g, h, sid);
    if (made != FALSE) {
        Opened(HandleKind::Sid, *sid, "administrators");
    }
    return made;
}

PVOID WINAPI EndSid(PSID sid)
{
    Closing(HandleKind::Sid, sid);
    return FreeSid(sid);
}

const void* ComOfThread()
{
    return reinterpret_cast<const void*>(static_cast<std::uint64_t>(CurrentCallThread()));
}

HRESULT WINAPI BeginCom(LPVOID reserved, DWORD mode)
{
    const HRESULT result = CoInitializeEx(reserved, mode);
    if (SUCCEEDED(result)) {
        Opened(HandleKind::Com, ComOfThread(), "COM");
    }
    return result;
}

void WINAPI EndCom()
{
    Closing(HandleKind::Com, ComOfThread());
    CoUninitialize();
}

// --- what the user and the system see

void WINAPI TraceLine(LPCSTR text)
{
    Effect("trace " + TextOr(text));
}

int WINAPI ShowBox(HWND /*owner*/, LPCSTR text, LPCSTR caption, UINT type)
{
    Effect("box [" + TextOr(caption) + "] " + TextOr(text));
    return (type & MB_TYPEMASK) == MB_YESNO ? IDYES : IDOK;
}

BOOL WINAPI SetControlText(HWND dialog, int control, LPCSTR text)
{
    Effect("control " + std::to_string(control) + ": " + TextOr(text));
    return SetDlgItemTextA(dialog, control, text);
}

UINT_PTR WINAPI StartTimer(HWND window, UINT_PTR timer, UINT milliseconds, TIMERPROC procedure)
{
    Effect("timer " + std::to_string(timer) + ": " + std::to_string(milliseconds));
    TellTimer(timer);
    // The countdown is waited for: it runs a hundred times as fast.
    return SetTimer(window, timer, milliseconds / 100, procedure);
}

BOOL WINAPI AskForRestart(UINT flags, DWORD /*reason*/)
{
    Effect("restart, flags " + std::to_string(flags));
    // The system would end the program now.
    CloseDialog();
    return TRUE;
}

HWND WINAPI MakeDialog(HINSTANCE library, LPCSTR name, HWND owner, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog = CreateDialogParamA(library, name, owner, procedure, parameter);
    const DWORD lastError = GetLastError();
    TellDialog(dialog);
    SetLastError(lastError);
    return dialog;
}

BOOL WINAPI TakeMessage(LPMSG message, HWND window, UINT first, UINT last)
{
    const BOOL more = GetMessageA(message, window, first, last);
    if (more > 0) {
        ActForUser(*message);
    }
    return more;
}

// The INF store of the machine stays as it is.
BOOL WINAPI StoreInf(PCSTR infPath, PCSTR sourceDirectory, DWORD mediaType, DWORD style, PSTR name, DWORD nameBytes,
                     PDWORD /*needed*/, PSTR* /*component*/)
{
    Effect("stores " + TextOr(infPath) + " from " + TextOr(sourceDirectory) + ", " + std::to_string(mediaType) + ", " +
           std::to_string(style));
    lstrcpynA(name, R"(C:\windows\inf\oem1.inf)", static_cast<int>(nameBytes));
    SetLastError(ERROR_SUCCESS);
    return TRUE;
}

struct Row
{
    std::string_view name;
    const void* function;
};

template <class Function>
const void* Address(Function* function)
{
    return std::bit_cast<const void*>(function);
}

const std::array kRows = std::to_array<Row>({
    {"RegOpenKeyA", Address(OpenKey)},
    {"RegOpenKeyExA", Address(OpenKeyEx)},
    {"RegCreateKeyA", Address(CreateKey)},
    {"RegCreateKeyExA", Address(CreateKeyEx)},
    {"RegEnumKeyExA", Address(ListSubKey)},
    {"RegCloseKey", Address(CloseRegistryKey)},
    {"CreateFileA", Address(OpenFileHandle)},
    {"CreateEventA", Address(MakeEvent)},
    {"CreateMutexA", Address(MakeMutex)},
    {"OpenProcessToken", Address(OpenProcessTokenHandle)},
    {"OpenThreadToken", Address(OpenThreadTokenHandle)},
    {"DuplicateHandle", Address(CopyHandle)},
    {"CreateProcessA", Address(StartProgram)},
    {"CreateThread", Address(StartThread)},
    {"WaitForSingleObject", Address(Await)},
    {"CloseHandle", Address(CloseKernelHandle)},
    {"FindFirstFileA", Address(StartSearch)},
    {"FindClose", Address(EndSearch)},
    {"LoadLibraryA", Address(Load)},
    {"LoadLibraryExA", Address(LoadFrom)},
    {"LoadLibraryW", Address(LoadWide)},
    {"FreeLibrary", Address(Unload)},
    {"GetProcAddress", Address(FindEntryPoint)},
    {"SetupDiGetClassDevsA", Address(ListDevices)},
    {"SetupDiDestroyDeviceInfoList", Address(EndDeviceList)},
    {"FormatMessageA", Address(Format)},
    {"LocalFree", Address(FreeLocalMemory)},
    {"AllocateAndInitializeSid", Address(MakeSid)},
    {"FreeSid", Address(EndSid)},
    {"CoInitializeEx", Address(BeginCom)},
    {"CoUninitialize", Address(EndCom)},
    {"OutputDebugStringA", Address(TraceLine)},
    {"MessageBoxA", Address(ShowBox)},
    {"SetDlgItemTextA", Address(SetControlText)},
    {"SetTimer", Address(StartTimer)},
    {"ExitWindowsEx", Address(AskForRestart)},
    {"CreateDialogParamA", Address(MakeDialog)},
    {"GetMessageA", Address(TakeMessage)},
    {"SetupCopyOEMInfA", Address(StoreInf)},
});

struct Closer
{
    std::string_view name;
    HandleKind kind;
};
constexpr std::array kClosers = std::to_array<Closer>({
    {"RegCloseKey", HandleKind::RegistryKey},
    {"CloseHandle", HandleKind::Kernel},
    {"FindClose", HandleKind::Search},
    {"FreeLibrary", HandleKind::Library},
    {"SetupDiDestroyDeviceInfoList", HandleKind::DeviceList},
    {"LocalFree", HandleKind::Memory},
});
} // namespace

const void* TrackedCallFor(std::string_view name)
{
    const auto* const row = std::ranges::find(kRows, name, &Row::name);
    return row == kRows.end() ? nullptr : row->function;
}

void GiveBackInVain(std::string_view name, const void* handle)
{
    const auto* const closer = std::ranges::find(kClosers, name, &Closer::name);
    if (closer != kClosers.end()) {
        Disown(closer->kind, handle);
    }
}
