#pragma once

#include <string>
#include <vector>

#include "LibraryTrace.h"

/// A trace object with a log file in a directory of its own.
class TraceFile
{
public:
    explicit TraceFile(uint32_t level, uint32_t maxFileSize = 0)
    {
        m_result = object.Configure("Kwelpad", Path().c_str(), level, 0, maxFileSize, nullptr);
    }
    TraceFile(const TraceFile&) = delete;
    TraceFile& operator=(const TraceFile&) = delete;

    [[nodiscard]] int Result() const { return m_result; }
    [[nodiscard]] std::string Path() const { return m_directory.At("trace.log"); }
    [[nodiscard]] std::string Content() const { return ReadFileBytes(Path()); }
    [[nodiscard]] std::vector<std::string> Messages() const { return ReadLibraryMessages(Path()); }

private:
    ScratchDirectory m_directory;
    int m_result = -1;

public:
    COrvDebug object; // goes first, so that the directory can be removed
};
