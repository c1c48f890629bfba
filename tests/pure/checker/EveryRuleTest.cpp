#include <gtest/gtest.h>

#include <algorithm>

#include "Kits.h"

// Each rule is found in a kit made for it, and not in one that is nearly the same. A rule that is no longer asked fails
// here by its number.

namespace {
struct RuleKits
{
    KitFiles bad;
    KitFiles good; ///< changes to the perfect kit, as the bad ones
    std::vector<std::string> systems{"Win832E"};
};

const std::string kAdapter = Model("VEN_5D1A&DEV_7A01");

KitFiles WithIni(const std::string& lines)
{
    return {{"Morvix.ini", Ini(lines)}};
}

KitFiles WithDirectory(const std::string& line)
{
    return WithIni("InfSectionName=Norda.NTamd64\nInfDir=Drv\n" + line + "\n");
}

KitFiles WithModels(const std::string& lines)
{
    return {{kPerfectInf, InfWithModels(lines)}};
}

KitFiles WithInf(std::string_view from, std::string_view to)
{
    return {{kPerfectInf, Changed(InfWithModels(kAdapter), from, to)}};
}

/// A second package, "ngeb", in a directory.
KitFiles WithSecond(const std::string& directory, const std::string& name, const std::string& inf,
                    const std::string& ini)
{
    return {{"Morvix.ini", Ini(ini)},
            {directory + "/" + name, Changed(Changed(inf, "\nngea.sys\n", "\nngeb.sys\n"), "ngea.sys=1", "ngeb.sys=1")},
            {directory + "/ngeb.sys", "driver"},
            {directory + "/ngea.cat", "catalog"}};
}

std::string Versioned(const std::string& models, const std::string& version)
{
    return Changed(InfWithModels(models), "10/01/2012,2.0.0.0", version);
}

std::string Repeated(std::string_view text, std::size_t count)
{
    std::string all;
    while (count-- > 0) {
        all += text;
    }
    return all;
}

/// Morvix.ini and INF files for Windows 7 and 8 of which only one lists a DMA engine, or both do.
KitFiles TwoSystems(const std::string& sevensModels)
{
    return {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=Drv\n") +
                               "[Win732E]\nInfSectionName=Norda.NTamd64\nInfDir=Seven\n"},
            {kPerfectInf, InfWithModels(kAdapter + Model("VEN_5D1A&DEV_2A10"))},
            {"Seven/ngea.inf", Changed(Changed(InfWithModels(sevensModels), "\nngea.sys\n", "\nngea62.sys\n"),
                                       "ngea.sys=1", "ngea62.sys=1")},
            {"Seven/ngea62.sys", "driver"},
            {"Seven/ngea.cat", "catalog"}};
}

void AddRulesOfSetupIni(std::map<int, RuleKits>& kits)
{
    const std::string fits = "InfSectionName=Norda.NTamd64\nInfDir=Drv\n";
    kits[101] = {.bad = {}, .good = {}, .systems = {"Win732E"}};
    kits[101].good = TwoSystems(kAdapter);
    kits[102] = {WithIni(fits + Repeated("; 50 characters of text, which no reader returns\n", 20) +
                         Repeated("NothingOfImportance=that is read as well as any other line\n", 10) + "InfDir=Drv\n"),
                 WithIni(fits + Repeated("; 50 characters of text, which no reader returns\n", 20))};
    kits[103] = {WithIni(fits + Repeated("NothingOfImportance=that is read as well as any other line\n", 20) +
                         "InfExclude=ngea.inf\n"),
                 WithIni(fits + "InfExclude=ngea.inf\n")};
    kits[104] = {WithIni("InfDir=Drv\n"), WithIni(fits)};
    kits[105] = {WithDirectory("InfDir=..\\Drv"), WithDirectory("InfDir=.")};
    kits[106] = {WithDirectory(R"(InfDir=\\server\drivers)"), WithDirectory("InfDir=Drv\\")};
    kits[107] = {WithDirectory("InfDir=\"Drv\""), WithDirectory("InfDir=Drv")};
    kits[108] = {WithIni("InfSectionName=Norda.NTamd64\nInfDir=Drv ; all of them\n"),
                 WithIni("; all of them\nInfSectionName=Norda.NTamd64\nInfDir=Drv\n")};
    kits[109] = {WithDirectory("infdir=Drv"), WithDirectory(";InfDir=Drv")};
    kits[110] = {WithIni("InfSectionName=Norda.NTamd64 ,Other\nInfDir=Drv\n"), WithIni(fits)};
    kits[111] = {WithDirectory("InfDir=Dvr"), WithDirectory("InfDir=DRV")};
    kits[112] = {{{"Morvix.ini", "[Config]\nLevelsToRoot=one\n" + Ini(fits)}},
                 {{"Morvix.ini", "[Config]\nLevelsToRoot=0\n" + Ini(fits)}}};
    kits[113] = {WithDirectory("InfExclude=nothing.inf"), WithDirectory("InfExclude=NGEA.inf")};
}

