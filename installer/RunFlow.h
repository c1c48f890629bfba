#pragma once

#include <string_view>

#include "RunOptions.h"

/// How an installation run goes, by the system's family.
enum class RunFlow
{
    WindowsNT, ///< Windows 2000 and later
    WindowsMe, ///< device pass, staging and classification
    Windows98, ///< the same, and a restart whatever was found
    Unknown,   ///< a family without a flow: nothing is installed
};

/// @param osFamily  Family name of the record; compared as a whole, ignoring letter case.
[[nodiscard]] RunFlow FlowForFamily(std::string_view osFamily);

/// @return true when the run needs nobody at the dialog: silent, or a Windows Installer step other than the OEM
///         variant.
[[nodiscard]] bool IsUnattended(const RunOptionsRecord& options);
