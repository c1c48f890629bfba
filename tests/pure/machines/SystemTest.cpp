#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Exports.h"
#include "SystemView.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
const std::string kVersionKey = R"([HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion])"
                                "\r\n";
const std::string kControl = R"([HKLM\SYSTEM\CurrentControlSet\Control\)";

std::string Value(const std::string& name, const std::string& text)
{
    return "\"" + name + "\"=\"" + text + "\"\r\n";
}

/// An export of a system, in the order in which collect.cmd writes it.
std::string System(const std::string& version, const std::string& productType, const std::string& processor,
                   const std::string& further = {})
{
    return kVersionKey + version + kControl + "ProductOptions]\r\n" + Value("ProductType", productType) + kControl +
           "Session Manager\\Environment]\r\n" + Value("PROCESSOR_ARCHITECTURE", processor) + further;
}

/// Reads an export of these keys and of a machine without devices.
Machine Read(const std::string& text)
{
    return ReadText(kExportHeader + "[" + kPciKey + "]\r\n\r\n" + text + "\r\n");
}

SystemView ViewOf(const std::string& text)
{
    const std::optional<SystemView> view = ViewOfSystem(Read(text).system);
    EXPECT_TRUE(view) << text;
    return view.value_or(SystemView{});
}

std::string Controller(const std::string& number, const std::string& id, const std::string& parameters)
{
    const std::string key = kControl + R"(Class\{4d36e97b-e325-11ce-bfc1-08002be10318}\)" + number;
    return key + "]\r\n" + Value("MatchingDeviceId", id) +
           (parameters == "none" ? "" : key + "\\Parameters]\r\n" + parameters);
}
} // namespace

TEST(SystemView, IsWhatTheInstallerConcludes)
{
    const std::string ten =
        "\"CurrentMajorVersionNumber\"=dword:0000000a\r\n\"CurrentMinorVersionNumber\"=dword:0\r\n" +
        Value("CurrentVersion", "6.3") + Value("CurrentBuildNumber", "19045");
    struct Row
    {
        std::string version;
        std::string productType;
        std::string processor;
        OSCode code;
        std::string_view section;
        std::string_view family;
    };
    const std::vector<Row> rows = {
        {Value("CurrentVersion", "5.0"), "WinNT", "x86", osWIN2K, "", "Windows 2000"},
        {Value("CurrentVersion", "5.1"), "WinNT", "x86", osWINXP32, "WinXP32", "Windows Whistler"},
        {Value("CurrentVersion", "5.2"), "WinNT", "AMD64", osWINXP32E, "WinXP32E", "Windows Whistler"},
        {Value("CurrentVersion", "5.2"), "ServerNT", "AMD64", osWIN2K3SRV32E, "WinSrv2K332E", "Windows Whistler"},
        {Value("CurrentVersion", "5.2"), "LanmanNT", "IA64", osWIN2K3SRV64, "WinSrv2K364", "Windows Whistler"},
        {Value("CurrentVersion", "6.0"), "WinNT", "AMD64", osWINVISTA32E, "WinVista32E", "Windows Vista"},
        {Value("CurrentVersion", "6.0"), "LanmanNT", "amd64", osLONGHORN32E, "WinSrv2K832E", "Windows Vista"},
        {Value("CurrentVersion", "6.1"), "WinNT", "x86", osWINSEVEN32, "Win732", "Windows Vista"},
        {Value("CurrentVersion", "6.1"), "winnt", "AMD64", osWINSEVEN32E, "Win732E", "Windows Vista"},
        {Value("CurrentVersion", "6.1"), "ServerNT", "AMD64", osWIN2K8R232E, "WinSrv2K8R232E", "Windows Vista"},
        {Value("CurrentVersion", "6.2"), "WinNT", "AMD64", osWINEIGHT32E, "Win832E", "Windows Vista"},
        {Value("CurrentVersion", "6.2"), "ServerNT", "AMD64", osWINEIGHTSRV32E, "Win832E", "Windows Vista"},
        {Value("CurrentVersion", "6.3"), "WinNT", "AMD64", osWINEIGHT32E, "Win832E", "Windows Vista"},
        {ten, "WinNT", "AMD64", osWINEIGHT32E, "Win832E", "Windows Vista"},
        {ten, "ServerNT", "AMD64", osWINEIGHTSRV32E, "Win832E", "Windows Vista"},
        {ten, "WinNT", "ARM64", osWINEIGHT32E, "Win832E", "Windows Vista"},
        {ten, "WinNT", "x86", osWINEIGHT32, "Win832", "Windows Vista"},
        {Value("CurrentVersion", "4.0"), "WinNT", "x86", osWINNT4, "", "Windows NT"},
    };
    for (const Row& row : rows) {
        const SystemView view = ViewOf(System(row.version, row.productType, row.processor));
        EXPECT_EQ(row.code, view.code) << row.version << row.productType << row.processor;
        EXPECT_EQ(row.section, view.section) << row.version;
        EXPECT_EQ(row.family, view.family) << row.version;
        EXPECT_EQ(row.family == "Windows NT", view.familyStatus != 0) << row.version;
    }
}