void AddRulesOfInfs(std::map<int, RuleKits>& kits)
{
    const std::string second = Model("VEN_5D1A&DEV_7A02");
    kits[201] = {{{"Old/ngea.inf", InfWithModels(kAdapter)}}, {{"Old/ngea.inf", "[Version]\n"}}};
    kits[202] = {WithInf("$Windows NT$", "$WindowsNT$"), WithInf("\"$Windows NT$\"", "$windows nt$")};
    kits[203] = {WithInf("=Norda,", "=norda,"), WithInf("=Norda,", "= Norda , ")};
    kits[204] = {WithInf("%Norda%=", "%" + std::string(100, 'x') + "%=Other\n%Norda%="),
                 WithInf("%Norda%=", "%" + std::string(40, 'x') + "%=Other\n%Norda%=")};
    kits[205] = {WithIni("InfSectionName=Norda.NTamd64,Norda.NTamd64.6.2\nInfDir=Drv\n"), {}};
    kits[206] = {WithInf("[Nic.ndi]", "[Norda.NTamd64]\n" + second + "[Nic.ndi]"),
                 WithInf("[Nic.ndi]", "[Norda.NTamd64]\n" + kAdapter + "[Nic.ndi]")};
    kits[207] = {
        WithModels(kAdapter + Repeated("; no reader counts this\n", 9) +
                   Repeated("%Nothing of importance%=Nic.ndi, PCI\\CC_020000\n", 800) + second),
        WithModels(kAdapter + Repeated("; no reader counts this line, however many there are\n", 900) + second)};
    kits[301] = {WithModels(Model("VEN_5D1A&DEV_7A02, PCI\\VEN_5D1A&DEV_7A01")),
                 WithModels(Model("VEN_5D1A&DEV_7A02, PCI\\VEN_5D1A&DEV_7A01") + kAdapter)};
    kits[302] = {WithModels("%Nic%=Nic.ndi, VEN_5D1A&DEV_7A01\n"),
                 WithModels("%Nic%=Nic.ndi, pci\\ven_5d1a&dev_7a01\n")};
    kits[303] = {WithModels(Model("VEN_5D1A&REV_03&DEV_7A01")), WithModels(Model("VEN_5D1A&DEV_7A01&REV_03"))};
    kits[304] = {WithModels(Model("VEN_5D1A&DEV_7A01;first")), WithModels(Model("VEN_5D1A&DEV_7A01 ;first"))};
    kits[305] = {WithModels(kAdapter + Model("VEN_5D1B&DEV_7A01")), WithModels(kAdapter + Model("CC_020000"))};
}

/// The INF file below so many folders with names of 25 characters.
KitFiles WithDeepInf(int folders)
{
    const std::string deep = "Drv/" + Repeated("a folder of 25 characters/", folders) + "more";
    std::string backslashed = deep;
    std::ranges::replace(backslashed, '/', '\\');
    return {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64\nInfDir=" + backslashed + "\n")},
            {kPerfectInf, ""},
            {deep + "/ngea.inf", InfWithModels(kAdapter)},
            {deep + "/ngea.sys", "driver"},
            {deep + "/ngea.cat", "catalog"}};
}

