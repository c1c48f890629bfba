#include "InstallerSession.h"

#include <stdexcept>
#include <utility>

#include "WaitProgress.h"

// GCOVR_EXCL_START: needs the Windows Installer engine, which runs no counting build; package_lifetime runs it
namespace {
// Kinds of progress messages.
constexpr int kTicksDone = 2;
constexpr int kMoreTicks = 3;
// The text is an insert: brackets in a path would otherwise be read as property names.
constexpr char kLineFormat[] = "Morvix: [1]";

/// Owns a handle of the Windows Installer library.
class InstallerHandle
{
public:
    InstallerHandle(const InstallerFunctions& functions, MSIHANDLE handle) : m_functions(functions), m_handle(handle) {}
    InstallerHandle(const InstallerHandle&) = delete;
    InstallerHandle& operator=(const InstallerHandle&) = delete;
    ~InstallerHandle() { m_functions.closeHandle(m_handle); }

    [[nodiscard]] MSIHANDLE Get() const { return m_handle; }

private:
    const InstallerFunctions& m_functions;
    MSIHANDLE m_handle;
};
} // namespace

InstallerSession::InstallerSession(MSIHANDLE handle, InstallerFunctions functions)
    : m_functions(std::move(functions)), m_handle(handle)
{
    if (!m_functions.AreComplete()) {
        throw std::runtime_error("the Windows Installer library cannot be used");
    }
}

std::string InstallerSession::StepData() const
{
    constexpr char kProperty[] = "CustomActionData";
    std::string text(1, '\0');
    DWORD chars = 0;
    // With an empty buffer, the engine returns the length without the terminator.
    if (m_functions.getProperty(m_handle, kProperty, text.data(), &chars) != ERROR_MORE_DATA) {
        return {};
    }
    text.resize(chars + 1);
    chars = static_cast<DWORD>(text.size());
    if (m_functions.getProperty(m_handle, kProperty, text.data(), &chars) != ERROR_SUCCESS) {
        return {};
    }
    text.resize(chars);
    return text;
}

void InstallerSession::SetProperty(const char* name, const std::string& text) const
{
    m_functions.setProperty(m_handle, name, text.c_str());
}

void InstallerSession::AnnounceWait() const
{
    SendProgress(kMoreTicks, kWaitTicks);
}

ProgramEnd InstallerSession::RunAndReport(const ProgramStart& start, std::uint32_t limitSeconds) const
{
    WaitProgress progress(limitSeconds);
    const ProgramEnd end = RunAndWait(start, limitSeconds, [&](std::uint32_t seconds) {
        // The package has a template for the text; the result of either message shows whether the user has cancelled.
        return Send(INSTALLMESSAGE_ACTIONDATA, nullptr, progress.Text(seconds)) != IDCANCEL &&
               SendProgress(kTicksDone, progress.TicksAfter(seconds)) != IDCANCEL;
    });
    if (end.kind == ProgramEnd::Kind::Ended) {
        SendProgress(kTicksDone, progress.Rest());
    }
    return end;
}

void InstallerSession::Log(std::string_view line) const
{
    Send(INSTALLMESSAGE_INFO, kLineFormat, line);
}

void InstallerSession::ReportError(std::string_view line) const
{
    Send(INSTALLMESSAGE_ERROR, kLineFormat, line);
}

UINT InstallerSession::AskForRestart() const
{
    return m_functions.setMode(m_handle, MSIRUNMODE_REBOOTATEND, TRUE);
}

int InstallerSession::Send(INSTALLMESSAGE kind, const char* format, std::string_view text) const
{
    const InstallerHandle record(m_functions, m_functions.createRecord(1));
    if (format != nullptr) {
        m_functions.recordSetString(record.Get(), 0, format);
    }
    m_functions.recordSetString(record.Get(), 1, std::string(text).c_str());
    return m_functions.processMessage(m_handle, kind, record.Get());
}

int InstallerSession::SendProgress(int kind, std::uint32_t ticks) const
{
    const InstallerHandle record(m_functions, m_functions.createRecord(2));
    m_functions.recordSetInteger(record.Get(), 1, kind);
    m_functions.recordSetInteger(record.Get(), 2, static_cast<int>(ticks));
    return m_functions.processMessage(m_handle, INSTALLMESSAGE_PROGRESS, record.Get());
}
// GCOVR_EXCL_STOP
