#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "DescribeMachine.h"

/// What the first bytes of a hive say.
struct HiveHeader
{
    std::string damage; ///< why the hive cannot be read; empty when its outer form is whole
    bool isDirty = false;
};

/// The first four bytes of every hive.
inline constexpr std::string_view kHiveMagic = "regf";
inline constexpr std::size_t kHiveHeaderBytes = 4096;

/// Checks a hive's header.
/// @param header     The first kHiveHeaderBytes bytes of the file, or as many as it has.
/// @param fileBytes  Length of the file.
[[nodiscard]] HiveHeader CheckHiveHeader(std::string_view header, uint64_t fileBytes);

/// Checks that the blocks after the header follow each other without a gap.
/// @param hive  The whole file, with a header that is whole.
/// @return why the hive cannot be read; empty when it can.
[[nodiscard]] std::string CheckHiveBlocks(std::string_view hive);
