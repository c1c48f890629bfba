#include "NetInstLibrary.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "DebugOutput.h"
#include "DriverInstallRecord.h"
#include "LibraryLoads.h"
#include "LocationInfo.h"
#include "ScratchDirectory.h"
#include "TestFiles.h"

using testing::ElementsAre;

namespace {
class NetInstLibrary : public testing::Test
{
protected:
    NetInstLibrary() { LocationInfo.setupDir = m_scratch.Path(); }
    ~NetInstLibrary() override { LocationInfo = {}; }

    ScratchDirectory m_scratch;
    DriverInstallRecord m_record;
};
} // namespace

TEST_F(NetInstLibrary, MissingLibraryIsAFailureWithTheSystemsError)
{
    TraceCapture trace;
    uint32_t status = 0;
    EXPECT_EQ(nullptr, CreateSysProber(status));
    EXPECT_EQ(0x8007007E, status); // ERROR_MOD_NOT_FOUND
    EXPECT_THAT(trace.Messages(), ElementsAre("unable to load: " + m_scratch.At("NetInst.dll") + "\n"));
    EXPECT_EQ(nullptr, CreateDriverInstall(&m_record, status));
    EXPECT_EQ(0x8007007E, status);
}

TEST_F(NetInstLibrary, FileThatIsNotALibraryIsAFailure)
{
    WriteFileBytes(m_scratch.At("NetInst.dll"), "not a library");
    uint32_t status = 0;
    EXPECT_EQ(nullptr, CreateSysProber(status));
    EXPECT_NE(0U, status);
}

TEST_F(NetInstLibrary, LibraryWithoutTheExportIsAFailure)
{
    CopyFileTo(TestFile("versioned_file.dll"), m_scratch.At("NetInst.dll"));
    uint32_t status = 0;
    EXPECT_EQ(nullptr, CreateSysProber(status));
    EXPECT_EQ(0x8007007F, status); // ERROR_PROC_NOT_FOUND
}

TEST_F(NetInstLibrary, LibraryWithoutTheExportIsFreedAgain)
{
    CopyFileTo(TestFile("versioned_file.dll"), m_scratch.At("NetInst.dll"));
    const LibraryLoads loads("DllGetClassFactoryObject");
    uint32_t status = 0;
    EXPECT_EQ(nullptr, CreateSysProber(status));
    EXPECT_EQ(nullptr, CreateDriverInstall(&m_record, status));
    EXPECT_THAT(loads.Loaded(), ElementsAre(m_scratch.At("NetInst.dll"), m_scratch.At("NetInst.dll")));
    EXPECT_TRUE(loads.StillLoaded().empty());
}
