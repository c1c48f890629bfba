#include "FcoeBootPorts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <vector>

#include "AdapterDevices.h"
#include "DebugOutput.h"
#include "EntryPoints.h"
#include "ImportOverride.h"
#include "ImportSlot.h"
#include "LibraryDouble.h"
#include "RegistryAccess.h"
#include "SystemLibrary.h"

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace {
constexpr char kEntry[] = "Entering -> AreFCoEBootEnabledPortsPresent()";
constexpr char kExit[] = "Exiting -> AreFCoEBootEnabledPortsPresent()";
constexpr char kNoDriverKey[] = "Failed to get driver key from PCI device";
constexpr char kNoInstanceId[] = "Failed to get NetCfgInstanceID from PCI device";
constexpr char kExhausted[] = "Exhausted list of PCI devices";
constexpr char kOtherDebugKey[] = R"(SOFTWARE\NORDA\Network_Services\Debug)";
constexpr char kProductKey[] = R"(SOFTWARE\NORDA\Network_Services\ORV2)";

constexpr char kFirst[] = "VEN_5D1A&DEV_F001";
constexpr char kSecond[] = "VEN_5D1A&DEV_F002";
constexpr char kThird[] = "VEN_5D1A&DEV_F003";

/// Hides the machine's own network adapters, so that the enumeration shows only the test's.
class FcoeBootPorts : public testing::Test
{
protected:
    [[nodiscard]] std::vector<std::string> Messages()
    {
        std::vector<std::string> messages = m_trace.Messages();
        m_trace.Clear();
        return messages;
    }

    MachineKeyOverride m_emptyMachine;

private:
    // After the override: the trace's switch is a key below it.
    TraceCapture m_trace;
};

LibraryDouble HbaLibrary()
{
    return {"nordhapi.dll", "nordhapi.dll"};
}

/// What the library is asked about one adapter whose handle is `handle`.
std::vector<std::string> Questions(const std::string& instanceId, const std::string& handle)
{
    return {"NORDA_InitializeLibrary",
            "HBA_RegisterLibrary",
            "NORDA_GetFCoEControllerInfo [\\DEVICE\\" + instanceId + "]",
            "NORDA_GetFCoEControllerHandle [\\DEVICE\\" + instanceId + "]",
            "NORDA_GetFCAndNICProperties " + handle,
            "CloseAdapter " + handle};
}

/// Two adapters that the library knows by the handles 11 and 12.
struct TwoAdapters
{
    TwoAdapters()
    {
        hba.Answer("Handle.\\DEVICE\\{A}", "11");
        hba.Answer("Handle.\\DEVICE\\{B}", "12");
    }

    const RegistryAdapter first{kFirst, "9001", "{A}"};
    const RegistryAdapter second{kSecond, "9002", "{B}"};
    const LibraryDouble hba = HbaLibrary();
};

/// What the library is asked about both.
std::vector<std::string> QuestionsAboutBoth()
{
    std::vector<std::string> questions = Questions("{A}", "11");
    Append(questions, Questions("{B}", "12"));
    return questions;
}
} // namespace

TEST_F(FcoeBootPorts, WithoutAdaptersTheListIsExhausted)
{
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kExhausted, kExit));
}

TEST_F(FcoeBootPorts, WithoutTheLibraryNoAdapterIsABootPort)
{
    const RegistryAdapter first(kFirst, "9001", "{A}");
    const RegistryAdapter second(kSecond, "9002", "{B}");
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kExhausted, kExit));
}

