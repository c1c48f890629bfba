#include "OrvRegKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <type_traits>
#include <utility>

#include "EntryPoints.h"
#include "LibraryTrace.h"
#include "RegistryKeys.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {
class RegKey : public ::testing::Test
{
protected:
    RegKey() { CreateRegistryKey(scratch.Path()); }

    [[nodiscard]] COrvString Path(const std::string& below = "") const { return scratch.Path() + below; }

    ScratchRegistryKey scratch{R"(SOFTWARE\Orv key test)"};
    COrvRegKey key;
};

// True while the handle names an open key.
bool IsLive(HKEY handle)
{
    return RegQueryInfoKeyA(handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS;
}

// The rights that the open handle carries, 0 when the system does not tell.
ULONG GrantedAccess(HKEY handle)
{
    struct BasicInformation
    {
        ULONG attributes;
        ULONG grantedAccess;
        ULONG handles;
        ULONG pointers;
        ULONG others[10];
    };
    using QueryObjectFn = LONG(WINAPI*)(HANDLE object, int kind, void* information, ULONG bytes, ULONG* needed);
    const auto query = FindEntry<QueryObjectFn>(GetModuleHandleA("ntdll.dll"), "NtQueryObject");
    constexpr int kBasicInformation = 0;
    BasicInformation information{};
    return query(handle, kBasicInformation, &information, sizeof(information), nullptr) == 0 ? information.grantedAccess
                                                                                             : 0;
}

HKEY OpenHandle(const std::string& path)
{
    HKEY handle = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &handle);
    return handle;
}
} // namespace

TEST_F(RegKey, StartsClosed)
{
    EXPECT_EQ(key.GetHKey(), nullptr);
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_STREQ(key.KeyPath(), "");
    static_assert(std::has_virtual_destructor_v<COrvRegKey>);
}

TEST_F(RegKey, OpenOfAnExistingKeySucceedsAndComposesThePath)
{
    EXPECT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_TRUE(IsLive(key.GetHKey()));
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test)");
}

TEST_F(RegKey, OpenOfAMissingKeyFailsWithStatus2AndStillComposesThePath)
{
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, Path("\\missing"), false));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test\missing)");
    EXPECT_EQ(key.GetHKey(), nullptr);
}

TEST_F(RegKey, OpenBelowAnOpenKeyLeavesThePathOfThePreviousOpen)
{
    CreateRegistryKey(scratch.Path() + "\\child");
    COrvRegKey parent;
    ASSERT_TRUE(parent.Open(HKEY_LOCAL_MACHINE, Path(), false));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, "SOFTWARE", false));
    EXPECT_TRUE(key.Open(parent.GetHKey(), "child", false));
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE)");
    EXPECT_FALSE(key.Open(parent.GetHKey(), "missing", false));
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE)");
    COrvRegKey fresh;
    EXPECT_TRUE(fresh.Open(parent.GetHKey(), "child", false));
    EXPECT_STREQ(fresh.KeyPath(), "");
}

TEST_F(RegKey, OpenBelowItsOwnHandleFailsBecauseThatIsClosedFirst)
{
    CreateRegistryKey(scratch.Path() + "\\child");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_FALSE(key.Open(key.GetHKey(), "child", false));
    EXPECT_EQ(key.LastResult(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(key.GetHKey(), nullptr);
}

TEST_F(RegKey, EachPredefinedRootHasItsName)
{
    struct Row
    {
        HKEY root;
        const char* path;
    };
    for (const Row& row : {
             Row{HKEY_LOCAL_MACHINE, R"(HKEY_LOCAL_MACHINE\none such)"},
             Row{HKEY_CLASSES_ROOT, R"(HKEY_CLASSES_ROOT\none such)"},
             Row{HKEY_CURRENT_USER, R"(HKEY_CURRENT_USER\none such)"},
             Row{HKEY_USERS, R"(HKEY_USERS\none such)"},
             Row{HKEY_PERFORMANCE_DATA, R"(HKEY_PERFORMANCE_DATA\none such)"},
             Row{HKEY_CURRENT_CONFIG, R"(HKEY_CURRENT_CONFIG\none such)"},
             Row{HKEY_DYN_DATA, R"(HKEY_DYN_DATA\none such)"},
         }) {
        key.Open(row.root, "none such", false);
        EXPECT_STREQ(key.KeyPath(), row.path);
    }
}

TEST_F(RegKey, OpenClosesTheKeyThatWasOpen)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY before = key.GetHKey();
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, Path("\\missing"), false));
    EXPECT_FALSE(IsLive(before));
}

TEST_F(RegKey, OpenKeepsTheEnumerationIndex)
{
    CreateRegistryKey(scratch.Path() + "\\a");
    CreateRegistryKey(scratch.Path() + "\\b");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvString name;
    ASSERT_TRUE(key.EnumSubKey(name));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_STREQ(name, "b");
}

