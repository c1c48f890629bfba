#include "ActivityBar.h"

// Needs windows.h first.
#include <commctrl.h>

#include "DialogControls.h"

void RegisterActivityBar()
{
    constexpr INITCOMMONCONTROLSEX kClasses{sizeof(INITCOMMONCONTROLSEX), ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&kClasses);
}

void ShowActivity(HWND dialog)
{
    const HWND bar = GetDlgItem(dialog, kActivityBar);
    SendMessageA(bar, PBM_SETMARQUEE, TRUE, kActivityPeriodMilliseconds);
    ShowWindow(bar, SW_SHOW);
}

void HideActivity(HWND dialog)
{
    ShowWindowAsync(GetDlgItem(dialog, kActivityBar), SW_HIDE);
}
