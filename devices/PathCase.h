#pragma once

#include <span>

/// Turns a path into upper case, in place, up to its terminator or the buffer's end, so that it names the same file:
/// only a to z change, and the second bytes of two-byte characters of the system's code page stay.
void MakePathUpperCase(std::span<char> path);
