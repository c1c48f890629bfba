#include <gtest/gtest.h>

#include "Kits.h"

namespace {
const std::string kNames = "InfSectionName=Norda.NTamd64\n";

/// A directory of which seven fill more than a section.
std::string LongDirectory(int number)
{
    return "Drivers for the adapters of the first generation and of the second one\\" + std::to_string(number);
}

/// A kit whose last directories are lost; each directory has an INF file.
KitFiles KitWithLongSection(int directories)
{
    KitFiles files;
    std::string lines = kNames;
    for (int number = 1; number <= directories; ++number) {
        lines += "InfDir=" + LongDirectory(number) + "\n";
        std::string path = LongDirectory(number);
        path[path.find('\\')] = '/';
        const std::string name = "ngea" + std::to_string(number) + ".inf";
        files[path + "/" + name] = InfWithModels(Model("VEN_5D1A&DEV_700" + std::to_string(number)));
        files[path + "/ngea.sys"] = "driver";
        files[path + "/ngea.cat"] = "catalog";
    }
    files["Morvix.ini"] = Ini(lines);
    files[kPerfectInf] = "";
    return files;
}

std::string LongExclusions(int count)
{
    std::string lines;
    for (int number = 0; number < count; ++number) {
        lines += "InfExclude=ngea.inf\n";
    }
    return lines;
}
} // namespace

TEST(PerfectKit, YieldsNothing)
{
    EXPECT_EQ(std::vector<std::string>(), FoundIn(PerfectKit(), {"Win832E"}));
}

TEST(SetupIniRules, MissingSectionsAndNamesAreFound)
{
    ExpectRows({
        {"a system without section", {}, {"MK101 Morvix.ini:1:1"}, {"Win732E", "Win832E"}},
        {"section in other letters", {{"Morvix.ini", "[WIN832e]\n" + kNames + "InfDir=Drv\n"}}, {}},
        {"no names", {{"Morvix.ini", Ini("InfDir=Drv\n")}}, {"MK104 Morvix.ini:1:2"}},
        {"empty names", {{"Morvix.ini", Ini("InfSectionName=\nInfDir=Drv\n")}}, {"MK104 Morvix.ini:1:2"}},
        {"names beyond 259 characters",
         {{"Morvix.ini", Ini("InfSectionName=Norda.NTamd64," + std::string(246, 'x') + ",y\nInfDir=Drv\n")}},
         {"MK104 Morvix.ini:2:16", "MK205 Morvix.ini:2:16"}},
        {"names of 258 characters in quotation marks",
         {{"Morvix.ini", Ini("InfSectionName=\"" + std::string(245, ',') + "Norda.NTamd64\"\nInfDir=Drv\n")}},
         {}},
        {"names of 259 characters in quotation marks, of which Wine loses one",
         {{"Morvix.ini", Ini("InfSectionName=\"" + std::string(246, ',') + "Norda.NTamd64\"\nInfDir=Drv\n")}},
         {"MK601 Morvix.ini:1:2"}},
    });
}

TEST(SetupIniRules, WhatIsCutOffIsFound)
{
    ExpectRows({
        {"six long directories", KitWithLongSection(6), {}},
        {"seven long directories", KitWithLongSection(7), {"MK102 Morvix.ini:9:1"}},
        {"nine long directories: the first one that is lost", KitWithLongSection(9), {"MK102 Morvix.ini:9:1"}},
        {"only exclusions after the cut of the directories",
         {{"Morvix.ini", Ini(kNames + "InfDir=Drv\n" + LongExclusions(40))}},
         {}},
        {"exclusions after 1022 characters",
         {{"Morvix.ini", Ini(kNames + "InfDir=Drv\n" + LongExclusions(60))}},
         {"MK103 Morvix.ini:53:1"}},
    });
}

TEST(SetupIniRules, DirectoriesThatAreNotWhatTheySeemAreFound)
{
    const auto dir = [](const std::string& line) {
        return KitFiles{{"Morvix.ini", Ini(kNames + line + "InfDir=Drv\n")}};
    };
    ExpectRows({
        {"two full stops", dir("InfDir=..\\Drv\n"), {"MK105 Morvix.ini:3:8"}},
        {"one full stop", dir("InfDir=.\\Drv\n"), {"MK105 Morvix.ini:3:8"}},
        {"a network share", dir("InfDir=\\\\server\\drivers\n"), {"MK106 Morvix.ini:3:8"}},
        {"a directory of the drive, unknown here", dir("InfDir=\\Drivers\n"), {}},
        {"a directory of another drive, unknown here", dir("InfDir=D:\\Drivers\n"), {}},
        {"quotation marks", dir("InfDir=\"Drv\"\n"), {"MK107 Morvix.ini:3:8"}},
        {"a comment after a directory", dir("InfDir=Drv ; for x64\n"), {"MK108 Morvix.ini:3:8"}},
        {"a comment in a line of its own", dir("; InfDir=None\n"), {}},
        {"a missing directory", dir("InfDir=None\n"), {"MK111 Morvix.ini:3:8"}},
        {"a directory in other letters", {{"Morvix.ini", Ini(kNames + "InfDir=DRV\\\n")}}, {}},
        {"an empty directory",
         {{"Morvix.ini", Ini(kNames + "InfDir=Empty\nInfDir=Drv\n")}, {"Empty/readme.txt", "x"}},
         {"MK111 Morvix.ini:3:8"}},
    });
}

