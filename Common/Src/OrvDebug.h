#pragma once

#include <windows.h>

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <memory>

/// Trace writer of the library: a log file with one time-stamped line for each message, mirrored to the debugger output
///   on request. OrvTraceRules.h has the table of levels. A line is module \t PID:x \t TID:x \t hh:mm:ss.mmm \t
///   (counter) \t message \n Nothing is written before Configure succeeds. Lines of different threads never interleave.
class COrvDebug
{
public:
    COrvDebug();
    virtual ~COrvDebug();
    COrvDebug(const COrvDebug&) = delete;
    COrvDebug& operator=(const COrvDebug&) = delete;

    /// Opens the log file. The file is in the directory that "InstalledDir" of the product's registry key names, or in
    /// "Temp" when there is no such key or the module is "Orv2Setp"; for the module "Kwelpad" the file name is used
    /// unchanged. A file that cannot be opened there is tried in "Temp". "TRACE" (REG_DWORD) of the same key replaces
    /// level 1 or 2. A second call that succeeds closes the previous file; one that cannot open its file leaves the
    /// previous one open, with the new module name and size limit.
    /// @param moduleName   Printed at the start of every line; copied.
    /// @param fileName     1 to 245 characters.
    /// @param level        0 switches the trace off.
    /// @param append       Non-zero keeps what the file holds.
    /// @param maxFileSize  Size of the file in bytes at which the log stops growing; 0 for no limit.
    /// @param reserved     Not used.
    /// @return 0 when the log file is open, -1 otherwise.
    int Configure(const char* moduleName, const char* fileName, uint32_t level, int append, uint32_t maxFileSize,
                  const char* reserved);

    /// Writes one line. The message is cut after 1023 characters.
    void Print(const char* format, ...) __attribute__((format(ms_printf, 2, 3)));

    /// Writes "file (line): message", also at level 2. Does nothing at level 0 or without an open file.
    void Error(const char* file, int line, const char* format, ...) __attribute__((format(ms_printf, 4, 5)));

    /// Writes the system's text for an error code.
    /// @param code  The code, or 0 for GetLastError(). Nothing is written for a code without a text.
    void PrintLastError(int code);

    [[nodiscard]] uint32_t GetCurrentLogLevel() const { return m_level; }
    [[nodiscard]] bool IsConfigured() const { return m_configured; }

protected:
    /// Closes the log file: the object is as before it was configured. For a derived class that must release the file
    /// before the program ends.
    void Close();

    /// Writes a message of at most `chars` characters to `text`, without a terminator when it fills the room.
    /// @return the number of characters, or a negative value when the message was cut or could not be formatted.
    using MessageWriterFn = int (*)(char* text, size_t chars, void* context);

    /// Writes one line as at `level`. An exception of the message writer is caught and reported in a line.
    void WriteLine(uint32_t level, MessageWriterFn writeMessage, void* context);

    /// Writes a text of the system with the text itself as the format: a percent sign in it is interpreted, and its
    /// conversions find zeros and null pointers.
    void PrintSystemText(const char* text);

private:
    struct FileCloser
    {
        void operator()(FILE* file) const noexcept
        {
            // Every line has been flushed: nothing is left that could fail.
            static_cast<void>(std::fclose(file));
        }
    };
    class Lock
    {
    public:
        explicit Lock(CRITICAL_SECTION& section) : m_section(section) { EnterCriticalSection(&m_section); }
        ~Lock() { LeaveCriticalSection(&m_section); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        CRITICAL_SECTION& m_section;
    };

    bool OpenLog(const char* path, const char* mode, uint32_t level);
    void ComposeAndWrite(uint32_t level, MessageWriterFn writeMessage, void* context);

    std::unique_ptr<char[]> m_moduleName;
    std::unique_ptr<FILE, FileCloser> m_file;
    CRITICAL_SECTION m_lock;
    // These two are read before the lock is taken, so that a trace that is off costs nothing.
    std::atomic<bool> m_configured = false;
    std::atomic<uint32_t> m_level = 0;
    uint32_t m_maxFileSize = 0;
};

/// The library trace object, through which every class of the library writes. It writes nothing until a program calls
/// Configure on it. Usable from static initialisers and from destructors of static objects.
[[nodiscard]] COrvDebug& OrvTrace();

/// Writes "ENTRY:  name" and "EXIT:  name" around a scope, through the library trace object.
class COrvFuncTrace
{
public:
    explicit COrvFuncTrace(const char* functionName);
    /// Adds a line with the function's input parameters.
    COrvFuncTrace(const char* functionName, const char* inputParameters);
    ~COrvFuncTrace();
    COrvFuncTrace(const COrvFuncTrace&) = delete;
    COrvFuncTrace& operator=(const COrvFuncTrace&) = delete;

    /// Reports the value that the function is about to return.
    void ReturnValue(int value);

private:
    std::unique_ptr<char[]> m_functionName;
};
