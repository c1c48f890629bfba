#include "ZipArchive.h"

#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

namespace {
uint32_t NumberAt(const std::string& bytes, std::size_t at, std::size_t count)
{
    uint32_t number = 0;
    for (std::size_t i = count; i > 0; --i) {
        number = number << 8U | static_cast<uint8_t>(bytes[at + i - 1]);
    }
    return number;
}
} // namespace

// That other programs read the archives is tested on the bundle's report.
TEST(ZipArchive, HasTheCheckSumThatTheFormatAsksFor)
{
    EXPECT_EQ(Crc32(""), 0U);
    EXPECT_EQ(Crc32("123456789"), 0xCBF43926U);
}

TEST(ZipArchive, AFileIsStoredWithNameTimeSumAndSize)
{
    std::ostringstream out;
    ZipArchive archive(out);
    archive.Add("a/b.txt", "content", {.date = 0x5A21, .time = 0x1234});
    archive.Finish();
    const std::string bytes = out.str();
    EXPECT_EQ(NumberAt(bytes, 0, 4), 0x04034B50U);
    EXPECT_EQ(NumberAt(bytes, 8, 2), 0U);
    EXPECT_EQ(NumberAt(bytes, 10, 2), 0x1234U);
    EXPECT_EQ(NumberAt(bytes, 12, 2), 0x5A21U);
    EXPECT_EQ(NumberAt(bytes, 14, 4), Crc32("content"));
    EXPECT_EQ(NumberAt(bytes, 18, 4), 7U);
    EXPECT_EQ(bytes.substr(30, 14), "a/b.txtcontent");
    EXPECT_EQ(NumberAt(bytes, 44, 4), 0x02014B50U);
}

TEST(ZipArchive, TheDirectoryLeadsToEachFile)
{
    std::ostringstream out;
    ZipArchive archive(out);
    archive.Add("one", "1", {});
    archive.Add("two", "22", {});
    archive.Finish();
    const std::string bytes = out.str();
    const std::size_t end = bytes.size() - 22;
    EXPECT_EQ(NumberAt(bytes, end, 4), 0x06054B50U);
    EXPECT_EQ(NumberAt(bytes, end + 10, 2), 2U);
    const uint32_t directory = NumberAt(bytes, end + 16, 4);
    EXPECT_EQ(directory + NumberAt(bytes, end + 12, 4), end);
    const std::size_t second = directory + 46 + 3;
    EXPECT_EQ(bytes.substr(second + 46, 3), "two");
    EXPECT_EQ(bytes.substr(NumberAt(bytes, second + 42, 4) + 30, 5), "two22");
}

TEST(ZipArchive, ANameThatTheFormatCannotHoldIsRefused)
{
    std::ostringstream out;
    ZipArchive archive(out);
    EXPECT_THROW(archive.Add(std::string(70000, 'n'), "", {}), std::length_error);
}
