#include "KnownIds.h"

#include <algorithm>

#include "HardwareIds.h"
#include "NetworkDevices.h"

namespace {
/// @return the row of the accepted devices that the ID is, whatever its sub-system and revision.
std::optional<uint8_t> AcceptedRowOf(std::string_view id)
{
    for (std::size_t row = kAcceptedClassRows; row < kAcceptedCompatibleIds.size(); ++row) {
        const std::string_view device = WithoutBus(kAcceptedCompatibleIds[row]);
        if (id.starts_with(device) && (id.size() == device.size() || id[device.size()] == '&')) {
            return static_cast<uint8_t>(row);
        }
    }
    return std::nullopt;
}
} // namespace

const KnownId& KnownIds::Of(std::string_view text)
{
    if (const auto known = m_numbers.find(text); known != m_numbers.end()) {
        return m_ids[known->second];
    }
    KnownId& id = m_ids.emplace_back();
    id.text = text;
    id.number = static_cast<uint32_t>(m_ids.size() - 1);
    id.hasSubSystem = text.find("&SUBSYS") != std::string_view::npos;
    id.hasRevision = text.find("&REV") != std::string_view::npos;
    id.isOfAcceptedVendor = IsOfAcceptedVendor(text);
    id.servesDevice = id.isOfAcceptedVendor && IsSearched(id.text);
    id.acceptedRow = id.isOfAcceptedVendor ? AcceptedRowOf(text) : std::nullopt;
    m_numbers.emplace(id.text, id.number);
    return id;
}

LaterIds KnownIds::LaterIdsOf(const KnownId& id)
{
    if (id.number >= m_later.size()) {
        m_later.resize(m_ids.size());
    }
    if (!m_later[id.number]) {
        const Numbers numbers = NumbersOfLater(id);
        m_later[id.number] = numbers;
    }
    LaterIds later{};
    std::ranges::transform(*m_later[id.number], later.begin(),
                           [&](uint32_t number) { return number == id.number ? nullptr : &m_ids[number]; });
    return later;
}

/// @return the numbers of the IDs; the ID's own for a pass that repeats.
KnownIds::Numbers KnownIds::NumbersOfLater(const KnownId& id)
{
    Numbers numbers;
    numbers.fill(id.number);
    for (int pass = kFirstSearchPass + 1; pass <= kLastSearchPass; ++pass) {
        const std::string searchId = PlanPass(id.text, pass).searchId;
        const uint32_t other = searchId.empty() ? id.number : Of(searchId).number;
        if (std::ranges::find(numbers, other) == numbers.end()) {
            numbers.at(static_cast<std::size_t>(pass - kFirstSearchPass - 1)) = other;
        }
    }
    return numbers;
}
