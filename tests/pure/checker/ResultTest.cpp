#include <gtest/gtest.h>

#include "Kits.h"

namespace {
const std::string kGood = InfWithModels(Model("VEN_5D1A&DEV_7A01"));

KitFiles With(const std::string& inf)
{
    return {{kPerfectInf, inf}};
}

/// The perfect kit for Windows 7 x64.
KitFiles OnSeven(const std::string& driver)
{
    return {{"Morvix.ini", Changed(PerfectKit()["Morvix.ini"], "Win832E", "Win732E")},
            {kPerfectInf, Changed(Changed(kGood, "\nngea.sys\n", "\n" + driver + "\n"), "ngea.sys=1", driver + "=1")},
            {"Drv/" + driver, "driver"}};
}
} // namespace

TEST(ResultRules, NamesOfNoFamilyAreFound)
{
    ExpectRows({
        {"another name", {{kPerfectInf, ""}, {"Drv/nic99.inf", kGood}}, {"MK501 Drv/nic99.inf:1:1"}},
        {"a prefix in the middle of the name",
         {{kPerfectInf, ""}, {"Drv/x-ngea.inf", kGood}},
         {"MK501 Drv/x-ngea.inf:1:1"}},
        {"a family's prefix in capitals", {{kPerfectInf, ""}, {"Drv/NGEA99.INF", kGood}}, {}},
        {"a system device", {{kPerfectInf, ""}, {"Drv/qdatdma.inf", Changed(kGood, "Class=Net", "Class=System")}}, {}},
    });
}

TEST(ResultRules, DriverFilesThatTheResultDoesNotSeeAreFound)
{
    const std::vector<std::string> seven{"Win732E"};
    ExpectRows({
        {"another name of the driver",
         {{kPerfectInf, Changed(Changed(kGood, "\nngea.sys\n", "\nnic.sys\n"), "ngea.sys=1", "nic.sys=1")},
          {"Drv/nic.sys", "driver"}},
         {"MK502 Drv/ngea.inf:9:1"}},
        {"without 62 on Windows 7", OnSeven("ngea.sys"), {"MK502 Drv/ngea.inf:9:1"}, seven},
        {"with 62 on Windows 7", OnSeven("ngea62x64.sys"), {}, seven},
        {"a family without 62",
         {{"Morvix.ini", OnSeven("ngea.sys")["Morvix.ini"]},
          {kPerfectInf, ""},
          {"Drv/ng1k.inf", OnSeven("ng1k.sys")[kPerfectInf]},
          {"Drv/ng1k.sys", "driver"}},
         {},
         seven},
        {"files of another INF", With(Changed(kGood, "CopyFiles=Nic.Files", "Include=netrass.inf")), {}},
        {"an install section that is not there", With(Changed(kGood, "[Nic.ndi]", "[Nik.ndi]")), {}},
        {"directory 13", With(Changed(kGood, "DefaultDestDir=12", "DefaultDestDir=13")), {"MK507 Drv/ngea.inf:13:1"}},
        {"directory 10 and system32\\drivers",
         With(Changed(kGood, "DefaultDestDir=12", "DefaultDestDir=10,system32\\drivers")),
         {}},
        {"the section for the processor",
         With(Changed(kGood, "[Nic.ndi]\nCopyFiles=Nic.Files",
                      "[Nic.ndi]\nAddReg=x\n[Nic.ndi.NTamd64]\nCopyFiles=Nic.Files")),
         {}},
    });
}

