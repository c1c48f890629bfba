#pragma once

#include <windows.h>

#include <cstdint>

/// While the object lives, the platform picks what this thread loads by number, such as a dialog template, in one
/// language, whatever the language of the user's display is. Afterwards the thread is as it was.
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
