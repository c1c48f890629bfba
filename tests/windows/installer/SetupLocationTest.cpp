#include "SetupLocation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <array>

#include "DebugOutput.h"
#include "JapaneseCodePage.h"
#include "LocationInfo.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;

namespace {
class SetupLocation : public testing::Test
{
protected:
    SetupLocation()
    {
        GetCurrentDirectoryA(MAX_PATH, m_before.data());
        SetCurrentDirectoryA(m_scratch.Path().c_str());
    }
    ~SetupLocation() override
    {
        SetCurrentDirectoryA(m_before.data());
        LocationInfo = {};
    }

    ScratchDirectory m_scratch;

private:
    std::array<char, MAX_PATH> m_before{};
};
} // namespace

TEST_F(SetupLocation, BareNameIsTakenFromTheCurrentDirectory)
{
    WriteFileBytes(m_scratch.At("Morvix.ini"), "");
    TraceCapture trace;
    EXPECT_EQ(1, SetLocationInfo("Morvix.exe"));
    const std::string directory = m_scratch.Path();
    EXPECT_EQ(directory + "\\", LocationInfo.invokedDir);
    EXPECT_EQ("Morvix.exe", LocationInfo.programName);
    EXPECT_EQ(directory, LocationInfo.setupDir);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - SetLocationInfo", "invoked dir: " + directory + "\n",
                            "program name: Morvix.exe\n", "full path: " + directory + "\\Morvix.exe\n",
                            "Morvix dir: " + directory + "\n", "ini file: " + directory + "\\Morvix.ini\n"));
}

TEST_F(SetupLocation, FullNameIsUsedUnchangedFromAnyDirectory)
{
    const ScratchDirectory kit;
    WriteFileBytes(kit.At("Morvix.ini"), "");
    EXPECT_EQ(1, SetLocationInfo(kit.At("Morvix.exe")));
    EXPECT_EQ(m_scratch.Path(), LocationInfo.invokedDir) << "no backslash is added when the directory is not used";
    EXPECT_EQ(kit.Path(), LocationInfo.setupDir);
}

TEST_F(SetupLocation, MissingIniFileIsTracedAndRefused)
{
    TraceCapture trace;
    EXPECT_EQ(0, SetLocationInfo("Morvix.exe"));
    EXPECT_EQ("ini file: " + m_scratch.At("Morvix.ini") + ", NOT FOUND\n", trace.Messages().back());
}

TEST_F(SetupLocation, DirectoryOfTheIniFilesNameIsNotAnIniFile)
{
    CreateDirectoryA(m_scratch.At("Morvix.ini").c_str(), nullptr);
    EXPECT_EQ(0, SetLocationInfo("Morvix.exe"));
}

TEST_F(SetupLocation, EmptyProgramNameFindsNothing)
{
    EXPECT_EQ(0, SetLocationInfo(""));
    EXPECT_EQ(m_scratch.Path(), LocationInfo.setupDir);
}

TEST_F(SetupLocation, SecondByteThatLooksLikeABackslashIsNotOne)
{
    const JapaneseCodePage japanese;
    const std::string name = std::string(kJapaneseLetter) + "\\" + kJapaneseLetter + ".exe";
    SetLocationInfo(name);
    EXPECT_EQ(m_scratch.At(kJapaneseLetter), LocationInfo.setupDir)
        << "no double backslash makes the name a full path, and the directory ends at the backslash";
}
