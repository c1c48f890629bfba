#pragma once

#include <string_view>

/// @return what takes the place of the platform's function `name`: it calls that function and notes what it handed out,
///         took back or showed. Null for a function that needs no such watch.
[[nodiscard]] const void* TrackedCallFor(std::string_view name);

/// Notes that a call that was made to fail would have given something back: it counts as given back.
void GiveBackInVain(std::string_view name, const void* handle);
