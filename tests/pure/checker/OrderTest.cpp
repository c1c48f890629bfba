#include <gtest/gtest.h>

#include "Kits.h"

namespace {
const std::string kAdapter = Model("VEN_5D1A&DEV_7A01");
const std::string kSpecial = Model("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A");

std::string Dated(const std::string& models, const std::string& version)
{
    return Changed(InfWithModels(models), "10/01/2012,2.0.0.0", version);
}
const std::string kOld = "03/01/2010,1.0.0.0";
const std::string kNew = "10/01/2012,2.0.0.0";

/// Two directories, of which the first one wins.
KitFiles TwoDirectories(const std::string& first, const std::string& second, const std::string& secondName = "ngeb.inf")
{
    return {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=A\nInfDir=B\n")},
            {kPerfectInf, ""},
            {"A/ngea.inf", first},
            {"A/ngea.sys", "driver"},
            {"A/ngea.cat", "catalog"},
            {"B/" + secondName, Changed(Changed(second, "\nngea.sys\n", "\nngeb.sys\n"), "ngea.sys=1", "ngeb.sys=1")},
            {"B/ngeb.sys", "driver"},
            {"B/ngea.cat", "catalog"}};
}
} // namespace

TEST(OrderRules, ADriverThatLosesToAnOlderOneIsFound)
{
    ExpectRows({
        {"the newer one in the later directory",
         TwoDirectories(Dated(kAdapter, kOld), Dated(kAdapter, kNew)),
         {"MK401 A/ngea.inf:9:1"}},
        {"the newer one in the earlier directory", TwoDirectories(Dated(kAdapter, kNew), Dated(kAdapter, kOld)), {}},
        {"the same version", TwoDirectories(Dated(kAdapter, kNew), Dated(kAdapter, kNew)), {}},
        {"versions that cannot be compared", TwoDirectories(Dated(kAdapter, "today"), Dated(kAdapter, kNew)), {}},
        {"a later date alone",
         TwoDirectories(Dated(kAdapter, "03/01/2010"), Dated(kAdapter, "10/01/2012")),
         {"MK401 A/ngea.inf:9:1"}},
        {"another adapter", TwoDirectories(Dated(kAdapter, kOld), Dated(Model("VEN_5D1A&DEV_7A02"), kNew)), {}},
    });
}

TEST(OrderRules, AnOlderSpecialDriverIsFound)
{
    ExpectRows({
        {"the general driver is newer",
         TwoDirectories(Dated(kAdapter, kNew), Dated(kSpecial, kOld)),
         {"MK402 B/ngeb.inf:9:1"}},
        {"the special driver is newer", TwoDirectories(Dated(kAdapter, kOld), Dated(kSpecial, kNew)), {}},
        {"the newer file lists both", TwoDirectories(Dated(kAdapter + kSpecial, kNew), Dated(kSpecial, kOld)), {}},
        {"a revision in a newer file, which is searched later",
         TwoDirectories(Dated(Model("VEN_5D1A&DEV_7A01&REV_03"), kNew), Dated(kSpecial, kOld)),
         {"MK402 B/ngeb.inf:9:1"}},
        {"both in one file", {{kPerfectInf, Dated(kAdapter + kSpecial, kOld)}}, {}},
    });
}

TEST(OrderRules, AWinnerByTheOrderOfADirectoryIsFound)
{
    ExpectRows({
        {"two files of one version", {{"Drv/ngea2.inf", Dated(kAdapter, kNew)}}, {"MK403 Drv/ngea.inf:9:1"}},
        {"two files, the later one newer",
         {{"Drv/ngea2.inf", Dated(kAdapter, "10/01/2013,3.0.0.0")}},
         {"MK401 Drv/ngea.inf:9:1", "MK403 Drv/ngea.inf:9:1"}},
        {"two files with different IDs", {{"Drv/ngea2.inf", Dated(Model("VEN_5D1A&DEV_7A02"), kNew)}}, {}},
    });
}

TEST(OrderRules, AFileNameInTwoDirectoriesIsFound)
{
    const std::string other = Dated(Model("VEN_5D1A&DEV_7A02"), kNew);
    ExpectRows({
        {"the same name",
         TwoDirectories(Dated(kAdapter, kNew), Changed(other, "DefaultDestDir=12", "DefaultDestDir=12 "), "NGEA.inf"),
         {"MK404 B/NGEA.inf:1:1", "MK502 B/NGEA.inf:9:1"}},
        {"another name", TwoDirectories(Dated(kAdapter, kNew), other), {}},
        {"one directory named twice",
         {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\nInfDir=DRV\n")}},
         {}},
    });
}

TEST(OrderRules, ASectionThatSetUpDoesNotTakeIsFound)
{
    const auto makers = [](const std::string& decorations, const std::string& more = {}) {
        return KitFiles{
            {kPerfectInf, Changed(Changed(InfWithModels(kAdapter), "=Norda,NTamd64", "=Norda," + decorations),
                                  "[Nic.ndi]", more + "[Nic.ndi]")}};
    };
    ExpectRows({
        {"no decoration for the processor", makers("NTx86"), {"MK405 Drv/ngea.inf:9:1"}},
        {"a decoration for a later system", makers("NTx86,NTamd64.10.0"), {"MK405 Drv/ngea.inf:9:1"}},
        {"a better section without the adapter",
         makers("NTamd64,NTamd64.6.2", "[Norda.NTamd64.6.2]\n" + Model("VEN_5D1A&DEV_7A02")),
         {"MK405 Drv/ngea.inf:9:1", "MK205 Drv/ngea.inf:10:2"}},
        {"a better section with the adapter", makers("NTamd64,NTamd64.6.2", "[Norda.NTamd64.6.2]\n" + kAdapter), {}},
        {"a section for servers only, on a system that is both",
         makers("NTamd64,NTamd64.6.2.3", "[Norda.NTamd64.6.2.3]\n; no adapter\n"),
         {}},
        {"a section of an earlier system", makers("NTamd64,NTamd64.6.1", "[Norda.NTamd64.6.1]\n" + kAdapter), {}},
    });
}

TEST(OrderRules, AnAcceptedDeviceThatOneSystemLacksIsFound)
{
    const std::string engine = InfWithModels(kAdapter + Model("VEN_5D1A&DEV_2A10"));
    const auto two = [&](const std::string& sevenInf, const std::string& more = {}) {
        return KitFiles{{"Morvix.ini",
                         PerfectKit()["Morvix.ini"] + "[Win732E]\nInfSectionName=Norda.NTamd64\nInfDir=Seven\n" + more},
                        {kPerfectInf, engine},
                        {"Seven/ngea.inf",
                         Changed(Changed(sevenInf, "\nngea.sys\n", "\nngea62.sys\n"), "ngea.sys=1", "ngea62.sys=1")},
                        {"Seven/ngea62.sys", "driver"},
                        {"Seven/ngea.cat", "catalog"}};
    };
    const std::vector<std::string> both{"Win732E", "Win832E"};
    ExpectRows({
        {"no INF file on Windows 7", two(InfWithModels(kAdapter)), {"MK701 Morvix.ini:4:2"}, both},
        {"on both systems", two(engine), {}, both},
        {"on no system", {}, {}},
        {"left out on Windows 7", two(engine, "InfExclude=ngea.inf\n"), {}, both},
    });
}
