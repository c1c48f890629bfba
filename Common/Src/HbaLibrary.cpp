// Loading and unloading the interface library.
#include <array>
#include <utility>

#include "HbaApiInt.h"
#include "HbaOperation.h"
#include "OrvDebug.h"

namespace {
constexpr char kInterfaceLibrary[] = "nordhapi.dll";
} // namespace

CHBAAPIInt::CHBAAPIInt()
{
    OrvTrace().Print("Entering CHBAAPIInt::CHBAAPIInt");
    m_hModule = nullptr;
    m_reserved = 0;
    m_entryPoints = {};
    m_bEntryPtsInited = false;
    m_bLibraryInited = false;
    OrvTrace().Print("Exiting CHBAAPIInt::CHBAAPIInt");
}

CHBAAPIInt::~CHBAAPIInt()
{
    OrvTrace().Print("Entering CHBAAPIInt::~CHBAAPIInt");
    CHBAAPIInt::DeInitHBAAPIMod();
    OrvTrace().Print("Exiting CHBAAPIInt::~CHBAAPIInt");
}

bool CHBAAPIInt::InitHBAAPIMod()
{
    OrvTrace().Print("Entering CHBAAPIInt::InitHBAAPIMod");
    CHBAAPIMutex mutex;
    if (!mutex.Lock()) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod failed to acquire Mutex");
        return false;
    }
    const bool bRet = LoadInterfaceLibrary();
    mutex.Unlock();
    OrvTrace().Print("Exiting CHBAAPIInt::InitHBAAPIMod bRet = %d", bRet ? 1 : 0);
    return bRet;
}

bool CHBAAPIInt::InitHBAAPIMod(const wchar_t* adapterName, bool bEthInst, NORDA_FCOECONTROLLERINFO* info)
{
    NORDA_FCOECONTROLLERINFO ownInfo{};
    NORDA_FCOECONTROLLERINFO& target = info == nullptr ? ownInfo : *info;
    target = {};
    OrvTrace().Print("Entering CHBAAPIInt::InitHBAAPIMod");
    if (!bEthInst) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod bEthInst = false hence returning");
        OrvTrace().Print("Exiting CHBAAPIInt::InitHBAAPIMod bRet = %d", 0);
        return false;
    }
    CHBAAPIMutex mutex;
    if (!mutex.Lock()) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod failed to acquire Mutex");
        return false;
    }
    const bool bRet = LoadInterfaceLibrary();
    if (bRet) {
        AskControllerInfo(adapterName, target);
    }
    mutex.Unlock();
    OrvTrace().Print("Exiting CHBAAPIInt::InitHBAAPIMod bRet = %d", bRet ? 1 : 0);
    return bRet;
}

bool CHBAAPIInt::LoadInterfaceLibrary()
{
    UniqueLibrary library(LoadLibraryA(kInterfaceLibrary));
    if (!library) {
        const DWORD error = GetLastError();
        OrvTrace().Print("LoadLibrary of nordhapi.dll failed - %d", static_cast<int>(error));
        return false;
    }
    m_hModule = std::move(library);
    return InitializeLibrary() && RegisterLibrary();
}

bool CHBAAPIInt::InitializeLibrary()
{
    NordaInitializeLibraryFn initialize = nullptr;
    switch (FindHbaEntry(m_hModule.get(), L"NORDA_InitializeLibrary", initialize)) {
        case HbaEntry::NameNotConverted:
            OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed");
            return false;
        case HbaEntry::Missing:
            return true;
        case HbaEntry::Found:
            break;
    }
    const HBA_STATUS status = initialize();
    if (status != HBA_STATUS_OK) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod InitializeLibrary failed - Status - %d", static_cast<int>(status));
        return false;
    }
    m_bLibraryInited = true;
    return true;
}

bool CHBAAPIInt::RegisterLibrary()
{
    HBARegisterLibraryFn registerLibrary = nullptr;
    const HbaEntry found = FindHbaEntry(m_hModule.get(), L"HBA_RegisterLibrary", registerLibrary);
    if (found == HbaEntry::NameNotConverted) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed");
        return false;
    }
    if (registerLibrary != nullptr) {
        registerLibrary(&m_entryPoints);
    }
    // Found or not: the operations check for an empty slot.
    m_bEntryPtsInited = true;
    return true;
}

void CHBAAPIInt::AskControllerInfo(const wchar_t* adapterName, NORDA_FCOECONTROLLERINFO& info) const
{
    NordaGetFCoEControllerInfoFn getInfo = nullptr;
    const HbaEntry found = FindHbaEntry(m_hModule.get(), L"NORDA_GetFCoEControllerInfo", getInfo);
    if (found == HbaEntry::Missing) {
        const DWORD error = GetLastError();
        OrvTrace().Print("GetProcAddress of NORDA_GetFCoEControllerInfo failed with error %d", static_cast<int>(error));
        return;
    }
    std::array<char, kHbaNameBytes> name{};
    if (found == HbaEntry::NameNotConverted || !HbaNarrowName(adapterName, name)) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed");
        return;
    }
    NORDA_FCOECONTROLLERINFO answer{};
    const HBA_STATUS status = getInfo(name.data(), &answer);
    if (status != HBA_STATUS_OK) {
        OrvTrace().Print("CHBAAPIInt::InitHBAAPIMod GetFCoEControllerInfo failed - Status - %d",
                         static_cast<int>(status));
        return;
    }
    info = answer;
}

bool CHBAAPIInt::DeInitHBAAPIMod()
{
    OrvTrace().Print("Entering CHBAAPIInt::DeInitHBAAPIMod");
    m_bEntryPtsInited = false;
    m_entryPoints = {};
    CHBAAPIMutex mutex;
    if (!mutex.Lock()) {
        OrvTrace().Print("CHBAAPIInt::DeInitHBAAPIMod Failed to acquire Mutex");
    }
    m_hModule.reset();
    mutex.Unlock();
    OrvTrace().Print("Exiting CHBAAPIInt::DeInitHBAAPIMod");
    return true;
}
