#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "SearchIds.h"

/// The hardware IDs of a kit, as the installer's search compares them. Thousands of lines on all systems list the same
/// ones, so each is judged once.

struct KnownId
{
    std::string text;    ///< in upper case, without its bus
    uint32_t number = 0; ///< in the order in which the IDs were met
    bool hasSubSystem = false;
    bool hasRevision = false;
    bool isOfAcceptedVendor = false;
    bool servesDevice = false;          ///< of an accepted vendor, and a pass searches it
    std::optional<uint8_t> acceptedRow; ///< of the accepted compatible IDs: the device that it is
};

/// The other IDs by which a device of an ID is searched, one for each pass after the first; null for a pass that
/// repeats.
using LaterIds = std::array<const KnownId*, kLastSearchPass - kFirstSearchPass>;

class KnownIds
{
public:
    KnownIds() = default;
    KnownIds(const KnownIds&) = delete;
    KnownIds& operator=(const KnownIds&) = delete;

    /// @param text  A result of ComparedId, or what the installer read, in upper case.
    [[nodiscard]] const KnownId& Of(std::string_view text);

    [[nodiscard]] LaterIds LaterIdsOf(const KnownId& id);

    [[nodiscard]] std::size_t Count() const { return m_ids.size(); }

private:
    using Numbers = std::array<uint32_t, std::tuple_size_v<LaterIds>>;

    [[nodiscard]] Numbers NumbersOfLater(const KnownId& id);

    std::deque<KnownId> m_ids;                   // keeps the addresses
    std::vector<std::optional<Numbers>> m_later; ///< by number, as far as they were asked for
    std::unordered_map<std::string_view, uint32_t> m_numbers;
};
