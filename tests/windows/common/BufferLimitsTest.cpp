// Copies and conversions into buffers that end where the memory ends.

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>

#include "GuardedBuffer.h"
#include "OrvSecure.h"
#include "OrvString.h"

namespace {
TEST(GuardedCopies, WriteTheTextOrNothingButATerminator)
{
    for (const std::size_t size : {1u, 2u, 9u, 10u, 11u, 260u}) {
        for (const std::size_t length : {0u, 1u, 9u, 10u, 11u, 32767u}) {
            const std::string text(length, 't');
            const GuardedBuffer copy(size);
            const bool fits = length < size;
            EXPECT_EQ(OrvSafeCopy("file", 1, copy.Data(), size, text.c_str()), fits ? 0 : 34);
            EXPECT_EQ(copy.Text(), fits ? text : "") << length << " into " << size;
            EXPECT_TRUE(copy.IsUntouchedInFront());

            copy.Fill('\0');
            EXPECT_EQ(OrvSafeCat("file", 1, copy.Data(), size, text.c_str()), fits ? 0 : 34);
            EXPECT_EQ(copy.Text(), fits ? text : "");

            copy.Fill('x');
            EXPECT_EQ(OrvSafeCat("file", 1, copy.Data(), size, text.c_str()), 22) << "no terminator to append to";
            EXPECT_EQ(copy.Text(), "");
            EXPECT_TRUE(copy.IsUntouchedInFront());
        }
    }
}

TEST(GuardedCopies, ReadNoFurtherThanTheDestinationIsLong)
{
    // A source of exactly the memory that it has, with its terminator as the last byte.
    const GuardedBuffer source(12);
    source.Data()[11] = '\0';
    const GuardedBuffer copy(11);
    EXPECT_EQ(OrvSafeCopy("file", 1, copy.Data(), 11, source.Data()), 34);
    // One without a terminator, as long as the destination: it is looked through and no further.
    const GuardedBuffer endless(11);
    EXPECT_EQ(OrvSafeCopy("file", 1, copy.Data(), 11, endless.Data()), 34);
    EXPECT_EQ(copy.Text(), "");
}

TEST(GuardedConversions, NeverWriteBeyondTheTarget)
{
    constexpr unsigned kWestern = 1252;
    for (const int room : {1, 2, 5, 6, 7}) {
        const auto bytes = static_cast<std::size_t>(room) * sizeof(wchar_t);
        const GuardedBuffer wide(bytes);
        auto* const target = reinterpret_cast<wchar_t*>(wide.Data());
        EXPECT_EQ(COrvString::OrvMultiByteToWideChar(kWestern, 0, "12345", -1, target, room), 6);
        EXPECT_LT(std::find(target, target + room, L'\0'), target + room) << room;
        EXPECT_TRUE(wide.IsUntouchedInFront());

        const GuardedBuffer narrow(static_cast<std::size_t>(room));
        EXPECT_EQ(COrvString::OrvWideCharToMultiByte(kWestern, 0, L"12345", -1, narrow.Data(), room, nullptr, nullptr),
                  6);
        EXPECT_EQ(narrow.Text(), std::string("12345").substr(0, static_cast<std::size_t>(room) - 1));
        EXPECT_TRUE(narrow.IsUntouchedInFront());
    }
}

TEST(GuardedConversions, ReadNoFurtherThanTheGivenLength)
{
    // Sources without a terminator, up to the end of their memory.
    const GuardedBuffer source(5);
    wchar_t wide[6] = {};
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar(1252, 0, source.Data(), 5, wide, 6), 5);
    const GuardedBuffer wideSource(10);
    std::fill_n(reinterpret_cast<wchar_t*>(wideSource.Data()), 5, L'w');
    char narrow[6] = {};
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte(1252, 0, reinterpret_cast<const wchar_t*>(wideSource.Data()), 5,
                                                 narrow, 6, nullptr, nullptr),
              5);
}

TEST(FormatCharacters, InATextAreText)
{
    COrvString text;
    EXPECT_EQ(text.FormatString("%s", "%s%n%x%08X%*d"), 13);
    EXPECT_EQ(text.Text(), "%s%n%x%08X%*d");
}
} // namespace
