// The life of the package under the engine of this system: two versions of it, and each thing that happens to one.

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>

#include "Bundle.h"
#include "ChildTask.h"
#include "EngineTurn.h"
#include "Environment.h"
#include "InstallerLog.h"
#include "MachineUse.h"
#include "MsiPackage.h"
#include "NativeMachine.h"
#include "ProcessorRule.h"
#include "ProgramRun.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"
#include "StandardUserToken.h"

namespace {
constexpr DWORD kLimit = 1200000;
constexpr char kFolderKey[] = R"(SOFTWARE\Norda\Morvix)";
constexpr char kProgramEnded[] = "the program ended with exit code 0";
// Whatever the step does, it logs what it runs first.
constexpr char kAnyStep[] = "running ";

struct EngineRun
{
    DWORD exitCode = 0;
    std::string log;
};

std::string ReadLog(const std::string& path)
{
    return FileExists(path) ? InstallerLogText(ReadFileBytes(path)) : "";
}

/// Asks the engine when no other installation runs.
DWORD AskEngine(const std::function<uint32_t()>& ask)
{
    static EngineTurn turn;
    return turn.Ask(ask, [](unsigned seconds) { Sleep(seconds * 1000); });
}

DWORD ExitCodeOfEngine(const std::string& arguments)
{
    const std::string engine = SystemDirectory() + "\\msiexec.exe";
    const StartedProgram started = StartProgram(engine, "\"" + engine + "\" " + arguments, SystemDirectory());
    if (WaitForSingleObject(started.process.get(), kLimit) != WAIT_OBJECT_0) {
        throw std::runtime_error("the engine does not end: " + arguments);
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(started.process.get(), &exitCode);
    return exitCode;
}

/// A quiet run of the engine. The log is left for the report as package-<name>.log.
EngineRun RunEngine(const std::string& name, const std::string& arguments)
{
    const std::string log = ResultFile("package-" + name + ".log");
    EngineRun run;
    run.exitCode = AskEngine([&] { return ExitCodeOfEngine(arguments + " /qn /norestart /l*v \"" + log + "\""); });
    run.log = ReadLog(log);
    return run;
}

/// Has the engine repair the product as it does by itself, in a process of its own: a row that follows must not find
/// the engine's settings changed.
/// @return the child's "error".
std::string SelfRepair(const std::string& product, const std::string& log)
{
    std::string error;
    AskEngine([&] {
        const ScratchDirectory directory;
        const std::string report = directory.At("report.txt");
        const StartedProgram started = StartProgram(
            OwnProgram(), ChildCommandLine(OwnProgram(), report, {"self-repair", product, log}), directory.Path());
        error = WaitForReport(started.process.get(), report).At("error");
        return error == std::to_string(EngineTurn::kAnotherRuns) ? EngineTurn::kAnotherRuns : 0;
    });
    return error;
}

std::string ProgramFolder()
{
    std::string folder = ReadRegistryText(kFolderKey, "InstallDir");
    while (folder.ends_with('\\')) {
        folder.pop_back();
    }
    return folder;
}

/// The names of the files below a folder, in lower case and sorted.
std::vector<std::string> FileNamesBelow(const std::string& folder)
{
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, missing)) {
        if (entry.is_regular_file()) {
            names.push_back(entry.path().filename().string());
            std::ranges::transform(names.back(), names.back().begin(),
                                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        }
    }
    std::ranges::sort(names);
    return names;
}

/// Has this thread act as a standard user.
class WithoutRights
{
public:
    WithoutRights()
    {
        const UniqueHandle token = StandardUserToken();
        if (!token || ImpersonateLoggedOnUser(token.get()) == FALSE) {
            throw std::runtime_error("this thread cannot act without rights, error " + std::to_string(GetLastError()));
        }
    }
    ~WithoutRights() { RevertToSelf(); }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;
};

/// @return 0 when the file could be opened or made, else why not.
DWORD ErrorOfOpening(const std::string& path, DWORD access, DWORD disposition)
{
    const UniqueFile file(CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, disposition, 0, nullptr));
    return file.IsOpen() ? ERROR_SUCCESS : GetLastError();
}

class PackageLifetime : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto why = WhyNoX64Machine(NativeMachine())) {
            GTEST_SKIP() << NotHere(*why);
        }
        if (m_old.IsInstalled() || m_new.IsInstalled() || ReadRegistryText(kFolderKey, "InstallDir") != "<none>") {
            GTEST_SKIP() << NotHere("Morvix is installed on this machine: use one without it");
        }
        m_ownMachine = true;
    }

    // Also after a failure nothing stays.
    void TearDown() override
    {
        for (const MsiPackage* package : {&m_new, &m_old}) {
            if (m_ownMachine && package->IsInstalled()) {
                EXPECT_EQ(RunEngine("cleaning", "/x " + package->ProductCode()).exitCode, 0u);
            }
        }
    }

    static EngineRun Install(const std::string& name, const MsiPackage& package, const std::string& properties = "")
    {
        return RunEngine(name, "/i \"" + package.Path() + "\" " + properties);
    }

    static void ExpectFilesOf(const MsiPackage& package)
    {
        EXPECT_EQ(FileNamesBelow(ProgramFolder()), package.FileNames());
    }

    static void LoseAFile() { ASSERT_NE(DeleteFileA((ProgramFolder() + "\\NetInst.dll").c_str()), FALSE); }

    const MsiPackage m_old{PackagePath("morvix-old.msi")};
    const MsiPackage m_new{PackagePath("morvix-new.msi")};

