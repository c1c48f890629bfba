#pragma once

#include <cstdint>

#include "OSCode.h"
#include "OrvRegKey.h"
#include "OrvString.h"

/// What a key is opened for.
enum class InitiatorKeyAccess
{
    Read,
    ReadWrite,
};

/// Checks values that a user enters for iSCSI boot, and the iSCSI support of this machine. Everything is reported
/// through the library trace; nothing throws. ISCSIRules.h and AddressRules.h hold the rules.
class CISCSISupport
{
public:
    /// For the running system, determined once, now.
    CISCSISupport();
    /// For a given system. The checks of the machine still examine this machine.
    CISCSISupport(OSCode system, const SystemFacts& facts);
    virtual ~CISCSISupport() = default;

    // Checks of values.

    [[nodiscard]] bool IsBootLUN_Valid(uint32_t bootLun) const;
    [[nodiscard]] bool IsTargetPortValid(int32_t port) const;
    [[nodiscard]] bool IsVLAN_IdTagValid(uint32_t vlanId) const;
    // Addresses in dotted form, at most 259 characters; a longer text is reported as an invalid parameter and rejected.
    [[nodiscard]] bool IsInitatorOrTargetIpAddressValid(const COrvString& address) const;
    [[nodiscard]] bool IsGatewayIpAddressValid(const COrvString& address) const;
    [[nodiscard]] bool IsSubnetMaskValid(const COrvString& mask) const;

    // Checks of the machine.

    /// Determines the four conditions of iSCSI boot. Each is checked, regardless of the others.
    /// @param rightOS              The system can boot with the software initiator (isTheRightiSCSIOS).
    /// @param patchInstalled       Its initiator is recent enough (isTheiSCSIPatchInstalled).
    /// @param initiatorKeyPresent  The initiator is installed as a controller (isTheiSCSIInitiatorKeyPresent).
    /// @param crashDumpEnabled     A crash dump can be written over it (IsCrashDumpEnabled).
    /// @return true when the first three hold: the machine can boot over iSCSI. The fourth is needed only for a crash
    ///         dump.
    bool IsiSCSISupported(bool& rightOS, bool& patchInstalled, bool& initiatorKeyPresent, bool& crashDumpEnabled) const;

    [[nodiscard]] bool isTheRightiSCSIOS() const;
    /// Asks the system's iSCSI library for its version.
    [[nodiscard]] bool isTheiSCSIPatchInstalled() const;
    /// Opens the settings of the system's software initiator: the key "Parameters" of its controller.
    /// @param key  The open key on success, else closed.
    bool GetIscsiInitiatorKey(COrvRegKey& key, InitiatorKeyAccess access = InitiatorKeyAccess::Read) const;
    [[nodiscard]] bool isTheiSCSIInitiatorKeyPresent() const;
    /// @return true when the initiator's dump driver is exactly "iSCSDump.sys".
    [[nodiscard]] bool IsCrashDumpEnabled() const;
    /// Makes "iSCSDump.sys" the initiator's dump driver.
    /// @return false when there is no initiator or its key cannot be written.
    bool EnableCrashDump() const;

    /// @param hotFixId  Such as "KB902113".
    /// @return true when WMI lists the hotfix; false also when WMI cannot be asked.
    [[nodiscard]] bool CheckHotFixInstalled(const COrvString& hotFixId) const;
    /// @return true also when the system's service pack contains the hotfix; WMI is then not asked.
    [[nodiscard]] bool isTheiSCSIHotFixInstalled() const;
    [[nodiscard]] bool IsTheiSCSIDumpHotFixInstalled_OnW2K3() const;
    [[nodiscard]] bool IsISCSIDumpHotFixNeeded_OnW2K8() const;
    /// @return true when the initiator's service, "MSiSCSI", runs.
    [[nodiscard]] bool IsTheIscsiServiceRunning() const;

private:
    OSCode m_system = osUNSUPPORTED;
    SystemFacts m_facts;
};
