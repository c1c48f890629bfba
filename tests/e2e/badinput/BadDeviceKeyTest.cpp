// Malformed device keys and device values. In every run a good device follows the bad ones and is installed.

#include <gmock/gmock.h>

#include <array>
#include <ostream>
#include <stdexcept>

#include "Adapter.h"
#include "Environment.h"
#include "Handles.h"
#include "OwnInfs.h"
#include "RegistryKeys.h"

namespace {
using testing::ElementsAre;
using testing::ElementsAreArray;

// It is after every other key; the compatible IDs say what a device is.
constexpr char kGoodDevice[] = "VEN_5D1F&DEV_7A01&SUBSYS_00115D1A&REV_03";

/// Non-ASCII letters of the system's code page; plain ones where it has none.
std::string HighLetters()
{
    std::array<char, 32> text{};
    WideCharToMultiByte(CP_ACP, 0, L"\u00C4\u00E4\u00FF", -1, text.data(), text.size(), nullptr, nullptr);
    return text.data();
}

/// A device key of exactly `length` characters.
std::string KeyOfLength(std::size_t length)
{
    const std::string head = "VEN_5D1A&DEV_0001&SUBSYS_";
    const std::string tail = "&REV_01";
    return head + std::string(length - head.size() - tail.size(), '7') + tail;
}

struct BadKey
{
    const char* name;
    std::string key;
    std::vector<std::string> searches; ///< what the passes after the first look for, as traced
};

void PrintTo(const BadKey& tested, std::ostream* out)
{
    *out << tested.name;
}

const std::vector<BadKey> kBadKeys = {
    {"Of200Characters",
     KeyOfLength(200),
     {KeyOfLength(200).substr(0, 193), "VEN_5D1A&DEV_0001&REV_01", "VEN_5D1A&DEV_0001"}},
    {"WithHighLetters",
     "VEN_5D1A&DEV_" + HighLetters() + "&SUBSYS_" + HighLetters() + "&REV_01",
     {"VEN_5D1A&DEV_" + HighLetters() + "&SUBSYS_" + HighLetters(), "VEN_5D1A&DEV_" + HighLetters() + "&REV_01",
      "VEN_5D1A&DEV_" + HighLetters()}},
    {"WithFormatCharacters",
     "VEN_5D1A&DEV_%s%n%x&SUBSYS_%08X%*d&REV_%1!s!",
     {"VEN_5D1A&DEV_%s%n%x&SUBSYS_%08X%*d", "VEN_5D1A&DEV_%s%n%x&REV_%1!s!", "VEN_5D1A&DEV_%s%n%x"}},
    {"OnlyASubsystem", "&SUBSYS_00115D1A", {"&SUBSYS_00115D1A"}},
    {"OnlyARevision", "&REV_03", {"&REV_03"}},
    {"RevisionBeforeSubsystem",
     "VEN_5D1A&DEV_0001&REV_01&SUBSYS_00115D1A",
     {"VEN_5D1A&DEV_0001", "VEN_5D1A&DEV_0001&REV_01&REV_01&SUBSYS_00115D1A", "VEN_5D1A&DEV_0001&REV_01"}},
    {"WithoutSubsystem",
     "VEN_5D1A&DEV_0001&REV_01",
     {"VEN_5D1A&DEV_0001", "VEN_5D1A&DEV_0001&REV_01&REV_01", "VEN_5D1A&DEV_0001&REV_01"}},
    {"WithEverythingTwice",
     "VEN_5D1A&SUBSYS_1&SUBSYS_2&REV_1&REV_2",
     {"VEN_5D1A&SUBSYS_1&SUBSYS_2&REV_1", "VEN_5D1A&SUBSYS_1&REV_2", "VEN_5D1A&SUBSYS_1"}},
};

class BadDeviceKey : public DoubleRun, public testing::WithParamInterface<BadKey>
{
protected:
    const Adapter m_bad{GetParam().key};
    const Adapter m_good{kGoodDevice};
};

TEST_P(BadDeviceKey, IsSearchedInEveryPassAndTheNextDeviceIsInstalled)
{
    WriteInf("one.inf", InfFor(kGoodDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    std::vector<std::string> searches;
    const std::vector<std::string> messages = run.Messages();
    for (size_t at = 1; at < messages.size(); ++at) {
        if (messages[at].starts_with("Pass ")) {
            searches.push_back(messages[at - 1]);
        }
    }
    EXPECT_EQ(run.Count("device: " + GetParam().key + "\n"), 1u);
    EXPECT_THAT(searches, ElementsAreArray(GetParam().searches));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kGoodDevice)));
}

