#include "Tokens.h"

#include <algorithm>

std::optional<std::string_view> TokenCursor::Next(std::string_view delimiters)
{
    // The few delimiters are compared in place: the library's search would call a function for each character.
    const auto isDelimiter = [delimiters](char c) {
        return std::ranges::any_of(delimiters, [c](char delimiter) { return c == delimiter; });
    };
    const auto* const begin = std::find_if_not(m_text.begin(), m_text.end(), isDelimiter);
    if (begin == m_text.end()) {
        m_text = {};
        return std::nullopt;
    }
    const auto* const end = std::find_if(begin, m_text.end(), isDelimiter);
    const auto start = static_cast<std::size_t>(begin - m_text.begin());
    const std::string_view token = m_text.substr(start, static_cast<std::size_t>(end - begin));
    m_text.remove_prefix(std::min(start + token.size() + 1, m_text.size()));
    return token;
}