TEST_F(FcoeBootPorts, RemoteBootAndRemotePageFileAreBootPortsAlsoWhenTheCallFails)
{
    const RegistryAdapter adapter(kFirst, "9001", "{A}");
    const struct
    {
        const char* flags;
        const char* status;
        bool isBootPort;
    } rows[] = {{"1", "0", true},  {"2", "0", true},           {"3", "0", true}, {"0", "0", false},
                {"4", "0", false}, {"0xFFFFFFFC", "0", false}, {"1", "1", true}, {"2", "1", true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "flags " << row.flags << " status " << row.status);
        const LibraryDouble library = HbaLibrary();
        library.Answer("Status.NORDA_GetFCAndNICProperties", row.status);
        library.Answer("Flags", row.flags);
        EXPECT_EQ(AreFCoEBootEnabledPortsPresent(), row.isBootPort);
        EXPECT_EQ(Messages(), row.isBootPort ? std::vector<std::string>({kEntry, kExit})
                                             : std::vector<std::string>({kEntry, kExhausted, kExit}));
        EXPECT_EQ(library.TakeJournal(), Questions("{A}", "7"));
    }
}

TEST_F(FcoeBootPorts, EveryAdapterIsAskedAlsoAfterABootPortAndAfterAFailure)
{
    const TwoAdapters adapters;
    adapters.hba.Answer("Flags", "1");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    EXPECT_EQ(adapters.hba.TakeJournal(), QuestionsAboutBoth());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kExit));
    adapters.hba.Answer("Flags", "0");
    adapters.hba.Answer("Status.NORDA_GetFCAndNICProperties", "1");
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_EQ(adapters.hba.TakeJournal(), QuestionsAboutBoth());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kExhausted, kExit));
}

TEST_F(FcoeBootPorts, OneBootPortAmongOthersIsEnough)
{
    const TwoAdapters adapters;
    adapters.hba.Answer("Flags.11", "2");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    adapters.hba.Answer("Flags.11", "0");
    adapters.hba.Answer("Flags.12", "1");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
}

TEST_F(FcoeBootPorts, AdaptersWithoutDriverKeyOrInstanceIdAreSkippedAndTheOthersAsked)
{
    const RegistryAdapter withoutDriver(kFirst, std::nullopt, std::nullopt);
    const RegistryAdapter withoutId(kSecond, "9002", std::nullopt);
    const RegistryAdapter whole(kThird, "9003", "{C}");
    const LibraryDouble library = HbaLibrary();
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kNoDriverKey, kNoInstanceId, kExhausted, kExit));
    EXPECT_EQ(library.TakeJournal(), Questions("{C}", "7"));
    library.Answer("Flags", "1");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kNoDriverKey, kNoInstanceId, kExit));
}

TEST_F(FcoeBootPorts, DriverKeyThatDoesNotExistHasNoInstanceId)
{
    const RegistryAdapter adapter(kFirst, std::nullopt, std::nullopt);
    SetRegistryText(adapter.Instance(), "Driver", std::string(kNetworkClass) + "\\9009");
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kNoInstanceId, kExhausted, kExit));
}

TEST_F(FcoeBootPorts, DriverKeyOfMoreThan260BytesIsNotRead)
{
    const RegistryAdapter adapter(kFirst, std::nullopt, std::nullopt);
    SetRegistryText(adapter.Instance(), "Driver", std::string(300, 'd'));
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kNoDriverKey, kExhausted, kExit));
}

TEST_F(FcoeBootPorts, InstanceIdOf259CharactersIsAskedAbout)
{
    const RegistryAdapter adapter(kFirst, "9001", std::string(259, 'i'));
    const LibraryDouble library = HbaLibrary();
    library.Answer("Flags", "1");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kExit));
}

TEST_F(FcoeBootPorts, InstanceIdOf4096CharactersCountsAsNone)
{
    const RegistryAdapter adapter(kFirst, "9001", std::string(4096, 'i'));
    const RegistryAdapter other(kSecond, "9002", "{B}");
    const LibraryDouble library = HbaLibrary();
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(Messages(), ElementsAre(kEntry, kNoInstanceId, kExhausted, kExit));
    EXPECT_EQ(library.TakeJournal(), Questions("{B}", "7")) << "the next adapter is still asked";
}

