#include "PendingUninstall.h"

#include <windows.h>

#include "OrvRegKey.h"
#include "OrvString.h"
#include "Trace.h"

int isRegEntryTAVUnstl()
{
    constexpr char kSessionManagerKey[] = R"(System\CurrentControlSet\Control\Session Manager)";
    constexpr char kPendingValue[] = "PendingFileRenameOperations";
    constexpr char kUninstaller[] = R"(Windows\system32\Tavunstl.exe)";

    Trace("Entering isRegEntryTAVUnstl");
    COrvRegKey key;
    if (!key.Open(HKEY_LOCAL_MACHINE, kSessionManagerKey, kForWriting)) {
        Trace("Unable to access REG_TAVUNSTL_SESSIONMANAGER Key");
        return 0;
    }
    COrvString entry;
    if (!key.IsSubStringValueInMultiString(kPendingValue, kUninstaller, entry)) {
        Trace("TAVUnstl value was not in the substring");
        return 0;
    }
    // A list holds no empty texts: the empty halves by which other programs' entries delete a file are lost here, by
    // design.
    if (!key.RemoveValueFromMultiString(kPendingValue, entry)) {
        Trace("Not able to remove TAVUnstl from MultiString");
        return 0;
    }
    Trace("Successfully removed TAVUnstl from registry");
    return 1;
}
