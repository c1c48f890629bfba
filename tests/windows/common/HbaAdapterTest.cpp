// Opening an adapter, asking how the machine uses its port, closing it, and what the library knows of adapters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "LibraryTrace.h"
#include "ProductKeys.h"
#include "RegistryKeys.h"

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
/// A library that is loaded and initialised, on a machine that debugs nothing, and its trace from then on.
class HbaAdapter : public ::testing::Test
{
protected:
    void Load(const std::string& missingEntry = {})
    {
        library.emplace(missingEntry);
        hba.emplace();
        ASSERT_TRUE(hba->InitHBAAPIMod());
        static_cast<void>(library->TakeJournal());
        trace.emplace();
    }

    static void DebugValue(const std::string& name, DWORD value)
    {
        SetRegistryNumber(kProduct, "Debugging", 1);
        SetRegistryNumber(kDebug, name, value);
    }

    const ScratchRegistryKey registry{kNetworkServices};
    std::optional<HbaLibraryDouble> library;
    std::optional<CHBAAPIInt> hba;
    std::optional<LibraryTrace> trace;
    HBA_HANDLE handle = 0;
    NORDA_FCANDNICPROPERTIES properties{};
};

/// The lines of CHBAAPIInt among those of the helpers that it asks.
std::vector<std::string> WithoutHelperLines(const std::vector<std::string>& messages)
{
    std::vector<std::string> own;
    for (const std::string& message : messages) {
        if (message.find("FCEthernetProperties") != std::string::npos) {
            own.push_back(message);
        }
    }
    return own;
}
} // namespace

using HbaAdapterHandle = HbaAdapter;
using HbaProperties = HbaAdapter;
using HbaCloseHandle = HbaAdapter;
using HbaAdapterAnswers = HbaAdapter;

TEST_F(HbaAdapterHandle, IsWhatTheLibraryGivesForTheName)
{
    Load();
    library->Answer("Handle", "4711");
    library->Answer("JournalMutex", "1");
    EXPECT_TRUE(hba->GetAdapterHandle(kAdapter, handle));
    EXPECT_EQ(handle, 4711u);
    EXPECT_THAT(library->TakeJournal(), ElementsAre(R"(NORDA_GetFCoEControllerHandle [\DEVICE\{0001}] locked)"));
    EXPECT_THAT(trace->Messages(),
                ElementsAre("Entering CHBAAPIInt::GetAdapterHandle", "Succeeded getting Adapter Handle - 4711",
                            "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 1"));
    EXPECT_FALSE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
}

TEST_F(HbaAdapterHandle, IsTracedAsASignedNumber)
{
    Load();
    library->Answer("Handle", "0xFFFFFFFF");
    EXPECT_TRUE(hba->GetAdapterHandle(kAdapter, handle));
    EXPECT_EQ(handle, 0xFFFFFFFFu);
    EXPECT_THAT(trace->Messages(), Contains("Succeeded getting Adapter Handle - -1"));
}

