#pragma once

#include <string>

/// Makes every single call of every scenario fail, and every single request for memory, and prints what does not end by
/// itself, leaves something half-written or open.
/// @param scenario  The only one, or an empty text for all.
/// @return 0 when nothing was printed.
int EveryCall(const std::string& scenario);

/// Prints what a run without a fault does and which calls it makes.
int Show(const std::string& scenario);
