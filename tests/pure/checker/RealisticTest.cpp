#include <gtest/gtest.h>

#include <algorithm>

#include "Kits.h"

// INF files as makers write them: no error may be found in what set-up accepts and the search finds.

namespace {
/// One file for all systems, with a decoration for each.
const std::string kForAllSystems =
    R"inf(;*******************************************************************************
;** ngea.inf - Norda gigabit adapters                                           **
;**            [ngea] ; brackets in comments                                    **
;*******************************************************************************
[version]
Signature       = "$Windows NT$"
Class           = Net
ClassGUID       = {4d36e972-e325-11ce-bfc1-08002be10318}
Provider        = %NORDA%
CatalogFile     = ngea.cat
DriverVer       = 10/01/2012,12.1.76.0 ; kept by the build

[Manufacturer]
%NORDA%     = Norda, NTamd64, NTamd64.6.0, NTamd64.6.1, NTamd64.6.2, NTx86.5.1 ; all of them

[ControlFlags]
ExcludeFromSelect = \
    PCI\VEN_5D1A&DEV_7A01,\
    PCI\VEN_5D1A&DEV_7A02

[Norda]
; empty on purpose: there is no driver for older systems

[Norda.NTx86.5.1]
%NGEA7A01.DeviceDesc% = NGEA7A01.5.1, PCI\VEN_5D1A&DEV_7A01

[Norda.NTamd64]
%NGEA7A01.DeviceDesc% = NGEA7A01, PCI\VEN_5D1A&DEV_7A01
%NGEA7A02.DeviceDesc% = NGEA7A02, PCI\VEN_5D1A&DEV_7A02&SUBSYS_00115D1A, PCI\VEN_5D1A&DEV_7A02 ; server
%NGEA7A02.DeviceDesc% = NGEA7A02, PCI\VEN_5D1A&DEV_7A02

[Norda.NTamd64.6.0]
%NGEA7A01.DeviceDesc% = NGEA7A01, PCI\VEN_5D1A&DEV_7A01

[Norda.NTamd64.6.1]
; DisplayName                  Section                   DeviceID
; -----------                  -------                   --------
%NGEA7A01.DeviceDesc%	= NGEA7A01.61,	PCI\VEN_5D1A&DEV_7A01
%NGEA7A02.DeviceDesc%	= NGEA7A02.61,	PCI\VEN_5D1A&DEV_7A02

[Norda.NTamd64.6.2]
%NGEA7A01.DeviceDesc%              = NGEA7A01,              PCI\VEN_5D1A&DEV_7A01
%NGEA7A01.DeviceDesc%              = NGEA7A01,              "PCI\VEN_5D1A&DEV_7A01&SUBSYS_00115D1A"
%NGEA7A02.DeviceDesc%              = NGEA7A02,              PCI\VEN_5D1A&DEV_7A02&REV_01
"Norda adapter, third; special"    = NGEA7A02,              pci\ven_5d1a&dev_7a03

[NGEA7A01]
Characteristics = 0x84 ; NCF_HAS_UI | NCF_PHYSICAL
BusType         = 5
AddReg          = ngea.reg, \
                  Default.reg
CopyFiles       = ngea.%Files%
*IfType         = 6

[NGEA7A01.Services]
AddService = ngea, 2, ngea.Service, ngea.EventLog

[NGEA7A02]
Characteristics = 0x84
AddReg          = ngea.reg
CopyFiles       = "ngea.CopyFiles" , ngea.MessageFiles

[NGEA7A02.Services]
AddService = ngea, 2, ngea.Service, ngea.EventLog

[NGEA7A01.61.NTamd64]
CopyFiles       = ngea.CopyFiles.61
[NGEA7A02.61.NT]
CopyFiles       = ngea.CopyFiles.61

[NGEA7A01.5.1]
CopyFiles       = ngea.CopyFiles.5.1

[ngea.Service]
DisplayName     = %ngea.Service.DispName%
ServiceType     = 1
StartType       = 3
ErrorControl    = 1
ServiceBinary   = %12%\ngea.sys

[ngea.EventLog]
AddReg = ngea.AddEventLog.reg

[ngea.AddEventLog.reg]
HKR, , EventMessageFile, 0x00020000, "%%SystemRoot%%\System32\netevent.dll;%%SystemRoot%%\System32\drivers\ngea.sys"

[ngea.reg]
HKR, Ndi,                   Service,        0, "ngea"
HKR, Ndi\Interfaces,        UpperRange,     0, "ndis5"
HKR, Ndi\params\*SpeedDuplex, ParamDesc,    0, "%Speed%"
HKR,, "Path", 0, "C:\"

[Default.reg]
HKR, Ndi\Params\RxRing, default, 0, "256"

[ngea.CopyFiles]
ngea.sys,,,2
[ngea.CopyFiles.61]
ngea62x64.sys,,,2
[ngea.CopyFiles.5.1]
ngea5132.sys,,,2
[ngea.MessageFiles]
ngeamsg.dll,,,0x00000010

[DestinationDirs]
ngea.MessageFiles = 11
DefaultDestDir    = 12

[SourceDisksNames]
1 = %DISK1_NAME%,"",,
[SourceDisksNames.amd64]
1 = %DISK1_NAME%,ngea.tag,,\x64

[SourceDisksFiles]
ngea.sys        = 1,,
ngea62x64.sys   = 1,,
ngea5132.sys    = 1,,
ngeamsg.dll     = 1,,

[Strings]
NORDA                   = "Norda"
Files                   = "CopyFiles"
DISK1_NAME              = "Driver disk; x64"
Speed                   = "Speed & Duplex, 100%"
NGEA7A01.DeviceDesc     = "Norda NG1000 ""Server"" Adapter"
NGEA7A02.DeviceDesc     = "Norda NG1000 Adapter"
ngea.Service.DispName   = "Norda driver"

[Strings.0407]
NORDA                   = "Norda"
)inf";

