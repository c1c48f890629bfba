#include "SearchIds.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {
constexpr char kFullId[] = "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B&REV_03";
}

TEST(SearchIds, FirstPassSearchesTheFullKeyName)
{
    EXPECT_EQ(SearchIdForPass(kFullId, 1), kFullId);
}

TEST(SearchIds, SecondPassDropsTheRevision)
{
    EXPECT_EQ(SearchIdForPass(kFullId, 2), "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
}

TEST(SearchIds, ThirdPassDropsTheSubSystemAndKeepsTheRevision)
{
    EXPECT_EQ(SearchIdForPass(kFullId, 3), "VEN_5D1A&DEV_1A2B&REV_03");
}

TEST(SearchIds, FourthPassDropsBoth)
{
    EXPECT_EQ(SearchIdForPass(kFullId, 4), "VEN_5D1A&DEV_1A2B");
}

TEST(SearchIds, WithoutRevisionTheSecondPassRepeatsTheFullName)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", 2), "VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B");
}

TEST(SearchIds, WithoutSubSystemTheFourthPassRepeatsTheFullName)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&DEV_1A2B&REV_03", 4), "VEN_5D1A&DEV_1A2B&REV_03");
}

TEST(SearchIds, WithoutSubSystemTheThirdPassAppendsTheRevisionOnceMore)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&DEV_1A2B&REV_03", 3), "VEN_5D1A&DEV_1A2B&REV_03&REV_03");
}

TEST(SearchIds, SubSystemWithoutRevisionIsOutOfRangeInTheThirdPass)
{
    EXPECT_THROW(static_cast<void>(SearchIdForPass("VEN_5D1A&DEV_1A2B&SUBSYS_00011A2B", 3)), std::out_of_range);
}

TEST(SearchIds, NeitherPartIsOutOfRangeInTheThirdPassToo)
{
    EXPECT_THROW(static_cast<void>(SearchIdForPass("VEN_5D1A&DEV_1A2B", 3)), std::out_of_range);
}

TEST(SearchIds, LeadingRevisionSkipsTheSecondAndTheThirdPass)
{
    EXPECT_FALSE(SearchIdForPass("&REV_03&SUBSYS_00011A2B", 2).has_value());
    EXPECT_FALSE(SearchIdForPass("&REV_03&SUBSYS_00011A2B", 3).has_value());
    EXPECT_EQ(SearchIdForPass("&REV_03&SUBSYS_00011A2B", 4), "&REV_03");
}

TEST(SearchIds, LeadingSubSystemSkipsTheThirdAndTheFourthPass)
{
    EXPECT_EQ(SearchIdForPass("&SUBSYS_00011A2B&REV_03", 2), "&SUBSYS_00011A2B");
    EXPECT_FALSE(SearchIdForPass("&SUBSYS_00011A2B&REV_03", 3).has_value());
    EXPECT_FALSE(SearchIdForPass("&SUBSYS_00011A2B&REV_03", 4).has_value());
}

TEST(SearchIds, LeadingSubSystemWithoutRevisionSkipsTheThirdPassInsteadOfFailing)
{
    EXPECT_FALSE(SearchIdForPass("&SUBSYS_00011A2B", 3).has_value());
}

TEST(SearchIds, TheLastOccurrenceOfAPartCounts)
{
    EXPECT_EQ(SearchIdForPass("A&REV_01&SUBSYS_1&SUBSYS_2&REV_02", 2), "A&REV_01&SUBSYS_1&SUBSYS_2");
    EXPECT_EQ(SearchIdForPass("A&REV_01&SUBSYS_1&SUBSYS_2&REV_02", 3), "A&REV_01&SUBSYS_1&REV_02");
    EXPECT_EQ(SearchIdForPass("A&REV_01&SUBSYS_1&SUBSYS_2&REV_02", 4), "A&REV_01&SUBSYS_1");
}

TEST(SearchIds, ASecondOccurrenceLiftsTheSkipOfALeadingPart)
{
    EXPECT_EQ(SearchIdForPass("&REV_01&REV_02", 2), "&REV_01");
}

TEST(SearchIds, PartsAreFoundInUpperCaseOnly)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&subsys_1&rev_03", 2), "VEN_5D1A&subsys_1&rev_03");
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&subsys_1&rev_03", 4), "VEN_5D1A&subsys_1&rev_03");
}

TEST(SearchIds, AMarkerAtTheVeryEndIsFoundAsAWhole)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&REV", 2), "VEN_5D1A");
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&RE", 2), "VEN_5D1A&RE");
}

TEST(SearchIds, ARevisionBeforeTheSubSystemIsKeptWithEverythingAfterIt)
{
    EXPECT_EQ(SearchIdForPass("VEN_5D1A&REV_03&SUBSYS_1", 3), "VEN_5D1A&REV_03&REV_03&SUBSYS_1");
}

TEST(SearchIds, AnEmptyNameBehavesLikeOneWithoutParts)
{
    EXPECT_EQ(SearchIdForPass("", 1), "");
    EXPECT_EQ(SearchIdForPass("", 2), "");
    EXPECT_THROW(static_cast<void>(SearchIdForPass("", 3)), std::out_of_range);
    EXPECT_EQ(SearchIdForPass("", 4), "");
}

TEST(SearchIds, OtherPassesDoNotExist)
{
    EXPECT_FALSE(SearchIdForPass(kFullId, 0).has_value());
    EXPECT_FALSE(SearchIdForPass(kFullId, 5).has_value());
}

TEST(PlanPass, TellsAFaultFromARepeatedSearch)
{
    struct Row
    {
        const char* device;
        int pass;
        PassVerdict verdict;
    };
    for (const Row& row :
         {Row{"VEN_1&SUBSYS_2&REV_3", 3, PassVerdict::OwnId}, Row{"VEN_1&REV_3", 3, PassVerdict::OwnId},
          Row{"VEN_1&SUBSYS_2", 2, PassVerdict::OwnId}, Row{"VEN_1&SUBSYS_2", 3, PassVerdict::Fault},
          Row{"VEN_1", 3, PassVerdict::Fault}, Row{"&SUBSYS_2", 3, PassVerdict::IdOfThePassBefore},
          Row{"&REV_3", 2, PassVerdict::IdOfThePassBefore}, Row{"&REV_3", 3, PassVerdict::IdOfThePassBefore},
          Row{"&SUBSYS_2", 4, PassVerdict::IdOfThePassBefore}, Row{"VEN_1", 5, PassVerdict::IdOfThePassBefore}}) {
        const SearchPass plan = PlanPass(row.device, row.pass);
        EXPECT_EQ(plan.verdict, row.verdict) << row.device << " in pass " << row.pass;
        EXPECT_EQ(plan.searchId.empty(), row.verdict != PassVerdict::OwnId) << row.device << " in pass " << row.pass;
    }
}
