#include "OrvSecure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "ImportOverride.h"
#include "LibraryTrace.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
constexpr char kHandlerLine[] = "OrvSecureInvalidParameterHandler : ERROR";
} // namespace

TEST(SafeCopy, ASuccessTracesNothing)
{
    const LibraryTrace trace;
    char text[10] = "";
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, sizeof(text), "123456789"), 0);
    EXPECT_STREQ(text, "123456789");
    EXPECT_EQ(OrvSafeCat("caller.cpp", 7, text, sizeof(text), ""), 0);
    EXPECT_THAT(trace.Messages(), IsEmpty());
}

TEST(SafeCopy, ElevenCharactersIntoTenBytesPassThroughTheHandlerAndThenTraceTheSizeErrorOfTheCaller)
{
    const LibraryTrace trace;
    char text[10] = "before";
    EXPECT_EQ(OrvSafeCopy(R"(dir\caller.cpp)", 1234, text, sizeof(text), "12345678901"), 34);
    EXPECT_STREQ(text, "");
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre(kHandlerLine, R"(dir\caller.cpp (1234): OrvSafeCopy ERROR: strDestination size 0, or too small)"));
}

TEST(SafeCopy, ANullSourceIsTracedAtTheCaller)
{
    const LibraryTrace trace;
    char text[10] = "before";
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, sizeof(text), nullptr), 22);
    EXPECT_STREQ(text, "");
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine, "caller.cpp (7): OrvSafeCopy ERROR: NULL == strSource"));
}

TEST(SafeCopy, ANullDestinationIsTracedAtTheLibrarysOwnPlace)
{
    const LibraryTrace trace;
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, nullptr, 10, "text"), 22);
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre(kHandlerLine, R"(..\..\Common\Src\OrvSecure (189): OrvSafeCopy ERROR: NULL == strDestination)"));
}

TEST(SafeCopy, ASizeOfZeroIsReportedWithTheTextOfANullSource)
{
    const LibraryTrace trace;
    char text[10] = "before";
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, 0, "text"), 22);
    EXPECT_STREQ(text, "before");
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine, "caller.cpp (7): OrvSafeCopy ERROR: NULL == strSource"));
}

TEST(SafeCat, FailuresNameOrvSafeCopyToo)
{
    const LibraryTrace trace;
    char text[10] = "12345";
    EXPECT_EQ(OrvSafeCat("caller.cpp", 8, text, sizeof(text), "67890"), 34);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(OrvSafeCat("caller.cpp", 9, text, sizeof(text), nullptr), 22);
    EXPECT_EQ(OrvSafeCat("caller.cpp", 10, nullptr, 5, "a"), 22);
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre(kHandlerLine,
                    "caller.cpp (8): OrvSafeCopy ERROR: strDestination size 0, or too small", //
                    kHandlerLine, "caller.cpp (9): OrvSafeCopy ERROR: NULL == strSource",     //
                    kHandlerLine, R"(..\..\Common\Src\OrvSecure (189): OrvSafeCopy ERROR: NULL == strDestination)"));
}

TEST(SafeCat, ADestinationWithoutTerminatorIsAnInvalidArgument)
{
    const LibraryTrace trace;
    char text[4] = {'a', 'b', 'c', 'd'};
    EXPECT_EQ(OrvSafeCat("caller.cpp", 8, text, sizeof(text), "e"), 22);
    EXPECT_STREQ(text, "");
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine, "caller.cpp (8): OrvSafeCopy ERROR: NULL == strSource"));
}

TEST(SafeCopy, TheFormFor1024BytesTracesItsEntryAndItsResult)
{
    const LibraryTrace trace;
    char text[1024] = "";
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, std::string(1023, 'x').c_str()), 0);
    EXPECT_EQ(std::strlen(text), 1023U);
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, std::string(1024, 'x').c_str()), 34);
    EXPECT_STREQ(text, "");
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering OrvSafeCopy : Static", "Leaving OrvSafeCopy : Static : 0",
                                              "Entering OrvSafeCopy : Static", kHandlerLine,
                                              "caller.cpp (7): OrvSafeCopy ERROR: strDestination size 0, or too small",
                                              "Leaving OrvSafeCopy : Static : 34"));
}

TEST(SafeCat, TheFormsFor1024And260BytesTraceTheirEntryAndTheirResult)
{
    const LibraryTrace trace;
    char large[1024] = "a";
    char small[260] = "a";
    EXPECT_EQ(OrvSafeCat("caller.cpp", 7, large, std::string(1022, 'x').c_str()), 0);
    EXPECT_EQ(std::strlen(large), 1023U);
    EXPECT_EQ(OrvSafeCat("caller.cpp", 7, small, std::string(258, 'x').c_str()), 0);
    EXPECT_EQ(std::strlen(small), 259U);
    EXPECT_EQ(OrvSafeCat("caller.cpp", 7, small, nullptr), 22);
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre("Entering OrvSafeCat : Static", "Leaving OrvSafeCat : Static : 0", "Entering OrvSafeCat : Static",
                    "Leaving OrvSafeCat : Static : 0", "Entering OrvSafeCat : Static", kHandlerLine,
                    "caller.cpp (7): OrvSafeCopy ERROR: NULL == strSource", "Leaving OrvSafeCat : Static : 22"));
}

