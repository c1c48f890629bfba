#pragma once

#include <string>
#include <string_view>

#include "ChildProcess.h"
#include "InstallerFunctions.h"

/// One step of a Windows Installer installation. The engine owns the handle.
class InstallerSession
{
public:
    /// @param functions  The engine's functions.
    /// Throws std::runtime_error when this process cannot reach the engine.
    explicit InstallerSession(MSIHANDLE handle, InstallerFunctions functions = {});

    /// @return the text that the package passes to this deferred step; empty when there is none.
    [[nodiscard]] std::string StepData() const;

    /// Sets a property of the installation. Only steps that run while the script is written can.
    void SetProperty(const char* name, const std::string& text) const;

    /// Lengthens the progress bar by the ticks of one wait, also while the script is written.
    void AnnounceWait() const;

    /// Runs a program as RunAndWait does, moves the progress bar meanwhile, and ends waiting when the user cancels.
    [[nodiscard]] ProgramEnd RunAndReport(const ProgramStart& start, std::uint32_t limitSeconds) const;

    /// Writes a line "Morvix: ..." into the installation log.
    void Log(std::string_view line) const;

    /// Reports an error: into the log, and to the user when there is a user interface.
    void ReportError(std::string_view line) const;

    /// Asks the engine for a restart when the installation has ended.
    /// @return ERROR_SUCCESS or the engine's error.
    [[nodiscard]] UINT AskForRestart() const;

private:
    int Send(INSTALLMESSAGE kind, const char* format, std::string_view text) const;
    int SendProgress(int kind, std::uint32_t ticks) const;

    InstallerFunctions m_functions;
    MSIHANDLE m_handle;
};
