#pragma once

#include <cstdint>

#include "EntryPoints.h"
#include "FailureReason.h"
#include "Handles.h"
#include "SystemLibrary.h"

/// The library of the platform's set-up functions. Windows XP and Server 2003 do not know it as one of the system's
/// own: if this library imported it, a file of that name in the program's folder would be loaded instead.
class SetupLibrary
{
public:
    SetupLibrary() noexcept = default;
    ~SetupLibrary() = default;
    SetupLibrary(const SetupLibrary&) = delete;
    SetupLibrary& operator=(const SetupLibrary&) = delete;

    /// @return 0, or why the library or one of the functions is missing.
    [[nodiscard]] uint32_t Error() const noexcept { return m_error; }

protected:
    /// Looks a function up, and notes that the library lacks it.
    template <class Fn>
    [[nodiscard]] Fn Find(const char* name) noexcept
    {
        const Fn entry = m_library ? FindEntry<Fn>(m_library.get(), name) : nullptr;
        if (entry == nullptr && m_error == ERROR_SUCCESS) {
            m_error = FailureReason();
        }
        return entry;
    }

private:
    const UniqueLibrary m_library = LoadSystemLibrary("setupapi.dll");
    uint32_t m_error = m_library ? ERROR_SUCCESS : FailureReason();
};

/// The platform's set-up functions. They may be called only while the object lives, and only when none is missing.
class SetupApi : public SetupLibrary
{
public:
    // Devices.
    const SetupDiGetClassDevsFn getClassDevs = Find<SetupDiGetClassDevsFn>("SetupDiGetClassDevsA");
    const SetupDiDestroyDeviceInfoListFn destroyDeviceInfoList =
        Find<SetupDiDestroyDeviceInfoListFn>("SetupDiDestroyDeviceInfoList");
    const SetupDiEnumDeviceInfoFn enumDeviceInfo = Find<SetupDiEnumDeviceInfoFn>("SetupDiEnumDeviceInfo");
    const SetupDiGetDeviceInstanceIdFn getDeviceInstanceId =
        Find<SetupDiGetDeviceInstanceIdFn>("SetupDiGetDeviceInstanceIdA");
    const SetupDiGetDeviceRegistryPropertyFn getDeviceRegistryProperty =
        Find<SetupDiGetDeviceRegistryPropertyFn>("SetupDiGetDeviceRegistryPropertyA");
    const SetupDiSetDeviceRegistryPropertyFn setDeviceRegistryProperty =
        Find<SetupDiSetDeviceRegistryPropertyFn>("SetupDiSetDeviceRegistryPropertyA");

    // The driver that the platform would take from an INF.
    const SetupDiGetDeviceInstallParamsFn getDeviceInstallParams =
        Find<SetupDiGetDeviceInstallParamsFn>("SetupDiGetDeviceInstallParamsA");
    const SetupDiSetDeviceInstallParamsFn setDeviceInstallParams =
        Find<SetupDiSetDeviceInstallParamsFn>("SetupDiSetDeviceInstallParamsA");
    const SetupDiBuildDriverInfoListFn buildDriverInfoList =
        Find<SetupDiBuildDriverInfoListFn>("SetupDiBuildDriverInfoList");
    const SetupDiEnumDriverInfoFn enumDriverInfo = Find<SetupDiEnumDriverInfoFn>("SetupDiEnumDriverInfoA");
    const SetupDiGetDriverInfoDetailFn getDriverInfoDetail =
        Find<SetupDiGetDriverInfoDetailFn>("SetupDiGetDriverInfoDetailA");
    const SetupDiGetActualSectionToInstallFn getActualSectionToInstall =
        Find<SetupDiGetActualSectionToInstallFn>("SetupDiGetActualSectionToInstallA");

    // INF files.
    const SetupOpenInfFileFn openInfFile = Find<SetupOpenInfFileFn>("SetupOpenInfFileA");
    const SetupCloseInfFileFn closeInfFile = Find<SetupCloseInfFileFn>("SetupCloseInfFile");
    const SetupFindFirstLineFn findFirstLine = Find<SetupFindFirstLineFn>("SetupFindFirstLineA");
    const SetupFindNextLineFn findNextLine = Find<SetupFindNextLineFn>("SetupFindNextLine");
    const SetupFindNextMatchLineFn findNextMatchLine = Find<SetupFindNextMatchLineFn>("SetupFindNextMatchLineA");
    const SetupGetFieldCountFn getFieldCount = Find<SetupGetFieldCountFn>("SetupGetFieldCount");
    const SetupGetIntFieldFn getIntField = Find<SetupGetIntFieldFn>("SetupGetIntField");
    const SetupGetStringFieldFn getStringField = Find<SetupGetStringFieldFn>("SetupGetStringFieldA");
    const SetupGetSourceInfoFn getSourceInfo = Find<SetupGetSourceInfoFn>("SetupGetSourceInfoA");

    const SetupGetNonInteractiveModeFn getNonInteractiveMode =
        Find<SetupGetNonInteractiveModeFn>("SetupGetNonInteractiveMode");
};
