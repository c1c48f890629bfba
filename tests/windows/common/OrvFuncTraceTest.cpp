#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LibraryTrace.h"
#include "OrvDebug.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(FuncTrace, WritesEntryAndExitAroundAScope)
{
    const LibraryTrace trace;
    {
        const COrvFuncTrace function("CThing::Do");
        OrvTrace().Print("inside");
    }
    EXPECT_THAT(trace.Messages(), ElementsAre("ENTRY:  CThing::Do", "inside", "EXIT:  CThing::Do"));
}

TEST(FuncTrace, WritesInputParametersAndReturnValue)
{
    const LibraryTrace trace;
    {
        std::string name = "CThing::Do";
        COrvFuncTrace function(name.c_str(), "port 3, 100%");
        name = "overwritten";
        function.ReturnValue(-7);
    }
    EXPECT_THAT(trace.Messages(), ElementsAre("ENTRY:  CThing::Do", "CThing::Do:  Input Parameters:  port 3, 100%",
                                              "CThing::Do:  Return Value -7", "EXIT:  CThing::Do"));
}

TEST(FuncTrace, ANullNameIsEmpty)
{
    const LibraryTrace trace;
    {
        const COrvFuncTrace function(nullptr);
    }
    EXPECT_THAT(trace.Messages(), ElementsAre("ENTRY:  ", "EXIT:  "));
}

TEST(FuncTrace, WritesNothingWhileTheLibraryTraceIsUnconfigured)
{
    CloseTrace(OrvTrace());
    {
        const COrvFuncTrace function("CThing::Do");
    }
    const LibraryTrace trace;
    EXPECT_THAT(trace.Messages(), IsEmpty());
}
