#include "KitFolder.h"

#include <gtest/gtest.h>
#include <thread>

#include "KitOnDisk.h"

namespace {
std::string Value(FolderKitSource& source, const char* section, const char* key, const std::string& file)
{
    std::array<char, 64> buffer{};
    source.ReadText(section, key, "<default>", buffer, file);
    return buffer.data();
}

std::string Listed(KitSource& source, const std::string& directory)
{
    std::string names;
    const auto listing = source.List(directory);
    while (const InfEntry* const entry = listing ? listing->Next() : nullptr) {
        names += entry->name + " ";
    }
    return listing ? names : "<none>";
}
} // namespace

TEST(KitFolder, ReadsFilesByTheirPathOnTheMachineWhateverTheLetterCase)
{
    const TestFolder folder;
    folder.Write("morvix.INI", "[Config]\r\nLevelsToRoot=2\r\n");
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("2", Value(source, "Config", "LevelsToRoot", R"(C:\Kit\Morvix.ini)"));
    EXPECT_EQ("2", Value(source, "config", "levelstoroot", R"(c:\KIT\MORVIX.INI)"));
    EXPECT_EQ("<default>", Value(source, "Config", "LevelsToRoot", R"(C:\Kit\Other.ini)"));
}

TEST(KitFolder, ListsInfFilesInTheOrderOfTheirUpperCasedNames)
{
    const TestFolder folder;
    for (const char* const name : {"b.inf", "A.INF", "_c.inf", "a.txt", "d.infx"}) {
        folder.Write(std::string("Drv/") + name, "");
    }
    folder.Write("Empty/readme.txt", "");
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("A.INF b.inf d.infx _c.inf ", Listed(source, R"(C:\Kit\drv\)"));
    EXPECT_EQ("<none>", Listed(source, R"(C:\Kit\Empty\)"));
    EXPECT_EQ("<none>", Listed(source, R"(C:\Kit\Missing\)"));
    EXPECT_TRUE(kit.Remarks().empty());
}

