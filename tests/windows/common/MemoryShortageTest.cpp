// What the library does when there is no memory for what it was asked to read, write or convert.

#include <gtest/gtest.h>

#include <new>

#include "MemoryShortage.h"
#include "OrvRegKey.h"
#include "OrvString.h"
#include "RegistryValues.h"

namespace {
constexpr std::size_t kMuch = 100000;
constexpr unsigned kWestern = 1252;

class ShortOfMemoryForValues : public RegistryValues
{
};
} // namespace

TEST(ShortOfMemory, AWideningThatCannotBeAllocatedIsZeroAndLeavesThePointerNull)
{
    const std::string text(kMuch, 'x');
    wchar_t* target = nullptr;
    {
        const MemoryShortage shortage(kMuch);
        EXPECT_EQ(COrvString::OrvMultiByteToWideChar_alloc(kWestern, 0, text.c_str(), target), 0);
    }
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(COrvString::OrvMultiByteToWideChar_alloc(kWestern, 0, text.c_str(), target),
              static_cast<int>(text.size()) + 1);
    COrvString::OrvMultiByteToWideChar_dealloc(target);
}

TEST(ShortOfMemory, ANarrowingThatCannotBeAllocatedIsZeroAndLeavesThePointerNull)
{
    const std::wstring text(kMuch, L'x');
    char* target = nullptr;
    {
        const MemoryShortage shortage(kMuch);
        EXPECT_EQ(COrvString::OrvWideCharToMultiByte_alloc(kWestern, 0, text.c_str(), target, nullptr, nullptr), 0);
    }
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(COrvString::OrvWideCharToMultiByte_alloc(kWestern, 0, text.c_str(), target, nullptr, nullptr),
              static_cast<int>(text.size()) + 1);
    COrvString::OrvWideCharToMultiByte_dealloc(target);
}

TEST_F(ShortOfMemoryForValues, ReadingAListWithoutMemoryRaisesTheStandardException)
{
    SetRegistryList(scratch.Path(), "list", {std::string(kMuch, 'x')});
    std::vector<COrvString> list;
    {
        const MemoryShortage shortage(kMuch);
        EXPECT_THROW(key.GetValue("list", list), std::bad_alloc);
    }
    EXPECT_TRUE(key.GetValue("list", list));
    EXPECT_EQ(list.size(), 1U);
}

TEST_F(ShortOfMemoryForValues, WritingAListWithoutMemoryRaisesTheStandardExceptionAndWritesNothing)
{
    const COrvString longText(std::string(kMuch / 2, 'x'));
    std::vector<COrvString> list(3, longText);
    {
        // Each text has its memory; the list's own bytes have not.
        const MemoryShortage shortage(kMuch);
        EXPECT_THROW(key.SetValue("list", list), std::bad_alloc);
    }
    EXPECT_EQ(Bytes("list"), "<none>");
    EXPECT_TRUE(key.SetValue("list", list));
}