TEST_F(HbaAdapterHandle, ZeroIsAFailureThatLeavesTheCallersHandleAlone)
{
    Load();
    library->Answer("Handle", "0");
    handle = 55;
    EXPECT_FALSE(hba->GetAdapterHandle(kAdapter, handle));
    EXPECT_EQ(handle, 55u);
    EXPECT_THAT(trace->Messages(), ElementsAre("Entering CHBAAPIInt::GetAdapterHandle", "Error Getting Handle",
                                               "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST_F(HbaAdapterHandle, AMissingEntryPointIsTracedUnderAnotherName)
{
    Load("NORDA_GetFCoEControllerHandle");
    EXPECT_FALSE(hba->GetAdapterHandle(kAdapter, handle));
    EXPECT_THAT(trace->Messages(), ElementsAre("Entering CHBAAPIInt::GetAdapterHandle",
                                               "GetProcAddress of NORDA_GetControllerHandle failed with error 127",
                                               "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST_F(HbaAdapterHandle, ANameThatCannotBeConvertedIsAFailure)
{
    Load();
    EXPECT_FALSE(hba->GetAdapterHandle(nullptr, handle));
    EXPECT_THAT(library->TakeJournal(), IsEmpty());
    EXPECT_THAT(trace->Messages(), ElementsAre("Entering CHBAAPIInt::GetAdapterHandle",
                                               "CHBAAPIInt::GetAdapterHandle ConvertTCHARToChar failed",
                                               "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST_F(HbaAdapterHandle, ALongNameIsCutAfter259Bytes)
{
    Load();
    EXPECT_TRUE(hba->GetAdapterHandle(std::wstring(4000, L'n').c_str(), handle));
    EXPECT_THAT(library->TakeJournal(), ElementsAre("NORDA_GetFCoEControllerHandle [" + std::string(259, 'n') + "]"));
}

TEST_F(HbaAdapterHandle, WithoutTheMutexItFailsWithoutExitLine)
{
    Load();
    const NameTakenByAnEvent taken;
    EXPECT_FALSE(hba->GetAdapterHandle(kAdapter, handle));
    EXPECT_THAT(library->TakeJournal(), IsEmpty());
    EXPECT_THAT(trace->Messages(),
                ElementsAre("Entering CHBAAPIInt::GetAdapterHandle", "GetAdapterHandle Failure to get Mutex"));
}

TEST_F(HbaAdapterHandle, AfterDeInitThereIsNone)
{
    Load();
    ASSERT_TRUE(hba->DeInitHBAAPIMod());
    EXPECT_FALSE(hba->GetAdapterHandle(kAdapter, handle));
}

TEST_F(HbaProperties, AreWhatTheLibraryWrites)
{
    Load();
    library->Answer("Flags.7", "2");
    library->Answer("JournalMutex", "1");
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, kNordaRemotePageFile);
    EXPECT_EQ(properties.LibraryOwned[423], 0xA5);
    // Reading takes no mutex.
    EXPECT_THAT(library->TakeJournal(), ElementsAre("NORDA_GetFCAndNICProperties 7 free"));
    EXPECT_THAT(WithoutHelperLines(trace->Messages()),
                ElementsAre("Entering CHBAAPIInt::GetFCEthernetProperties", "GetFCEthernetProperties Succeeded",
                            "Exiting CHBAAPIInt::GetFCEthernetProperties"));
}

TEST_F(HbaProperties, TheDebugValuesAreAskedForAfterTheLibraryAndBeforeTheExitLine)
{
    Load();
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    const std::vector<std::string> once = {"Enterning CHelper::IsSettingDebugable()",
                                           "Enterning CHelper::IsDebugEnbled()",
                                           "IsDebugEnbled() - Unable to open the TERN registry key - exiting",
                                           "Exiting CHelper::IsDebugEnbled()",
                                           "IsSettingDebugable() - debugging is not turned on - exiting",
                                           "Exiting CHelper::IsDebugEnbled()"};
    std::vector<std::string> expected = {"Entering CHBAAPIInt::GetFCEthernetProperties",
                                         "GetFCEthernetProperties Succeeded"};
    expected.insert(expected.end(), once.begin(), once.end());
    expected.insert(expected.end(), once.begin(), once.end());
    expected.emplace_back("Exiting CHBAAPIInt::GetFCEthernetProperties");
    EXPECT_EQ(trace->Messages(), expected);
}

TEST_F(HbaProperties, AStatusOtherThanSuccessIsAFailure)
{
    Load();
    library->Answer("Status.NORDA_GetFCAndNICProperties", "3");
    EXPECT_FALSE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_THAT(WithoutHelperLines(trace->Messages()),
                ElementsAre("Entering CHBAAPIInt::GetFCEthernetProperties", "GetFCEthernetProperties failed",
                            "Exiting CHBAAPIInt::GetFCEthernetProperties"));
}

TEST_F(HbaProperties, AMissingEntryPointIsNoFailureAndLeavesTheRecordAlone)
{
    Load("NORDA_GetFCAndNICProperties");
    properties.Flags = 4;
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 4u);
    EXPECT_THAT(WithoutHelperLines(trace->Messages()), ElementsAre("Entering CHBAAPIInt::GetFCEthernetProperties",
                                                                   "GetFCEthernetProperties GetProcAddress failed",
                                                                   "Exiting CHBAAPIInt::GetFCEthernetProperties"));
}

TEST_F(HbaProperties, WithoutALoadedLibraryItIsAsIfTheEntryPointWereMissing)
{
    hba.emplace();
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 0u);
}

TEST_F(HbaProperties, ARecordThatTheLibraryDoesNotTouchStaysAsItWas)
{
    Load();
    library->Answer("LeaveProperties", "1");
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 0u);
}

TEST_F(HbaProperties, NothingAfterTheRecordIsChanged)
{
    Load();
    DebugValue("FcoE_RemoteBooted", 1);
    struct
    {
        NORDA_FCANDNICPROPERTIES record;
        unsigned char after[16];
    } guarded;
    std::memset(&guarded, 0x5A, sizeof(guarded));
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &guarded.record));
    EXPECT_EQ(guarded.record.Flags, kNordaRemoteBooted);
    EXPECT_THAT(guarded.after, ::testing::Each(0x5A));
}

TEST_F(HbaProperties, WithoutARecordTheLibraryIsNotAskedAndTheDebugValuesWriteNowhere)
{
    Load();
    DebugValue("FcoE_RemoteBooted", 1);
    DebugValue("FcoE_RemotePageFile", 1);
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, nullptr));
    EXPECT_THAT(library->TakeJournal(), IsEmpty());
    EXPECT_THAT(WithoutHelperLines(trace->Messages()), ElementsAre("Entering CHBAAPIInt::GetFCEthernetProperties",
                                                                   "Exiting CHBAAPIInt::GetFCEthernetProperties"));
}

TEST_F(HbaProperties, TheDebugValueRemoteBootedSetsItsFlagWhateverTheLibraryReturned)
{
    Load();
    DebugValue("FcoE_RemoteBooted", 1);
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, kNordaRemoteBooted);

    library->Answer("Status.NORDA_GetFCAndNICProperties", "3");
    library->Answer("Flags", "2");
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, kNordaRemoteBooted | kNordaRemotePageFile);
    EXPECT_THAT(trace->Messages(), Contains("GetFCEthernetProperties failed"));
}

