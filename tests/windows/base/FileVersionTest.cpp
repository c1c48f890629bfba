#include "FileVersion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "CallCount.h"
#include "DebugOutput.h"
#include "HandleCount.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::ElementsAre;

namespace {
std::array<char, 32> Marked()
{
    std::array<char, 32> text{};
    text.fill('#');
    return text;
}
} // namespace

TEST(FileVersion, FourPartsOfTheFileVersionAreRead)
{
    TraceCapture trace;
    std::array<char, 32> version = Marked();
    EXPECT_TRUE(GetModuleVersion(TestFile("versioned_file.dll"), version));
    EXPECT_STREQ("7.8.9.10", version.data());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetModuleVersion", "7.8.9.10"));
}

TEST(FileVersion, SearchForTheFileIsClosed)
{
    const CallCount closed("FindClose");
    std::array<char, 32> version = Marked();
    EXPECT_TRUE(GetModuleVersion(TestFile("versioned_file.dll"), version));
    EXPECT_EQ(closed.Calls(), 1U);
}

TEST(FileVersion, FileWithoutVersionResourceLeavesTheOutputUntouched)
{
    const ScratchDirectory scratch;
    WriteFileBytes(scratch.At("plain.sys"), "no resources here");
    std::array<char, 32> version = Marked();
    EXPECT_FALSE(GetModuleVersion(scratch.At("plain.sys"), version));
    EXPECT_EQ(Marked(), version);
}

TEST(FileVersion, EmptyAndMissingFilesHaveNoVersion)
{
    const ScratchDirectory scratch;
    WriteFileBytes(scratch.At("empty.sys"), "");
    std::array<char, 32> version = Marked();
    TraceCapture trace;
    EXPECT_FALSE(GetModuleVersion(scratch.At("empty.sys"), version));
    EXPECT_FALSE(GetModuleVersion(scratch.At("missing.sys"), version));
    EXPECT_EQ(Marked(), version);
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetModuleVersion", "Entering - GetModuleVersion"));
}

TEST(FileVersion, PatternProvesExistenceOnlyAndYieldsNoVersion)
{
    const ScratchDirectory scratch;
    CopyFileTo(TestFile("versioned_file.dll"), scratch.At("driver.sys"));
    std::array<char, 32> version = Marked();
    EXPECT_FALSE(GetModuleVersion(scratch.At("*.sys"), version));
    EXPECT_EQ(Marked(), version);
}

TEST(FileVersion, BufferThatCannotHoldEveryVersionIsNotWritten)
{
    std::array<char, 8> version{};
    EXPECT_FALSE(GetModuleVersion(TestFile("versioned_file.dll"), version));
    EXPECT_EQ((std::array<char, 8>{}), version);
}

TEST(FileVersion, ThousandCallsLeaveNoHandleOpen)
{
    std::array<char, 32> version = Marked();
    EXPECT_TRUE(GetModuleVersion(TestFile("versioned_file.dll"), version));
    const unsigned before = CountOwnHandles();
    for (int call = 0; call < 1000; ++call) {
        static_cast<void>(GetModuleVersion(TestFile("versioned_file.dll"), version));
    }
    EXPECT_EQ(CountOwnHandles(), before);
}
