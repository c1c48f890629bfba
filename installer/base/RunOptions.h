#pragma once

/// What the command line asked for.
struct RunOptionsRecord
{
    bool silent = false;         ///< no visible dialog and no message boxes from the run
    bool forceReboot = false;    ///< restart at the end without asking
    bool suppressReboot = false; ///< never restart, never ask
    bool msiMode = false;        ///< the program runs as a step of a Windows Installer package
    bool oemGui = false;         ///< the OEM variant of the dialog: it closes by itself
    bool forceInfScan = false;   ///< INF files that the setup INI excludes are still scanned
};

/// The run's options. Written once by start-up, before the install thread exists; read-only afterwards.
inline RunOptionsRecord RunOptions;
