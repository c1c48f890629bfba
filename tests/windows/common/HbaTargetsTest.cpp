// Targets, logical units, lists and settings: what comes back from the library and what happens to bad answers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>

#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "HbaOperations.h"
#include "LibraryTrace.h"

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class HbaInitialised : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(hba.InitHBAAPIMod());
        static_cast<void>(library.TakeJournal());
    }
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
};

std::vector<int> LastBytes(const std::vector<HBA_WWN>& names)
{
    std::vector<int> bytes;
    for (const HBA_WWN& name : names) {
        bytes.push_back(name.wwn[7]);
    }
    return bytes;
}
} // namespace

using HbaTargets = HbaInitialised;
using HbaLists = HbaInitialised;
using HbaSettings = HbaInitialised;
using HbaVports = HbaInitialised;

TEST_F(HbaTargets, MoreDataIsReportedApartFromOtherFailures)
{
    library.Answer("Mappings", "3");
    const LibraryTrace trace;
    HBA_FCPTARGETMAPPING mapping{};
    mapping.NumberOfEntries = 1;
    bool moreData = false;
    EXPECT_FALSE(hba.GetTargetsInfo(7, &mapping, moreData));
    EXPECT_TRUE(moreData);
    EXPECT_EQ(mapping.NumberOfEntries, 3u);
    EXPECT_THAT(trace.Messages(), Contains("CHBAAPIInt::GetTargetsInfo more data available"));

    library.Answer("Mappings", "1");
    library.Answer("Status.GetFcpTargetMapping", "3");
    EXPECT_FALSE(hba.GetTargetsInfo(7, &mapping, moreData));
    EXPECT_FALSE(moreData);
}

TEST_F(HbaTargets, EnoughRoomTakesAllMappings)
{
    library.Answer("Mappings", "3");
    alignas(HBA_FCPTARGETMAPPING) std::array<std::byte, sizeof(HBA_FCPTARGETMAPPING) + 2 * sizeof(HBA_FCPSCSIENTRY)>
        room{};
    auto* mapping = reinterpret_cast<HBA_FCPTARGETMAPPING*>(room.data());
    mapping->NumberOfEntries = 3;
    bool moreData = true;
    EXPECT_TRUE(hba.GetTargetsInfo(7, mapping, moreData));
    EXPECT_FALSE(moreData);
    EXPECT_EQ(mapping->NumberOfEntries, 3u);
    HBA_FCPSCSIENTRY last{};
    std::memcpy(&last, room.data() + offsetof(HBA_FCPTARGETMAPPING, entry) + 2 * sizeof(last), sizeof(last));
    EXPECT_EQ(last.ScsiId.ScsiOSLun, 102u);
    EXPECT_EQ(last.FcpId.PortWWN.wwn[7], 2);
}

TEST_F(HbaTargets, WithoutAMappingTheLibraryIsNotAsked)
{
    const LibraryTrace trace;
    bool moreData = true;
    EXPECT_FALSE(hba.GetTargetsInfo(7, nullptr, moreData));
    EXPECT_FALSE(moreData);
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering CHBAAPIInt::GetTargetsInfo", "CHBAAPIInt::GetTargetsInfo needs a mapping",
                            "Exiting CHBAAPIInt::GetTargetsInfo"));
}

TEST_F(HbaTargets, CommandsFillTheBuffersAndNothingElse)
{
    const auto check = [&](auto command) {
        std::array<HBA_UINT8, 10> response{};
        std::array<HBA_UINT8, 10> sense{};
        EXPECT_TRUE(command(HbaScsiBuffers{std::span(response).first(8), std::span(sense).first(4)}));
        EXPECT_THAT(std::span(response).first(8), Each('R'));
        EXPECT_THAT(std::span(response).last(2), Each(0));
        EXPECT_THAT(std::span(sense).first(4), Each('S'));
        EXPECT_THAT(std::span(sense).last(6), Each(0));
    };
    const HbaLogicalUnit unit{kTestPort, 1};
    check([&](const HbaScsiBuffers& buffers) { return hba.RetrieveLUNCapacity(7, unit, buffers); });
    check([&](const HbaScsiBuffers& buffers) { return hba.RetrieveLUNCapacity16(7, unit, buffers); });
    check([&](const HbaScsiBuffers& buffers) { return hba.RetrieveSCSIInfo(7, unit, false, 0, buffers); });
}

