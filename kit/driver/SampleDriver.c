/* The driver of every device in the sample kit. It loads, stays and unloads, and binds to nothing: the kit shows how
 * drivers get onto a system, not how to move packets. */
#include <ntddk.h>

DRIVER_INITIALIZE DriverEntry;
static DRIVER_UNLOAD Unload;

static void NTAPI Unload(PDRIVER_OBJECT driver)
{
    UNREFERENCED_PARAMETER(driver);
}

/* Called once when the service starts. Without an unload routine the service could never be stopped. */
NTSTATUS NTAPI DriverEntry(PDRIVER_OBJECT driver, PUNICODE_STRING registryPath)
{
    UNREFERENCED_PARAMETER(registryPath);
    driver->DriverUnload = Unload;
    return STATUS_SUCCESS;
}
