#include "OrvDebug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "DebugOutput.h"
#include "LibraryTrace.h"
#include "TraceFile.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
MATCHER_P(Matches, pattern, "")
{
    return std::regex_match(arg, std::regex(pattern));
}

// What a static object saw that was built before main.
struct EarlyUser
{
    const COrvDebug* object = &OrvTrace();
    bool configured = OrvTrace().IsConfigured();
    uint32_t level = OrvTrace().GetCurrentLogLevel();
};
const EarlyUser earlyUser;
} // namespace

TEST(LibraryTraceObject, IsUsableFromStaticInitialisersAndUnconfigured)
{
    EXPECT_EQ(earlyUser.object, &OrvTrace());
    EXPECT_FALSE(earlyUser.configured);
    EXPECT_EQ(earlyUser.level, 0U);
}

TEST(TraceObject, StartsUnconfiguredAtLevelZeroAndIgnoresEverything)
{
    DebugOutput output;
    COrvDebug object;
    EXPECT_FALSE(object.IsConfigured());
    EXPECT_EQ(object.GetCurrentLogLevel(), 0U);
    object.Print("nobody reads this");
    object.Error("file.cpp", 1, "nor this");
    object.PrintLastError(5);
    EXPECT_FALSE(object.IsConfigured());
    EXPECT_THAT(output.OwnLines(), IsEmpty());
}

TEST(TraceObject, ALineHoldsModuleProcessThreadTimeCounterAndMessage)
{
    const LibraryTrace trace;
    SYSTEMTIME before{};
    GetLocalTime(&before);
    OrvTrace().Print("number %d and text %s", 42, "hello");
    const std::vector<LibraryTraceLine> lines = ReadLibraryTrace(trace.Path());
    ASSERT_EQ(lines.size(), 1U);
    char pid[32];
    char tid[32];
    snprintf(pid, sizeof(pid), "PID:%lx", GetCurrentProcessId());
    snprintf(tid, sizeof(tid), "TID:%lx", GetCurrentThreadId());
    EXPECT_THAT(lines[0].prefix, ElementsAre("Kwelpad", pid, tid, Matches(R"([0-2]\d:[0-5]\d:[0-6]\d\.\d{3})"),
                                             Matches(R"(\([0-9A-F]+\))")));
    EXPECT_EQ(lines[0].message, "number 42 and text hello");
    const int minuteBefore = before.wHour * 60 + before.wMinute;
    const int minute = std::stoi(lines[0].prefix[3].substr(0, 2)) * 60 + std::stoi(lines[0].prefix[3].substr(3, 2));
    EXPECT_LE((minute - minuteBefore + 24 * 60) % (24 * 60), 1);
}

TEST(TraceObject, TheCounterNeverGoesBack)
{
    const LibraryTrace trace;
    LARGE_INTEGER before{};
    QueryPerformanceCounter(&before);
    OrvTrace().Print("one");
    OrvTrace().Print("two");
    LARGE_INTEGER after{};
    QueryPerformanceCounter(&after);
    std::vector<unsigned long long> counters;
    for (const LibraryTraceLine& line : ReadLibraryTrace(trace.Path())) {
        counters.push_back(std::stoull(line.prefix[4].substr(1), nullptr, 16));
    }
    ASSERT_EQ(counters.size(), 2U);
    EXPECT_LE(static_cast<unsigned long long>(before.QuadPart), counters[0]);
    EXPECT_LE(counters[0], counters[1]);
    EXPECT_LE(counters[1], static_cast<unsigned long long>(after.QuadPart));
}

TEST(TraceLevel, ZeroIsOff)
{
    TraceFile file(0);
    EXPECT_EQ(file.Result(), -1);
    EXPECT_FALSE(file.object.IsConfigured());
    EXPECT_FALSE(FileExists(file.Path()));
}

TEST(TraceLevel, ZeroSwitchesAConfiguredObjectOff)
{
    TraceFile file(3);
    file.object.Print("before");
    EXPECT_EQ(file.object.Configure("Kwelpad", file.Path().c_str(), 0, 0, 0, nullptr), -1);
    EXPECT_EQ(file.object.GetCurrentLogLevel(), 0U);
    file.object.Print("after");
    file.object.Error("file.cpp", 1, "after");
    EXPECT_THAT(file.Messages(), ElementsAre("before"));
}

