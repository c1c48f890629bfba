#include <gtest/gtest.h>

#include "Kits.h"

namespace {
const std::string kGood = InfWithModels(Model("VEN_5D1A&DEV_7A01"));

KitFiles With(const std::string& inf)
{
    return {{kPerfectInf, inf}};
}

KitFiles WithModels(const std::string& lines)
{
    return With(InfWithModels(lines));
}
} // namespace

TEST(InfRules, FilesThatAreNotSearchedAreFound)
{
    ExpectRows({
        {"a directory below a searched one", {{"Drv/Win8x64/ngea.inf", kGood}}, {"MK201 Drv/Win8x64/ngea.inf:1:1"}},
        {"a file for another purpose", {{"autorun.inf", "[autorun]\nopen=Morvix.exe\n"}}, {}},
        {"a directory of a system that is not checked",
         {{"Morvix.ini", PerfectKit()["Morvix.ini"] + "[Win732E]\nInfSectionName=Norda.NTamd64\nInfDir=Seven\n"},
          {"Seven/ngea.inf", kGood}},
         {}},
    });
}

TEST(InfRules, FilesThatDoNotQualifyAreFound)
{
    const auto signature = [](const std::string& text) { return With(Changed(kGood, "\"$Windows NT$\"", text)); };
    const auto maker = [](const std::string& text) { return With(Changed(kGood, "%Norda%=Norda,NTamd64\n", text)); };
    const std::string keys = "%" + std::string(97, 'x') + "%=Other,NTamd64\n";
    ExpectRows({
        {"a signature without its blank", signature("\"$WindowsNT$\""), {"MK202 Drv/ngea.inf:2:1"}},
        {"a signature without its dollar signs", signature("\"Windows NT\""), {"MK202 Drv/ngea.inf:2:1"}},
        {"the signature of Windows 98", signature("\"$Chicago$\""), {"MK202 Drv/ngea.inf:2:1"}},
        {"no signature", With(Changed(kGood, "Signature=\"$Windows NT$\"\n", "")), {"MK202 Drv/ngea.inf:1:2"}},
        {"a signature in other letters and without quotation marks", signature("$WINDOWS nt$"), {}},
        {"the brand in lower case", maker("%Norda%=norda,NTamd64\n"), {"MK203 Drv/ngea.inf:7:1"}},
        {"the brand in another word", maker("%Norda%=Norda1,NTamd64\n"), {"MK203 Drv/ngea.inf:7:1"}},
        {"no maker", maker(""), {"MK203 Drv/ngea.inf:6:2"}},
        {"the brand after a blank", maker("%Norda%=Norda ,NTamd64\n"), {}},
        {"another maker's file that lists none of our adapters",
         {{"Drv/other.inf",
           Changed(Changed(InfWithModels(Model("VEN_8086&DEV_7A01")), "=Norda,", "=Other,"), "[Norda.", "[Other.")}},
         {}},
        {"the brand's key after 98 characters", maker(keys + "%Norda%=Norda,NTamd64\n"), {"MK204 Drv/ngea.inf:8:1"}},
        {"the brand's key before them", maker("%Norda%=Norda,NTamd64\n" + keys), {}},
        {"the brand in a second section",
         maker("%Other%=Other,NTamd64\n[Manufacturer]\n%Norda%=Norda,NTamd64\n"),
         {"MK206 Drv/ngea.inf:8:2"}},
        {"a file that is excluded",
         {{"Morvix.ini", PerfectKit()["Morvix.ini"] + "InfExclude=ngea-old.inf\n"},
          {"Drv/ngea-old.inf", Changed(kGood, "$Windows NT$", "$Chicago$")}},
         {}},
    });
}

