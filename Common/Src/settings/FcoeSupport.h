#pragma once

#include <vector>

#include "OrvString.h"

/// Checks values that a user enters for FCoE boot.
class CFcoeSupport
{
public:
    virtual ~CFcoeSupport() = default;

    /// @return true when every logical unit number is in its range (FcoeRules.h); an empty list is valid.
    [[nodiscard]] bool IsLunValid(const std::vector<COrvString>& luns) const;
};
