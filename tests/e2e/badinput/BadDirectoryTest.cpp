// Directories and keys that loop, vanish or deny access during a run. The first device's install is held, the machine
// is changed, and the run continues.

#include <gmock/gmock.h>

#include <stdexcept>

#include "Adapter.h"
#include "BadFiles.h"
#include "EmulatedSystem.h"
#include "EntryPoints.h"
#include "Environment.h"
#include "Handles.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"

namespace {
using testing::ElementsAre;

constexpr char kFirst[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kSecond[] = "VEN_5D1A&DEV_7A02&SUBSYS_00115D1A&REV_03";
constexpr char kThird[] = "VEN_5D1A&DEV_7A03&SUBSYS_00115D1A&REV_03";
constexpr char kEndOfWalk[] = "************ finished enumerating registry for devices\n";

/// @return the Unix path of a Wine path.
std::string UnixName(const std::string& path)
{
    using UnixNameFn = char*(CDECL*)(LPCWSTR);
    const auto find = FindEntry<UnixNameFn>(GetModuleHandleA("kernel32.dll"), "wine_get_unix_file_name");
    char* const found = find == nullptr ? nullptr : find(std::wstring(path.begin(), path.end()).c_str());
    const std::string name = found == nullptr ? "" : found;
    HeapFree(GetProcessHeap(), 0, found);
    return name;
}

/// Runs a Unix shell line and waits for its end, which only the file `done` shows.
void RunBelowWine(const std::string& line, const std::string& done)
{
    std::string commandLine = "sh -c \"" + line + "; : > '" + UnixName(done) + "'\"";
    STARTUPINFOA startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessA("Z:\\bin\\sh", commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &process) == FALSE) {
        throw std::runtime_error("cannot run " + commandLine);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    const DWORD start = GetTickCount();
    while (!FileExists(done)) {
        if (GetTickCount() - start > ProgramRun::kLimit) {
            throw std::runtime_error("did not end: " + commandLine);
        }
        Sleep(10);
    }
    DeleteFileA(done.c_str());
}

/// A link in the file system, which may lead to nothing or to itself. The destructor removes it before anything below
/// it is enumerated.
class Link
{
public:
    enum class To
    {
        File,
        Directory
    };

    Link(const RunFolder& folder, const std::string& name, const std::string& target, To kind)
        : m_path(folder.At(name)), m_unixPath(UnixName(m_path)), m_done(folder.At("done")), m_kind(kind)
    {
        const std::string targetPath = folder.At(target);
        if (RunsInWine()) {
            // Wine cannot create links; Unix can.
            RunBelowWine("ln -s '" + UnixName(targetPath) + "' '" + m_unixPath + "'", m_done);
            return;
        }
        using CreateLinkFn = BOOLEAN(WINAPI*)(LPCSTR, LPCSTR, DWORD);
        const auto create = FindEntry<CreateLinkFn>(GetModuleHandleA("kernel32.dll"), "CreateSymbolicLinkA");
        constexpr DWORD kDirectoryLink = 1;
        if (create == nullptr ||
            create(m_path.c_str(), targetPath.c_str(), kind == To::Directory ? kDirectoryLink : 0) == FALSE) {
            throw std::runtime_error("cannot make the link " + m_path);
        }
    }
    ~Link()
    {
        if (RunsInWine()) {
            RunBelowWine("rm -f '" + m_unixPath + "'", m_done);
        } else if (m_kind == To::Directory) {
            RemoveDirectoryA(m_path.c_str());
        } else {
            DeleteFileA(m_path.c_str());
        }
    }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

private:
    std::string m_path;
    std::string m_unixPath; // empty outside Wine
    std::string m_done;
    To m_kind;
};

class LoopingDirectories : public DoubleRun
{
protected:
    const Adapter m_first{kFirst};
};

TEST_F(LoopingDirectories, ADirectoryThatLeadsBackToItselfIsSearchedOnceForEachOfItsNames)
{
    WriteInf("one.inf", InfFor(kFirst));
    WriteInf("other.inf", InfFor(kSecond));
    const Link again(Folder(), "Inf\\Again", "Inf", Link::To::Directory);
    const Link asInf(Folder(), "Inf\\back.inf", "Inf", Link::To::Directory);
    const Adapter unlisted(kThird);
    Folder().WriteSetupIni(
        {std::string("InfSectionName=") + kModelSection, "InfDir=Inf\\Again\\Again\\Again", "InfDir=Inf"});

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\Again\\Again\\Again\\one.inf", kFirst)));
    // Two names of the directory, four passes over the unlisted device; each file is stored once.
    EXPECT_EQ(run.Count("Adding INF other.infto vector\n"), 1u);
    EXPECT_EQ(run.Count("Adding INF one.infto vector\n"), 1u);
    EXPECT_EQ(run.Count("GetInfFile(), key:[[" + std::string(kThird) + "]], dir:" + Folder().At("Inf\\") + "\n"), 1u);
    EXPECT_TRUE(run.Traced(kEndOfWalk));
}

TEST_F(LoopingDirectories, ALinkToItselfAndALinkToNothingAreNotDirectories)
{
    WriteInf("one.inf", InfFor(kFirst));
    const Link loop(Folder(), "Loop", "Loop", Link::To::Directory);
    const Link nowhere(Folder(), "Nowhere", "Gone", Link::To::Directory);
    Folder().Write("File", "no directory");
    Folder().WriteSetupIni(
        {std::string("InfSectionName=") + kModelSection, "InfDir=Loop", "InfDir=Nowhere", "InfDir=File", "InfDir=Inf"});

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    for (const char* name : {"Loop\\", "Nowhere\\", "File\\"}) {
        const std::string directory = Folder().At(name);
        const std::string said = "GetInfFile(), key:[[" + std::string(kFirst) + "]], dir:" + directory + "\n";
        EXPECT_THAT(run.Between(said, "done processing infs in this directory\n"),
                    ElementsAre(said, "Entering - GetINFSectionNamesFromINI",
                                "section names from ini: " + std::string(kModelSection) + "\n",
                                "added section name: " + std::string(kModelSection) + "\n",
                                "done processing infs in this directory\n"));
    }
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst)));
}

