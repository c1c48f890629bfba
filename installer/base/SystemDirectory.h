#pragma once

#include <string>

/// @return the system directory without a trailing backslash; empty on failure. Nothing may be searched for, written or
///         started then: a path made from it would begin at the root of the current drive.
[[nodiscard]] std::string SystemDirectory();
