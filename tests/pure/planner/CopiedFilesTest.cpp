#include "CopiedFiles.h"

#include <gtest/gtest.h>

namespace {
std::string Copied(const std::string& inf, OSCode system = osWINEIGHT32E)
{
    const CodePage page(1252);
    const Profile profile(inf, page, ProfileDialect::Windows);
    const CopiedFiles copied = FilesCopiedBy(profile, "Nic.ndi", system);
    std::string names = copied.known ? "" : "<unknown>";
    for (const std::string& name : copied.inDriverDirectory) {
        names += name + " ";
    }
    return names;
}

const std::string kToDrivers = "[DestinationDirs]\r\nDefaultDestDir=12\r\n";
} // namespace

TEST(CopiedFiles, AreThoseOfAllListsThatGoToTheDriverDirectory)
{
    EXPECT_EQ("a.sys b.sys c.sys ", Copied("[Nic.ndi]\r\nCopyFiles = One, \"Two\" ; more\r\nCopyFiles=@c.sys\r\n"
                                           "[One]\r\na.sys,,,2\r\n; none.sys\r\n[Two]\r\nb.sys ; the second\r\n" +
                                           kToDrivers));
    EXPECT_EQ("b.sys ", Copied("[Nic.ndi]\r\nCopyFiles=One,Two,Three\r\n[One]\r\na.sys\r\n[Two]\r\nb.sys\r\n"
                               "[Three]\r\nc.sys\r\n[DestinationDirs]\r\nOne=11\r\nTwo=10, system32\\drivers\r\n"
                               "DefaultDestDir=13\r\n"));
    EXPECT_EQ("", Copied("[Nic.ndi]\r\nCharacteristics=1\r\n"));
}

TEST(CopiedFiles, ComeFromTheSectionOfTheSystemsProcessor)
{
    const std::string inf =
        "[Nic.ndi]\r\nCopyFiles=@p.sys\r\n[Nic.ndi.NT]\r\nCopyFiles=@nt.sys\r\n"
        "[Nic.ndi.NTamd64]\r\nCopyFiles=@x64.sys\r\n[Nic.ndi.NTia64]\r\nCopyFiles=@ia64.sys\r\n" +
        kToDrivers;
    EXPECT_EQ("x64.sys ", Copied(inf));
    EXPECT_EQ("ia64.sys ", Copied(inf, osWIN2K8R264));
    EXPECT_EQ("nt.sys ", Copied(inf, osWINEIGHT32));
    EXPECT_EQ("p.sys ", Copied("[Nic.ndi]\r\nCopyFiles=@p.sys\r\n" + kToDrivers));
    EXPECT_EQ("<unknown>", Copied("[Other]\r\nCopyFiles=@p.sys\r\n" + kToDrivers));
}

TEST(CopiedFiles, OfSectionsWithOneNameAreMergedAsSetUpDoes)
{
    EXPECT_EQ("a.sys b.sys ", Copied("[Nic.ndi]\r\nCopyFiles=L\r\n[L]\r\na.sys\r\n[l]\r\nb.sys\r\n" + kToDrivers));
}

TEST(CopiedFiles, AreReadAsSetUpReadsThem)
{
    EXPECT_EQ("a.sys b.sys ", Copied("[Nic.ndi]\r\nCopyFiles = One, \\ ; goes on\r\n %Two%\r\n[One]\r\na.sys\r\n"
                                     "[Two]\r\n\"b.sys\"\r\n[Strings]\r\nTwo = \"Two\"\r\n" +
                                     kToDrivers));
    EXPECT_EQ("a;b.sys ", Copied("[Nic.ndi]\r\nCopyFiles=One\r\n[One]\r\n\"a;b.sys\"\r\n" + kToDrivers));
}

TEST(CopiedFiles, FitAPatternWhateverTheLetterCase)
{
    EXPECT_TRUE(FitsPattern("ngea63.SYS", "NGEA*.sys"));
    EXPECT_TRUE(FitsPattern("ngea.sys", "NGEA*.sys"));
    EXPECT_FALSE(FitsPattern("nge.sys", "NGEA*.sys"));
    EXPECT_FALSE(FitsPattern("ngea.dll", "NGEA*.sys"));
    EXPECT_FALSE(FitsPattern("ngea63.sys", "NGEA62*.sys"));
    EXPECT_TRUE(FitsPattern("abcab", "a*c*b"));
}

TEST(CopiedFiles, TheInstallSectionIsTheFirstPartOfAModelLine)
{
    EXPECT_EQ("Nic.ndi", InstallSectionOf(R"( Nic.ndi , PCI\VEN_5D1A)"));
    EXPECT_EQ("Nic.ndi", InstallSectionOf("Nic.ndi ; no ID"));
    EXPECT_EQ("", InstallSectionOf(""));
}
