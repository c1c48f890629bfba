#pragma once

#include <string>
#include <string_view>

/// Makes a text from an input fit for one line of a message: control characters and bytes that are not UTF-8 become
/// escapes such as "\x1B", so that nothing in an input can steer a terminal, and a long text is cut.
[[nodiscard]] std::string Printable(std::string_view text);
[[nodiscard]] std::string Printable(std::u16string_view text);
