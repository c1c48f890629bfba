#pragma once

#include <string>
#include <string_view>

#include "InstallerFunctions.h"

/// One step of an installation, as the Windows Installer engine hands it to the library. The engine owns the handle.
class InstallerSession
{
public:
    /// Throws std::runtime_error when this process cannot reach the engine.
    explicit InstallerSession(MSIHANDLE handle);

    /// @return the text that the package has laid down for this step; empty when there is none.
    [[nodiscard]] std::string StepData() const;

    /// Writes a line "Morvix: ..." into the installation log.
    void Log(std::string_view line) const;

    /// Reports an error: into the log, and to the user when there is a user interface.
    void ReportError(std::string_view line) const;

    /// Asks the engine for a restart when the installation has ended.
    /// @return ERROR_SUCCESS or the engine's error.
    [[nodiscard]] UINT AskForRestart() const;

private:
    void Send(INSTALLMESSAGE kind, std::string_view line) const;

    InstallerFunctions m_functions;
    MSIHANDLE m_handle;
};
