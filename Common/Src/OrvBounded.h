#pragma once

#include <cstddef>

/// Bounded copy and append with the results of the runtime's strcpy_s and strcat_s. The oldest supported runtimes lack
/// those functions, so the library has its own.
inline constexpr int kOrvInvalidArgument = 22;
inline constexpr int kOrvTooSmall = 34;

/// Copies `source` with its terminator.
/// @param destinationBytes  Size of `destination` in bytes; nothing beyond it is changed.
/// @return 0; 22 for a null pointer or a size of 0; 34 when the text does not fit. After a failure the destination, if
///         it has room, holds the empty text.
[[nodiscard]] int OrvBoundedCopy(char* destination, size_t destinationBytes, const char* source) noexcept;

/// Appends `source` to the text in `destination`. Results and failures as for OrvBoundedCopy; a destination without a
/// terminator within its size is an invalid argument too.
[[nodiscard]] int OrvBoundedAppend(char* destination, size_t destinationBytes, const char* source) noexcept;
