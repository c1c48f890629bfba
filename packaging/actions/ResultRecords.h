#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What the program has written to its result key.
struct ResultRecords
{
    /// "SUCCESS" or "FAILURE"; empty when the run recorded nothing, as without a matching adapter.
    std::string install;
    /// The driver version written last; empty when there is none.
    std::string version;
    /// The families that failed, such as "TAVG_PCIE".
    std::vector<std::string> failedFamilies;
    /// "RebootNeeded" of the program.
    bool restartNeeded = false;
    /// The installer library has recorded that a binding takes effect only after a restart.
    bool libraryNeedsRestart = false;
};

/// Whether a value under the result key records a failure, of the run or of one family.
[[nodiscard]] bool IsFailureRecord(std::string_view valueName, std::string_view text);

/// @return the family of a value, such as "TAVG_PCIE" for "TAVG_PCIE_Install"; empty for any other value.
[[nodiscard]] std::string FamilyOfRecord(std::string_view valueName);