TEST(SystemView, SaysWhereEachFactComesFrom)
{
    const SystemView view = ViewOf(System(Value("CurrentVersion", "6.3"), "WinNT", "ARM64"));
    EXPECT_THAT(view.reasons,
                ElementsAre(R"(version 6.3: HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\CurrentVersion)",
                            "a system of version 6.3 reports 6.2 to the program",
                            R"(product type 1: HKLM\SYSTEM\CurrentControlSet\Control\ProductOptions\ProductType)",
                            R"(processor 9: HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment\)"
                            "PROCESSOR_ARCHITECTURE",
                            "the program runs emulated on ARM64, where x64 is reported to it"));
    EXPECT_EQ("the program is a 64-bit one and does not start on this processor",
              ViewOf(System(Value("CurrentVersion", "6.1"), "WinNT", "x86")).reasons.back());
}

TEST(SystemView, OfAnOldSystemBelowTheRootIsThatSystem)
{
    const std::string text = R"([HKLM\Software\Microsoft\Windows\CurrentVersion])"
                             "\r\n" +
                             Value("VersionNumber", "4.10.2222") + "[HKLM\\Enum\\PCI\\VEN_1\\2]\r\n";
    const SystemView view = ViewOf(text);
    EXPECT_EQ(osWIN98, view.code);
    EXPECT_EQ("Windows 98", view.family);
    EXPECT_EQ((VersionNumbers{4, 10, 2222}), *Read(text).system.version);
}

TEST(SystemView, NeedsVersionProductTypeAndProcessor)
{
    const Machine machine = Read(Device("VEN_1", "a"));
    EXPECT_FALSE(ViewOfSystem(machine.system));
    EXPECT_EQ(
        R"(the system's version (not among what was read: HKLM\SOFTWARE\Microsoft\Windows NT\CurrentVersion\CurrentVersion); )"
        R"(the product type (not among what was read: HKLM\SYSTEM\CurrentControlSet\Control\ProductOptions\ProductType); )"
        R"(the processor (not among what was read: HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment\PROCESSOR_ARCHITECTURE))",
        MissingForView(machine.system));
    EXPECT_EQ("", MissingForView(Read(System(Value("CurrentVersion", "6.1"), "WinNT", "x86")).system));
    EXPECT_EQ("", MissingForView(Read(kVersionKey + Value("CurrentVersion", "5.1")).system));
    EXPECT_THAT(MissingForView(Read(kVersionKey + Value("CurrentVersion", "5.2")).system), HasSubstr("the processor"));
}

