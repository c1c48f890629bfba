#pragma once

#include <cstddef>
#include <cstdint>

/// The published Common HBA API, as far as this system uses it, and the "NORDA_" entry points that the maker's FCoE
/// library adds to it. The library is loaded at run time: these are types only. Spellings of types, fields and slots
/// are those of the API.

using HBA_UINT8 = uint8_t;
using HBA_UINT16 = uint16_t;
using HBA_UINT32 = uint32_t;
using HBA_UINT64 = uint64_t;
using HBA_INT64 = int64_t;

/// An open adapter; 0 means none.
using HBA_HANDLE = HBA_UINT32;
inline constexpr HBA_HANDLE HBA_HANDLE_INVALID = 0;

using HBA_STATUS = HBA_UINT32;
inline constexpr HBA_STATUS HBA_STATUS_OK = 0;
/// The caller's buffer is too small for what there is.
inline constexpr HBA_STATUS HBA_STATUS_ERROR_MORE_DATA = 7;

/// World-wide name, most significant byte first.
struct HBA_WWN
{
    HBA_UINT8 wwn[8];
};
static_assert(sizeof(HBA_WWN) == 8);

struct HBA_FC4TYPES
{
    HBA_UINT8 bits[32];
};

struct HBA_ADAPTERATTRIBUTES
{
    char Manufacturer[64];
    char SerialNumber[64];
    char Model[256];
    char ModelDescription[256];
    HBA_WWN NodeWWN;
    char NodeSymbolicName[256];
    char HardwareVersion[256];
    char DriverVersion[256];
    char OptionROMVersion[256];
    char FirmwareVersion[256];
    HBA_UINT32 VendorSpecificID;
    HBA_UINT32 NumberOfPorts;
    char DriverName[256];
};
static_assert(sizeof(HBA_ADAPTERATTRIBUTES) == 2192);

struct HBA_PORTATTRIBUTES
{
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    HBA_UINT32 PortFcId;
    HBA_UINT32 PortType;
    HBA_UINT32 PortState;
    HBA_UINT32 PortSupportedClassofService;
    HBA_FC4TYPES PortSupportedFc4Types;
    HBA_FC4TYPES PortActiveFc4Types;
    char PortSymbolicName[256];
    char OSDeviceName[256];
    HBA_UINT32 PortSupportedSpeed;
    HBA_UINT32 PortSpeed;
    HBA_UINT32 PortMaxFrameSize;
    HBA_WWN FabricName;
    HBA_UINT32 NumberofDiscoveredPorts;
};
static_assert(sizeof(HBA_PORTATTRIBUTES) == 632);

/// Counters since the last reset; a port that does not count something says -1.
struct HBA_PORTSTATISTICS
{
    HBA_INT64 SecondsSinceLastReset;
    HBA_INT64 TxFrames;
    HBA_INT64 TxWords;
    HBA_INT64 RxFrames;
    HBA_INT64 RxWords;
    HBA_INT64 LIPCount;
    HBA_INT64 NOSCount;
    HBA_INT64 ErrorFrames;
    HBA_INT64 DumpedFrames;
    HBA_INT64 LinkFailureCount;
    HBA_INT64 LossOfSyncCount;
    HBA_INT64 LossOfSignalCount;
    HBA_INT64 PrimitiveSeqProtocolErrCount;
    HBA_INT64 InvalidTxWordCount;
    HBA_INT64 InvalidCRCCount;
};
static_assert(sizeof(HBA_PORTSTATISTICS) == 120);

/// How the system names a logical unit.
struct HBA_SCSIID
{
    char OSDeviceName[256];
    HBA_UINT32 ScsiBusNumber;
    HBA_UINT32 ScsiTargetNumber;
    HBA_UINT32 ScsiOSLun;
};

/// How the fabric names it.
struct HBA_FCPID
{
    HBA_UINT32 FcId;
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    HBA_UINT64 FcpLun;
};

struct HBA_FCPSCSIENTRY
{
    HBA_SCSIID ScsiId;
    HBA_FCPID FcpId;
};

/// A list of variable length: `NumberOfEntries` says on call how many entries there is room for, and on return how many
/// there are.
struct HBA_FCPTARGETMAPPING
{
    HBA_UINT32 NumberOfEntries;
    HBA_FCPSCSIENTRY entry[1];
};
static_assert(sizeof(HBA_FCPSCSIENTRY) == 304 && offsetof(HBA_FCPTARGETMAPPING, entry) == 8);

/// A slot that this system never calls.
using HbaUncalledFn = void (*)();
using HBAGetNumberOfAdaptersFn = HBA_UINT32 (*)();
/// The name takes up to 256 bytes.
using HBAGetAdapterNameFn = HBA_STATUS (*)(HBA_UINT32 adapterIndex, char* name);
using HBAOpenAdapterFn = HBA_HANDLE (*)(char* name);
using HBACloseAdapterFn = void (*)(HBA_HANDLE handle);
using HBAGetAdapterAttributesFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES* attributes);
using HBAGetAdapterPortAttributesFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_UINT32 portIndex,
                                                     HBA_PORTATTRIBUTES* attributes);
using HBAGetPortStatisticsFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_UINT32 portIndex, HBA_PORTSTATISTICS* statistics);
using HBAGetFcpTargetMappingFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping);
using HBASendScsiInquiryFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, HBA_UINT8 vitalProductData,
                                            HBA_UINT32 pageCode, void* response, HBA_UINT32 responseBytes, void* sense,
                                            HBA_UINT32 senseBytes);
using HBASendReadCapacityFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, void* response,
                                             HBA_UINT32 responseBytes, void* sense, HBA_UINT32 senseBytes);

/// What HBA_RegisterLibrary fills, in the order that the API fixes. A library leaves out what it does not have.
struct HBA_ENTRYPOINTS
{
    HbaUncalledFn GetVersionHandler;
    HbaUncalledFn LoadLibraryHandler;
    HbaUncalledFn FreeLibraryHandler;
    HBAGetNumberOfAdaptersFn GetNumberOfAdaptersHandler;
    HBAGetAdapterNameFn GetAdapterNameHandler;
    HBAOpenAdapterFn OpenAdapterHandler;
    HBACloseAdapterFn CloseAdapterHandler;
    HBAGetAdapterAttributesFn GetAdapterAttributesHandler;
    HBAGetAdapterPortAttributesFn GetAdapterPortAttributesHandler;
    HBAGetPortStatisticsFn GetPortStatisticsHandler;
    HbaUncalledFn GetDiscoveredPortAttributesHandler;
    HbaUncalledFn GetPortAttributesByWWNHandler;
    HbaUncalledFn SendCTPassThruHandler;
    HbaUncalledFn RefreshInformationHandler;
    HbaUncalledFn ResetStatisticsHandler;
    HBAGetFcpTargetMappingFn GetFcpTargetMappingHandler;
    HbaUncalledFn GetFcpPersistentBindingHandler;
    HbaUncalledFn GetEventBufferHandler;
    HbaUncalledFn SetRNIDMgmtInfoHandler;
    HbaUncalledFn GetRNIDMgmtInfoHandler;
    HbaUncalledFn SendRNIDHandler;
    HBASendScsiInquiryFn SendScsiInquiryHandler;
    HbaUncalledFn SendReportLUNsHandler;
    HBASendReadCapacityFn SendReadCapacityHandler;
};
static_assert(sizeof(HBA_ENTRYPOINTS) == 24 * sizeof(HbaUncalledFn));

using HBARegisterLibraryFn = HBA_STATUS (*)(HBA_ENTRYPOINTS* table);

/// What the library knows of an FCoE port and its network side. Everything before the flags is the library's own.
struct NORDA_FCANDNICPROPERTIES
{
    HBA_UINT8 LibraryOwned[424];
    HBA_UINT32 Flags;
};
static_assert(offsetof(NORDA_FCANDNICPROPERTIES, Flags) == 424 && sizeof(NORDA_FCANDNICPROPERTIES) == 428);
/// The machine was booted over this port.
inline constexpr HBA_UINT32 kNordaRemoteBooted = 1;
/// The disk behind this port holds the page file.
inline constexpr HBA_UINT32 kNordaRemotePageFile = 2;

/// What the library knows of an FCoE controller: its names, and room that is the library's own.
struct NORDA_FCOECONTROLLERINFO
{
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    HBA_UINT8 LibraryOwned[1008];
};
static_assert(sizeof(NORDA_FCOECONTROLLERINFO) == 1024);

/// A virtual port to be made.
struct NORDA_VPORT
{
    HBA_WWN NodeWWN;
    HBA_WWN PortWWN;
    char SymbolicName[256];
};

enum class NordaAccess : HBA_UINT32
{
    Get = 0,
    Set = 1,
};

using NordaInitializeLibraryFn = HBA_STATUS (*)();
/// @return the handle, 0 when there is no such controller.
using NordaGetFCoEControllerHandleFn = HBA_HANDLE (*)(char* controllerName);
using NordaGetFCoEControllerInfoFn = HBA_STATUS (*)(char* controllerName, NORDA_FCOECONTROLLERINFO* info);
using NordaGetFCAndNICPropertiesFn = HBA_STATUS (*)(HBA_HANDLE handle, NORDA_FCANDNICPROPERTIES* properties);
/// The lists: `count` is the room on call and the number there is on return; a null list asks for the number only.
template <class Item>
using NordaGetListFn = HBA_STATUS (*)(HBA_HANDLE handle, Item* list, HBA_UINT32* count);
/// NORDA_GetTargetList (target ports) and NORDA_GetFCPortList (virtual ports).
using NordaGetPortListFn = NordaGetListFn<HBA_WWN>;
using NordaGetVlanIdListFn = NordaGetListFn<HBA_UINT16>;
using NordaRescanScsiBusFn = HBA_STATUS (*)(HBA_HANDLE handle);
using NordaSendReadCapacity16Fn = HBASendReadCapacityFn;
/// NORDA_GetSet_LinkTimeOut, NORDA_GetSet_DeviceQDepth and NORDA_GetSet_DriverLogging.
using NordaGetSetFn = HBA_STATUS (*)(HBA_HANDLE handle, NordaAccess access, HBA_UINT32* value);
using NordaGeneratePortWWNFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_WWN* portName);
using NordaCreateVPortFn = HBA_STATUS (*)(HBA_HANDLE handle, const NORDA_VPORT* port);
using NordaRemoveVPortFn = HBA_STATUS (*)(HBA_HANDLE handle, HBA_WWN portName);
