#pragma once

#include <windows.h>

#include <cstdint>

/// While the object lives, resources that this thread loads by number, such as a dialog template, come in one language,
/// regardless of the user's display language. The destructor restores the thread's setting.
class ThreadLanguage
{
public:
    /// @param language  Windows language identifier.
    explicit ThreadLanguage(uint16_t language);
    ~ThreadLanguage();
    ThreadLanguage(const ThreadLanguage&) = delete;
    ThreadLanguage& operator=(const ThreadLanguage&) = delete;

private:
    const LCID m_localeBefore = GetThreadLocale();
};
