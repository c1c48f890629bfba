#pragma once

/// Flags that the installation run sets and that other rooms read. Start-up clears them before the install thread
/// exists, that thread sets them, and the dialog reads them when it is asked to close. By then the thread has usually
/// set them all; when something else closes the dialog earlier, the dialog uses what is set.
struct RunStateRecord
{
    bool windows98Run = false;           ///< the record's family is "Windows 98"
    bool windowsMeRun = false;           ///< the record's family is "Windows Millenium"
    bool fcoeBootPorts = false;          ///< FCoE boot ports are present
    bool extensionUpdateAllowed = false; ///< a Windows Installer step, or the management extension is new enough
    bool fcoeRestart = false;            ///< FCoE boot ports exist and the run is allowed: a restart must follow
    bool resultAlreadyPosted = false;    ///< PostResultToRegistry has run once in this process
};

inline RunStateRecord RunState;
