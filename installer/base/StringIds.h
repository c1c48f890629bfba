#pragma once

#include <cstdint>

/// Texts of MorvixRes.dll. The numbers are the library's string-table identifiers.
enum StringId : uint32_t
{
    kStringWelcome = 1,
    kStringFcoeBootTooOld = 2,
    kStringInstallFailed = 3, ///< also the caption of error boxes
    kStringNotReady = 4,
    kStringNoAdapter = 5,
    kStringWindowsNTUnsupported = 6,
    kStringSystemUnsupported = 7,
    kStringAdministratorNeeded = 8,
    kStringDone = 9,
    kStringInstalling = 10, ///< one %s: the device's description
    kStringCloseManagementSoftware = 13,
    kStringCancel = 15,
    kStringRestorePoint = 17,
    kStringAdvice = 20,
    kStringWorking = 21,
    kStringRestartQuestion = 22,
    kStringRestartCountdown = 23, ///< one FormatMessage insert: seconds left
    kStringSomeFailed = 24,
    kStringCaption = 1008,
};
