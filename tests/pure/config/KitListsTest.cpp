#include "KitLists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryKit.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class KitLists : public testing::Test
{
protected:
    void WriteIni(const std::string& text) { m_memory.kit.Add(R"(C:\Kit\Morvix.ini)", text); }
    std::vector<std::string> Directories()
    {
        std::vector<std::string> directories;
        ReadInfDirs(m_memory.Search(), "Win732E", directories);
        return directories;
    }
    std::vector<std::string> Excludes()
    {
        std::vector<std::string> excludes;
        ReadInfExcludes(m_memory.Search(), "Win732E", excludes);
        return excludes;
    }
    std::vector<std::string> SectionNames(OSCode system = osWINSEVEN32E)
    {
        KitSearch search = m_memory.Search();
        search.system = system;
        std::vector<std::string> names;
        ReadSectionNames(search, names);
        return names;
    }

    MemorySearch m_memory;
};

/// A section of so many characters with the terminators of its lines, and one directory at its very end.
std::string SectionOf(std::size_t characters)
{
    const std::string last = "InfDir=Z";
    return "[Win732E]\nx=" + std::string(characters - last.size() - 4, 'x') + "\n" + last + "\n";
}
} // namespace

TEST_F(KitLists, TheSetupIniIsInTheProgramsDirectory)
{
    EXPECT_EQ(SetupIniIn(R"(C:\Kit)"), R"(C:\Kit\Morvix.ini)");
}

TEST_F(KitLists, LevelsToRootIsANumberOrZero)
{
    EXPECT_EQ(ReadLevelsToRoot(m_memory.Search()), 0);
    WriteIni("[Config]\nLevelsToRoot=2\n");
    EXPECT_EQ(ReadLevelsToRoot(m_memory.Search()), 2);
    EXPECT_EQ(m_memory.log.lines.back(), "Entering - GetLevelsToRootFromINI");
}

TEST_F(KitLists, DirectoriesAreResolvedInFileOrderAndEndWithABackslash)
{
    WriteIni("[Config]\nLevelsToRoot=0\n[Win732E]\nInfDir=Drv\nother=1\nInfDir=D:\\Extra\\\nInfDir=.\\x\n");
    EXPECT_THAT(Directories(), ElementsAre("C:\\Kit\\Drv\\", "D:\\Extra\\", "C:\\Kit\\"));
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Entering - ReadInfDirsFromIni", "Entering - ResolvePah",
                                                "Entering - GetLevelsToRootFromINI", "Entering - ResolvePah",
                                                "Entering - ResolvePah", "Entering - GetLevelsToRootFromINI"));
    EXPECT_EQ(m_memory.log.steps, std::vector(3, SearchStep::DirectoryResolved));
}

TEST_F(KitLists, ResolvedDirectoriesStartAboveTheProgramsWithLevelsAndKeepTheirEndWhenAsked)
{
    WriteIni("[Config]\nLevelsToRoot=1\n");
    EXPECT_EQ(ResolveDirectory(m_memory.Search(), "Drv", false), "C:\\Drv");
    EXPECT_EQ(ResolveDirectory(m_memory.Search(), "D:\\x", true), "D:\\x\\");
    EXPECT_EQ(ResolveDirectory(m_memory.Search(), "D:\\x", false), "D:\\x");
}

TEST_F(KitLists, AMissingSectionOfDirectoriesIsTraced)
{
    EXPECT_THAT(Directories(), IsEmpty());
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Entering - ReadInfDirsFromIni", "GetPrivateProfileSection() failed"));
}

TEST_F(KitLists, ASectionThatWasCutIsReadOnceMoreAndThenStaysCut)
{
    const std::string larger = "GetPrivateProfileSection() increasing size of section buffer\n";
    struct Row
    {
        std::size_t characters;
        int reads;
        bool found;
    };
    // A section that fills the room of the first buffer exactly counts as cut.
    for (const Row& row : {Row{257, 1, true}, Row{258, 2, true}, Row{259, 2, true}, Row{519, 2, true},
                           Row{520, 2, false}, Row{2000, 2, false}}) {
        WriteIni(SectionOf(row.characters));
        m_memory.log.lines.clear();
        m_memory.kit.profileReads = 0;
        const std::vector<std::string> directories = Directories();
        EXPECT_EQ(!directories.empty() && directories.back() == "C:\\Kit\\Z\\", row.found) << row.characters;
        EXPECT_EQ(std::ranges::count(m_memory.log.lines, larger), row.reads - 1) << row.characters;
        EXPECT_EQ(m_memory.kit.profileReads - static_cast<int>(directories.size()), row.reads) << row.characters;
    }
}