const std::string kIni =
    "[WinVista32E]\nInfSectionName=Norda.NTamd64.6.0\nInfDir=Drv\n"
    "[Win732E]\nInfSectionName=Norda.NTamd64.6.1\nInfDir=Drv\n"
    "[Win832E]\nInfSectionName=Norda.NTamd64.6.2\nInfDir=Drv\n"
    "[WinXP32E]\nInfSectionName=Norda.NTamd64\nInfDir=Drv\n";

std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char c : text) {
        if (c == '\n') {
            bytes += std::string("\r\0", 2);
        }
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

/// @return the errors and warnings of a kit with this file and all its drivers.
std::vector<std::string> FindingsOf(const std::string& inf)
{
    const TestFolder folder;
    WriteKit(folder, {{"Morvix.ini", kIni},
                      {"Drv/ngea.inf", inf},
                      {"Drv/ngea.cat", "catalog"},
                      {"Drv/x64/ngea.sys", "driver"},
                      {"Drv/x64/ngea62x64.sys", "driver"},
                      {"Drv/x64/ngeamsg.dll", "messages"}});
    std::vector<std::string> found;
    for (const Finding& finding : FindingsIn(folder, {"WinXP32E", "WinVista32E", "Win732E", "Win832E"}).findings) {
        found.push_back(IdOf(RuleOf(finding)) + ":" + std::to_string(finding.line) + " " + finding.what);
    }
    return found;
}
} // namespace

TEST(RealisticInf, HasNoFindings)
{
    EXPECT_EQ(std::vector<std::string>(), FindingsOf(kForAllSystems));
}

TEST(RealisticInf, InUtf16HasNoFindings)
{
    EXPECT_EQ(std::vector<std::string>(), FindingsOf(Utf16(kForAllSystems)));
}

TEST(RealisticInf, ItsMistakesAreFoundAtTheirPlaces)
{
    const std::string inf = Changed(Changed(kForAllSystems, "pci\\ven_5d1a&dev_7a03", "%Id%"), "[Strings]",
                                    "[Strings]\nId = \"PCI\\VEN_5D1A&DEV_7A03\"");
    EXPECT_EQ(std::vector<std::string>{"MK304:45 VEN_5D1A&DEV_7A03 is not compared at all"}, FindingsOf(inf));
}
