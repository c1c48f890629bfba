#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "EntryPoints.h"
#include "OSCode.h"

/// Which system this is. The platform is asked once, at construction; the code and every predicate are computed from
/// what was captured. Cheap to make: whoever needs to know makes one, asks, and lets it go. OSPredicates.h says what
/// each predicate means.
class COSVersion
{
public:
    COSVersion();
    virtual ~COSVersion() = default;

    /// @return the system's code; osUNSUPPORTED also when the version could not be read. A captured version of 6.0 is
    ///         verified with the platform on every call.
    [[nodiscard]] OSCode GetOSCode() const;
    /// @return what was captured, in the form that the pure decisions take.
    [[nodiscard]] SystemFacts Facts() const;

    [[nodiscard]] bool IsIA64() const;
    [[nodiscard]] bool IsX64() const;
    [[nodiscard]] bool IsNT5OrLater() const;
    [[nodiscard]] bool IsNT6OrLater() const;
    [[nodiscard]] bool IsXPOrLater() const;
    [[nodiscard]] bool IsServerOrVistaLater() const;
    [[nodiscard]] bool IsWin2K3Family() const;
    [[nodiscard]] bool IsWin2K8Family() const;
    [[nodiscard]] bool IsWin7Family() const;
    [[nodiscard]] bool IsWin8Family() const;
    [[nodiscard]] bool IsWin2K8R2Family() const;
    [[nodiscard]] bool IsWin8OrLater() const;
    /// @param sp  Receives the major number of the service pack of a Server 2003; 0 on any other system.
    /// @return true when `sp` is not 0.
    bool GetWin2K3ServicePack(uint32_t& sp) const;
    [[nodiscard]] bool IsVistaFamily() const;
    [[nodiscard]] bool IsWin8Workstation() const;
    [[nodiscard]] bool IsWin8Server() const;
    [[nodiscard]] bool IsVistaWorkstation() const;
    /// @return true on a 6.0 or 6.1 server whose shell program cannot be opened.
    [[nodiscard]] bool IsServerCore() const;
    [[nodiscard]] bool IsXPWorkstation() const;
    [[nodiscard]] bool IsModernServer() const;
    [[nodiscard]] bool IsWorkstationOS() const;

private:
    OSVERSIONINFOEXA m_version{};
    GetNativeSystemInfoFn m_getNativeSystemInfo = nullptr; ///< null on systems that lack it
    SYSTEM_INFO m_nativeInfo{};
    uint32_t m_valid = 0;
};

/// Asks the running system.
class PlatformVerifier : public LaterSystemVerifier
{
public:
    [[nodiscard]] bool IsSixOne() const override;
    [[nodiscard]] bool IsSixTwoOrLater() const override;
};

using GetVersionExFn = decltype(&GetVersionExA);

/// Fills a version record: the extended form, or the plain form on systems that know only that one. In the second case
/// the extended fields stay 0.
/// @param record      Cleared first.
/// @param getVersion  The platform's function.
/// @return 1, or 0 when both forms were refused.
uint32_t CaptureVersion(OSVERSIONINFOEXA& record, GetVersionExFn getVersion);

/// @return the generation of the running system: 2 for 6.1 and later, 1 for 6.0, 0 for older ones.
[[nodiscard]] int GetOSGeneration();

/// @return true when `path` can be opened for reading. Environment variables between per-cent signs are expanded; the
///         expanded path has at most 259 characters.
[[nodiscard]] bool CanOpenExpanded(const std::string& path);

/// @return true when the running system is the terminal-server edition of NT 4.
[[nodiscard]] bool IsNT4TerminalServer();
/// The same for a system of code `system`, with the product options of this machine's registry. Nothing is traced.
[[nodiscard]] bool IsNT4TerminalServerOn(OSCode system);
