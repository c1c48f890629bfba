#include "OrvBounded.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {
// A buffer of exactly `bytes` on the heap, so that the address sanitizer sees every byte beyond it.
std::vector<char> Buffer(size_t bytes, const std::string& text = "")
{
    std::vector<char> buffer(bytes, '#');
    std::copy_n(text.c_str(), std::min(bytes, text.size() + 1), buffer.begin());
    return buffer;
}
} // namespace

TEST(BoundedCopy, CopiesATextWithItsTerminator)
{
    std::vector<char> buffer = Buffer(10);
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), buffer.size(), "abc"), 0);
    EXPECT_STREQ(buffer.data(), "abc");
    EXPECT_EQ(buffer[4], '#');
}

TEST(BoundedCopy, ATextThatJustFitsIsCopied)
{
    std::vector<char> buffer = Buffer(10);
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), buffer.size(), "123456789"), 0);
    EXPECT_STREQ(buffer.data(), "123456789");
}

TEST(BoundedCopy, AnOverflowGives34AndAnEmptyDestination)
{
    for (const char* text : {"1234567890", "12345678901", "a much longer text than the ten bytes there are"}) {
        std::vector<char> buffer = Buffer(10, "before");
        EXPECT_EQ(OrvBoundedCopy(buffer.data(), buffer.size(), text), 34) << text;
        EXPECT_STREQ(buffer.data(), "");
    }
}

TEST(BoundedCopy, ANullSourceGives22AndAnEmptyDestination)
{
    std::vector<char> buffer = Buffer(10, "before");
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), buffer.size(), nullptr), 22);
    EXPECT_STREQ(buffer.data(), "");
}

TEST(BoundedCopy, ANullDestinationOrASizeOfZeroGives22AndTouchesNothing)
{
    char byte = '#';
    EXPECT_EQ(OrvBoundedCopy(nullptr, 10, "a"), 22);
    EXPECT_EQ(OrvBoundedCopy(&byte, 0, "a"), 22);
    EXPECT_EQ(OrvBoundedCopy(&byte, 0, nullptr), 22);
    EXPECT_EQ(byte, '#');
}

TEST(BoundedCopy, OneByteTakesTheEmptyTextOnly)
{
    std::vector<char> buffer = Buffer(1);
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), 1, ""), 0);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), 1, "a"), 34);
    EXPECT_EQ(buffer[0], '\0');
}

TEST(BoundedCopy, ReadsAnOverlongSourceNoFurtherThanTheDestinationIsLong)
{
    const std::vector<char> unterminated(10, 'x');
    std::vector<char> buffer = Buffer(10);
    EXPECT_EQ(OrvBoundedCopy(buffer.data(), buffer.size(), unterminated.data()), 34);
}

TEST(BoundedAppend, AppendsToTheText)
{
    std::vector<char> buffer = Buffer(10, "abc");
    EXPECT_EQ(OrvBoundedAppend(buffer.data(), buffer.size(), "defghi"), 0);
    EXPECT_STREQ(buffer.data(), "abcdefghi");
}

TEST(BoundedAppend, AnOverflowGives34AndEmptiesTheWholeDestination)
{
    std::vector<char> buffer = Buffer(10, "abc");
    EXPECT_EQ(OrvBoundedAppend(buffer.data(), buffer.size(), "defghij"), 34);
    EXPECT_STREQ(buffer.data(), "");
}

TEST(BoundedAppend, ANullSourceGives22AndAnEmptyDestination)
{
    std::vector<char> buffer = Buffer(10, "abc");
    EXPECT_EQ(OrvBoundedAppend(buffer.data(), buffer.size(), nullptr), 22);
    EXPECT_STREQ(buffer.data(), "");
}

TEST(BoundedAppend, ADestinationWithoutTerminatorGives22AndAnEmptyDestination)
{
    std::vector<char> buffer(10, 'x');
    EXPECT_EQ(OrvBoundedAppend(buffer.data(), buffer.size(), "a"), 22);
    EXPECT_STREQ(buffer.data(), "");
}

TEST(BoundedAppend, ANullDestinationOrASizeOfZeroGives22AndTouchesNothing)
{
    char byte = '#';
    EXPECT_EQ(OrvBoundedAppend(nullptr, 10, "a"), 22);
    EXPECT_EQ(OrvBoundedAppend(&byte, 0, "a"), 22);
    EXPECT_EQ(byte, '#');
}

TEST(BoundedAppend, EveryLengthAgainstEverySizeEitherFitsOrLeavesAnEmptyText)
{
    for (size_t bytes = 1; bytes < 12; ++bytes) {
        for (size_t before = 0; before < bytes; ++before) {
            for (size_t added = 0; added < 14; ++added) {
                std::vector<char> buffer = Buffer(bytes, std::string(before, 'a'));
                const bool fits = before + added < bytes;
                EXPECT_EQ(OrvBoundedAppend(buffer.data(), bytes, std::string(added, 'b').c_str()), fits ? 0 : 34);
                EXPECT_EQ(std::string(buffer.data()),
                          fits ? std::string(before, 'a') + std::string(added, 'b') : std::string());
            }
        }
    }
}
