// Opening and closing adapters, and what the library knows about them.
#include <array>
#include <vector>

#include "HbaApiInt.h"
#include "HbaOperation.h"
#include "Helper.h"
#include "OrvDebug.h"

namespace {
// The library writes up to 256 bytes; one more zero follows them.
constexpr size_t kAdapterNameBytes = 257;

// True when the debug value exists and is 1.
bool IsOverridden(const char* name)
{
    CHelper helper;
    DWORD value = 0;
    return helper.IsSettingDebugable(name, value) && value == 1;
}
} // namespace

bool CHBAAPIInt::GetAdapterHandle(const wchar_t* adapterName, HBA_HANDLE& handle)
{
    OrvTrace().Print("Entering CHBAAPIInt::GetAdapterHandle");
    CHBAAPIMutex mutex;
    if (!mutex.Lock()) {
        OrvTrace().Print("GetAdapterHandle Failure to get Mutex");
        return false;
    }
    // Without an initialised library nothing is asked, and no line says why.
    const bool bRet = m_bLibraryInited && m_hModule && OpenController(adapterName, handle);
    mutex.Unlock();
    OrvTrace().Print("Exiting CHBAAPIInt::GetAdapterHandle  bRet = %d", bRet ? 1 : 0);
    return bRet;
}

bool CHBAAPIInt::OpenController(const wchar_t* adapterName, HBA_HANDLE& handle) const
{
    NordaGetFCoEControllerHandleFn getHandle = nullptr;
    const HbaEntry found = FindHbaEntry(m_hModule.get(), L"NORDA_GetFCoEControllerHandle", getHandle);
    if (found == HbaEntry::Missing) {
        const DWORD error = GetLastError();
        // The name in the text is not the one that was looked up; existing log readers expect it.
        OrvTrace().Print("GetProcAddress of NORDA_GetControllerHandle failed with error %d", static_cast<int>(error));
    }
    // Checked anyway, so that one trace shows both faults.
    std::array<char, kHbaNameBytes> name{};
    if (found == HbaEntry::NameNotConverted || !HbaNarrowName(adapterName, name)) {
        OrvTrace().Print("CHBAAPIInt::GetAdapterHandle ConvertTCHARToChar failed");
        return false;
    }
    if (getHandle == nullptr) {
        return false;
    }
    const HBA_HANDLE opened = getHandle(name.data());
    if (opened == HBA_HANDLE_INVALID) {
        OrvTrace().Print("Error Getting Handle");
        return false;
    }
    handle = opened;
    OrvTrace().Print("Succeeded getting Adapter Handle - %d", static_cast<int>(handle));
    return true;
}

bool CHBAAPIInt::GetFCEthernetProperties(HBA_HANDLE handle, NORDA_FCANDNICPROPERTIES* properties)
{
    OrvTrace().Print("Entering CHBAAPIInt::GetFCEthernetProperties");
    bool bRet = true;
    if (properties != nullptr) {
        NordaGetFCAndNICPropertiesFn getProperties = nullptr;
        switch (FindHbaEntry(m_hModule.get(), L"NORDA_GetFCAndNICProperties", getProperties)) {
            case HbaEntry::NameNotConverted:
                return false;
            case HbaEntry::Missing:
                // Not a failure: such a library has no bootable ports.
                OrvTrace().Print("GetFCEthernetProperties GetProcAddress failed");
                break;
            case HbaEntry::Found:
                bRet = getProperties(handle, properties) == HBA_STATUS_OK;
                OrvTrace().Print(bRet ? "GetFCEthernetProperties Succeeded" : "GetFCEthernetProperties failed");
                break;
        }
    }
    // Deliberately applied after the library's answer: they simulate machines that are not available.
    struct Override
    {
        const char* name;
        HBA_UINT32 flag;
    };
    static constexpr Override kOverrides[] = {{"FcoE_RemoteBooted", kNordaRemoteBooted},
                                              {"FcoE_RemotePageFile", kNordaRemotePageFile}};
    for (const Override& debugValue : kOverrides) {
        if (IsOverridden(debugValue.name)) {
            bRet = true;
            if (properties != nullptr) {
                properties->Flags |= debugValue.flag;
            }
        }
    }
    OrvTrace().Print("Exiting CHBAAPIInt::GetFCEthernetProperties");
    return bRet;
}

bool CHBAAPIInt::CloseAdapHandle(HBA_HANDLE& handle)
{
    OrvTrace().Print("Entering CHBAAPIInt::CloseAdapHandle");
    OrvTrace().Print("CHBAAPIInt::CloseAdapHandle closing adapter handle - %d", static_cast<int>(handle));
    // The library opens adapters by an exported function but closes them through the table: one that opens and fills no
    // table must not crash an elevated program.
    if (m_entryPoints.CloseAdapterHandler != nullptr) {
        m_entryPoints.CloseAdapterHandler(handle);
    }
    handle = HBA_HANDLE_INVALID;
    OrvTrace().Print("Exiting CHBAAPIInt::CloseAdapHandle");
    return true;
}

bool CHBAAPIInt::GetNumberOfHBAAdapters(HBA_UINT32& count)
{
    const CHBAAPIOperation operation("GetNumberOfHBAAdapters");
    const auto getNumber = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetNumberOfAdaptersHandler);
    if (getNumber == nullptr) {
        return false;
    }
    count = getNumber();
    return true;
}

bool CHBAAPIInt::GetAdapterName(HBA_UINT32 index, COrvString& name)
{
    const CHBAAPIOperation operation("GetAdapterName");
    const auto getName = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetAdapterNameHandler);
    std::array<char, kAdapterNameBytes> text{};
    if (getName == nullptr || !operation.Succeeded(getName(index, text.data()))) {
        return false;
    }
    text.back() = '\0';
    name = text.data();
    return true;
}

bool CHBAAPIInt::GetAdapHandleBasedOnAdapName(const COrvString& name, HBA_HANDLE& handle)
{
    const CHBAAPIOperation operation("GetAdapHandleBasedOnAdapName");
    const auto open = operation.Slot(m_bEntryPtsInited, m_entryPoints.OpenAdapterHandler);
    if (open == nullptr) {
        return false;
    }
    // The API takes a writable text.
    std::vector<char> text(static_cast<const char*>(name), static_cast<const char*>(name) + name.Length() + 1);
    const HBA_HANDLE opened = open(text.data());
    if (opened == HBA_HANDLE_INVALID) {
        return operation.Refuse("found no such adapter");
    }
    handle = opened;
    return true;
}

bool CHBAAPIInt::GetAdapterAtrributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES& attributes)
{
    const CHBAAPIOperation operation("GetAdapterAtrributes");
    const auto get = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetAdapterAttributesHandler);
    return operation.Ask(attributes, get, handle);
}

bool CHBAAPIInt::GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTATTRIBUTES& attributes)
{
    const CHBAAPIOperation operation("GetAdapterPortAttributes");
    const auto get = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetAdapterPortAttributesHandler);
    return operation.Ask(attributes, get, handle, portIndex);
}

bool CHBAAPIInt::GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTSTATISTICS& statistics)
{
    const CHBAAPIOperation operation("GetPortStatistics");
    const auto get = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetPortStatisticsHandler);
    return operation.Ask(statistics, get, handle, portIndex);
}
