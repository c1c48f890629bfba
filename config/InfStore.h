#pragma once

#include <string>
#include <vector>

/// Handing INF files to the platform's INF store.

struct CopiedInfListRecord
{
    std::vector<std::string> names; ///< file names without directory, in the order of the copies
};

/// The INF files that were handed to the store in this run. Filled on the install thread while INF files are searched,
/// never emptied during a run.
extern CopiedInfListRecord CopiedInfList;

/// Hands an INF to the store, whatever became of earlier tries. A copy that the store has already is not overwritten.
/// @param infPath          Full path of the INF.
/// @param sourceDirectory  Where its driver files lie.
/// @return 1 when the platform's function could be called, whatever it returned; 0 when it could not be loaded.
int SetupCopyInf(const std::string& infPath, const std::string& sourceDirectory);
