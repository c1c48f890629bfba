#include "CloseRequest.h"

void AskToClose(HWND dialog)
{
    if (dialog != nullptr && PostMessageA(dialog, WM_CLOSE, 0, 0) == FALSE) {
        SendNotifyMessageA(dialog, WM_CLOSE, 0, 0);
    }
}
