// Machines that boot over iSCSI: the adapter's driver says so, and the system's iSCSI boot configuration tool then
// verifies the settings, if the system supports it.

#include <gmock/gmock.h>

#include <ostream>

#include "EmulatedSystem.h"
#include "Environment.h"
#include "StorageBoot.h"

namespace {
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kFound[] = "Found iSCSI adapter";
constexpr char kToolNeeded[] = "iSCSI command line utility needs to be called";
constexpr char kToolBegun[] = "Entering CalliSCSIConfigExe";
constexpr char kToolDone[] = "Leaving CalliSCSIConfigExe";
constexpr uint32_t kBootModeOid = 0xFF020195;

// Two adapters with a driver each, and an INF for either.
class IScsiBoot : public StorageRun
{
protected:
    IScsiBoot()
    {
        WriteInf("first.inf", InfFor(kFirstDevice));
        WriteInf("second.inf", InfFor(kSecondDevice));
    }

    void ExpectBothInstalled()
    {
        EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\first.inf", kFirstDevice),
                                            InstallLine("Inf\\second.inf", kSecondDevice)));
    }

    void ExpectAsked(const std::string& instanceId)
    {
        const TestAdapterDriver::Asked asked = m_driver->WhatWasAsked(instanceId);
        EXPECT_EQ(asked.nameQueries, 1u);
        EXPECT_EQ(asked.privateRequests, 1u);
        EXPECT_EQ(asked.lastOid, kBootModeOid);
        EXPECT_EQ(asked.lastData.size(), 4u);
        EXPECT_TRUE(m_driver->WaitUntilAllIsClosed(instanceId));
    }

    void ExpectNotAsked(const std::string& instanceId)
    {
        const TestAdapterDriver::Asked asked = m_driver->WhatWasAsked(instanceId);
        EXPECT_EQ(asked.opens, 0u);
        EXPECT_EQ(asked.privateRequests, 0u);
    }

    const InstalledAdapter m_first{kFirstDevice, "9001", kFirstInstance};
    const InstalledAdapter m_second{kSecondDevice, "9002", kSecondInstance};
    const std::unique_ptr<TestAdapterDriver> m_driver = StartAdapterDriver();
};

TEST_F(IScsiBoot, AfterAnAdapterInTheFirstDeviceTheSecondIsNotAsked)
{
    m_driver->AnswerBootMode(kFirstInstance, 2);
    m_driver->AnswerBootMode(kSecondInstance, 2);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstalled();
    EXPECT_EQ(run.Count(kFound), 1u);
    EXPECT_EQ(run.Count("Enter -> GetNetCfgInstanceId()\n"), 1u);
    ExpectAsked(kFirstInstance);
    ExpectNotAsked(kSecondInstance);
}

TEST_F(IScsiBoot, AdapterIsFoundInTheSecondDevice)
{
    m_driver->AnswerBootMode(kSecondInstance, 3);

    const FinishedRun run = RunMorvix("/s /nr");

    ExpectBothInstalled();
    EXPECT_EQ(run.Count(kFound), 1u);
    EXPECT_EQ(run.Count("Enter -> GetNetCfgInstanceId()\n"), 2u);
    ExpectAsked(kFirstInstance);
    ExpectAsked(kSecondInstance);
}

TEST_F(IScsiBoot, OtherBootModesAndDriversWithoutTheRequestDoNotCount)
{
    m_driver->AnswerBootMode(kFirstInstance, 1);
    m_driver->AnswerPrivateRequest(kSecondInstance,
                                   {.status = 0xC00000BB, .data = std::string("\2\0\0\0", 4), .length = std::nullopt});

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_FALSE(run.Traced(kFound));
    ExpectAsked(kFirstInstance);
    ExpectAsked(kSecondInstance);
}

TEST_F(IScsiBoot, DeviceWhoseInstallLeftAnErrorIsNotAskedAndTheNextIs)
{
    m_driver->AnswerBootMode(kFirstInstance, 2);
    m_driver->AnswerBootMode(kSecondInstance, 2);
    Folder().Answer("NetInst", "LastError1", "259");

    const FinishedRun run = RunMorvix("/s /nr");

    ExpectBothInstalled();
    EXPECT_EQ(run.Count(kFound), 1u);
    EXPECT_EQ(run.Count("Enter -> GetNetCfgInstanceId()\n"), 1u);
    ExpectNotAsked(kFirstInstance);
    ExpectAsked(kSecondInstance);
}

const SystemVersion kServer2003 = {nullptr, "5.2", "3790", "ServerNT"};

/// The service pack that the system reports where the registry says which system it is, put back at the end of the
/// object's life.
class ServicePack
{
public:
    explicit ServicePack(DWORD major) : m_before(ReadRegistryValue(kKey, kValue))
    {
        SetRegistryNumber(kKey, kValue, major << 8);
    }
    ~ServicePack()
    {
        if (m_before) {
            SetRegistryBytes(kKey, kValue, m_before->bytes, m_before->type);
        }
    }
    ServicePack(const ServicePack&) = delete;
    ServicePack& operator=(const ServicePack&) = delete;

private:
    static constexpr char kKey[] = R"(SYSTEM\CurrentControlSet\Control\Windows)";
    static constexpr char kValue[] = "CSDVersion";
    std::optional<RegistryValue> m_before;
};