void AddRulesOfResults(std::map<int, RuleKits>& kits)
{
    const std::string special = Model("VEN_5D1A&DEV_7A01&SUBSYS_00115D1A");
    const std::string newer = "10/01/2013,3.0.0.0";
    const std::string two = "InfSectionName=Norda.NTamd64\nInfDir=Drv\nInfDir=Other\n";
    const std::string swapped = "InfSectionName=Norda.NTamd64\nInfDir=Other\nInfDir=Drv\n";
    const std::string one = "InfSectionName=Norda.NTamd64\nInfDir=Drv\n";
    kits[401] = {WithSecond("Other", "ngeb.inf", Versioned(kAdapter, newer), two),
                 WithSecond("Other", "ngeb.inf", Versioned(kAdapter, newer), swapped)};
    kits[402] = {WithSecond("Other", "ngeb.inf", Versioned(special, "10/01/2011,1.0.0.0"), two),
                 WithSecond("Other", "ngeb.inf", Versioned(special, newer), two)};
    kits[403] = {WithSecond("Drv", "ngeb.inf", InfWithModels(kAdapter), one),
                 WithSecond("Drv", "ngeb.inf", InfWithModels(special), one)};
    kits[404] = {WithSecond("Other", "NGEA.inf", InfWithModels(special), two),
                 WithSecond("Other", "ngeb.inf", InfWithModels(special), two)};
    kits[405] = {WithInf("Norda,NTamd64", "Norda,NTx86"), WithInf("Norda,NTamd64", "Norda,NTx86,NTamd64")};
    kits[501] = {{{kPerfectInf, ""}, {"Drv/nic99.inf", InfWithModels(kAdapter)}},
                 {{kPerfectInf, ""}, {"Drv/NGEA99.inf", InfWithModels(kAdapter)}}};
    kits[502] = {{{kPerfectInf, Changed(Changed(InfWithModels(kAdapter), "\nngea.sys\n", "\nother.sys\n"), "ngea.sys=1",
                                        "other.sys=1")},
                  {"Drv/other.sys", "driver"}},
                 {{kPerfectInf, Changed(Changed(InfWithModels(kAdapter), "\nngea.sys\n", "\nngea5.sys\n"), "ngea.sys=1",
                                        "ngea5.sys=1")},
                  {"Drv/ngea5.sys", "driver"}}};
    kits[503] = {{{kPerfectInf, Changed(Changed(InfWithModels(kAdapter), "\nngea.sys\n", "\nngea.sys\nngea5.sys\n"),
                                        "ngea.sys=1", "ngea.sys=1\nngea5.sys=1")},
                  {"Drv/ngea5.sys", "driver"}},
                 {{kPerfectInf, Changed(Changed(InfWithModels(kAdapter), "\nngea.sys\n", "\nngea.sys\nco.dll\n"),
                                        "ngea.sys=1", "ngea.sys=1\nco.dll=1")},
                  {"Drv/co.dll", "library"}}};
    kits[504] = {{{"Drv/ngea.sys", ""}}, {{"Drv/ngea.sys", ""}, {"Drv/NGEA.SY_", "driver"}}};
    kits[505] = {{{"Drv/ngea.cat", ""}}, {{"Drv/ngea.cat", ""}, {"Drv/NGEA.CAT", "catalog"}}};
    kits[506] = {WithDeepInf(10), WithDeepInf(8)};
    kits[507] = {WithInf("DefaultDestDir=12", "DefaultDestDir=13"),
                 WithInf("DefaultDestDir=12", "DefaultDestDir = 12")};
    kits[601] = {{{kPerfectInf, "\xEF\xBB\xBF" + InfWithModels(kAdapter)}},
                 {{kPerfectInf, InfWithModels(kAdapter) + "; \xEF\xBB\xBF\n"}}};
    kits[602] = {{{"Drv/ngea.inf_old", InfWithModels(kAdapter)}}, {{"Drv/ngea.old", InfWithModels(kAdapter)}}};
    kits[701] = {TwoSystems(kAdapter), TwoSystems(kAdapter + Model("VEN_5D1A&DEV_2A10")), {"Win732E", "Win832E"}};
}

std::map<int, RuleKits> KitsOfRules()
{
    std::map<int, RuleKits> kits;
    AddRulesOfSetupIni(kits);
    AddRulesOfInfs(kits);
    AddRulesOfResults(kits);
    return kits;
}

bool HasRule(const std::vector<std::string>& found, const std::string& id)
{
    return std::ranges::any_of(found, [&id](const std::string& one) { return one.starts_with(id + " "); });
}
} // namespace

TEST(EveryRule, IsFoundInItsKitAndNotInOneThatIsNearlyTheSame)
{
    const std::map<int, RuleKits> kits = KitsOfRules();
    for (const Rule& rule : AllRules()) {
        SCOPED_TRACE(IdOf(rule));
        const auto row = kits.find(rule.number);
        ASSERT_NE(kits.end(), row);
        const std::vector<std::string> bad = FoundIn(KitWith(row->second.bad), row->second.systems);
        EXPECT_TRUE(HasRule(bad, IdOf(rule))) << testing::PrintToString(bad);
        const std::vector<std::string> good = FoundIn(KitWith(row->second.good), row->second.systems);
        EXPECT_FALSE(HasRule(good, IdOf(rule))) << testing::PrintToString(good);
    }
    EXPECT_EQ(AllRules().size(), kits.size());
}