TEST_F(FcoeBootPorts, AdapterThatTheLibraryDoesNotKnowIsNotABootPortAndTheNextIsAsked)
{
    const RegistryAdapter first(kFirst, "9001", "{A}");
    const RegistryAdapter second(kSecond, "9002", "{B}");
    const LibraryDouble library = HbaLibrary();
    library.Answer("Handle.\\DEVICE\\{A}", "0");
    library.Answer("Flags", "1");
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    std::vector<std::string> expected = Questions("{A}", "0");
    expected.resize(4); // without a handle nothing more is asked
    Append(expected, Questions("{B}", "7"));
    EXPECT_EQ(library.TakeJournal(), expected);
}

TEST_F(FcoeBootPorts, LibraryThatCannotBeInitialisedIsNotAsked)
{
    const RegistryAdapter adapter(kFirst, "9001", "{A}");
    const LibraryDouble library = HbaLibrary();
    library.Answer("Status.NORDA_InitializeLibrary", "1");
    library.Answer("Flags", "1");
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    EXPECT_THAT(library.TakeJournal(), ElementsAre("NORDA_InitializeLibrary"));
}

TEST_F(FcoeBootPorts, DebugValuesMakeABootPort)
{
    const RegistryAdapter adapter(kFirst, "9001", "{A}");
    const LibraryDouble library = HbaLibrary();
    SetRegistryNumber(kProductKey, "Debugging", 1);
    SetRegistryNumber(kOtherDebugKey, "FcoE_RemotePageFile", 1);
    EXPECT_TRUE(AreFCoEBootEnabledPortsPresent());
    SetRegistryNumber(kProductKey, "Debugging", 0);
    EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
}

TEST_F(FcoeBootPorts, ListThatCannotBeOpenedIsTraced)
{
    EXPECT_FALSE(AreFCoEBootEnabledPortsAmong(INVALID_HANDLE_VALUE));
    EXPECT_THAT(Messages(), ElementsAre("Failed to enumerate any PCI devices"));
}

TEST_F(FcoeBootPorts, EnumerationThatBreaksOffIsTraced)
{
    // Not a list, so the very first question about it fails with an error of its own.
    std::array<std::byte, 4096> noList{};
    EXPECT_FALSE(AreFCoEBootEnabledPortsAmong(noList.data()));
    EXPECT_THAT(Messages(), ElementsAre("Failed to enumerate all PCI devices"));
}

TEST_F(FcoeBootPorts, ThousandCallsLeaveNoHandleOpen)
{
    const RegistryAdapter whole(kFirst, "9001", "{A}");
    const RegistryAdapter withoutDriver(kSecond, std::nullopt, std::nullopt);
    const RegistryAdapter withoutId(kThird, "9003", std::nullopt);
    // As in the program, which has it loaded from its first question to NetInst on.
    const UniqueLibrary setup = LoadSystemLibrary("setupapi.dll");
    {
        const LibraryDouble library = HbaLibrary();
        library.Answer("Quiet", "1");
        EXPECT_EQ(HandlesLeftBy(1000, [] { static_cast<void>(AreFCoEBootEnabledPortsPresent()); }), 0);
        EXPECT_EQ(GetModuleHandleA("nordhapi.dll"), nullptr) << "the library is not loaded between calls";
    }
    EXPECT_EQ(HandlesLeftBy(1000, [] { static_cast<void>(AreFCoEBootEnabledPortsPresent()); }), 0)
        << "without the library";
}

namespace {
/// What the platform was asked for last.
struct ListRequest
{
    GUID deviceClass{};
    bool namesABus = true;
    DWORD flags = 0;
};
ListRequest lastList;

// The platform's own, while the call goes to the replacement.
decltype(&GetProcAddress) findEntry = nullptr;

HDEVINFO WINAPI NoteList(const GUID* deviceClass, PCSTR enumerator, HWND window, DWORD flags)
{
    const auto list =
        std::bit_cast<SetupDiGetClassDevsFn>(findEntry(GetModuleHandleA("setupapi.dll"), "SetupDiGetClassDevsA"));
    lastList = {.deviceClass = deviceClass == nullptr ? GUID{} : *deviceClass,
                .namesABus = enumerator != nullptr,
                .flags = flags};
    return list(deviceClass, enumerator, window, flags);
}

FARPROC WINAPI FindEntryOrNoteList(HMODULE library, LPCSTR name)
{
    return std::string_view(name) == "SetupDiGetClassDevsA" ? std::bit_cast<FARPROC>(&NoteList)
                                                            : findEntry(library, name);
}
} // namespace

