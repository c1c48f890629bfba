#pragma once

#include <optional>
#include <string_view>

/// Cuts a text into tokens, each time with delimiters of the caller's choice. Delimiters in front of a token are
/// skipped, so no token is ever empty; the one delimiter after a token is consumed with it.
class TokenCursor
{
public:
    /// @param text  Must outlive the cursor and its tokens.
    explicit TokenCursor(std::string_view text) : m_text(text) {}

    /// @return the next token, or no value when only delimiters are left. Then the rest is consumed.
    [[nodiscard]] std::optional<std::string_view> Next(std::string_view delimiters);

private:
    std::string_view m_text; ///< what is left
};
