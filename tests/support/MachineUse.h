#pragma once

/// What a test program does to the machine that it runs on.
enum class MachineUse
{
    Harmless, ///< leaves no trace: for any machine
    Changes,  ///< for a machine that is thrown away, or put back to a snapshot, afterwards
    NeedsWine ///< would harm any real machine, thrown away or not, or cannot do without what only Wine offers
};

/// Whether a program may run.
/// @param isDisposable  The user has said that the machine is thrown away afterwards.
[[nodiscard]] constexpr bool MayRun(MachineUse use, bool inWine, bool isDisposable)
{
    return inWine || use == MachineUse::Harmless || (use == MachineUse::Changes && isDisposable);
}

[[nodiscard]] bool RunsInWine();
