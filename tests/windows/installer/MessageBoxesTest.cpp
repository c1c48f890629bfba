// What each message box looks like: texts, icon, buttons and owner.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string_view>

#include "FcoeCheck.h"
#include "ImportOverride.h"
#include "LangString.h"
#include "LibraryDouble.h"
#include "MachineKeyOverride.h"
#include "ProberStatus.h"
#include "RegistryKeys.h"
#include "RestartQuestion.h"
#include "RunOptions.h"
#include "RunState.h"
#include "SingleInstance.h"
#include "SystemProbe.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
struct Box
{
    std::string caption;
    std::string text;
    UINT type = 0;
    HWND owner = nullptr;
    bool operator==(const Box&) const = default;
};

void PrintTo(const Box& box, std::ostream* out)
{
    *out << "[" << box.caption << "] " << box.text << ", type " << box.type << ", owner " << box.owner;
}

std::vector<Box> boxes;
int pressed = IDOK;

int WINAPI NoteBox(HWND owner, LPCSTR text, LPCSTR caption, UINT type)
{
    boxes.push_back({caption, text, type, owner});
    return pressed;
}

BOOL WINAPI AnswerNT4(LPOSVERSIONINFOA record)
{
    record->dwMajorVersion = 4;
    record->dwMinorVersion = 0;
    record->dwPlatformId = VER_PLATFORM_WIN32_NT;
    return TRUE;
}

// The management software runs, and no other instance.
HANDLE WINAPI KnowTheManagementSoftware(LPSECURITY_ATTRIBUTES, BOOL, LPCSTR name)
{
    SetLastError(std::string_view(name).ends_with("TaviskMutex") ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return nullptr;
}

/// Boxes are only noted, and their texts are this program's own.
class MessageBoxes : public testing::Test
{
protected:
    MessageBoxes()
    {
        boxes.clear();
        resourceModule = GetModuleHandleA(nullptr);
    }
    ~MessageBoxes() override
    {
        resourceModule = nullptr;
        RunOptions = {};
        RunState = {};
    }

private:
    const ImportOverride m_note{"MessageBoxA", reinterpret_cast<void*>(NoteBox)};
};

/// The only network adapter of an otherwise empty machine, booted over FCoE.
class FcoeBootedMachine
{
public:
    FcoeBootedMachine()
    {
        const std::string device = R"(SYSTEM\CurrentControlSet\Enum\PCI\VEN_5D1A&DEV_F001\1)";
        SetRegistryText(device, "ClassGUID", kNetworkClass);
        SetRegistryText(device, "Class", "Net");
        SetRegistryText(device, "Driver", std::string(kNetworkClass) + "\\9001");
        SetRegistryText(std::string(R"(SYSTEM\CurrentControlSet\Control\Class\)") + kNetworkClass + "\\9001",
                        "NetCfgInstanceId", "{A}");
        m_library.Answer("Flags", "1");
    }

private:
    static constexpr char kNetworkClass[] = "{4D36E972-E325-11CE-BFC1-08002BE10318}";
    const MachineKeyOverride m_emptyMachine;
    const LibraryDouble m_library{"nordhapi.dll", "nordhapi.dll"};
};
} // namespace

TEST_F(MessageBoxes, RunningManagementSoftwareShowsAnErrorWithoutAnOwner)
{
    const ImportOverride nt4("GetVersionExA", reinterpret_cast<void*>(AnswerNT4));
    const ImportOverride running("CreateMutexA", reinterpret_cast<void*>(KnowTheManagementSoftware));
    EXPECT_EQ(PreviousInstanceRunning("MorvixTestBox"), 1);
    EXPECT_THAT(boxes, ElementsAre(Box{"Morvix", "text 13", MB_ICONERROR, nullptr}));
}

TEST_F(MessageBoxes, ARefusalOfTheProberShowsAnErrorWithoutAnOwner)
{
    ReportProbeFailure(kStatusNoAdapter, {}, false);
    EXPECT_THAT(boxes, ElementsAre(Box{"text 3", "text 5", MB_ICONERROR, nullptr}));
    boxes.clear();
    ReportProbeFailure(kStatusNoAdapter, {}, true);
    EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(MessageBoxes, AnOldExtensionOnAnFcoeBootedMachineShowsAnErrorWithoutAnOwner)
{
    const FcoeBootedMachine machine;
    EXPECT_FALSE(FcoeBootAllowsRun());
    EXPECT_THAT(boxes, ElementsAre(Box{"text 3", "text 2", MB_ICONERROR, nullptr}));
}

TEST_F(MessageBoxes, TheRestartQuestionHasYesAndNoAndNoIcon)
{
    for (const int button : {IDYES, IDNO}) {
        boxes.clear();
        pressed = button;
        EXPECT_EQ(AskRestartQuestion(), button);
        EXPECT_THAT(boxes, ElementsAre(Box{"caption", "text 22", MB_YESNO, nullptr}));
    }
    pressed = IDOK;
}
