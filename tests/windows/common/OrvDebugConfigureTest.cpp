#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "DebugOutput.h"
#include "JapaneseCodePage.h"
#include "LibraryTrace.h"
#include "OrvDebug.h"
#include "OrvRegKey.h"
#include "RegistryKeys.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
constexpr char kServicesKey[] = R"(SOFTWARE\NORDA\NETWORK_SERVICES)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\NETWORK_SERVICES\ORV2)";
// What the bounded operations on the path trace.
constexpr char kEnteringCopy[] = "Entering OrvSafeCopy : Static";
constexpr char kCopied[] = "Leaving OrvSafeCopy : Static : 0";
constexpr char kEnteringCat[] = "Entering OrvSafeCat : Static";
constexpr char kAppended[] = "Leaving OrvSafeCat : Static : 0";
constexpr char kTooSmall[] = "Leaving OrvSafeCat : Static : 34";
constexpr char kInvalid[] = "Leaving OrvSafeCat : Static : 22";
constexpr char kHandlerLine[] = "OrvSecureInvalidParameterHandler : ERROR";
constexpr char kNoNameLine[] = R"(..\..\Common\Src\OrvDebug (479): OrvSafeCopy ERROR: NULL == strSource)";

std::string TooSmallLine(int line)
{
    return R"(..\..\Common\Src\OrvDebug ()" + std::to_string(line) +
           "): OrvSafeCopy ERROR: strDestination size 0, or too small";
}

// A fresh trace object, no product key, and "Temp" in a directory of its own.
class TraceConfiguration : public ::testing::Test
{
protected:
    TraceConfiguration()
    {
        std::filesystem::create_directory(TempPath());
        std::filesystem::create_directory(InstalledPath());
    }

    int Configure(const std::string& module, const std::string& fileName, uint32_t level = 3, int append = 0)
    {
        return object.Configure(module.c_str(), fileName.c_str(), level, append, 0, nullptr);
    }
    [[nodiscard]] std::string TempPath() const { return m_directory.At("temp"); }
    [[nodiscard]] std::string InstalledPath() const { return m_directory.At("installed"); }
    [[nodiscard]] std::string InTemp(const std::string& name) const { return TempPath() + "\\" + name; }
    [[nodiscard]] std::string InInstalled(const std::string& name) const { return InstalledPath() + "\\" + name; }

private:
    ScratchDirectory m_directory;
    TempVariable m_temp{TempPath()};
    ScratchRegistryKey m_key{kServicesKey};

protected:
    COrvDebug object; // goes first, so that the directory can be removed
};
} // namespace

TEST_F(TraceConfiguration, WithTraceZeroInTheRegistryLevelsOneAndTwoStayUnconfigured)
{
    SetRegistryNumber(kProductKey, "TRACE", 0);
    SetRegistryText(kProductKey, "InstalledDir", InstalledPath());
    for (const uint32_t level : {1U, 2U}) {
        EXPECT_EQ(Configure("Module", "a.log", level), -1);
        EXPECT_FALSE(object.IsConfigured());
        EXPECT_EQ(object.GetCurrentLogLevel(), 0U);
    }
    EXPECT_FALSE(FileExists(InInstalled("a.log")));
}

TEST_F(TraceConfiguration, LevelsThreeAndHigherIgnoreTheRegistry)
{
    SetRegistryNumber(kProductKey, "TRACE", 0);
    for (const uint32_t level : {3U, 4U, 9U}) {
        EXPECT_EQ(Configure("Module", "a.log", level), 0);
        EXPECT_EQ(object.GetCurrentLogLevel(), level);
    }
}

TEST_F(TraceConfiguration, TraceInTheRegistryReplacesLevelsOneAndTwo)
{
    for (const uint32_t stored : {1U, 2U, 3U, 4U, 77U}) {
        SetRegistryNumber(kProductKey, "TRACE", stored);
        for (const uint32_t level : {1U, 2U}) {
            EXPECT_EQ(Configure("Module", "a.log", level), 0);
            EXPECT_EQ(object.GetCurrentLogLevel(), stored);
        }
    }
}

