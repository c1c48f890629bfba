#include "RestartReasons.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
/// A machine with a new DMA-engine driver that needs a restart, and no other reason.
RestartFacts DmaEngineFacts()
{
    RestartFacts facts;
    facts.system = osWINSEVEN32E;
    facts.version.productType = kProductWorkstation;
    facts.dmaEngineMatched = true;
    facts.ndis52OrLater = true;
    return facts;
}

/// @param bits  One for each of the four conditions, in their order, and one for the adapter.
RestartFacts IscsiFacts(unsigned bits)
{
    RestartFacts facts;
    facts.iscsi = {.rightSystem = (bits & 1U) != 0,
                   .patchInstalled = (bits & 2U) != 0,
                   .initiatorPresent = (bits & 4U) != 0,
                   .crashDumpEnabled = (bits & 8U) != 0};
    facts.iscsiBootAdapter = (bits & 16U) != 0;
    return facts;
}
} // namespace

TEST(RestartReasons, WithoutAFactThereIsNone)
{
    EXPECT_THAT(RestartReasons({}), IsEmpty());
}

TEST(RestartReasons, ADmaEngineDriverNeedsARestartFromNdis52On)
{
    RestartFacts facts = DmaEngineFacts();
    EXPECT_THAT(RestartReasons(facts), ElementsAre(RestartReason::DmaEngine));
    facts.ndis52OrLater = false;
    EXPECT_THAT(RestartReasons(facts), IsEmpty());
}

TEST(RestartReasons, WithoutADmaEngineTheNdisVersionDoesNotCount)
{
    RestartFacts facts = DmaEngineFacts();
    EXPECT_TRUE(NdisVersionCounts(facts));
    facts.dmaEngineMatched = false;
    EXPECT_FALSE(NdisVersionCounts(facts));
    EXPECT_THAT(RestartReasons(facts), IsEmpty()) << "even when it was asked for";
}

TEST(RestartReasons, OnVistaAndOlderWorkstationsADmaEngineNeedsNoRestart)
{
    for (const OSCode system : {osWINVISTA32, osWINVISTA32E, osWINXP32, osWINXP32E, osWIN2K}) {
        RestartFacts facts = DmaEngineFacts();
        facts.system = system;
        EXPECT_FALSE(NdisVersionCounts(facts)) << system;
        EXPECT_THAT(RestartReasons(facts), IsEmpty()) << system;
    }
}

TEST(RestartReasons, OnServersOf52And60AndOnLaterWorkstationsItDoes)
{
    for (const OSCode system : {osWIN2K3SRV32E, osLONGHORN32E, osWINSEVEN32, osWINEIGHT32E, osWINEIGHTSRV32E}) {
        RestartFacts facts = DmaEngineFacts();
        facts.system = system;
        EXPECT_THAT(RestartReasons(facts), ElementsAre(RestartReason::DmaEngine)) << system;
    }
}

TEST(RestartReasons, ACodeOfVistaOnAServerIsNoVistaWorkstation)
{
    RestartFacts facts = DmaEngineFacts();
    facts.system = osWINVISTA32E;
    facts.version.productType = kProductServer;
    EXPECT_THAT(RestartReasons(facts), ElementsAre(RestartReason::DmaEngine));
}

TEST(RestartReasons, AnIscsiBootAdapterNeedsARestartWhenTheFirstThreeConditionsHold)
{
    for (unsigned bits = 0; bits < 32; ++bits) {
        const bool expected = (bits & 23U) == 23U;
        EXPECT_EQ(RestartReasons(IscsiFacts(bits)),
                  expected ? std::vector{RestartReason::IscsiBoot} : std::vector<RestartReason>{})
            << bits;
    }
}

TEST(RestartReasons, IscsiSettingsAreVerifiedExactlyWhenAllFourConditionsHoldForABootAdapter)
{
    for (unsigned bits = 0; bits < 32; ++bits) {
        EXPECT_EQ(IscsiSettingsAreVerified(IscsiFacts(bits)), bits == 31) << bits;
    }
}

TEST(RestartReasons, FcoeBootPortsNeedARestartOnlyWhenTheirDriversMayBeUpdated)
{
    for (const bool ports : {false, true}) {
        for (const bool allowed : {false, true}) {
            RestartFacts facts;
            facts.fcoeBootPorts = ports;
            facts.extensionUpdateAllowed = allowed;
            EXPECT_EQ(RestartReasons(facts),
                      ports && allowed ? std::vector{RestartReason::FcoeBoot} : std::vector<RestartReason>{});
        }
    }
}

TEST(RestartReasons, AllThatHoldAreNamedInOrder)
{
    RestartFacts facts = DmaEngineFacts();
    const RestartFacts iscsi = IscsiFacts(31);
    facts.iscsi = iscsi.iscsi;
    facts.iscsiBootAdapter = true;
    facts.fcoeBootPorts = true;
    facts.extensionUpdateAllowed = true;
    EXPECT_THAT(RestartReasons(facts),
                ElementsAre(RestartReason::DmaEngine, RestartReason::IscsiBoot, RestartReason::FcoeBoot));
}
