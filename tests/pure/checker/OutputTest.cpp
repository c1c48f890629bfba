#include <gtest/gtest.h>

#include "Baseline.h"
#include "FindingJson.h"
#include "Fingerprints.h"
#include "Kits.h"

namespace {
KitFindings FoundWith(const std::string& models)
{
    const TestFolder folder;
    WriteKit(folder, KitWith({{kPerfectInf, InfWithModels(models)}}));
    return FindingsIn(folder, {"Win832E"});
}

const std::string kGood = Model("VEN_5D1A&DEV_7A01");
const std::string kBad = Model("VEN_5D1A&DEV_7A02;first");

Baseline BaselineOf(const KitFindings& found)
{
    std::string problem;
    return Baseline::Parse(Baseline::TextFor(found), problem).value();
}
} // namespace

TEST(Fingerprints, StayWhenLinesMove)
{
    const auto before = FoundWith(kBad);
    const auto after = FoundWith("; a comment\n\n" + kGood + "   " + kBad);
    ASSERT_EQ(1U, before.findings.size());
    ASSERT_EQ(1U, after.findings.size());
    EXPECT_NE(before.findings[0].line, after.findings[0].line);
    EXPECT_EQ(FingerprintsOf(before.findings), FingerprintsOf(after.findings));
}

TEST(Fingerprints, TellFindingsApart)
{
    const auto twice = FingerprintsOf(FoundWith(kBad + kBad).findings);
    ASSERT_EQ(2U, twice.size());
    EXPECT_NE(twice[0], twice[1]);
    EXPECT_EQ(twice[0], FingerprintsOf(FoundWith(kBad).findings)[0]);
    EXPECT_NE(twice[0], FingerprintsOf(FoundWith(Model("VEN_5D1A&DEV_7A03;first")).findings)[0]);
}

TEST(Baseline, AcceptsWhatWasThereAndNothingElse)
{
    Baseline baseline = BaselineOf(FoundWith(kBad));
    KitFindings moved = FoundWith("; a comment\n" + kBad);
    EXPECT_EQ(1U, baseline.Accept(moved));
    EXPECT_EQ(0U, moved.findings.size());
    EXPECT_EQ(0U, baseline.Unused());

    baseline = BaselineOf(FoundWith(kBad));
    KitFindings twice = FoundWith(kBad + kBad);
    EXPECT_EQ(1U, baseline.Accept(twice));
    EXPECT_EQ(1U, twice.findings.size());

    baseline = BaselineOf(FoundWith(kBad));
    KitFindings other = FoundWith(Model("VEN_5D1A&DEV_7A03;first"));
    EXPECT_EQ(0U, baseline.Accept(other));
    EXPECT_EQ(1U, baseline.Unused());
}

TEST(Baseline, AnythingElseIsRefusedWithItsLine)
{
    std::string problem;
    EXPECT_FALSE(Baseline::Parse("# accepted\nMK102 Morvix.ini\n", problem));
    EXPECT_NE(std::string::npos, problem.find("line 2"));
    EXPECT_FALSE(Baseline::Parse("MK999\tMorvix.ini\tx\n", problem));
    EXPECT_TRUE(Baseline::Parse("# none\r\n\r\nMK102\tMorvix.ini\tInfDir=x\r\n", problem));
}

TEST(Sarif, HasNoMoreResultsThanServicesTakeAndKeepsTheWorst)
{
    KitFindings found;
    constexpr std::size_t kMost = 3;
    for (std::size_t number = 0; number < kMost; ++number) {
        found.findings.push_back(
            {.rule = 701, .file = "Morvix.ini", .here = {}, .what = "x", .systems = {}, .key = {}});
    }
    found.findings.push_back({.rule = 102, .file = "Morvix.ini", .here = {}, .what = "x", .systems = {}, .key = {}});
    const std::string sarif = FindingSarif(found, "1.0.0", "/nowhere", kMost);
    std::size_t results = 0;
    for (std::size_t at = sarif.find("\"ruleId\""); at != std::string::npos; at = sarif.find("\"ruleId\"", at + 1)) {
        ++results;
    }
    EXPECT_EQ(kMost, results);
    EXPECT_NE(std::string::npos, sarif.find("\"ruleId\":\"MK102\""));
}

static_assert(kMostSarifResults == 25000);

TEST(Sarif, OfMoreFindingsThanServicesTakeHasTheMost)
{
    KitFindings found;
    for (std::size_t number = 0; number <= kMostSarifResults; ++number) {
        found.findings.push_back({.rule = 305,
                                  .file = "Drv/ngea.inf",
                                  .here = {},
                                  .line = static_cast<uint32_t>(number + 1),
                                  .what = "x",
                                  .systems = {},
                                  .key = {}});
    }
    const std::string sarif = FindingSarif(found, "1.0.0", "/nowhere");
    std::size_t results = 0;
    for (std::size_t at = sarif.find("\"ruleId\""); at != std::string::npos; at = sarif.find("\"ruleId\"", at + 1)) {
        ++results;
    }
    EXPECT_EQ(kMostSarifResults, results);
}

TEST(Sarif, PathsAreRelativeAndEscaped)
{
    KitFindings found;
    found.findings.push_back(
        {.rule = 102, .file = "Drv/a b.inf", .here = "/repo/kit/Drv/a b#.inf", .what = "x", .systems = {}, .key = {}});
    EXPECT_NE(std::string::npos, FindingSarif(found, "1", "/repo").find("\"uri\":\"kit/Drv/a%20b%23.inf\""));
    EXPECT_NE(std::string::npos, FindingSarif(found, "1", "/other").find("\"uri\":\"Drv/a%20b.inf\""));
}
