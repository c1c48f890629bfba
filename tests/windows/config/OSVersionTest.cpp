#include "OSVersion.h"

#include <gmock/gmock.h>

#include <cstring>
#include <vector>

#include "ChildProcess.h"
#include "DebugOutput.h"
#include "ImportOverride.h"
#include "MachineKeyOverride.h"
#include "OSPredicates.h"
#include "RegistryKeys.h"
#include "ScratchDirectory.h"

using testing::ElementsAre;

namespace {
constexpr char kProductOptions[] = R"(System\CurrentControlSet\Control\ProductOptions)";

/// Sets the value "ProductSuite" and restores the earlier one.
class GivenProductSuite
{
public:
    GivenProductSuite() : m_before(ReadRegistryValue(kProductOptions, "ProductSuite")) { Delete(); }
    ~GivenProductSuite()
    {
        Delete();
        if (m_before) {
            SetRegistryBytes(kProductOptions, "ProductSuite", m_before->bytes, m_before->type);
        }
    }
    GivenProductSuite(const GivenProductSuite&) = delete;
    GivenProductSuite& operator=(const GivenProductSuite&) = delete;

private:
    static void Delete()
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, kProductOptions, 0, KEY_ALL_ACCESS, &key), ERROR_SUCCESS);
        const UniqueRegKey owner(key);
        RegDeleteValueA(key, "ProductSuite");
    }
    std::optional<RegistryValue> m_before;
};

struct GivenSystem
{
    std::string version;
    uint32_t majorVersion;
    uint32_t minorVersion;
    uint32_t platform;
    OSCode code;
};

// The environment hands out these systems by name. It has the names of the two 6.1 systems the wrong way round.
const std::vector<GivenSystem> kGivenSystems{
    {"win95", 4, 0, kPlatform9x, osWIN95},          {"win98", 4, 10, kPlatform9x, osWIN98},
    {"winme", 4, 90, kPlatform9x, osWINME},         {"nt351", 3, 51, kPlatformNT, osWINNT351},
    {"nt40", 4, 0, kPlatformNT, osWINNT4},          {"win2k", 5, 0, kPlatformNT, osWIN2K},
    {"winxp", 5, 1, kPlatformNT, osWINXP32},        {"winxp64", 5, 2, kPlatformNT, osWINXP32E},
    {"win2003", 5, 2, kPlatformNT, osWIN2K3SRV32E}, {"vista", 6, 0, kPlatformNT, osWINVISTA32E},
    {"win2008", 6, 0, kPlatformNT, osLONGHORN32E},  {"win2008r2", 6, 1, kPlatformNT, osWINSEVEN32E},
    {"win7", 6, 1, kPlatformNT, osWIN2K8R232E},     {"win8", 6, 2, kPlatformNT, osWINEIGHT32E},
    {"win10", 6, 2, kPlatformNT, osWINEIGHT32E},
};

struct MachineSystem
{
    std::string version;     ///< "CurrentVersion" of the machine's registry
    std::string productType; ///< "WinNT", "ServerNT" or "LanmanNT" (a domain controller)
    SystemFacts facts;
    OSCode code;
};

SystemFacts X64Facts(uint32_t majorVersion, uint32_t minorVersion, uint8_t productType)
{
    SystemFacts facts;
    facts.valid = true;
    facts.majorVersion = majorVersion;
    facts.minorVersion = minorVersion;
    facts.platform = kPlatformNT;
    facts.productType = productType;
    facts.architecture = kArchitectureX64;
    return facts;
}

