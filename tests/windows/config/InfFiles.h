#pragma once

#include <string>

/// Parts of INF files that the tests put together.

/// A whole INF that qualifies on the Windows NT family and lists one device.
/// @param id       Hardware ID without "PCI\".
/// @param section  Model section that lists it; the manufacturer names it.
[[nodiscard]] inline std::string QualifiedInf(const std::string& id, const std::string& section = "Norda.NTamd64")
{
    return "[Version]\r\nSignature=\"$Windows "
           "NT$\"\r\nClass=Net\r\nClassGUID={4D36E972-E325-11CE-BFC1-08002BE10318}\r\n"
           "Provider=%Provider%\r\nDriverVer=01/02/2013,1.2.3.4\r\n\r\n"
           "[Manufacturer]\r\n%Provider%=Norda,NTamd64\r\n\r\n"
           "[" +
           section + "]\r\n%Nic.DeviceDesc%=Nic.ndi, PCI\\" + id +
           "\r\n\r\n"
           "[Strings]\r\nProvider=\"Norda\"\r\nNic.DeviceDesc=\"Norda Adapter " +
           id + "\"\r\n";
}
