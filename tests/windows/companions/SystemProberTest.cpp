#include <gtest/gtest.h>
#include <windows.h>

#include "NetInstClient.h"
#include "SystemFamily.h"

namespace {
struct VersionRow
{
    uint32_t platform;
    uint32_t major;
    uint32_t minor;
    const char* family;
    uint32_t status;
};
constexpr VersionRow kVersions[] = {
    {1, 4, 0, "", 0x80640013},
    {1, 4, 10, "Windows 98", 0},
    {1, 4, 90, "Windows Millenium", 0},
    {1, 4, 3, "", 0x80640013},
    {1, 5, 0, "", 0x80640013},
    {2, 3, 10, "Windows NT", 0x80640013},
    {2, 3, 51, "Windows NT", 0x80640013},
    {2, 4, 0, "Windows NT", 0x80640013},
    {2, 5, 0, "Windows 2000", 0},
    {2, 5, 1, "Windows Whistler", 0},
    {2, 5, 2, "Windows Whistler", 0},
    {2, 5, 3, "", 0x80640013},
    {2, 6, 0, "Windows Vista", 0},
    {2, 6, 1, "Windows Vista", 0},
    {2, 6, 2, "Windows Vista", 0},
    {2, 6, 3, "Windows Vista", 0},
    {2, 10, 0, "Windows Vista", 0},
    {0, 3, 10, "", 0x80640013},
    {3, 6, 0, "", 0x80640013},
};

struct SystemRow
{
    const char* wineVersion;
    const char* answer;
};
constexpr SystemRow kSystems[] = {
    {"win95", "80640013 "},
    {"win98", "00000000 Windows 98"},
    {"winme", "00000000 Windows Millenium"},
    {"nt351", "80640013 Windows NT"},
    {"nt40", "80640013 Windows NT"},
    {"win2k", "00000000 Windows 2000"},
    {"winxp", "00000000 Windows Whistler"},
    {"winxp64", "00000000 Windows Whistler"},
    {"win2003", "00000000 Windows Whistler"},
    {"vista", "00000000 Windows Vista"},
    {"win2008", "00000000 Windows Vista"},
    {"win7", "00000000 Windows Vista"},
    {"win2008r2", "00000000 Windows Vista"},
    {"win8", "00000000 Windows Vista"},
    {"win81", "00000000 Windows Vista"},
    {"win10", "00000000 Windows Vista"},
};
} // namespace

TEST(SystemFamily, EveryVersionHasItsFamilyAndStatus)
{
    for (const VersionRow& row : kVersions) {
        SCOPED_TRACE(testing::Message() << "platform " << row.platform << " version " << row.major << "." << row.minor);
        const SystemFamily family = FamilyForVersion(row.platform, row.major, row.minor);
        EXPECT_EQ(family.name, row.family);
        EXPECT_EQ(family.status, row.status);
    }
}

TEST(SysProber, NamesTheFamilyOfEverySystemItRunsOn)
{
    for (const SystemRow& row : kSystems) {
        SCOPED_TRACE(row.wineVersion);
        EXPECT_EQ(RunTaskOnSystem(row.wineVersion, "identify"), row.answer);
    }
}

TEST(SysProber, ClearsTheFamilyFieldAndLeavesTheRestOfTheRecordAlone)
{
    const NetInstLibrary library;
    RawRecord record;
    record.bytes.fill('x');
    const Held<ISysProberInterface> prober = library.MakeProber();
    ASSERT_NE(prober, nullptr);
    EXPECT_EQ(static_cast<int32_t>(prober->IdentifySystem(&record)), 0);
    const std::string family = record.Family();
    EXPECT_FALSE(family.empty());
    for (std::size_t i = family.size(); i < 204; ++i) {
        ASSERT_EQ(record.bytes[i], '\0') << i;
    }
    for (std::size_t i = 204; i < record.bytes.size(); ++i) {
        ASSERT_EQ(record.bytes[i], 'x') << i;
    }
}

TEST(SysProber, RefusesANullRecord)
{
    const NetInstLibrary library;
    const Held<ISysProberInterface> prober = library.MakeProber();
    ASSERT_NE(prober, nullptr);
    EXPECT_EQ(static_cast<uint32_t>(prober->IdentifySystem(nullptr)), 0x80004003U);
}