TEST_F(LoopingDirectories, InfFilesThatAreLinksToNothingOrToThemselvesAreRefusedAndTheNextServes)
{
    const Link loop(Folder(), "Inf\\alpha.inf", "Inf\\alpha.inf", Link::To::File);
    const Link nowhere(Folder(), "Inf\\beta.inf", "Inf\\gone", Link::To::File);
    WriteInf("one.inf", InfFor(kFirst));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    for (const char* name : {"alpha.inf", "beta.inf"}) {
        // A platform may leave such a file out of the list of the directory.
        if (run.Traced(std::string("processing: ") + name + "\n")) {
            EXPECT_TRUE(run.Traced("unable to open file: " + Folder().At("Inf\\") + name + "\n"));
        }
    }
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst)));
}

class ChangingMachine : public DoubleRun
{
protected:
    ChangingMachine()
    {
        WriteInf("one.inf", InfFor(kFirst));
        WriteInf("three.inf", InfFor(kThird));
        WriteInf("two.inf", InfFor(kSecond));
        Folder().Answer("NetInst", "HoldInstall1", "1");
    }

    /// Starts a run and waits until its first install is held.
    void StartAndHold()
    {
        m_run = StartMorvix("/s /nr");
        m_run->WaitForTrace("2K/XP install: ");
    }

    FinishedRun ReleaseAndFinish()
    {
        Folder().Write("NetInst.release", "");
        return m_run->Finish();
    }

    const Adapter m_first{kFirst};
    const Adapter m_second{kSecond};
    const Adapter m_third{kThird};

private:
    std::unique_ptr<ProgramRun> m_run;
};

