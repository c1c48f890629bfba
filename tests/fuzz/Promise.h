#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>

/// What the fuzz targets check with, beside the sanitizers.

/// Ends the process with the text of a promise that was not kept; the fuzzer then stores the input that broke it.
inline void Promise(bool kept, const char* promise)
{
    if (!kept) {
        static_cast<void>(std::fprintf(stderr, "broken promise: %s\n", promise));
        std::abort();
    }
}

/// A buffer of exactly `size` bytes on the heap, so that the address sanitizer sees every byte read or written outside.
class ExactBuffer
{
public:
    explicit ExactBuffer(std::size_t size, char fill = '\x5A') : m_bytes(new char[size]), m_size(size)
    {
        for (char& byte : All()) {
            byte = fill;
        }
    }
    explicit ExactBuffer(std::string_view content) : ExactBuffer(content.size())
    {
        content.copy(m_bytes.get(), content.size());
    }

    [[nodiscard]] char* Data() const { return m_bytes.get(); }
    [[nodiscard]] std::size_t Size() const { return m_size; }
    [[nodiscard]] std::span<char> All() const { return {m_bytes.get(), m_size}; }
    [[nodiscard]] std::string_view Text() const { return {m_bytes.get(), m_size}; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size;
};

/// @return true when `part` is a piece of `whole`'s own memory.
inline bool LiesWithin(std::string_view part, std::string_view whole)
{
    return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

/// @return `text` up to its first NUL.
inline std::string_view UpToNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

/// The upper-case form of an ASCII letter.
inline char Upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Plain comparison aside from the letter case of A to Z, written for reading and not for speed.
inline bool SameLetters(std::string_view left, std::string_view right)
{
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t at = 0; at < left.size(); ++at) {
        if (Upper(left[at]) != Upper(right[at])) {
            return false;
        }
    }
    return true;
}
