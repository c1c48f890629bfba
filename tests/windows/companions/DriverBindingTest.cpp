// How NetInst.dll, as it was built, reports the system's answers. The system's driver update and its configuration
// manager are doubles, since those of the test environment refuse nothing and report no device problems.

#include <gmock/gmock.h>
#include <windows.h>
// The headers below need windows.h first.
#include <newdev.h>
#include <setupapi.h>

#include <bit>
#include <string_view>

#include "CompanionFiles.h"
#include "DebugOutput.h"
#include "NetInstClient.h"
#include "RegistryKeys.h"
#include "SimulatedAdapter.h"
#include "SystemLibraryDoubles.h"
#include "WindowStations.h"

namespace {
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kDevice[] = "VEN_5D1A&DEV_1A2B&SUBSYS_0C0F5D1A&REV_07";
// The simulated adapter's, and that of a second card of the same kind.
constexpr char kInstance[] = "3&267a616a&0&C8";
constexpr char kSecondInstance[] = "3&267a616a&0&D0";
constexpr char kConfigurationManager[] = "cfgmgr32.dll";
constexpr char kDriverUpdate[] = "newdev.dll";
constexpr char kSetupFunctions[] = "setupapi.dll";
constexpr auto kRefused = static_cast<int32_t>(0xE0000207);
constexpr auto kNotThere = static_cast<int32_t>(0xE000020B);

// The only device that the system lists as present; empty for none.
std::string presentInstance;

HDEVINFO WINAPI ListPresentInstance(const GUID* classGuid, PCSTR enumerator, HWND parent, DWORD flags)
{
    if ((flags & DIGCF_PRESENT) == 0) {
        return SetupDiGetClassDevsA(classGuid, enumerator, parent, flags);
    }
    const HDEVINFO devices = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    if (!presentInstance.empty()) {
        SetupDiOpenDeviceInfoA(devices, presentInstance.c_str(), nullptr, 0, nullptr);
    }
    return devices;
}

FARPROC WINAPI FindEntryOrListPresentInstance(HMODULE library, LPCSTR name)
{
    return std::string_view(name) == "SetupDiGetClassDevsA" ? std::bit_cast<FARPROC>(&ListPresentInstance)
                                                            : GetProcAddress(library, name);
}

// A library of set-up functions that lacks one.
FARPROC WINAPI FindAllEntriesButOne(HMODULE library, LPCSTR name)
{
    return GetProcAddress(library, std::string_view(name) == "SetupDiGetClassDevsA" ? "NoSuchFunction" : name);
}

/// Makes the system list no device as present, or one, for the life of the object.
class PresentDevices
{
public:
    explicit PresentDevices(HMODULE caller, const std::string& instance = {})
        : m_override("GetProcAddress", reinterpret_cast<void*>(&FindEntryOrListPresentInstance), caller)
    {
        presentInstance = instance;
    }

private:
    const ImportOverride m_override;
};

std::string InstanceId(const std::string& instance)
{
    return std::string(R"(PCI\)") + kDevice + "\\" + instance;
}

std::string InstanceKey(const std::string& instance)
{
    return R"(SYSTEM\CurrentControlSet\Enum\)" + InstanceId(instance);
}

std::string NumberOf(const std::string& key, const std::string& name)
{
    const auto value = ReadRegistryValue(key, name);
    if (!value || value->type != REG_DWORD || value->bytes.size() != sizeof(DWORD)) {
        return "<none>";
    }
    DWORD number = 0;
    value->bytes.copy(reinterpret_cast<char*>(&number), sizeof(number));
    return std::to_string(number);
}

class DriverBinding : public testing::Test
{
protected:
    DriverBinding()
    {
        CreateRegistryKey(m_debugKey.Path());
        m_doubles.Use(kDriverUpdate);
        m_doubles.Use(kConfigurationManager);
    }