TEST(SetupIniRules, TheBaseItselfIsAGoodDirectory)
{
    ExpectRows({{"a full stop",
                 {{"Morvix.ini", Ini(kNames + "InfDir=.\n")},
                  {kPerfectInf, ""},
                  {"ngea.inf", InfWithModels(Model("VEN_5D1A&DEV_7A01"))},
                  {"ngea.sys", "driver"},
                  {"ngea.cat", "catalog"}},
                 {}}});
}

TEST(SetupIniRules, ADirectoryWithASemicolonIsOne)
{
    ExpectRows({{"a directory of that name",
                 {{"Morvix.ini", Ini(kNames + "InfDir=Drv;x64\n")},
                  {kPerfectInf, ""},
                  {"Drv;x64/ngea.inf", InfWithModels(Model("VEN_5D1A&DEV_7A01"))},
                  {"Drv;x64/ngea.sys", "driver"},
                  {"Drv;x64/ngea.cat", "catalog"}},
                 {}}});
}

TEST(SetupIniRules, LinesThatCountOtherwiseThanTheyLookAreFound)
{
    const auto line = [](const std::string& text) {
        return KitFiles{{"Morvix.ini", Ini(kNames + "InfDir=Drv\n" + text)}};
    };
    ExpectRows({
        {"a marker in lower case", line("infdir=Old\n"), {"MK109 Morvix.ini:4:1"}},
        {"an exclusion in lower case", line("infexclude=ngea.inf\n"), {"MK109 Morvix.ini:4:1"}},
        {"text before a marker", line("NotNow_InfDir=Drv\n"), {"MK109 Morvix.ini:4:1"}},
        {"a marker twice", line("InfDir=InfDir=Drv\n"), {"MK109 Morvix.ini:4:1"}},
        {"switched off", line(";InfDir=Old\n"), {}},
        {"another key", line("Comment=the directories\n"), {}},
    });
}

TEST(SetupIniRules, OddNamesOfSectionsAreFound)
{
    const auto names = [](const std::string& value) {
        return KitFiles{{"Morvix.ini", Ini("InfSectionName=" + value + "\nInfDir=Drv\n")}};
    };
    ExpectRows({
        {"a blank before a comma", names("Other ,Norda.NTamd64"), {"MK110 Morvix.ini:2:16"}},
        {"a blank after a comma", names("Norda.NTamd64, Other"), {"MK110 Morvix.ini:2:16"}},
        {"a comment after the names", names("Norda.NTamd64,Norda.NTamd64.6.2 ;both"), {"MK108 Morvix.ini:2:16"}},
        {"quotation marks around the names", names("\"Norda.NTamd64\""), {}},
        {"a name that no INF file has", names("Norda.NTamd64,Norda.NTamd64.6.2"), {"MK205 Morvix.ini:2:16"}},
        {"a name in other letters", names("NORDA.ntAMD64"), {}},
    });
}

TEST(SetupIniRules, ABaseThatCannotBeUsedIsFound)
{
    const auto levels = [](const std::string& value) {
        return KitFiles{{"Morvix.ini", "[Config]\nLevelsToRoot=" + value + "\n" + PerfectKit()["Morvix.ini"]}};
    };
    ExpectRows({
        {"a word", levels("one"), {"MK112 Morvix.ini:2:14"}},
        {"a number below zero", levels("-1"), {"MK112 Morvix.ini:2:14"}},
        {"more than 260", levels("261"), {"MK112 Morvix.ini:2:14"}},
        {"zero", levels("0"), {}},
        {"quotation marks", levels("\"0\""), {}},
        {"a comment after the number", levels("0 ; the program's own folder"), {}},
    });
}

TEST(SetupIniRules, ExclusionsThatExcludeNothingAreFound)
{
    const auto exclude = [](const std::string& value) {
        return KitFiles{{"Morvix.ini", Ini(kNames + "InfDir=Drv\nInfExclude=" + value + "\n")},
                        {"Drv/ngea-old.inf", InfWithModels(Model("VEN_5D1A&DEV_7A02"))}};
    };
    ExpectRows({
        {"a file", exclude("ngea-old.inf"), {}},
        {"other letters", exclude("NGEA-OLD.INF"), {}},
        {"no such file", exclude("older.inf"), {"MK113 Morvix.ini:4:12"}},
        {"a pattern", exclude("old*.inf"), {"MK113 Morvix.ini:4:12"}},
        {"a directory", exclude("Drv\\old.inf"), {"MK113 Morvix.ini:4:12"}},
        {"a comment after the file", exclude("old.inf ; too old"), {"MK108 Morvix.ini:4:12"}},
    });
}
