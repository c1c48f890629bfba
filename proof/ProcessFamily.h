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

    /// Takes in the descendants among the running processes. The system uses numbers of ended processes again, so a
    /// process older than its supposed parent does not belong.
    void Grow(std::span<const ProcessRow> running);

    /// The oldest member first.
    [[nodiscard]] const std::vector<ProcessRow>& Members() const { return m_members; }

private:
    [[nodiscard]] bool Belongs(const ProcessRow& row) const;

    std::vector<ProcessRow> m_members;
};
