// The maker's other libraries, found through the registry.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "Helper.h"
#include "JapaneseCodePage.h"
#include "LibraryTrace.h"
#include "ProductKeys.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using ::testing::ElementsAre;

namespace {
constexpr char kAgents[] = R"(SOFTWARE\NORDA\Network_Services\ORV2\Agents\)";
constexpr char kTern[] = R"(SOFTWARE\NORDA\Network_Services\TERN\)";

constexpr std::array<AgentLibrary, 2> kLibraries{{
    {"NetShell", "NetShlRs", kAgents, "ResourcePath"},
    {"Agent", "AgentOne", kTern, "InstalledDir"},
}};

class AgentLibrariesOnDisk : public ::testing::Test
{
protected:
    static void RecordPath(const char* key, const std::string& value, const std::string& directory)
    {
        // Keys are opened by their name with the trailing backslash and created without it.
        std::string name = key;
        name.pop_back();
        SetRegistryText(name, value, directory);
    }
    const ScratchRegistryKey registry{kNetworkServices};
    const ScratchDirectory directory;
    CHelper helper;
    COrvString text{"before"};
};
} // namespace

TEST_F(AgentLibrariesOnDisk, ALibraryIsLoadedFromWhereTheRegistrySaysAndFreedByItsOwner)
{
    CopyFileTo(TestFile("doubles\\nordhapi.dll"), directory.At("AgentOne.DLL"));
    RecordPath(kTern, "InstalledDir", directory.Path());
    {
        const UniqueLibrary library = helper.LoadAgentLibrary(kLibraries, "aGENT", AgentLibraryUse::Code);
        ASSERT_TRUE(library);
        EXPECT_EQ(GetModuleHandleA(directory.At("AgentOne.DLL").c_str()), library.get());
        EXPECT_NE(GetProcAddress(library.get(), "NORDA_InitializeLibrary"), nullptr);
    }
    EXPECT_EQ(GetModuleHandleA("AgentOne.DLL"), nullptr);
}

TEST_F(AgentLibrariesOnDisk, AnUnknownShortNameIsNothing)
{
    const LibraryTrace trace;
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Other", AgentLibraryUse::Code));
    EXPECT_FALSE(helper.LoadAgentLibrary({}, "Agent", AgentLibraryUse::Code));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enterning CHelper::LoadAgentLibrary()",
                            "LoadAgentLibrary() - Other is not a known library - exiting",
                            "Exiting CHelper::LoadAgentLibrary()", "Enterning CHelper::LoadAgentLibrary()",
                            "LoadAgentLibrary() - Agent is not a known library - exiting",
                            "Exiting CHelper::LoadAgentLibrary()"));
}

TEST_F(AgentLibrariesOnDisk, WithoutARecordedDirectoryNothingIsLookedForElsewhere)
{
    // A library of this name that the loader would find by itself.
    CopyFileTo(TestFile("doubles\\nordhapi.dll"), directory.At("AgentOne.DLL"));
    SetDllDirectoryA(directory.Path().c_str());
    const LibraryTrace trace;
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
    RecordPath(kTern, "InstalledDir", "");
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
    RecordPath(kTern, "InstalledDir", ".");
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
    SetDllDirectoryA(nullptr);
    EXPECT_THAT(trace.Messages(),
                ::testing::Contains("LoadAgentLibrary() - Unable to find where Agent is installed - exiting").Times(3));
}

TEST_F(AgentLibrariesOnDisk, AFileThatIsMissingIsTracedWithTheSystemError)
{
    RecordPath(kTern, "InstalledDir", directory.Path());
    const LibraryTrace trace;
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Enterning CHelper::LoadAgentLibrary()",
                            "LoadAgentLibrary() - LoadLibrary of " + directory.At("AgentOne.DLL") + " failed - 126",
                            "Exiting CHelper::LoadAgentLibrary()"));
}

TEST_F(AgentLibrariesOnDisk, AStatusTextComesFromTheResourceLibrary)
{
    CopyFileTo(TestFile("doubles\\StatusTexts.dll"), directory.At("NetShlRs.DLL"));
    RecordPath(kAgents, "ResourcePath", directory.Path() + "\\");
    EXPECT_TRUE(helper.GetStatusText(kLibraries, 5, text));
    EXPECT_EQ(text.Text(), "The adapter is ready.");
    EXPECT_EQ(GetModuleHandleA("NetShlRs.DLL"), nullptr);
}

TEST_F(AgentLibrariesOnDisk, AMissingStatusTextIsEmpty)
{
    EXPECT_FALSE(helper.GetStatusText(kLibraries, 5, text));
    EXPECT_EQ(text.Text(), "");

    CopyFileTo(TestFile("doubles\\StatusTexts.dll"), directory.At("NetShlRs.DLL"));
    RecordPath(kAgents, "ResourcePath", directory.Path());
    text = "before";
    EXPECT_FALSE(helper.GetStatusText(kLibraries, 6, text));
    EXPECT_EQ(text.Text(), "");
    EXPECT_FALSE(helper.GetStatusText({}, 5, text));
}

TEST_F(AgentLibrariesOnDisk, ASecondByteThatLooksLikeABackslashIsNotTheDirectorysOwn)
{
    const JapaneseCodePage japanese;
    const std::string missing = directory.At(kJapaneseLetter);
    RecordPath(kTern, "InstalledDir", missing);
    const LibraryTrace trace;
    EXPECT_FALSE(helper.LoadAgentLibrary(kLibraries, "Agent", AgentLibraryUse::Code));
    EXPECT_THAT(trace.Messages(), ::testing::Contains(::testing::StartsWith("LoadAgentLibrary() - LoadLibrary of " +
                                                                            missing + "\\AgentOne.DLL failed - ")));
}
