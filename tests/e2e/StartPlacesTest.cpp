// Where the program may be, and from where it may be started.

#include <gmock/gmock.h>

#include <array>

#include "Adapter.h"
#include "Environment.h"
#include "OwnInfs.h"

namespace {
using testing::ElementsAre;

constexpr char kDevice[] = "VEN_5D1A&DEV_7A01&SUBSYS_00115D1A&REV_03";
constexpr char kInf[] = "Inf\\one.inf";

// A word with a non-ASCII letter of the system's code page; plain ASCII where it has none.
std::string AccentedWord()
{
    std::array<char, 32> text{};
    WideCharToMultiByte(CP_ACP, 0, L"Netzger\u00E4te", -1, text.data(), text.size(), nullptr, nullptr);
    return text.data();
}

class StartPlaces : public DoubleRun
{
protected:
    StartPlaces() { WriteInf("one.inf", InfFor(kDevice)); }

    // The program ran with `folder` as its own directory and installed the device from there.
    void ExpectInstallFrom(const FinishedRun& run, const std::string& folder)
    {
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_TRUE(run.Traced("Morvix dir: " + folder + "\n"));
        EXPECT_TRUE(run.Traced("ini file: " + folder + "\\Morvix.ini\n"));
        EXPECT_EQ(Installs().size(), 1u);
        EXPECT_TRUE(run.Traced("!!FOUND INF MATCH\n"));
    }

    // Moves what a run needs to `folder`, which may contain any letters.
    void MoveTo(const std::string& folder)
    {
        ASSERT_NE(CreateDirectoryA(folder.c_str(), nullptr), FALSE);
        ASSERT_NE(CreateDirectoryA((folder + "\\Inf").c_str(), nullptr), FALSE);
        for (const char* name : {"Morvix.exe", "Morvix.ini", "MorvixRes.dll", "NetInst.dll", kInf}) {
            ASSERT_NE(MoveFileA(Folder().At(name).c_str(), (folder + "\\" + name).c_str()), FALSE) << name;
        }
    }

    FinishedRun RunIn(const std::string& folder)
    {
        const std::string program = folder + "\\Morvix.exe";
        return ProgramRun(Output(), program, program, "/s /nr", folder).Finish();
    }

    const Adapter m_adapter{kDevice};
};

TEST_F(StartPlaces, CalledByItsPathFromAnotherDirectoryItWorksInItsOwn)
{
    const ScratchDirectory elsewhere;

    const FinishedRun run = RunMorvixCalled(Folder().At("Morvix.exe"), "/s /nr", elsewhere.Path());

    ExpectInstallFrom(run, Folder().Path());
    EXPECT_TRUE(run.Traced("invoked dir: " + elsewhere.Path() + "\n"));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine(kInf, kDevice)));
}

TEST_F(StartPlaces, CalledByARelativePathItIsFoundFromTheCurrentDirectory)
{
    const std::string path = Folder().Path();
    const std::size_t last = path.rfind('\\');

    const FinishedRun run = RunMorvixCalled(path.substr(last + 1) + "\\Morvix.exe", "/s /nr", path.substr(0, last));

    ExpectInstallFrom(run, path);
    EXPECT_THAT(Installs(), ElementsAre(InstallLine(kInf, kDevice)));
}

TEST_F(StartPlaces, CalledByAPathThatStartsWithADoubleBackslashItIsUsedUnchanged)
{
    const std::string folder = R"(\\?\)" + Folder().Path();

    const FinishedRun run = RunMorvixCalled(folder + "\\Morvix.exe", "/s /nr", Folder().Path());

    ExpectInstallFrom(run, folder);
    EXPECT_TRUE(run.Traced("full path: " + folder + "\\Morvix.exe\n"));
}

TEST_F(StartPlaces, InADirectoryWithBlanksAndLettersBeyondAsciiItInstalls)
{
    const std::string folder = Folder().At("Treiber und " + AccentedWord() + " (Kopie 2)");
    MoveTo(folder);

    const FinishedRun run = RunIn(folder);

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.Traced("full path: " + folder + "\\Morvix.exe\n"));
    EXPECT_TRUE(run.Traced("ini file: " + folder + "\\Morvix.ini\n"));
    const std::string journal = ReadFileBytes(folder + "\\journal.txt");
    EXPECT_THAT(journal, testing::HasSubstr("\\INF\\ONE.INF] id=[PCI\\" + std::string(kDevice) + "]"));
}

TEST_F(StartPlaces, InADirectoryWithADotAndWithoutLettersItInstalls)
{
    const std::string folder = Folder().At("2.0");
    MoveTo(folder);

    const FinishedRun run = RunIn(folder);

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(FileExists(folder + "\\journal.txt"));
}
} // namespace
