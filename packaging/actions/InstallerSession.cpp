#include "InstallerSession.h"

#include <stdexcept>

// GCOVR_EXCL_START: needs the Windows Installer engine, which runs no counting build; package_lifetime runs it
namespace {
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

InstallerSession::InstallerSession(MSIHANDLE handle) : m_handle(handle)
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
    // Asked with an empty buffer, the engine tells the length without the terminator.
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

void InstallerSession::Log(std::string_view line) const
{
    Send(INSTALLMESSAGE_INFO, line);
}

void InstallerSession::ReportError(std::string_view line) const
{
    Send(INSTALLMESSAGE_ERROR, line);
}

UINT InstallerSession::AskForRestart() const
{
    return m_functions.setMode(m_handle, MSIRUNMODE_REBOOTATEND, TRUE);
}

void InstallerSession::Send(INSTALLMESSAGE kind, std::string_view line) const
{
    const InstallerHandle record(m_functions, m_functions.createRecord(1));
    // The text is an insert: brackets in a path would otherwise be read as property names.
    m_functions.recordSetString(record.Get(), 0, "Morvix: [1]");
    m_functions.recordSetString(record.Get(), 1, std::string(line).c_str());
    m_functions.processMessage(m_handle, kind, record.Get());
}
// GCOVR_EXCL_STOP
