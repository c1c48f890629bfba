#pragma once

/// Makes the system report critical errors, such as a damaged library or a drive without a disk, to the program and not
/// in a box: nobody may be there to close it. Applies to the rest of the process.
void ReportCriticalErrorsToTheProgram() noexcept;

/// The error mode that this process started with, for the life of the object. A process inherits its parent's mode, and
/// the only creation flag for it gives the system's default; so the mode is restored around each start of a program. It
/// belongs to the whole process: keep the object's lifetime short.
class StartErrorMode
{
public:
    StartErrorMode() noexcept;
    ~StartErrorMode();
    StartErrorMode(const StartErrorMode&) = delete;
    StartErrorMode& operator=(const StartErrorMode&) = delete;

private:
    unsigned m_before;
};
