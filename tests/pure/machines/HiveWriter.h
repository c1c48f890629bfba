#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

/// A key to write into a hive, with values by name: type and raw bytes.
struct HiveKey
{
    std::map<std::string, HiveKey> keys;
    std::map<std::string, std::pair<uint32_t, std::string>> values;
    uint32_t timesListed = 1; ///< in the key above it; more than once in a damaged hive only

    /// @param path  Names with backslashes between them.
    HiveKey& At(const std::string& path);
    HiveKey& Text(const std::string& name, const std::string& text);
    HiveKey& List(const std::string& name, const std::string& entriesWithNuls);
    HiveKey& Number(const std::string& name, uint32_t number);
};

/// @return the bytes of a hive file with that root key, as a system that was shut down leaves it.
[[nodiscard]] std::string WriteHive(const HiveKey& root);

/// Puts the right checksum into the header.
void FixHiveChecksum(std::string& hive);

/// @return the text in UTF-16, low byte first; for ASCII.
[[nodiscard]] std::string Wide(const std::string& text);
