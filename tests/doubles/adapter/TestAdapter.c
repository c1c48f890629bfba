/* A network adapter's driver as far as programs can see it: devices that answer requests with what a test has laid
 * down.
 *
 * Each sub-key of the service's key "Parameters" is one adapter; the sub-key's name is the name of its device,
 * reachable as \\.\<name>. Values of the sub-key, read anew for each request: PrivateName        REG_SZ     read at
 * start: name of the adapter's private control device, \\.\<PrivateName> NameStatus         REG_DWORD  nonzero: NT
 * status that the device-name query fails with NameAnswer         REG_BINARY answer to the device-name query
 *   RequestStatus      REG_DWORD  nonzero: NT status that the private request fails with
 *   AnswerStatus       REG_DWORD  status field of the private request's answer
 *   AnswerLength       REG_DWORD  length field of that answer
 *   AnswerData         REG_BINARY bytes after the header of that answer
 *   DelayMilliseconds  REG_DWORD  the requests are answered that much later, after the driver has returned
 * Values that the driver counts up: Opens, Closes (of both devices), NameQueries, PrivateRequests; and that it writes:
 * LastOid, LastData (REG_BINARY).
 * With the value NdisVersion in "Parameters" itself at start there is also a device \\.\NDIS, which answers that
 * number; NdisStatus, nonzero, lets it fail. It counts up Opens, Closes and VersionQueries there. */
#include <ntddk.h>

#define QUERY_GLOBAL_STATISTICS 0x00170002
#define PRIVATE_REQUEST 0x00172800
#define GET_NDIS_VERSION 0x00170020
#define DEVICE_NAME_OID 0xFF0201A9
#define HEADER_BYTES 12
#define PATH_CHARS 700
#define NAME_CHARS 300
#define VALUE_BYTES 1024

typedef enum DeviceKind
{
    AdapterDevice,
    PrivateDevice,
    NdisDevice,
} DeviceKind;

typedef struct DeviceContext
{
    DeviceKind kind;
    WCHAR settings[PATH_CHARS]; /* registry key of its answers */
    WCHAR link[NAME_CHARS];     /* empty when there is none */
} DeviceContext;

/* A request that is answered by a thread of its own. */
typedef struct LateAnswer
{
    PIRP irp;
    NTSTATUS status;
    ULONG bytes;
    ULONG milliseconds;
} LateAnswer;

typedef struct ValueBuffer
{
    KEY_VALUE_PARTIAL_INFORMATION info;
    UCHAR room[VALUE_BYTES];
} ValueBuffer;

DRIVER_INITIALIZE DriverEntry;
static DRIVER_UNLOAD Unload;
static DRIVER_DISPATCH OpenOrClose;
static DRIVER_DISPATCH Control;

static NTSTATUS OpenKey(PCWSTR path, ACCESS_MASK access, HANDLE* key)
{
    UNICODE_STRING name;
    OBJECT_ATTRIBUTES attributes;
    RtlInitUnicodeString(&name, path);
    InitializeObjectAttributes(&attributes, &name, OBJ_CASE_INSENSITIVE | OBJ_KERNEL_HANDLE, NULL, NULL);
    return ZwOpenKey(key, access, &attributes);
}

/* Returns FALSE when there is no such value; buffer->info has no data then. */
static BOOLEAN ReadValue(PCWSTR settings, PCWSTR valueName, ValueBuffer* buffer)
{
    UNICODE_STRING name;
    HANDLE key;
    ULONG bytes = 0;
    NTSTATUS status;
    RtlZeroMemory(buffer, sizeof(*buffer));
    if (!NT_SUCCESS(OpenKey(settings, KEY_READ, &key))) {
        return FALSE;
    }
    RtlInitUnicodeString(&name, valueName);
    status = ZwQueryValueKey(key, &name, KeyValuePartialInformation, buffer, sizeof(*buffer), &bytes);
    ZwClose(key);
    if (!NT_SUCCESS(status)) {
        RtlZeroMemory(buffer, sizeof(*buffer));
        return FALSE;
    }
    return TRUE;
}

static ULONG ReadNumber(PCWSTR settings, PCWSTR valueName)
{
    ValueBuffer buffer;
    ULONG number = 0;
    if (ReadValue(settings, valueName, &buffer) && buffer.info.DataLength == sizeof(number)) {
        RtlCopyMemory(&number, buffer.info.Data, sizeof(number));
    }
    return number;
}