TEST_F(KitLists, ExcludedNamesAreTakenAsWrittenAndTraced)
{
    WriteIni("[Win732E]\nInfExclude=One.INF\nInfDir=Drv\nInfExclude= two.inf\n");
    EXPECT_THAT(Excludes(), ElementsAre("One.INF", " two.inf"));
    EXPECT_THAT(m_memory.log.lines,
                ElementsAre("Entering - ReadInfExcludeFilesFromINI", "INFs to exclude:", "One.INF", " two.inf"));
}

TEST_F(KitLists, AMissingSectionOfExclusionsIsTracedAndMoreThan1022CharactersAreLost)
{
    EXPECT_THAT(Excludes(), IsEmpty());
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Entering - ReadInfExcludeFilesFromINI",
                                                "GetPrivateProfileSection() failed", "INFs to exclude:"));
    const std::string last = "InfExclude=abc";
    for (const std::size_t before : {1000U, 1006U, 1007U, 1008U}) {
        WriteIni("[Win732E]\n" + std::string(before, 'x') + "\n" + last + "\n");
        const std::string whole = std::string(before, 'x') + '\0' + last;
        EXPECT_THAT(Excludes(), ElementsAre(whole.substr(0, 1022).substr(before + 1 + 11))) << before;
    }
}

TEST_F(KitLists, SectionNamesComeInReverseOrder)
{
    WriteIni("[Win732E]\nInfSectionName=Norda.NTamd64,Norda\n");
    EXPECT_THAT(SectionNames(), ElementsAre("Norda", "Norda.NTamd64"));
    EXPECT_THAT(m_memory.log.lines,
                ElementsAre("Entering - GetINFSectionNamesFromINI", "section names from ini: Norda.NTamd64,Norda\n",
                            "added section name: Norda\n", "added section name: Norda.NTamd64\n"));
}

TEST_F(KitLists, EverySystemReadsItsOwnSection)
{
    for (const SystemRow& row : kSystems) {
        const std::string key(row.sectionKey);
        WriteIni("[" + (key.empty() ? "None" : key) + "]\nInfSectionName=N." + key + "\n");
        m_memory.log.lines.clear();
        EXPECT_THAT(SectionNames(row.code), ElementsAre(key.empty() ? "" : "N." + key));
        EXPECT_EQ(m_memory.log.Said("unsupported OS, unable to get section name\n"), key.empty()) << row.code;
    }
}

TEST_F(KitLists, ListsAreThoseOfTheSystemAndTracedInOneLine)
{
    WriteIni("[Win732E]\nInfDir=A:\\1\nInfDir=B:\\2\nInfExclude=x.inf\n[Win832E]\nInfDir=C:\\3\n");
    std::vector<std::string> directories{"D:\\before\\"};
    std::vector<std::string> excludes;
    ReadInfLists(m_memory.Search(), directories, excludes);
    EXPECT_THAT(directories, ElementsAre("D:\\before\\", "A:\\1\\", "B:\\2\\"));
    EXPECT_THAT(excludes, ElementsAre("x.inf"));
    ASSERT_GE(m_memory.log.lines.size(), 4U);
    EXPECT_EQ(m_memory.log.lines[0], "Entering - GetInfDirs");
    EXPECT_EQ(m_memory.log.lines[1], "reading ini file for candidate directories\n");
    EXPECT_EQ(m_memory.log.lines[2], "osWINSEVEN32E detected\n");
    EXPECT_EQ(m_memory.log.lines.back(), "infdirs: [D:\\before\\] [A:\\1\\] [B:\\2\\] \n");
}

TEST_F(KitLists, ASystemThatIsNotServedHasNoLists)
{
    KitSearch search = m_memory.Search();
    search.system = osWIN2K;
    std::vector<std::string> directories;
    std::vector<std::string> excludes;
    ReadInfLists(search, directories, excludes);
    EXPECT_THAT(directories, IsEmpty());
    EXPECT_THAT(excludes, IsEmpty());
    EXPECT_THAT(m_memory.log.lines, ElementsAre("Entering - GetInfDirs", "reading ini file for candidate directories\n",
                                                "unsupported os detected\n", "infdirs: \n"));
}
