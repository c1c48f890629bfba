// Stands in for nordhapi.dll. nordhapi_without_<entry>.dll are the same library without that one entry point. Answers
// (section Answers of <own name>.answers.ini, all optional; a WWN is named by its last byte):
//   Status.<entry or slot>     status of that call, 0 (success) when not given
//   Handle, Handle.<adapter>   what opening an adapter gives: for any name, for this name; 7 when not given, 0 for none
//   Flags, Flags.<handle>      flags word of the properties record: for any handle, for this one
//   LeaveProperties=1          the properties call answers without touching the record
//   EmptySlot=<n>              slot n of the entry-point table (from 0) is left empty
//   Count.<entry>              how many entries a list has, 3 when not given
//   CountThen.<entry>          how many it has when it is fetched, when that is another number
//   Value.<entry>              what a setting reads
//   Adapters, Mappings         number of adapters, of target mappings
//   JournalMutex=1             each line of the journal ends with " locked" while the machine-wide mutex exists, else
//                              " free"
//   Quiet=1                    no journal and no answers but this one: for tests that count handles over many calls

#include "HbaApi.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "Handles.h"
#include "Journal.h"

namespace {
// A static variable with a guard would keep a handle of the runtime for each load of this library.
int quietAnswer = -1;
bool Quiet()
{
    if (quietAnswer < 0) {
        quietAnswer = AnswerNumber("Quiet") != 0 ? 1 : 0;
    }
    return quietAnswer == 1;
}

std::string MutexNote()
{
    if (AnswerNumber("JournalMutex") == 0) {
        return {};
    }
    // The mutex lives only as long as an operation that takes it.
    const UniqueHandle mutex(OpenMutexA(SYNCHRONIZE, FALSE, R"(Global\CHBAAPINTMUT)"));
    return mutex ? " locked" : " free";
}

void Note(const std::string& line)
{
    if (!Quiet()) {
        WriteJournal(line + MutexNote());
    }
}

uint32_t Number(const std::string& key, uint32_t otherwise = 0)
{
    if (Quiet()) {
        return otherwise;
    }
    return Answer(key).empty() ? otherwise : AnswerNumber(key);
}

// Journals a call and returns its status.
HBA_STATUS Called(const std::string& name, const std::string& arguments = {})
{
    Note(name + (arguments.empty() ? "" : " " + arguments));
    return Number("Status." + name);
}

std::string Text(uint64_t number)
{
    return std::to_string(number);
}
std::string Text(const HBA_WWN& name)
{
    return "wwn" + std::to_string(name.wwn[7]);
}

// The last byte tells one name from another, the others show that all eight arrive.
HBA_WWN Name(uint8_t number)
{
    return {{0x20, 1, 2, 3, 4, 5, 6, number}};
}
bool IsWholeName(const HBA_WWN& name)
{
    return std::memcmp(&name, "\x20\1\2\3\4\5\6", 7) == 0;
}
std::string Checked(const HBA_WWN& name)
{
    return IsWholeName(name) ? Text(name) : "garbled";
}

HBA_HANDLE Open(const std::string& entry, const char* adapter)
{
    const HBA_STATUS status = Called(entry, "[" + std::string(adapter) + "]");
    return status != HBA_STATUS_OK ? 0 : Number("Handle." + std::string(adapter), Number("Handle", 7));
}

template <class Item, class Make>
HBA_STATUS List(const std::string& entry, HBA_HANDLE handle, Item* list, HBA_UINT32* count, Make make)
{
    const HBA_STATUS status = Called(entry, Text(handle) + (list == nullptr ? " count" : " room " + Text(*count)));
    const HBA_UINT32 whole = Number("Count." + entry, 3);
    if (list == nullptr) {
        *count = whole;
        return status;
    }
    const HBA_UINT32 now = Number("CountThen." + entry, whole);
    for (HBA_UINT32 i = 0; i < std::min(*count, now); ++i) {
        list[i] = make(i);
    }
    *count = now;
    return status;
}

HBA_STATUS GetSet(const std::string& entry, HBA_HANDLE handle, NordaAccess access, HBA_UINT32* value)
{
    if (access == NordaAccess::Set) {
        const HBA_STATUS status = Called(entry, Text(handle) + " set " + Text(*value));
        *value = 99;
        return status;
    }
    const HBA_STATUS status = Called(entry, Text(handle) + " get, given " + Text(*value));
    *value = Number("Value." + entry);
    return status;
}

std::string Buffers(HBA_UINT32 responseBytes, HBA_UINT32 senseBytes)
{
    return "response " + Text(responseBytes) + " sense " + Text(senseBytes);
}

HBA_STATUS ReadCapacity(const std::string& entry, HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, void* response,
                        HBA_UINT32 responseBytes, void* sense, HBA_UINT32 senseBytes)
{
    std::memset(response, 'R', responseBytes);
    std::memset(sense, 'S', senseBytes);
    return Called(entry,
                  Text(handle) + " " + Checked(port) + " " + Text(lun) + " " + Buffers(responseBytes, senseBytes));
}

HBA_UINT32 GetNumberOfAdapters()
{
    Called("GetNumberOfAdapters");
    return Number("Adapters", 2);
}

HBA_STATUS GetAdapterName(HBA_UINT32 index, char* name)
{
    // All 256 bytes that the API allows, and no terminator within them.
    std::memset(name, 'x', 256);
    std::memcpy(name, "adapter", 7);
    return Called("GetAdapterName", Text(index));
}

HBA_HANDLE OpenAdapter(char* name)
{
    return Open("OpenAdapter", name);
}

void CloseAdapter(HBA_HANDLE handle)
{
    Called("CloseAdapter", Text(handle));
}

HBA_STATUS GetAdapterAttributes(HBA_HANDLE handle, HBA_ADAPTERATTRIBUTES* attributes)
{
    std::strcpy(attributes->Manufacturer, "a maker");
    std::strcpy(attributes->DriverName, "a driver");
    attributes->NumberOfPorts = 2;
    return Called("GetAdapterAttributes", Text(handle));
}

HBA_STATUS GetAdapterPortAttributes(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTATTRIBUTES* attributes)
{
    attributes->PortWWN = Name(9);
    attributes->NumberofDiscoveredPorts = 5;
    return Called("GetAdapterPortAttributes", Text(handle) + " " + Text(port));
}

HBA_STATUS GetPortStatistics(HBA_HANDLE handle, HBA_UINT32 port, HBA_PORTSTATISTICS* statistics)
{
    statistics->SecondsSinceLastReset = 60;
    statistics->InvalidCRCCount = -1;
    return Called("GetPortStatistics", Text(handle) + " " + Text(port));
}

HBA_STATUS GetFcpTargetMapping(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping)
{
    const HBA_STATUS status = Called("GetFcpTargetMapping", Text(handle) + " room " + Text(mapping->NumberOfEntries));
    const HBA_UINT32 whole = Number("Mappings", 1);
    const bool tooMany = whole > mapping->NumberOfEntries;
    for (HBA_UINT32 i = 0; i < std::min(whole, mapping->NumberOfEntries); ++i) {
        mapping->entry[i].ScsiId.ScsiOSLun = 100 + i;
        mapping->entry[i].FcpId.PortWWN = Name(static_cast<uint8_t>(i));
    }
    mapping->NumberOfEntries = whole;
    return tooMany ? HBA_STATUS_ERROR_MORE_DATA : status;
}

HBA_STATUS SendScsiInquiry(HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, HBA_UINT8 vitalProductData,
                           HBA_UINT32 pageCode, void* response, HBA_UINT32 responseBytes, void* sense,
                           HBA_UINT32 senseBytes)
{
    std::memset(response, 'R', responseBytes);
    std::memset(sense, 'S', senseBytes);
    return Called("SendScsiInquiry", Text(handle) + " " + Checked(port) + " " + Text(lun) + " page " +
                                         Text(vitalProductData) + " " + Text(pageCode) + " " +
                                         Buffers(responseBytes, senseBytes));
}

HBA_STATUS SendReadCapacity(HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, void* response, HBA_UINT32 responseBytes,
                            void* sense, HBA_UINT32 senseBytes)
{
    return ReadCapacity("SendReadCapacity", handle, port, lun, response, responseBytes, sense, senseBytes);
}

// A slot that should not be called: it writes its number to the journal.
template <int number>
void WrongSlot()
{
    WriteJournal("slot " + std::to_string(number));
}

using Slot = void (*)();
template <class Function>
Slot AsSlot(Function function)
{
    return reinterpret_cast<Slot>(function);
}

template <int... numbers>
void FillWrongSlots(Slot* slots, std::integer_sequence<int, numbers...>)
{
    ((slots[numbers] = &WrongSlot<numbers>), ...);
}

// The table as the API numbers it, not as any declaration of it orders it.
void FillSlots(Slot* slots)
{
    FillWrongSlots(slots, std::make_integer_sequence<int, 24>());
    slots[3] = AsSlot(&GetNumberOfAdapters);
    slots[4] = AsSlot(&GetAdapterName);
    slots[5] = AsSlot(&OpenAdapter);
    slots[6] = AsSlot(&CloseAdapter);
    slots[7] = AsSlot(&GetAdapterAttributes);
    slots[8] = AsSlot(&GetAdapterPortAttributes);
    slots[9] = AsSlot(&GetPortStatistics);
    slots[15] = AsSlot(&GetFcpTargetMapping);
    slots[21] = AsSlot(&SendScsiInquiry);
    slots[23] = AsSlot(&SendReadCapacity);
    if (const uint32_t empty = Number("EmptySlot", 24); empty < 24) {
        slots[empty] = nullptr;
    }
}
} // namespace

