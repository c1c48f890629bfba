#include "Tokens.h"

std::optional<std::string_view> TokenCursor::Next(std::string_view delimiters)
{
    const auto begin = m_text.find_first_not_of(delimiters, m_position);
    if (begin == std::string_view::npos) {
        m_position = m_text.size();
        return std::nullopt;
    }
    const auto end = m_text.find_first_of(delimiters, begin);
    m_position = end == std::string_view::npos ? m_text.size() : end + 1;
    return m_text.substr(begin, end == std::string_view::npos ? end : end - begin);
}