TEST_F(TraceConfiguration, TheGivenLevelIsUsedWithoutTheKeyOrTheValue)
{
    EXPECT_EQ(Configure("Module", "a.log", 2), 0);
    EXPECT_EQ(object.GetCurrentLogLevel(), 2U);
    CreateRegistryKey(kProductKey);
    EXPECT_EQ(Configure("Orv2Setp", "a.log", 1), 0);
    EXPECT_EQ(object.GetCurrentLogLevel(), 1U);
}

TEST_F(TraceConfiguration, ATraceValueOfAnotherTypeCountsAsMissing)
{
    SetRegistryText(kProductKey, "TRACE", "0");
    EXPECT_EQ(Configure("Orv2Setp", "a.log", 1), 0);
    EXPECT_EQ(object.GetCurrentLogLevel(), 1U);
    SetRegistryBytes(kProductKey, "TRACE", "12345", REG_BINARY);
    EXPECT_EQ(Configure("Orv2Setp", "a.log", 2), 0);
    EXPECT_EQ(object.GetCurrentLogLevel(), 2U);
}

TEST_F(TraceConfiguration, AFileNameOf246CharactersIsRefused)
{
    EXPECT_EQ(Configure("Kwelpad", std::string(246, 'a')), -1);
    EXPECT_EQ(Configure("Kwelpad", ""), -1);
    EXPECT_EQ(object.Configure("Kwelpad", nullptr, 3, 0, 0, nullptr), -1);
    EXPECT_FALSE(object.IsConfigured());
}

TEST_F(TraceConfiguration, AFileNameOf245CharactersIsUsed)
{
    // The repeated ".\" makes a long name of a short one.
    std::string name = R"(\a.log)";
    while (name.size() < 244) {
        name.insert(0, R"(\.)");
    }
    name.insert(0, 245 - name.size(), '\\');
    ASSERT_EQ(name.size(), 245U);
    EXPECT_EQ(Configure("Orv2Setp", name), 0);
    EXPECT_TRUE(FileExists(InTemp("a.log")));
}

TEST_F(TraceConfiguration, TheFileIsInTheInstalledDirectory)
{
    SetRegistryText(kProductKey, "InstalledDir", InstalledPath());
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_TRUE(FileExists(InInstalled("a.log")));
    EXPECT_FALSE(FileExists(InTemp("a.log")));
}

TEST_F(TraceConfiguration, AnInstalledDirectoryStoredWithoutTerminatorIsReadWhole)
{
    // The platform itself adds a terminator to a text that ends right before a zero byte.
    const std::string longer = InstalledPath() + "#";
    COrvRegKey key;
    ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, kProductKey, true, false));
    ASSERT_EQ(RegSetValueExA(key.GetHKey(), "InstalledDir", 0, REG_SZ, reinterpret_cast<const BYTE*>(longer.data()),
                             static_cast<DWORD>(longer.size() - 1)),
              ERROR_SUCCESS);
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_TRUE(FileExists(InInstalled("a.log")));
}

TEST_F(TraceConfiguration, WithoutTheProductKeyTheFileIsInTemp)
{
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_TRUE(FileExists(InTemp("a.log")));
}

TEST_F(TraceConfiguration, TheSetUpModuleUsesTempInAnyLetterCase)
{
    SetRegistryText(kProductKey, "InstalledDir", InstalledPath());
    EXPECT_EQ(Configure("Orv2Setp", "a.log"), 0);
    EXPECT_TRUE(FileExists(InTemp("a.log")));
    EXPECT_EQ(Configure("oRV2sETP", "b.log"), 0);
    EXPECT_TRUE(FileExists(InTemp("b.log")));
}

TEST_F(TraceConfiguration, TheModuleKwelpadUsesTheFileNameAsGivenInAnyLetterCase)
{
    SetRegistryText(kProductKey, "InstalledDir", InstalledPath());
    const ScratchDirectory elsewhere;
    EXPECT_EQ(Configure("kWELPAD", elsewhere.At("a.log")), 0);
    EXPECT_TRUE(FileExists(elsewhere.At("a.log")));

    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(elsewhere.Path());
    EXPECT_EQ(Configure("Kwelpad", "b.log"), 0);
    std::filesystem::current_path(before);
    EXPECT_TRUE(FileExists(elsewhere.At("b.log")));
    CloseTrace(object);
}

