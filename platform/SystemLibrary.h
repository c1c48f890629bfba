#pragma once

#include "Handles.h"

/// Loads a library of the system from the system directory by its full path, so that no file of the same name beside
/// the program, in the current directory or in the search path can take its place. The libraries that it depends on are
/// searched for in the system directory first as well.
/// @param fileName  File name without a directory, such as "newdev.dll".
/// @return the library, or null with the reason as last error.
[[nodiscard]] UniqueLibrary LoadSystemLibrary(const char* fileName) noexcept;

/// Loads a library of the system of which the program's manifest may select a version. The selected version lies in the
/// side-by-side folder and is found by the bare name only, before any folder is searched; its full path in the system
/// directory is an older version. Where the manifest selects none, the same as LoadSystemLibrary.
/// @param fileName  File name without a directory, such as "comctl32.dll".
/// @return the library, or null with the reason as last error.
[[nodiscard]] UniqueLibrary LoadSideBySideLibrary(const char* fileName) noexcept;

/// Removes the current directory from the search for libraries that are loaded by bare name: it may be a folder that
/// somebody else chose. Child processes inherit this. The legacy route is affected too: Rundll.exe then looks for the
/// helper library in its own folder, the system's folders and the search path, not in the program's folder, although
/// that is the current one.
void TakeCurrentDirectoryOutOfLibrarySearch() noexcept;
