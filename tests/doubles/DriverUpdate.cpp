// Stands in for newdev.dll. Answers (section Answers of newdev.answers.ini, all optional):
//   Fail=1      the update is refused
//   Error       last error of a refused update, 0 when not given
//   Restart=1   the update requests a restart

#include <windows.h>
// newdev.h needs windows.h first.
#include <newdev.h>

#include <string>

#include "Journal.h"

extern "C" __declspec(dllexport) BOOL WINAPI
    UpdateDriverForPlugAndPlayDevicesA(HWND parent, LPCSTR hardwareId, LPCSTR infPath, DWORD flags, PBOOL restart)
{
    WriteJournal("UpdateDriverForPlugAndPlayDevicesA parent=" + std::string(parent == nullptr ? "none" : "given") +
                 " id=[" + hardwareId + "] inf=[" + infPath + "] flags=" + std::to_string(flags) +
                 " restart=" + (restart == nullptr ? "none" : std::to_string(*restart)));
    if (AnswerNumber("Restart") != 0) {
        *restart = TRUE;
    }
    const bool refused = AnswerNumber("Fail") != 0;
    SetLastError(refused ? AnswerNumber("Error") : ERROR_SUCCESS);
    return refused ? FALSE : TRUE;
}
