#include "ProcessFamily.h"

#include <gmock/gmock.h>

#include <array>

using testing::ElementsAre;

namespace {
constexpr ProcessRow kFirst{.id = 10, .parent = 1, .started = 100};
constexpr ProcessRow kChild{.id = 20, .parent = 10, .started = 110};
constexpr ProcessRow kGrandchild{.id = 30, .parent = 20, .started = 120};
} // namespace

TEST(ProcessFamily, HasChildrenAndGrandchildrenInWhateverOrderTheyAreListed)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kGrandchild, kFirst, ProcessRow{.id = 40, .parent = 1, .started = 130}, kChild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, kGrandchild));
}

TEST(ProcessFamily, KeepsTheChildrenOfAProcessThatHasEnded)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    family.Grow(std::array{kFirst, kGrandchild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, kGrandchild));
}

TEST(ProcessFamily, AProcessOlderThanItsSupposedParentDoesNotBelong)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{ProcessRow{.id = 20, .parent = 10, .started = 90},
                           ProcessRow{.id = 21, .parent = 10, .started = 0}});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst));
}

TEST(ProcessFamily, ANumberUsedAgainIsAnotherProcess)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kChild});
    const ProcessRow again{.id = 20, .parent = 10, .started = 200};
    family.Grow(std::array{again});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, again));
}

TEST(ProcessFamily, TheChildrenOfAnotherProcessWithTheNumberOfAMemberDoNotBelong)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    const ProcessRow stranger{.id = 20, .parent = 1, .started = 200};
    const ProcessRow strangersChild{.id = 30, .parent = 20, .started = 210};
    family.Grow(std::array{kFirst, stranger, strangersChild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild));
}

TEST(ProcessFamily, TheChildrenOfAnotherProcessDoNotBelongAfterItsEndEither)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    family.Grow(std::array{kFirst, ProcessRow{.id = 20, .parent = 1, .started = 200}});
    family.Grow(std::array{kFirst, ProcessRow{.id = 30, .parent = 20, .started = 210}});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild));
}

TEST(ProcessFamily, KeepsTheChildOfAMemberWhoseNumberIsUsedAgain)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    family.Grow(std::array{kFirst, ProcessRow{.id = 20, .parent = 1, .started = 200}, kGrandchild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, kGrandchild));
}

TEST(ProcessFamily, HasTheChildrenOfAMemberWithTheNumberOfAnEarlierOne)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    const ProcessRow again{.id = 20, .parent = 10, .started = 200};
    const ProcessRow child{.id = 30, .parent = 20, .started = 210};
    family.Grow(std::array{child, kFirst, again});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, again, child));
}

TEST(ProcessFamily, WaitsWithTheChildrenOfANumberWhoseProcessHasNoTime)
{
    ProcessFamily family(kFirst);
    family.Grow(std::array{kFirst, kChild});
    family.Grow(std::array{kFirst, ProcessRow{.id = 20, .parent = 1, .started = 0}, kGrandchild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild));
    family.Grow(std::array{kFirst, kGrandchild});
    EXPECT_THAT(family.Members(), ElementsAre(kFirst, kChild, kGrandchild));
}

TEST(ProcessFamily, AProcessWithoutATimeHasNoChildren)
{
    ProcessFamily family({.id = 10, .parent = 1, .started = 0});
    family.Grow(std::array{kChild});
    EXPECT_THAT(family.Members(), ElementsAre(ProcessRow{.id = 10, .parent = 1, .started = 0}));
}