TEST(SystemView, DoesNotGuessWhatItDoesNotUnderstand)
{
    const auto missing = [](const std::string& text) { return MissingForView(Read(text).system); };
    for (const std::string version : {"", "six", "6", "6.", ".1", "6,1", "99999999999.0", "-6.1"}) {
        EXPECT_THAT(missing(System(Value("CurrentVersion", version), "WinNT", "x86")),
                    HasSubstr("CurrentVersion is \"" + version + "\""))
            << version;
    }
    EXPECT_THAT(missing(System(Value("CurrentVersion", "6.1"), "Desktop", "x86")),
                HasSubstr("ProductType is \"Desktop\""));
    EXPECT_THAT(missing(System(Value("CurrentVersion", "6.1"), "WinNT", "Z80")),
                HasSubstr("PROCESSOR_ARCHITECTURE is \"Z80\""));
    EXPECT_THAT(missing(System("\"CurrentVersion\"=dword:6\r\n", "WinNT", "x86")),
                HasSubstr("CurrentVersion\\CurrentVersion is no text"));
}

TEST(SystemDescription, TakesTheNumbersOfTheVersionBeforeItsText)
{
    const std::string major = "\"CurrentMajorVersionNumber\"=dword:0000000a\r\n";
    const std::string minor = "\"CurrentMinorVersionNumber\"=dword:1\r\n";
    const std::string text = Value("CurrentVersion", "6.3");
    const std::string build = Value("CurrentBuildNumber", "9600");
    EXPECT_EQ((VersionNumbers{10, 1, 0}), *Read(kVersionKey + major + minor).system.version);
    EXPECT_EQ((VersionNumbers{10, 1, 9600}), *Read(kVersionKey + text + build + major + minor).system.version);
    EXPECT_EQ((VersionNumbers{6, 3, 9600}), *Read(kVersionKey + text + build).system.version);
    EXPECT_EQ((VersionNumbers{6, 3, 0}), *Read(kVersionKey + text + major).system.version);
    EXPECT_EQ((VersionNumbers{6, 3, 0}), *Read(kVersionKey + text + minor).system.version);
}

TEST(SystemDescription, HasTheServicePackOfEitherPlace)
{
    const auto servicePack = [](const std::string& text) { return Read(text).system.servicePack; };
    EXPECT_EQ(2, *servicePack(kVersionKey + Value("CSDVersion", "Service Pack 2")));
    EXPECT_EQ(0, *servicePack(kVersionKey + Value("CurrentVersion", "6.1")));
    EXPECT_EQ(3, *servicePack(kControl + "Windows]\r\n\"CSDVersion\"=dword:00000300\r\n"));
    EXPECT_EQ(1, *servicePack(kVersionKey + Value("CSDVersion", "Service Pack 2") + kControl +
                              "Windows]\r\n\"CSDVersion\"=dword:00000100\r\n"));
    EXPECT_EQ(0, *servicePack(kVersionKey + Value("CSDVersion", "")));
    EXPECT_FALSE(servicePack(kVersionKey + Value("CSDVersion", "Dienst 2")));
    EXPECT_FALSE(servicePack(Device("VEN_1", "a")));
}

TEST(SystemDescription, HasTheFurtherFacts)
{
    const Machine machine =
        Read(kVersionKey + Value("ProductName", "Windows Server 2019") + Value("InstallationType", "Server Core") +
             kControl + "ProductOptions]\r\n\"ProductSuite\"=" + "hex(7):41,00,00,00,42,00,42,00,00,00,00,00\r\n" +
             kControl + "Nls\\CodePage]\r\n" + Value("ACP", "932") + kControl + "ComputerName\\ComputerName]\r\n" +
             Value("ComputerName", "HOST7"));
    EXPECT_EQ("Windows Server 2019", *machine.system.productName);
    EXPECT_EQ("Server Core", *machine.system.installationType);
    EXPECT_THAT(*machine.system.productSuites, ElementsAre("A", "BB"));
    EXPECT_EQ(932U, *machine.system.codePage);
    EXPECT_EQ("HOST7", *machine.system.computerName);
    EXPECT_EQ("PC7", machine.name);
}

