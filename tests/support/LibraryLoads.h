#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ImportOverride.h"

/// What this program's own calls load and free again, for the life of the object, on a system whose libraries all lack
/// one entry point. One object at a time.
class LibraryLoads
{
public:
    /// @param missingEntry  The entry point that no library has.
    explicit LibraryLoads(std::string missingEntry);
    ~LibraryLoads();
    LibraryLoads(const LibraryLoads&) = delete;
    LibraryLoads& operator=(const LibraryLoads&) = delete;

    /// @return the libraries that were loaded, named as they were asked for.
    [[nodiscard]] static const std::vector<std::string>& Loaded();
    /// @return those of them that have not been freed again.
    [[nodiscard]] static std::vector<std::string> StillLoaded();

private:
    ImportOverride m_load;
    ImportOverride m_loadWide;
    ImportOverride m_find;
    ImportOverride m_free;
};
