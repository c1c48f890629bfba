#pragma once

#include <functional>
#include <string>
#include <vector>

#include "HbaApiInt.h"

/// One operation of the class that asks the library one thing, with arguments that a test can look for.
struct HbaOperationRow
{
    std::string name;
    std::function<bool(CHBAAPIInt&)> call;
    /// Where it reaches the library: a slot of the table (from 0), or -1 and the name of an entry point.
    int slot;
    std::string reached;
    bool takesMutex;
    /// What the library journals: the name reached and the arguments, one line for each call.
    std::vector<std::string> journal;
};

inline constexpr HBA_WWN kTestPort{{0x20, 1, 2, 3, 4, 5, 6, 42}};

inline const std::vector<HbaOperationRow>& HbaOperationRows()
{
    static const auto scsi = [](auto operation) {
        return [operation](CHBAAPIInt& hba) {
            HBA_UINT8 response[8]{};
            HBA_UINT8 sense[4]{};
            return operation(hba, HbaLogicalUnit{kTestPort, 0x100000000ULL}, HbaScsiBuffers{response, sense});
        };
    };
    static const std::string scsiJournal = " 7 wwn42 4294967296 response 8 sense 4";
    static const std::vector<HbaOperationRow> rows = {
        {"GetNumberOfHBAAdapters",
         [](CHBAAPIInt& hba) {
             HBA_UINT32 count = 0;
             return hba.GetNumberOfHBAAdapters(count);
         },
         3,
         "GetNumberOfAdapters",
         false,
         {"GetNumberOfAdapters"}},
        {"GetAdapterName",
         [](CHBAAPIInt& hba) {
             COrvString name;
             return hba.GetAdapterName(1, name);
         },
         4,
         "GetAdapterName",
         false,
         {"GetAdapterName 1"}},
        {"GetAdapHandleBasedOnAdapName",
         [](CHBAAPIInt& hba) {
             HBA_HANDLE handle = 0;
             return hba.GetAdapHandleBasedOnAdapName("one", handle);
         },
         5,
         "OpenAdapter",
         false,
         {"OpenAdapter [one]"}},
        {"GetAdapterAtrributes",
         [](CHBAAPIInt& hba) {
             HBA_ADAPTERATTRIBUTES attributes{};
             return hba.GetAdapterAtrributes(7, attributes);
         },
         7,
         "GetAdapterAttributes",
         false,
         {"GetAdapterAttributes 7"}},
        {"GetAdapterPortAttributes",
         [](CHBAAPIInt& hba) {
             HBA_PORTATTRIBUTES attributes{};
             return hba.GetAdapterPortAttributes(7, 1, attributes);
         },
         8,
         "GetAdapterPortAttributes",
         false,
         {"GetAdapterPortAttributes 7 1"}},
        {"GetPortStatistics",
         [](CHBAAPIInt& hba) {
             HBA_PORTSTATISTICS statistics{};
             return hba.GetPortStatistics(7, 1, statistics);
         },
         9,
         "GetPortStatistics",
         false,
         {"GetPortStatistics 7 1"}},
        {"GetTargetsInfo",
         [](CHBAAPIInt& hba) {
             HBA_FCPTARGETMAPPING mapping{};
             mapping.NumberOfEntries = 1;
             bool moreData = false;
             return hba.GetTargetsInfo(7, &mapping, moreData);
         },
         15,
         "GetFcpTargetMapping",
         false,
         {"GetFcpTargetMapping 7 room 1"}},
        {"GetTargetList",
         [](CHBAAPIInt& hba) {
             std::vector<HBA_WWN> targets;
             return hba.GetTargetList(7, targets);
         },
         -1,
         "NORDA_GetTargetList",
         false,
         {"NORDA_GetTargetList 7 count", "NORDA_GetTargetList 7 room 3"}},
        {"RefreshTargetInfo",
         [](CHBAAPIInt& hba) { return hba.RefreshTargetInfo(7); },
         -1,
         "NORDA_RescanScsiBus",
         false,
         {"NORDA_RescanScsiBus 7"}},
        {"RetrieveLUNCapacity",
         scsi([](CHBAAPIInt& hba, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers) {
             return hba.RetrieveLUNCapacity(7, unit, buffers);
         }),
         23,
         "SendReadCapacity",
         false,
         {"SendReadCapacity" + scsiJournal}},
        {"RetrieveLUNCapacity16",
         scsi([](CHBAAPIInt& hba, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers) {
             return hba.RetrieveLUNCapacity16(7, unit, buffers);
         }),
         -1,
         "NORDA_SendReadCapacity16",
         false,
         {"NORDA_SendReadCapacity16" + scsiJournal}},
        {"RetrieveSCSIInfo",
         scsi([](CHBAAPIInt& hba, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers) {
             return hba.RetrieveSCSIInfo(7, unit, true, 0x83, buffers);
         }),
         21,
         "SendScsiInquiry",
         false,
         {"SendScsiInquiry 7 wwn42 4294967296 page 1 131 response 8 sense 4"}},
        {"GetVLANList",
         [](CHBAAPIInt& hba) {
             std::vector<HBA_UINT16> ids;
             return hba.GetVLANList(7, ids);
         },
         -1,
         "NORDA_GetVlanIdList",
         false,
         {"NORDA_GetVlanIdList 7 count", "NORDA_GetVlanIdList 7 room 3"}},
        {"GetSetLinkTimeoutValue",
         [](CHBAAPIInt& hba) {
             HBA_UINT32 value = 30;
             return hba.GetSetLinkTimeoutValue(7, NordaAccess::Set, value);
         },
         -1,
         "NORDA_GetSet_LinkTimeOut",
         true,
         {"NORDA_GetSet_LinkTimeOut 7 set 30"}},
        {"GetSetDeviceQDepth",
         [](CHBAAPIInt& hba) {
             HBA_UINT32 value = 16;
             return hba.GetSetDeviceQDepth(7, NordaAccess::Set, value);
         },
         -1,
         "NORDA_GetSet_DeviceQDepth",
         true,
         {"NORDA_GetSet_DeviceQDepth 7 set 16"}},
        {"GetSetDriverLogging",
         [](CHBAAPIInt& hba) {
             HBA_UINT32 value = 2;
             return hba.GetSetDriverLogging(7, NordaAccess::Set, value);
         },
         -1,
         "NORDA_GetSet_DriverLogging",
         true,
         {"NORDA_GetSet_DriverLogging 7 set 2"}},
        {"GenerateVportWwpn",
         [](CHBAAPIInt& hba) {
             HBA_WWN name{};
             return hba.GenerateVportWwpn(7, name);
         },
         -1,
         "NORDA_GeneratePortWWN",
         true,
         {"NORDA_GeneratePortWWN 7"}},
        {"CreateVport",
         [](CHBAAPIInt& hba) {
             return hba.CreateVport(7, NORDA_VPORT{{{0x20, 1, 2, 3, 4, 5, 6, 41}}, kTestPort, "port one"});
         },
         -1,
         "NORDA_CreateVPort",
         true,
         {"NORDA_CreateVPort 7 wwn41 wwn42 [port one]"}},
        {"GetVports",
         [](CHBAAPIInt& hba) {
             std::vector<HBA_WWN> ports;
             return hba.GetVports(7, ports);
         },
         -1,
         "NORDA_GetFCPortList",
         true,
         {"NORDA_GetFCPortList 7 count", "NORDA_GetFCPortList 7 room 3"}},
        {"GetVportCount",
         [](CHBAAPIInt& hba) {
             HBA_UINT32 count = 0;
             return hba.GetVportCount(7, count);
         },
         -1,
         "NORDA_GetFCPortList",
         true,
         {"NORDA_GetFCPortList 7 count"}},
        {"RemoveVport",
         [](CHBAAPIInt& hba) { return hba.RemoveVport(7, kTestPort); },
         -1,
         "NORDA_RemoveVPort",
         true,
         {"NORDA_RemoveVPort 7 wwn42"}},
    };
    return rows;
}
