#pragma once

/// @param lun  Text of a logical unit number. It is read as the runtime's text-to-integer reads it: blanks in front are
///             skipped, what follows the digits is ignored, and text without a number is 0.
/// @return true for 0 to 4095; a negative number is a very large one.
[[nodiscard]] bool IsFcoeLunInRange(const char* lun);
