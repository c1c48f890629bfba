#include "CardChoice.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::HasSubstr;

namespace {
constexpr LineRisk kAtTheMachine;
constexpr LineRisk kRemote{.isRemote = true, .mayBeCut = false};
constexpr LineRisk kMayBeCut{.isRemote = true, .mayBeCut = true};

CardFacts Card(const std::string& name, bool isConnected, Bus bus = Bus::Pci)
{
    return {.instanceId = name, .bus = bus, .hasInBoxDriver = true, .works = true, .isConnected = isConnected};
}

/// The name of the chosen card, or why there is none.
std::string Chosen(const std::vector<CardFacts>& cards, const LineRisk& risk)
{
    const CardChoice choice = ChooseCard(cards, risk);
    return choice.card ? cards.at(*choice.card).instanceId : choice.whyNone;
}
} // namespace

TEST(CardChoice, NoCardIsNamedAsTheReason)
{
    EXPECT_THAT(Chosen({}, kMayBeCut), HasSubstr("no network card that works has a driver that came with the system"));
}

TEST(CardChoice, ACardWithADriverFromElsewhereIsNotTaken)
{
    CardFacts other = Card("A", false);
    other.hasInBoxDriver = false;
    EXPECT_THAT(Chosen({other}, kMayBeCut), HasSubstr("no network card"));
}

TEST(CardChoice, ACardThatDoesNotWorkIsNotTaken)
{
    CardFacts disabled = Card("A", false);
    disabled.works = false;
    EXPECT_THAT(Chosen({disabled}, kMayBeCut), HasSubstr("no network card"));
}

TEST(CardChoice, ADeviceThatTheSystemHasMadeUpIsNotTaken)
{
    EXPECT_THAT(Chosen({Card("A", false, Bus::Software)}, kMayBeCut), HasSubstr("no network card"));
}

TEST(CardChoice, TheOnlyConnectedCardIsLeftAlone)
{
    EXPECT_THAT(Chosen({Card("A", true)}, kAtTheMachine), HasSubstr("the only card that is connected"));
    EXPECT_THAT(Chosen({Card("A", true), Card("B", true, Bus::Software)}, kAtTheMachine),
                HasSubstr("the only card that is connected"))
        << "a made-up device is no second line";
}

TEST(CardChoice, TheOnlyConnectedCardIsTakenWhenTheCallerAllowsIt)
{
    EXPECT_EQ(Chosen({Card("A", true)}, kMayBeCut), "A");
}

TEST(CardChoice, ACardThatMayCarryARemoteSessionIsLeftAlone)
{
    EXPECT_THAT(Chosen({Card("A", true), Card("B", true)}, kRemote), HasSubstr("remote session"));
}

TEST(CardChoice, ACardThatIsNotConnectedIsTakenFirst)
{
    EXPECT_EQ(Chosen({Card("A", true), Card("B", false, Bus::Other)}, kAtTheMachine), "B");
    EXPECT_EQ(Chosen({Card("A", true), Card("B", false, Bus::Other)}, kRemote), "B");
    EXPECT_EQ(Chosen({Card("B", false)}, kRemote), "B");
}

TEST(CardChoice, OfSeveralConnectedCardsOneOfRealHardwareIsTaken)
{
    EXPECT_EQ(Chosen({Card("A", true, Bus::Other), Card("B", true)}, kAtTheMachine), "B");
}

TEST(CardChoice, ASecondLineMayHaveAnyDriver)
{
    CardFacts other = Card("A", true);
    other.hasInBoxDriver = false;
    EXPECT_EQ(Chosen({other, Card("B", true)}, kAtTheMachine), "B");
}

TEST(CardChoice, DoesNotDependOnTheOrderOfTheCards)
{
    std::vector<CardFacts> cards{Card("A", true), Card("B", true), Card("C", true, Bus::Other)};
    do {
        EXPECT_EQ(Chosen(cards, kAtTheMachine), "A");
    } while (std::ranges::next_permutation(cards, {}, &CardFacts::instanceId).found);
}

TEST(CardChoice, KnowsTheBusByTheInstanceId)
{
    EXPECT_EQ(BusOf(R"(PCI\VEN_8086&DEV_100E\3&0)"), Bus::Pci);
    EXPECT_EQ(BusOf(R"(VMBUS\{F8615163}\5&1)"), Bus::Other);
    EXPECT_EQ(BusOf(R"(USB\VID_0B95&PID_1790\000001)"), Bus::Other);
    EXPECT_EQ(BusOf(R"(ROOT\VMS_MP\0000)"), Bus::Software);
    EXPECT_EQ(BusOf(R"(SWD\MSRRAS\MS_NDISWANIP)"), Bus::Software);
    EXPECT_EQ(BusOf(R"(BTH\MS_BTHPAN\6&1)"), Bus::Software);
    EXPECT_EQ(BusOf(R"({5D624F94}\VWIFIMP_WFD\5&1)"), Bus::Software);
}
