#pragma once

#include <string>

#include "KitSearch.h"

/// Hands an INF to the driver store unless one of the same file name was handed over before, and remembers it in the
/// search's storedInfs, also when the store refuses it.
/// @param fileName         The INF's file name; its extension counts as ".inf".
/// @param infPath          Full path of the INF.
/// @param sourceDirectory  Where its driver files lie.
void StoreInfOnce(const KitSearch& search, const std::string& fileName, const std::string& infPath,
                  const std::string& sourceDirectory);
