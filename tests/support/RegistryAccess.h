#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ImportOverride.h"

/// What access this program's own calls ask for when they open or create keys under HKEY_LOCAL_MACHINE, for the life of
/// the object. The calls go through. One object at a time.
class RegistryAccess
{
public:
    RegistryAccess();

    /// @param key  Path as the calls have it, letter case included.
    /// @return the access asked for that key, one entry for each call, in order.
    [[nodiscard]] static std::vector<REGSAM> AskedFor(const std::string& key);

private:
    ImportOverride m_opens;
    ImportOverride m_creates;
};
