#include "InfStore.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <bit>
#include <cstring>
#include <string_view>

#include "ChildProcess.h"
#include "DebugOutput.h"
#include "EntryPoints.h"
#include "Handles.h"
#include "ImportOverride.h"
#include "InfCopies.h"
#include "InfFiles.h"
#include "InstallerSearch.h"
#include "LibraryLoads.h"
#include "ScratchDirectory.h"
#include "StoredInfs.h"
#include "SystemText.h"

using testing::Contains;
using testing::ElementsAre;
using testing::SizeIs;
using testing::StartsWith;

namespace {
class InfStore : public testing::Test
{
protected:
    InfStore() { CopiedInfList = {}; }
    ~InfStore() override { CopiedInfList = {}; }

    /// @return what the platform leaves as the last error when it has stored an INF.
    static DWORD LastErrorOfAStoredInf()
    {
        const ScratchDirectory directory;
        const StoredInfs storedUntilHere;
        const std::string inf = directory.At("tav0.inf");
        WriteFileBytes(inf, QualifiedInf("VEN_5D1A&DEV_7A00"));
        const UniqueLibrary library(LoadLibraryA("setupapi.dll"));
        const auto copyInf = FindEntry<SetupCopyOEMInfFn>(library.get(), "SetupCopyOEMInfA");
        const BOOL stored = copyInf(inf.c_str(), directory.Path().c_str(), SPOST_PATH, SP_COPY_NOOVERWRITE, nullptr, 0,
                                    nullptr, nullptr);
        const DWORD error = GetLastError();
        EXPECT_NE(stored, FALSE);
        return error;
    }

    ScratchDirectory m_directory;
    StoredInfs m_stored;
};
} // namespace

TEST_F(InfStore, AnInfIsStoredAndTheLastErrorTracedAfterTheSuccess)
{
    const std::string inf = m_directory.At("tav1.inf");
    const std::string content = QualifiedInf("VEN_5D1A&DEV_7A01");
    WriteFileBytes(inf, content);
    const DWORD errorOfASuccess = LastErrorOfAStoredInf();
    TraceCapture trace;
    EXPECT_EQ(SetupCopyInf(inf, m_directory.Path() + "\\"), 1);

    const std::vector<std::string> stored = m_stored.New();
    ASSERT_THAT(stored, SizeIs(1));
    EXPECT_EQ(ReadFileBytes(stored.front()), content);
    const std::vector<std::string> messages = trace.Messages();
    ASSERT_THAT(messages, SizeIs(6));
    EXPECT_EQ(messages[0], "Entering - SetupCopyInf");
    EXPECT_EQ(messages[1], "SetupCopyOEMInfA(), src inf:" + inf + ", src media loc:" + m_directory.Path() + "\\\n");
    EXPECT_EQ(messages[2], "Calling SetupCopyOEMInfA for " + inf);
    const std::string done = "SetupCopyOEMInfA completed successfully - inf=" + inf + ", oem INF= ";
    EXPECT_THAT(messages[3], StartsWith(done));
    EXPECT_EQ(lstrcmpiA(messages[3].substr(done.size()).c_str(), stored.front().c_str()), 0) << messages[3];
    EXPECT_EQ(messages[4], "Entering - PrintGetLastErrorMessage");
    EXPECT_EQ(messages[5], SystemText(errorOfASuccess));
}

TEST_F(InfStore, ARefusedInfIsTracedWithTheReasonAndStillCountsAsCalled)
{
    const std::string inf = m_directory.At("missing.inf");
    TraceCapture trace;
    EXPECT_EQ(SetupCopyInf(inf, m_directory.Path() + "\\"), 1);
    EXPECT_THAT(m_stored.New(), SizeIs(0));
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Entering - SetupCopyInf",
                            "SetupCopyOEMInfA(), src inf:" + inf + ", src media loc:" + m_directory.Path() + "\\\n",
                            "Calling SetupCopyOEMInfA for " + inf, "Entering - PrintGetLastErrorMessage",
                            SystemText(ERROR_FILE_NOT_FOUND)));
}

TEST_F(InfStore, AStoredInfIsNotOverwritten)
{
    const std::string inf = m_directory.At("tav1.inf");
    WriteFileBytes(inf, QualifiedInf("VEN_5D1A&DEV_7A01"));
    ASSERT_EQ(SetupCopyInf(inf, m_directory.Path()), 1);
    ASSERT_THAT(m_stored.New(), SizeIs(1));
    TraceCapture trace;
    EXPECT_EQ(SetupCopyInf(inf, m_directory.Path()), 1);
    EXPECT_THAT(m_stored.New(), SizeIs(1));
    EXPECT_EQ(trace.Messages().back(), SystemText(ERROR_FILE_EXISTS));
}

