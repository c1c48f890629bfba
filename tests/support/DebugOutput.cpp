#include "DebugOutput.h"

#include <array>
#include <mutex>
#include <stdexcept>

namespace {
// Layout of DBWIN_BUFFER: the sender's process id, then its text.
constexpr DWORD kBufferBytes = 4096;
constexpr DWORD kFlushLimitMilliseconds = 20000;
constexpr char kMarker[] = "debug output marker ";
constexpr char kDebugKey[] = R"(SOFTWARE\Norda\Basedrivers\Debug)";
} // namespace

DebugOutput::DebugOutput()
    : m_bufferReady(CreateEventA(nullptr, FALSE, FALSE, "DBWIN_BUFFER_READY")),
      m_dataReady(CreateEventA(nullptr, FALSE, FALSE, "DBWIN_DATA_READY")),
      m_stop(CreateEventA(nullptr, TRUE, FALSE, nullptr)),
      m_lineArrived(CreateEventA(nullptr, FALSE, FALSE, nullptr))
{
    m_mapping.reset(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kBufferBytes, "DBWIN_BUFFER"));
    m_view = m_mapping ? MapViewOfFile(m_mapping.get(), FILE_MAP_READ, 0, 0, kBufferBytes) : nullptr;
    if (m_view == nullptr || !m_bufferReady || !m_dataReady || !m_stop || !m_lineArrived) {
        throw std::runtime_error("the debugger output cannot be read: another viewer may be running");
    }
    m_listener = TestThread([this] { Listen(); });
}

DebugOutput::~DebugOutput()
{
    SetEvent(m_stop.get());
    m_listener.join();
    UnmapViewOfFile(m_view);
}

void DebugOutput::Listen()
{
    const std::array<HANDLE, 2> waits{m_stop.get(), m_dataReady.get()};
    SetEvent(m_bufferReady.get());
    while (WaitForMultipleObjects(waits.size(), waits.data(), FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
        const DWORD processId = *static_cast<const DWORD*>(m_view);
        const std::string_view whole(static_cast<const char*>(m_view) + sizeof(DWORD), kBufferBytes - sizeof(DWORD));
        std::string line(whole.substr(0, whole.find('\0')));
        {
            const std::lock_guard guard(m_lock);
            if (processId == GetCurrentProcessId() && line.starts_with(kMarker)) {
                m_lastMarker = std::move(line);
            } else {
                m_lines[processId].push_back(std::move(line));
            }
        }
        SetEvent(m_lineArrived.get());
        SetEvent(m_bufferReady.get());
    }
}

void DebugOutput::Flush()
{
    const std::string marker = kMarker + std::to_string(++m_markerCount);
    OutputDebugStringA(marker.c_str());
    const ULONGLONG deadline = GetTickCount() + static_cast<ULONGLONG>(kFlushLimitMilliseconds);
    for (;;) {
        {
            const std::lock_guard guard(m_lock);
            if (m_lastMarker == marker) {
                return;
            }
        }
        const ULONGLONG now = GetTickCount();
        if (now >= deadline ||
            WaitForSingleObject(m_lineArrived.get(), static_cast<DWORD>(deadline - now)) != WAIT_OBJECT_0) {
            throw std::runtime_error("the debugger output has stopped");
        }
    }
}

std::vector<std::string> DebugOutput::LinesOf(DWORD processId)
{
    Flush();
    const std::lock_guard guard(m_lock);
    return m_lines[processId];
}

bool DebugOutput::WaitForLine(DWORD processId, const std::string& text, DWORD limitMilliseconds)
{
    const ULONGLONG deadline = GetTickCount() + static_cast<ULONGLONG>(limitMilliseconds);
    for (;;) {
        {
            const std::lock_guard guard(m_lock);
            for (const std::string& line : m_lines[processId]) {
                if (line.find(text) != std::string::npos) {
                    return true;
                }
            }
        }
        const ULONGLONG now = GetTickCount();
        if (now >= deadline ||
            WaitForSingleObject(m_lineArrived.get(), static_cast<DWORD>(deadline - now)) != WAIT_OBJECT_0) {
            return false;
        }
    }
}

void DebugOutput::Clear()
{
    Flush();
    const std::lock_guard guard(m_lock);
    m_lines.clear();
}

TraceCapture::TraceCapture()
{
    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_LOCAL_MACHINE, kDebugKey, &key) != ERROR_SUCCESS) {
        throw std::runtime_error("the trace cannot be switched on");
    }
    RegCloseKey(key);
}

TraceCapture::~TraceCapture()
{
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kDebugKey);
}

std::vector<std::string> TraceCapture::Messages()
{
    constexpr std::string_view kPrefix = "Morvix: ";
    std::vector<std::string> messages;
    for (const std::string& line : m_output.OwnLines()) {
        if (line.starts_with(kPrefix)) {
            messages.push_back(line.substr(kPrefix.size()));
        }
    }
    return messages;
}
