#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KitSearch.h"

/// Search of one directory for the INF file that lists a device.

/// What decides which INF files of a directory count.
struct InfSearchRules
{
    std::string expectedSignature;         ///< of the system family; empty when the family is not known
    std::vector<std::string> sectionNames; ///< model sections, in the order in which they are tried
    std::vector<std::string> excludes;     ///< file names to leave out; none when the user forced a scan of all
};

/// @return the rules of a search. Reads the setup INI.
/// @param excludes  The file names that the setup INI leaves out.
[[nodiscard]] InfSearchRules ReadSearchRules(const KitSearch& search, const std::vector<std::string>& excludes);

/// Searches one directory. The first INF that qualifies and lists the device ends the search; each one that qualifies
/// on the way is handed to the driver store unless one of its name was before.
/// @param key        Hardware ID without the bus prefix.
/// @param directory  With or without a backslash at its end.
/// @param excludes   The file names that the setup INI leaves out.
/// @return full path of the INF; no value when there is none.
[[nodiscard]] std::optional<std::string> FindInf(const KitSearch& search, std::string_view key,
                                                 const std::string& directory,
                                                 const std::vector<std::string>& excludes);

/// The same by rules that were read before, and without the lines of trace around it.
/// @param directoryPath  Directory with a backslash at its end.
[[nodiscard]] std::optional<std::string> FindInfByRules(const KitSearch& search, const std::string& key,
                                                        const std::string& directoryPath, const InfSearchRules& rules);

/// Judges one file of a directory, and hands it to the driver store if it qualifies.
[[nodiscard]] InfVerdict JudgeInf(const KitSearch& search, const std::string& key, const std::string& fileName,
                                  const std::string& directoryPath, const InfSearchRules& rules);

/// Looks at signature and manufacturers of an INF.
/// @return why it is none of ours for this system; no value when it qualifies. Nothing is changed.
[[nodiscard]] std::optional<InfVerdict> WhyNotQualified(const KitSearch& search, const std::string& infPath,
                                                        const std::string& expectedSignature);
