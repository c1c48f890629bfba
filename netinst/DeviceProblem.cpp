#include "DeviceProblem.h"

#include <algorithm>
#include <array>

namespace {
// Names and values of cfg.h, which needs windows.h.
constexpr uint32_t kNeedsRestartBit = 0x100;
constexpr uint32_t kHasProblemBit = 0x400;

/// What a problem means.
enum class Meaning
{
    NotTheDrivers,    ///< the driver did not cause it
    Gone,             ///< the device is removed or about to be
    CuredByRestart,   ///< the problem itself says that the machine must restart
    OpenUntilRestart, ///< a refusal, unless a restart is pending: files and services may still be the old driver's
};

struct ProblemRow
{
    uint32_t problem;
    Meaning meaning;
};

/// The problems that are not always a refusal. Every other one leaves the device without a running driver, among them 1
/// and 28 (no driver), 43 (stopped after its start), 48 (blocked) and 52 (signature), and 24 (DEVICE_NOT_THERE): the
/// system reports it for a device that is absent, that fails or that lacks drivers, and does not say which.
constexpr std::array kProblems = std::to_array<ProblemRow>({
    {10, Meaning::OpenUntilRestart}, // FAILED_START
    {14, Meaning::CuredByRestart},   // NEED_RESTART
    {21, Meaning::Gone},             // WILL_BE_REMOVED
    {22, Meaning::NotTheDrivers},    // DISABLED: by an administrator, on purpose
    {29, Meaning::NotTheDrivers},    // HARDWARE_DISABLED: in the firmware
    {31, Meaning::OpenUntilRestart}, // FAILED_ADD
    {32, Meaning::NotTheDrivers},    // DISABLED_SERVICE: the driver's service is configured not to start
    {37, Meaning::OpenUntilRestart}, // FAILED_DRIVER_ENTRY
    {38, Meaning::CuredByRestart},   // DRIVER_FAILED_PRIOR_UNLOAD: the old driver is still in memory
    {39, Meaning::OpenUntilRestart}, // DRIVER_FAILED_LOAD
    {45, Meaning::Gone},             // PHANTOM
    {46, Meaning::CuredByRestart},   // SYSTEM_SHUTDOWN: the system is shutting down
    {47, Meaning::Gone},             // HELD_FOR_EJECT
    {51, Meaning::NotTheDrivers},    // WAITING_ON_DEPENDENCY: starts after another device
    {53, Meaning::NotTheDrivers},    // USED_BY_DEBUGGER
    {54, Meaning::NotTheDrivers},    // DEVICE_RESET: recovers by itself
    {55, Meaning::NotTheDrivers},    // CONSOLE_LOCKED: starts when a user logs on
    {56, Meaning::NotTheDrivers},    // NEED_CLASS_CONFIG: the network class is still being configured
});

DriverVerdict JudgeProblem(uint32_t problem, bool restartPending) noexcept
{
    const auto* const row = std::ranges::find(kProblems, problem, &ProblemRow::problem);
    if (row == kProblems.end()) {
        return DriverVerdict::Refused;
    }
    switch (row->meaning) {
        case Meaning::NotTheDrivers:
            return restartPending ? DriverVerdict::NeedsRestart : DriverVerdict::Accepted;
        case Meaning::Gone:
            return DriverVerdict::Gone;
        case Meaning::CuredByRestart:
            return DriverVerdict::NeedsRestart;
        case Meaning::OpenUntilRestart:
            break;
    }
    return restartPending ? DriverVerdict::NeedsRestart : DriverVerdict::Refused;
}
} // namespace

uint32_t ProblemOf(const DeviceState& state) noexcept
{
    return (state.status & kHasProblemBit) != 0 ? state.problem : 0;
}

DriverVerdict JudgeDriver(const DeviceState& state) noexcept
{
    const bool restartPending = state.updateNeedsRestart || (state.status & kNeedsRestartBit) != 0;
    if (const uint32_t problem = ProblemOf(state); problem != 0) {
        return JudgeProblem(problem, restartPending);
    }
    return restartPending ? DriverVerdict::NeedsRestart : DriverVerdict::Accepted;
}

uint32_t ErrorForProblem(uint32_t problem) noexcept
{
    constexpr uint32_t kApplicationBit = 0x20000000;
    return kApplicationBit | problem;
}
