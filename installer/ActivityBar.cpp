#include "ActivityBar.h"

// Needs windows.h first.
#include <commctrl.h>

#include "DialogControls.h"
#include "EntryPoints.h"
#include "SystemLibrary.h"

void RegisterActivityBar()
{
    constexpr INITCOMMONCONTROLSEX kClasses{sizeof(INITCOMMONCONTROLSEX), ICC_PROGRESS_CLASS};
    UniqueLibrary library = LoadSideBySideLibrary("comctl32.dll");
    const auto initialize = library ? FindEntry<InitCommonControlsFn>(library.get(), "InitCommonControlsEx") : nullptr;
    if (initialize != nullptr) {
        initialize(&kClasses);
        // Stays loaded: the window classes are in it.
        static_cast<void>(library.release());
    }
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
