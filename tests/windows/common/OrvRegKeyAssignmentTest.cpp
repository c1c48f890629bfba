// What becomes of the key before when a handle or an object is assigned.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "CallCount.h"
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

    [[nodiscard]] static bool IsOpen(HKEY handle)
    {
        return RegQueryInfoKeyA(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr) == ERROR_SUCCESS;
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

TEST_F(RegKeyAssignment, OfTheObjectsOwnHandleKeepsOneOwner)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    const HKEY handle = key.GetHKey();
    const CallCount closes("RegCloseKey");
    key = key.GetHKey();
    EXPECT_EQ(key.GetHKey(), handle);
    EXPECT_EQ(key.KeyPath(), ("HKEY_LOCAL_MACHINE\\" + scratch.Path()).c_str());
    EXPECT_TRUE(IsOpen(handle));
    EXPECT_EQ(closes.Calls(), 0U);
    key.Close();
    EXPECT_EQ(closes.Calls(), 1U);
    EXPECT_FALSE(IsOpen(handle));
}

TEST_F(RegKeyAssignment, OfAHandleThatTheObjectSharesKeepsItShared)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    const HKEY handle = key.GetHKey();
    const CallCount closes("RegCloseKey");
    {
        COrvRegKey other;
        other = key;
        other = other.GetHKey();
        EXPECT_EQ(other.GetHKey(), handle);
    }
    EXPECT_TRUE(IsOpen(handle)) << "the first object holds it still";
    EXPECT_EQ(closes.Calls(), 0U);
    key.Close();
    EXPECT_EQ(closes.Calls(), 1U);
}

TEST_F(RegKeyAssignment, OfAnObjectClosesTheKeyBeforeUnlessAnotherObjectSharesIt)
{
    COrvRegKey other;
    COrvRegKey sharing;
    ASSERT_TRUE(other.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    const HKEY first = key.GetHKey();
    sharing = key;
    key = other;
    EXPECT_EQ(key.GetHKey(), other.GetHKey());
    EXPECT_TRUE(IsOpen(first)) << "shared";
    sharing = other;
    EXPECT_FALSE(IsOpen(first)) << "the last one that held it";
}