static void WriteValue(PCWSTR settings, PCWSTR valueName, ULONG type, const void* data, ULONG bytes)
{
    UNICODE_STRING name;
    HANDLE key;
    if (!NT_SUCCESS(OpenKey(settings, KEY_READ | KEY_WRITE, &key))) {
        return;
    }
    RtlInitUnicodeString(&name, valueName);
    ZwSetValueKey(key, &name, 0, type, (void*)(ULONG_PTR)data, bytes);
    ZwClose(key);
}

static void CountUp(PCWSTR settings, PCWSTR valueName)
{
    const ULONG number = ReadNumber(settings, valueName) + 1;
    WriteValue(settings, valueName, REG_DWORD, &number, sizeof(number));
}

/* Appends `more`; returns FALSE when there is no room for it. */
static BOOLEAN AppendText(WCHAR* text, SIZE_T roomChars, PCWSTR more, SIZE_T moreChars)
{
    SIZE_T length = 0;
    while (text[length] != 0) {
        ++length;
    }
    if (length + moreChars >= roomChars) {
        return FALSE;
    }
    RtlCopyMemory(text + length, more, moreChars * sizeof(WCHAR));
    text[length + moreChars] = 0;
    return TRUE;
}

static SIZE_T TextChars(PCWSTR text)
{
    SIZE_T length = 0;
    while (text[length] != 0) {
        ++length;
    }
    return length;
}

/* Copies a laid-down value into a request's output. Returns the bytes copied. */
static ULONG CopyValue(PCWSTR settings, PCWSTR valueName, UCHAR* output, ULONG room)
{
    ValueBuffer buffer;
    ULONG bytes;
    ReadValue(settings, valueName, &buffer);
    bytes = buffer.info.DataLength < room ? buffer.info.DataLength : room;
    RtlCopyMemory(output, buffer.info.Data, bytes);
    return bytes;
}

static NTSTATUS AnswerDeviceName(PCWSTR settings, PIRP irp, const IO_STACK_LOCATION* stack, ULONG* bytes)
{
    ULONG oid = 0;
    const ULONG failure = ReadNumber(settings, L"NameStatus");
    UCHAR* output;
    if (stack->Parameters.DeviceIoControl.InputBufferLength != sizeof(oid) || irp->MdlAddress == NULL) {
        return STATUS_INVALID_PARAMETER;
    }
    RtlCopyMemory(&oid, irp->AssociatedIrp.SystemBuffer, sizeof(oid));
    WriteValue(settings, L"LastOid", REG_DWORD, &oid, sizeof(oid));
    CountUp(settings, L"NameQueries");
    if (failure != 0) {
        return (NTSTATUS)failure;
    }
    if (oid != DEVICE_NAME_OID) {
        return STATUS_NOT_SUPPORTED;
    }
    output = MmGetSystemAddressForMdlSafe(irp->MdlAddress, NormalPagePriority);
    if (output == NULL) {
        return STATUS_INSUFFICIENT_RESOURCES;
    }
    *bytes = CopyValue(settings, L"NameAnswer", output, stack->Parameters.DeviceIoControl.OutputBufferLength);
    return STATUS_SUCCESS;
}

static NTSTATUS AnswerPrivateRequest(PCWSTR settings, PIRP irp, const IO_STACK_LOCATION* stack, ULONG* bytes)
{
    UCHAR* const buffer = irp->AssociatedIrp.SystemBuffer;
    const ULONG input = stack->Parameters.DeviceIoControl.InputBufferLength;
    const ULONG output = stack->Parameters.DeviceIoControl.OutputBufferLength;
    const ULONG failure = ReadNumber(settings, L"RequestStatus");
    ULONG field;
    if (input < HEADER_BYTES || output < HEADER_BYTES) {
        return STATUS_BUFFER_TOO_SMALL;
    }
    WriteValue(settings, L"LastOid", REG_DWORD, buffer, sizeof(ULONG));
    WriteValue(settings, L"LastData", REG_BINARY, buffer + HEADER_BYTES, input - HEADER_BYTES);
    CountUp(settings, L"PrivateRequests");
    if (failure != 0) {
        return (NTSTATUS)failure;
    }
    field = ReadNumber(settings, L"AnswerStatus");
    RtlCopyMemory(buffer + 4, &field, sizeof(field));
    field = ReadNumber(settings, L"AnswerLength");
    RtlCopyMemory(buffer + 8, &field, sizeof(field));
    CopyValue(settings, L"AnswerData", buffer + HEADER_BYTES, output - HEADER_BYTES);
    *bytes = output;
    return STATUS_SUCCESS;
}

