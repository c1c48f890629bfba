#pragma once

#include "SetupApi.h"

/// Owns an INF file opened by the platform's set-up functions.
class Inf
{
public:
    /// Opens an INF in the format that Windows 95 introduced. On failure the last error says why.
    /// @param api  Must outlive the object.
    Inf(const SetupApi& api, const char* path) noexcept
        : m_api(api), m_inf(api.openInfFile(path, nullptr, INF_STYLE_WIN4, nullptr))
    {
    }
    ~Inf()
    {
        if (IsOpen()) {
            m_api.closeInfFile(m_inf);
        }
    }
    Inf(const Inf&) = delete;
    Inf& operator=(const Inf&) = delete;

    [[nodiscard]] bool IsOpen() const noexcept { return m_inf != INVALID_HANDLE_VALUE; }
    [[nodiscard]] HINF Get() const noexcept { return m_inf; }
    [[nodiscard]] const SetupApi& Api() const noexcept { return m_api; }

private:
    const SetupApi& m_api;
    HINF m_inf;
};
