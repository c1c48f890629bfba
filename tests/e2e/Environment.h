#pragma once

#include <string>
#include <vector>

/// Where the end-to-end tests find what they run. All paths are Windows paths without a trailing backslash; each throws
/// std::runtime_error when the place is not known.

/// The shippable folder, from MORVIX_DIST.
[[nodiscard]] std::string DistFolder();
/// The built doubles, from MORVIX_DOUBLES.
[[nodiscard]] std::string DoublesFolder();
/// The expected traces, beside this program.
[[nodiscard]] std::string TracesFolder();

/// The key of a run's results, below HKEY_LOCAL_MACHINE.
inline constexpr char kResultsKey[] = R"(SOFTWARE\Norda\Basedrivers)";

[[nodiscard]] std::string SystemDirectory();
[[nodiscard]] std::string WindowsDirectory();
/// The full path of a driver file in the system's driver directory.
[[nodiscard]] std::string DriverPath(const std::string& fileName);

/// @return the names (not paths) of the files that `pattern` finds, in the order of the directory search.
[[nodiscard]] std::vector<std::string> FilesMatching(const std::string& pattern);

/// @return `text` with A to Z for a to z.
[[nodiscard]] std::string UpperCase(std::string text);

/// @return the file's version as "a.b.c.d", or "<none>" when it has no version resource.
[[nodiscard]] std::string FileVersionOf(const std::string& path);

/// @return string `id` of the shippable folder's MorvixRes.dll in US English, or in the language given. Throws when it
///         is missing or empty.
[[nodiscard]] std::string ResourceText(unsigned id, unsigned short language = 0x0409);
