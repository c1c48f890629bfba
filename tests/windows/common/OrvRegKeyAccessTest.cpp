// What access the library's own walk through the registry asks for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ImportOverride.h"
#include "OrvRegKey.h"
#include "RegistryKeys.h"

using ::testing::ElementsAre;

namespace {
struct Opening
{
    std::string subKey;
    REGSAM access = 0;
    bool operator==(const Opening&) const = default;
};
std::vector<Opening> openings;
decltype(&RegOpenKeyExA) platformOpen = nullptr;

LSTATUS WINAPI NoteOpening(HKEY root, LPCSTR subKey, DWORD options, REGSAM access, PHKEY opened)
{
    openings.push_back({subKey, access});
    return platformOpen(root, subKey, options, access, opened);
}

/// A key that is open, with a child and a grandchild.
class RegKeyAccess : public ::testing::Test
{
protected:
    RegKeyAccess()
    {
        CreateRegistryKey(m_scratch.Path() + R"(\child\grandchild)");
        key.Open(HKEY_LOCAL_MACHINE, m_scratch.Path(), true);
        openings.clear();
    }

    COrvRegKey key;

private:
    const ScratchRegistryKey m_scratch{R"(SOFTWARE\Orv access test)"};
    const ImportOverride m_note{"RegOpenKeyExA", InPlaceOf(platformOpen, &RegOpenKeyExA, &NoteOpening)};
};
constexpr REGSAM kRead = KEY_READ;
} // namespace

TEST_F(RegKeyAccess, ASubKeyIsLookedForByAnOpenForReadingOnly)
{
    EXPECT_TRUE(key.SubKeyExists("child"));
    EXPECT_THAT(openings, ElementsAre(Opening{"child", kRead}));
}

TEST_F(RegKeyAccess, SubKeysToBeDeletedAreOpenedForReadingOnly)
{
    EXPECT_TRUE(key.DeleteSubKey("child"));
    EXPECT_THAT(openings, ElementsAre(Opening{"child", kRead}, Opening{"grandchild", kRead}));
    EXPECT_FALSE(key.SubKeyExists("child"));
}
