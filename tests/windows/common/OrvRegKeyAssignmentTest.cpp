// What an object keeps of the key before when a handle is assigned to it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvRegKey.h"
#include "RegistryKeys.h"

namespace {
class RegKeyAssignment : public ::testing::Test
{
protected:
    RegKeyAssignment() { CreateRegistryKey(scratch.Path()); }

    [[nodiscard]] HKEY OpenHandle() const
    {
        HKEY handle = nullptr;
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, scratch.Path().c_str(), 0, KEY_READ, &handle);
        return handle;
    }

    ScratchRegistryKey scratch{R"(SOFTWARE\Orv assignment test)"};
    COrvRegKey key;
};
} // namespace

TEST_F(RegKeyAssignment, OfAHandleKeepsTheStatusAndTheEnumerationIndex)
{
    CreateRegistryKey(scratch.Path() + "\\a");
    CreateRegistryKey(scratch.Path() + "\\b");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    COrvString name;
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_EQ(key.GetRegType("missing"), 0U);
    const HKEY before = key.GetHKey();
    key = OpenHandle();
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(key.EnumSubKey(name));
    EXPECT_STREQ(name, "b");
    RegCloseKey(before);
}

TEST_F(RegKeyAssignment, OfAHandleToAClosedObjectOpensItAndKeepsItsStatus)
{
    SetRegistryText(scratch.Path(), "value", "text");
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path() + "\\missing", false));
    const HKEY handle = OpenHandle();
    key = handle;
    EXPECT_EQ(key.GetHKey(), handle);
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    COrvString text;
    EXPECT_TRUE(key.GetValue("value", text));
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(key.LastResult(), 0);
}
