#include "ProcessFamily.h"

#include <algorithm>
#include <iterator>

namespace {
bool Has(std::span<const ProcessRow> rows, const ProcessRow& wanted)
{
    return std::ranges::any_of(
        rows, [&](const ProcessRow& row) { return row.id == wanted.id && row.started == wanted.started; });
}

bool HasNumber(std::span<const ProcessRow> rows, uint32_t id)
{
    return std::ranges::count(rows, id, &ProcessRow::id) > 0;
}

/// The time of the latest process of a number that is not younger than `child`; 0 when there is none.
uint64_t LatestParentTime(std::span<const ProcessRow> rows, const ProcessRow& child)
{
    uint64_t latest = 0;
    for (const ProcessRow& row : rows) {
        if (row.id == child.parent && row.started <= child.started) {
            latest = std::max(latest, row.started);
        }
    }
    return latest;
}
} // namespace

bool ProcessFamily::Belongs(const ProcessRow& row) const
{
    const uint64_t parent = LatestParentTime(m_members, row);
    return parent > LatestParentTime(m_strangers, row) && !Has(m_members, row);
}

void ProcessFamily::Grow(std::span<const ProcessRow> running)
{
    // A process that is just ending has no time any more. It is no stranger, and the next look sees its children.
    std::vector<ProcessRow> timeless;
    std::ranges::copy_if(running, std::back_inserter(timeless), [](const ProcessRow& row) { return row.started == 0; });
    for (const ProcessRow& row : running) {
        if (row.started != 0 && HasNumber(m_members, row.id) && !Has(m_members, row) && !Has(m_strangers, row)) {
            m_strangers.push_back(row);
        }
    }
    for (bool grown = true; grown;) {
        grown = false;
        for (const ProcessRow& row : running) {
            if (!HasNumber(timeless, row.parent) && Belongs(row)) {
                m_members.push_back(row);
                std::erase(m_strangers, row);
                grown = true;
            }
        }
    }
}
