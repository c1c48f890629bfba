#include "IScsiConfigTool.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "AdapterDevices.h"
#include "DebugOutput.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;
using testing::StartsWith;

namespace {
std::string ToolPath()
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return directory.data() + std::string(R"(\iscsivrf.exe)");
}

/// A tool in the system directory that journals its command line, gone at the end of the object's life.
class Tool
{
public:
    Tool() { CopyFileTo(TestFile("command_line_recorder.exe"), ToolPath()); }
    ~Tool()
    {
        DeleteFileA(ToolPath().c_str());
        DeleteFileA(JournalPath().c_str());
    }
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;

    [[nodiscard]] static std::string JournalPath() { return ToolPath() + ".journal.txt"; }
};
} // namespace

TEST(IScsiConfigTool, RunsFromTheSystemDirectoryWithVerifyAndFixAndHasEndedWhenTheCallReturns)
{
    const Tool tool;
    TraceCapture trace;
    CalliSCSIConfigExe();
    EXPECT_THAT(ReadFileBytes(Tool::JournalPath()),
                StartsWith("command line: " + ToolPath() + " /verify /fix\ndirectory: "));
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering CalliSCSIConfigExe", "Leaving CalliSCSIConfigExe"));
}

TEST(IScsiConfigTool, MissingToolIsTraced)
{
    ASSERT_FALSE(FileExists(ToolPath()));
    TraceCapture trace;
    CalliSCSIConfigExe();
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering CalliSCSIConfigExe", "Failed to call iSCSI command line utility.",
                            "Leaving CalliSCSIConfigExe"));
}

TEST(IScsiConfigTool, RunsLeaveNoHandleOpen)
{
    const Tool tool;
    EXPECT_EQ(HandlesLeftBy(10, CalliSCSIConfigExe), 0);
}

TEST(IScsiConfigTool, ThousandFailedCallsLeaveNoHandleOpen)
{
    EXPECT_EQ(HandlesLeftBy(1000, CalliSCSIConfigExe), 0);
}
