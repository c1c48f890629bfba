#pragma once

#include <windows.h>
// The headers below need windows.h first.
#include <cfgmgr32.h>
#include <commctrl.h>
#include <newdev.h>
#include <setupapi.h>
#include <srrestoreptapi.h>

#include <bit>

/// Entry points that are looked up at run time: those that a system may lack, so that the program starts there, and
/// those of libraries that the loader would otherwise search for beside the program first (see SystemLibrary.h). The
/// types are those of the platform's own prototypes; a null pointer always means that this system lacks the function.

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
using SetRestorePointFn = decltype(&SRSetRestorePointW);
using GetFileVersionInfoSizeFn = decltype(&GetFileVersionInfoSizeA);
using GetFileVersionInfoFn = decltype(&GetFileVersionInfoA);
using VerQueryValueFn = decltype(&VerQueryValueA);
using InitCommonControlsFn = decltype(&InitCommonControlsEx);

// Set-up functions.
using SetupDiBuildDriverInfoListFn = decltype(&SetupDiBuildDriverInfoList);
using SetupDiDestroyDeviceInfoListFn = decltype(&SetupDiDestroyDeviceInfoList);
using SetupDiEnumDeviceInfoFn = decltype(&SetupDiEnumDeviceInfo);
using SetupDiEnumDriverInfoFn = decltype(&SetupDiEnumDriverInfoA);
using SetupDiGetActualSectionToInstallFn = decltype(&SetupDiGetActualSectionToInstallA);
using SetupDiGetClassDevsFn = decltype(&SetupDiGetClassDevsA);
using SetupDiGetDeviceInstallParamsFn = decltype(&SetupDiGetDeviceInstallParamsA);
using SetupDiGetDeviceInstanceIdFn = decltype(&SetupDiGetDeviceInstanceIdA);
using SetupDiGetDeviceRegistryPropertyFn = decltype(&SetupDiGetDeviceRegistryPropertyA);
using SetupDiGetDriverInfoDetailFn = decltype(&SetupDiGetDriverInfoDetailA);
using SetupDiSetDeviceInstallParamsFn = decltype(&SetupDiSetDeviceInstallParamsA);
using SetupDiSetDeviceRegistryPropertyFn = decltype(&SetupDiSetDeviceRegistryPropertyA);
using SetupFindFirstLineFn = decltype(&SetupFindFirstLineA);
using SetupFindNextLineFn = decltype(&SetupFindNextLine);
using SetupFindNextMatchLineFn = decltype(&SetupFindNextMatchLineA);
using SetupGetFieldCountFn = decltype(&SetupGetFieldCount);
using SetupGetIntFieldFn = decltype(&SetupGetIntField);
using SetupGetNonInteractiveModeFn = decltype(&SetupGetNonInteractiveMode);
using SetupGetSourceInfoFn = decltype(&SetupGetSourceInfoA);
using SetupGetStringFieldFn = decltype(&SetupGetStringFieldA);
using SetupOpenInfFileFn = decltype(&SetupOpenInfFileA);
using SetupCloseInfFileFn = decltype(&SetupCloseInfFile);
using SetupSetNonInteractiveModeFn = decltype(&SetupSetNonInteractiveMode);
