#include "CardChoice.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace {
// "{" begins what another network driver has made up, such as Wi-Fi Direct.
constexpr auto kSoftware = std::to_array<std::string_view>({"ROOT\\", "SWD\\", "BTH\\", "{"});

std::string WhyTheLineIsAtRisk(std::span<const CardFacts> cards, const LineRisk& risk)
{
    if (risk.mayBeCut) {
        return {};
    }
    if (risk.isRemote) {
        return "the card may be the line of this remote session: run it at the machine, or with /cut-network";
    }
    const auto lines = std::ranges::count_if(
        cards, [](const CardFacts& card) { return card.bus != Bus::Software && card.isConnected; });
    return lines > 1 ? "" : "it is the only card that is connected: add another one, or run it with /cut-network";
}
} // namespace

Bus BusOf(std::string_view instanceId)
{
    if (instanceId.starts_with("PCI\\")) {
        return Bus::Pci;
    }
    const bool isSoftware =
        std::ranges::any_of(kSoftware, [&](std::string_view start) { return instanceId.starts_with(start); });
    return isSoftware ? Bus::Software : Bus::Other;
}

CardChoice ChooseCard(std::span<const CardFacts> cards, const LineRisk& risk)
{
    const auto rank = [&](std::size_t i) { return std::tie(cards[i].isConnected, cards[i].bus, cards[i].instanceId); };
    CardChoice choice;
    for (std::size_t i = 0; i < cards.size(); ++i) {
        const bool isCandidate = cards[i].bus != Bus::Software && cards[i].hasInBoxDriver && cards[i].works;
        if (isCandidate && (!choice.card || rank(i) < rank(*choice.card))) {
            choice.card = i;
        }
    }
    if (!choice.card) {
        choice.whyNone =
            "no network card that works has a driver that came with the system: use a virtual machine with a "
            "card that Windows knows";
        return choice;
    }
    choice.whyNone = cards[*choice.card].isConnected ? WhyTheLineIsAtRisk(cards, risk) : "";
    if (!choice.whyNone.empty()) {
        choice.card.reset();
    }
    return choice;
}
