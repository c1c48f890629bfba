#include "DriverUpdate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "ConstantLibrary.h"
#include "DeviceFixtures.h"
#include "HardwareScan.h"
#include "HelperPrograms.h"
#include "LibraryLoads.h"
#include "TestFiles.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
constexpr char kDevice[] = "VEN_5D1A&DEV_7E57&SUBSYS_00017E57&REV_01";
constexpr char kHardwareId[] = "PCI\\VEN_5D1A&DEV_7E57&SUBSYS_00017E57&REV_01";
constexpr char kClassGuid[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
constexpr char kServiceKey[] = R"(SYSTEM\CurrentControlSet\Services\MorvixBind)";

std::string SystemPath(const std::string& name)
{
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    return directory.data() + name;
}

/// A device that the system sees, without anything that an earlier binding of a driver left.
class BindableDevice
{
public:
    BindableDevice() : m_device(kDevice)
    {
        SetRegistryList(m_device.Instance(), "HardwareID", {kHardwareId});
        SetRegistryText(m_device.Instance(), "ClassGUID", kClassGuid);
        SetRegistryText(m_device.Instance(), "Class", "Net");
    }
    ~BindableDevice()
    {
        if (const std::string driver = Value("Driver"); driver != "<none>") {
            DeleteRegistryTree(R"(SYSTEM\CurrentControlSet\Control\Class\)" + driver);
        }
        if (const SC_HANDLE manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
            if (const SC_HANDLE service = OpenServiceA(manager, "MorvixBind", DELETE)) {
                DeleteService(service);
                CloseServiceHandle(service);
            }
            CloseServiceHandle(manager);
        }
        DeleteRegistryTree(kServiceKey);
        DeleteFileA(DriverFile().c_str());
        DeleteFileA((WindowsDirectory() + R"(\inf\mvxbind.inf)").c_str());
    }
    BindableDevice(const BindableDevice&) = delete;
    BindableDevice& operator=(const BindableDevice&) = delete;

    [[nodiscard]] std::string Value(const std::string& name) const
    {
        return ReadRegistryText(m_device.Instance(), name);
    }
    [[nodiscard]] static std::string DriverFile() { return SystemPath(R"(\drivers\mvxbind.sys)"); }

private:
    static std::string WindowsDirectory()
    {
        std::array<char, MAX_PATH> directory{};
        GetWindowsDirectoryA(directory.data(), MAX_PATH);
        return directory.data();
    }

    SimulatedDevice m_device;
};

/// A kit of one INF and one driver file.
class DriverKit
{
public:
    DriverKit()
    {
        WriteFileBytes(m_scratch.At("mvxbind.inf"),
                       "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\nClassGuid=" + std::string(kClassGuid) +
                           "\r\nProvider=\"Norda\"\r\nDriverVer=01/02/2013,1.2.3.4\r\n"
                           "[Manufacturer]\r\n\"Norda\"=Norda,NTamd64\r\n"
                           "[Norda.NTamd64]\r\n\"Norda Bound Adapter\"=Bind," +
                           kHardwareId +
                           "\r\n[SourceDisksNames]\r\n1=\"Norda\"\r\n[SourceDisksFiles]\r\nmvxbind.sys=1\r\n"
                           "[DestinationDirs]\r\nDefaultDestDir=12\r\n"
                           "[Bind]\r\nCopyFiles=Bind.Files\r\n[Bind.Files]\r\nmvxbind.sys\r\n"
                           "[Bind.Services]\r\nAddService=MorvixBind,2,Bind.Service\r\n"
                           "[Bind.Service]\r\nServiceType=1\r\nStartType=3\r\nErrorControl=0\r\n"
                           "ServiceBinary=%12%\\mvxbind.sys\r\n");
        CopyFileTo(TestFile("versioned_file.dll"), m_scratch.At("mvxbind.sys"));
    }
    [[nodiscard]] std::string Inf() const { return m_scratch.At("mvxbind.inf"); }

private:
    ScratchDirectory m_scratch;
};

struct HelperAnswer
{
    DWORD result = 0;
    std::vector<std::string> lines;   ///< debugger output
    std::vector<std::string> journal; ///< what a recording double was asked
};

/// Runs a helper program in `directory`, with the library in it, or without one.
/// It is a new process because a library that is once loaded, as in this one, stays.
HelperAnswer RunHelperIn(const ScratchDirectory& directory, const std::string& program, const std::string& library)
{
    MakeHelperProgram(directory.At(program));
    const LibraryLoading loading(library, FileExists(directory.At(library + ".dll")) ? "native" : "");
    const ScratchRegistryKey debugKey(R"(SOFTWARE\Norda\Basedrivers\Debug)");
    CreateRegistryKey(debugKey.Path());
    DebugOutput output;
    const auto [processId, exitCode] = RunToEnd(directory.At(program));
    HelperAnswer answer{.result = exitCode, .lines = output.LinesOf(processId), .journal = {}};
    std::ifstream journal(directory.At("journal.txt"));
    for (std::string line; std::getline(journal, line);) {
        answer.journal.push_back(line);
    }
    return answer;
}

/// With a library of given exports, or without one.
HelperAnswer RunHelper(const std::string& program, const std::string& library, const std::optional<Exports>& exports)
{
    const ScratchDirectory scratch;
    if (exports) {
        WriteConstantLibrary(scratch.At(library + ".dll"), *exports);
    }
    return RunHelperIn(scratch, program, library);
}

/// With the recording double of the library.
/// @param answers  Lines that tell the double what to answer.
HelperAnswer RunHelperWithDouble(const std::string& program, const std::string& library,
                                 const std::string& answers = {})
{
    const ScratchDirectory scratch;
    CopyFileTo(TestFile("doubles\\" + library + ".dll"), scratch.At(library + ".dll"));
    WriteFileBytes(scratch.At(library + ".answers.ini"), "[Answers]\r\n" + answers + "\r\n");
    return RunHelperIn(scratch, program, library);
}
} // namespace

