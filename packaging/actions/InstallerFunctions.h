#pragma once

#include <windows.h>
// msiquery.h needs windows.h first.
#include <msiquery.h>

#include "EntryPoints.h"
#include "SystemLibrary.h"

/// The functions of the Windows Installer engine that a step uses, taken from the system directory by full path: the
/// engine's library is not a known library, and this one may be loaded by other programs.
struct InstallerFunctions
{
    UniqueLibrary library = LoadSystemLibrary("msi.dll");
    decltype(&MsiGetPropertyA) getProperty = FindEntry<decltype(&MsiGetPropertyA)>(library.get(), "MsiGetPropertyA");
    decltype(&MsiSetPropertyA) setProperty = FindEntry<decltype(&MsiSetPropertyA)>(library.get(), "MsiSetPropertyA");
    decltype(&MsiSetMode) setMode = FindEntry<decltype(&MsiSetMode)>(library.get(), "MsiSetMode");
    decltype(&MsiCreateRecord) createRecord = FindEntry<decltype(&MsiCreateRecord)>(library.get(), "MsiCreateRecord");
    decltype(&MsiRecordSetStringA) recordSetString =
        FindEntry<decltype(&MsiRecordSetStringA)>(library.get(), "MsiRecordSetStringA");
    decltype(&MsiRecordSetInteger) recordSetInteger =
        FindEntry<decltype(&MsiRecordSetInteger)>(library.get(), "MsiRecordSetInteger");
    decltype(&MsiProcessMessage) processMessage =
        FindEntry<decltype(&MsiProcessMessage)>(library.get(), "MsiProcessMessage");
    decltype(&MsiCloseHandle) closeHandle = FindEntry<decltype(&MsiCloseHandle)>(library.get(), "MsiCloseHandle");

    /// Every version of the engine has all of them.
    [[nodiscard]] bool AreComplete() const
    {
        return getProperty != nullptr && setProperty != nullptr && setMode != nullptr && createRecord != nullptr &&
               recordSetString != nullptr && recordSetInteger != nullptr && processMessage != nullptr &&
               closeHandle != nullptr;
    }
};
