/* Another NetInst.dll, as a maker might write it who knows nothing but the interface: plain C, tables of functions by
   hand, objects that belong to the thread that made them, and its own ways of finding out what the other one finds out.
 */

#include <windows.h>
/* newdev.h needs windows.h first. */
#include <newdev.h>

#include <stdio.h>
#include <string.h>

enum
{
    kFamilyOffset = 0,
    kInfOffset = 204,
    kInfBytes = 256,
    kHardwareIdOffset = 716,
    kHardwareIdBytes = 300,
    kPathBytes = 600,
    kListBytes = 4096
};
#define STATUS_REFUSED ((INT32)0xE0000207)
#define STATUS_NOT_THERE ((INT32)0xE000020B)
#define STATUS_NOT_SERVED 0x80640013u

/* Every object: its table first, then what it needs itself. The interfaces differ in their tables only. */
typedef struct Object
{
    const void* table;
    LONG references;
    DWORD owner;
} Object;

static Object* NewObject(const void* table)
{
    Object* object = (Object*)HeapAlloc(GetProcessHeap(), 0, sizeof(Object));
    if (object != NULL) {
        object->table = table;
        object->references = 1;
        object->owner = GetCurrentThreadId();
    }
    return object;
}

/* An object of this library is called only on its own thread. */
static BOOL IsOwner(const Object* object)
{
    return object->owner == GetCurrentThreadId();
}

static INT32 __stdcall AddRef(Object* self)
{
    return IsOwner(self) ? ++self->references : 0;
}

static INT32 __stdcall Release(Object* self)
{
    LONG left;
    if (!IsOwner(self)) {
        return -1;
    }
    left = --self->references;
    if (left == 0) {
        /* Whoever uses it from here on reads a table that is not there. */
        self->table = NULL;
        HeapFree(GetProcessHeap(), 0, self);
    }
    return left;
}

static void ForgetRestart(void)
{
    HKEY key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Norda\\NetInst", 0, KEY_SET_VALUE, &key) == ERROR_SUCCESS) {
        RegDeleteValueA(key, "RestartNeeded");
        RegCloseKey(key);
    }
}

static INT64 __stdcall IdentifySystem(Object* self, char* record)
{
    /* The upper half is no part of the status. */
    const INT64 upperHalf = (INT64)0x7FFFFFFF << 32;
    OSVERSIONINFOA version;
    if (!IsOwner(self)) {
        return upperHalf | RPC_E_WRONG_THREAD;
    }
    ForgetRestart();
    ZeroMemory(&version, sizeof(version));
    version.dwOSVersionInfoSize = sizeof(version);
    if (!GetVersionExA(&version) || version.dwMajorVersion < 5) {
        return upperHalf | STATUS_NOT_SERVED;
    }
    strcpy(record + kFamilyOffset, version.dwMajorVersion > 5    ? "Windows Vista"
                                   : version.dwMinorVersion == 0 ? "Windows 2000"
                                                                 : "Windows Whistler");
    return upperHalf;
}

/* The device's own key, and in it an instance, are what a device leaves in the registry. */
static BOOL IsKnown(const char* hardwareId)
{
    char path[kPathBytes];
    HKEY key;
    BOOL known = FALSE;
    snprintf(path, sizeof(path), "SYSTEM\\CurrentControlSet\\Enum\\%s", hardwareId);
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key) == ERROR_SUCCESS) {
        known = RegEnumKeyA(key, 0, path, sizeof(path)) == ERROR_SUCCESS;
        RegCloseKey(key);
    }
    return known;
}

