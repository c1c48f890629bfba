#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "CheckKit.h"
#include "KitOnDisk.h"

/// Small kits as text, and what is found in them.

using KitFiles = std::map<std::string, std::string>;

/// A kit in which nothing is found: one system, one directory, one adapter.
[[nodiscard]] KitFiles PerfectKit();
inline constexpr char kPerfectInf[] = "Drv/ngea.inf";

/// The perfect kit with files of other content, further files, and without those that are empty here.
[[nodiscard]] KitFiles KitWith(const KitFiles& changes);

/// @return `text` with one place changed, which must be there.
[[nodiscard]] std::string Changed(std::string text, std::string_view from, std::string_view to);

/// Morvix.ini with these lines in the section Win832E; the first one is in line 2.
[[nodiscard]] std::string Ini(const std::string& lines);

/// The perfect kit's INF file with other lines in its model section; the first one is in line 9.
[[nodiscard]] std::string InfWithModels(const std::string& lines);

/// A line of a model section.
[[nodiscard]] std::string Model(const std::string& rest);

enum class Readers
{
    Windows,
    Wine,
    Both
};

/// @return each finding as "MK102 Morvix.ini:4:1".
[[nodiscard]] std::vector<std::string> FoundIn(const KitFiles& files, const std::vector<std::string>& systems,
                                               Readers readers = Readers::Both);
[[nodiscard]] KitFindings FindingsIn(const TestFolder& folder, const std::vector<std::string>& systems,
                                     Readers readers = Readers::Both);
void WriteKit(const TestFolder& folder, const KitFiles& files);

/// A kit and what is expected in it.
struct KitRow
{
    std::string name;
    KitFiles changes; ///< to the perfect kit
    std::vector<std::string> expected;
    std::vector<std::string> systems{"Win832E"};
};

/// Compares each row, and says which one differs.
void ExpectRows(const std::vector<KitRow>& rows);
