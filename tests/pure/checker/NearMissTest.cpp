#include <gtest/gtest.h>

#include "Kits.h"

// What looks odd and works: set-up and the search agree about all of these kits, so nothing may be found.

namespace {
const std::string kAdapter = Model("VEN_5D1A&DEV_7A01");
const std::string kGood = InfWithModels(kAdapter);

std::string WithCrLf(const std::string& text)
{
    std::string dos;
    for (const char c : text) {
        dos += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return dos;
}

std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char c : WithCrLf(text)) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

KitFiles WithInf(const std::string& inf)
{
    return {{kPerfectInf, inf}};
}

KitFiles WithChange(std::string_view from, std::string_view to)
{
    return WithInf(Changed(kGood, from, to));
}

/// An INF file of another maker, with what would be errors in one of ours.
const std::string kOthersInf =
    "[Version]\nSignature=\"$CHICAGO$\"\nClass=Net\nCatalogFile=none.cat\n[Manufacturer]\n%Other%=other,NTx86\n"
    "[other.NTx86]\n%A%=A.ndi,VEN_7ABC&DEV_0001\n%B%=B.ndi,%Id%\n[other.NTx86]\n%C%=C.ndi,PCI\\VEN_7ABC&DEV_0002;x\n"
    "[A.ndi]\nCopyFiles=Missing\n[Missing]\nmissing.sys\n[Strings]\nOther=\"Other\"\nId=\"PCI\\VEN_7ABC&DEV_0003\"\n";
} // namespace

TEST(NearMisses, OfEncodingsAreClean)
{
    ExpectRows({
        {"lines as DOS ends them", WithInf(WithCrLf(kGood)), {}},
        {"an end mark of DOS", WithInf(WithCrLf(kGood) + "\x1A"), {}},
        {"UTF-16", WithInf(Utf16(kGood)), {}},
        {"letters beyond ASCII in 8 bits",
         WithChange("Norda adapter", "Netzwerkadapter f\xFCr Norda\x99 \xC4\xDF"),
         {}},
        {"UTF-8 without a mark", WithChange("Norda adapter", "Netzwerkadapter f\xC3\xBCr Norda"), {}},
        {"names in other letter case",
         WithInf(Changed(Changed(Changed(kGood, "[Version]", "[VERSION]"), "Signature", "SIGNATURE"), "[Manufacturer]",
                         "[manufacturer]")),
         {}},
    });
}

TEST(NearMisses, OfManufacturersAreClean)
{
    ExpectRows({
        {"decorations for systems before and after",
         WithChange("=Norda,NTamd64\n", "=Norda,NTx86,NTx86.5.1,NTia64,NTamd64,NTamd64.10.0,NTamd64.10.0...16299\n"),
         {}},
        {"a decoration for servers", WithChange("=Norda,NTamd64\n", "=Norda,NTamd64,NTamd64.6.1.3\n"), {}},
        {"a name in quotation marks", WithChange("%Norda%=Norda", "\"Norda\"=Norda"), {}},
        {"blanks and tabs", WithChange("%Norda%=Norda,NTamd64", "%Norda% \t= \tNorda , NTamd64 \t; all"), {}},
        {"two makers", WithChange("[Norda.NTamd64]", "%Other%=Other,NTamd64\n[Other.NTamd64]\n[Norda.NTamd64]"), {}},
        {"an empty section for a later system",
         WithChange("=Norda,NTamd64\n", "=Norda,NTamd64,NTamd64.10.0\n[Norda.NTamd64.10.0]\n"),
         {}},
    });
}