TEST_F(TraceConfiguration, ThePathIsAnnouncedToTheDebuggerStepByStep)
{
    DebugOutput debugger;
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_THAT(debugger.OwnLines(), ElementsAre("FILE PATH 1 IS ", TempPath(), "FILE PATH 2 IS ", TempPath() + "\\",
                                                 "FILE PATH 3 IS ", InTemp("a.log")));
    debugger.Clear();
    EXPECT_EQ(Configure("Kwelpad", InTemp("b.log")), 0);
    EXPECT_THAT(debugger.OwnLines(), IsEmpty());
}

TEST_F(TraceConfiguration, AnUnwritableInstalledDirectoryFallsBackToTempWithTheSameFileName)
{
    SetRegistryText(kProductKey, "InstalledDir", InInstalled("not there"));
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_TRUE(object.IsConfigured());
    object.Print("message");
    EXPECT_EQ(ReadLibraryTrace(InTemp("a.log")).at(0).message, "message");
}

TEST_F(TraceConfiguration, TheFallbackIsOpenedAtItsLevelAndOverwrittenUnlessItIsToBeAppendedTo)
{
    SetRegistryText(kProductKey, "InstalledDir", InInstalled("not there"));
    ASSERT_EQ(Configure("Module", "a.log"), 0);
    object.Print("one");
    ASSERT_EQ(Configure("Module", "a.log", 9, 1), 0);
    EXPECT_EQ(object.GetCurrentLogLevel(), 9U);
    object.Print("two");
    EXPECT_THAT(ReadLibraryMessages(InTemp("a.log")), ElementsAre("one", "two"));
    ASSERT_EQ(Configure("Module", "a.log"), 0);
    object.Print("three");
    EXPECT_THAT(ReadLibraryMessages(InTemp("a.log")), ElementsAre("three"));
}

TEST_F(TraceConfiguration, TheFallbackHasTheNameAfterTheLastBackslashAndIsNotAnnounced)
{
    SetRegistryText(kProductKey, "InstalledDir", InstalledPath());
    DebugOutput debugger;
    EXPECT_EQ(Configure("Module", R"(not there\a.log)"), 0);
    EXPECT_TRUE(FileExists(InTemp("a.log")));
    EXPECT_THAT(debugger.OwnLines(),
                ElementsAre("FILE PATH 1 IS ", InstalledPath(), "FILE PATH 2 IS ", InstalledPath() + "\\",
                            "FILE PATH 3 IS ", InInstalled(R"(not there\a.log)")));
}

TEST_F(TraceConfiguration, TheFallbackTakesNoSecondByteForTheLastBackslash)
{
    SetRegistryText(kProductKey, "InstalledDir", InInstalled("not there"));
    const std::string name = std::string(kJapaneseLetter) + "a.log";
    {
        const JapaneseCodePage japanese;
        // The whole name lies below a directory here, whose name ends with the letter's first byte.
        EXPECT_EQ(Configure("Module", name), -1);
    }
    EXPECT_FALSE(FileExists(InTemp("a.log")));
    EXPECT_EQ(Configure("Module", name), 0);
    EXPECT_TRUE(FileExists(InTemp("a.log"))) << "in a code page without such characters";
}

TEST_F(TraceConfiguration, TheModuleKwelpadFallsBackToTempTooAndTellsTheDebuggerNothing)
{
    DebugOutput debugger;
    EXPECT_EQ(Configure("Kwelpad", InInstalled(R"(not there\a.log)")), 0);
    object.Print("message");
    EXPECT_THAT(ReadLibraryMessages(InTemp("a.log")), ElementsAre("message"));
    EXPECT_THAT(debugger.OwnLines(), IsEmpty());
}

TEST_F(TraceConfiguration, AMissingInstalledDirValueMeansTheRootDirectory)
{
    CreateRegistryKey(kProductKey);
    DebugOutput debugger;
    // The name is one that no file can have, so that nothing is left in the root directory.
    EXPECT_EQ(Configure("Module", "no?file"), -1);
    EXPECT_THAT(debugger.OwnLines(),
                ElementsAre("FILE PATH 1 IS ", "", "FILE PATH 2 IS ", R"(\)", "FILE PATH 3 IS ", R"(\no?file)"));
    EXPECT_FALSE(object.IsConfigured());
}