TEST(KitFolder, ReadsEachFileOnceAndSaysSoWhenTheFolderVanishes)
{
    auto folder = std::make_unique<TestFolder>();
    folder->Write("Morvix.ini", "");
    folder->Write("a.inf", "[Version]\r\nSignature=x\r\n");
    KitFolder kit(PlaceOf(*folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("x", Value(source, "Version", "Signature", R"(C:\Kit\a.inf)"));
    EXPECT_TRUE(kit.Remarks().empty());
    folder.reset();
    EXPECT_EQ("x", Value(source, "Version", "Signature", R"(C:\Kit\a.inf)"));
    EXPECT_EQ("<default>", Value(source, "Version", "Signature", R"(C:\Kit\Drv\b.inf)"));
    ASSERT_EQ(1U, kit.Remarks().size());
    EXPECT_EQ(Severity::Error, kit.Remarks().front().severity);
}

TEST(KitFolder, AFileThatCannotBeReadIsNamedWithTheCause)
{
    const TestFolder folder;
    folder.Write("gone.inf", "[Version]\r\nSignature=x\r\n");
    std::filesystem::create_symlink("loop.inf", folder.Path() / "loop.inf");
    // This file opens, and has nothing where a reader begins.
    std::filesystem::create_symlink("/proc/self/mem", folder.Path() / "memory.inf");
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("gone.inf loop.inf memory.inf ", Listed(source, "C:\\Kit\\"));
    std::filesystem::remove(folder.Path() / "gone.inf");
    for (const char* const name : {"gone.inf", "loop.inf", "memory.inf"}) {
        EXPECT_EQ("<default>", Value(source, "Version", "Signature", std::string("C:\\Kit\\") + name));
    }
    const std::vector<Diagnostic> remarks = kit.Remarks();
    ASSERT_EQ(3U, remarks.size());
    const std::array causes{std::errc::no_such_file_or_directory, std::errc::too_many_symbolic_link_levels,
                            std::errc::io_error};
    for (std::size_t at = 0; at < causes.size(); ++at) {
        EXPECT_EQ(Severity::Error, remarks[at].severity);
        EXPECT_EQ("cannot be read (" + std::make_error_code(causes.at(at)).message() + "), and counts as empty",
                  remarks[at].what);
    }
    EXPECT_EQ((folder.Path() / "gone.inf").string(), remarks[0].source);
}

TEST(KitFolder, AFileOfLettersBeyondAsciiIsReadInTheCodePageOfTheMachine)
{
    const TestFolder folder;
    folder.Write("a.inf", std::string_view("\xFF\xFE[\0v\0]\0\r\0\n\0k\0=\0\xE9\0\r\0\n\0", 22));
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource western(kit, 1252);
    FolderKitSource utf8(kit, 65001);
    EXPECT_EQ("\xE9", Value(western, "v", "k", R"(C:\Kit\a.inf)"));
    EXPECT_EQ("\xC3\xA9", Value(utf8, "v", "k", R"(C:\Kit\a.inf)"));
    EXPECT_TRUE(western.MarkOf(R"(C:\Kit\a.inf)").utf16);
}

TEST(KitFolder, OneLetterBeyondAsciiWhereverItIsMakesTheCodePageCount)
{
    const TestFolder folder;
    for (std::size_t before = 0; before < 16; ++before) {
        const std::string file = std::string(before, 'k') + ".inf";
        folder.Write(file, "[v]\r\n" + std::string(before, 'k') + "\xF7=1");
        KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
        FolderKitSource western(kit, 1252);
        FolderKitSource cyrillic(kit, 1251);
        const std::string key = std::string(before, 'k') + "\xD7";
        EXPECT_EQ("<default>", Value(western, "v", key.c_str(), R"(C:\Kit\)" + file)) << before;
        EXPECT_EQ("1", Value(cyrillic, "v", key.c_str(), R"(C:\Kit\)" + file)) << before;
    }
}

TEST(KitFolder, NamesAFolderOfTheMachineThatIsNotKnownHere)
{
    const TestFolder folder;
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("<none>", Listed(source, R"(D:\Drv\)"));
    EXPECT_EQ("<none>", Listed(source, R"(D:\Drv\)"));
    ASSERT_EQ(1U, kit.Remarks().size());
    EXPECT_EQ(R"(D:\Drv\: is a folder of the machine that is not known here, and counts as missing; )"
              R"(say with --map 'D:\=DIR' where its files are)",
              TextOf(kit.Remarks().front()));
}

TEST(KitFolder, SaysWhichFileItCannotRead)
{
    const TestFolder folder;
    std::filesystem::create_symlink("nowhere", folder.Path() / "a.inf");
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    FolderKitSource source(kit, 1252);
    EXPECT_EQ("a.inf ", Listed(source, R"(C:\Kit\)"));
    EXPECT_EQ("<default>", Value(source, "Version", "Signature", R"(C:\Kit\a.inf)"));
    ASSERT_EQ(1U, kit.Remarks().size());
    EXPECT_EQ(Severity::Error, kit.Remarks().front().severity);
    EXPECT_EQ((folder.Path() / "a.inf").string(), kit.Remarks().front().source);
}

TEST(KitFolder, ServesThreadsSideBySide)
{
    const TestFolder folder;
    for (int file = 0; file < 40; ++file) {
        folder.Write("Drv/" + std::to_string(file) + ".inf", "[v]\r\nk=" + std::to_string(file) + "\r\n");
    }
    KitFolder kit(PlaceOf(folder), ProfileDialect::Windows);
    const auto readAll = [&kit] {
        FolderKitSource source(kit, 1252);
        for (int file = 0; file < 40; ++file) {
            const std::string path = R"(C:\Kit\Drv\)" + std::to_string(file) + ".inf";
            EXPECT_EQ(std::to_string(file), Value(source, "v", "k", path));
            EXPECT_EQ(1U, source.ReadModelSection("v", path)->LineCount());
        }
    };
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back(readAll);
    }
}
