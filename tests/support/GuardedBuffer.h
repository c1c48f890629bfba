#pragma once

#include <cstddef>
#include <span>
#include <string>

/// A buffer between inaccessible pages. Reading or writing one byte after it ends the process; bytes in front of it, up
/// to the page, are checked for writes.
class GuardedBuffer
{
public:
    /// @param size  In bytes; the buffer itself is filled with '#'.
    explicit GuardedBuffer(std::size_t size);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    [[nodiscard]] std::span<char> All() const { return {m_begin, m_size}; }
    [[nodiscard]] char* Data() const { return m_begin; }
    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] std::string Bytes() const { return {m_begin, m_size}; }
    /// The text up to its terminator; throws std::runtime_error when there is none in the buffer.
    [[nodiscard]] std::string Text() const;
    void Fill(char value) const;
    /// @return true when nothing was written in front of the buffer.
    [[nodiscard]] bool IsUntouchedInFront() const;

private:
    char* m_pages;
    std::size_t m_pageBytes;
    std::size_t m_dataBytes;
    std::size_t m_size;
    char* m_begin;
};
