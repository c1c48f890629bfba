// What all operations on an adapter have in common, row by row.
#include "HbaOperations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HbaLibraryDouble.h"
#include "LibraryTrace.h"

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {
class HbaOperation : public ::testing::TestWithParam<HbaOperationRow>
{
protected:
    [[nodiscard]] std::string Entering() const { return "Entering CHBAAPIInt::" + GetParam().name; }
    [[nodiscard]] std::string Exiting() const { return "Exiting CHBAAPIInt::" + GetParam().name; }
    [[nodiscard]] std::string Says(const std::string& what) const
    {
        return "CHBAAPIInt::" + GetParam().name + " " + what;
    }
    [[nodiscard]] bool ReachesBySlot() const { return GetParam().slot >= 0; }
};
} // namespace

TEST_P(HbaOperation, AsksTheLibraryAndTracesEntryAndExit)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    EXPECT_THAT(library.TakeJournal(), SizeIs(2));
    const LibraryTrace trace;
    EXPECT_TRUE(GetParam().call(hba));
    EXPECT_THAT(library.TakeJournal(), ElementsAreArray(GetParam().journal));
    EXPECT_THAT(trace.Messages(), ElementsAre(Entering(), Exiting()));
}

TEST_P(HbaOperation, HoldsTheMutexWhileItAsksWhenItIsOneThatTakesIt)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    library.Answer("JournalMutex", "1");
    EXPECT_TRUE(GetParam().call(hba));
    std::vector<std::string> expected = GetParam().journal;
    for (std::string& line : expected) {
        line += GetParam().takesMutex ? " locked" : " free";
    }
    EXPECT_THAT(library.TakeJournal(), ElementsAreArray(expected));
    // Closed at the end of the operation: nobody else holds it, so it is gone.
    EXPECT_FALSE(UniqueHandle(OpenMutexA(SYNCHRONIZE, FALSE, kHbaMutexName)));
}

TEST_P(HbaOperation, AStatusOtherThanSuccessIsAFailure)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    if (GetParam().reached == "GetNumberOfAdapters") {
        // It answers with the number itself and so cannot fail.
        library.Answer("Adapters", "0");
        EXPECT_TRUE(GetParam().call(hba));
        return;
    }
    const LibraryTrace trace;
    library.Answer("Status." + GetParam().reached, "3");
    EXPECT_FALSE(GetParam().call(hba));
    const std::string reason =
        GetParam().reached == "OpenAdapter" ? Says("found no such adapter") : Says("failed - Status - 3");
    EXPECT_THAT(trace.Messages(), ElementsAre(Entering(), reason, Exiting()));
}

TEST_P(HbaOperation, ALibraryWithoutWhatItReachesMakesItFail)
{
    const HbaLibraryDouble library(ReachesBySlot() ? "" : GetParam().reached);
    if (ReachesBySlot()) {
        library.Answer("EmptySlot", std::to_string(GetParam().slot));
    }
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    const LibraryTrace trace;
    EXPECT_FALSE(GetParam().call(hba));
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(
        trace.Messages(),
        ElementsAre(Entering(), Says(ReachesBySlot() ? "table entry is null" : "GetProcAddress failed"), Exiting()));
}

TEST_P(HbaOperation, FailsBeforeTheLibraryIsInitialised)
{
    CHBAAPIInt hba;
    const LibraryTrace trace;
    EXPECT_FALSE(GetParam().call(hba));
    EXPECT_THAT(trace.Messages(),
                ElementsAre(Entering(), ReachesBySlot() ? "m_bEntryPtsInited is false" : Says("GetProcAddress failed"),
                            Exiting()));
}

TEST_P(HbaOperation, FailsAfterTheLibraryIsUnloaded)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    ASSERT_TRUE(hba.DeInitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    const LibraryTrace trace;
    EXPECT_FALSE(GetParam().call(hba));
    EXPECT_THAT(library.TakeJournal(), IsEmpty());
    EXPECT_THAT(trace.Messages(),
                ElementsAre(Entering(), ReachesBySlot() ? "m_bEntryPtsInited is false" : Says("GetProcAddress failed"),
                            Exiting()));
}

TEST_P(HbaOperation, WithoutTheMutexItFailsWhenItIsOneThatTakesIt)
{
    const HbaLibraryDouble library;
    CHBAAPIInt hba;
    ASSERT_TRUE(hba.InitHBAAPIMod());
    static_cast<void>(library.TakeJournal());
    const NameTakenByAnEvent taken;
    const LibraryTrace trace;
    EXPECT_EQ(GetParam().call(hba), !GetParam().takesMutex);
    if (GetParam().takesMutex) {
        EXPECT_THAT(library.TakeJournal(), IsEmpty());
        EXPECT_THAT(trace.Messages(), ElementsAre(Entering(), Says("failed to acquire Mutex"), Exiting()));
    } else {
        EXPECT_THAT(library.TakeJournal(), ElementsAreArray(GetParam().journal));
        EXPECT_THAT(trace.Messages(), ElementsAre(Entering(), Exiting()));
    }
}

INSTANTIATE_TEST_SUITE_P(Each, HbaOperation, ::testing::ValuesIn(HbaOperationRows()),
                         [](const auto& row) { return row.param.name; });
