// An adapter's targets, their logical units, and the networks it belongs to.
#include <span>
#include <vector>

#include "HbaApiInt.h"
#include "HbaOperation.h"

namespace {
bool HaveRoom(const HbaScsiBuffers& buffers)
{
    return !buffers.response.empty() && !buffers.sense.empty();
}

HBA_UINT32 Bytes(std::span<HBA_UINT8> buffer)
{
    return static_cast<HBA_UINT32>(buffer.size());
}

constexpr char kNoRoom[] = "needs response and sense buffers";
} // namespace

bool CHBAAPIInt::GetTargetsInfo(HBA_HANDLE handle, HBA_FCPTARGETMAPPING* mapping, bool& moreData)
{
    const CHBAAPIOperation operation("GetTargetsInfo");
    moreData = false;
    const auto getMapping = operation.Slot(m_bEntryPtsInited, m_entryPoints.GetFcpTargetMappingHandler);
    if (getMapping == nullptr) {
        return false;
    }
    if (mapping == nullptr) {
        return operation.Refuse("needs a mapping");
    }
    const HBA_STATUS status = getMapping(handle, mapping);
    if (status == HBA_STATUS_ERROR_MORE_DATA) {
        moreData = true;
        return operation.Refuse("more data available");
    }
    return operation.Succeeded(status);
}

bool CHBAAPIInt::GetTargetList(HBA_HANDLE handle, std::vector<HBA_WWN>& targets)
{
    const CHBAAPIOperation operation("GetTargetList");
    return operation.AskList(targets, operation.Entry<NordaGetPortListFn>(m_hModule.get(), L"NORDA_GetTargetList"),
                             handle);
}

bool CHBAAPIInt::RefreshTargetInfo(HBA_HANDLE handle)
{
    const CHBAAPIOperation operation("RefreshTargetInfo");
    const auto rescan = operation.Entry<NordaRescanScsiBusFn>(m_hModule.get(), L"NORDA_RescanScsiBus");
    return rescan != nullptr && operation.Succeeded(rescan(handle));
}

bool CHBAAPIInt::RetrieveLUNCapacity(HBA_HANDLE handle, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers)
{
    const CHBAAPIOperation operation("RetrieveLUNCapacity");
    const auto send = operation.Slot(m_bEntryPtsInited, m_entryPoints.SendReadCapacityHandler);
    if (send == nullptr) {
        return false;
    }
    if (!HaveRoom(buffers)) {
        return operation.Refuse(kNoRoom);
    }
    return operation.Succeeded(send(handle, unit.port, unit.lun, buffers.response.data(), Bytes(buffers.response),
                                    buffers.sense.data(), Bytes(buffers.sense)));
}

bool CHBAAPIInt::RetrieveLUNCapacity16(HBA_HANDLE handle, const HbaLogicalUnit& unit, const HbaScsiBuffers& buffers)
{
    const CHBAAPIOperation operation("RetrieveLUNCapacity16");
    const auto send = operation.Entry<NordaSendReadCapacity16Fn>(m_hModule.get(), L"NORDA_SendReadCapacity16");
    if (send == nullptr) {
        return false;
    }
    if (!HaveRoom(buffers)) {
        return operation.Refuse(kNoRoom);
    }
    return operation.Succeeded(send(handle, unit.port, unit.lun, buffers.response.data(), Bytes(buffers.response),
                                    buffers.sense.data(), Bytes(buffers.sense)));
}

bool CHBAAPIInt::RetrieveSCSIInfo(HBA_HANDLE handle, const HbaLogicalUnit& unit, bool vitalProductData,
                                  HBA_UINT8 pageCode, const HbaScsiBuffers& buffers)
{
    const CHBAAPIOperation operation("RetrieveSCSIInfo");
    const auto send = operation.Slot(m_bEntryPtsInited, m_entryPoints.SendScsiInquiryHandler);
    if (send == nullptr) {
        return false;
    }
    if (!HaveRoom(buffers)) {
        return operation.Refuse(kNoRoom);
    }
    const HBA_UINT8 asksForPage = vitalProductData ? 1 : 0;
    return operation.Succeeded(send(handle, unit.port, unit.lun, asksForPage, pageCode, buffers.response.data(),
                                    Bytes(buffers.response), buffers.sense.data(), Bytes(buffers.sense)));
}

bool CHBAAPIInt::GetVLANList(HBA_HANDLE handle, std::vector<HBA_UINT16>& vlanIds)
{
    const CHBAAPIOperation operation("GetVLANList");
    return operation.AskList(vlanIds, operation.Entry<NordaGetVlanIdListFn>(m_hModule.get(), L"NORDA_GetVlanIdList"),
                             handle);
}
