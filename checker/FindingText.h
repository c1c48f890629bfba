#pragma once

#include <string>
#include <string_view>

#include "CheckKit.h"
#include "TextStyle.h"

/// Findings and rules for people.

/// @return the findings, file by file.
[[nodiscard]] std::string FindingText(const KitFindings& found, const TextStyle& style);

/// @return one line: how many findings of each kind, and how many were accepted before.
[[nodiscard]] std::string FindingSummary(const KitFindings& found, std::size_t accepted);

/// @return one rule with its examples.
[[nodiscard]] std::string RuleText(const Rule& rule, const TextStyle& style);
/// @return all rules, one line each.
[[nodiscard]] std::string RuleList(const TextStyle& style);
/// @return all rules with their examples, as a document in Markdown.
[[nodiscard]] std::string RulesDocument();