TEST_F(RegKey, AKeyOpenedForReadingCannotBeWrittenAndOneForWritingCanBeBoth)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_FALSE(key.SetValue("value", 1));
    EXPECT_EQ(key.LastResult(), ERROR_ACCESS_DENIED);
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), true));
    EXPECT_TRUE(key.SetValue("value", 1));
    DWORD value = 0;
    EXPECT_TRUE(key.GetValue("value", value));
    EXPECT_EQ(value, 1U);
}

TEST_F(RegKey, WriteAccessIsReadAndWriteAndNothingMore)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), true));
    EXPECT_EQ(GrantedAccess(key.GetHKey()), 0x2001FU);
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_EQ(GrantedAccess(key.GetHKey()), 0x20019U);
    // Of a new key, and of one that is there.
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\written"), true, false));
        EXPECT_EQ(GrantedAccess(key.GetHKey()), 0x2001FU);
        ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\read"), false, false));
        EXPECT_EQ(GrantedAccess(key.GetHKey()), 0x20019U);
    }
}

TEST_F(RegKey, CreateMakesAMissingKeyAndOpensAnExistingOne)
{
    EXPECT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\new\\deep"), false, false));
    EXPECT_TRUE(RegistryKeyExists(scratch.Path() + "\\new\\deep"));
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test\new\deep)");
    EXPECT_FALSE(key.SetValue("value", 1));
    EXPECT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\new\\deep"), true, false));
    EXPECT_TRUE(key.SetValue("value", 1));
}

TEST_F(RegKey, CreateBelowAnOpenKeyLeavesThePathOfThePreviousOpen)
{
    COrvRegKey parent;
    ASSERT_TRUE(parent.Open(HKEY_LOCAL_MACHINE, Path(), true));
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, "SOFTWARE", false));
    EXPECT_TRUE(key.Create(parent.GetHKey(), "child", false, false));
    EXPECT_TRUE(RegistryKeyExists(scratch.Path() + "\\child"));
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE)");
    COrvRegKey fresh;
    EXPECT_TRUE(fresh.Create(parent.GetHKey(), "child", false, false));
    EXPECT_STREQ(fresh.KeyPath(), "");
}

TEST_F(RegKey, AFailedCreateKeepsThePathAndTheStatus)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY before = key.GetHKey();
    EXPECT_FALSE(key.Create(std::bit_cast<HKEY>(static_cast<uintptr_t>(0xDEAD00)), "child", false, false));
    EXPECT_EQ(key.LastResult(), ERROR_INVALID_HANDLE);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test)");
    EXPECT_EQ(key.GetHKey(), nullptr);
    EXPECT_FALSE(IsLive(before));

    // Below a volatile key nothing lasting can be made.
    ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\volatile"), true, true));
    EXPECT_FALSE(key.Create(HKEY_LOCAL_MACHINE, Path("\\volatile\\lasting"), true, false));
    EXPECT_EQ(key.LastResult(), ERROR_CHILD_MUST_BE_VOLATILE);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test\volatile)");
}

TEST_F(RegKey, CreateMakesALastingKeyUnlessAVolatileOneIsAskedFor)
{
    COrvRegKey child;
    ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\lasting"), true, false));
    EXPECT_TRUE(child.Create(key.GetHKey(), "lasting child", false, false));
    ASSERT_TRUE(key.Create(HKEY_LOCAL_MACHINE, Path("\\volatile"), true, true));
    EXPECT_TRUE(child.Create(key.GetHKey(), "volatile child", false, true));
}

TEST_F(RegKey, SubKeyExistsAnswersAndLeavesTheStatus)
{
    CreateRegistryKey(scratch.Path() + "\\child");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_TRUE(key.SubKeyExists("child"));
    EXPECT_FALSE(key.SubKeyExists("missing"));
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test)");
}

TEST_F(RegKey, AClosedKeyHasNoSubKeysAndKeepsItsStatus)
{
    EXPECT_FALSE(key.SubKeyExists("SOFTWARE"));
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, Path("\\missing"), false));
    EXPECT_FALSE(key.SubKeyExists("SOFTWARE"));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegKey, CloseClosesTheHandleAndForgetsEverything)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY handle = key.GetHKey();
    DWORD value = 0;
    EXPECT_FALSE(key.GetValue("missing", value));
    key.Close();
    EXPECT_FALSE(IsLive(handle));
    EXPECT_EQ(key.GetHKey(), nullptr);
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_STREQ(key.KeyPath(), "");
}

TEST_F(RegKey, CloseOfAClosedKeyChangesNothing)
{
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, Path("\\missing"), false));
    key.Close();
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test\missing)");
}

TEST_F(RegKey, TheDestructorClosesTheHandle)
{
    HKEY handle = nullptr;
    {
        COrvRegKey local;
        ASSERT_TRUE(local.Open(HKEY_LOCAL_MACHINE, Path(), false));
        handle = local.GetHKey();
    }
    EXPECT_FALSE(IsLive(handle));
}