/// Makes the whole machine another system for the life of the object; programs started meanwhile see it.
class GivenMachine
{
public:
    GivenMachine(const std::string& version, const std::string& productType, DWORD servicePack)
        : m_values{Save(kCurrentVersion, "CurrentVersion"), Save(kServicePackKey, "CSDVersion"),
                   Save(kProductOptions, "ProductType")}
    {
        SetRegistryText(kCurrentVersion, "CurrentVersion", version);
        SetRegistryNumber(kServicePackKey, "CSDVersion", servicePack << 8);
        SetRegistryText(kProductOptions, "ProductType", productType);
    }
    ~GivenMachine()
    {
        for (const Saved& saved : m_values) {
            SetRegistryBytes(saved.key, saved.name, saved.value.bytes, saved.value.type);
        }
    }
    GivenMachine(const GivenMachine&) = delete;
    GivenMachine& operator=(const GivenMachine&) = delete;

private:
    struct Saved
    {
        std::string key;
        std::string name;
        RegistryValue value;
    };
    static Saved Save(const std::string& key, const std::string& name)
    {
        return {key, name, ReadRegistryValue(key, name).value()};
    }
    static constexpr char kCurrentVersion[] = R"(Software\Microsoft\Windows NT\CurrentVersion)";
    static constexpr char kServicePackKey[] = R"(System\CurrentControlSet\Control\Windows)";
    std::vector<Saved> m_values;
};

std::string Number(bool value)
{
    return value ? "1" : "0";
}

/// What a system of this code and these facts must answer.
std::map<std::string, std::string> ExpectedAnswers(OSCode code, const SystemFacts& facts)
{
    const uint32_t servicePack = Win2K3ServicePack(code, facts);
    return {
        {"code", std::to_string(code)},
        {"GetWin2K3ServicePack", Number(servicePack != 0) + " " + std::to_string(servicePack)},
        {"GetOSGeneration", std::to_string(OSGeneration(code, facts))},
        {"IsIA64", "0"},
        {"IsX64", "1"},
        {"IsNT5OrLater", Number(IsNT5OrLater(facts))},
        {"IsNT6OrLater", Number(IsNT6OrLater(facts))},
        {"IsXPOrLater", Number(IsXPOrLater(facts))},
        {"IsServerOrVistaLater", Number(IsServerOrVistaLater(code))},
        {"IsWin2K3Family", Number(IsWin2K3Family(code))},
        {"IsWin2K8Family", Number(IsWin2K8Family(code))},
        {"IsWin7Family", Number(IsWin7Family(code))},
        {"IsWin8Family", Number(IsWin8Family(code))},
        {"IsWin2K8R2Family", Number(IsWin2K8R2Family(code))},
        {"IsWin8OrLater", Number(IsWin8OrLater(code, facts))},
        {"IsVistaFamily", Number(IsVistaFamily(code))},
        {"IsWin8Workstation", Number(IsWin8Workstation(code))},
        {"IsWin8Server", Number(IsWin8Server(code))},
        {"IsVistaWorkstation", Number(IsVistaWorkstation(code, facts))},
        {"IsServerCore", "0"},
        {"IsServerCore without a shell", Number(CanBeServerCore(code))},
        {"IsXPWorkstation", Number(IsXPWorkstation(code))},
        {"IsModernServer", Number(IsModernServer(code, facts))},
        {"IsWorkstationOS", Number(IsWorkstationOS(code))},
    };
}

void ExpectAnswers(const ChildReport& report, OSCode code, const SystemFacts& facts)
{
    for (const auto& [name, answer] : ExpectedAnswers(code, facts)) {
        EXPECT_EQ(report.At(name), answer) << name;
    }
}

BOOL WINAPI RefuseExtendedRecord(LPOSVERSIONINFOA record)
{
    if (record->dwOSVersionInfoSize != sizeof(OSVERSIONINFOA)) {
        return FALSE;
    }
    record->dwMajorVersion = 5;
    record->dwMinorVersion = 2;
    record->dwPlatformId = kPlatformNT;
    return TRUE;
}

decltype(&GetProcAddress) realGetProcAddress = nullptr;
FARPROC WINAPI WithoutNativeInformation(HMODULE module, LPCSTR name)
{
    return std::strcmp(name, "GetNativeSystemInfo") == 0 ? nullptr : realGetProcAddress(module, name);
}

