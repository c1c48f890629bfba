#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// A running process.
struct ProcessRow
{
    uint32_t id = 0;
    uint32_t parent = 0;
    uint64_t started = 0; ///< the system's time; 0 when it is not known
    bool operator==(const ProcessRow&) const = default;
};

/// A process and what it has started, directly or not. It is kept while they run: a process whose parent has ended can
/// no longer be found later.
class ProcessFamily
{
public:
    explicit ProcessFamily(const ProcessRow& first) : m_members{first} {}

    /// Takes in the descendants among the running processes. The system uses numbers of ended processes again: of the
    /// processes seen with its parent's number, the parent is the last one that started no later than the child.
    /// Where a time is not known, nothing is taken in, so that no foreign process is ended.
    void Grow(std::span<const ProcessRow> running);

    /// The first process first, then in the order in which they were found; also those that have ended.
    [[nodiscard]] const std::vector<ProcessRow>& Members() const { return m_members; }

private:
    [[nodiscard]] bool Belongs(const ProcessRow& row) const;

    std::vector<ProcessRow> m_members;
    std::vector<ProcessRow> m_strangers; ///< processes that were seen with a member's number
};
