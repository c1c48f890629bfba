#include "ErrorMode.h"

#include <windows.h>

namespace {
// What this file has added to the process's initial mode.
UINT added = 0;

/// @return the mode before.
UINT Change(UINT remove, UINT add) noexcept
{
    // Before Vista the mode cannot be read without setting it.
    const UINT before = SetErrorMode(SEM_FAILCRITICALERRORS);
    SetErrorMode((before & ~remove) | add);
    return before;
}
} // namespace

void ReportCriticalErrorsToTheProgram() noexcept
{
    added = SEM_FAILCRITICALERRORS & ~Change(0, SEM_FAILCRITICALERRORS);
}

StartErrorMode::StartErrorMode() noexcept : m_before(Change(added, 0)) {}

StartErrorMode::~StartErrorMode()
{
    // The caller reads the last error of the start.
    const DWORD error = GetLastError();
    SetErrorMode(m_before);
    SetLastError(error);
}
