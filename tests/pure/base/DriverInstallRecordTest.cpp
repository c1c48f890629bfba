#include "DriverInstallRecord.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(DriverInstallRecord, FieldsLieWhereTheInstallerLibraryReadsThem)
{
    DriverInstallRecord record;
    const auto* bytes = reinterpret_cast<const char*>(&record);
    EXPECT_EQ(1280U, sizeof(record));
    EXPECT_EQ(bytes, record.osFamily.data());
    EXPECT_EQ(bytes + 204, record.infPath.data());
    EXPECT_EQ(256U, record.infPath.size());
    EXPECT_EQ(bytes + 716, record.hardwareId.data());
    EXPECT_EQ(300U, record.hardwareId.size());
}

TEST(DriverInstallRecord, StartsAllZero)
{
    const DriverInstallRecord record{};
    std::string bytes(sizeof(record), 'x');
    std::memcpy(bytes.data(), &record, sizeof(record));
    EXPECT_EQ(std::string(1280, '\0'), bytes);
}

TEST(DriverInstallRecord, UnterminatedFamilyNameEndsWithItsField)
{
    DriverInstallRecord record;
    record.osFamily.fill('x');
    record.infPath.fill('y');
    EXPECT_EQ(std::string(204, 'x'), FamilyOf(record));
}

TEST(DriverInstallRecord, FamiliesAreComparedWholeAndLetterCaseAside)
{
    EXPECT_TRUE(EqualsIgnoringCase("WINDOWS vista", kFamilyWindowsVista));
    EXPECT_FALSE(EqualsIgnoringCase("Windows Vista ", kFamilyWindowsVista));
    EXPECT_FALSE(EqualsIgnoringCase("Windows", kFamilyWindowsVista));
    EXPECT_FALSE(EqualsIgnoringCase("", kFamilyWindowsVista));
}

TEST(DriverInstallRecord, EveryLetterHasItsOtherCaseAndNoOtherByteHasOne)
{
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const bool upper = byte >= 'A' && byte <= 'Z';
        const bool lower = byte >= 'a' && byte <= 'z';
        const char other = static_cast<char>(value ^ 0x20);
        EXPECT_EQ(upper || lower, EqualsIgnoringCase(std::string(1, byte), std::string(1, other))) << value;
    }
}