TEST_F(ChangingMachine, AnInfThatVanishesAffectsOnlyItsDevice)
{
    StartAndHold();
    Folder().Remove("Inf\\two.inf");
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\three.inf", kThird)));
    EXPECT_EQ(run.Count("Pass 4"), 1u);
}

TEST_F(ChangingMachine, AnInfDirectoryThatVanishesIsAnEmptyOneForTheDevicesThatFollow)
{
    StartAndHold();
    for (const char* name : {"Inf\\one.inf", "Inf\\two.inf", "Inf\\three.inf"}) {
        Folder().Remove(name);
    }
    // The search of the first device may keep the directory itself.
    RemoveDirectoryA(Folder().At("Inf").c_str());
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst)));
    EXPECT_EQ(run.Count("device: " + std::string(kSecond) + "\n"), 1u);
    EXPECT_EQ(run.Count("device: " + std::string(kThird) + "\n"), 1u);
    EXPECT_EQ(run.Count("Pass 4"), 2u);
    EXPECT_TRUE(run.Traced(kEndOfWalk));
}

TEST_F(ChangingMachine, ASetupIniThatVanishesLeavesTheDevicesThatFollowWithoutDirectories)
{
    StartAndHold();
    Folder().Remove("Morvix.ini");
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst)));
    EXPECT_EQ(run.Count("infdirs: \n"), 2u);
    EXPECT_EQ(run.Count("Pass 4"), 2u);
    EXPECT_TRUE(run.Traced(kEndOfWalk));
}

TEST_F(ChangingMachine, ASetupIniThatIsDeniedKeepsItsContentForThisPass)
{
    StartAndHold();
    const UniqueFile locked(CreateFileA(Folder().At("Morvix.ini").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(locked.IsOpen());
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("infdirs: [" + Folder().At("Inf\\") + "] \n"), 3u);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\two.inf", kSecond),
                                        InstallLine("Inf\\three.inf", kThird)));
}

TEST_F(ChangingMachine, ASetupIniThatIsReplacedCountsFromTheNextDevice)
{
    StartAndHold();
    Folder().Write("Other\\other.inf", InfFor(kSecond));
    Folder().WriteSetupIni({std::string("InfSectionName=") + kModelSection, "InfDir=Other", "InfDir=Inf"});
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Other\\other.inf", kSecond),
                                        InstallLine("Inf\\three.inf", kThird)));
}

TEST_F(ChangingMachine, AnInfThatIsReplacedByNoiseIsRefusedFromTheNextDevice)
{
    StartAndHold();
    WriteInf("one.inf", BinaryNoise(5000));
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("signature section match for this OS not found\n"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\two.inf", kSecond),
                                        InstallLine("Inf\\three.inf", kThird)));
}

TEST_F(ChangingMachine, AnInfThatIsDeniedIsTracedAndAffectsOnlyItsDevice)
{
    StartAndHold();
    const std::string path = Folder().At("Inf\\two.inf");
    const UniqueFile locked(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(locked.IsOpen());
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("unable to open file: " + path + "\n"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\three.inf", kThird)));
}

TEST_F(ChangingMachine, ADeviceThatIsPulledOutDuringTheRunIsNotInstalledAndTheNextIs)
{
    StartAndHold();
    DeleteRegistryTree(R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + std::string(kThird));
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\two.inf", kSecond)));
    EXPECT_TRUE(run.Traced(kEndOfWalk));
}

TEST_F(ChangingMachine, TheDeviceBeingInstalledMayVanishItself)
{
    StartAndHold();
    DeleteRegistryTree(R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + std::string(kFirst));
    const FinishedRun run = ReleaseAndFinish();
    EXPECT_EQ(run.exitCode, 0);
    // The walk uses an index: the key after the vanished one has moved up by one, and the next run finds it.
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kFirst), InstallLine("Inf\\three.inf", kThird)));
    EXPECT_TRUE(run.Traced(kEndOfWalk));
}
} // namespace