static NTSTATUS AnswerNdisVersion(PCWSTR settings, PIRP irp, const IO_STACK_LOCATION* stack, ULONG* bytes)
{
    const ULONG failure = ReadNumber(settings, L"NdisStatus");
    const ULONG version = ReadNumber(settings, L"NdisVersion");
    CountUp(settings, L"VersionQueries");
    if (failure != 0) {
        return (NTSTATUS)failure;
    }
    if (stack->Parameters.DeviceIoControl.OutputBufferLength < sizeof(version)) {
        return STATUS_BUFFER_TOO_SMALL;
    }
    RtlCopyMemory(irp->AssociatedIrp.SystemBuffer, &version, sizeof(version));
    *bytes = sizeof(version);
    return STATUS_SUCCESS;
}

static NTSTATUS Finish(PIRP irp, NTSTATUS status, ULONG bytes)
{
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = bytes;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}

static void NTAPI AnswerLate(void* context)
{
    const LateAnswer late = *(LateAnswer*)context;
    LARGE_INTEGER wait;
    wait.QuadPart = -10000 * (LONGLONG)late.milliseconds;
    ExFreePool(context);
    KeDelayExecutionThread(KernelMode, FALSE, &wait);
    Finish(late.irp, late.status, late.bytes);
    PsTerminateSystemThread(STATUS_SUCCESS);
}

static NTSTATUS FinishLater(PIRP irp, NTSTATUS status, ULONG bytes, ULONG milliseconds)
{
    HANDLE thread;
    LateAnswer* late = ExAllocatePoolWithTag(NonPagedPool, sizeof(*late), 0x54534554);
    if (late == NULL) {
        return Finish(irp, STATUS_INSUFFICIENT_RESOURCES, 0);
    }
    late->irp = irp;
    late->status = status;
    late->bytes = bytes;
    late->milliseconds = milliseconds;
    IoMarkIrpPending(irp);
    if (NT_SUCCESS(PsCreateSystemThread(&thread, THREAD_ALL_ACCESS, NULL, NULL, NULL, AnswerLate, late))) {
        ZwClose(thread);
    } else {
        ExFreePool(late);
        Finish(irp, STATUS_INSUFFICIENT_RESOURCES, 0);
    }
    return STATUS_PENDING;
}

static NTSTATUS NTAPI Control(PDEVICE_OBJECT device, PIRP irp)
{
    const DeviceContext* context = device->DeviceExtension;
    const IO_STACK_LOCATION* stack = IoGetCurrentIrpStackLocation(irp);
    const ULONG code = stack->Parameters.DeviceIoControl.IoControlCode;
    NTSTATUS status = STATUS_INVALID_DEVICE_REQUEST;
    ULONG bytes = 0;
    ULONG delay;
    if (context->kind == AdapterDevice && code == QUERY_GLOBAL_STATISTICS) {
        status = AnswerDeviceName(context->settings, irp, stack, &bytes);
    } else if (context->kind == PrivateDevice && code == PRIVATE_REQUEST) {
        status = AnswerPrivateRequest(context->settings, irp, stack, &bytes);
    } else if (context->kind == NdisDevice && code == GET_NDIS_VERSION) {
        status = AnswerNdisVersion(context->settings, irp, stack, &bytes);
    }
    delay = ReadNumber(context->settings, L"DelayMilliseconds");
    return delay == 0 ? Finish(irp, status, bytes) : FinishLater(irp, status, bytes, delay);
}

static NTSTATUS NTAPI OpenOrClose(PDEVICE_OBJECT device, PIRP irp)
{
    const DeviceContext* context = device->DeviceExtension;
    const BOOLEAN open = IoGetCurrentIrpStackLocation(irp)->MajorFunction == IRP_MJ_CREATE;
    CountUp(context->settings, open ? L"Opens" : L"Closes");
    return Finish(irp, STATUS_SUCCESS, 0);
}

static void NTAPI Unload(PDRIVER_OBJECT driver)
{
    PDEVICE_OBJECT device = driver->DeviceObject;
    while (device != NULL) {
        const PDEVICE_OBJECT next = device->NextDevice;
        UNICODE_STRING link;
        RtlInitUnicodeString(&link, ((DeviceContext*)device->DeviceExtension)->link);
        if (link.Length != 0) {
            IoDeleteSymbolicLink(&link);
        }
        IoDeleteDevice(device);
        device = next;
    }
}

