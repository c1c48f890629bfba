// The system restore point around a run.

#include <gmock/gmock.h>

#include "Adapter.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "OwnInfs.h"
#include "RestartWatch.h"

namespace {
using testing::ElementsAre;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr size_t kDescriptionBytes = 512;

// The text byte for byte in the wide field, and zeros behind it.
std::string DescriptionInHex()
{
    std::string bytes = ResourceText(17);
    bytes.resize(kDescriptionBytes, '\0');
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += kDigits[byte >> 4];
        hex += kDigits[byte & 15];
    }
    return hex;
}

std::string RestorePointLine(const std::string& event, const std::string& sequence)
{
    return "SRSetRestorePointW event=" + event + " type=10 sequence=" + sequence + " description=" + DescriptionInHex();
}

class RestorePoint : public DoubleRun
{
protected:
    RestorePoint() { WriteInf("one.inf", InfFor(kDevice)); }

    // The restore-point service's library beside the program, in the place of the system's own.
    void UseServiceDouble() { Folder().UseDouble("srclient.dll"); }

    const Adapter m_adapter{kDevice};
    const NativeLibrary m_native{"srclient"};
};

TEST_F(RestorePoint, IsBegunBeforeTheFirstInstallAndEndedUnderItsNumberAfterTheLast)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "4711");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(
        Folder().Journal(),
        ElementsAre("DllGetClassFactoryObject ISysProberInterfaceFactory", "CreateSysProber",
                    "SysProberFactory Release", "IdentifySystem 0x00000000", "SysProber Release",
                    RestorePointLine("102", "0"), "DllGetClassFactoryObject IDriverInstallInterfaceFactory",
                    "CreateDriverInstall family=[Windows Vista] inf=[] id=[]", "DriverInstallFactory Release",
                    InstallLine("Inf\\one.inf", kDevice), "DriverInstall Release", RestorePointLine("103", "4711")));
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                            "Successfully started the system restore point", "Exiting BeginRestorePoint"));
    EXPECT_THAT(run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
                ElementsAre("Entering EndRestorePoint", "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
}

TEST_F(RestorePoint, ThatCannotBeEndedIsTraced)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "7");
    Folder().Answer("srclient", "FailEnd", "1");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.Between("Entering EndRestorePoint", "Exit -> InstallDrivers()\n"),
                ElementsAre("Entering EndRestorePoint", "Call to restore point (END_NESTED_SYSTEM_CHANGE) failed!",
                            "Exiting EndRestorePoint", "Exit -> InstallDrivers()\n"));
}

TEST_F(RestorePoint, ThatTheDisabledServiceRefusesIsTracedAndTheRunInstalls)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Fail", "1");
    Folder().Answer("srclient", "Status", "1058");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Folder().JournalLines("SRSetRestorePointW"), ElementsAre(RestorePointLine("102", "0")));
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Entering BeginRestorePoint", "Entering - GetLanguageSpecificString",
                            "call to restore point function failed!", "The service does not exist",
                            "Exiting BeginRestorePoint"));
    EXPECT_FALSE(run.Traced("Entering EndRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, ThatIsRefusedForAnotherReasonIsTracedWithoutTheReason)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Fail", "1");
    Folder().Answer("srclient", "Status", "5");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_TRUE(run.Traced("call to restore point function failed!"));
    EXPECT_FALSE(run.Traced("The service does not exist"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsDoneWithoutWhereTheLibraryCannotBeLoaded)
{
    // A file that is no library, where the system looks first.
    Folder().Write("srclient.dll", "no library");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(
        run.Between("CoInitialize", "Exiting BeginRestorePoint"),
        ElementsAre("CoInitialize", "LoadLibrary failed!", "Entering BeginRestorePoint", "Exiting BeginRestorePoint"));
    EXPECT_FALSE(run.Traced("Entering EndRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsDoneWithoutWhereTheLibraryLacksTheFunction)
{
    Folder().UseDouble("NetInstWithoutExport.dll", "srclient.dll");

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(run.Between("CoInitialize", "Exiting BeginRestorePoint"),
                ElementsAre("CoInitialize", "Failed to find SRSetRestorePointW.", "Entering BeginRestorePoint",
                            "Exiting BeginRestorePoint"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kDevice)));
}

TEST_F(RestorePoint, IsEndedInARunThatRestartsToo)
{
    UseServiceDouble();
    Folder().Answer("srclient", "Sequence", "4711");
    const RestartWatch restarts;

    const FinishedRun run = RunMorvix("/s /r");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(restarts.WaitForRefusal());
    EXPECT_EQ(run.Count("Entering - RestartMachine"), 1u);
    EXPECT_THAT(Folder().JournalLines("SRSetRestorePointW"),
                ElementsAre(RestorePointLine("102", "0"), RestorePointLine("103", "4711")));
    EXPECT_EQ(run.Count("Entering EndRestorePoint"), 1u);
}
} // namespace
