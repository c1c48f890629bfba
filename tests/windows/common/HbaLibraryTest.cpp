// Loading, initialising and unloading the interface library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "LibraryTrace.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
constexpr char kEntering[] = "Entering CHBAAPIInt::InitHBAAPIMod";
constexpr char kExitingWithSuccess[] = "Exiting CHBAAPIInt::InitHBAAPIMod bRet = 1";
constexpr char kExitingWithFailure[] = "Exiting CHBAAPIInt::InitHBAAPIMod bRet = 0";
constexpr char kEnteringDeInit[] = "Entering CHBAAPIInt::DeInitHBAAPIMod";
constexpr char kExitingDeInit[] = "Exiting CHBAAPIInt::DeInitHBAAPIMod";
} // namespace

TEST(HbaLibrary, AnObjectThatIsNeverInitialisedTracesItsLifeAndUnloadsNothing)
{
    const LibraryTrace trace;
    {
        const CHBAAPIInt hba;
    }
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CHBAAPIInt::CHBAAPIInt", "Exiting CHBAAPIInt::CHBAAPIInt",
                                              "Entering CHBAAPIInt::~CHBAAPIInt", kEnteringDeInit, kExitingDeInit,
                                              "Exiting CHBAAPIInt::~CHBAAPIInt"));
}

TEST(HbaLibrary, WithoutTheLibraryInitFailsWithTheSystemErrorAndDeInitStillSucceeds)
{
    ASSERT_FALSE(FileExists(TestFile("nordhapi.dll")));
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(hba.InitHBAAPIMod());
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, "LoadLibrary of nordhapi.dll failed - 126",
                                              kExitingWithFailure, kEnteringDeInit, kExitingDeInit));
}

TEST(HbaLibrary, InitInitialisesTheLibraryThenHasItFillTheTableUnderTheMutex)
{
    const HbaLibraryDouble library;
    library.Answer("JournalMutex", "1");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.InitHBAAPIMod());
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary locked", "HBA_RegisterLibrary locked"));
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, kExitingWithSuccess));
    EXPECT_FALSE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
}

TEST(HbaLibrary, ALibraryThatCannotBeInitialisedStaysLoadedUntilDeInit)
{
    const HbaLibraryDouble library;
    library.Answer("Status.NORDA_InitializeLibrary", "5");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(hba.InitHBAAPIMod());
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary"));
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre(kEntering, "CHBAAPIInt::InitHBAAPIMod InitializeLibrary failed - Status - 5", kExitingWithFailure));
    EXPECT_TRUE(IsHbaLibraryLoaded());
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_FALSE(IsHbaLibraryLoaded());
}

TEST(HbaLibrary, ALibraryWithoutInitialiseEntryGivesInitSuccessButNoHandleAndNoReason)
{
    const HbaLibraryDouble library("NORDA_InitializeLibrary");
    CHBAAPIInt hba;
    EXPECT_TRUE(hba.InitHBAAPIMod());
    EXPECT_THAT(library.TakeJournal(), ElementsAre("HBA_RegisterLibrary"));
    const LibraryTrace trace;
    HBA_HANDLE handle = 55;
    EXPECT_FALSE(hba.GetAdapterHandle(kAdapter, handle));
    EXPECT_EQ(handle, 55u);
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering CHBAAPIInt::GetAdapterHandle", "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 0"));
}

TEST(HbaLibrary, ALibraryThatFillsNoTableGivesInitSuccessAndEmptySlots)
{
    const HbaLibraryDouble library("HBA_RegisterLibrary");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.InitHBAAPIMod());
    HBA_UINT32 count = 0;
    EXPECT_FALSE(hba.GetNumberOfHBAAdapters(count));
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, kExitingWithSuccess, "Entering CHBAAPIInt::GetNumberOfHBAAdapters",
                            "CHBAAPIInt::GetNumberOfHBAAdapters table entry is null",
                            "Exiting CHBAAPIInt::GetNumberOfHBAAdapters"));
}

TEST(HbaLibrary, AFailureToFillTheTableIsNotNoticed)
{
    const HbaLibraryDouble library;
    library.Answer("Status.HBA_RegisterLibrary", "1");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.InitHBAAPIMod());
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, kExitingWithSuccess));
}

TEST(HbaLibrary, WithoutTheMutexInitFailsAtOnceAndLoadsNothing)
{
    const HbaLibraryDouble library;
    const NameTakenByAnEvent taken;
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(hba.InitHBAAPIMod());
    EXPECT_FALSE(hba.InitHBAAPIMod(kAdapter, true));
    EXPECT_FALSE(IsHbaLibraryLoaded());
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, "CHBAAPIInt::InitHBAAPIMod failed to acquire Mutex", kEntering,
                                              "CHBAAPIInt::InitHBAAPIMod failed to acquire Mutex"));
}

TEST(HbaLibrary, WithoutTheMutexDeInitStillUnloads)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const NameTakenByAnEvent taken;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_FALSE(IsHbaLibraryLoaded());
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEnteringDeInit, "CHBAAPIInt::DeInitHBAAPIMod Failed to acquire Mutex", kExitingDeInit));
}

