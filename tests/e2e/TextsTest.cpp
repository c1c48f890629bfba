// The texts of the program against their kept lists: what the shipped files hold, and what real runs trace.

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <set>
#include <sstream>

#include "EmulatedSystem.h"
#include "Environment.h"
#include "KeptTexts.h"
#include "ProgramWindows.h"
#include "StorageBoot.h"
#include "TestFiles.h"

namespace {
using testing::IsEmpty;

// Shorter ones lie everywhere in a program.
constexpr std::size_t kTellingBytes = 4;

std::string ProgramImage()
{
    return ReadFileBytes(DistFolder() + "\\Morvix.exe");
}

std::vector<std::string> NotHeldBy(const std::string& image, const std::vector<std::string>& texts)
{
    std::vector<std::string> missing;
    std::ranges::copy_if(texts, std::back_inserter(missing), [&](const std::string& text) {
        return text.size() >= kTellingBytes && !HoldsText(image, text);
    });
    return missing;
}

TEST(Texts, EveryKeptLineIsInTheProgram)
{
    const std::string image = ProgramImage();
    for (const KeptLine& line : KeptLines()) {
        EXPECT_THAT(NotHeldBy(image, PartsOf(line.text)), IsEmpty()) << line.text;
    }
}

TEST(Texts, EveryKeptNameIsInTheProgram)
{
    EXPECT_THAT(NotHeldBy(ProgramImage(), KeptTexts("names.txt")), IsEmpty());
}

TEST(Texts, EveryKeptTextOfTheLibrariesIsInThem)
{
    std::string image;
    for (const char* library : {"orv", "orv_pure", "orv_settings", "orv_settings_pure", "base"}) {
        image += ReadFileBytes(TestFile(std::string("texts\\lib") + library + ".a"));
    }
    EXPECT_THAT(NotHeldBy(image, KeptTexts("library.txt")), IsEmpty());
}

TEST(Texts, TheEnglishTextsAreTheKeptOnes)
{
    std::istringstream list(ReadFileBytes(TestFile("texts\\english.txt")));
    const std::vector<std::string> kept = KeptTexts("english.txt");
    std::size_t index = 0;
    for (unsigned id = 0; list >> id; ++index) {
        EXPECT_EQ(ResourceText(id), kept.at(index)) << id;
        std::string rest;
        std::getline(list, rest);
    }
    EXPECT_EQ(index, kept.size());
}

TEST(Texts, AChangedTextIsNotTheKeptOne)
{
    const std::string image = ProgramImage();
    for (const char* changed : {"Entering -WinMain, ", "Entering - RestartMachina", "xntering - RestartMachine",
                                "Exit -> InstallDrivers() ", "Installation result is->", "Norda Morvix restart Now"}) {
        EXPECT_FALSE(HoldsText(image, changed)) << changed;
    }
    EXPECT_EQ(UnkeptLine({"Entering - InstallThread", "Enter -> InstallDrivers()\n", "CoInitialize"}), "");
    EXPECT_NE(UnkeptLine({"Entering - InstallThread", "Enter -> InstallDrivers()", "CoInitialize"}), "");
    EXPECT_NE(UnkeptLine({"Entering - InstallThread "}), "");
    EXPECT_NE(UnkeptLine({"invoked dir:C:\\\n"}), "");
    EXPECT_NE(UnkeptLine({"VEN_5D1A", "Entering - InstallThread"}), "");
    EXPECT_EQ(UnkeptLine({"VEN_5D1A", "Pass 2"}), "");
    EXPECT_NE(UnkeptLine({"VEN_5D1A", "Pass 12"}), "");
}

// Runs of the most different kinds, whose traces are put together.
class TextsOfRuns : public StorageRun
{
protected:
    static constexpr char kThirdDevice[] = "VEN_5D1A&DEV_7A03&SUBSYS_00115D1A&REV_03";
    static constexpr char kUnlistedDevice[] = "VEN_5D1A&DEV_7A04&SUBSYS_00115D1A&REV_03";

    void Run(const std::string& arguments) { Keep(RunMorvix(arguments)); }
    void Keep(const FinishedRun& run)
    {
        for (std::string& message : run.Messages()) {
            m_messages.insert(std::move(message));
        }
    }

    void RunWithEachOption()
    {
        // Somebody else holds the mutex, so that each run ends when it has read its options.
        const UniqueHandle other(CreateMutexA(nullptr, FALSE, "Morvix"));
        for (const char* options : {"", "/m", "/md", "/s /r", "/s /nr", "/s /m", "/s /md", "/n", "/h"}) {
            Run(options);
        }
    }

    void RunWithoutTheFilesBesideTheProgram()
    {
        const std::string ini = ReadFileBytes(Folder().At("Morvix.ini"));
        Folder().Remove("Morvix.ini");
        Run("/s");
        Folder().Write("Morvix.ini", ini);
        Folder().UseDouble("srclient.dll", "MorvixRes.dll");
        Run("/s");
        Folder().Remove("MorvixRes.dll");
        Run("/s");
        CopyFileTo(DistFolder() + "\\MorvixRes.dll", Folder().At("MorvixRes.dll"));
    }

    void RunOnWindowsNT4()
    {
        const EmulatedSystem emulated({"nt40", "4.0", "1381", "WinNT"});
        Folder().Answer("NetInst", "ProberStatus", "0x80640013");
        Run("/s");
        Folder().Answer("NetInst", "ProberStatus", "0");
    }