TEST(NearMisses, OfModelLinesAreClean)
{
    ExpectRows({
        {"blanks and tabs before an ID", WithInf(InfWithModels("%Nic%\t=\tNic.ndi,\t PCI\\VEN_5D1A&DEV_7A01\n")), {}},
        {"a comment after a blank", WithInf(InfWithModels(Model("VEN_5D1A&DEV_7A01 ; the first"))), {}},
        {"a description of its own", WithInf(InfWithModels("\"A; card = fine\"=Nic.ndi,PCI\\VEN_5D1A&DEV_7A01\n")), {}},
        {"an install section that is a string",
         WithInf(Changed(InfWithModels("%Nic%=%Install%,PCI\\VEN_5D1A&DEV_7A01\n"), "[Strings]",
                         "[Strings]\nInstall=\"Nic.ndi\"")),
         {}},
        {"a line that goes on after the ID",
         WithInf(InfWithModels("%Nic%=Nic.ndi,PCI\\VEN_5D1A&DEV_7A01, \\\n    PCI\\CC_020000\n")),
         {}},
        {"compatible IDs after the ID", WithInf(InfWithModels(Model("VEN_5D1A&DEV_7A01, PCI\\VEN_5D1A&CC_0200"))), {}},
        {"a class code in the ID", WithInf(InfWithModels(Model("VEN_5D1A&DEV_7A01&CC_0200"))), {}},
        {"other buses", WithInf(InfWithModels(kAdapter + "%Nic%=Nic.ndi,USB\\VID_1234&PID_5678\n")), {}},
    });
}

TEST(NearMisses, OfCopiedFilesAreClean)
{
    ExpectRows({
        {"a file by its name", WithChange("CopyFiles=Nic.Files", "CopyFiles=@ngea.sys"), {}},
        {"a list that goes on and has comments",
         WithChange("CopyFiles=Nic.Files", "CopyFiles=\\ ; lists\n  Nic.Files ; the driver"),
         {}},
        {"marks after a name", WithChange("\nngea.sys\n", "\nngea.sys,,,0x00000002 ; in use\n"), {}},
        {"a folder by number and name", WithChange("DefaultDestDir=12", "DefaultDestDir=10,system32\\drivers"), {}},
        {"files of another INF",
         WithChange("CopyFiles=Nic.Files\n[Nic.Files]\nngea.sys\n", "Include=netcommon.inf\nNeeds=Common.ndi\n"),
         {}},
        {"a library that stays in the driver store beside a driver that does not",
         {{kPerfectInf, Changed(Changed(Changed(kGood, "CopyFiles=Nic.Files", "CopyFiles=Nic.Files,Store"),
                                        "[DestinationDirs]", "[Store]\nngeaco.dll\n[DestinationDirs]\nStore=13"),
                                "ngea.sys=1", "ngea.sys=1\nngeaco.dll=1")},
          {"Drv/ngeaco.dll", "library"}},
         {}},
        {"files in a folder of the processor",
         {{kPerfectInf, Changed(kGood, "[SourceDisksFiles]\nngea.sys=1", "[SourceDisksFiles.amd64]\nngea.sys=1,amd64")},
          {"Drv/ngea.sys", ""},
          {"Drv/amd64/ngea.sys", "driver"}},
         {}},
        {"files in a cabinet",
         {{kPerfectInf, Changed(kGood, "1=%Disk%", "1=%Disk%,ngea.cab")}, {"Drv/ngea.sys", ""}, {"Drv/ngea.cab", "x"}},
         {}},
        {"files of the platform's own layout",
         {{kPerfectInf, Changed(Changed(kGood, "[Version]", "[Version]\nLayoutFile=layout.inf"),
                                "[SourceDisksFiles]\nngea.sys=1\n", "")},
          {"Drv/ngea.sys", ""}},
         {}},
        {"a catalog for the processor", WithChange("CatalogFile=", "CatalogFile.NTamd64="), {}},
        {"an install section for the processor", WithChange("[Nic.ndi]", "[Nic.ndi.NTamd64]"), {}},
    });
    // What is copied and is not there is found in all of these kits.
    EXPECT_EQ(std::vector<std::string>{"MK504 Drv/ngea.inf:14:1"},
              FoundIn(KitWith(WithInf(Changed(kGood, "\nngea.sys\n", "\nngea.sys\nngeaco.dll\n"))), {"Win832E"}));
}

TEST(NearMisses, OfOtherMakersAreClean)
{
    ExpectRows({
        {"a network driver of another maker", {{"Drv/other.inf", kOthersInf}}, {}},
        {"a printer", {{"Drv/printer.inf", Changed(kOthersInf, "Class=Net", "Class=Printer")}}, {}},
        {"no INF file at all", {{"Drv/notes.inf", "Read me first.\n[notes\n=\n\n]"}}, {}},
        {"a file that is left out",
         {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\nInfExclude=other.inf\n")},
          {"Drv/other.inf", kOthersInf}},
         {}},
    });
}
