#include "InstallRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "DebugOutput.h"

using testing::Contains;
using testing::Not;
using testing::StartsWith;

TEST(InstallRun, FamilyWithoutAFlowInstallsNothingAndPostsNothing)
{
    DriverInstallRecord record;
    std::ranges::copy(std::string_view("Windows NT"), record.osFamily.begin());
    TraceCapture trace;
    EXPECT_EQ(0, InstallDrivers(record, nullptr));
    const std::vector<std::string> messages = trace.Messages();
    EXPECT_EQ("Enter -> InstallDrivers()\n", messages.at(0));
    EXPECT_EQ("CoInitialize", messages.at(1));
    EXPECT_THAT(messages, Contains("unable to determine OS\n"));
    EXPECT_THAT(messages, Not(Contains(StartsWith("Enter -> EnumerateRegistryForPCIDevices"))));
    EXPECT_EQ("Exit -> InstallDrivers()\n", messages.back());
    MSG message{};
    EXPECT_FALSE(PeekMessageA(&message, nullptr, WM_CLOSE, WM_CLOSE, PM_REMOVE));
}
