#pragma once

#include <string>

/// How a run treats an INF file.
enum class Verdict
{
    Refused, ///< another signature, or none: said, and passed over
    NotOurs, ///< another maker, or none: passed over without a word
    Stored,  ///< handed to the platform's INF store, but the device is not found in it
    Serves,  ///< the device is found
};

/// What the platform's own reading of a file comes to. Platforms differ in how they take line ends, NULs and marks
/// apart; the program goes by what it is told.
[[nodiscard]] Verdict VerdictByThePlatform(const std::string& path, const std::string& deviceId);
