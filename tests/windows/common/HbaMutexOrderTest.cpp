// The order in which an operation releases its resources: the mutex is released before the exit line, and closed after
// it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "HbaApiInt.h"
#include "HbaLibraryDouble.h"
#include "HbaMutex.h"
#include "ImportOverride.h"
#include "LibraryTrace.h"

using ::testing::ElementsAre;
using ::testing::Pair;

namespace {
decltype(&CreateMutexA) platformCreate = nullptr;
decltype(&ReleaseMutex) platformRelease = nullptr;
decltype(&CloseHandle) platformClose = nullptr;
decltype(&FreeLibrary) platformFree = nullptr;
decltype(&WaitForSingleObject) platformWait = nullptr;

const LibraryTrace* watchedTrace = nullptr;
HANDLE mutex = nullptr;
// What was done, and the last line that was traced before.
std::vector<std::pair<std::string, std::string>> steps;

void Note(const std::string& what)
{
    const std::vector<std::string> lines = watchedTrace->Messages();
    steps.emplace_back(what, lines.empty() ? "" : lines.back());
}

HANDLE WINAPI NoteCreation(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCSTR name)
{
    mutex = platformCreate(security, owned, name);
    Note(std::string("make ") + name + (security != nullptr ? " secured" : "") + (owned != FALSE ? " owned" : ""));
    return mutex;
}

BOOL WINAPI NoteRelease(HANDLE handle)
{
    if (handle == mutex) {
        Note("release");
    }
    return platformRelease(handle);
}

BOOL WINAPI NoteClose(HANDLE handle)
{
    if (handle != nullptr && handle == mutex) {
        mutex = nullptr;
        Note("close");
    }
    return platformClose(handle);
}

BOOL WINAPI NoteFree(HMODULE library)
{
    Note("free the library");
    return platformFree(library);
}

/// Notes what operations do with the mutex and the library, with the trace's last line at that time.
class HbaMutexOrder : public ::testing::Test
{
protected:
    ~HbaMutexOrder() override { watchedTrace = nullptr; }

    template <class Operation>
    std::vector<std::pair<std::string, std::string>> StepsOf(Operation operation)
    {
        const LibraryTrace trace;
        watchedTrace = &trace;
        steps.clear();
        const ImportOverride create("CreateMutexA", InPlaceOf(platformCreate, &CreateMutexA, &NoteCreation));
        const ImportOverride release("ReleaseMutex", InPlaceOf(platformRelease, &ReleaseMutex, &NoteRelease));
        const ImportOverride close("CloseHandle", InPlaceOf(platformClose, &CloseHandle, &NoteClose));
        const ImportOverride free("FreeLibrary", InPlaceOf(platformFree, &FreeLibrary, &NoteFree));
        operation();
        return steps;
    }

    const HbaLibraryDouble library;
    CHBAAPIInt hba;
};

const std::string kMake = std::string("make ") + kHbaMutexName;
} // namespace

TEST_F(HbaMutexOrder, BothFormsOfInitReleaseThenSayTheResultThenClose)
{
    const std::string entering = "Entering CHBAAPIInt::InitHBAAPIMod";
    const std::string exiting = "Exiting CHBAAPIInt::InitHBAAPIMod bRet = 1";
    EXPECT_THAT(StepsOf([this] { EXPECT_TRUE(hba.InitHBAAPIMod()); }),
                ElementsAre(Pair(kMake, entering), Pair("release", entering), Pair("close", exiting)));
    CHBAAPIInt other;
    EXPECT_THAT(StepsOf([&other] { EXPECT_TRUE(other.InitHBAAPIMod(kAdapter, true)); }),
                ElementsAre(Pair(kMake, entering), Pair("release", entering), Pair("close", exiting)));
}

TEST_F(HbaMutexOrder, GettingAHandleReleasesThenSaysTheResultThenCloses)
{
    ASSERT_TRUE(hba.InitHBAAPIMod());
    HBA_HANDLE handle = 0;
    EXPECT_THAT(StepsOf([&] { EXPECT_TRUE(hba.GetAdapterHandle(kAdapter, handle)); }),
                ElementsAre(Pair(kMake, "Entering CHBAAPIInt::GetAdapterHandle"),
                            Pair("release", "Succeeded getting Adapter Handle - 7"),
                            Pair("close", "Exiting CHBAAPIInt::GetAdapterHandle  bRet = 1")));
}

TEST_F(HbaMutexOrder, DeInitFreesTheLibraryBeforeItReleases)
{
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const std::string entering = "Entering CHBAAPIInt::DeInitHBAAPIMod";
    EXPECT_THAT(StepsOf([this] { EXPECT_TRUE(hba.DeInitHBAAPIMod()); }),
                ElementsAre(Pair(kMake, entering), Pair("free the library", entering), Pair("release", entering),
                            Pair("close", "Exiting CHBAAPIInt::DeInitHBAAPIMod")));
}

TEST_F(HbaMutexOrder, AnOperationThatTakesTheMutexReleasesThenSaysThatItEndsThenCloses)
{
    ASSERT_TRUE(hba.InitHBAAPIMod());
    HBA_UINT32 count = 0;
    const std::string entering = "Entering CHBAAPIInt::GetVportCount";
    EXPECT_THAT(StepsOf([&] { EXPECT_TRUE(hba.GetVportCount(7, count)); }),
                ElementsAre(Pair(kMake, entering), Pair("release", entering),
                            Pair("close", "Exiting CHBAAPIInt::GetVportCount")));
}

TEST_F(HbaMutexOrder, WithoutTheMutexNothingIsReleased)
{
    ASSERT_TRUE(hba.InitHBAAPIMod());
    const UniqueHandle kept(CreateMutexA(nullptr, FALSE, kHbaMutexName));
    HBA_HANDLE handle = 0;
    const auto refuse = +[](HANDLE waited, DWORD limit) -> DWORD {
        return waited == mutex ? WAIT_TIMEOUT : platformWait(waited, limit);
    };
    const ImportOverride wait("WaitForSingleObject", InPlaceOf(platformWait, &WaitForSingleObject,
                                                               static_cast<decltype(platformWait)>(refuse)));
    EXPECT_THAT(StepsOf([&] { EXPECT_FALSE(hba.GetAdapterHandle(kAdapter, handle)); }),
                ElementsAre(Pair(kMake, "Entering CHBAAPIInt::GetAdapterHandle"),
                            Pair("close", "GetAdapterHandle Failure to get Mutex")));
}

namespace {
std::vector<DWORD> limits;

DWORD WINAPI NoteWait(HANDLE, DWORD limit)
{
    limits.push_back(limit);
    return WAIT_TIMEOUT;
}
} // namespace

TEST(HbaMutexLimit, IsTenThousandMilliseconds)
{
    limits.clear();
    CHBAAPIMutex taken;
    {
        const ImportOverride wait("WaitForSingleObject", reinterpret_cast<void*>(NoteWait));
        EXPECT_FALSE(taken.Lock());
    }
    EXPECT_THAT(limits, ElementsAre(10000U));
}
