#pragma once

#include <string>

/// What the program finds around it. Paths have no trailing backslash.

/// Finds the bundle and makes its shippable folder known to the tests (DistFolder of Environment.h).
void UseBundle();

/// @return the full path of a package: "morvix-old.msi", "morvix-new.msi".
[[nodiscard]] std::string PackagePath(const std::string& name);

/// @return the full path of a log or picture that is left for the report. An older one of that name is removed.
[[nodiscard]] std::string ResultFile(const std::string& name);

/// @return what a row says that this machine cannot do.
/// @param reason  Also says what would make it possible.
[[nodiscard]] inline std::string NotHere(const std::string& reason)
{
    return "not here: " + reason;
}
