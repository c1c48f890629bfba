#pragma once

#include <string>

/// @return the system directory without a trailing backslash; empty when the platform does not tell. Nothing may be
///         looked for, written or started then: a path made from nothing would begin at the root of the current drive.
[[nodiscard]] std::string SystemDirectory();
