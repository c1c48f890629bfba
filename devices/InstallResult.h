#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "LeadByte.h"
#include "OSCode.h"
#include "SearchLog.h"

/// What an install is reported as: the INF's name gives the driver family, the family the driver file that must be
/// there and the name of the registry value that says so.

/// What is expected of an install.
struct ExpectedResult
{
    std::string valueName;   ///< of the registry value that receives the result
    std::string filePattern; ///< of the driver file, to be appended to the driver directory's path as it is
};

/// Why an install counts as it does.
enum class ResultVerdict
{
    DriverFilePresent, ///< a success
    DriverFileMissing, ///< a failure
    DriverRefused,     ///< a failure, whatever is in the driver directory
};

/// @param infPath  The INF's full path in upper case.
/// @param system   The 6.1 systems have driver files of their own in some families.
/// @return no value for an INF that belongs to no family: it is not reported.
[[nodiscard]] std::optional<ExpectedResult> ExpectedResultOf(std::string_view infPath, OSCode system,
                                                             LeadByteTest isLeadByte);

/// The same, and says what it works on. The caller's path is in upper case afterwards, by design.
[[nodiscard]] std::optional<ExpectedResult> ClassifyInf(std::span<char> infPath, OSCode system, LeadByteTest isLeadByte,
                                                        SearchLog& log);

/// @param driverFileIsThere  A file of the expected pattern is in the driver directory.
/// @param refused            The last install was refused with the status that a run remembers.
[[nodiscard]] constexpr ResultVerdict VerdictOnInstall(bool driverFileIsThere, bool refused)
{
    if (refused) {
        return ResultVerdict::DriverRefused;
    }
    return driverFileIsThere ? ResultVerdict::DriverFilePresent : ResultVerdict::DriverFileMissing;
}