TEST_P(BadDeviceKey, IsInstalledUnderItsFullNameWhenAnInfListsIt)
{
    WriteInf("bad.inf", InfFor(GetParam().key));
    WriteInf("good.inf", InfFor(kGoodDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count("matched:" + GetParam().key + "\n"), 1u);
    EXPECT_TRUE(run.Traced("2K/XP install: PCI\\" + GetParam().key + ", " + InfInUpperCase("Inf\\bad.inf") + "\n"));
    EXPECT_THAT(Installs(),
                ElementsAre(InstallLine("Inf\\bad.inf", GetParam().key), InstallLine("Inf\\good.inf", kGoodDevice)));
}

INSTANTIATE_TEST_SUITE_P(Each, BadDeviceKey, testing::ValuesIn(kBadKeys),
                         [](const testing::TestParamInfo<BadKey>& tested) { return std::string(tested.param.name); });

class BadDevices : public DoubleRun
{
};

TEST_F(BadDevices, WithoutARevisionAreInstalledWhenAnInfListsThemAndNothingIsLost)
{
    const Adapter bad("VEN_5D1A&DEV_0001&SUBSYS_00115D1A");
    const Adapter good(kGoodDevice);
    WriteInf("bad.inf", InfFor(bad.DeviceId()));
    WriteInf("good.inf", InfFor(kGoodDevice));
    EXPECT_EQ(RunMorvix("/s /nr").exitCode, 0);
    EXPECT_THAT(Installs(),
                ElementsAre(InstallLine("Inf\\bad.inf", bad.DeviceId()), InstallLine("Inf\\good.inf", kGoodDevice)));
}

TEST_F(BadDevices, WithoutARevisionThatNoInfListsEndTheRunAndLeaveWhatWasInstalledBefore)
{
    // The third pass has no revision to keep. The registry lists the good device first.
    const Adapter good(kGoodDevice);
    const Adapter bad("VEN_5D1F&DEV_7FFF&SUBSYS_00115D1A");
    WriteInf("good.inf", InfFor(kGoodDevice));
    const FinishedRun run = RunMorvix("/s /nr");
    EXPECT_EQ(run.exitCode, -1);
    EXPECT_TRUE(run.Messages().back().starts_with("unhandled fault: ")) << run.Messages().back();
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\good.inf", kGoodDevice)));
    EXPECT_EQ(ReadRegistryText(kResultsKey, "Tavunstl_source_path"), "<none>");
}

/// Writes a value as the registry stores it, in wide characters, of any number of bytes.
void SetRawValue(const Adapter& adapter, DWORD type, const std::string& bytes)
{
    const std::string path = R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + adapter.DeviceId() + R"(\3&11583659&0&C8)";
    HKEY opened = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_SET_VALUE, &opened), ERROR_SUCCESS);
    // The wide form takes the bytes as they are.
    const LSTATUS status =
        RegSetValueExW(opened, L"CompatibleIDs", 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
    RegCloseKey(opened);
    ASSERT_EQ(status, ERROR_SUCCESS);
}

std::string Wide(const std::string& text)
{
    std::string bytes;
    for (const char c : text) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

/// A device whose key name has 255 characters, the longest there is. Its path is longer than 8-bit calls may take, so
/// it is made step by step.
class DeviceOfLongestName
{
public:
    DeviceOfLongestName()
    {
        HKEY opened = nullptr;
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, R"(SYSTEM\CurrentControlSet\Enum\PCI)", 0, KEY_ALL_ACCESS, &opened);
        m_pci.reset(opened);
        RegCreateKeyW(m_pci.get(), m_name.c_str(), &opened);
        m_device.reset(opened);
        RegCreateKeyW(m_device.get(), kInstance, &opened);
        const UniqueRegKey instance(opened);
        // Both terminators of the list.
        const std::wstring ids = std::wstring(LR"(PCI\VEN_5D1A&CC_020000)") + L'\0' + L'\0';
        if (RegSetValueExW(instance.get(), L"CompatibleIDs", 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>(ids.data()),
                           static_cast<DWORD>(ids.size() * sizeof(wchar_t))) != ERROR_SUCCESS) {
            throw std::runtime_error("cannot make a device of 255 characters");
        }
    }
    ~DeviceOfLongestName()
    {
        RegDeleteKeyW(m_device.get(), kInstance);
        m_device.reset();
        RegDeleteKeyW(m_pci.get(), m_name.c_str());
    }
    DeviceOfLongestName(const DeviceOfLongestName&) = delete;
    DeviceOfLongestName& operator=(const DeviceOfLongestName&) = delete;

    [[nodiscard]] static std::string Name() { return KeyOfLength(255); }
    [[nodiscard]] static std::string Path() { return R"(SYSTEM\CurrentControlSet\Enum\PCI\)" + Name(); }

private:
    static constexpr wchar_t kInstance[] = L"3&11583659&0&C8";
    const std::string m_narrow = Name();
    const std::wstring m_name{m_narrow.begin(), m_narrow.end()};
    UniqueRegKey m_pci;
    UniqueRegKey m_device;
};

