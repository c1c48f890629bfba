#include "DeviceProblem.h"

#include <algorithm>
#include <array>

namespace {
// Names and values of cfg.h, which needs windows.h.
constexpr uint32_t kNeedsRestartBit = 0x100;
constexpr uint32_t kHasProblemBit = 0x400;

struct ProblemRow
{
    uint32_t problem;
    DeviceVerdict verdict;
};

/// The problems that are no refusal. Every other one leaves the device without a running driver: among them 1 and 28
/// (no driver), 10, 31, 37 and 43 (not started), 39 (not loaded), 48 (blocked) and 52 (signature).
constexpr std::array kProblems = std::to_array<ProblemRow>({
    {14, DeviceVerdict::NeedsRestart}, // NEED_RESTART
    {21, DeviceVerdict::Gone},         // WILL_BE_REMOVED
    {22, DeviceVerdict::Accepted},     // DISABLED: by an administrator, on purpose
    {29, DeviceVerdict::Accepted},     // HARDWARE_DISABLED: in the firmware
    {38, DeviceVerdict::NeedsRestart}, // DRIVER_FAILED_PRIOR_UNLOAD: the old driver is still in memory
    {45, DeviceVerdict::Gone},         // PHANTOM
    {46, DeviceVerdict::NeedsRestart}, // SYSTEM_SHUTDOWN: the system is on its way down
    {47, DeviceVerdict::Gone},         // HELD_FOR_EJECT
    {51, DeviceVerdict::Accepted},     // WAITING_ON_DEPENDENCY: starts when another device has started
    {53, DeviceVerdict::Accepted},     // USED_BY_DEBUGGER
    {54, DeviceVerdict::Accepted},     // DEVICE_RESET: comes back by itself
    {55, DeviceVerdict::Accepted},     // CONSOLE_LOCKED: starts when somebody logs on
    {56, DeviceVerdict::Accepted},     // NEED_CLASS_CONFIG: the network class is still being configured
});
} // namespace

uint32_t ProblemOf(const DeviceState& state) noexcept
{
    return (state.status & kHasProblemBit) != 0 ? state.problem : 0;
}

DeviceVerdict JudgeDevice(const DeviceState& state) noexcept
{
    DeviceVerdict verdict = DeviceVerdict::Accepted;
    if (const uint32_t problem = ProblemOf(state); problem != 0) {
        const auto* const row = std::ranges::find(kProblems, problem, &ProblemRow::problem);
        verdict = row != kProblems.end() ? row->verdict : DeviceVerdict::Refused;
    }
    return verdict == DeviceVerdict::Accepted && (state.status & kNeedsRestartBit) != 0 ? DeviceVerdict::NeedsRestart
                                                                                        : verdict;
}

uint32_t ErrorForProblem(uint32_t problem) noexcept
{
    constexpr uint32_t kProgramsOwnBit = 0x20000000;
    return kProgramsOwnBit | problem;
}
