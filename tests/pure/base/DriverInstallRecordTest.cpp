#include "DriverInstallRecord.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(DriverInstallRecord, FieldsAreWhereTheInstallerLibraryReadsThem)
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
