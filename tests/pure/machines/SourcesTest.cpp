#include "Sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "ReadMachine.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
class SourceFolder
{
public:
    SourceFolder() : m_folder(std::filesystem::temp_directory_path() / ("sources-" + std::to_string(getpid())))
    {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
    }
    ~SourceFolder() { std::filesystem::remove_all(m_folder); }
    SourceFolder(const SourceFolder&) = delete;
    SourceFolder& operator=(const SourceFolder&) = delete;

    std::string Write(const std::string& name, const std::string& bytes = "x") const
    {
        std::filesystem::create_directories((m_folder / name).parent_path());
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
        return (m_folder / name).string();
    }
    [[nodiscard]] std::string At(const std::string& name) const { return (m_folder / name).string(); }

    /// The sources and the remarks, without the folder.
    [[nodiscard]] std::vector<std::string> Expand(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> lines;
        const MachineSources found = ExpandSources(arguments);
        for (const MachineSource& source : found.sources) {
            lines.push_back(std::to_string(static_cast<int>(source.place)) + " " + Short(source.path));
        }
        for (const Diagnostic& diagnostic : found.diagnostics) {
            lines.push_back(Short(TextOf(diagnostic)));
        }
        return lines;
    }

private:
    [[nodiscard]] std::string Short(std::string text) const
    {
        const std::string folder = m_folder.string();
        return text.starts_with(folder) ? text.substr(std::min(folder.size() + 1, text.size())) : text;
    }

    std::filesystem::path m_folder;
};
} // namespace

TEST(Sources, AreFilesStandardInputAndThisMachineInTheirOrder)
{
    const SourceFolder folder;
    const std::string file = folder.Write("any name");
    EXPECT_THAT(folder.Expand({"live", file, "-"}), ElementsAre("2 live", "0 any name", "1 -"));
}

TEST(Sources, OfAFolderAreItsExportsAndHivesSortedByUpperCaseName)
{
    const SourceFolder folder;
    for (const std::string name :
         {"b.reg", "A.REG", "c.hiv", "_.reg", "system", "readme.txt", "d.reg.bak", "sub/e.reg"}) {
        folder.Write(name);
    }
    std::filesystem::create_directories(folder.At("folder.reg"));
    EXPECT_THAT(folder.Expand({folder.At("")}), ElementsAre("0 A.REG", "0 b.reg", "0 c.hiv", "0 system", "0 _.reg"));
}

TEST(Sources, OfAListAreItsLines)
{
    const SourceFolder folder;
    folder.Write("sub/a.reg");
    folder.Write("b.reg");
    folder.Write("lists/more", "../b.reg");
    const std::string list = folder.Write("lists/list", "\xEF\xBB\xBF# comment\r\n \r\n\t# another\r\n  ../sub  \r\n" +
                                                            folder.At("b.reg") + "\n@more\n-\nmissing\n");
    EXPECT_THAT(folder.Expand({"@" + list}), ElementsAre("0 lists/../sub/a.reg", "0 b.reg", "0 lists/../b.reg", "1 -",
                                                         "lists/missing: no such file or folder"));
}

TEST(Sources, ThatNameNothingAreReportedAndTheOthersExpanded)
{
    const SourceFolder folder;
    const std::string file = folder.Write("a.reg");
    std::filesystem::create_directories(folder.At("empty"));
    EXPECT_THAT(
        folder.Expand({folder.At("gone"), file, folder.At("empty"), "@" + folder.At("gone"), "@" + folder.At("empty")}),
        ElementsAre("0 a.reg", "gone: no such file or folder",
                    "empty: has no registry exports (.reg) and no SYSTEM hive; name the files",
                    "gone: the list cannot be opened; name a text file with one machine a line",
                    "empty: the list cannot be opened; name a text file with one machine a line"));
}

TEST(Sources, OfAListThatNamesItselfAreThoseOfItsOtherLines)
{
    const SourceFolder folder;
    folder.Write("a.reg");
    const std::string list = folder.Write("list", "@list\na.reg\n@sub/../list\n");
    std::filesystem::create_directories(folder.At("sub"));
    EXPECT_THAT(folder.Expand({"@" + list}),
                ElementsAre("0 a.reg", "list: the list names itself; remove the line that names it",
                            "sub/../list: the list names itself; remove the line that names it"));
    folder.Write("one", "@two\n");
    const std::string two = folder.Write("two", "@one\na.reg\n");
    EXPECT_THAT(folder.Expand({"@" + two}),
                ElementsAre("0 a.reg", "two: the list names itself; remove the line that names it"));
}

TEST(Sources, OfAListThatIsNamedTwiceAreReadTwice)
{
    const SourceFolder folder;
    folder.Write("a.reg");
    folder.Write("list", "a.reg\n");
    const std::string both = folder.Write("both", "@list\n@list\n");
    EXPECT_THAT(folder.Expand({"@" + both}), ElementsAre("0 a.reg", "0 a.reg"));
}

TEST(Sources, OfListsThatAreNestedTooDeeplyAreReported)
{
    const SourceFolder folder;
    folder.Write("a.reg");
    folder.Write("list8", "a.reg\n");
    for (int list = 7; list >= 0; --list) {
        folder.Write("list" + std::to_string(list), "@list" + std::to_string(list + 1) + "\n");
    }
    EXPECT_THAT(folder.Expand({"@" + folder.At("list1")}), ElementsAre("0 a.reg"));
    EXPECT_THAT(folder.Expand({"@" + folder.At("list0")}),
                ElementsAre("list8: lists are nested too deeply; name its machines in the list that names it"));
}

TEST(Sources, OfNothingAreNone)
{
    EXPECT_THAT(SourceFolder().Expand({}), IsEmpty());
}

TEST(Reading, SaysWhyAFileCannotBeRead)
{
    const SourceFolder folder;
    const auto read = [](const std::string& path) {
        const Machine machine = ReadMachine({.place = MachineSource::Place::File, .path = path});
        EXPECT_TRUE(machine.refused);
        return machine.diagnostics.at(0).what;
    };
    EXPECT_EQ("cannot be read: No such file or directory", read(folder.At("gone")));
    EXPECT_EQ("cannot be read: Is a directory", read(folder.At("")));
    EXPECT_EQ("not a registry export: the file is empty", read(folder.Write("empty", "")));
}

TEST(Reading, OfThisMachineIsRefusedWhereThereIsNoRegistry)
{
    const Machine machine = ReadMachine({.place = MachineSource::Place::ThisMachine, .path = "live"});
    EXPECT_TRUE(machine.refused);
    EXPECT_EQ("live: this machine has no registry; name an export or a hive", TextOf(machine.diagnostics.at(0)));
}