    [[nodiscard]] InstallAnswer Install() const
    {
        // The error of an earlier call must not be reported.
        return m_library.Install(KitFile("Drv\\Win7x64\\ngea62x64.inf"), m_adapter.HardwareId(), ERROR_ACCESS_DENIED);
    }
    void ExpectSuccess() const
    {
        const InstallAnswer answer = Install();
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.lastError, 0U);
    }
    void ExpectRefusal(DWORD lastError) const
    {
        const InstallAnswer answer = Install();
        EXPECT_EQ(answer.status, kRefused);
        EXPECT_EQ(answer.lastError, lastError);
    }
    [[nodiscard]] std::string Line(const std::string& text) const
    {
        return "NetInst: " + m_adapter.HardwareId() + ": " + text + "\n";
    }
    [[nodiscard]] std::vector<std::string> Traced() { return m_output.OwnLines(); }
    [[nodiscard]] std::string RestartRecord() const { return NumberOf(m_record.Path(), kNetInstRestartValue); }
    void Refuse(const std::string& error)
    {
        m_doubles.Answer(kDriverUpdate, "Fail", "1");
        m_doubles.Answer(kDriverUpdate, "Error", error);
    }
    void HaveProblem(unsigned problem, const std::string& call = {})
    {
        m_doubles.Answer(kConfigurationManager, "Status" + call, "0x400");
        m_doubles.Answer(kConfigurationManager, "Problem" + call, std::to_string(problem));
    }
    void AddSecondCard() const
    {
        SetRegistryList(InstanceKey(kSecondInstance), "HardwareID", {m_adapter.HardwareId()});
        SetRegistryText(InstanceKey(kSecondInstance), "ClassGUID", "{4D36E972-E325-11CE-BFC1-08002BE10318}");
    }
    [[nodiscard]] std::string UpdateCall(unsigned flags) const
    {
        return "UpdateDriverForPlugAndPlayDevicesA parent=none id=[" + m_adapter.HardwareId() + "] inf=[" +
               KitFile("Drv\\Win7x64\\ngea62x64.inf") + "] flags=" + std::to_string(flags) + " restart=0";
    }

    const ScratchRegistryKey m_debugKey{R"(SOFTWARE\Norda\Basedrivers\Debug)"};
    const ScratchRegistryKey m_record{kNetInstKey};
    const SimulatedAdapter m_adapter{kDevice};
    const NetInstLibrary m_library;
    SystemLibraryDoubles m_doubles{m_library.Module()};
    DebugOutput m_output;
};

/// Makes this process's set-up functions non-interactive for the life of the object.
class NonInteractiveMode
{
public:
    NonInteractiveMode() { SetupSetNonInteractiveMode(TRUE); }
    ~NonInteractiveMode() { SetupSetNonInteractiveMode(FALSE); }
    NonInteractiveMode(const NonInteractiveMode&) = delete;
    NonInteractiveMode& operator=(const NonInteractiveMode&) = delete;
};

TEST_F(DriverBinding, EveryRefusalHasTheSameStatusAndTheSystemsCode)
{
    for (const char* error : {"0xE000022F", "0xE000023F", "0xE0000240", "0xE0000241", "0xE0000242", "0xE0000243",
                              "0xE0000244", "0xE0000228", "0xE0000235", "0x800B0109", "2", "5", "259", "1223"}) {
        SCOPED_TRACE(error);
        Refuse(error);
        ExpectRefusal(static_cast<DWORD>(std::stoul(error, nullptr, 0)));
    }
    EXPECT_THAT(Traced(), Contains(Line("driver refused, error e0000242")));
    EXPECT_EQ(RestartRecord(), "<none>");
}

TEST_F(DriverBinding, ARefusalWithoutAReasonIsAGeneralFailure)
{
    Refuse("0");
    ExpectRefusal(ERROR_GEN_FAILURE);
}

TEST_F(DriverBinding, ASystemWithoutDriverUpdateRefusesEveryDriver)
{
    m_doubles.Lack(kDriverUpdate);
    ExpectRefusal(ERROR_MOD_NOT_FOUND);
}

TEST_F(DriverBinding, ASystemWithoutTheSetUpFunctionsRefusesEveryDriver)
{
    {
        const ImportOverride incomplete("GetProcAddress", reinterpret_cast<void*>(&FindAllEntriesButOne),
                                        m_library.Module());
        ExpectRefusal(ERROR_PROC_NOT_FOUND);
    }
    m_doubles.Lack(kSetupFunctions);
    ExpectRefusal(ERROR_MOD_NOT_FOUND);
    EXPECT_THAT(m_doubles.Journal(), IsEmpty());
}

