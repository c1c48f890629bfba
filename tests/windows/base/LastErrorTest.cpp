#include "LastError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "MessageFormats.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
std::string SystemText(DWORD error)
{
    char text[512] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0x400, text,
                   sizeof(text), nullptr);
    return text;
}
} // namespace

TEST(LastError, SystemTextOfTheCallersLastErrorIsTraced)
{
    TraceCapture trace;
    SetLastError(ERROR_FILE_NOT_FOUND);
    PrintGetLastErrorMessage();
    ASSERT_FALSE(SystemText(ERROR_FILE_NOT_FOUND).empty());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - PrintGetLastErrorMessage", SystemText(ERROR_FILE_NOT_FOUND)));
}

TEST(LastError, UnknownErrorNumberIsTracedAsAnEmptyText)
{
    TraceCapture trace;
    SetLastError(0x2FFFFFFF);
    PrintGetLastErrorMessage();
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - PrintGetLastErrorMessage", ""));
}

TEST(LastError, TextIsTheSystemsWithoutInsertsInTheUsersLanguageAndIsFreed)
{
    const MessageFormats formats;
    SetLastError(ERROR_BAD_EXE_FORMAT);
    PrintGetLastErrorMessage();
    EXPECT_THAT(formats.Calls(), ElementsAre(MessageFormats::Call{
                                     .flags = 0x1300, .message = ERROR_BAD_EXE_FORMAT, .language = 0x400, .size = 0}));
    EXPECT_EQ(1U, formats.Allocated());
    EXPECT_EQ(1U, formats.Freed());
}

TEST(LastError, TextWithAnInsertIsTracedWithTheInsertAsItStands)
{
    TraceCapture trace;
    SetLastError(ERROR_BAD_EXE_FORMAT);
    PrintGetLastErrorMessage();
    EXPECT_THAT(trace.Messages().back(), HasSubstr("%1"));
}
