#pragma once

#include <string_view>

/// @param message  A text for the platform's FormatMessage.
/// @return true when every insert of the text says that it is a number, as %1!u! does. An insert without a format, or
///         with a text format, is the address of a text: never pass it a number.
[[nodiscard]] bool InsertsAreNumbers(std::string_view message);
