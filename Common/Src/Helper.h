#pragma once

#include <span>

#include "AgentLibraries.h"
#include "Handles.h"
#include "OrvString.h"

/// The services that CHelper knows by number. Any other number means a service without a name, which never exists.
enum HelperServiceKind : int
{
    kServiceNordaDCB = 0,
    kServiceNFCoEDCB = 1,
    kServiceMSiSCSI = 2,
};

/// How a library is loaded.
enum class AgentLibraryUse
{
    Code,      ///< To be called.
    Resources, ///< For its resources; none of its code runs.
};

/// What is installed on this machine: components of the maker's management extension (registry flags), debugging
/// switches, the user-interface language, services, and the maker's other libraries. Nothing is cached: each call reads
/// the registry, under HKEY_LOCAL_MACHINE. Nothing throws; a missing item gives false (or -1) and a line in the library
/// trace. The entry lines say "Enterning", and some lines name another operation or component: existing log readers
/// expect it.
class CHelper
{
public:
    virtual ~CHelper() = default;

    // True when the component's install flag is exactly the text "1".
    [[nodiscard]] bool IsDcbInstalled();
    [[nodiscard]] bool IsFcoeInstalled();
    [[nodiscard]] bool IsTernInstalled();
    [[nodiscard]] bool IsZorInstalled();
    [[nodiscard]] bool IsIscsiInstalled();

    /// @return true when debugging is switched on ("Debugging" is 1).
    [[nodiscard]] bool IsDebugEnbled();
    /// Reads a debug value that replaces a real reading.
    /// @param value  Unchanged while debugging is off; 0 when there is no such value. Up to 4 bytes of a value of
    ///               another type may be stored here, though the result is false.
    /// @return true when debugging is on and the number was read.
    bool IsSettingDebugable(const COrvString& name, DWORD& value);
    /// The same for a text; `value` is empty when debugging is on and there is no such text.
    bool GetDebugString(const COrvString& name, COrvString& value);
    /// @return true when "DebugFeature" is 1. Traces nothing.
    [[nodiscard]] bool IsDebugFeatureOn();

    /// @param language  Receives the short name of the installed user-interface language; empty when there is none.
    /// @return 0, or -1 when none is recorded.
    int GetInstalledLanguage(COrvString& language);

    /// @param kind  One of HelperServiceKind.
    /// @return true when the service runs; false while it starts or stops.
    [[nodiscard]] bool IsServiceRunning(int kind);
    /// Starts a service and waits until it runs, at most as long as ServicePolling.h says.
    /// @return true when it runs, even if it did before.
    bool StartServiceOfKind(int kind);
    /// Stops a service and waits until it has stopped.
    /// @return true when it has stopped, even if it was not running.
    bool StopServiceOfKind(int kind);

    /// @return true when the operating system brings its own DCB: it answers WMI queries about its DCBX settings.
    [[nodiscard]] bool IsOsDcbPresent();

    /// Loads one of the maker's libraries from the directory that the registry names.
    /// @param libraries  Where each library is.
    /// @param shortName  Compared ignoring letter case.
    /// @return the library; null when the table or the registry does not know it or it cannot be loaded.
    [[nodiscard]] UniqueLibrary LoadAgentLibrary(std::span<const AgentLibrary> libraries, const COrvString& shortName,
                                                 AgentLibraryUse use);
    /// Reads a status text from the resource library "NetShell".
    /// @param libraries  Where each library is found.
    /// @param text       Empty when there is no such text.
    /// @return true when there is one.
    bool GetStatusText(std::span<const AgentLibrary> libraries, unsigned long id, COrvString& text);
};