TEST(InfRules, ModelSectionsThatOneSideNamesAreFound)
{
    const auto further = [](const std::string& lines) {
        return With(Changed(Changed(kGood, "=Norda,NTamd64", "=Norda,NTamd64,NTx86"), "[Nic.ndi]",
                            "[Norda.NTx86]\n" + lines + "[Nic.ndi]"));
    };
    ExpectRows({
        {"a section that alone lists an ID", further(Model("VEN_5D1A&DEV_7A02")), {"MK205 Drv/ngea.inf:10:2"}},
        {"a section for other systems with the same IDs", further(Model("VEN_5D1A&DEV_7A01")), {}},
        {"a section that another system names",
         {{"Morvix.ini", PerfectKit()["Morvix.ini"] + "[Win832]\nInfSectionName=Norda.NTx86\nInfDir=Drv\n"},
          {kPerfectInf, further(Model("VEN_5D1A&DEV_7A02"))[kPerfectInf]}},
         {}},
    });
}

TEST(InfRules, RepeatedAndLongSectionsAreFound)
{
    std::string many;
    for (int number = 0; number < 900; ++number) {
        many += Model("VEN_5D1A&DEV_" + std::to_string(1000 + number));
    }
    const std::string filler(1990, 'x');
    ExpectRows({
        {"a second section with another ID",
         WithModels(Model("VEN_5D1A&DEV_7A01") + "[norda.ntamd64]\n" + Model("VEN_5D1A&DEV_7A02")),
         {"MK206 Drv/ngea.inf:10:2"}},
        {"a second section with the same ID",
         WithModels(Model("VEN_5D1A&DEV_7A01") + "[Norda.NTamd64]\n" + Model("VEN_5D1A&DEV_7A01")),
         {}},
        {"a section of more than 32,765 characters", WithModels(many), {"MK207 Drv/ngea.inf:894:1"}},
        {"an ID after 1,999 characters",
         WithModels("%" + filler + "%=Nic.ndi, PCI\\VEN_5D1A&DEV_7A01\n"),
         {"MK207 Drv/ngea.inf:9:1"}},
        {"a long line after its first ID", WithModels("%Nic%=Nic.ndi, PCI\\VEN_5D1A&DEV_7A01 ; " + filler + "\n"), {}},
    });
}

TEST(ModelLineRules, IdsThatAreNotComparedAreFound)
{
    ExpectRows({
        {"an ID after another one",
         WithModels(Model("VEN_5D1A&DEV_7A99, PCI\\VEN_5D1A&DEV_7A01")),
         {"MK301 Drv/ngea.inf:9:1"}},
        {"an ID after another one, with a line of its own",
         WithModels(Model("VEN_5D1A&DEV_7A99, PCI\\VEN_5D1A&DEV_7A01") + Model("VEN_5D1A&DEV_7A01")),
         {}},
        {"an ID after one of another vendor that was found before",
         WithModels(Model("VEN_5D1B&DEV_7A01") + Model("VEN_5D1B&DEV_7A02, PCI\\VEN_5D1A&DEV_7A01")),
         {"MK305 Drv/ngea.inf:9:1", "MK301 Drv/ngea.inf:10:1"}},
        {"a class code after an ID", WithModels(Model("VEN_5D1A&DEV_7A01, PCI\\VEN_5D1A&CC_0200")), {}},
        {"no bus", WithModels("%Nic%=Nic.ndi, VEN_5D1A&DEV_7A01\n"), {"MK302 Drv/ngea.inf:9:1"}},
        {"an ID of a device without bus", WithModels(Model("VEN_5D1A&DEV_7A01") + "%Nic%=Nic.ndi, *NRD7A01\n"), {}},
        {"an ID of another bus", WithModels(Model("VEN_5D1A&DEV_7A01") + "%Nic%=Nic.ndi, ROOT\\NRD7A01\n"), {}},
        {"the parts in another order", WithModels(Model("VEN_5D1A&REV_03&DEV_7A01")), {"MK303 Drv/ngea.inf:9:1"}},
        {"too few digits", WithModels(Model("VEN_5D1A&DEV_7A1")), {"MK303 Drv/ngea.inf:9:1"}},
        {"a part that is never searched",
         WithModels(Model("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&MF_01")),
         {"MK303 Drv/ngea.inf:9:1"}},
        {"the four forms, and a class code",
         WithModels(Model("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03") + Model("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A") +
                    Model("VEN_5D1A&DEV_7A01&REV_03") + Model("VEN_5D1A&DEV_7A01&CC_0200") +
                    Model("ven_5d1a&dev_7a02")),
         {}},
        {"a kind of devices, which set-up knows",
         WithModels(Model("VEN_5D1A&DEV_7A01") + Model("VEN_5D1A&CC_0200")),
         {}},
    });
}