/* Creates a device that is reachable as \\.\<name>. */
static NTSTATUS AddDevice(PDRIVER_OBJECT driver, DeviceKind kind, PCWSTR settings, PCWSTR name)
{
    static ULONG count;
    WCHAR path[] = L"\\Device\\MorvixTestAdapter00";
    const SIZE_T digits = sizeof(path) / sizeof(path[0]) - 3;
    UNICODE_STRING deviceName;
    UNICODE_STRING link;
    PDEVICE_OBJECT device;
    DeviceContext* context;
    NTSTATUS status;
    path[digits] = (WCHAR)(L'0' + count / 10 % 10);
    path[digits + 1] = (WCHAR)(L'0' + count % 10);
    ++count;
    RtlInitUnicodeString(&deviceName, path);
    status = IoCreateDevice(driver, sizeof(DeviceContext), &deviceName, FILE_DEVICE_NETWORK, 0, FALSE, &device);
    if (!NT_SUCCESS(status)) {
        return status;
    }
    context = device->DeviceExtension;
    RtlZeroMemory(context, sizeof(*context));
    context->kind = kind;
    if (!AppendText(context->settings, PATH_CHARS, settings, TextChars(settings)) ||
        !AppendText(context->link, NAME_CHARS, L"\\??\\", 4) ||
        !AppendText(context->link, NAME_CHARS, name, TextChars(name))) {
        context->link[0] = 0;
        return STATUS_NAME_TOO_LONG;
    }
    RtlInitUnicodeString(&link, context->link);
    status = IoCreateSymbolicLink(&link, &deviceName);
    if (!NT_SUCCESS(status)) {
        context->link[0] = 0;
        return status;
    }
    device->Flags &= ~(ULONG)DO_DEVICE_INITIALIZING;
    return STATUS_SUCCESS;
}

/* Adds the devices of one adapter: its own, and its private one if it has a name. */
static NTSTATUS AddAdapter(PDRIVER_OBJECT driver, PCWSTR parameters, PCWSTR name)
{
    WCHAR settings[PATH_CHARS] = {0};
    ValueBuffer privateName;
    NTSTATUS status;
    if (!AppendText(settings, PATH_CHARS, parameters, TextChars(parameters)) ||
        !AppendText(settings, PATH_CHARS, L"\\", 1) || !AppendText(settings, PATH_CHARS, name, TextChars(name))) {
        return STATUS_NAME_TOO_LONG;
    }
    status = AddDevice(driver, AdapterDevice, settings, name);
    if (NT_SUCCESS(status) && ReadValue(settings, L"PrivateName", &privateName)) {
        status = AddDevice(driver, PrivateDevice, settings, (PCWSTR)privateName.info.Data);
    }
    return status;
}

static NTSTATUS AddAdapters(PDRIVER_OBJECT driver, PCWSTR parameters)
{
    struct
    {
        KEY_BASIC_INFORMATION info;
        WCHAR room[NAME_CHARS];
    } entry;
    HANDLE key;
    ULONG index;
    ULONG bytes;
    NTSTATUS status = OpenKey(parameters, KEY_READ, &key);
    for (index = 0; NT_SUCCESS(status); ++index) {
        RtlZeroMemory(&entry, sizeof(entry));
        /* The last character stays zero and ends the name. */
        if (!NT_SUCCESS(
                ZwEnumerateKey(key, index, KeyBasicInformation, &entry, sizeof(entry) - sizeof(WCHAR), &bytes))) {
            ZwClose(key);
            return STATUS_SUCCESS;
        }
        status = AddAdapter(driver, parameters, entry.info.Name);
        if (!NT_SUCCESS(status)) {
            ZwClose(key);
        }
    }
    return status;
}

NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath)
{
    WCHAR parameters[PATH_CHARS] = {0};
    ValueBuffer ndisVersion;
    NTSTATUS status = STATUS_SUCCESS;
    driver->DriverUnload = Unload;
    driver->MajorFunction[IRP_MJ_CREATE] = OpenOrClose;
    driver->MajorFunction[IRP_MJ_CLOSE] = OpenOrClose;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = Control;
    if (!AppendText(parameters, PATH_CHARS, registryPath->Buffer, registryPath->Length / sizeof(WCHAR)) ||
        !AppendText(parameters, PATH_CHARS, L"\\Parameters", 11)) {
        return STATUS_NAME_TOO_LONG;
    }
    if (ReadValue(parameters, L"NdisVersion", &ndisVersion)) {
        status = AddDevice(driver, NdisDevice, parameters, L"NDIS");
    }
    if (NT_SUCCESS(status)) {
        status = AddAdapters(driver, parameters);
    }
    if (!NT_SUCCESS(status)) {
        Unload(driver);
    }
    return status;
}
