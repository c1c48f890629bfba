#include "ProcessFamily.h"

#include <algorithm>

bool ProcessFamily::Belongs(const ProcessRow& row) const
{
    return std::ranges::count(m_members, row) == 0 && std::ranges::any_of(m_members, [&](const ProcessRow& member) {
               return row.parent == member.id && row.started >= member.started;
           });
}

void ProcessFamily::Grow(std::span<const ProcessRow> running)
{
    for (bool grown = true; grown;) {
        grown = false;
        for (const ProcessRow& row : running) {
            if (Belongs(row)) {
                m_members.push_back(row);
                grown = true;
            }
        }
    }
}