/* A package of loose files: every source file lies beside the INF. Answers 0 or what is wrong. */
static DWORD CheckPackage(const char* inf)
{
    static char files[kListBytes];
    char path[kPathBytes];
    const char* line;
    size_t folderChars;
    if (GetFileAttributesA(inf) == INVALID_FILE_ATTRIBUTES) {
        return GetLastError();
    }
    folderChars = (size_t)(strrchr(inf, '\\') + 1 - inf);
    GetPrivateProfileStringA("SourceDisksFiles", NULL, "", files, sizeof(files), inf);
    for (line = files; *line != '\0'; line += strlen(line) + 1) {
        snprintf(path, sizeof(path), "%.*s%s", (int)folderChars, inf, line);
        if (GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES) {
            return GetLastError();
        }
    }
    return ERROR_SUCCESS;
}

static INT32 Answer(INT32 status, DWORD error)
{
    SetLastError(error);
    return status;
}

static INT32 __stdcall InstallForRecord(Object* self, char* record, INT32 flags)
{
    char inf[kInfBytes + 1];
    char hardwareId[kHardwareIdBytes + 1];
    BOOL restart = FALSE;
    DWORD error;
    if (!IsOwner(self) || flags != 0) {
        return Answer(E_INVALIDARG, ERROR_INVALID_PARAMETER);
    }
    snprintf(inf, sizeof(inf), "%.*s", kInfBytes, record + kInfOffset);
    snprintf(hardwareId, sizeof(hardwareId), "%.*s", kHardwareIdBytes, record + kHardwareIdOffset);
    if (!IsKnown(hardwareId)) {
        return Answer(STATUS_NOT_THERE, (DWORD)STATUS_NOT_THERE);
    }
    error = CheckPackage(inf);
    if (error == ERROR_SUCCESS &&
        !UpdateDriverForPlugAndPlayDevicesA(NULL, hardwareId, inf, INSTALLFLAG_FORCE | INSTALLFLAG_NONINTERACTIVE,
                                            &restart)) {
        error = GetLastError() != ERROR_SUCCESS ? GetLastError() : ERROR_GEN_FAILURE;
    }
    return error == ERROR_SUCCESS ? Answer(0, ERROR_SUCCESS) : Answer(STATUS_REFUSED, error);
}

static const struct
{
    INT64(__stdcall* identifySystem)(Object*, char*);
    INT32(__stdcall* release)(Object*);
} kProberTable = {IdentifySystem, Release};

static const struct
{
    INT32(__stdcall* addRef)(Object*);
    INT32(__stdcall* release)(Object*);
    INT32(__stdcall* installForRecord)(Object*, char*, INT32);
} kInstallTable = {AddRef, Release, InstallForRecord};

static INT32 HandOut(const void* table, Object** out)
{
    *out = NewObject(table);
    return *out != NULL ? 0 : E_OUTOFMEMORY;
}

static INT32 __stdcall CreateSysProber(Object* self, Object** out)
{
    return IsOwner(self) ? HandOut(&kProberTable, out) : RPC_E_WRONG_THREAD;
}

static INT32 __stdcall CreateDriverInstall(Object* self, Object** out, char* record)
{
    return IsOwner(self) && record[kFamilyOffset] != '\0' ? HandOut(&kInstallTable, out) : E_INVALIDARG;
}

static const struct
{
    INT32(__stdcall* createSysProber)(Object*, Object**);
    INT32(__stdcall* release)(Object*);
} kProberFactoryTable = {CreateSysProber, Release};

static const struct
{
    INT32(__stdcall* createDriverInstall)(Object*, Object**, char*);
    INT32(__stdcall* release)(Object*);
} kInstallFactoryTable = {CreateDriverInstall, Release};

__declspec(dllexport) INT32 __stdcall DllGetClassFactoryObject(const char* name, Object** factory)
{
    if (strcmp(name, "ISysProberInterfaceFactory") == 0) {
        return HandOut(&kProberFactoryTable, factory);
    }
    if (strcmp(name, "IDriverInstallInterfaceFactory") == 0) {
        return HandOut(&kInstallFactoryTable, factory);
    }
    *factory = NULL;
    return CLASS_E_CLASSNOTAVAILABLE;
}
