#pragma once

#include <string>

/// How a run treats an INF file.
enum class Verdict
{
    Refused, ///< another signature, or none: traced and skipped
    NotOurs, ///< another maker, or none: skipped silently
    Stored,  ///< handed to the platform's INF store, but the device is not found in it
    Serves,  ///< the device is found
};

/// How the platform reads a file. Platforms differ in their treatment of line ends, NULs and marks; the program uses
/// what it gets.
[[nodiscard]] Verdict VerdictByThePlatform(const std::string& path, const std::string& deviceId);
