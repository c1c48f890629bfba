#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <utility>

#include "OrvRegKey.h"
#include "RegistryKeys.h"

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

namespace {
// The items below an open key: enumeration and deletion.
class RegKeyItems : public ::testing::Test
{
protected:
    RegKeyItems() { CreateRegistryKey(scratch.Path()); }

    [[nodiscard]] COrvString Path() const { return scratch.Path(); }

    ScratchRegistryKey scratch{R"(SOFTWARE\Orv item test)"};
    COrvRegKey key;
};

std::vector<std::string> AllSubKeys(COrvRegKey& key)
{
    std::vector<std::string> names;
    COrvString name;
    while (key.EnumSubKey(name)) {
        names.push_back(name.Text());
    }
    return names;
}
} // namespace

TEST_F(RegKeyItems, EnumSubKeyGivesEveryNameThenStatus259AndStartsAgain)
{
    CreateRegistryKey(scratch.Path() + "\\one");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), true));
    COrvRegKey longest;
    ASSERT_TRUE(longest.Create(key.GetHKey(), std::string(255, 'n'), false, false));
    EXPECT_THAT(AllSubKeys(key), UnorderedElementsAre("one", std::string(255, 'n')));
    EXPECT_EQ(key.LastResult(), ERROR_NO_MORE_ITEMS);
    EXPECT_THAT(AllSubKeys(key), UnorderedElementsAre("one", std::string(255, 'n')));
    // Its full path is too long for the platform, so that only its parent can delete it.
    EXPECT_EQ(key.RemoveSubKey(std::string(255, 'n').c_str()), 0U);
}

TEST_F(RegKeyItems, AFailedEnumerationLeavesTheNameUntouched)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvString name("before");
    EXPECT_FALSE(key.EnumSubKey(name));
    EXPECT_FALSE(key.EnumValue(name));
    EXPECT_STREQ(name, "before");
}

TEST_F(RegKeyItems, EnumValueGivesEveryNameThenStatus259AndStartsAgain)
{
    SetRegistryText(scratch.Path(), "one", "1");
    SetRegistryText(scratch.Path(), std::string(511, 'v'), "2");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    for (int round = 0; round < 2; ++round) {
        std::vector<std::string> names;
        COrvString name;
        while (key.EnumValue(name)) {
            names.push_back(name.Text());
        }
        EXPECT_EQ(key.LastResult(), ERROR_NO_MORE_ITEMS);
        EXPECT_THAT(names, UnorderedElementsAre("one", std::string(511, 'v')));
    }
}

TEST_F(RegKeyItems, AValueNameThatIsTooLongFailsAndTheIndexMovesOn)
{
    SetRegistryText(scratch.Path(), std::string(600, 'v'), "2");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvString name;
    EXPECT_FALSE(key.EnumValue(name));
    EXPECT_EQ(key.LastResult(), ERROR_MORE_DATA);
    EXPECT_FALSE(key.EnumValue(name));
    EXPECT_EQ(key.LastResult(), ERROR_NO_MORE_ITEMS);
}

TEST_F(RegKeyItems, AfterAFailureOtherThanTheLastItemTheSubKeyIndexMovesOn)
{
    CreateRegistryKey(scratch.Path() + "\\a");
    CreateRegistryKey(scratch.Path() + "\\b");
    COrvString name;
    EXPECT_FALSE(key.EnumSubKey(name));
    EXPECT_EQ(key.LastResult(), ERROR_INVALID_HANDLE);
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_STREQ(name, "b");
}

TEST_F(RegKeyItems, BothEnumerationsShareOneIndexAndResetStartsOver)
{
    CreateRegistryKey(scratch.Path() + "\\a");
    CreateRegistryKey(scratch.Path() + "\\b");
    SetRegistryText(scratch.Path(), "first", "1");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvString name;
    ASSERT_TRUE(key.EnumValue(name));
    EXPECT_STREQ(name, "first");
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_STREQ(name, "b");
    key.ResetEnumeration();
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_STREQ(name, "a");
}

