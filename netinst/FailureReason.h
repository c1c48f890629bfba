#pragma once

#include <windows.h>

/// @return why the platform's last call failed; never 0, which callers take for success.
[[nodiscard]] inline DWORD FailureReason() noexcept
{
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE;
}