TEST_F(TraceConfiguration, WithNoWritableDirectoryTheObjectStaysUnconfigured)
{
    SetEnvironmentVariableA("Temp", InTemp("not there").c_str());
    EXPECT_EQ(Configure("Module", "a.log"), -1);
    EXPECT_FALSE(object.IsConfigured());
    EXPECT_EQ(object.GetCurrentLogLevel(), 0U);
}

TEST_F(TraceConfiguration, AnOverlongTempCountsAsEmpty)
{
    SetEnvironmentVariableA("Temp", (TempPath() + std::string(400, 'x')).c_str());
    DebugOutput debugger;
    EXPECT_EQ(Configure("Module", "no?file"), -1);
    EXPECT_THAT(debugger.OwnLines(),
                ElementsAre("FILE PATH 1 IS ", "", "FILE PATH 2 IS ", R"(\)", "FILE PATH 3 IS ", R"(\no?file)"));
}

TEST_F(TraceConfiguration, AFileNameWithoutBackslashHasNoFallback)
{
    const LibraryTrace trace;
    EXPECT_EQ(Configure("Kwelpad", "no?file"), -1);
    EXPECT_THAT(
        trace.Messages(),
        // The empty path, the file name, and the fallback.
        ElementsAre(kEnteringCopy, kCopied, kEnteringCopy, kCopied, kEnteringCat, kHandlerLine, kNoNameLine, kInvalid));
}

TEST_F(TraceConfiguration, ThePathIsPutTogetherWithTracesOfEachStep)
{
    const LibraryTrace trace;
    EXPECT_EQ(Configure("Module", "a.log"), 0);
    EXPECT_THAT(trace.Messages(), ElementsAre(kEnteringCopy, kCopied, kEnteringCat, kAppended, kEnteringCat, kAppended,
                                              kEnteringCat, kAppended));
}

TEST_F(TraceConfiguration, AFallbackPathOf260CharactersIsReportedAndFails)
{
    SetRegistryText(kProductKey, "InstalledDir", InInstalled("not there"));
    // The directory is there under this name too, so that only the length of the path is a problem.
    std::string longTemp = TempPath();
    while (longTemp.size() < 252) {
        longTemp += R"(\.)";
    }
    const std::string name(259 - longTemp.size(), 'a');
    SetEnvironmentVariableA("Temp", longTemp.c_str());
    {
        const LibraryTrace trace;
        EXPECT_EQ(Configure("Module", name), -1);
        EXPECT_FALSE(object.IsConfigured());
        EXPECT_THAT(trace.Messages(),
                    ElementsAre(kEnteringCopy, kCopied, kEnteringCat, kAppended, kEnteringCat, kAppended, kEnteringCat,
                                kAppended, kEnteringCat, kHandlerLine, TooSmallLine(479), kTooSmall));
    }
    EXPECT_EQ(Configure("Module", name.substr(1)), 0) << "259 characters";
    EXPECT_TRUE(FileExists(InTemp(name.substr(1))));
}

TEST_F(TraceConfiguration, AnInstalledDirectoryThatFillsThePathIsReportedAndLeavesNoFileNameToFallBackWith)
{
    // 1020 characters leave no room for backslash and file name; each failed append empties the path.
    SetRegistryText(kProductKey, "InstalledDir", std::string(1020, 'd'));
    const LibraryTrace trace;
    DebugOutput debugger;
    EXPECT_EQ(Configure("Module", "d\\longer.log"), -1);
    EXPECT_THAT(trace.Messages(), ElementsAre(kEnteringCopy, kCopied, kEnteringCat, kAppended, kEnteringCat, kAppended,
                                              kEnteringCat, kHandlerLine, TooSmallLine(453), kTooSmall, kEnteringCat,
                                              kHandlerLine, kNoNameLine, kInvalid));
    EXPECT_THAT(debugger.OwnLines(), ElementsAre("FILE PATH 1 IS ", std::string(1020, 'd'), "FILE PATH 2 IS ",
                                                 std::string(1020, 'd') + "\\", "FILE PATH 3 IS ", ""));
}

