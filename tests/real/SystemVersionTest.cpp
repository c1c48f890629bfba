// What the system says of its version to a program that claims no later system than Windows 8, and what the installer
// library and the program's own code make of it.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>

#include "Environment.h"
#include "Machine.h"
#include "NetInstClient.h"
#include "OSVersion.h"
#include "RegistryKeys.h"

namespace {
constexpr char kVersionKey[] = R"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";

using Version = std::pair<DWORD, DWORD>;
constexpr Version kLastKnown{6, 2};

std::string AsText(const Version& version)
{
    return std::to_string(version.first) + "." + std::to_string(version.second);
}

Version OwnVersion()
{
    const SystemNumbers own = OwnVersionOfTheSystem();
    return {own.major, own.minor};
}

/// What the system has to report to such a program.
Version ReportedVersion()
{
    return std::min(OwnVersion(), kLastKnown);
}

std::optional<DWORD> RegistryNumber(const char* name)
{
    const auto value = ReadRegistryValue(kVersionKey, name);
    DWORD number = 0;
    if (!value || value->type != REG_DWORD || value->bytes.size() != sizeof(number)) {
        return std::nullopt;
    }
    std::memcpy(&number, value->bytes.data(), sizeof(number));
    return number;
}

class SystemVersion : public testing::Test
{
protected:
    // The report shows the numbers beside each row.
    SystemVersion()
    {
        RecordProperty("system", AsText(OwnVersion()) + "." + std::to_string(OwnVersionOfTheSystem().build));
    }
};
} // namespace

TEST_F(SystemVersion, IsTheOneOfTheRegistry)
{
    const SystemNumbers own = OwnVersionOfTheSystem();
    EXPECT_EQ(ReadRegistryText(kVersionKey, "CurrentBuildNumber"), std::to_string(own.build));
    const auto major = RegistryNumber("CurrentMajorVersionNumber");
    const auto minor = RegistryNumber("CurrentMinorVersionNumber");
    if (major && minor) {
        // The old text stays at 6.3 on these systems.
        EXPECT_EQ(AsText({*major, *minor}), AsText(OwnVersion()));
    } else {
        EXPECT_EQ(ReadRegistryText(kVersionKey, "CurrentVersion"), AsText(OwnVersion()));
    }
}

TEST_F(SystemVersion, IsReportedAs62WhereItIsLater)
{
    OSVERSIONINFOEXA reported{};
    reported.dwOSVersionInfoSize = sizeof(reported);
    ASSERT_NE(GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&reported)), FALSE);
    RecordProperty("reported", AsText({reported.dwMajorVersion, reported.dwMinorVersion}));
    EXPECT_EQ(AsText({reported.dwMajorVersion, reported.dwMinorVersion}), AsText(ReportedVersion()));
    EXPECT_EQ(reported.wProductType, OwnVersionOfTheSystem().productType);
}

TEST_F(SystemVersion, MakesTheInstallerLibraryNameItsFamily)
{
    const SavedRegistryValue restart(kNetInstKey, kNetInstRestartValue);
    const NetInstLibrary library(DistFolder() + "\\NetInst.dll");
    RawRecord record;
    const auto prober = library.MakeProber();
    ASSERT_NE(prober, nullptr);
    const int64_t status = prober->IdentifySystem(&record);
    RecordProperty("family", record.Family());
    EXPECT_EQ(static_cast<uint32_t>(status), 0u);
    EXPECT_EQ(record.Family(), ReportedVersion().first == 5 ? "Windows Whistler" : "Windows Vista");
}

TEST_F(SystemVersion, MakesTheProgramsOwnCodeNameTheSystem)
{
    const bool isWorkstation = OwnVersionOfTheSystem().productType == VER_NT_WORKSTATION;
    const std::map<Version, std::pair<OSCode, OSCode>> codes = {
        {{5, 2}, {osWINXP32E, osWIN2K3SRV32E}},
        {{6, 0}, {osWINVISTA32E, osLONGHORN32E}},
        {{6, 1}, {osWINSEVEN32E, osWIN2K8R232E}},
        {{6, 2}, {osWINEIGHT32E, osWINEIGHTSRV32E}},
    };
    const auto expected = codes.find(ReportedVersion());
    ASSERT_NE(expected, codes.end()) << "no 64-bit system has the version " << AsText(ReportedVersion());
    const OSCode code = COSVersion().GetOSCode();
    RecordProperty("section", std::string(kSystems.at(code).sectionKey));
    EXPECT_EQ(code, isWorkstation ? expected->second.first : expected->second.second);
}
