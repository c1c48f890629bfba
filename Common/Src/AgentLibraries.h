#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "LeadByte.h"

/// Where one of the maker's libraries is. The program that needs them passes a table of these.
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

/// @return the first row with that short name, ignoring the case of A to Z; null when there is none.
[[nodiscard]] const AgentLibrary* FindAgentLibrary(std::span<const AgentLibrary> libraries,
                                                   std::string_view shortName) noexcept;

/// @return the library's full path, with ".DLL"; no value unless `directory` is a full path (a drive or a share), since
///         any other would be searched for in directories that anybody may write to.
[[nodiscard]] std::optional<std::string> AgentLibraryPath(std::string_view directory, std::string_view fileName,
                                                          LeadByteTest isLeadByte);