TEST(ResultRules, DriverFilesThatCanBeStaleAreFound)
{
    const std::string two = Changed(Changed(kGood, "\nngea.sys\n", "\nngea.sys\nngea-diag.sys\n"), "ngea.sys=1",
                                    "ngea.sys=1\nngea-diag.sys=1");
    const auto vista = [](const std::string& driver) {
        return KitFiles{
            {"Morvix.ini", PerfectKit()["Morvix.ini"] + "[WinVista32E]\nInfSectionName=Norda.NTamd64\nInfDir=Vista\n"},
            {"Vista/ngea60.inf",
             Changed(Changed(kGood, "\nngea.sys\n", "\n" + driver + "\n"), "ngea.sys=1", driver + "=1")},
            {"Vista/" + driver, "driver"},
            {"Vista/ngea.cat", "catalog"}};
    };
    const std::vector<std::string> both{"WinVista32E", "Win832E"};
    ExpectRows({
        {"two files of one package", {{kPerfectInf, two}, {"Drv/ngea-diag.sys", "driver"}}, {"MK503 Drv/ngea.inf:9:1"}},
        {"an earlier system's file that comes first", vista("ngea!.sys"), {"MK503 Drv/ngea.inf:13:1"}, both},
        {"an earlier system's file that comes later, to which the finding belongs",
         vista("ngea60.sys"),
         {"MK503 Vista/ngea60.inf:13:1"},
         both},
        {"the same name on both systems", vista("ngea.sys"), {}, both},
    });
}

TEST(PackageRules, MissingSourceFilesAreFound)
{
    const auto disks = [](const std::string& names, const std::string& files) {
        return Changed(Changed(kGood, "1=%Disk%", names), "ngea.sys=1", files);
    };
    ExpectRows({
        {"no driver file", {{"Drv/ngea.sys", ""}}, {"MK504 Drv/ngea.inf:13:1"}},
        {"a compressed driver file", {{"Drv/ngea.sys", ""}, {"Drv/ngea.sy_", "driver"}}, {}},
        {"a folder of the disk",
         {{kPerfectInf, disks("1=%Disk%,,,\\x64", "ngea.sys=1")}, {"Drv/ngea.sys", ""}, {"Drv/x64/ngea.sys", "driver"}},
         {}},
        {"a folder of the file",
         {{kPerfectInf, disks("1=%Disk%", "ngea.sys=1,x64")}, {"Drv/ngea.sys", ""}, {"Drv/x64/ngea.sys", "driver"}},
         {}},
        {"a folder of the file, where it is not",
         With(disks("1=%Disk%", "ngea.sys=1,x64")),
         {"MK504 Drv/ngea.inf:13:1"}},
        {"a cabinet", {{kPerfectInf, disks("1=%Disk%,net.cab", "ngea.sys=1")}, {"Drv/ngea.sys", ""}}, {}},
        {"a list for the processor",
         {{kPerfectInf, Changed(disks("1=%Disk%", "ngea.sys=1"), "[SourceDisksFiles]", "[SourceDisksFiles.amd64]")}},
         {}},
        {"another name in the package",
         {{kPerfectInf,
           Changed(Changed(kGood, "\nngea.sys\n", "\nngea.sys,ngea64.sys\n"), "ngea.sys=1", "ngea64.sys=1")},
          {"Drv/ngea.sys", ""},
          {"Drv/ngea64.sys", "driver"}},
         {}},
        {"files of the platform's own layout",
         {{kPerfectInf,
           Changed(Changed(kGood, "ngea.sys=1", "x.sys=1"), "Class=Net", "Class=Net\nLayoutFile=layout.inf")},
          {"Drv/ngea.sys", ""}},
         {}},
    });
}

TEST(PackageRules, MissingCatalogsAreFound)
{
    const std::string none = Changed(kGood, "CatalogFile=ngea.cat\n", "");
    const auto on = [](const std::string& system, const std::string& inf) {
        return KitFiles{{"Morvix.ini", Changed(PerfectKit()["Morvix.ini"], "Win832E", system)}, {kPerfectInf, inf}};
    };
    ExpectRows({
        {"no catalog", With(none), {"MK505 Drv/ngea.inf:1:2"}},
        {"a catalog that is not there", {{"Drv/ngea.cat", ""}}, {"MK505 Drv/ngea.inf:5:1"}},
        {"a catalog for the processor", With(Changed(kGood, "CatalogFile=", "CatalogFile.NTamd64=")), {}},
        {"on Windows XP x64", on("WinXP32E", none), {}, {"WinXP32E"}},
        {"on 32-bit Windows 8",
         on("Win832", Changed(none, "=Norda,NTamd64", "=Norda,NTamd64,NTx86")),
         {"MK405 Drv/ngea.inf:8:1"},
         {"Win832"}},
    });
}