TEST(ModelLineRules, WhatIsJoinedToAnIdIsFound)
{
    ExpectRows({
        {"a comment", WithModels(Model("VEN_5D1A&DEV_7A01;first")), {"MK304 Drv/ngea.inf:9:1"}},
        {"a tab before a comma",
         WithModels(Model("VEN_5D1A&DEV_7A01\t, PCI\\VEN_5D1A&DEV_7A01")),
         {"MK301 Drv/ngea.inf:9:1", "MK304 Drv/ngea.inf:9:1"}},
        {"a string",
         With(Changed(InfWithModels("%Nic%=Nic.ndi, %Id%\n"), "Nic=\"Norda adapter\"\n",
                      "Nic=\"Norda adapter\"\nId=\"PCI\\VEN_5D1A&DEV_7A01\"\n")),
         {"MK304 Drv/ngea.inf:9:1"}},
        {"a line that goes on", WithModels("%Nic%=Nic.ndi, \\\n PCI\\VEN_5D1A&DEV_7A01\n"), {"MK304 Drv/ngea.inf:9:1"}},
        {"a line that goes on after its ID",
         WithModels("%Nic%=Nic.ndi, PCI\\VEN_5D1A&DEV_7A01, \\\n PCI\\VEN_5D1A&CC_0200\n"),
         {}},
        {"a comment after a blank", WithModels(Model("VEN_5D1A&DEV_7A01 ;first")), {}},
        {"a blank before a comma", WithModels(Model("VEN_5D1A&DEV_7A01 , PCI\\VEN_5D1A&CC_0200")), {}},
        {"quotation marks", WithModels("%Nic%=Nic.ndi, \"PCI\\VEN_5D1A&DEV_7A01\"\n"), {}},
        {"tabs before the ID", WithModels("%Nic%\t=\tNic.ndi,\tPCI\\VEN_5D1A&DEV_7A01\n"), {}},
        {"a tab at the end of the line", WithModels("%Nic%=Nic.ndi, PCI\\VEN_5D1A&DEV_7A01\t\n"), {}},
    });
}

TEST(ModelLineRules, VendorsThatAreNeverAcceptedAreFound)
{
    ExpectRows({
        {"another vendor",
         WithModels(Model("VEN_5D1A&DEV_7A01") + Model("VEN_5D1B&DEV_7A01") + Model("VEN_5D1B&DEV_7A02")),
         {"MK305 Drv/ngea.inf:10:1"}},
        {"both vendors of ours", WithModels(Model("VEN_5D1A&DEV_7A01") + Model("VEN_1E2B&DEV_0C40")), {}},
    });
}

TEST(ModelLineRules, AFileInUtf16IsReadLikeAnyOther)
{
    const auto utf16 = [](const std::string& text) {
        std::string bytes = "\xFF\xFE";
        for (const char c : text) {
            bytes += c;
            bytes += '\0';
        }
        return bytes;
    };
    ExpectRows({
        {"a good file", With(utf16(kGood)), {}},
        {"a bad line", With(utf16(InfWithModels(Model("VEN_5D1A&DEV_7A01;first")))), {"MK304 Drv/ngea.inf:9:1"}},
    });
}
