// Settings of an adapter and its virtual ports: operations that change the library's state and so lock the mutex.
#include "HbaApiInt.h"
#include "HbaOperation.h"

bool CHBAAPIInt::GetSet(const char* operationName, const wchar_t* entryName, HBA_HANDLE handle, NordaAccess access,
                        HBA_UINT32& value)
{
    CHBAAPIOperation operation(operationName);
    if (!operation.TakeMutex()) {
        return false;
    }
    const auto getSet = operation.Entry<NordaGetSetFn>(m_hModule.get(), entryName);
    HBA_UINT32 exchanged = access == NordaAccess::Set ? value : 0;
    if (getSet == nullptr || !operation.Succeeded(getSet(handle, access, &exchanged))) {
        return false;
    }
    if (access == NordaAccess::Get) {
        value = exchanged;
    }
    return true;
}

bool CHBAAPIInt::GetSetLinkTimeoutValue(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value)
{
    return GetSet("GetSetLinkTimeoutValue", L"NORDA_GetSet_LinkTimeOut", handle, access, value);
}

bool CHBAAPIInt::GetSetDeviceQDepth(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value)
{
    return GetSet("GetSetDeviceQDepth", L"NORDA_GetSet_DeviceQDepth", handle, access, value);
}

bool CHBAAPIInt::GetSetDriverLogging(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value)
{
    return GetSet("GetSetDriverLogging", L"NORDA_GetSet_DriverLogging", handle, access, value);
}

bool CHBAAPIInt::GenerateVportWwpn(HBA_HANDLE handle, HBA_WWN& portName)
{
    CHBAAPIOperation operation("GenerateVportWwpn");
    return operation.TakeMutex() &&
           operation.Ask(portName, operation.Entry<NordaGeneratePortWWNFn>(m_hModule.get(), L"NORDA_GeneratePortWWN"),
                         handle);
}

bool CHBAAPIInt::CreateVport(HBA_HANDLE handle, const NORDA_VPORT& port)
{
    CHBAAPIOperation operation("CreateVport");
    if (!operation.TakeMutex()) {
        return false;
    }
    const auto create = operation.Entry<NordaCreateVPortFn>(m_hModule.get(), L"NORDA_CreateVPort");
    return create != nullptr && operation.Succeeded(create(handle, &port));
}

bool CHBAAPIInt::GetVports(HBA_HANDLE handle, std::vector<HBA_WWN>& ports)
{
    CHBAAPIOperation operation("GetVports");
    return operation.TakeMutex() &&
           operation.AskList(ports, operation.Entry<NordaGetPortListFn>(m_hModule.get(), L"NORDA_GetFCPortList"),
                             handle);
}

bool CHBAAPIInt::GetVportCount(HBA_HANDLE handle, HBA_UINT32& count)
{
    CHBAAPIOperation operation("GetVportCount");
    return operation.TakeMutex() &&
           operation.AskCount(count, operation.Entry<NordaGetPortListFn>(m_hModule.get(), L"NORDA_GetFCPortList"),
                              handle);
}

bool CHBAAPIInt::RemoveVport(HBA_HANDLE handle, HBA_WWN portName)
{
    CHBAAPIOperation operation("RemoveVport");
    if (!operation.TakeMutex()) {
        return false;
    }
    const auto remove = operation.Entry<NordaRemoveVPortFn>(m_hModule.get(), L"NORDA_RemoveVPort");
    return remove != nullptr && operation.Succeeded(remove(handle, portName));
}
