#pragma once

#include <windows.h>
// setupapi.h needs windows.h first.
#include <setupapi.h>

/// Owns an INF file opened by the platform's set-up functions.
class Inf
{
public:
    /// Opens an INF in the form of 1995 and later. On failure the last error says why.
    explicit Inf(const char* path) noexcept : m_inf(SetupOpenInfFileA(path, nullptr, INF_STYLE_WIN4, nullptr)) {}
    ~Inf()
    {
        if (IsOpen()) {
            SetupCloseInfFile(m_inf);
        }
    }
    Inf(const Inf&) = delete;
    Inf& operator=(const Inf&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return m_inf != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HINF Get() const noexcept { return m_inf; }

private:
    HINF m_inf;
};

/// The reason of a call that failed, for callers that take 0 as success.
[[nodiscard]] inline DWORD FailureReason() noexcept
{
    const DWORD error = GetLastError();
    return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE;
}
