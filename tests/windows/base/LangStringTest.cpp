#include "LangString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "DebugOutput.h"

using testing::ElementsAre;

namespace {
/// The test program carries string tables of its own in two languages (see LangStringTest.rc).
HMODULE OwnModule()
{
    return GetModuleHandleA(nullptr);
}

class LangStrings : public testing::Test
{
protected:
    LangStrings()
    {
        runLanguageId = 1033;
        resourceModule = OwnModule();
    }
    ~LangStrings() override
    {
        runLanguageId = 1033;
        resourceModule = nullptr;
    }
};

std::string Load(uint32_t id, int bytes = kMessageBytes)
{
    std::string buffer(static_cast<size_t>(bytes) + 4, '#');
    const int length = LoadLangString(OwnModule(), id, buffer.data(), bytes);
    EXPECT_EQ("####", buffer.substr(static_cast<size_t>(bytes))) << "written past the end";
    EXPECT_EQ(std::string(buffer.c_str()).size(), static_cast<size_t>(length));
    return buffer.c_str();
}
} // namespace

TEST_F(LangStrings, TextComesInTheRunLanguage)
{
    EXPECT_EQ("first text", Load(1));
    EXPECT_EQ("last of its block", Load(15));
    EXPECT_EQ("first of the next block", Load(16));
    runLanguageId = 1031;
    EXPECT_EQ("erster Text", Load(1));
}

TEST_F(LangStrings, LanguageIsNeverReplacedByAnother)
{
    runLanguageId = 1036;
    EXPECT_EQ("", Load(1));
    runLanguageId = 1031;
    EXPECT_EQ("", Load(15)) << "this text exists in English only";
}

TEST_F(LangStrings, MissingTextAndMissingBlockGiveAnEmptyText)
{
    EXPECT_EQ("", Load(2));
    EXPECT_EQ("", Load(4000));
    EXPECT_EQ("", LangString(4000));
}

TEST_F(LangStrings, EmptyTextCountsAsMissing)
{
    std::array<wchar_t, 10> wide{};
    EXPECT_EQ(nullptr, GetLanguageSpecificString(OwnModule(), 2, 1033, wide.data(), 10));
}

TEST_F(LangStrings, WideTextIsCutToItsBufferAndTerminated)
{
    std::array<wchar_t, 10> wide{};
    wide.fill(L'#');
    EXPECT_EQ(wide.data(), GetLanguageSpecificString(OwnModule(), 1, 1033, wide.data(), 6));
    EXPECT_STREQ(L"first", wide.data());
    EXPECT_EQ(L'#', wide[6]);
}

TEST_F(LangStrings, TextIsCutToTheCallersBuffer)
{
    EXPECT_EQ("first", Load(1, 6));
    EXPECT_EQ("", Load(1, 1));
}

TEST_F(LangStrings, BadBuffersAreRefused)
{
    char byte = '#';
    EXPECT_EQ(0, LoadLangString(OwnModule(), 1, nullptr, 10));
    EXPECT_EQ(0, LoadLangString(OwnModule(), 1, &byte, 0));
    EXPECT_EQ('#', byte);
    EXPECT_EQ(nullptr, GetLanguageSpecificString(OwnModule(), 1, 1033, nullptr, 10));
}

TEST_F(LangStrings, LookUpIsTracedOnEntry)
{
    TraceCapture trace;
    EXPECT_EQ("first text", LangString(1));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - GetLanguageSpecificString"));
}
