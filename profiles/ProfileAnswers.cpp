#include "ProfileAnswers.h"

#include <algorithm>

namespace {
/// What the platform makes of half a character that takes two units in UTF-8.
constexpr std::string_view kHalfCharacter = "\xEF\xBF\xBD";
} // namespace

void StringAnswer::PutBytes(std::string_view character)
{
    // The last byte of the buffer is for the terminator.
    if (m_overflow || m_bytes + character.size() >= m_buffer.size()) {
        m_overflow = true;
        return;
    }
    std::ranges::copy(character, m_buffer.begin() + static_cast<std::ptrdiff_t>(m_bytes));
    m_bytes += character.size();
}

void StringAnswer::Put(std::string_view text)
{
    if (m_codePage->IsSingleByte()) {
        const std::string_view fitting = text.substr(0, m_unitsLeft);
        m_unitsLeft -= fitting.size();
        PutBytes(fitting);
        return;
    }
    while (!text.empty() && m_unitsLeft > 0) {
        const CodePage::Size size = m_codePage->CharacterSize(text);
        PutBytes(size.units <= m_unitsLeft ? text.substr(0, size.bytes) : kHalfCharacter);
        m_unitsLeft -= std::min(size.units, m_unitsLeft);
        text.remove_prefix(size.bytes);
    }
}

void StringAnswer::PutTerminator()
{
    if (m_unitsLeft > 0) {
        --m_unitsLeft;
        PutBytes(std::string_view("\0", 1));
    }
}

uint32_t StringAnswer::Finish()
{
    if (m_buffer.empty()) {
        return 0;
    }
    const std::size_t count = m_overflow ? m_buffer.size() - 1 : m_bytes;
    m_buffer[count] = '\0';
    return static_cast<uint32_t>(count);
}

void SectionAnswer::Put(std::string_view text)
{
    if (m_bytes < m_buffer.size()) {
        std::ranges::copy(text.substr(0, m_buffer.size() - m_bytes),
                          m_buffer.begin() + static_cast<std::ptrdiff_t>(m_bytes));
    }
    m_bytes += text.size();
}

uint32_t SectionAnswer::Finish()
{
    if (m_buffer.size() < 2) {
        std::ranges::fill(m_buffer, '\0');
        return 0;
    }
    const std::size_t most = m_buffer.size() - 2;
    if (m_bytes == 0 || m_bytes > most) {
        const std::size_t count = std::min(m_bytes, most);
        m_buffer[count] = m_buffer[count + 1] = '\0';
        return static_cast<uint32_t>(count);
    }
    m_buffer[m_bytes] = '\0';
    return static_cast<uint32_t>(m_bytes);
}