TEST_F(InfStore, AnInfIsCopiedOncePerNameWhichIsRememberedWithItsExtension)
{
    const std::string inf = m_directory.At("Tav1.INF");
    WriteFileBytes(inf, QualifiedInf("VEN_5D1A&DEV_7A01"));
    TraceCapture trace;
    StoreInfOnce(InstallerSearch(), "Tav1.INF", inf, m_directory.Path() + "\\");
    EXPECT_THAT(CopiedInfList.names, ElementsAre("Tav1.inf"));
    EXPECT_THAT(m_stored.New(), SizeIs(1));
    EXPECT_EQ(trace.Messages().back(), "Adding INF Tav1.infto vector\n");
    trace.Clear();
    StoreInfOnce(InstallerSearch(), "TAV1.inf", m_directory.At("other\\tav1.inf"), m_directory.At("other\\"));
    EXPECT_THAT(CopiedInfList.names, ElementsAre("Tav1.inf"));
    EXPECT_THAT(trace.Messages(), SizeIs(0));
}

TEST_F(InfStore, ARefusedInfIsRememberedToo)
{
    StoreInfOnce(InstallerSearch(), "missing.inf", m_directory.At("missing.inf"), m_directory.Path());
    TraceCapture trace;
    StoreInfOnce(InstallerSearch(), "missing.inf", m_directory.At("missing.inf"), m_directory.Path());
    EXPECT_THAT(CopiedInfList.names, ElementsAre("missing.inf"));
    EXPECT_THAT(trace.Messages(), SizeIs(0));
}

TEST_F(InfStore, AMissingLibraryIsTraced)
{
    const ChildReport report = RunChild("copy-inf", {"", {{"setupapi", ""}}, {R"(C:\tav1.inf)", "C:"}});
    EXPECT_EQ(report.At("result"), "0");
    EXPECT_THAT(report.trace,
                ElementsAre("Entering - SetupCopyInf", "SetupCopyInf - Returning FALSE, invalid instance"));
}

TEST_F(InfStore, ALibraryWithoutTheFunctionIsTraced)
{
    ChildOptions options{"", {{"setupapi", "native"}}, {R"(C:\tav1.inf)", "C:"}};
    options.ownCopyAs = "SetupApi.dll";
    const ChildReport report = RunChild("copy-inf", options);
    EXPECT_EQ(report.At("result"), "0");
    EXPECT_THAT(report.trace,
                ElementsAre("Entering - SetupCopyInf", "SetupCopyInf - NULL Return Value, function call failed"));
}

namespace {
/// What the platform's function was handed last.
struct CopyRequest
{
    std::string inf;
    std::string source;
    DWORD sourceType = 0;
    DWORD style = 0;
    DWORD roomForTheName = 0;
    bool asksForTheNeededRoom = true;
    bool asksForTheFileName = true;
};
CopyRequest lastCopy;

BOOL WINAPI NoteCopy(PCSTR inf, PCSTR source, DWORD sourceType, DWORD style, PSTR storedAs, DWORD room, PDWORD needed,
                     PSTR* fileName)
{
    lastCopy = {inf, source, sourceType, style, room, needed != nullptr, fileName != nullptr};
    std::strcpy(storedAs, R"(C:\oem7.inf)");
    return TRUE;
}

decltype(&GetProcAddress) platformFind = nullptr;

FARPROC WINAPI FindNoteCopy(HMODULE library, LPCSTR name)
{
    return name == std::string_view("SetupCopyOEMInfA") ? std::bit_cast<FARPROC>(&NoteCopy)
                                                        : platformFind(library, name);
}
} // namespace

TEST_F(InfStore, HandsOverThePathTypeTheStyleAndABufferOf260)
{
    platformFind = &GetProcAddress;
    lastCopy = {};
    TraceCapture trace;
    {
        const ImportOverride find("GetProcAddress", reinterpret_cast<void*>(FindNoteCopy));
        EXPECT_EQ(SetupCopyInf(R"(C:\Drv\tav1.inf)", "C:\\Drv\\"), 1);
    }
    EXPECT_EQ(lastCopy.inf, R"(C:\Drv\tav1.inf)");
    EXPECT_EQ(lastCopy.source, "C:\\Drv\\");
    EXPECT_EQ(lastCopy.sourceType, DWORD{SPOST_PATH});
    EXPECT_EQ(lastCopy.style, DWORD{SP_COPY_NOOVERWRITE});
    EXPECT_EQ(lastCopy.roomForTheName, 260U);
    EXPECT_FALSE(lastCopy.asksForTheNeededRoom);
    EXPECT_FALSE(lastCopy.asksForTheFileName);
    EXPECT_THAT(trace.Messages(),
                Contains(R"(SetupCopyOEMInfA completed successfully - inf=C:\Drv\tav1.inf, oem INF= C:\oem7.inf)"));
}

TEST_F(InfStore, ALibraryWithoutTheFunctionIsFreedAgain)
{
    const LibraryLoads loads("SetupCopyOEMInfA");
    EXPECT_EQ(SetupCopyInf(R"(C:\Drv\tav1.inf)", "C:\\Drv\\"), 0);
    EXPECT_THAT(loads.Loaded(), ElementsAre("SetupApi.dll"));
    EXPECT_THAT(loads.StillLoaded(), SizeIs(0));
}
