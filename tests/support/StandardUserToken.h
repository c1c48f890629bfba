#pragma once

#include <windows.h>

#include "Handles.h"

/// A token for this process's user without the administrators' group and without privileges, as a standard user has it.
/// @return none on failure; GetLastError says why.
[[nodiscard]] UniqueHandle StandardUserToken();
