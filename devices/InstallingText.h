#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "LeadByte.h"

/// Puts a device's description into the progress text.
/// @param format       The text resource; its first "%s" is replaced and "%%" stands for one per-cent sign. It may come
///                     from elsewhere, so it is never used as a format: every other insert stays as it is written.
/// @param description  What to insert.
/// @param maxBytes     The result's limit in bytes; longer texts are cut after the last whole character that fits.
[[nodiscard]] std::string InstallingText(std::string_view format, std::string_view description, std::size_t maxBytes,
                                         LeadByteTest isLeadByte);
