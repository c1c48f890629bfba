#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "Handles.h"
#include "TestThread.h"

/// Reads the debugger output of every process of this session as a debug viewer does. One listener at a time.
class DebugOutput
{
public:
    DebugOutput();
    ~DebugOutput();
    DebugOutput(const DebugOutput&) = delete;
    DebugOutput& operator=(const DebugOutput&) = delete;

    /// The lines of one process in order, so far. Lines that the process has finished sending are all there: a marker
    /// is sent through the same channel first and waited for.
    [[nodiscard]] std::vector<std::string> LinesOf(DWORD processId);

    /// The lines of this process.
    [[nodiscard]] std::vector<std::string> OwnLines() { return LinesOf(GetCurrentProcessId()); }

    /// Waits until process `processId` has sent a line that contains `text`.
    /// @return false when it has not come within `limitMilliseconds`.
    [[nodiscard]] bool WaitForLine(DWORD processId, const std::string& text, DWORD limitMilliseconds);

    /// Discards everything that was read so far.
    void Clear();

private:
    void Listen();
    void Flush();

    UniqueHandle m_mapping;
    UniqueHandle m_bufferReady;
    UniqueHandle m_dataReady;
    UniqueHandle m_stop;
    UniqueHandle m_lineArrived;
    const void* m_view = nullptr;
    TestLock m_lock;
    std::map<DWORD, std::vector<std::string>> m_lines;
    std::string m_lastMarker;
    unsigned m_markerCount = 0;
    TestThread m_listener;
};

/// Switches the installer's trace on for the life of the object and captures this process's lines.
class TraceCapture
{
public:
    TraceCapture();
    ~TraceCapture();
    TraceCapture(const TraceCapture&) = delete;
    TraceCapture& operator=(const TraceCapture&) = delete;

    /// The messages traced so far, without the "Morvix: " that each line starts with.
    [[nodiscard]] std::vector<std::string> Messages();

    /// Discards the messages so far.
    void Clear() { m_output.Clear(); }

private:
    DebugOutput m_output;
};
