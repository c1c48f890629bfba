#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "CodePage.h"

/// Writes an answer of GetPrivateProfileStringA. The platform cuts the answer in UTF-16 units and then narrows it:
/// characters that no longer fit are not written, but counted as if the buffer were full.
class StringAnswer
{
public:
    /// @param mostUnits  Where the answer is cut.
    StringAnswer(std::span<char> buffer, std::size_t mostUnits, const CodePage& codePage)
        : m_buffer(buffer), m_codePage(&codePage), m_unitsLeft(mostUnits)
    {
    }

    /// Appends `text`, cut where the answer is full.
    void Put(std::string_view text);
    void PutTerminator();

    /// Writes the terminator.
    /// @return number of bytes before it.
    uint32_t Finish();

private:
    void PutBytes(std::string_view character);

    std::span<char> m_buffer;
    const CodePage* m_codePage;
    std::size_t m_unitsLeft;
    std::size_t m_bytes = 0;
    bool m_overflow = false;
};

/// Writes an answer of GetPrivateProfileSectionA, which is cut in bytes, within a character too.
class SectionAnswer
{
public:
    explicit SectionAnswer(std::span<char> buffer) : m_buffer(buffer) {}

    void Put(std::string_view text);
    void PutTerminator() { Put(std::string_view("\0", 1)); }

    /// Writes the end of the list.
    /// @return number of bytes before it, the terminator of the last line included.
    uint32_t Finish();

private:
    std::span<char> m_buffer;
    std::size_t m_bytes = 0; ///< of the whole answer
};