TEST(TraceLevel, OneThreeAndHigherOnesWriteMessagesAndErrorsToTheFileOnly)
{
    for (const uint32_t level : {1U, 3U, 5U, 0x80000000U}) {
        DebugOutput debugger;
        TraceFile file(level);
        ASSERT_EQ(file.Result(), 0) << level;
        EXPECT_TRUE(file.object.IsConfigured());
        EXPECT_EQ(file.object.GetCurrentLogLevel(), level);
        file.object.Print("message");
        file.object.Error("file.cpp", 12, "error %d", 3);
        EXPECT_THAT(file.Messages(), ElementsAre("message", "file.cpp (12): error 3")) << level;
        EXPECT_EQ(file.object.GetCurrentLogLevel(), level);
        EXPECT_THAT(debugger.OwnLines(), IsEmpty()) << level;
    }
}

TEST(TraceLevel, TwoWritesErrorsOnly)
{
    TraceFile file(2);
    ASSERT_EQ(file.Result(), 0);
    file.object.Print("message");
    file.object.PrintLastError(5);
    file.object.Error("file.cpp", 12, "error");
    file.object.Print("message");
    EXPECT_THAT(file.Messages(), ElementsAre("file.cpp (12): error"));
    EXPECT_EQ(file.object.GetCurrentLogLevel(), 2U);
}

TEST(TraceLevel, FourMirrorsMessagesAndErrorsToTheDebugger)
{
    DebugOutput debugger;
    TraceFile file(4);
    ASSERT_EQ(file.Result(), 0);
    file.object.Print("message");
    file.object.Error("file.cpp", 12, "error");
    EXPECT_THAT(file.Messages(), ElementsAre("message", "file.cpp (12): error"));
    EXPECT_THAT(debugger.OwnLines(),
                ElementsAre(Matches("Kwelpad\tPID:[0-9a-f]+\tTID:[0-9a-f]+\t[0-9:.]+\t\\([0-9A-F]+\\)\tmessage\n"),
                            Matches("Kwelpad\tPID:.*\tfile\\.cpp \\(12\\): error\n")));
}

TEST(TracePrint, AMessageOf1023CharactersIsWholeAndALongerOneIsCut)
{
    TraceFile file(3);
    file.object.Print("%s", std::string(1023, 'a').c_str());
    file.object.Print("%s", std::string(1024, 'b').c_str());
    file.object.Print("%s", std::string(100000, 'c').c_str());
    file.object.Print("next");
    EXPECT_THAT(file.Messages(),
                ElementsAre(std::string(1023, 'a'), std::string(1023, 'b'), std::string(1023, 'c'), "next"));
}

TEST(TracePrint, AFormatThatEndsInTheMiddleOfAConversionIsHarmless)
{
    TraceFile file(3);
    const char* const unfinished[] = {"a%", "b%l", "c%5"};
    for (const char* format : unfinished) {
        file.object.Print(format, 1, 2);
    }
    file.object.Print("%s", "whole");
    const std::vector<std::string> messages = file.Messages();
    ASSERT_EQ(messages.size(), 4U);
    EXPECT_EQ(messages[0][0], 'a');
    EXPECT_EQ(messages[1][0], 'b');
    EXPECT_EQ(messages[2][0], 'c');
    EXPECT_EQ(messages[3], "whole");
}

TEST(TracePrint, NullPointersAreHarmless)
{
    TraceFile file(3);
    const char* none = nullptr;
    file.object.Print(none);
    file.object.Error("file.cpp", 1, none);
    file.object.Print("[%s]", none);
    file.object.Error(none, 1, "text");
    EXPECT_THAT(file.Messages(), ElementsAre("[(null)]", "(null) (1): text"));
}

TEST(TracePrint, AModuleNameThatLeavesNoRoomForThePrefixWritesNothing)
{
    const ScratchDirectory directory;
    const TempVariable temp(directory.Path());
    COrvDebug object;
    ASSERT_EQ(object.Configure(std::string(1200, 'm').c_str(), "long.log", 3, 0, 0, nullptr), 0);
    object.Print("message");
    EXPECT_EQ(ReadFileBytes(directory.At("long.log")), "");
}

TEST(TracePrint, ALongModuleNameShortensTheMessageAndTheLineStillEnds)
{
    const ScratchDirectory directory;
    const TempVariable temp(directory.Path());
    COrvDebug object;
    ASSERT_EQ(object.Configure(std::string(1000, 'm').c_str(), "long.log", 3, 0, 0, nullptr), 0);
    object.Print("%s", std::string(2000, 'x').c_str());
    const std::string content = ReadFileBytes(directory.At("long.log"));
    EXPECT_EQ(content.size(), 1152U); // 1150 characters, then the line end of a text file
    EXPECT_EQ(content.substr(1149), "x\r\n");
}

