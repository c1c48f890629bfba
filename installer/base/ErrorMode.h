#pragma once

/// Has the system report critical errors, such as a damaged library or a drive without a disk, to the program instead
/// of in a box: nobody may be there to close it. Holds for the rest of the process.
void ReportCriticalErrorsToTheProgram() noexcept;

/// The error mode that this process started with, for the life of the object. A process inherits its parent's mode at
/// its creation, and creation flags cannot say otherwise without starting it with the system's default; so the mode is
/// put back around each start of a program. It belongs to the whole process: keep the object's life short.
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