TEST_F(HbaProperties, TheDebugValueRemotePageFileSetsItsFlag)
{
    Load();
    DebugValue("FcoE_RemotePageFile", 1);
    library->Answer("Status.NORDA_GetFCAndNICProperties", "3");
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, kNordaRemotePageFile);
}

TEST_F(HbaProperties, ADebugValueOtherThanOneChangesNothing)
{
    Load();
    DebugValue("FcoE_RemoteBooted", 2);
    DebugValue("FcoE_RemotePageFile", 0);
    library->Answer("Status.NORDA_GetFCAndNICProperties", "3");
    EXPECT_FALSE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 0u);
}

TEST_F(HbaProperties, DebugValuesDoNotCountWhileDebuggingIsOff)
{
    Load();
    DebugValue("FcoE_RemoteBooted", 1);
    SetRegistryNumber(kProduct, "Debugging", 0);
    EXPECT_TRUE(hba->GetFCEthernetProperties(7, &properties));
    EXPECT_EQ(properties.Flags, 0u);
}

TEST_F(HbaCloseHandle, TellsTheLibraryAndSetsTheHandleToZeroWithoutTheMutex)
{
    Load();
    library->Answer("JournalMutex", "1");
    handle = 7;
    EXPECT_TRUE(hba->CloseAdapHandle(handle));
    EXPECT_EQ(handle, 0u);
    EXPECT_THAT(library->TakeJournal(), ElementsAre("CloseAdapter 7 free"));
    EXPECT_THAT(trace->Messages(), ElementsAre("Entering CHBAAPIInt::CloseAdapHandle",
                                               "CHBAAPIInt::CloseAdapHandle closing adapter handle - 7",
                                               "Exiting CHBAAPIInt::CloseAdapHandle"));
}

TEST_F(HbaCloseHandle, AfterDeInitTheUnloadedLibraryIsNotCalled)
{
    Load();
    ASSERT_TRUE(hba->DeInitHBAAPIMod());
    static_cast<void>(library->TakeJournal());
    handle = 7;
    EXPECT_TRUE(hba->CloseAdapHandle(handle));
    EXPECT_EQ(handle, 0u);
    EXPECT_THAT(library->TakeJournal(), testing::IsEmpty());
}