TEST_F(HbaTargets, CommandsNeedResponseAndSenseBuffers)
{
    const LibraryTrace trace;
    std::array<HBA_UINT8, 8> room{};
    const HbaLogicalUnit unit{kTestPort, 1};
    for (const HbaScsiBuffers& buffers : {HbaScsiBuffers{room, {}}, HbaScsiBuffers{{}, room}, HbaScsiBuffers{}}) {
        EXPECT_FALSE(hba.RetrieveLUNCapacity(7, unit, buffers));
        EXPECT_FALSE(hba.RetrieveLUNCapacity16(7, unit, buffers));
        EXPECT_FALSE(hba.RetrieveSCSIInfo(7, unit, false, 0, buffers));
    }
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(),
                Contains("CHBAAPIInt::RetrieveLUNCapacity needs response and sense buffers").Times(3));
    EXPECT_THAT(trace.Messages(),
                Contains("CHBAAPIInt::RetrieveLUNCapacity16 needs response and sense buffers").Times(3));
    EXPECT_THAT(trace.Messages(), Contains("CHBAAPIInt::RetrieveSCSIInfo needs response and sense buffers").Times(3));
}

TEST_F(HbaTargets, ADeviceThatRefusesLeavesItsReasonInTheSenseBuffer)
{
    library.Answer("Status.SendReadCapacity", "9");
    std::array<HBA_UINT8, 8> response{};
    std::array<HBA_UINT8, 4> sense{};
    EXPECT_FALSE(hba.RetrieveLUNCapacity(7, HbaLogicalUnit{kTestPort, 1}, HbaScsiBuffers{response, sense}));
    EXPECT_THAT(sense, Each('S'));
}

TEST_F(HbaLists, HoldWhatTheLibraryHas)
{
    std::vector<HBA_WWN> names;
    EXPECT_TRUE(hba.GetTargetList(7, names));
    EXPECT_THAT(LastBytes(names), ElementsAre(10, 11, 12));
    EXPECT_TRUE(hba.GetVports(7, names));
    EXPECT_THAT(LastBytes(names), ElementsAre(20, 21, 22));
    std::vector<HBA_UINT16> ids;
    EXPECT_TRUE(hba.GetVLANList(7, ids));
    EXPECT_THAT(ids, ElementsAre(1000, 1001, 1002));
}

TEST_F(HbaLists, AnEmptyListIsASuccessAndIsNotFetched)
{
    library.Answer("Count.NORDA_GetTargetList", "0");
    std::vector<HBA_WWN> names(1);
    EXPECT_TRUE(hba.GetTargetList(7, names));
    EXPECT_THAT(names, IsEmpty());
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_GetTargetList 7 count"));
}

TEST_F(HbaLists, AListThatGrowsBetweenCountAndFetchIsCut)
{
    library.Answer("CountThen.NORDA_GetTargetList", "9");
    std::vector<HBA_WWN> names;
    EXPECT_TRUE(hba.GetTargetList(7, names));
    EXPECT_THAT(LastBytes(names), ElementsAre(10, 11, 12));
}

TEST_F(HbaLists, AListThatShrinksBetweenCountAndFetchEndsEarlier)
{
    library.Answer("CountThen.NORDA_GetTargetList", "1");
    std::vector<HBA_WWN> names;
    EXPECT_TRUE(hba.GetTargetList(7, names));
    EXPECT_THAT(LastBytes(names), ElementsAre(10));
}