TEST(UpdateDriver, BindsTheDeviceToTheInfsDriver)
{
    const BindableDevice device;
    const DriverKit kit;
    ASSERT_FALSE(FileExists(BindableDevice::DriverFile()));
    TraceCapture trace;
    EXPECT_EQ(UpdateDriver(kit.Inf(), kHardwareId), 1U);
    EXPECT_THAT(trace.Messages(), ElementsAre("drivers upgraded\n"));
    EXPECT_TRUE(FileExists(BindableDevice::DriverFile()));
    EXPECT_EQ(device.Value("Service"), "MorvixBind");
    EXPECT_EQ(device.Value("DeviceDesc"), "Norda Bound Adapter");
}

TEST(UpdateDriver, TheLibraryIsFreedAgain)
{
    ASSERT_EQ(GetModuleHandleA("newdev.dll"), nullptr);
    UpdateDriver(R"(C:\no such directory\none.inf)", "PCI\\VEN_5D1A&DEV_0000");
    EXPECT_EQ(GetModuleHandleA("newdev.dll"), nullptr);
}

TEST(UpdateDriver, WithoutTheLibraryNothingIsTracedAndZeroReturned)
{
    const LibraryLoading withoutNewdev("newdev", "");
    ASSERT_EQ(LoadLibraryA("newdev.dll"), nullptr);
    const BindableDevice device;
    const DriverKit kit;
    TraceCapture trace;
    EXPECT_EQ(UpdateDriver(kit.Inf(), kHardwareId), 0U);
    EXPECT_THAT(trace.Messages(), IsEmpty());
    EXPECT_EQ(device.Value("Driver"), "<none>");
}

TEST(UpdateDriver, ARefusedUpdateIsTracedAndReturnsZero)
{
    const HelperAnswer answer = RunHelper(kUpdater, "newdev", Exports{{"UpdateDriverForPlugAndPlayDevicesA", 0}});
    EXPECT_EQ(answer.result, 0U);
    EXPECT_THAT(answer.lines, ElementsAre("Morvix: drivers *not* upgraded\n"));
}

TEST(UpdateDriver, AnyOtherResultIsASuccessAndReturned)
{
    for (const uint32_t platformResult : {1U, 2U, 0x80000000U}) {
        const HelperAnswer answer =
            RunHelper(kUpdater, "newdev", Exports{{"UpdateDriverForPlugAndPlayDevicesA", platformResult}});
        EXPECT_EQ(answer.result, platformResult);
        EXPECT_THAT(answer.lines, ElementsAre("Morvix: drivers upgraded\n"));
    }
}

TEST(UpdateDriver, AsksForAForcedUpdateWithoutAParentWindowAndWithAClearedRestartIndicator)
{
    const HelperAnswer answer = RunHelperWithDouble(kUpdater, "newdev");
    EXPECT_EQ(answer.result, 1U);
    EXPECT_THAT(answer.journal, ElementsAre("UpdateDriverForPlugAndPlayDevicesA parent=none id=[" +
                                            std::string(kUpdatedId) + "] inf=[" + kUpdatedInf + "] flags=1 restart=0"));
}

TEST(UpdateDriver, ARestartThatThePlatformWantsIsNotReported)
{
    const HelperAnswer answer = RunHelperWithDouble(kUpdater, "newdev", "Restart=1");
    EXPECT_EQ(answer.result, 1U);
    EXPECT_THAT(answer.lines, ElementsAre("Morvix: drivers upgraded\n"));
    EXPECT_THAT(answer.journal, testing::SizeIs(1));
}

TEST(UpdateDriver, WithoutTheEntryPointNothingIsTracedAndZeroReturned)
{
    const HelperAnswer answer = RunHelper(kUpdater, "newdev", Exports{{"SomethingElse", 1}});
    EXPECT_EQ(answer.result, 0U);
    EXPECT_THAT(answer.lines, IsEmpty());
}

