#include "FileAnswers.h"

#include <algorithm>

namespace {
std::string_view WithoutTrailingNuls(std::span<const char> buffer)
{
    const std::string_view text(buffer.data(), buffer.size());
    return text.substr(0, text.find_last_not_of('\0') + 1);
}
} // namespace

ProfileAnswer::ProfileAnswer(uint32_t count, std::span<const char> buffer)
    : m_count(count), m_text(WithoutTrailingNuls(buffer))
{
}

uint32_t ProfileAnswer::CopyTo(std::span<char> buffer) const
{
    const auto kept = std::min(m_text.size(), buffer.size());
    std::ranges::fill(std::ranges::copy(m_text.substr(0, kept), buffer.begin()).out, buffer.end(), '\0');
    return m_count;
}