extern "C" {
HBA_STATUS NORDA_InitializeLibrary()
{
    return Called("NORDA_InitializeLibrary");
}

HBA_STATUS HBA_RegisterLibrary(void* table)
{
    FillSlots(static_cast<Slot*>(table));
    return Called("HBA_RegisterLibrary");
}

HBA_HANDLE NORDA_GetFCoEControllerHandle(char* name)
{
    return Open("NORDA_GetFCoEControllerHandle", name);
}

HBA_STATUS NORDA_GetFCoEControllerInfo(char* name, NORDA_FCOECONTROLLERINFO* info)
{
    info->PortWWN = Name(8);
    return Called("NORDA_GetFCoEControllerInfo", "[" + std::string(name) + "]");
}

HBA_STATUS NORDA_GetFCAndNICProperties(HBA_HANDLE handle, void* record)
{
    if (Number("LeaveProperties") == 0) {
        // 428 bytes, of which the last four are the flags.
        auto* bytes = static_cast<unsigned char*>(record);
        const uint32_t flags = Number("Flags." + Text(handle), Number("Flags"));
        std::memset(bytes, 0xA5, 424);
        std::memcpy(bytes + 424, &flags, sizeof(flags));
    }
    return Called("NORDA_GetFCAndNICProperties", Text(handle));
}

HBA_STATUS NORDA_GetTargetList(HBA_HANDLE handle, HBA_WWN* targets, HBA_UINT32* count)
{
    return List("NORDA_GetTargetList", handle, targets, count,
                [](HBA_UINT32 i) { return Name(static_cast<uint8_t>(10 + i)); });
}

HBA_STATUS NORDA_GetFCPortList(HBA_HANDLE handle, HBA_WWN* ports, HBA_UINT32* count)
{
    return List("NORDA_GetFCPortList", handle, ports, count,
                [](HBA_UINT32 i) { return Name(static_cast<uint8_t>(20 + i)); });
}

HBA_STATUS NORDA_GetVlanIdList(HBA_HANDLE handle, HBA_UINT16* ids, HBA_UINT32* count)
{
    return List("NORDA_GetVlanIdList", handle, ids, count,
                [](HBA_UINT32 i) { return static_cast<HBA_UINT16>(1000 + i); });
}

HBA_STATUS NORDA_RescanScsiBus(HBA_HANDLE handle)
{
    return Called("NORDA_RescanScsiBus", Text(handle));
}

HBA_STATUS NORDA_SendReadCapacity16(HBA_HANDLE handle, HBA_WWN port, HBA_UINT64 lun, void* response,
                                    HBA_UINT32 responseBytes, void* sense, HBA_UINT32 senseBytes)
{
    return ReadCapacity("NORDA_SendReadCapacity16", handle, port, lun, response, responseBytes, sense, senseBytes);
}

HBA_STATUS NORDA_GetSet_LinkTimeOut(HBA_HANDLE handle, NordaAccess access, HBA_UINT32* value)
{
    return GetSet("NORDA_GetSet_LinkTimeOut", handle, access, value);
}

HBA_STATUS NORDA_GetSet_DeviceQDepth(HBA_HANDLE handle, NordaAccess access, HBA_UINT32* value)
{
    return GetSet("NORDA_GetSet_DeviceQDepth", handle, access, value);
}

HBA_STATUS NORDA_GetSet_DriverLogging(HBA_HANDLE handle, NordaAccess access, HBA_UINT32* value)
{
    return GetSet("NORDA_GetSet_DriverLogging", handle, access, value);
}

HBA_STATUS NORDA_GeneratePortWWN(HBA_HANDLE handle, HBA_WWN* name)
{
    *name = Name(30);
    return Called("NORDA_GeneratePortWWN", Text(handle));
}

HBA_STATUS NORDA_CreateVPort(HBA_HANDLE handle, const NORDA_VPORT* port)
{
    return Called("NORDA_CreateVPort", Text(handle) + " " + Checked(port->NodeWWN) + " " + Checked(port->PortWWN) +
                                           " [" + port->SymbolicName + "]");
}

HBA_STATUS NORDA_RemoveVPort(HBA_HANDLE handle, HBA_WWN name)
{
    return Called("NORDA_RemoveVPort", Text(handle) + " " + Checked(name));
}
}
