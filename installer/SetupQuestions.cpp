#include "SetupQuestions.h"

#include "EntryPoints.h"
#include "SystemLibrary.h"

void RefuseSetupQuestions()
{
    UniqueLibrary library = LoadSystemLibrary("setupapi.dll");
    const auto setMode =
        library ? FindEntry<SetupSetNonInteractiveModeFn>(library.get(), "SetupSetNonInteractiveMode") : nullptr;
    if (setMode != nullptr) {
        setMode(TRUE);
        // Stays loaded: unloading it would reset the mode.
        static_cast<void>(library.release());
    }
}