namespace {
constexpr char kCopyInstalls[] = R"(..\..\Common\Src\OrvSecure (98): Setting invalid parameter handler to: )"
                                 "OrvSecureInvalidParameterHandler";
constexpr char kAppendInstalls[] = R"(..\..\Common\Src\OrvSecure (150): Setting invalid parameter handler to: )"
                                   "OrvSecureInvalidParameterHandler";

void OtherHandler(const wchar_t*, const wchar_t*, const wchar_t*, unsigned, uintptr_t) {}

enum class RuntimeKind
{
    TakesHandlers,
    TakesNone,
};
RuntimeKind runtimeKind = RuntimeKind::TakesHandlers;
std::vector<OrvInvalidParameterHandlerFn> installedWithTheRuntime;

OrvInvalidParameterHandlerFn TakeHandler(OrvInvalidParameterHandlerFn handler)
{
    installedWithTheRuntime.push_back(handler);
    return OtherHandler;
}

const auto findEntry = &GetProcAddress;

// Only the system's runtime answers otherwise than it does.
FARPROC WINAPI FindInRuntime(HMODULE library, LPCSTR name)
{
    if (library != GetModuleHandleA("msvcrt.dll") || std::string_view(name) != "_set_invalid_parameter_handler") {
        return findEntry(library, name);
    }
    return runtimeKind == RuntimeKind::TakesHandlers ? std::bit_cast<FARPROC>(&TakeHandler) : nullptr;
}

// A process in which nothing was copied yet, for the life of the object.
class NothingCopiedYet
{
public:
    explicit NothingCopiedYet(RuntimeKind runtime)
        : m_lookUp("GetProcAddress", reinterpret_cast<void*>(FindInRuntime)),
          m_installedBefore(OrvSecureState.installed.exchange(nullptr)),
          m_previousBefore(OrvSecureState.previous.exchange(nullptr))
    {
        runtimeKind = runtime;
        installedWithTheRuntime.clear();
    }
    ~NothingCopiedYet()
    {
        OrvSecureState.installed = m_installedBefore;
        OrvSecureState.previous = m_previousBefore;
    }
    NothingCopiedYet(const NothingCopiedYet&) = delete;
    NothingCopiedYet& operator=(const NothingCopiedYet&) = delete;

private:
    ImportOverride m_lookUp;
    OrvInvalidParameterHandlerFn m_installedBefore;
    OrvInvalidParameterHandlerFn m_previousBefore;
};
} // namespace

TEST(InvalidParameterHandler, TheFirstCopyInstallsItOnceWithTheSystemsRuntimeAndKeepsTheOneBefore)
{
    const LibraryTrace trace;
    const NothingCopiedYet fresh(RuntimeKind::TakesHandlers);
    char text[10] = "";
    OrvSafeCopy("caller.cpp", 7, text, sizeof(text), "a");
    EXPECT_THAT(installedWithTheRuntime, ElementsAre(&OrvSecureInvalidParameterHandler));
    EXPECT_EQ(OrvSecureState.previous, OtherHandler);
    OrvSafeCopy("caller.cpp", 7, text, sizeof(text), "b");
    OrvSafeCat("caller.cpp", 7, text, sizeof(text), "c");
    EXPECT_EQ(installedWithTheRuntime.size(), 1U);
    EXPECT_THAT(trace.Messages(), ElementsAre(kCopyInstalls));
}

TEST(InvalidParameterHandler, AFirstAppendInstallsItWithItsOwnLine)
{
    const LibraryTrace trace;
    const NothingCopiedYet fresh(RuntimeKind::TakesHandlers);
    char text[10] = "";
    OrvSafeCat("caller.cpp", 7, text, sizeof(text), "a");
    OrvSafeCopy("caller.cpp", 7, text, sizeof(text), "b");
    EXPECT_THAT(installedWithTheRuntime, ElementsAre(&OrvSecureInvalidParameterHandler));
    EXPECT_THAT(trace.Messages(), ElementsAre(kAppendInstalls));
}

TEST(InvalidParameterHandler, ARuntimeThatTakesNoneIsLeftAloneAndTheLibraryStillReports)
{
    const LibraryTrace trace;
    const NothingCopiedYet fresh(RuntimeKind::TakesNone);
    char text[10] = "";
    EXPECT_EQ(OrvSafeCopy("caller.cpp", 7, text, sizeof(text), "12345678901"), 34);
    EXPECT_THAT(installedWithTheRuntime, IsEmpty());
    EXPECT_EQ(OrvSecureState.previous, nullptr);
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kCopyInstalls, kHandlerLine,
                            "caller.cpp (7): OrvSafeCopy ERROR: strDestination size 0, or too small"));
}

TEST(InvalidParameterHandler, WritesOneLineAndReturns)
{
    const LibraryTrace trace;
    OrvSecureInvalidParameterHandler(L"expression", L"function", L"file", 1, 0);
    EXPECT_THAT(trace.Messages(), ElementsAre(kHandlerLine));
}
