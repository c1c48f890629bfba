#include "NetworkShare.h"

#include <windows.h>
// The headers below need windows.h first.
#include <lmcons.h>
#include <lmerr.h>
#include <lmshare.h>
#include <winnetwk.h>

#include <stdexcept>

#include "Handles.h"
#include "MachineUse.h"
#include "WideText.h"

namespace {
constexpr char kName[] = "morvix-proof";

bool ServerServiceRuns()
{
    const UniqueServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
    const UniqueServiceHandle service(OpenServiceA(manager.get(), "LanmanServer", SERVICE_QUERY_STATUS));
    SERVICE_STATUS status{};
    return service && QueryServiceStatus(service.get(), &status) != FALSE && status.dwCurrentState == SERVICE_RUNNING;
}
} // namespace

std::optional<std::string> NetworkShare::WhyNot()
{
    if (RunsInWine()) {
        return "Wine shares no folders: use a Windows";
    }
    if (!ServerServiceRuns()) {
        return "the service LanmanServer does not run: start it";
    }
    return std::nullopt;
}

NetworkShare::NetworkShare(const std::string& folder)
{
    std::wstring name = Wide(kName);
    std::wstring path = Wide(folder);
    SHARE_INFO_2 share{};
    share.shi2_netname = name.data();
    share.shi2_type = STYPE_DISKTREE;
    share.shi2_max_uses = static_cast<DWORD>(-1);
    share.shi2_path = path.data();
    const DWORD status = NetShareAdd(nullptr, 2, reinterpret_cast<BYTE*>(&share), nullptr);
    if (status != NERR_Success) {
        throw std::runtime_error("cannot share " + folder + ", error " + std::to_string(status));
    }
}

NetworkShare::~NetworkShare()
{
    NetShareDel(nullptr, Wide(kName).data(), 0);
}

std::string NetworkShare::Path() const
{
    return std::string(R"(\\localhost\)") + kName;
}

MappedDrive::MappedDrive(const std::string& share)
{
    for (char letter = 'Z'; letter > 'C' && m_drive.empty(); --letter) {
        const std::string drive = {letter, ':'};
        if (GetDriveTypeA((drive + "\\").c_str()) == DRIVE_NO_ROOT_DIR) {
            m_drive = drive;
        }
    }
    std::string remote = share;
    NETRESOURCEA resource{};
    resource.dwType = RESOURCETYPE_DISK;
    resource.lpLocalName = m_drive.data();
    resource.lpRemoteName = remote.data();
    const DWORD status = m_drive.empty() ? ERROR_NO_MORE_DEVICES : WNetAddConnection2A(&resource, nullptr, nullptr, 0);
    if (status != NO_ERROR) {
        throw std::runtime_error("cannot connect " + share + ", error " + std::to_string(status));
    }
}

MappedDrive::~MappedDrive()
{
    WNetCancelConnection2A(m_drive.c_str(), 0, TRUE);
}