TEST_F(RegKeyItems, EnumerationOfAClosedKeyFailsWithThePlatformsStatus)
{
    COrvString name;
    EXPECT_FALSE(key.EnumSubKey(name));
    EXPECT_EQ(key.LastResult(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(key.EnumValue(name));
    EXPECT_EQ(key.LastResult(), ERROR_INVALID_HANDLE);
}

TEST_F(RegKeyItems, DeleteSubKeyDeletesEverythingBelowThroughAParentOpenForReading)
{
    for (const char* path : {"\\child\\a\\x", "\\child\\a\\y", "\\child\\b", "\\child\\c\\z\\deep", "\\other"}) {
        CreateRegistryKey(scratch.Path() + path);
    }
    SetRegistryText(scratch.Path() + "\\child\\b", "value", "1");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_TRUE(key.DeleteSubKey("child"));
    EXPECT_THAT(RegistrySubKeys(scratch.Path()), ElementsAre("other"));
    EXPECT_EQ(key.LastResult(), 0);
}

TEST_F(RegKeyItems, DeleteSubKeyWithAnEmptyNameDoesNotTouchTheRegistry)
{
    CreateRegistryKey(scratch.Path() + "\\child");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), true));
    EXPECT_FALSE(key.DeleteSubKey(""));
    EXPECT_FALSE(key.DeleteSubKey(nullptr));
    EXPECT_THAT(RegistrySubKeys(scratch.Path()), ElementsAre("child"));
    EXPECT_EQ(key.LastResult(), 0);
}

TEST_F(RegKeyItems, DeleteSubKeyFailsForAClosedKeyAndForAMissingOneAndLeavesTheStatus)
{
    EXPECT_FALSE(key.DeleteSubKey("child"));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_FALSE(key.DeleteSubKey("missing"));
    EXPECT_EQ(key.LastResult(), 0);
}

namespace {
// A key that is there but cannot be opened: a registry link to nowhere.
class BrokenLink
{
public:
    explicit BrokenLink(std::string path) : m_path(std::move(path))
    {
        HKEY handle = nullptr;
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, m_path.c_str(), 0, nullptr, REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS, nullptr,
                        &handle, nullptr);
        constexpr wchar_t kNowhere[] = L"\\Registry\\Machine\\Software\\Orv no such key";
        RegSetValueExW(handle, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(kNowhere),
                       sizeof(kNowhere) - sizeof(wchar_t));
        RegCloseKey(handle);
    }
    ~BrokenLink()
    {
        HKEY handle = nullptr;
        RegOpenKeyExA(HKEY_LOCAL_MACHINE, m_path.c_str(), REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, &handle);
        using DeleteKeyFn = LONG(WINAPI*)(HANDLE);
        const auto deleteKey = std::bit_cast<DeleteKeyFn>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtDeleteKey"));
        deleteKey(handle);
        RegCloseKey(handle);
    }
    BrokenLink(const BrokenLink&) = delete;
    BrokenLink& operator=(const BrokenLink&) = delete;

private:
    std::string m_path;
};
} // namespace

TEST_F(RegKeyItems, DeleteSubKeyEndsAtTheFirstFailureAndWhatIsDeletedStaysDeleted)
{
    CreateRegistryKey(scratch.Path() + "\\child\\a");
    const BrokenLink link(scratch.Path() + "\\child\\b");
    CreateRegistryKey(scratch.Path() + "\\child\\c");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_FALSE(key.DeleteSubKey("child"));
    EXPECT_THAT(RegistrySubKeys(scratch.Path() + "\\child"), ElementsAre("b", "c"));
    EXPECT_EQ(key.LastResult(), 0);
}

TEST_F(RegKeyItems, RemoveSubKeyReturnsThePlatformsStatusAndKeepsItsOwn)
{
    CreateRegistryKey(scratch.Path() + "\\empty");
    CreateRegistryKey(scratch.Path() + "\\full\\child");
    EXPECT_EQ(key.RemoveSubKey("empty"), static_cast<unsigned long>(ERROR_INVALID_HANDLE));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_EQ(key.RemoveSubKey("empty"), 0U);
    EXPECT_EQ(key.RemoveSubKey("empty"), static_cast<unsigned long>(ERROR_FILE_NOT_FOUND));
    EXPECT_NE(key.RemoveSubKey("full"), 0U);
    EXPECT_EQ(key.RemoveSubKey(nullptr), static_cast<unsigned long>(ERROR_INVALID_PARAMETER));
    EXPECT_THAT(RegistrySubKeys(scratch.Path()), ElementsAre("full"));
    EXPECT_EQ(key.LastResult(), 0);
}
