#include "AgentLibraries.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "../CodePages.h"

namespace {
constexpr std::array<AgentLibrary, 3> kLibraries{{
    {"NetShell", "NetShlRs", "KeyA", "ResourcePath"},
    {"Agent", "AgentOne", "KeyB", "InstallDir"},
    {"Agent", "AgentTwo", "KeyC", "InstalledDir"},
}};
} // namespace

TEST(AgentLibraries, AreFoundByShortNameIgnoringLetterCase)
{
    EXPECT_EQ(FindAgentLibrary(kLibraries, "NetShell"), kLibraries.data());
    EXPECT_EQ(FindAgentLibrary(kLibraries, "nETsHELL"), kLibraries.data());
    constexpr std::array<AgentLibrary, 1> kFirstAndLastLetter{{{"aZ", "", "", ""}}};
    EXPECT_EQ(FindAgentLibrary(kFirstAndLastLetter, "Az"), kFirstAndLastLetter.data());
}

TEST(AgentLibraries, TheFirstRowOfANameCounts)
{
    EXPECT_EQ(FindAgentLibrary(kLibraries, "Agent"), &kLibraries[1]);
}

TEST(AgentLibraries, OnlyWholeNamesAreFound)
{
    EXPECT_EQ(FindAgentLibrary(kLibraries, "Net"), nullptr);
    EXPECT_EQ(FindAgentLibrary(kLibraries, "NetShell "), nullptr);
    EXPECT_EQ(FindAgentLibrary(kLibraries, ""), nullptr);
    EXPECT_EQ(FindAgentLibrary({}, "NetShell"), nullptr);
    // The characters around the letters are not folded.
    constexpr std::array<AgentLibrary, 1> kOdd{{{"a[", "", "", ""}}};
    EXPECT_EQ(FindAgentLibrary(kOdd, "A{"), nullptr);
}

TEST(AgentLibraries, ThePathTakesTheExtensionAndOneBackslash)
{
    EXPECT_EQ(AgentLibraryPath(R"(C:\Dir)", "File", NoLeadBytes), R"(C:\Dir\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(C:\Dir\)", "File", NoLeadBytes), R"(C:\Dir\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(c:\)", "File", NoLeadBytes), R"(c:\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(a:\)", "File", NoLeadBytes), R"(a:\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(Z:\)", "File", NoLeadBytes), R"(Z:\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(\\server\share)", "File", NoLeadBytes), R"(\\server\share\File.DLL)");
    EXPECT_EQ(AgentLibraryPath(R"(\\s)", "File", NoLeadBytes), R"(\\s\File.DLL)");
}

TEST(AgentLibraries, ADirectoryThatIsNotAFullPathGivesNoPath)
{
    for (const char* directory : {"", ".", "Dir", R"(\Dir)", "C:", "C:Dir", R"(1:\Dir)", R"(\\)", R"(%Dir%\x)"}) {
        EXPECT_EQ(AgentLibraryPath(directory, "File", NoLeadBytes), std::nullopt) << directory;
    }
}

TEST(AgentLibraries, NoFileNameGivesNoPath)
{
    EXPECT_EQ(AgentLibraryPath(R"(C:\Dir)", "", NoLeadBytes), std::nullopt);
}

TEST(AgentLibraries, ASecondByteThatLooksLikeABackslashIsNotTheDirectorysOwn)
{
    for (const CodePage& page : kBackslashCodePages) {
        const std::string directory = "C:\\" + std::string(page.letter);
        EXPECT_EQ(AgentLibraryPath(directory, "File", page.isLeadByte), directory + "\\File.DLL") << page.number;
        EXPECT_EQ(AgentLibraryPath(directory + "\\", "File", page.isLeadByte), directory + "\\File.DLL") << page.number;
    }
}