TEST_F(FcoeBootPorts, OnlyPresentDevicesOfTheNetworkClassAreAsked)
{
    constexpr GUID kNetworkGuid = {0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};
    const RegistryAdapter adapter(kFirst, "9001", "{A}");
    const RegistryAdapter ofAnotherClass(kSecond, "9002", "{B}");
    SetRegistryText(ofAnotherClass.Instance(), "ClassGUID", "{4D36E97D-E325-11CE-BFC1-08002BE10318}");
    const LibraryDouble library = HbaLibrary();
    lastList = {};
    findEntry = std::bit_cast<decltype(findEntry)>(ImportSlot("GetProcAddress").Target());
    {
        const ImportOverride note("GetProcAddress", reinterpret_cast<void*>(FindEntryOrNoteList));
        EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
    }
    EXPECT_NE(IsEqualGUID(lastList.deviceClass, kNetworkGuid), FALSE);
    EXPECT_FALSE(lastList.namesABus);
    EXPECT_EQ(lastList.flags, DWORD{DIGCF_PRESENT});
    EXPECT_EQ(library.TakeJournal(), Questions("{A}", "7"));
}

namespace {
HDEVINFO destroyedList = nullptr;

BOOL WINAPI NoteDestroyedList(HDEVINFO list)
{
    destroyedList = list;
    return TRUE;
}

FARPROC WINAPI FindAllButTheEnumeration(HMODULE library, LPCSTR name)
{
    const std::string_view wanted = name;
    if (wanted == "SetupDiEnumDeviceInfo") {
        return nullptr;
    }
    return wanted == "SetupDiDestroyDeviceInfoList" ? std::bit_cast<FARPROC>(&NoteDestroyedList)
                                                    : findEntry(library, name);
}
} // namespace

TEST_F(FcoeBootPorts, AListThatCannotBeReadIsDestroyedToo)
{
    findEntry = std::bit_cast<decltype(findEntry)>(ImportSlot("GetProcAddress").Target());
    destroyedList = nullptr;
    std::array<std::byte, 16> list{};
    {
        const ImportOverride incomplete("GetProcAddress", reinterpret_cast<void*>(FindAllButTheEnumeration));
        EXPECT_FALSE(AreFCoEBootEnabledPortsAmong(list.data()));
    }
    EXPECT_EQ(destroyedList, list.data());
    EXPECT_THAT(Messages(), ElementsAre("Failed to enumerate any PCI devices"));
}

TEST_F(FcoeBootPorts, DriverKeyOf260BytesIsReadWholeAndOneOf261IsNotRead)
{
    const RegistryAdapter adapter(kFirst, std::nullopt, std::nullopt);
    const std::string start = std::string(kNetworkClass) + "\\";
    for (const std::size_t bytes : {259U, 260U, 261U}) {
        // No such key is there: that it is looked for shows what was read.
        const std::string driverKey = start + std::string(bytes - 1 - start.size(), 'd');
        SetRegistryText(adapter.Instance(), "Driver", driverKey);
        const RegistryAccess access;
        EXPECT_FALSE(AreFCoEBootEnabledPortsPresent());
        const bool isRead = bytes <= 260;
        EXPECT_THAT(Messages(), ElementsAre(kEntry, isRead ? kNoInstanceId : kNoDriverKey, kExhausted, kExit)) << bytes;
        EXPECT_EQ(access.AskedFor(R"(SYSTEM\CurrentControlSet\Control\Class\)" + driverKey),
                  std::vector<REGSAM>(isRead ? 1 : 0, KEY_READ))
            << bytes;
    }
}
