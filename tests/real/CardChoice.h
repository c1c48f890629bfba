#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// How near to real hardware a network device is.
enum class Bus
{
    Pci,
    Other,   ///< also the one by which a virtual machine reaches its host
    Software ///< devices that the system itself has made up
};

/// @param instanceId  In upper case.
[[nodiscard]] Bus BusOf(std::string_view instanceId);

/// What decides whether a network card may be bound once more.
struct CardFacts
{
    std::string instanceId;
    Bus bus = Bus::Software;
    bool hasInBoxDriver = false; ///< one that came with the system
    bool works = true;           ///< it has no problem code
    bool isConnected = true;     ///< unless its driver says that it is not
};

/// How the line by which somebody reaches the machine may be lost.
struct LineRisk
{
    bool isRemote = false; ///< somebody works in a remote session, or in one without windows
    bool mayBeCut = false; ///< the caller allows it
};

struct CardChoice
{
    std::optional<std::size_t> card; ///< its index
    std::string whyNone;             ///< when there is no card; also what would make one possible
};

/// Chooses the card whose interruption does the least harm: one that is not connected first, then one of real hardware.
/// The same cards give the same choice, whatever their order.
[[nodiscard]] CardChoice ChooseCard(std::span<const CardFacts> cards, const LineRisk& risk);