TEST_F(DriverBinding, ADriverThatIsBoundAndDoesNotRunIsRefused)
{
    for (const unsigned problem : {52U, 39U, 10U, 28U}) {
        SCOPED_TRACE(problem);
        HaveProblem(problem);
        ExpectRefusal(0x20000000U + problem);
        EXPECT_THAT(Traced(),
                    Contains(Line("driver bound, but the device has problem code " + std::to_string(problem))));
    }
}

TEST_F(DriverBinding, AProblemThatTheDriverDidNotCauseIsNotARefusal)
{
    HaveProblem(22);
    ExpectSuccess();
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(DriverBinding, AProblemOfOneOfTwoDevicesIsARefusal)
{
    AddSecondCard();
    HaveProblem(14, "1");
    HaveProblem(39, "2");
    ExpectRefusal(0x20000027);
    EXPECT_EQ(RestartRecord(), "1") << "the other device still needs its restart";
}

TEST_F(DriverBinding, AStateThatCannotBeReadIsNotARefusal)
{
    HaveProblem(52);
    constexpr char kCallNotImplemented[] = "0x20"; // CR_CALL_NOT_IMPLEMENTED of the configuration manager
    m_doubles.Answer(kConfigurationManager, "StateResult", kCallNotImplemented);
    ExpectSuccess();
    m_doubles.Lack(kConfigurationManager);
    ExpectSuccess();
}

TEST_F(DriverBinding, ARestartThatTheDeviceNeedsIsRecordedAndIsNotAFailure)
{
    HaveProblem(14);
    ExpectSuccess();
    EXPECT_EQ(RestartRecord(), "1");
    EXPECT_THAT(Traced(), ElementsAre(Line("restart needed, as the device says")));
}

TEST_F(DriverBinding, ARestartThatTheUpdateAsksForIsRecordedAndIsNotAFailure)
{
    m_doubles.Answer(kDriverUpdate, "Restart", "1");
    ExpectSuccess();
    EXPECT_EQ(RestartRecord(), "1");
    EXPECT_THAT(Traced(), ElementsAre(Line("restart needed, as the driver update says")));
}

TEST_F(DriverBinding, ARestartThatTheUpdateAsksForIsRecordedWhenNoStateCanBeRead)
{
    m_doubles.Answer(kDriverUpdate, "Restart", "1");
    m_doubles.Lack(kConfigurationManager);
    ExpectSuccess();
    EXPECT_EQ(RestartRecord(), "1");
}

TEST_F(DriverBinding, ADriverThatDoesNotStartBeforeThePendingRestartIsNotRefused)
{
    m_doubles.Answer(kDriverUpdate, "Restart", "1");
    for (const unsigned problem : {10U, 31U, 39U}) {
        SCOPED_TRACE(problem);
        HaveProblem(problem);
        ExpectSuccess();
        EXPECT_EQ(RestartRecord(), "1");
        DeleteRegistryTree(m_record.Path());
    }
    EXPECT_THAT(Traced(), AllOf(SizeIs(3), Each(Line("restart needed, as the driver update says"))));
}

TEST_F(DriverBinding, ARefusedDriverNeedsNoRestartEvenWhenTheUpdateAsksForOne)
{
    m_doubles.Answer(kDriverUpdate, "Restart", "1");
    HaveProblem(52);
    ExpectRefusal(0x20000034);
    EXPECT_EQ(RestartRecord(), "<none>");
    EXPECT_THAT(Traced(), ElementsAre(Line("driver bound, but the device has problem code 52"),
                                      Line("driver refused, error 20000034")));
}

TEST_F(DriverBinding, ABindingWithoutAProblemRecordsAndTracesNothing)
{
    ExpectSuccess();
    EXPECT_FALSE(RegistryKeyExists(m_record.Path()));
    EXPECT_THAT(Traced(), IsEmpty());
    EXPECT_THAT(m_doubles.Journal(), Contains("CM_Get_DevNode_Status flags=0"));
}

TEST_F(DriverBinding, TheNextIdentificationForgetsTheRestart)
{
    HaveProblem(14);
    ExpectSuccess();
    SetRegistryText(m_record.Path(), "Other", "stays");
    RawRecord record;
    const Held<ISysProberInterface> prober = m_library.MakeProber();
    EXPECT_EQ(static_cast<int32_t>(prober->IdentifySystem(&record)), 0);
    EXPECT_EQ(RestartRecord(), "<none>");
    EXPECT_EQ(ReadRegistryText(m_record.Path(), "Other"), "stays");
}

TEST_F(DriverBinding, NothingIsTracedWhileTheTraceIsOff)
{
    DeleteRegistryTree(m_debugKey.Path());
    Refuse("0xE0000242");
    ExpectRefusal(0xE0000242);
    EXPECT_THAT(Traced(), IsEmpty());
}

TEST_F(DriverBinding, ARemovedCardIsMarkedForReinstallationAndIsNotARefusal)
{
    SetRegistryNumber(InstanceKey(kInstance), "ConfigFlags", 0x4);
    const PresentDevices none(m_library.Module());
    const InstallAnswer answer = Install();
    EXPECT_EQ(answer.status, kNotThere);
    EXPECT_EQ(answer.lastError, 0xE000020BU);
    EXPECT_EQ(NumberOf(InstanceKey(kInstance), "ConfigFlags"), std::to_string(0x24));
    EXPECT_THAT(Traced(), ElementsAre(Line("device not there, 1 marked for re-installation")));
    EXPECT_THAT(m_doubles.Journal(), IsEmpty()) << "there is nothing to bind";
}

TEST_F(DriverBinding, APresentCardIsNotMarkedForReinstallation)
{
    // About to be removed, about to be ejected, and gone by the time it is asked.
    for (const unsigned problem : {21U, 47U}) {
        HaveProblem(problem);
        EXPECT_EQ(Install().status, kNotThere) << problem;
    }
    constexpr char kNoSuchNode[] = "0xD";
    m_doubles.Answer(kConfigurationManager, "StateResult", kNoSuchNode);
    EXPECT_EQ(Install().status, kNotThere);
    EXPECT_THAT(Traced(), Each(Line("device not there, 0 marked for re-installation")));
    EXPECT_EQ(NumberOf(InstanceKey(kInstance), "ConfigFlags"), "<none>");
}

TEST_F(DriverBinding, OfTwoCardsOnlyTheRemovedOneIsMarked)
{
    AddSecondCard();
    HaveProblem(47);
    const PresentDevices first(m_library.Module(), InstanceId(kInstance));
    EXPECT_EQ(Install().status, kNotThere);
    EXPECT_EQ(NumberOf(InstanceKey(kInstance), "ConfigFlags"), "<none>");
    EXPECT_EQ(NumberOf(InstanceKey(kSecondInstance), "ConfigFlags"), std::to_string(0x20));
    EXPECT_THAT(Traced(), ElementsAre(Line("device not there, 1 marked for re-installation")));
}

TEST_F(DriverBinding, NoSuchDeviceFromTheUpdateIsNotARefusal)
{
    Refuse("0xE000020B");
    const InstallAnswer answer = Install();
    EXPECT_EQ(answer.status, kNotThere);
    EXPECT_EQ(answer.lastError, 0xE000020BU);
    EXPECT_EQ(NumberOf(InstanceKey(kInstance), "ConfigFlags"), "<none>") << "the card is present";
}

TEST_F(DriverBinding, TheSystemMayAskWhereAUserSeesTheQuestion)
{
    ExpectSuccess();
    EXPECT_THAT(m_doubles.Journal(), Contains(UpdateCall(INSTALLFLAG_FORCE)));
}

TEST_F(DriverBinding, TheSystemAsksNothingInASilentProcess)
{
    const NonInteractiveMode silent;
    ExpectSuccess();
    EXPECT_THAT(m_doubles.Journal(), Contains(UpdateCall(INSTALLFLAG_FORCE | INSTALLFLAG_NONINTERACTIVE)));
}

TEST_F(DriverBinding, TheSystemAsksNothingWhereNoWindowIsSeen)
{
    const HiddenWindowStation hidden;
    ExpectSuccess();
    EXPECT_THAT(m_doubles.Journal(), Contains(UpdateCall(INSTALLFLAG_FORCE | INSTALLFLAG_NONINTERACTIVE)));
}

TEST_F(DriverBinding, SystemLibrariesAreLoadedFromTheSystemDirectory)
{
    ExpectSuccess();
    std::array<char, MAX_PATH> directory{};
    GetSystemDirectoryA(directory.data(), MAX_PATH);
    const std::string system = std::string(directory.data()) + "\\";
    EXPECT_THAT(m_doubles.Loaded(),
                ElementsAre(system + kSetupFunctions, system + kDriverUpdate, system + kConfigurationManager));
}
} // namespace
