#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ISCSISupport.h"
#include "LibraryDouble.h"
#include "LibraryTrace.h"
#include "RegistryKeys.h"

/// What the tests of the machine's iSCSI share: systems to ask for, and parts to put into this machine.

inline constexpr char kScsiClass[] = R"(SYSTEM\CurrentControlSet\Control\Class\{4D36E97B-E325-11CE-BFC1-08002BE10318})";

/// A server of that version.
inline SystemFacts NtFacts(uint32_t major, uint32_t minor, uint16_t servicePack)
{
    return {.valid = true,
            .majorVersion = major,
            .minorVersion = minor,
            .platform = kPlatformNT,
            .productType = kProductServer,
            .servicePackMajor = servicePack,
            .architecture = kArchitectureX64};
}
inline const CISCSISupport kServer2003(osWIN2K3SRV32E, NtFacts(5, 2, 0));
inline const CISCSISupport kServer2003Sp1(osWIN2K3SRV32E, NtFacts(5, 2, 1));
inline const CISCSISupport kServer2003Sp2(osWIN2K3SRV32E, NtFacts(5, 2, 2));
inline const CISCSISupport kServer2008(osLONGHORN32E, NtFacts(6, 0, 1));
inline const CISCSISupport kServer2008Sp2(osLONGHORN32E, NtFacts(6, 0, 2));
inline const CISCSISupport kServer2008R2(osWIN2K8R232E, NtFacts(6, 1, 0));

/// The trace lines of this class, without those of what it builds on.
inline std::vector<std::string> OwnLines(const LibraryTrace& trace)
{
    std::vector<std::string> own;
    for (const std::string& line : trace.Messages()) {
        if (line.find("CISCSISupport") != std::string::npos || line.starts_with("versionInfo")) {
            own.push_back(line);
        }
    }
    return own;
}

/// What a check returned, and what it traced.
struct Checked
{
    bool result;
    std::vector<std::string> lines;
};
inline Checked Check(const std::function<bool()>& check)
{
    const LibraryTrace trace;
    const bool result = check();
    return {result, OwnLines(trace)};
}

inline std::string Entry(const std::string& name)
{
    return "Entering CISCSISupport::" + name + "()";
}
inline std::string Exit(const std::string& name, bool result)
{
    return "Exiting CISCSISupport::" + name + "() -> bRet is " + (result ? "1" : "0");
}

/// A controller of the SCSI adapter class, removed by the destructor.
class Controller
{
public:
    Controller(const std::string& number, const std::string& deviceId) : m_key(std::string(kScsiClass) + "\\" + number)
    {
        SetRegistryText(m_key.Path(), "MatchingDeviceId", deviceId);
    }
    [[nodiscard]] std::string Parameters() const { return m_key.Path() + "\\Parameters"; }

private:
    ScratchRegistryKey m_key;
};

/// The initiator's library, reporting a version.
class InitiatorLibrary : public LibraryDouble
{
public:
    InitiatorLibrary(const std::string& major, const std::string& minor, const std::string& build)
        : LibraryDouble("iscsidsc.dll", "iscsidsc.dll")
    {
        Answer("Major", major);
        Answer("Minor", minor);
        Answer("Build", build);
    }
};
