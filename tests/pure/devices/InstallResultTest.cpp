#include "InstallResult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "MemoryKit.h"

using testing::ElementsAre;

namespace {
bool IsNoLeadByte(unsigned char /*byte*/)
{
    return false;
}
} // namespace

TEST(InstallResult, TheFamilyOfTheInfNamesValueAndDriverFile)
{
    const auto expected = ExpectedResultOf(R"(C:\KIT\NGEA64.INF)", osWINVISTA32E, IsNoLeadByte);
    ASSERT_TRUE(expected.has_value());
    EXPECT_EQ(expected->valueName, "TAVG_PCIE_Install");
    EXPECT_EQ(expected->filePattern, "\\NGEA*.sys");
}

TEST(InstallResult, Only61SystemsExpectFilesWith62InTheirNames)
{
    for (const SystemRow& row : kSystems) {
        const bool is61 = row.code >= osWINSEVEN32 && row.code <= osWIN2K8R264;
        EXPECT_EQ(ExpectedResultOf(R"(C:\NGEA.INF)", row.code, IsNoLeadByte)->filePattern,
                  is61 ? "\\NGEA62*.sys" : "\\NGEA*.sys")
            << row.code;
        EXPECT_EQ(ExpectedResultOf(R"(C:\NG1K.INF)", row.code, IsNoLeadByte)->filePattern, "\\NG1K*.sys") << row.code;
    }
}

TEST(InstallResult, AnInfOfNoFamilyAndANameWithoutADirectoryAreNotReported)
{
    for (const char* path : {"", "NGEA.INF", R"(C:\OTHER.INF)", R"(C:\XNGEA.INF)", R"(C:\NGEA\OTHER.INF)"}) {
        EXPECT_FALSE(ExpectedResultOf(path, osWINSEVEN32E, IsNoLeadByte).has_value()) << path;
    }
}

TEST(InstallResult, ASecondByteThatLooksLikeABackslashIsNotOne)
{
    const LeadByteTest isLeadByte = [](unsigned char byte) { return byte == 0x83; };
    EXPECT_FALSE(ExpectedResultOf("C:\\\x83\\NGEA.INF", osWINSEVEN32E, isLeadByte).has_value());
    EXPECT_TRUE(ExpectedResultOf("C:\\\x83\\NGEA.INF", osWINSEVEN32E, IsNoLeadByte).has_value());
}

TEST(InstallResult, ClassifyingTracesThePathAsItWasAndLeavesItInUpperCase)
{
    NotingLog log;
    std::string path = R"(C:\Kit\ngea64.inf)";
    EXPECT_TRUE(ClassifyInf(path, osWINVISTA32E, IsNoLeadByte, log).has_value());
    EXPECT_EQ(path, R"(C:\KIT\NGEA64.INF)");
    EXPECT_THAT(log.lines, ElementsAre("inf file name and path is ->", R"(C:\Kit\ngea64.inf)", "inf file name is ->",
                                       R"(\ngea64.inf)"));
    log.lines.clear();
    path = "other.inf";
    EXPECT_FALSE(ClassifyInf(path, osWINVISTA32E, IsNoLeadByte, log).has_value());
    EXPECT_EQ(path, "OTHER.INF");
    EXPECT_THAT(log.lines, ElementsAre("inf file name and path is ->", "other.inf", "inf file name is ->", "other.inf",
                                       "A device other than a network device was installed"));
}

TEST(InstallResult, ARefusedDriverIsAFailureWhateverIsInTheDirectory)
{
    EXPECT_EQ(VerdictOnInstall(true, false), ResultVerdict::DriverFilePresent);
    EXPECT_EQ(VerdictOnInstall(false, false), ResultVerdict::DriverFileMissing);
    EXPECT_EQ(VerdictOnInstall(true, true), ResultVerdict::DriverRefused);
    EXPECT_EQ(VerdictOnInstall(false, true), ResultVerdict::DriverRefused);
}
