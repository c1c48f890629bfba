// Loading, initialising and unloading the interface library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

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

struct InitRow
{
    const char* name;
    const char* missingEntry; ///< of the library; empty when it is complete
    const char* answer;       ///< the question that the library answers otherwise, and how
    const char* value;
    std::optional<const wchar_t*> adapter; ///< that the library is asked about, if any
    bool succeeds;
    std::vector<std::string> journal;
    const char* reason = nullptr; ///< the line between entry and exit
    uint8_t lastOfPortName = 0;
};

class HbaLibraryInit : public testing::TestWithParam<InitRow>
{
};
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

TEST_P(HbaLibraryInit, AnswersTracesAndStaysLoadedUntilDeInit)
{
    const InitRow& row = GetParam();
    const HbaLibraryDouble library(row.missingEntry);
    if (*row.answer != '\0') {
        library.Answer(row.answer, row.value);
    }
    CHBAAPIInt hba;
    const LibraryTrace trace;
    NORDA_FCOECONTROLLERINFO info{};
    EXPECT_EQ(row.adapter ? hba.InitHBAAPIMod(*row.adapter, true, &info) : hba.InitHBAAPIMod(), row.succeeds);
    std::vector<std::string> lines = {kEntering, row.succeeds ? kExitingWithSuccess : kExitingWithFailure};
    if (row.reason != nullptr) {
        lines.insert(lines.begin() + 1, row.reason);
    }
    EXPECT_EQ(trace.Messages(), lines);
    EXPECT_EQ(library.TakeJournal(), row.journal);
    EXPECT_EQ(info.PortWWN.wwn[7], row.lastOfPortName);
    EXPECT_FALSE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
    EXPECT_TRUE(IsHbaLibraryLoaded());
    EXPECT_TRUE(hba.DeInitHBAAPIMod());
    EXPECT_FALSE(IsHbaLibraryLoaded());
}

constexpr char kInitialize[] = "NORDA_InitializeLibrary";
constexpr char kRegister[] = "HBA_RegisterLibrary";
constexpr char kAskedAboutAdapter[] = R"(NORDA_GetFCoEControllerInfo [\DEVICE\{0001}])";

INSTANTIATE_TEST_SUITE_P(Each, HbaLibraryInit,
                         testing::Values(InitRow{"FillsTheTableUnderTheMutex",
                                                 "",
                                                 "JournalMutex",
                                                 "1",
                                                 {},
                                                 true,
                                                 {"NORDA_InitializeLibrary locked", "HBA_RegisterLibrary locked"}},
                                         InitRow{"FailsWithALibraryThatCannotBeInitialised",
                                                 "",
                                                 "Status.NORDA_InitializeLibrary",
                                                 "5",
                                                 {},
                                                 false,
                                                 {kInitialize},
                                                 "CHBAAPIInt::InitHBAAPIMod InitializeLibrary failed - Status - 5"},
                                         InitRow{"DoesNotNoticeATableThatIsNotFilled",
                                                 "",
                                                 "Status.HBA_RegisterLibrary",
                                                 "1",
                                                 {},
                                                 true,
                                                 {kInitialize, kRegister}},
                                         InitRow{"AsksAboutTheAdapterUnderTheMutex",
                                                 "",
                                                 "JournalMutex",
                                                 "1",
                                                 kAdapter,
                                                 true,
                                                 {"NORDA_InitializeLibrary locked", "HBA_RegisterLibrary locked",
                                                  std::string(kAskedAboutAdapter) + " locked"},
                                                 nullptr,
                                                 8},
                                         InitRow{"AsksNothingAboutTheAdapterWhenInitialisingFails",
                                                 "",
                                                 "Status.NORDA_InitializeLibrary",
                                                 "5",
                                                 kAdapter,
                                                 false,
                                                 {kInitialize},
                                                 "CHBAAPIInt::InitHBAAPIMod InitializeLibrary failed - Status - 5"},
                                         InitRow{"SucceedsThoughTheLibraryKnowsNothingAboutTheAdapter",
                                                 "",
                                                 "Status.NORDA_GetFCoEControllerInfo",
                                                 "1",
                                                 kAdapter,
                                                 true,
                                                 {kInitialize, kRegister, kAskedAboutAdapter},
                                                 "CHBAAPIInt::InitHBAAPIMod GetFCoEControllerInfo failed - Status - 1"},
                                         InitRow{"SucceedsThoughTheLibraryLacksThatEntryPoint",
                                                 "NORDA_GetFCoEControllerInfo",
                                                 "",
                                                 "",
                                                 kAdapter,
                                                 true,
                                                 {kInitialize, kRegister},
                                                 "GetProcAddress of NORDA_GetFCoEControllerInfo failed with error 127"},
                                         InitRow{"DoesNotPassOnANullName",
                                                 "",
                                                 "",
                                                 "",
                                                 nullptr,
                                                 true,
                                                 {kInitialize, kRegister},
                                                 "CHBAAPIInt::InitHBAAPIMod ConvertTCHARToChar failed"}),
                         [](const auto& row) { return std::string(row.param.name); });

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

TEST(HbaLibraryForAdapter, WithoutTheLibraryItFails)
{
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(hba.InitHBAAPIMod(kAdapter, true));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(kEntering, "LoadLibrary of nordhapi.dll failed - 126", kExitingWithFailure));
}
