#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <cfgmgr32.h>
#include <newdev.h>
#include <setupapi.h>
#include <srrestoreptapi.h>

#include <bit>

/// Entry points that the program looks up at run time: those that a system may lack, so that the program starts there,
/// and those of libraries that the loader would otherwise look for beside the program first (see SystemLibrary.h). The
/// types are those of the platform's own prototypes; a null pointer is the one way to say "this system lacks it".

/// @return the entry point `name` of `library`, or null when it has none. `Fn` must be the entry point's real type.
template <class Fn>
[[nodiscard]] Fn FindEntry(HMODULE library, const char* name) noexcept
{
    return std::bit_cast<Fn>(GetProcAddress(library, name));
}

using GetNativeSystemInfoFn = decltype(&GetNativeSystemInfo);
using GetSystemDefaultLangIDFn = decltype(&GetSystemDefaultLangID);
using UpdateDriverForPlugAndPlayDevicesFn = decltype(&UpdateDriverForPlugAndPlayDevicesA);
using SetupCopyOEMInfFn = decltype(&SetupCopyOEMInfA);
using LocateDevNodeFn = decltype(&CM_Locate_DevNodeA);
using ReenumerateDevNodeFn = decltype(&CM_Reenumerate_DevNode);
using GetDevNodeStatusFn = decltype(&CM_Get_DevNode_Status);
using SetupSetNonInteractiveModeFn = decltype(&SetupSetNonInteractiveMode);
using SetRestorePointFn = decltype(&SRSetRestorePointW);
using GetFileVersionInfoSizeFn = decltype(&GetFileVersionInfoSizeA);
using GetFileVersionInfoFn = decltype(&GetFileVersionInfoA);
using VerQueryValueFn = decltype(&VerQueryValueA);
using SetupDiGetClassDevsFn = decltype(&SetupDiGetClassDevsA);
using SetupDiEnumDeviceInfoFn = decltype(&SetupDiEnumDeviceInfo);
using SetupDiGetDeviceRegistryPropertyFn = decltype(&SetupDiGetDeviceRegistryPropertyA);
using SetupDiDestroyDeviceInfoListFn = decltype(&SetupDiDestroyDeviceInfoList);