TEST_F(BadDevices, OfTheLongestNameAreTakenWhereThePlatformOpensTheirPathAndLeftWhereItDoesNot)
{
    const DeviceOfLongestName longest;
    const Adapter good(kGoodDevice);
    WriteInf("good.inf", InfFor(kGoodDevice));
    WriteInf("longest.inf", InfFor(longest.Name()));
    HKEY opened = nullptr;
    const bool opens =
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, longest.Path().c_str(), 0, KEY_ENUMERATE_SUB_KEYS, &opened) == ERROR_SUCCESS;
    const UniqueRegKey owner(opened);

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.Count(longest.Path()), 1u) << "the name comes whole";
    EXPECT_EQ(run.Count("device: " + longest.Name() + "\n"), opens ? 1u : 0u);
    std::vector<std::string> installs;
    if (opens) {
        installs.push_back(InstallLine("Inf\\longest.inf", longest.Name()));
    }
    installs.push_back(InstallLine("Inf\\good.inf", kGoodDevice));
    EXPECT_THAT(Installs(), ElementsAreArray(installs));
}

TEST_F(BadDevices, WithDamagedListsOfCompatibleIdsAreTakenOrLeftAndNoneHidesTheNext)
{
    constexpr char kAccepted[] = R"(PCI\VEN_5D1A&CC_020000)";
    struct Row
    {
        DWORD type;
        std::string bytes;
        bool taken;
    };
    const std::string terminated = Wide(std::string(kAccepted) + '\0');
    const std::vector<Row> rows = {
        {REG_MULTI_SZ, Wide(kAccepted), true},                            // no terminator at all
        {REG_MULTI_SZ, terminated, true},                                 // not the list's own
        {REG_MULTI_SZ, terminated + '\0', true},                          // an odd byte after it
        {REG_MULTI_SZ, Wide(kAccepted).substr(0, 43), false},             // half a character is missing
        {REG_MULTI_SZ, "", false},                                        // nothing
        {REG_MULTI_SZ, std::string(1, 'P'), false},                       // one byte
        {REG_MULTI_SZ, Wide(std::string("\0\0", 2)) + terminated, false}, // begins with its end
        {REG_MULTI_SZ, Wide("PCI\\CC_0200" + std::string(1, '\0')) + terminated, true},
        {REG_MULTI_SZ, Wide(std::string(524288, 'x') + '\0') + terminated, true}, // a megabyte in front
        {REG_SZ, terminated, true},                                               // the type is not looked at
        {REG_EXPAND_SZ, terminated, true},
        {REG_BINARY, std::string(kAccepted) + '\0', true}, // bytes come as they are
        {REG_BINARY, kAccepted, true},
        {REG_DWORD, std::string("\x50\x43\x49\x5C"), false},
        {REG_NONE, "", false},
        {REG_QWORD, std::string(8, '\xFF'), false},
        {REG_MULTI_SZ, Wide("PCI\\VEN_5D1A&CC_%s%n" + std::string(1, '\0')), false},
    };
    std::vector<std::unique_ptr<Adapter>> adapters;
    std::vector<std::string> expected;
    for (const Row& row : rows) {
        const std::string number = std::to_string(1000 + adapters.size());
        adapters.push_back(std::make_unique<Adapter>("VEN_5D1A&DEV_" + number + "&SUBSYS_00115D1A&REV_03"));
        SetRawValue(*adapters.back(), row.type, row.bytes);
        if (row.taken) {
            expected.push_back("device: " + adapters.back()->DeviceId() + "\n");
        }
    }
    const Adapter good(kGoodDevice);
    expected.push_back("device: " + std::string(kGoodDevice) + "\n");
    WriteInf("one.inf", InfFor(kGoodDevice));

    const FinishedRun run = RunMorvix("/s /nr");

    EXPECT_EQ(run.exitCode, 0);
    std::vector<std::string> taken = run.Messages();
    std::erase_if(taken, [](const std::string& message) { return !message.starts_with("device: "); });
    EXPECT_THAT(taken, ElementsAreArray(expected));
    EXPECT_THAT(Installs(), ElementsAre(InstallLine("Inf\\one.inf", kGoodDevice)));
}
} // namespace