int refusals = 0;
BOOL WINAPI RefuseEveryRecord(LPOSVERSIONINFOA)
{
    ++refusals;
    return FALSE;
}
} // namespace

TEST(COSVersion, CapturesWhatThePlatformReports)
{
    OSVERSIONINFOEXA version{};
    version.dwOSVersionInfoSize = sizeof(version);
    ASSERT_TRUE(GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&version)));
    SYSTEM_INFO native{};
    GetNativeSystemInfo(&native);

    const SystemFacts facts = COSVersion().Facts();
    EXPECT_TRUE(facts.valid);
    EXPECT_EQ(facts.majorVersion, version.dwMajorVersion);
    EXPECT_EQ(facts.minorVersion, version.dwMinorVersion);
    EXPECT_EQ(facts.platform, version.dwPlatformId);
    EXPECT_EQ(facts.productType, version.wProductType);
    EXPECT_EQ(facts.servicePackMajor, version.wServicePackMajor);
    EXPECT_EQ(facts.architecture, native.wProcessorArchitecture);
}

TEST(COSVersion, WithoutNativeInformationTheProcessorIsUnknown)
{
    ASSERT_TRUE(COSVersion().IsX64());
    realGetProcAddress = &GetProcAddress;
    const ImportOverride withoutIt("GetProcAddress", reinterpret_cast<void*>(WithoutNativeInformation));
    const COSVersion version;
    EXPECT_TRUE(version.Facts().valid);
    EXPECT_EQ(version.Facts().architecture, std::nullopt);
    EXPECT_FALSE(version.IsX64());
    EXPECT_FALSE(version.IsIA64());
}

TEST(COSVersion, TracesNothing)
{
    TraceCapture trace;
    EXPECT_EQ(COSVersion().GetOSCode(), COSVersion().GetOSCode());
    EXPECT_THAT(trace.Messages(), ElementsAre());
}

class COSVersionOnGivenSystem : public testing::TestWithParam<GivenSystem>
{
};

TEST_P(COSVersionOnGivenSystem, AnswersForThatSystem)
{
    const GivenSystem& system = GetParam();
    const ChildReport report = RunChild("system", {system.version, {}, {}});

    EXPECT_EQ(report.At("valid"), "1");
    EXPECT_EQ(report.At("major"), std::to_string(system.majorVersion));
    EXPECT_EQ(report.At("minor"), std::to_string(system.minorVersion));
    EXPECT_EQ(report.At("platform"), std::to_string(system.platform));
    EXPECT_EQ(report.At("architecture"), "9");
    SystemFacts facts = X64Facts(system.majorVersion, system.minorVersion, 0);
    facts.platform = system.platform;
    facts.productType = static_cast<uint8_t>(std::stoul(report.At("product")));
    facts.servicePackMajor = static_cast<uint16_t>(std::stoul(report.At("servicePackMajor")));
    ExpectAnswers(report, system.code, facts);
    EXPECT_EQ(report.At("IsSixOne"), Number(system.majorVersion == 6 && system.minorVersion == 1));
    EXPECT_EQ(report.At("IsSixTwoOrLater"), Number(system.majorVersion == 6 && system.minorVersion == 2));
}

INSTANTIATE_TEST_SUITE_P(Systems, COSVersionOnGivenSystem, testing::ValuesIn(kGivenSystems),
                         [](const testing::TestParamInfo<GivenSystem>& given) { return given.param.version; });

TEST(COSVersion, SystemsAfter62AreRecognisedBySixTwoOrLater)
{
    for (const std::string version : {"win81", "win10"}) {
        const ChildReport report = RunChild("system", {.windowsVersion = version, .libraries = {}});
        EXPECT_EQ(report.At("IsSixTwoOrLater"), "1") << version;
        EXPECT_EQ(report.At("IsSixOne"), "0") << version;
    }
}

