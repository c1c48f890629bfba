// What the system answers when it is to store an INF file without a catalog, and that it asks nobody.

#include <gmock/gmock.h>

// setupapi.h needs windows.h first.
#include <setupapi.h>

#include <set>

#include "Bundle.h"
#include "ChildTask.h"
#include "EntryPoints.h"
#include "Environment.h"
#include "HexNumber.h"
#include "ProgramRun.h"
#include "ScratchDirectory.h"
#include "SystemLibrary.h"
#include "WindowWatch.h"

namespace {
// An answer that takes longer waits for somebody.
constexpr DWORD kLimit = 180000;
constexpr DWORD kLookAgain = 100;

constexpr char kDevice[] = "VEN_5D1A&DEV_7AFE";

using UninstallFn = decltype(&SetupUninstallOEMInfA);

std::string InfWithoutCatalog()
{
    return "[Version]\r\nSignature=\"$Windows NT$\"\r\nClass=Net\r\n"
           "ClassGUID={4D36E972-E325-11CE-BFC1-08002BE10318}\r\n"
           "Provider=%Provider%\r\nDriverVer=01/02/2013,1.2.3.4\r\n\r\n"
           "[Manufacturer]\r\n%Provider%=Norda,NTamd64\r\n\r\n"
           "[Norda.NTamd64]\r\n%Probe%=Probe.ndi, PCI\\" +
           std::string(kDevice) +
           "\r\n\r\n"
           "[Probe.ndi.NTamd64]\r\n\r\n"
           "[Strings]\r\nProvider=\"Norda\"\r\nProbe=\"Norda Probe\"\r\n";
}

/// The names under which the store has the INF of this test.
std::vector<std::string> StoredCopies()
{
    const std::string folder = WindowsDirectory() + "\\inf\\";
    std::vector<std::string> names = FilesMatching(folder + "*.inf");
    std::erase_if(names, [&](const std::string& name) {
        return ReadFileBytes(folder + name).find(kDevice) == std::string::npos;
    });
    return names;
}

/// Takes the INF out of the store, before the test and after it.
class CleanStore
{
public:
    CleanStore() { Remove(); }
    ~CleanStore() { Remove(); }
    CleanStore(const CleanStore&) = delete;
    CleanStore& operator=(const CleanStore&) = delete;

    static void Remove()
    {
        const UniqueLibrary library = LoadSystemLibrary("setupapi.dll");
        const auto uninstall = FindEntry<UninstallFn>(library.get(), "SetupUninstallOEMInfA");
        for (const std::string& name : StoredCopies()) {
            if (uninstall != nullptr) {
                uninstall(name.c_str(), SUOI_FORCEDELETE, nullptr);
            }
            // Wine leaves the INF's compiled form.
            DeleteFileA((WindowsDirectory() + "\\inf\\" + name.substr(0, name.rfind('.')) + ".pnf").c_str());
        }
    }
};

/// Reports every window that comes, leaves a picture of it and closes it.
class Questions
{
public:
    explicit Questions(std::string picture) : m_picture(std::move(picture)) {}

    void ReportAndClose()
    {
        for (const SeenWindow& seen : m_watch.New()) {
            if (m_reported.insert(seen.window).second) {
                ADD_FAILURE() << "a window came: " << seen.Description();
                LeavePicture(m_picture);
            }
            PostMessageA(seen.window, WM_CLOSE, 0, 0);
        }
    }

private:
    WindowWatch m_watch;
    std::string m_picture;
    std::set<HWND> m_reported;
};

/// Has a process of its own store the INF, in that mode, and watches the screen meanwhile.
ChildReport StoreAndWatch(const std::string& inf, const std::string& mode)
{
    const ScratchDirectory directory;
    const std::string report = directory.At("report.txt");
    Questions questions("unsigned-inf-" + mode);
    const StartedProgram started =
        StartProgram(OwnProgram(), ChildCommandLine(OwnProgram(), report, {"store", inf, mode}), directory.Path());
    DWORD waited = 0;
    // A console of the child's own would be a window that nobody asked for; it uses this program's.
    for (; WaitForSingleObject(started.process.get(), kLookAgain) == WAIT_TIMEOUT && waited < kLimit;
         waited += kLookAgain) {
        questions.ReportAndClose();
    }
    EXPECT_LT(waited, kLimit) << "the system does not answer";
    if (waited >= kLimit) {
        TerminateProcess(started.process.get(), 99);
    }
    return WaitForReport(started.process.get(), report);
}

class UnsignedInf : public testing::Test
{
protected:
    void ExpectAnAnswerWithoutAQuestion(const std::string& mode)
    {
        const ScratchDirectory directory;
        const CleanStore store;
        WriteFileBytes(directory.At("mrvxprob.inf"), InfWithoutCatalog());
        const ChildReport answer = StoreAndWatch(directory.At("mrvxprob.inf"), mode);
        RecordProperty("stored", answer.At("stored"));
        RecordProperty("error", answer.At("error"));
        if (answer.At("stored") == "yes") {
            EXPECT_THAT(StoredCopies(), testing::SizeIs(1));
            store.Remove();
        } else {
            EXPECT_EQ(answer.At("stored"), "no");
            EXPECT_NE(answer.At("error"), Hex(ERROR_SUCCESS));
        }
        EXPECT_THAT(StoredCopies(), testing::IsEmpty());
    }
};
} // namespace

TEST_F(UnsignedInf, IsStoredOrRefusedInTheSilentModeAndNothingAsks)
{
    ExpectAnAnswerWithoutAQuestion("silently");
}

TEST_F(UnsignedInf, IsStoredOrRefusedOutsideTheSilentModeAndNothingAsks)
{
    ExpectAnAnswerWithoutAQuestion("asking");
}