TEST(HbaLibrary, DeInitMayRunAgain)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const LibraryTrace trace;
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_THAT(trace.Messages(), ElementsAre(kEnteringDeInit, kExitingDeInit, kEnteringDeInit, kExitingDeInit));
    EXPECT_FALSE(IsHbaLibraryLoaded());
}

TEST(HbaLibrary, TheDestructorUnloadsTheLibrary)
{
    const HbaLibraryDouble library;
    {
        CHBAAPIInt hba;
        ASSERT_TRUE(hba.InitHBAAPIMod());
        EXPECT_TRUE(IsHbaLibraryLoaded());
    }
    EXPECT_FALSE(IsHbaLibraryLoaded());
}

TEST(HbaLibrary, InitCalledTwiceIsUndoneByOneDeInit)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    EXPECT_TRUE(hba.InitHBAAPIMod());
    EXPECT_TRUE(hba.InitHBAAPIMod());
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_FALSE(IsHbaLibraryLoaded());
}

TEST(HbaLibrary, AnInitialisationCountsForTheLifeOfTheObject)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    ASSERT_TRUE(hba.DeInitHBAAPIMod());
    HBA_HANDLE handle = 0;
    EXPECT_FALSE(hba.GetAdapterHandle(kAdapter, handle)) << "nothing is loaded";
    library.Answer("Status.NORDA_InitializeLibrary", "5");
    EXPECT_FALSE(hba.InitHBAAPIMod());
    EXPECT_TRUE(hba.GetAdapterHandle(kAdapter, handle));
    EXPECT_NE(handle, 0u);
    CHBAAPIInt another;
    EXPECT_FALSE(another.InitHBAAPIMod());
    EXPECT_FALSE(another.GetAdapterHandle(kAdapter, handle));
}

TEST(HbaLibraryForAdapter, WithoutAnEthernetInstanceNothingIsLoaded)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    const LibraryTrace trace;
    NORDA_FCOECONTROLLERINFO info{};
    info.PortWWN.wwn[0] = 1;
    EXPECT_FALSE(hba.InitHBAAPIMod(kAdapter, false, &info));
    EXPECT_EQ(info.PortWWN.wwn[0], 0);
    EXPECT_FALSE(IsHbaLibraryLoaded());
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, "CHBAAPIInt::InitHBAAPIMod bEthInst = false hence returning",
                                              kExitingWithFailure));
}

TEST(HbaLibraryForAdapter, TheLibraryIsAskedAboutTheAdapterUnderTheMutex)
{
    const HbaLibraryDouble library;
    library.Answer("JournalMutex", "1");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    NORDA_FCOECONTROLLERINFO info{};
    EXPECT_TRUE(hba.InitHBAAPIMod(kAdapter, true, &info));
    EXPECT_EQ(info.PortWWN.wwn[7], 8);
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary locked", "HBA_RegisterLibrary locked",
                                                   R"(NORDA_GetFCoEControllerInfo [\DEVICE\{0001}] locked)"));
    EXPECT_THAT(trace.Messages(), ElementsAre(kEntering, kExitingWithSuccess));
}

TEST(HbaLibraryForAdapter, WithoutTheLibraryItFails)
{
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(hba.InitHBAAPIMod(kAdapter, true));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, "LoadLibrary of nordhapi.dll failed - 126", kExitingWithFailure));
}

TEST(HbaLibraryForAdapter, ALibraryThatCannotBeInitialisedIsNotAskedAboutTheAdapter)
{
    const HbaLibraryDouble library;
    library.Answer("Status.NORDA_InitializeLibrary", "5");
    CHBAAPIInt hba;
    EXPECT_FALSE(hba.InitHBAAPIMod(kAdapter, true));
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary"));
}

TEST(HbaLibraryForAdapter, WhatTheLibraryCannotTellAboutTheAdapterDoesNotChangeTheResult)
{
    const HbaLibraryDouble library;
    library.Answer("Status.NORDA_GetFCoEControllerInfo", "1");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    NORDA_FCOECONTROLLERINFO info{};
    EXPECT_TRUE(hba.InitHBAAPIMod(kAdapter, true, &info));
    EXPECT_EQ(info.PortWWN.wwn[7], 0);
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, "CHBAAPIInt::InitHBAAPIMod GetFCoEControllerInfo failed - Status - 1",
                            kExitingWithSuccess));
}

TEST(HbaLibraryForAdapter, ALibraryWithoutThisEntryPointDoesNotChangeTheResult)
{
    const HbaLibraryDouble library("NORDA_GetFCoEControllerInfo");
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.InitHBAAPIMod(kAdapter, true));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, "GetProcAddress of NORDA_GetFCoEControllerInfo failed with error 127",
                            kExitingWithSuccess));
}

TEST(HbaLibraryForAdapter, ANullNameIsNotPassedOn)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_TRUE(hba.InitHBAAPIMod(nullptr, true));
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary", "HBA_RegisterLibrary"));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, "CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed", kExitingWithSuccess));
}
