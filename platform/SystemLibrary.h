#pragma once

#include "Handles.h"

/// Loads a library of the system from the system directory by its full path, so that no file of the same name beside
/// the program, in the current directory or in the search path can take its place. The libraries that it needs in turn
/// are looked for in the system directory first as well.
/// @param fileName  File name without a directory, such as "newdev.dll".
/// @return the library, or null with the reason as last error.
[[nodiscard]] UniqueLibrary LoadSystemLibrary(const char* fileName) noexcept;

/// Takes the current directory out of the search for libraries that are loaded by bare name, for this process and the
/// programs that it starts: it may be a folder that somebody else chose.
void TakeCurrentDirectoryOutOfLibrarySearch() noexcept;
