#pragma once

#include <cstdint>

/// What the command line asked for. Each field is 0 or 1.
struct RunOptionsRecord
{
    uint32_t silent = 0;         ///< no visible dialog and no message boxes from the run
    uint32_t forceReboot = 0;    ///< restart at the end without asking
    uint32_t suppressReboot = 0; ///< never restart, never ask
    uint32_t msiMode = 0;        ///< the program runs as a step of a Windows Installer package
    uint32_t oemGui = 0;         ///< the OEM variant of the dialog: it closes by itself
    uint32_t forceInfScan = 0;   ///< INF files that the setup INI excludes are scanned all the same
};

/// The run's options. Written once by start-up, before the install thread exists; read-only afterwards.
extern RunOptionsRecord RunOptions;
