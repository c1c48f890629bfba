#pragma once

#include <cstdint>

/// Words that the installation run sets and that other rooms read. Start-up clears them before the install thread
/// exists, that thread sets them, and the dialog reads them when it is told to close. As a rule the thread has set them
/// all by then; when something else closes the dialog under it, the dialog decides by what is there so far.
struct RunStateRecord
{
    uint32_t windows98Run = 0;           ///< the record's family is "Windows 98"
    uint32_t windowsMeRun = 0;           ///< the record's family is "Windows Millenium"
    uint32_t fcoeBootPorts = 0;          ///< FCoE boot ports are present
    uint32_t extensionUpdateAllowed = 0; ///< a Windows Installer step, or the management extension is new enough
    uint32_t fcoeRestart = 0;            ///< FCoE boot ports exist and the run is allowed: a restart must follow
    uint32_t resultAlreadyPosted = 0;    ///< PostResultToRegistry has run once in this process
};

extern RunStateRecord RunState;