TEST(COSVersion, KnowsServersAndDomainControllersOfTheMachine)
{
    for (const MachineSystem& system : std::vector<MachineSystem>{
             {"6.2", "ServerNT", X64Facts(6, 2, kProductServer), osWINEIGHTSRV32E},
             {"6.2", "LanmanNT", X64Facts(6, 2, kProductDomainController), osWINEIGHTSRV32E},
             {"6.2", "WinNT", X64Facts(6, 2, kProductWorkstation), osWINEIGHT32E},
             {"6.1", "ServerNT", X64Facts(6, 1, kProductServer), osWIN2K8R232E},
             {"6.1", "WinNT", X64Facts(6, 1, kProductWorkstation), osWINSEVEN32E},
             {"6.0", "LanmanNT", X64Facts(6, 0, kProductDomainController), osLONGHORN32E},
             {"5.2", "LanmanNT", X64Facts(5, 2, kProductDomainController), osWIN2K3SRV32E},
         }) {
        const GivenMachine machine(system.version, system.productType, 0);
        const ChildReport report = RunChild("system", {});
        SCOPED_TRACE(system.version + " " + system.productType);
        EXPECT_EQ(report.At("major"), std::to_string(system.facts.majorVersion));
        EXPECT_EQ(report.At("minor"), std::to_string(system.facts.minorVersion));
        EXPECT_EQ(report.At("product"), std::to_string(system.facts.productType));
        ExpectAnswers(report, system.code, system.facts);
    }
}

TEST(COSVersion, ReportsTheServicePackOfAServer2003Only)
{
    {
        const GivenMachine machine("5.2", "ServerNT", 2);
        EXPECT_EQ(RunChild("system", {}).At("GetWin2K3ServicePack"), "1 2");
    }
    {
        const GivenMachine machine("5.2", "ServerNT", 0);
        EXPECT_EQ(RunChild("system", {}).At("GetWin2K3ServicePack"), "0 0");
    }
    const GivenMachine machine("6.0", "ServerNT", 2);
    const ChildReport report = RunChild("system", {});
    EXPECT_EQ(report.At("servicePackMajor"), "2");
    EXPECT_EQ(report.At("GetWin2K3ServicePack"), "0 0");
}

TEST(CaptureVersion, TakesTheExtendedRecordWhenThePlatformKnowsIt)
{
    OSVERSIONINFOEXA record{};
    record.wProductType = 77;
    EXPECT_EQ(CaptureVersion(record, &GetVersionExA), 1U);
    EXPECT_EQ(record.dwOSVersionInfoSize, 156U);
    EXPECT_NE(record.wProductType, 77);
}

TEST(CaptureVersion, FallsBackToThePlainRecordWithoutProductType)
{
    OSVERSIONINFOEXA record{};
    record.wProductType = 3;
    record.wServicePackMajor = 3;
    record.wSuiteMask = 3;
    EXPECT_EQ(CaptureVersion(record, &RefuseExtendedRecord), 1U);
    EXPECT_EQ(record.dwOSVersionInfoSize, 148U);
    EXPECT_EQ(record.dwMajorVersion, 5U);
    EXPECT_EQ(record.dwMinorVersion, 2U);
    EXPECT_EQ(record.wProductType, 0);
    EXPECT_EQ(record.wServicePackMajor, 0);
    EXPECT_EQ(record.wSuiteMask, 0);
}

TEST(CaptureVersion, IsInvalidWhenBothRecordsAreRefused)
{
    OSVERSIONINFOEXA record{};
    refusals = 0;
    EXPECT_EQ(CaptureVersion(record, &RefuseEveryRecord), 0U);
    EXPECT_EQ(refusals, 2);
    EXPECT_EQ(record.dwMajorVersion, 0U);
}

