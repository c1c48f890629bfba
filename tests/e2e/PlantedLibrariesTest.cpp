// A user who can write a file where the system searches for a library must not gain administrator rights.

#include <gmock/gmock.h>

#include "EmulatedSystem.h"
#include "Environment.h"
#include "KitAdapters.h"
#include "PlantedDirectory.h"
#include "StorageBoot.h"

namespace {
using testing::Contains;
using testing::IsEmpty;

class PlantedLibraries : public StorageRun
{
protected:
    PlantedLibraries() { WriteInf("ngeatest.inf", InfFor(kFirstDevice)); }

    FinishedRun RunFrom(const std::string& directory)
    {
        const std::string program = Folder().At("Morvix.exe");
        return RunMorvixCalled(program, "/s /nr", directory);
    }

    const InstalledAdapter m_adapter{kFirstDevice, "9001", kFirstInstance};
};

TEST_F(PlantedLibraries, FileVersionsAreReadByTheSystemsLibraryAndNotByOneBesideTheProgram)
{
    const NativeLibrary version("version");
    Folder().UseDouble("planted.dll", "version.dll");
    // A driver file whose version the run reads.
    CopyFileTo(DistFolder() + R"(\Drv\Win7x64\ngea62x64.sys)", DriverPath("ngea62x64.sys"));
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("Entering - GetModuleVersion")) << "a version was read";
    EXPECT_THAT(Folder().JournalLines("called "), IsEmpty());
    if (!RunsInWine()) {
        // There user32.dll itself links the library.
        EXPECT_THAT(Folder().JournalLines("loaded "), IsEmpty());
    }
}

TEST_F(PlantedLibraries, DevicesAndControlsAreThoseOfTheSystemAndNotOfLibrariesBesideTheProgram)
{
    const NativeLibrary setup("setupapi");
    const NativeLibrary controls("comctl32");
    for (const char* name : {"setupapi.dll", "comctl32.dll"}) {
        Folder().UseDouble("planted.dll", name);
    }
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("Exhausted list of PCI devices")) << "devices were listed";
    EXPECT_THAT(Folder().JournalLines("loaded "), IsEmpty());
}

TEST_F(PlantedLibraries, NothingIsLoadedFromTheCurrentDirectory)
{
    const NativeLibrary restorePoints("srclient");
    const NativeLibrary deviceTree("cfgmgr32");
    const PlantedDirectory directory;
    for (const char* name : {"nordhapi.dll", "srclient.dll", "cfgmgr32.dll", "iscsidsc.dll"}) {
        directory.Plant(name);
    }
    const FinishedRun run = RunFrom(directory.Path());
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("invoked dir: " + directory.Path() + "\n"));
    EXPECT_TRUE(run.Traced("Exhausted list of PCI devices")) << "the FCoE library was asked for";
    EXPECT_TRUE(run.Traced("ScanForHardwareChanges()\n"));
    EXPECT_EQ(directory.Journal(), "");
}

TEST_F(PlantedLibraries, ALibraryThatIsLoadedByItsBareNameIsStillFoundBesideTheProgram)
{
    const NativeLibrary restorePoints("srclient");
    Folder().UseDouble("planted.dll", "srclient.dll");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_TRUE(run.Traced("Failed to find SRSetRestorePointW."));
    EXPECT_THAT(Folder().JournalLines("loaded "), Contains("loaded srclient.dll"));
}

class PlantedBesideNetInst : public CleanMachine
{
};

TEST_F(PlantedBesideNetInst, TheSetUpFunctionsOfTheInstallerLibraryAreTheSystemsToo)
{
    const Adapter adapter(kKitAdapters[0].deviceId);
    const NativeLibrary setup("setupapi");
    Folder().UseDouble("planted.dll", "setupapi.dll");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(adapter.Driver(), "<none>") << "the adapter was installed";
    EXPECT_THAT(Folder().JournalLines("loaded "), IsEmpty());
}
} // namespace