TEST(PackageRules, PathsThatDoNotFitTheRecordAreFound)
{
    const auto folder = [](std::size_t length) {
        const std::string half(length / 2, 'x');
        std::string name = half + "/" + std::string(length - half.size() - 1, 'y');
        KitFiles files{{kPerfectInf, ""}};
        files[name + "/ngea.inf"] = kGood;
        files[name + "/ngea.sys"] = "driver";
        files[name + "/ngea.cat"] = "catalog";
        name[half.size()] = '\\';
        files["Morvix.ini"] = Ini("InfSectionName=Norda.NTamd64\nInfDir=" + name + "\n");
        return files;
    };
    // "C:\Kit\", the folder, and "\ngea.inf".
    constexpr std::size_t kRest = 7 + 9;
    const KitFiles longest = folder(255 - kRest);
    const KitFiles longer = folder(256 - kRest);
    std::string inf;
    for (const auto& [name, text] : longer) {
        inf = name.ends_with("ngea.inf") && name != kPerfectInf ? name : inf;
    }
    ExpectRows({{"255 characters", longest, {}}, {"256 characters", longer, {"MK506 " + inf + ":1:1"}}});
}

TEST(ReaderRules, WhereReadersDisagreeIsFound)
{
    const std::string mark = "\xEF\xBB\xBF";
    ExpectRows({
        {"a section without its bracket",
         {{"Morvix.ini", Changed(PerfectKit()["Morvix.ini"], "[Win832E]", "[Win832E")}},
         {"MK601 Morvix.ini:1:2"}},
        {"the mark of UTF-8", {{kPerfectInf, mark + kGood}}, {"MK202 Drv/ngea.inf:1:1", "MK601 Drv/ngea.inf:1:1"}},
        {"the mark of UTF-8 before a comment", {{kPerfectInf, mark + "; a driver\n" + kGood}}, {}},
        {"blanks around an equals sign of Morvix.ini",
         {{"Morvix.ini", Changed(PerfectKit()["Morvix.ini"], "InfDir=Drv", "InfDir = Drv")}},
         {"MK201 Drv/ngea.inf:1:1", "MK109 Morvix.ini:3:1", "MK601 Morvix.ini:3:1"}},
        {"blanks around an equals sign of an INF file", {{kPerfectInf, Changed(kGood, "%Nic%=", "%Nic% = ")}}, {}},
    });
}

TEST(ReaderRules, OneReaderIsEnough)
{
    const KitFiles kit = KitWith({{"Morvix.ini", Changed(PerfectKit()["Morvix.ini"], "InfDir=Drv", "InfDir = Drv")}});
    EXPECT_EQ((std::vector<std::string>{"MK201 Drv/ngea.inf:1:1", "MK109 Morvix.ini:3:1"}),
              FoundIn(kit, {"Win832E"}, Readers::Windows));
    EXPECT_EQ(std::vector<std::string>(), FoundIn(kit, {"Win832E"}, Readers::Wine));
}

TEST(ReaderRules, NamesThatAFileSystemConfusesAreFound)
{
    const std::string other = InfWithModels(Model("VEN_5D1A&DEV_7A02"));
    ExpectRows({
        {"a longer ending", {{"Drv/ngea2.infx", other}}, {"MK602 Drv/ngea2.infx:1:1"}},
        {"an old file", {{"Drv/ngea2.inf_old", other}}, {"MK602 Drv/ngea2.inf_old:1:1"}},
        {"letter case only", {{"Drv/NGEA.inf", other}}, {"MK404 Drv/ngea.inf:1:1", "MK602 Drv/ngea.inf:1:1"}},
        {"a backup of another ending", {{"Drv/ngea.inf.bak", other}}, {}},
    });
}