TEST(TraceError, ALongMessageIsCutTogetherWithItsPlace)
{
    TraceFile file(3);
    file.object.Error("file.cpp", 12, "%s", std::string(2000, 'e').c_str());
    const std::string place = "file.cpp (12): ";
    EXPECT_THAT(file.Messages(), ElementsAre(place + std::string(1023 - place.size(), 'e')));
}

TEST(TraceError, APercentSignInTheMessageIsNotFormattedAgain)
{
    TraceFile file(3);
    file.object.Error("file.cpp", 12, "100%% of %s", "%d");
    EXPECT_THAT(file.Messages(), ElementsAre("file.cpp (12): 100% of %d"));
}

namespace {
std::string SystemText(DWORD code)
{
    char* text = nullptr;
    FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code,
                   MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), reinterpret_cast<char*>(&text), 0, nullptr);
    const UniqueLocalText owner(text);
    return text == nullptr ? "" : text;
}

std::string WithoutLineEnds(std::string text)
{
    std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
    return text;
}
} // namespace

TEST(TraceLastError, WritesTheSystemsTextOfTheGivenCode)
{
    TraceFile file(3);
    file.object.PrintLastError(ERROR_ACCESS_DENIED);
    const std::string text = SystemText(ERROR_ACCESS_DENIED);
    ASSERT_NE(text, "");
    const std::string content = file.Content();
    EXPECT_EQ(WithoutLineEnds(content.substr(content.rfind('\t') + 1)), WithoutLineEnds(text));
}

TEST(TraceLastError, ZeroMeansTheThreadsLastError)
{
    TraceFile file(3);
    SetLastError(ERROR_FILE_NOT_FOUND);
    file.object.PrintLastError(0);
    const std::string content = file.Content();
    EXPECT_EQ(WithoutLineEnds(content.substr(content.rfind('\t') + 1)),
              WithoutLineEnds(SystemText(ERROR_FILE_NOT_FOUND)));
}

TEST(TraceLastError, ACodeWithoutATextWritesNothing)
{
    TraceFile file(3);
    // The second one has a text with an insert, for which there is nothing to insert.
    for (const DWORD code : {static_cast<DWORD>(0x2FFFFFFF), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT)}) {
        ASSERT_EQ(SystemText(code), "");
        file.object.PrintLastError(static_cast<int>(code));
    }
    EXPECT_EQ(file.Content(), "");
}

TEST(TraceLastError, ATextWithAPercentSignIsInterpretedAsAFormat)
{
    struct SystemTexts : COrvDebug
    {
        using COrvDebug::PrintSystemText;
    };
    const ScratchDirectory directory;
    SystemTexts object;
    ASSERT_EQ(object.Configure("Kwelpad", directory.At("trace.log").c_str(), 3, 0, 0, nullptr), 0);
    object.PrintSystemText("100% done, 100%% %s %d %f %p, 50% now, %s");
    const std::vector<LibraryTraceLine> lines = ReadLibraryTrace(directory.At("trace.log"));
    ASSERT_EQ(lines.size(), 1U);
    // "% d", "%s", "%d" and "%f" take the four zeros; what follows them prints as it is.
    EXPECT_EQ(lines[0].message, "100 0one, 100% (null) 0 0.000000 %p, 50% now, %s");
}

TEST(TraceSizeLimit, ALogThatHasReachedItsLimitStopsGrowingSilently)
{
    TraceFile file(4, 300);
    while (file.Content().size() < 300) {
        const size_t before = file.Content().size();
        file.object.Print("a line that is written whole although it passes the limit");
        ASSERT_GT(file.Content().size(), before);
    }
    const std::string full = file.Content();
    DebugOutput debugger;
    file.object.Print("dropped");
    file.object.Error("file.cpp", 1, "dropped");
    EXPECT_EQ(file.Content(), full);
    EXPECT_THAT(debugger.OwnLines(), IsEmpty());
}

TEST(TraceSizeLimit, AnExistingFileAtTheLimitIsNotAppendedTo)
{
    const ScratchDirectory directory;
    WriteFileBytes(directory.At("full.log"), std::string(100, 'x'));
    COrvDebug object;
    ASSERT_EQ(object.Configure("Kwelpad", directory.At("full.log").c_str(), 3, 1, 100, nullptr), 0);
    object.Print("dropped");
    EXPECT_EQ(ReadFileBytes(directory.At("full.log")), std::string(100, 'x'));
}