TEST_F(RegKey, AnObjectBuiltFromAHandleOwnsIt)
{
    const HKEY handle = OpenHandle(scratch.Path());
    {
        COrvRegKey local(handle);
        EXPECT_EQ(local.GetHKey(), handle);
        EXPECT_EQ(local.LastResult(), 0);
        EXPECT_STREQ(local.KeyPath(), "");
        COrvString name;
        EXPECT_FALSE(local.EnumValue(name));
        EXPECT_EQ(local.LastResult(), ERROR_NO_MORE_ITEMS);
    }
    EXPECT_FALSE(IsLive(handle));
}

TEST_F(RegKey, AssigningAHandleKeepsThePathAndDoesNotCloseTheOneBefore)
{
    CreateRegistryKey(scratch.Path() + "\\child");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY before = key.GetHKey();
    const HKEY after = OpenHandle(scratch.Path() + "\\child");
    key = after;
    EXPECT_EQ(key.GetHKey(), after);
    EXPECT_STREQ(key.KeyPath(), R"(HKEY_LOCAL_MACHINE\SOFTWARE\Orv key test)");
    EXPECT_TRUE(IsLive(before));
    key.Close();
    EXPECT_FALSE(IsLive(after));
    EXPECT_TRUE(IsLive(before));
    RegCloseKey(before);
}

TEST_F(RegKey, AssigningItsOwnHandleKeepsTheKeyOpen)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY handle = key.GetHKey();
    key = handle;
    EXPECT_TRUE(IsLive(handle));
    key.Close();
    EXPECT_FALSE(IsLive(handle));
}

TEST_F(RegKey, ACopyBuiltFromAnotherObjectIsClosed)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    {
        COrvRegKey copy(key);
        EXPECT_EQ(copy.GetHKey(), nullptr);
        EXPECT_STREQ(copy.KeyPath(), "");
        EXPECT_EQ(copy.LastResult(), 0);
        COrvString text;
        EXPECT_FALSE(copy.GetValue("value", text));
    }
    EXPECT_TRUE(IsLive(key.GetHKey()));
}

TEST_F(RegKey, AssigningAnObjectCopiesEverything)
{
    CreateRegistryKey(scratch.Path() + "\\a");
    CreateRegistryKey(scratch.Path() + "\\b");
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvString name;
    ASSERT_TRUE(key.EnumSubKey(name));
    EXPECT_EQ(key.GetRegType("missing"), 0U);
    COrvRegKey other;
    other = key;
    EXPECT_EQ(other.GetHKey(), key.GetHKey());
    EXPECT_EQ(other.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(other.KeyPath(), key.KeyPath());
    ASSERT_TRUE(other.EnumSubKey(name));
    EXPECT_STREQ(name, "b");
}

TEST_F(RegKey, ObjectsThatShareAHandleCloseItOnceWithTheLastOfThem)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const HKEY handle = key.GetHKey();
    COrvRegKey second;
    {
        COrvRegKey third;
        third = key;
        second = third;
    }
    EXPECT_TRUE(IsLive(handle));
    key.Close();
    EXPECT_TRUE(IsLive(handle));
    EXPECT_TRUE(second.SubKeyExists(""));
    second.Close();
    EXPECT_FALSE(IsLive(handle));
}

TEST_F(RegKey, AssigningAnObjectToItselfKeepsItOpen)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    COrvRegKey& same = key;
    key = same;
    EXPECT_TRUE(IsLive(key.GetHKey()));
}

TEST_F(RegKey, FlushKeyTracesItsSuccess)
{
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    const LibraryTrace trace;
    EXPECT_EQ(key.FlushKey(), 0);
    EXPECT_THAT(trace.Messages(), ElementsAre("Opened COrvRegKey::RegFlushKey ", "COrvRegKey::RegFlushKey Success",
                                              "Closed COrvRegKey::RegFlushKey"));
}

TEST_F(RegKey, FlushKeyOfAClosedKeyReturnsThePlatformsStatusWhichTheTraceLeavesOut)
{
    const LibraryTrace trace;
    EXPECT_EQ(key.FlushKey(), ERROR_INVALID_HANDLE);
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_THAT(trace.Messages(), ElementsAre("Opened COrvRegKey::RegFlushKey ",
                                              "COrvRegKey::RegFlushKey Failure: ", "Closed COrvRegKey::RegFlushKey"));
}

TEST_F(RegKey, OpeningAndClosingTracesNothing)
{
    const LibraryTrace trace;
    ASSERT_TRUE(key.Open(HKEY_LOCAL_MACHINE, Path(), false));
    EXPECT_FALSE(key.Open(HKEY_LOCAL_MACHINE, Path("\\missing"), false));
    key.Close();
    EXPECT_THAT(trace.Messages(), IsEmpty());
}