TEST_F(HbaLists, AnImpossibleNumberOfEntriesIsAFailure)
{
    const LibraryTrace trace;
    std::vector<HBA_UINT16> ids = {1};
    for (const char* count : {"0x10001", "0xFFFFFFFF"}) {
        library.Answer("Count.NORDA_GetVlanIdList", count);
        EXPECT_FALSE(hba.GetVLANList(7, ids));
        EXPECT_THAT(ids, ElementsAre(1));
    }
    EXPECT_THAT(trace.Messages(), Contains("CHBAAPIInt::GetVLANList got a list that is too long").Times(2));
    library.Answer("Count.NORDA_GetVlanIdList", "0x10000");
    EXPECT_TRUE(hba.GetVLANList(7, ids));
    EXPECT_EQ(ids.size(), 0x10000u);
}

TEST_F(HbaLists, StayAsTheyWereOnFailure)
{
    library.Answer("Status.NORDA_GetTargetList", "3");
    std::vector<HBA_WWN> names(1);
    EXPECT_FALSE(hba.GetTargetList(7, names));
    EXPECT_EQ(names.size(), 1u);
}

TEST_F(HbaLists, MoreDataIsNotAFailureWhenOnlyTheNumberIsRequested)
{
    library.Answer("Status.NORDA_GetFCPortList", "7");
    HBA_UINT32 count = 0;
    EXPECT_TRUE(hba.GetVportCount(7, count));
    EXPECT_EQ(count, 3u);
    std::vector<HBA_WWN> ports;
    EXPECT_FALSE(hba.GetVports(7, ports));
}

TEST_F(HbaSettings, ReadWhatTheAdapterHas)
{
    library.Answer("Value.NORDA_GetSet_LinkTimeOut", "30");
    library.Answer("Value.NORDA_GetSet_DeviceQDepth", "64");
    library.Answer("Value.NORDA_GetSet_DriverLogging", "2");
    HBA_UINT32 value = 11;
    EXPECT_TRUE(hba.GetSetLinkTimeoutValue(7, NordaAccess::Get, value));
    EXPECT_EQ(value, 30u);
    EXPECT_TRUE(hba.GetSetDeviceQDepth(7, NordaAccess::Get, value));
    EXPECT_EQ(value, 64u);
    EXPECT_TRUE(hba.GetSetDriverLogging(7, NordaAccess::Get, value));
    EXPECT_EQ(value, 2u);
    EXPECT_THAT(library.TakeJournal(),
                ElementsAre("NORDA_GetSet_LinkTimeOut 7 get, given 0", "NORDA_GetSet_DeviceQDepth 7 get, given 0",
                            "NORDA_GetSet_DriverLogging 7 get, given 0"));
}

TEST_F(HbaSettings, SettingLeavesTheCallersValueAlone)
{
    HBA_UINT32 value = 30;
    EXPECT_TRUE(hba.GetSetLinkTimeoutValue(7, NordaAccess::Set, value));
    EXPECT_EQ(value, 30u);
}

TEST_F(HbaSettings, AFailedReadLeavesTheCallersValueAlone)
{
    library.Answer("Value.NORDA_GetSet_DeviceQDepth", "64");
    library.Answer("Status.NORDA_GetSet_DeviceQDepth", "2");
    HBA_UINT32 value = 11;
    EXPECT_FALSE(hba.GetSetDeviceQDepth(7, NordaAccess::Get, value));
    EXPECT_EQ(value, 11u);
}

TEST_F(HbaVports, ANewNameIsHandedOverOnSuccessOnly)
{
    HBA_WWN name{};
    EXPECT_TRUE(hba.GenerateVportWwpn(7, name));
    EXPECT_EQ(name.wwn[7], 30);
    library.Answer("Status.NORDA_GeneratePortWWN", "1");
    HBA_WWN other{};
    EXPECT_FALSE(hba.GenerateVportWwpn(7, other));
    EXPECT_EQ(other.wwn[7], 0);
}

TEST_F(HbaVports, TheirNumberIsHandedOverOnSuccessOnly)
{
    library.Answer("Count.NORDA_GetFCPortList", "5");
    HBA_UINT32 count = 0;
    EXPECT_TRUE(hba.GetVportCount(7, count));
    EXPECT_EQ(count, 5u);
    library.Answer("Status.NORDA_GetFCPortList", "1");
    count = 11;
    EXPECT_FALSE(hba.GetVportCount(7, count));
    EXPECT_EQ(count, 11u);
}
