// What the trace object asks of the platform: the time, the registry and the texts of errors.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ImportOverride.h"
#include "LibraryTrace.h"
#include "MessageFormats.h"
#include "RegistryAccess.h"
#include "RegistryKeys.h"
#include "TraceFile.h"

using ::testing::ElementsAre;

namespace {
constexpr char kServicesKey[] = R"(SOFTWARE\NORDA\NETWORK_SERVICES)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\NETWORK_SERVICES\ORV2)";

// Each field has a value of its own.
void WINAPI TellLocalTime(LPSYSTEMTIME time)
{
    *time = {.wYear = 2013,
             .wMonth = 11,
             .wDayOfWeek = 6,
             .wDay = 30,
             .wHour = 3,
             .wMinute = 4,
             .wSecond = 5,
             .wMilliseconds = 67};
}
} // namespace

TEST(TracePlatform, ALinesTimeIsTheLocalOneAsHoursMinutesSecondsAndMilliseconds)
{
    TraceFile file(3);
    {
        const ImportOverride time("GetLocalTime", reinterpret_cast<void*>(TellLocalTime));
        file.object.Print("message");
    }
    const std::vector<LibraryTraceLine> lines = ReadLibraryTrace(file.Path());
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].prefix.at(3), "03:04:05.067");
}

TEST(TracePlatform, TheProductKeyIsOpenedForReadingOnlyOnceForTheLevelAndOnceForTheDirectory)
{
    const ScratchRegistryKey services(kServicesKey);
    const ScratchDirectory directory;
    SetRegistryText(kProductKey, "InstalledDir", directory.Path());
    COrvDebug object;
    const REGSAM read = KEY_READ;
    {
        const RegistryAccess access;
        EXPECT_EQ(object.Configure("Module", "a.log", 1, 0, 0, nullptr), 0);
        EXPECT_THAT(RegistryAccess::AskedFor(kProductKey), ElementsAre(read, read));
    }
    {
        const RegistryAccess access;
        EXPECT_EQ(object.Configure("Module", "a.log", 3, 0, 0, nullptr), 0);
        EXPECT_THAT(RegistryAccess::AskedFor(kProductKey), ElementsAre(read)) << "for the directory alone";
    }
    CloseTrace(object);
}

TEST(TracePlatform, AnErrorsTextIsTheSystemsInTheUsersLanguageAndIsFreed)
{
    TraceFile file(3);
    const MessageFormats formats;
    file.object.PrintLastError(ERROR_ACCESS_DENIED);
    EXPECT_THAT(formats.Calls(), ElementsAre(MessageFormats::Call{
                                     .flags = 0x1100, .message = ERROR_ACCESS_DENIED, .language = 0x400, .size = 0}));
    EXPECT_EQ(formats.Allocated(), 1U);
    EXPECT_EQ(formats.Freed(), 1U);
}