TEST(CanOpenExpanded, ExpandsVariablesAndNeedsAReadableFile)
{
    const ScratchDirectory directory;
    WriteFileBytes(directory.At("shell.exe"), "x");
    SetEnvironmentVariableA("MORVIX_TEST_ROOT", directory.Path().c_str());
    EXPECT_TRUE(CanOpenExpanded(R"(%MORVIX_TEST_ROOT%\shell.exe)"));
    EXPECT_FALSE(CanOpenExpanded(R"(%MORVIX_TEST_ROOT%\missing.exe)"));
    EXPECT_FALSE(CanOpenExpanded("%MORVIX_TEST_ROOT%")) << "a directory is not a file";
    SetEnvironmentVariableA("MORVIX_TEST_ROOT", std::string(300, 'x').c_str());
    EXPECT_FALSE(CanOpenExpanded(R"(%MORVIX_TEST_ROOT%\shell.exe)"));
    SetEnvironmentVariableA("MORVIX_TEST_ROOT", nullptr);
    EXPECT_FALSE(CanOpenExpanded(R"(%MORVIX_TEST_ROOT%\shell.exe)"));
    EXPECT_FALSE(CanOpenExpanded(""));
}

TEST(IsNT4TerminalServer, TracesItsEntryAndIsFalseOnAnotherSystem)
{
    const GivenProductSuite suite;
    SetRegistryList(kProductOptions, "ProductSuite", {"Terminal Server"});
    TraceCapture trace;
    EXPECT_FALSE(IsNT4TerminalServer());
    EXPECT_THAT(trace.Messages(), ElementsAre("Entering - IsNT4TerminalServer"));
}

TEST(IsNT4TerminalServer, IsTrueOnNT4WithTheSuite)
{
    const GivenProductSuite suite;
    EXPECT_EQ(RunChild("system", {"nt40", {}, {}}).At("IsNT4TerminalServer"), "0");
    SetRegistryList(kProductOptions, "ProductSuite", {"Small Business", "Terminal Server"});
    EXPECT_EQ(RunChild("system", {"nt40", {}, {}}).At("IsNT4TerminalServer"), "1");
    EXPECT_EQ(RunChild("system", {"win2k", {}, {}}).At("IsNT4TerminalServer"), "0");
}

TEST(IsNT4TerminalServer, NeedsAMultiStringWithExactlyThatEntry)
{
    const GivenProductSuite suite;
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4)) << "no value";
    SetRegistryList(kProductOptions, "ProductSuite", {});
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4)) << "no entries";
    SetRegistryBytes(kProductOptions, "ProductSuite", "", REG_MULTI_SZ);
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4)) << "no bytes";
    SetRegistryList(kProductOptions, "ProductSuite", {"terminal server", "Terminal Server 2", "Terminal"});
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4)) << "other entries";
    SetRegistryText(kProductOptions, "ProductSuite", "Terminal Server");
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4)) << "another type";
    SetRegistryList(kProductOptions, "ProductSuite", {"Small Business", "Terminal Server", "Enterprise"});
    EXPECT_TRUE(IsNT4TerminalServerOn(osWINNT4));
    EXPECT_FALSE(IsNT4TerminalServerOn(osWIN2K));
    EXPECT_FALSE(IsNT4TerminalServerOn(osUNSUPPORTED));
}

TEST(IsNT4TerminalServer, IsFalseOnAMachineWithoutProductOptions)
{
    const MachineKeyOverride emptyMachine;
    EXPECT_FALSE(IsNT4TerminalServerOn(osWINNT4));
    SetRegistryList(kProductOptions, "ProductSuite", {"Terminal Server"});
    EXPECT_TRUE(IsNT4TerminalServerOn(osWINNT4)) << "the key is looked for elsewhere";
}

TEST(IsNT4TerminalServer, ReadsAListWithoutTerminators)
{
    const GivenProductSuite suite;
    SetRegistryBytes(kProductOptions, "ProductSuite", "Terminal Server", REG_MULTI_SZ);
    EXPECT_TRUE(IsNT4TerminalServerOn(osWINNT4));
}