    // INF files that are turned down for each reason, and one for each outcome of an install.
    void WriteInfs()
    {
        std::vector<std::string> lines = {std::string("InfSectionName=") + kModelSection, "InfDir=Inf",
                                          "InfExclude=excluded.inf"};
        while (lines.size() < 12) {
            lines.push_back("InfDir=Missing\\" + std::string(20, 'd'));
        }
        Folder().WriteSetupIni(lines);
        WriteInf("a-other.inf", InfText({.ids = {kUnlistedDevice}, .signature = "$Chicago$"}));
        WriteInf("b-unicode.inf", AsUnicodeFile(InfFor("VEN_5D1A&DEV_0000")));
        WriteInf("c-empty.inf", InfText({.ids = {}}));
        WriteInf("locked.inf", InfFor(kUnlistedDevice));
        WriteInf("ngeatest.inf", InfFor(kFirstDevice));
        WriteInf("qdatdma.inf", InfFor(kSecondDevice));
        WriteInf("nxgatest.inf", InfFor(kThirdDevice));
        CopyFileTo(DistFolder() + "\\Drv\\Win7x64\\ngea62x64.sys", DriverPath("ngea62x64.sys"));
    }

    void RunOnAMachineThatBootsOverIScsi()
    {
        WriteInfs();
        const UniqueFile locked(CreateFileA(Folder().At("Inf\\locked.inf").c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        const InstalledAdapter first(kFirstDevice, "9001", kFirstInstance);
        const Adapter withoutDriver(kSecondDevice);
        const Adapter withoutInstanceId(kThirdDevice);
        SetRegistryText(R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + std::string(kThirdDevice) + R"(\3&11583659&0&C8)",
                        "Driver", R"({4D36E972-E325-11CE-BFC1-08002BE10318}\9003)");
        const Adapter unlisted(kUnlistedDevice);
        const auto driver = StartAdapterDriver();
        driver->AnswerBootMode(kFirstInstance, 2);
        const IScsiInitiator initiator("iSCSDump.sys");
        UseIScsiLibrary("6", "1", "6000");
        Folder().Answer("srclient", "Sequence", "1");
        {
            const PendingOperations pending({R"(\??\C:\Windows\system32\Tavunstl.exe)"});
            Run("/s");
        }
        const PendingOperations others({R"(\??\C:\Windows\Temp\one.tmp)"});
        Folder().Answer("srclient", "FailEnd", "1");
        Run("/s /m");
    }

    void RunWithoutARestorePoint()
    {
        Folder().Answer("srclient", "Fail", "1");
        Folder().Answer("srclient", "Status", "1058");
        Run("/s /nr");
        Folder().UseDouble("NetInstWithoutExport.dll", "srclient.dll");
        Run("/s /nr");
        Folder().Write("srclient.dll", "no library");
        Run("/s /nr");
    }

    void RunToAFault()
    {
        SetExtensionVersion("16");
        Run("/s");
        SetExtensionVersion("16.2");
    }

    void RunForAFamilyWithoutAFlow()
    {
        Folder().Answer("NetInst", "Family", "Windows NT");
        const auto run = StartMorvix("/s /nr");
        run->WaitForTrace("Exit -> InstallDrivers()");
        PostMessageA(ProgressWindow(*run).Window(), WM_CLOSE, 0, 0);
        Keep(run->Finish());
    }

    void RunForTheFamiliesOf9x()
    {
        const ScratchRegistryKey devices("Enum");
        CreateRegistryKey(devices.Path() + "\\PCI\\" + kFirstDevice + "\\BUS_00&DEV_08");
        const Adapter compatibleIds(kFirstDevice);
        WriteInf("ngeatest.inf", InfText({.ids = {kFirstDevice}, .signature = "$Chicago$"}));
        Folder().Answer("NetInst", "Family", "Windows Millenium");
        Folder().UseDouble("newdev.dll");
        const NativeLibrary newdev("newdev");
        Run("/s /nr");
        Folder().Answer("newdev", "Fail", "1");
        Run("/s /nr");
        Folder().Answer("NetInst", "Family", "Windows 98");
        Folder().UseDouble("Rundll.exe");
        Run("/s /nr");
        const EmulatedSystem windows98({"win98", "4.10", "2222", "WinNT"});
        Folder().Remove("Rundll.exe");
        Run("/s /nr");
    }

    std::set<std::string> m_messages;
    const EmulatedSystem m_windows7{{nullptr, "6.1", "7601", "WinNT"}};
    const NativeLibrary m_srclient{"srclient"};
};

void RemoveFallbackFolder()
{
    const std::string folder = WindowsDirectory() + "\\INSTALL";
    for (const std::string& name : FilesMatching(folder + "\\*.*")) {
        DeleteFileA((folder + "\\" + name).c_str());
    }
    RemoveDirectoryA(folder.c_str());
}

TEST_F(TextsOfRuns, EveryKeptLineThatARunCanHaveIsTraced)
{
    RemoveFallbackFolder();
    RunWithEachOption();
    RunWithoutTheFilesBesideTheProgram();
    RunOnWindowsNT4();
    Folder().UseDouble("srclient.dll");
    RunOnAMachineThatBootsOverIScsi();
    RunWithoutARestorePoint();
    RunToAFault();
    RunForAFamilyWithoutAFlow();
    RunForTheFamiliesOf9x();
    RemoveFallbackFolder();

    for (const KeptLine& line : KeptLines()) {
        if (line.traced) {
            EXPECT_TRUE(std::ranges::any_of(m_messages, [&](const std::string& message) {
                return IsKeptLine(message, line.text);
            })) << line.text;
        }
    }
}
} // namespace
