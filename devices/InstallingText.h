#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "CharacterRule.h"

/// Puts a device's description into the progress text.
/// @param format       The text resource; its first "%s" is replaced and "%%" becomes one per-cent sign. Another
///                     library may bring it, so it is never used as a format: other inserts are kept literally.
/// @param description  What to insert.
/// @param maxBytes     The result's limit in bytes; longer texts are cut after the last whole character that fits.
/// @param rule         Of the code page of both texts.
[[nodiscard]] std::string InstallingText(std::string_view format, std::string_view description, std::size_t maxBytes,
                                         CharacterRule rule);