TEST(ScanForHardwareChanges, ThePlatformsResultIsReturnedAndTheLibraryStaysLoaded)
{
    TraceCapture trace;
    const int result = ScanForHardwareChanges();
    EXPECT_THAT(trace.Messages(), ElementsAre("ScanForHardwareChanges()\n"));
    const HMODULE library = GetModuleHandleA("cfgmgr32.dll");
    ASSERT_NE(library, nullptr) << "the library stays loaded";

    // The platform's own answer decides.
    using LocateFn = DWORD(WINAPI*)(DWORD*, const char*, ULONG);
    using ReenumerateFn = DWORD(WINAPI*)(DWORD, ULONG);
    const auto locate = std::bit_cast<LocateFn>(GetProcAddress(library, "CM_Locate_DevNodeA"));
    const auto reenumerate = std::bit_cast<ReenumerateFn>(GetProcAddress(library, "CM_Reenumerate_DevNode"));
    DWORD root = 0;
    EXPECT_EQ(result, locate(&root, nullptr, 0) == 0 && reenumerate(root, 0) == 0 ? 1 : 0);
}

TEST(ScanForHardwareChanges, WithoutTheLibraryItTracesThatAndReturnsZero)
{
    const HelperAnswer answer = RunHelper(kScanner, "cfgmgr32", std::nullopt);
    EXPECT_EQ(answer.result, 0U);
    EXPECT_THAT(answer.lines, ElementsAre("Morvix: ScanForHardwareChanges()\n", "Morvix: error with GetProcAddress\n"));
}

TEST(ScanForHardwareChanges, WithoutEitherEntryPointItTracesThatAndReturnsZero)
{
    for (const char* present : {"CM_Locate_DevNodeA", "CM_Reenumerate_DevNode"}) {
        const HelperAnswer answer = RunHelper(kScanner, "cfgmgr32", Exports{{present, 0}});
        EXPECT_EQ(answer.result, 0U) << present;
        EXPECT_THAT(answer.lines,
                    ElementsAre("Morvix: ScanForHardwareChanges()\n", "Morvix: error with GetProcAddress\n"))
            << present;
    }
}

TEST(ScanForHardwareChanges, LocatesTheRootOfTheTreeAndScansAllBelowIt)
{
    const HelperAnswer answer = RunHelperWithDouble(kScanner, "cfgmgr32", "Node=4711");
    EXPECT_EQ(answer.result, 1U);
    EXPECT_THAT(answer.journal,
                ElementsAre("CM_Locate_DevNodeA id=none flags=0", "CM_Reenumerate_DevNode node=4711 flags=0"));
}

TEST(ScanForHardwareChanges, ATreeWhoseRootIsNotLocatedIsNotScanned)
{
    const HelperAnswer answer = RunHelperWithDouble(kScanner, "cfgmgr32", "Locate=0x13");
    EXPECT_EQ(answer.result, 0U);
    EXPECT_THAT(answer.journal, ElementsAre("CM_Locate_DevNodeA id=none flags=0"));
}

TEST(ScanForHardwareChanges, OnlyAScanThatWasStartedReturnsOne)
{
    constexpr uint32_t kFailure = 0x13;
    struct Row
    {
        uint32_t locate;
        uint32_t reenumerate;
        DWORD result;
    };
    for (const Row& row : {Row{0, 0, 1}, Row{0, kFailure, 0}, Row{kFailure, 0, 0}, Row{kFailure, kFailure, 0}}) {
        const HelperAnswer answer =
            RunHelper(kScanner, "cfgmgr32",
                      Exports{{"CM_Locate_DevNodeA", row.locate}, {"CM_Reenumerate_DevNode", row.reenumerate}});
        EXPECT_EQ(answer.result, row.result) << row.locate << ' ' << row.reenumerate;
        EXPECT_THAT(answer.lines, ElementsAre("Morvix: ScanForHardwareChanges()\n"));
    }
}

TEST(UpdateDriver, ALibraryWithoutTheEntryPointIsFreedAgain)
{
    const LibraryLoads loads("UpdateDriverForPlugAndPlayDevicesA");
    EXPECT_EQ(UpdateDriver(kUpdatedInf, kUpdatedId), 0U);
    EXPECT_THAT(loads.Loaded(), ElementsAre("newdev.dll"));
    EXPECT_THAT(loads.StillLoaded(), IsEmpty());
}

TEST(ScanForHardwareChanges, ALibraryWithoutOneOfTheEntryPointsIsFreedAgain)
{
    for (const char* const missing : {"CM_Locate_DevNodeA", "CM_Reenumerate_DevNode"}) {
        const LibraryLoads loads(missing);
        EXPECT_EQ(ScanForHardwareChanges(), 0) << missing;
        EXPECT_THAT(loads.Loaded(), ElementsAre("cfgmgr32.dll")) << missing;
        EXPECT_THAT(loads.StillLoaded(), IsEmpty()) << missing;
    }
}
