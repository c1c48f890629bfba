#include "InfStore.h"

#include <windows.h>

#include <array>

#include "EntryPoints.h"
#include "Handles.h"
#include "LastError.h"
#include "Trace.h"

CopiedInfListRecord CopiedInfList;

int SetupCopyInf(const std::string& infPath, const std::string& sourceDirectory)
{
    Trace("Entering - SetupCopyInf");
    const UniqueLibrary library(LoadLibraryA("SetupApi.dll"));
    if (!library) {
        Trace("SetupCopyInf - Returning FALSE, invalid instance");
        return 0;
    }
    const auto copyInf = FindEntry<SetupCopyOEMInfFn>(library.get(), "SetupCopyOEMInfA");
    if (copyInf == nullptr) {
        Trace("SetupCopyInf - NULL Return Value, function call failed");
        return 0;
    }
    Trace("SetupCopyOEMInfA(), src inf:" + infPath + ", src media loc:" + sourceDirectory + "\n");
    Trace("Calling SetupCopyOEMInfA for " + infPath);
    std::array<char, MAX_PATH> storedAs{};
    const BOOL copied = copyInf(infPath.c_str(), sourceDirectory.c_str(), SPOST_PATH, SP_COPY_NOOVERWRITE,
                                storedAs.data(), MAX_PATH, nullptr, nullptr);
    const DWORD error = GetLastError();
    if (copied != FALSE) {
        Trace("SetupCopyOEMInfA completed successfully - inf=" + infPath + ", oem INF= " + storedAs.data());
    }
    // The last error is traced after a success as well, by design.
    SetLastError(error);
    PrintGetLastErrorMessage();
    return 1;
}