/// A machine that boots over iSCSI; a case changes one thing.
struct Machine
{
    bool adapter = true;
    std::optional<SystemVersion> system = std::nullopt;
    DWORD servicePack = 0;
    bool hasLibrary = true;
    std::string libraryBuild = "6000";
    std::string libraryMajor = "6";
    std::string matchingDeviceId = R"(ROOT\iscsiprt)";
    bool parameters = true;
    std::optional<std::string> dumpDriver = "iSCSDump.sys";
    std::string options = "/s /m";
};

struct MachineCase
{
    const char* name;
    Machine machine;
    bool toolRuns;
    bool restartRecorded;
};

void PrintTo(const MachineCase& tested, std::ostream* out)
{
    *out << tested.name;
}

class IScsiConfiguration : public IScsiBoot, public testing::WithParamInterface<MachineCase>
{
};

TEST_P(IScsiConfiguration, IsVerifiedExactlyWhereTheMachineBootsOverIScsi)
{
    const Machine& machine = GetParam().machine;
    const IScsiTool tool;
    const IScsiInitiator initiator(machine.dumpDriver, machine.matchingDeviceId, machine.parameters);
    m_driver->AnswerBootMode(kFirstInstance, machine.adapter ? 2 : 0);
    if (machine.hasLibrary) {
        UseIScsiLibrary(machine.libraryMajor, "0", machine.libraryBuild);
    }
    const ServicePack servicePack(machine.servicePack);
    std::optional<EmulatedSystem> emulated;
    if (machine.system) {
        emulated.emplace(*machine.system);
    }

    const FinishedRun run = RunMorvix(machine.options);

    EXPECT_EQ(run.exitCode, 0);
    ExpectBothInstalled();
    EXPECT_EQ(run.Traced(kFound), machine.adapter);
    EXPECT_EQ(run.Count(kToolNeeded), GetParam().toolRuns ? 1u : 0u);
    EXPECT_EQ(run.Count(kToolBegun), GetParam().toolRuns ? 1u : 0u);
    if (GetParam().toolRuns) {
        EXPECT_THAT(DecidedBetween(run, kToolNeeded, kToolDone), ElementsAre(kToolNeeded, kToolBegun, kToolDone));
        EXPECT_THAT(IScsiTool::CommandLines(), ElementsAre(IScsiTool::Path() + " /verify /fix"));
    } else {
        EXPECT_THAT(IScsiTool::CommandLines(), IsEmpty());
    }
    if (GetParam().restartRecorded) {
        ExpectRebootNeeded();
    } else {
        ExpectNoRebootNeeded();
    }
    ExpectNoRestart(run);
}

INSTANTIATE_TEST_SUITE_P(
    Machines, IScsiConfiguration,
    testing::Values(
        MachineCase{"Whole", {}, true, true},
        MachineCase{"Server2003WithAServicePack", {.system = kServer2003, .servicePack = 1}, true, true},
        MachineCase{"Server2003WithoutAServicePack", {.system = kServer2003}, false, false},
        MachineCase{"WindowsXPx64", {.system = SystemVersion{"winxp64", "5.2", "3790", "WinNT"}}, false, false},
        MachineCase{"NoAdapter", {.adapter = false}, false, false},
        MachineCase{"NoIScsiLibrary", {.hasLibrary = false}, false, false},
        MachineCase{"OldInitiator", {.libraryBuild = "1894", .libraryMajor = "2"}, false, false},
        MachineCase{"NoInitiator", {.matchingDeviceId = R"(root\otherprt)"}, false, false},
        MachineCase{"InitiatorWithoutParameters", {.parameters = false, .dumpDriver = std::nullopt}, false, false},
        MachineCase{"NoCrashDumpDriver", {.dumpDriver = std::nullopt}, false, true},
        MachineCase{"CrashDumpDriverInOtherLetterCase", {.dumpDriver = "iscsdump.sys"}, false, true},
        MachineCase{"RestartSuppressed", {.options = "/s /nr"}, false, false}),
    [](const testing::TestParamInfo<MachineCase>& tested) { return std::string(tested.param.name); });

TEST_F(IScsiBoot, ForcedRestartSkipsTheConfigurationTool)
{
    const IScsiTool tool;
    const IScsiInitiator initiator("iSCSDump.sys");
    UseIScsiLibrary("6", "1", "6000");
    m_driver->AnswerBootMode(kFirstInstance, 2);

    const FinishedRun run = RunMorvix("/s /r");

    EXPECT_TRUE(run.Traced(kFound));
    EXPECT_FALSE(run.Traced(kToolNeeded));
    EXPECT_THAT(IScsiTool::CommandLines(), IsEmpty());
    ExpectRestart(run);
}

TEST_F(IScsiBoot, MissingConfigurationToolIsTracedAndTheRestartStillNeeded)
{
    ASSERT_FALSE(FileExists(IScsiTool::Path()));
    const IScsiInitiator initiator("iSCSDump.sys");
    UseIScsiLibrary("6", "1", "6000");
    m_driver->AnswerBootMode(kSecondInstance, 3);

    const FinishedRun run = RunMorvix("/s /m");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(DecidedBetween(run, kToolNeeded, kToolDone),
                ElementsAre(kToolNeeded, kToolBegun, "Failed to call iSCSI command line utility.", kToolDone));
    ExpectRebootNeeded();
}
} // namespace
