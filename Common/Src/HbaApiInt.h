#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "Handles.h"
#include "HbaApi.h"
#include "OrvString.h"

/// A logical unit of a target port.
struct HbaLogicalUnit
{
    HBA_WWN port{};
    HBA_UINT64 lun = 0;
};

/// Where a command's answer goes. Neither may be empty: sense data says why a device refused.
struct HbaScsiBuffers
{
    std::span<HBA_UINT8> response;
    std::span<HBA_UINT8> sense;
};

/// Access to the maker's FCoE host-bus-adapter library, "nordhapi.dll". Use: InitHBAAPIMod, GetAdapterHandle, any
/// operations on the handle, CloseAdapHandle, DeInitHBAAPIMod. Every operation returns true on success, traces failures
/// through the library trace and throws nothing. Operations that say so hold the machine-wide mutex (HbaMutex.h) while
/// they run. An object is used by one thread at a time.
class CHBAAPIInt
{
public:
    CHBAAPIInt();
    /// Ends with DeInitHBAAPIMod. Handles still open are not closed.
    virtual ~CHBAAPIInt();
    CHBAAPIInt(const CHBAAPIInt&) = delete;
    CHBAAPIInt& operator=(const CHBAAPIInt&) = delete;

    /// Loads and initialises the library. Takes the mutex. Called again it initialises again.
    /// @return false without the mutex, without the library, or when the library says that it cannot be initialised; in
    ///         the last case it stays loaded until DeInitHBAAPIMod. Also true for a library without an initialise
    ///         entry: GetAdapterHandle then fails, unless this object initialised one before.
    bool InitHBAAPIMod();

    /// The same for one adapter, which the library is also asked about. Its answer does not change the result:
    /// GetAdapterHandle shows whether the adapter has FCoE.
    /// @param adapterName  "\DEVICE\" and the network-configuration instance ID.
    /// @param bEthInst     The adapter has an Ethernet instance; without one nothing is done and the result is false.
    /// @param info         Receives the library's answer, all zero without one. May be null.
    bool InitHBAAPIMod(const wchar_t* adapterName, bool bEthInst, NORDA_FCOECONTROLLERINFO* info = nullptr);

    /// Opens an adapter. Takes the mutex.
    /// @param adapterName  As above; cut after 259 bytes of its 8-bit form.
    /// @param handle       Receives the handle, to be closed with CloseAdapHandle; untouched on failure.
    bool GetAdapterHandle(const wchar_t* adapterName, HBA_HANDLE& handle);

    /// Asks how the machine uses a port. The debug values "FcoE_RemoteBooted" and "FcoE_RemotePageFile" are applied on
    /// top: each that reads 1 sets its flag and makes the result true, whatever the library said.
    /// @param properties  The library writes the whole record. It is unchanged when the library lacks the entry point,
    ///                    which is not a failure: the caller zeroes it first. May be null; the debug values then affect
    ///                    only the result.
    bool GetFCEthernetProperties(HBA_HANDLE handle, NORDA_FCANDNICPROPERTIES* properties);

    /// Closes a handle that GetAdapterHandle returned.
    /// @param handle  Set to 0, even when the library has no function to close it.
    /// @return true.
    bool CloseAdapHandle(HBA_HANDLE& handle);

    /// Unloads the library, holding the mutex if possible. May be called in any state and more than once.
    /// @return true.
    bool DeInitHBAAPIMod();

    // The operations below write their results only on success.

    bool GetNumberOfHBAAdapters(HBA_UINT32& count);
    /// @param index  From 0.
    bool GetAdapterName(HBA_UINT32 index, COrvString& name);
    /// @param name    As GetAdapterName gives it.
    /// @param handle  Receives the handle, to be closed with CloseAdapHandle.
    bool GetAdapHandleBasedOnAdapName(const COrvString& name, HBA_HANDLE& handle);
    bool GetAdapterAtrributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES& attributes);
    bool GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTATTRIBUTES& attributes);
    bool GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTSTATISTICS& statistics);

    /// Lists the logical units that the adapter sees.
    /// @param mapping   `NumberOfEntries` says how many entries there is room for, and then how many there are.
    /// @param moreData  Set when the list needs more room; the result is then false, and `NumberOfEntries` the number
    ///                  needed.
    bool GetTargetsInfo(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping, bool& moreData);
    /// Lists the target ports that the adapter sees.
    bool GetTargetList(HBA_HANDLE handle, std::vector<HBA_WWN>& targets);
    /// Makes the adapter search for targets again.
    bool RefreshTargetInfo(HBA_HANDLE handle);
    /// Sends READ CAPACITY (10). The answer goes to the buffers; after a failure the sense buffer may say why.
    bool RetrieveLUNCapacity(HBA_HANDLE handle, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers);
    /// Sends READ CAPACITY (16), for units of more than 2^32 blocks.
    bool RetrieveLUNCapacity16(HBA_HANDLE handle, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers);
    /// Sends INQUIRY.
    /// @param vitalProductData  Asks for the page `pageCode` instead of the standard data.
    bool RetrieveSCSIInfo(HBA_HANDLE handle, const HbaLogicalUnit& unit, bool vitalProductData, HBA_UINT8 pageCode,
                          const HbaScsiBuffers& buffers);
    bool GetVLANList(HBA_HANDLE handle, std::vector<HBA_UINT16>& vlanIds);

    // These change settings and take the mutex. `value` is read for Set and written for Get.

    bool GetSetLinkTimeoutValue(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value);
    bool GetSetDeviceQDepth(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value);
    bool GetSetDriverLogging(HBA_HANDLE handle, NordaAccess access, HBA_UINT32& value);

    // Virtual ports. All take the mutex.

    /// Creates a port name that is not in use.
    bool GenerateVportWwpn(HBA_HANDLE handle, HBA_WWN& portName);
    bool CreateVport(HBA_HANDLE handle, const NORDA_VPORT& port);
    bool GetVports(HBA_HANDLE handle, std::vector<HBA_WWN>& ports);
    bool GetVportCount(HBA_HANDLE handle, HBA_UINT32& count);
    bool RemoveVport(HBA_HANDLE handle, HBA_WWN portName);

private:
    bool LoadInterfaceLibrary();
    bool InitializeLibrary();
    bool RegisterLibrary();
    void AskControllerInfo(const wchar_t* adapterName, NORDA_FCOECONTROLLERINFO& info) const;
    bool OpenController(const wchar_t* adapterName, HBA_HANDLE& handle) const;
    bool GetSet(const char* operationName, const wchar_t* entryName, HBA_HANDLE handle, NordaAccess access,
                HBA_UINT32& value);

    UniqueLibrary m_hModule;
    /// Always 0; not used.
    [[maybe_unused]] uint64_t m_reserved;
    HBA_ENTRYPOINTS m_entryPoints;
    /// Set once the table's fill function has been looked up, found or not.
    bool m_bEntryPtsInited;
    /// Set when the library has reported that it is initialised, for the life of the object: it also counts for a
    /// library loaded later.
    bool m_bLibraryInited;
};
