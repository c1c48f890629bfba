// The installer library on a network card of the machine: it is bound once more to the driver that it has from the
// system, which changes nothing.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>

#include "Bundle.h"
#include "EntryPoints.h"
#include "Environment.h"
#include "HexNumber.h"
#include "Machine.h"
#include "NativeMachine.h"
#include "NetInstClient.h"
#include "NetworkCards.h"
#include "ProcessorRule.h"
#include "RegistryKeys.h"
#include "SystemLibrary.h"
#include "WindowStation.h"

namespace {
/// The set-up functions of this process ask nobody during the life of the object.
class SilentSetup
{
public:
    SilentSetup() { Set(TRUE); }
    ~SilentSetup() { Set(FALSE); }
    SilentSetup(const SilentSetup&) = delete;
    SilentSetup& operator=(const SilentSetup&) = delete;

private:
    void Set(BOOL silent) const
    {
        const auto setMode = FindEntry<SetupSetNonInteractiveModeFn>(m_library.get(), "SetupSetNonInteractiveMode");
        if (setMode != nullptr) {
            setMode(silent);
        }
    }
    // The mode lasts as long as the library is loaded.
    const UniqueLibrary m_library = LoadSystemLibrary("setupapi.dll");
};

bool MayCutTheNetwork()
{
    const char* value = std::getenv("MORVIX_CUT_NETWORK");
    return value != nullptr && std::string_view(value) == "1";
}

class InBoxDriver : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto why = WhyNoX64Machine(NativeMachine())) {
            GTEST_SKIP() << NotHere(*why);
        }
        const std::vector<NetworkCard> cards = PresentNetworkCards();
        std::vector<CardFacts> facts;
        std::ranges::transform(cards, std::back_inserter(facts), &NetworkCard::facts);
        const CardChoice choice =
            ChooseCard(facts, {.isRemote = IsRemoteSession() || !WindowsAreSeen(), .mayBeCut = MayCutTheNetwork()});
        if (!choice.card) {
            GTEST_SKIP() << NotHere(choice.whyNone);
        }
        m_card = cards[*choice.card];
        RecordProperty("card", m_card->name + ", " + m_card->hardwareId + ", " + m_card->infName +
                                   (m_card->facts.isConnected ? "" : ", not connected"));
    }

    // The card as it is now.
    [[nodiscard]] NetworkCard Again() const
    {
        for (const NetworkCard& card : PresentNetworkCards()) {
            if (card.facts.instanceId == m_card->facts.instanceId) {
                return card;
            }
        }
        throw std::runtime_error(m_card->facts.instanceId + " has gone");
    }

    std::optional<NetworkCard> m_card;
};
} // namespace

TEST_F(InBoxDriver, BoundThroughTheInstallerLibraryOnceMoreKeepsTheCardWorking)
{
    const SavedRegistryValue restart(kNetInstKey, kNetInstRestartValue);
    const NetInstLibrary library(DistFolder() + "\\NetInst.dll");
    RawRecord record;
    static_cast<void>(library.MakeProber()->IdentifySystem(&record));
    const CardState before = StateOf(*m_card);
    RecordProperty("before", "status " + Hex(before.status) + ", problem " + std::to_string(before.problem));
    ASSERT_EQ(before.problem, 0u) << "the card does not work";

    const SilentSetup silent;
    const InstallAnswer answer = library.Install(PathOfInf(m_card->infName), m_card->hardwareId);
    const bool wantsRestart = ReadRegistryValue(kNetInstKey, kNetInstRestartValue).has_value();
    const CardState after = StateOf(Again());
    RecordProperty("answer",
                   "status " + Hex(static_cast<uint32_t>(answer.status)) + ", error " + Hex(answer.lastError));
    RecordProperty("restart", wantsRestart ? "wanted" : "not wanted");
    RecordProperty("after", "status " + Hex(after.status) + ", problem " + std::to_string(after.problem));

    EXPECT_EQ(answer.status, 0) << Hex(static_cast<uint32_t>(answer.status)) << ", error " << Hex(answer.lastError);
    EXPECT_EQ(answer.lastError, 0u);
    EXPECT_EQ(Again().infName, m_card->infName);
    EXPECT_EQ(Again().service, m_card->service);
    // Where the system could not stop the driver, only the restart shows whether it runs.
    if (!wantsRestart) {
        EXPECT_EQ(after.problem, 0u);
        EXPECT_EQ(after.status & DN_STARTED, before.status & DN_STARTED);
    }
}