private:
    bool m_ownMachine = false;
};
} // namespace

TEST_F(PackageLifetime, AnInstallationCopiesItsFilesAndRunsTheDriverStep)
{
    const EngineRun run = Install("installation", m_old);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_TRUE(m_old.IsInstalled());
    ExpectFilesOf(m_old);
    EXPECT_TRUE(StepLogged(run.log, "running \"" + ProgramFolder() + "\\Morvix.exe\" /s /m, at most 900 seconds"));
    EXPECT_TRUE(StepLogged(run.log, kProgramEnded));
}

TEST_F(PackageLifetime, ARepairBringsALostFileBackAndRunsTheDriverStep)
{
    ASSERT_EQ(Install("before-repair", m_old).exitCode, 0u);
    LoseAFile();
    const EngineRun run = Install("repair", m_old, "REINSTALL=ALL REINSTALLMODE=amus");
    EXPECT_EQ(run.exitCode, 0u);
    ExpectFilesOf(m_old);
    EXPECT_TRUE(StepLogged(run.log, kProgramEnded));
}

TEST_F(PackageLifetime, AnUpgradeReplacesTheOlderVersionAndRunsTheDriverStep)
{
    ASSERT_EQ(Install("before-upgrade", m_old).exitCode, 0u);
    const EngineRun run = Install("upgrade", m_new);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_FALSE(m_old.IsInstalled());
    EXPECT_TRUE(m_new.IsInstalled());
    ExpectFilesOf(m_new);
    EXPECT_TRUE(StepLogged(run.log, kProgramEnded));
}

TEST_F(PackageLifetime, ARemovalLeavesNoFileAndRunsNoDriverStep)
{
    ASSERT_EQ(Install("before-removal", m_old).exitCode, 0u);
    const std::string folder = ProgramFolder();
    const EngineRun run = RunEngine("removal", "/x " + m_old.ProductCode());
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_FALSE(m_old.IsInstalled());
    EXPECT_FALSE(FileExists(folder));
    EXPECT_EQ(ReadRegistryText(kFolderKey, "InstallDir"), "<none>");
    EXPECT_FALSE(StepLoggedLineThatBegins(run.log, "running \"" + folder));
}

TEST_F(PackageLifetime, AStandardUserReadsTheFolderAndCannotWriteToIt)
{
    if (RunsInWine()) {
        GTEST_SKIP() << NotHere("Wine's engine gives a folder no permissions: use a Windows");
    }
    ASSERT_EQ(Install("rights", m_old).exitCode, 0u);
    const std::string folder = ProgramFolder();
    const std::string planted = folder + "\\planted.dll";
    {
        const WithoutRights user;
        EXPECT_EQ(ErrorOfOpening(planted, GENERIC_WRITE, CREATE_NEW), static_cast<DWORD>(ERROR_ACCESS_DENIED));
        for (const char* name : {"\\Morvix.exe", "\\NetInst.dll", "\\Morvix.ini"}) {
            EXPECT_EQ(ErrorOfOpening(folder + name, GENERIC_WRITE, OPEN_EXISTING),
                      static_cast<DWORD>(ERROR_ACCESS_DENIED))
                << name;
            EXPECT_EQ(ErrorOfOpening(folder + name, DELETE, OPEN_EXISTING), static_cast<DWORD>(ERROR_ACCESS_DENIED))
                << name;
            EXPECT_EQ(ErrorOfOpening(folder + name, GENERIC_READ, OPEN_EXISTING), static_cast<DWORD>(ERROR_SUCCESS))
                << name;
        }
    }
    DeleteFileA(planted.c_str());
}

TEST_F(PackageLifetime, ASelfRepairBringsALostFileBackWithoutTheDriverStep)
{
    ASSERT_EQ(Install("before-self-repair", m_old).exitCode, 0u);
    LoseAFile();
    const std::string log = ResultFile("package-self-repair.log");
    EXPECT_EQ(SelfRepair(m_old.ProductCode(), log), "0");
    ExpectFilesOf(m_old);
    EXPECT_NE(ReadLog(log), "");
    EXPECT_FALSE(StepLoggedLineThatBegins(ReadLog(log), kAnyStep));
}