TEST_F(TraceConfiguration, AnInstalledDirectoryOf1023CharactersLeavesNoRoomForTheBackslash)
{
    SetRegistryText(kProductKey, "InstalledDir", std::string(1023, 'd'));
    const LibraryTrace trace;
    DebugOutput debugger;
    // What is left is the file name alone, and that has no backslash to fall back with.
    EXPECT_EQ(Configure("Module", "no?file"), -1);
    EXPECT_THAT(trace.Messages(), ElementsAre(kEnteringCopy, kCopied, kEnteringCat, kAppended, kEnteringCat,
                                              kHandlerLine, TooSmallLine(450), kTooSmall, kEnteringCat, kAppended,
                                              kEnteringCat, kHandlerLine, kNoNameLine, kInvalid));
    EXPECT_THAT(debugger.OwnLines(), ElementsAre("FILE PATH 1 IS ", std::string(1023, 'd'), "FILE PATH 2 IS ", "",
                                                 "FILE PATH 3 IS ", "no?file"));
}

TEST_F(TraceConfiguration, AnInstalledDirectoryOf1024UnterminatedBytesIsNotReadBeyondItsEnd)
{
    SetRegistryBytes(kProductKey, "InstalledDir", std::string(1024, 'd'), REG_BINARY);
    const LibraryTrace trace;
    DebugOutput debugger;
    // The append of the directory empties the path, so the file is looked for in the root directory.
    EXPECT_EQ(Configure("Module", "no?file"), -1);
    EXPECT_THAT(debugger.OwnLines(),
                ElementsAre("FILE PATH 1 IS ", "", "FILE PATH 2 IS ", R"(\)", "FILE PATH 3 IS ", R"(\no?file)"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEnteringCopy, kCopied, kEnteringCat, kHandlerLine, TooSmallLine(447), kTooSmall,
                            kEnteringCat, kAppended, kEnteringCat, kAppended, kEnteringCat, kAppended));
}

TEST_F(TraceConfiguration, AFileIsOverwrittenUnlessItIsToBeAppendedTo)
{
    ASSERT_EQ(Configure("Module", "a.log"), 0);
    object.Print("one");
    ASSERT_EQ(Configure("Module", "a.log", 3, 1), 0);
    object.Print("two");
    EXPECT_EQ(ReadLibraryTrace(InTemp("a.log")).size(), 2U);
    ASSERT_EQ(Configure("Module", "a.log"), 0);
    object.Print("three");
    const std::vector<LibraryTraceLine> lines = ReadLibraryTrace(InTemp("a.log"));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].message, "three");
    EXPECT_EQ(lines[0].prefix[0], "Module");
}

TEST_F(TraceConfiguration, AFailedCallKeepsTheFileThatIsOpen)
{
    ASSERT_EQ(Configure("Kwelpad", InTemp("a.log")), 0);
    EXPECT_EQ(Configure("Kwelpad", ""), -1);
    object.Print("still traced");
    EXPECT_EQ(ReadLibraryTrace(InTemp("a.log")).at(0).message, "still traced");
}

TEST_F(TraceConfiguration, ACallThatCannotOpenItsFileHasReplacedTheModuleName)
{
    ASSERT_EQ(Configure("Kwelpad", InTemp("a.log")), 0);
    EXPECT_EQ(Configure("Module", "no?file"), -1);
    object.Print("still traced");
    EXPECT_EQ(ReadLibraryTrace(InTemp("a.log")).at(0).prefix[0], "Module");
}

TEST_F(TraceConfiguration, ANullModuleNameIsEmpty)
{
    ASSERT_EQ(object.Configure(nullptr, "a.log", 3, 0, 0, nullptr), 0);
    object.Print("message");
    EXPECT_EQ(ReadLibraryTrace(InTemp("a.log")).at(0).prefix[0], "");
}

TEST_F(TraceConfiguration, CloseMakesTheObjectAsItWasBefore)
{
    ASSERT_EQ(Configure("Module", "a.log"), 0);
    CloseTrace(object);
    EXPECT_FALSE(object.IsConfigured());
    EXPECT_EQ(object.GetCurrentLogLevel(), 0U);
    object.Print("ignored");
    EXPECT_EQ(ReadFileBytes(InTemp("a.log")), "");
    EXPECT_TRUE(DeleteFileA(InTemp("a.log").c_str()));
}
