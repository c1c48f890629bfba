#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "LeadByte.h"

/// Where one of the maker's libraries is found. The table of them comes from the program that needs them.
struct AgentLibrary
{
    std::string_view shortName;
    /// Without ".DLL".
    std::string_view fileName;
    /// Registry key below HKEY_LOCAL_MACHINE.
    std::string_view key;
    /// The value of that key that holds the directory: "InstalledDir", "InstallDir" or "ResourcePath".
    std::string_view value;
};

/// @return the first row of that short name, compared without regard to the letter case of A to Z; null without one.
[[nodiscard]] const AgentLibrary* FindAgentLibrary(std::span<const AgentLibrary> libraries,
                                                   std::string_view shortName) noexcept;

/// @return the library's full path, with ".DLL"; no value unless `directory` is a full path (a drive or a share), since
///         anything else would be looked for where anybody may put a file.
[[nodiscard]] std::optional<std::string> AgentLibraryPath(std::string_view directory, std::string_view fileName,
                                                          LeadByteTest isLeadByte);
