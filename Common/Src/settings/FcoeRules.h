#pragma once

/// @param lun  Text of a logical unit number. It is read like atoi: leading blanks are skipped, what follows the digits
///             is ignored, and text without a number is 0.
/// @return true for 0 to 4095; a negative number counts as a very large one.
[[nodiscard]] bool IsFcoeLunInRange(const char* lun);
