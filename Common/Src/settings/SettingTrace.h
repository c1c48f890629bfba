#pragma once

#include "OrvDebug.h"

/// Runs a check between its entry and exit lines in the library trace.
/// @param name   The operation's name, without its class.
/// @param check  Returns bool.
/// @return what the check returned.
template <class Check>
bool TracedISCSICheck(const char* name, Check check)
{
    OrvTrace().Print("Entering CISCSISupport::%s()", name);
    const bool bRet = check();
    OrvTrace().Print("Exiting CISCSISupport::%s() -> bRet is %d", name, bRet ? 1 : 0);
    return bRet;
}
