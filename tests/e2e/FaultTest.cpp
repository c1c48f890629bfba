// Machines and folders that are not as they should be: every run ends, with a trace and an exit code that tell.

#include <gmock/gmock.h>

#include <algorithm>

#include "Adapter.h"
#include "CleanMachine.h"
#include "EmulatedSystem.h"
#include "Environment.h"
#include "Handles.h"
#include "OwnInfs.h"
#include "ProgramWindows.h"
#include "RegistryKeys.h"

namespace {
using testing::Contains;
using testing::Not;

constexpr int kNotStarted = -1;
constexpr char kRefused[] = "detected previous instance of application or Tavisk is active; unable to continue\n";
constexpr char kProductOptions[] = R"(System\CurrentControlSet\Control\ProductOptions)";

class Fault : public CleanMachine
{
};

class DeviceFault : public DoubleRun
{
};

class WindowsNT4 : public CleanMachine
{
protected:
    void ExpectRefusalWithABox()
    {
        const std::string text = ResourceText(13);
        const auto run = StartMorvix("/s");
        const MessageBoxSeen box = WaitForMessageBox(*run);
        EXPECT_EQ(box.caption, "Morvix");
        EXPECT_EQ(box.text, text);
        EXPECT_EQ(box.owner, nullptr);
        PressInBox(box, IDOK);
        const FinishedRun finished = run->Finish();
        EXPECT_EQ(finished.exitCode, kNotStarted);
        const std::vector<std::string> messages = finished.Messages();
        EXPECT_THAT(messages, Contains("Entering - IsTaviskActive"));
        EXPECT_THAT(messages, Contains("Entering - IsNT4TerminalServer"));
        ASSERT_GE(messages.size(), 2u);
        EXPECT_EQ(messages[messages.size() - 2], text);
        EXPECT_EQ(messages.back(), kRefused);
    }

private:
    EmulatedSystem m_system{{"nt40", "4.0", "1381", "WinNT"}};
};

/// Puts a registry value back at the end of the object's life.
class SavedValue
{
public:
    SavedValue(std::string key, std::string name)
        : m_key(std::move(key)), m_name(std::move(name)), m_before(ReadRegistryValue(m_key, m_name))
    {
    }
    ~SavedValue()
    {
        if (m_before) {
            SetRegistryBytes(m_key, m_name, m_before->bytes, m_before->type);
            return;
        }
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, m_key.c_str(), 0, KEY_SET_VALUE, &key) == ERROR_SUCCESS) {
            RegDeleteValueA(key, m_name.c_str());
            RegCloseKey(key);
        }
    }
    SavedValue(const SavedValue&) = delete;
    SavedValue& operator=(const SavedValue&) = delete;

private:
    std::string m_key;
    std::string m_name;
    std::optional<RegistryValue> m_before;
};

TEST_F(WindowsNT4, RunningManagementSoftwareStopsEvenASilentRunWithABox)
{
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, "TaviskMutex"));
    ExpectRefusalWithABox();
}

TEST_F(WindowsNT4, OnATerminalServerItsMutexIsLookedForInTheGlobalNamespace)
{
    const SavedValue suite(kProductOptions, "ProductSuite");
    SetRegistryList(kProductOptions, "ProductSuite", {"Small Business", "Terminal Server"});
    const UniqueHandle running(CreateMutexA(nullptr, FALSE, R"(Global\TaviskMutex)"));
    ExpectRefusalWithABox();
}

TEST_F(Fault, ADamagedResourceLibraryEndsTheRunWithoutABox)
{
    Folder().Write("MorvixRes.dll", "no library");
    for (const char* arguments : {"", "/s /nr"}) {
        const FinishedRun run = RunMorvix(arguments);
        EXPECT_EQ(run.exitCode, kNotStarted) << arguments;
        EXPECT_TRUE(run.Traced("unable to load: " + Folder().At("MorvixRes.dll") + "\n")) << arguments;
    }
}

TEST_F(Fault, AResourceLibraryWithoutTheDialogEndsTheRun)
{
    Folder().UseDouble("srclient.dll", "MorvixRes.dll");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, kNotStarted);
    EXPECT_EQ(run.Messages().back(), "unable to create the dialog\n");
}

TEST_F(DeviceFault, ADeviceNameWithoutARevisionThatNoInfListsEndsTheRunWithMinusOneAndItsTrace)
{
    WriteInf("other.inf", InfFor("VEN_5D1A&DEV_7A09"));
    const Adapter adapter("VEN_5D1A&DEV_7A44&SUBSYS_00015D1A");
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, -1);
    EXPECT_THAT(run.Messages(), Contains("Pass 2"));
    EXPECT_THAT(run.Messages(), Not(Contains("Pass 3")));
    EXPECT_TRUE(run.Messages().back().starts_with("unhandled fault: ")) << run.Messages().back();
}
} // namespace