TEST(RestartFacts, HaveTheNdisVersionThatTheSystemBrings)
{
    const auto ndis = [](const std::string& version, const std::string& further = {}) {
        return Read(kVersionKey + Value("CurrentVersion", version) + further).restart.ndisVersion;
    };
    EXPECT_EQ(0x00050000U, *ndis("5.0"));
    EXPECT_EQ(0x00050001U, *ndis("5.1", Value("CSDVersion", "Service Pack 3")));
    EXPECT_FALSE(ndis("5.2", Value("CSDVersion", "Service Pack 1")));
    EXPECT_EQ(0x00050002U, *ndis("5.2", Value("CSDVersion", "Service Pack 2")));
    EXPECT_EQ(0x00060000U, *ndis("6.0"));
    EXPECT_EQ(0x00060001U, *ndis("6.0", Value("CSDVersion", "Service Pack 1")));
    EXPECT_EQ(0x00060014U, *ndis("6.1"));
    EXPECT_EQ(0x0006001EU, *ndis("6.2"));
    EXPECT_EQ(0x00060028U, *ndis("6.3"));
    EXPECT_EQ(0x00060032U, *ndis("10.0"));
    EXPECT_EQ(0x00060032U, *ndis("11.0"));
    EXPECT_FALSE(ndis("4.0"));
    EXPECT_EQ("Windows 6.1 brings NDIS 6.20", ndis("6.1").from);
    EXPECT_EQ("the system's version is not known", Read(Device("VEN_1", "a")).restart.ndisVersion.from);
}

TEST(RestartFacts, HaveTheFirstInitiatorAmongTheStorageControllers)
{
    const auto restart = [](const std::string& text) { return Read(text).restart; };
    const std::string dump = Value("DumpMiniPort", "iSCSDump.sys");
    const RestartDescription facts =
        restart(Controller("0001", R"(ROOT\\iscsiprt)", dump) + Controller("0000", "other", ""));
    EXPECT_TRUE(*facts.iscsiInitiatorPresent);
    EXPECT_TRUE(*facts.iscsiCrashDumpEnabled);
    EXPECT_EQ("storage controller 0001 is the iSCSI initiator", facts.iscsiInitiatorPresent.from);
    EXPECT_FALSE(
        *restart(Controller("0001", R"(root\\iscsiprt)", Value("DumpMiniPort", "iscsdump.sys"))).iscsiCrashDumpEnabled);
    EXPECT_FALSE(*restart(Controller("0001", R"(root\\iscsiprt)", "none")).iscsiInitiatorPresent);
    // The first of two decides, even when only the second has settings.
    EXPECT_FALSE(
        *restart(Controller("0001", R"(root\\iscsiprt)", "none") + Controller("0002", R"(root\\iscsiprt)", dump))
             .iscsiInitiatorPresent);
    EXPECT_FALSE(*restart(Controller("0001", "other", dump)).iscsiInitiatorPresent);
    EXPECT_FALSE(restart(Device("VEN_1", "a")).iscsiInitiatorPresent);
}

TEST(RestartFacts, KnowWhichInitiatorsAreRecent)
{
    EXPECT_TRUE(*Read(kVersionKey + Value("CurrentVersion", "6.0")).restart.iscsiInitiatorRecent);
    EXPECT_FALSE(Read(kVersionKey + Value("CurrentVersion", "5.2")).restart.iscsiInitiatorRecent);
    EXPECT_FALSE(Read(Device("VEN_1", "a")).restart.iscsiInitiatorRecent);
}

TEST(RestartFacts, HaveTheVersionOfTheManagementExtension)
{
    EXPECT_EQ("16.2.1", *Read("[HKLM\\SOFTWARE\\Norda\\Network_Services\\TERN]\r\n" + Value("OEMVersion", "16.2.1"))
                             .restart.extensionVersion);
    EXPECT_EQ(R"(not among what was read: HKLM\SOFTWARE\Norda\Network_Services\TERN\OEMVersion)",
              Read(Device("VEN_1", "a")).restart.extensionVersion.from);
}