TEST_F(HbaCloseHandle, AnEmptySlotIsNoFailureAndNoCrash)
{
    Load("HBA_RegisterLibrary");
    ASSERT_TRUE(hba->GetAdapterHandle(kAdapter, handle));
    trace.emplace();
    EXPECT_TRUE(hba->CloseAdapHandle(handle));
    EXPECT_EQ(handle, 0u);
    EXPECT_THAT(trace->Messages(), ElementsAre("Entering CHBAAPIInt::CloseAdapHandle",
                                               "CHBAAPIInt::CloseAdapHandle closing adapter handle - 7",
                                               "Exiting CHBAAPIInt::CloseAdapHandle"));

    ASSERT_TRUE(hba->DeInitHBAAPIMod());
    handle = 7;
    EXPECT_TRUE(hba->CloseAdapHandle(handle));
    EXPECT_EQ(handle, 0u);
}

TEST_F(HbaAdapterAnswers, TheNumberOfAdapters)
{
    Load();
    library->Answer("Adapters", "12");
    HBA_UINT32 count = 0;
    EXPECT_TRUE(hba->GetNumberOfHBAAdapters(count));
    EXPECT_EQ(count, 12u);
}

TEST_F(HbaAdapterAnswers, ANameMayFillAllOf256BytesWithoutTerminator)
{
    Load();
    COrvString name;
    EXPECT_TRUE(hba->GetAdapterName(0, name));
    EXPECT_EQ(name.Text(), "adapter" + std::string(249, 'x'));
}

TEST_F(HbaAdapterAnswers, ANameThatCannotBeHadLeavesTheCallersAlone)
{
    Load();
    library->Answer("Status.GetAdapterName", "6");
    COrvString name("before");
    EXPECT_FALSE(hba->GetAdapterName(9, name));
    EXPECT_EQ(name.Text(), "before");
}

TEST_F(HbaAdapterAnswers, AnAdapterOpenedByItsNameIsClosedLikeAnyOther)
{
    Load();
    library->Answer("Handle.one", "21");
    EXPECT_TRUE(hba->GetAdapHandleBasedOnAdapName("one", handle));
    EXPECT_EQ(handle, 21u);
    EXPECT_TRUE(hba->CloseAdapHandle(handle));
    EXPECT_THAT(library->TakeJournal(), ElementsAre("OpenAdapter [one]", "CloseAdapter 21"));

    library->Answer("Handle", "0");
    handle = 55;
    EXPECT_FALSE(hba->GetAdapHandleBasedOnAdapName("two", handle));
    EXPECT_EQ(handle, 55u);
}

TEST_F(HbaAdapterAnswers, RecordsAreHandedOverOnSuccess)
{
    Load();
    HBA_ADAPTERATTRIBUTES adapter{};
    EXPECT_TRUE(hba->GetAdapterAtrributes(7, adapter));
    EXPECT_STREQ(adapter.Manufacturer, "a maker");
    EXPECT_STREQ(adapter.DriverName, "a driver");
    EXPECT_EQ(adapter.NumberOfPorts, 2u);
    HBA_PORTATTRIBUTES port{};
    EXPECT_TRUE(hba->GetAdapterPortAttributes(7, 0, port));
    EXPECT_EQ(port.PortWWN.wwn[7], 9);
    EXPECT_EQ(port.NumberofDiscoveredPorts, 5u);
    HBA_PORTSTATISTICS statistics{};
    EXPECT_TRUE(hba->GetPortStatistics(7, 0, statistics));
    EXPECT_EQ(statistics.SecondsSinceLastReset, 60);
    EXPECT_EQ(statistics.InvalidCRCCount, -1);
}

TEST_F(HbaAdapterAnswers, RecordsStayAsTheyWereOnFailure)
{
    Load();
    library->Answer("Status.GetAdapterAttributes", "1");
    library->Answer("Status.GetAdapterPortAttributes", "1");
    library->Answer("Status.GetPortStatistics", "1");
    HBA_ADAPTERATTRIBUTES adapter{};
    EXPECT_FALSE(hba->GetAdapterAtrributes(7, adapter));
    EXPECT_STREQ(adapter.Manufacturer, "");
    HBA_PORTATTRIBUTES port{};
    EXPECT_FALSE(hba->GetAdapterPortAttributes(7, 0, port));
    EXPECT_EQ(port.NumberofDiscoveredPorts, 0u);
    HBA_PORTSTATISTICS statistics{};
    EXPECT_FALSE(hba->GetPortStatistics(7, 0, statistics));
    EXPECT_EQ(statistics.SecondsSinceLastReset, 0);
}
