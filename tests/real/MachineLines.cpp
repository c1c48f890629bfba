#include "MachineLines.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {
// How a restore point began and ended.
constexpr std::string_view kEnterRestorePoint = "Morvix: Entering BeginRestorePoint";
constexpr std::string_view kLeaveRestorePoint = "Morvix: Exiting BeginRestorePoint";
constexpr std::string_view kDescription = "Morvix: Entering - GetLanguageSpecificString";
constexpr auto kMachineLines = std::to_array<std::string_view>({
    "Morvix: LoadLibrary failed!",
    "Morvix: Failed to find SRSetRestorePointW.",
    "Morvix: Successfully started the system restore point",
    "Morvix: call to restore point function failed!",
    "Morvix: The service does not exist",
    "Morvix: Entering EndRestorePoint",
    "Morvix: Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!",
    "Morvix: Exiting EndRestorePoint",
    "Morvix: Failed to get driver key from PCI device",
    "Morvix: Failed to get NetCfgInstanceID from PCI device",
});
} // namespace

std::vector<std::string> WithoutMachineLines(const std::vector<std::string>& lines)
{
    std::vector<std::string> kept;
    bool inRestorePoint = false;
    for (const std::string& line : lines) {
        if (line == kEnterRestorePoint || line == kLeaveRestorePoint) {
            inRestorePoint = line == kEnterRestorePoint;
        }
        if (std::ranges::find(kMachineLines, line) == kMachineLines.end() &&
            !(inRestorePoint && line == kDescription)) {
            kept.push_back(line);
        }
    }
    return kept;
}
