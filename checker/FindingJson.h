#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "CheckKit.h"

/// Findings for programs.

/// @param reader  "windows", "wine" or "both".
/// @return a document of schema "morvix-check/1" (docs/schemas/morvix-check-1.json): keys are only ever added.
[[nodiscard]] std::string FindingJson(const KitFindings& found, const KitFolder& kit, std::string_view reader,
                                      std::size_t accepted);

/// More results than that no service takes.
inline constexpr std::size_t kMostSarifResults = 25000;

/// @param version  Of this program.
/// @param root     Folder that paths are relative to, such as a repository's; files outside of it are named below the
///                 kit.
/// @param most     Of results.
/// @return the findings as SARIF 2.1.0; when there are more than the most, the worst of them.
[[nodiscard]] std::string FindingSarif(const KitFindings& found, std::string_view version,
                                       const std::filesystem::path& root, std::size_t most = kMostSarifResults);
