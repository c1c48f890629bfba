#include "RunFlow.h"

#include <array>

#include "DriverInstallRecord.h"
#include "EqualsIgnoringCase.h"

namespace {
struct FlowRow
{
    std::string_view family;
    RunFlow flow;
};

constexpr std::array kFlows = std::to_array<FlowRow>({
    {kFamilyWindows2000, RunFlow::WindowsNT},
    {kFamilyWindowsWhistler, RunFlow::WindowsNT},
    {kFamilyWindowsVista, RunFlow::WindowsNT},
    {kFamilyWindowsMe, RunFlow::WindowsMe},
    {kFamilyWindows98, RunFlow::Windows98},
});
} // namespace

RunFlow FlowForFamily(std::string_view osFamily)
{
    for (const FlowRow& row : kFlows) {
        if (EqualsIgnoringCase(osFamily, row.family)) {
            return row.flow;
        }
    }
    return RunFlow::Unknown;
}

bool IsUnattended(const RunOptionsRecord& options)
{
    return options.silent || (options.msiMode && !options.oemGui);
}
