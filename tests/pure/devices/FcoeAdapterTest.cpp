#include "FcoeAdapter.h"

#include <gtest/gtest.h>

TEST(FcoeAdapter, NameIsTheInstanceIdAfterDevice)
{
    EXPECT_EQ(FcoeAdapterName(L"{11111111-2222-3333-4444-555555555555}"),
              L"\\DEVICE\\{11111111-2222-3333-4444-555555555555}");
    EXPECT_EQ(FcoeAdapterName(L""), L"\\DEVICE\\");
}

TEST(FcoeAdapter, NameHasAtMost4095Characters)
{
    const std::wstring longest(4095 - 8, L'x');
    EXPECT_EQ(FcoeAdapterName(longest), L"\\DEVICE\\" + longest);
    EXPECT_EQ(FcoeAdapterName(longest + L'x'), std::nullopt);
    EXPECT_EQ(FcoeAdapterName(std::wstring(4096, L'x')), std::nullopt);
}

TEST(FcoeAdapter, RemoteBootAndRemotePageFileMakeABootPort)
{
    EXPECT_TRUE(IsFcoeBootPort(1));
    EXPECT_TRUE(IsFcoeBootPort(2));
    EXPECT_TRUE(IsFcoeBootPort(3));
    EXPECT_TRUE(IsFcoeBootPort(0xFFFFFFFF));
}

TEST(FcoeAdapter, OtherFlagsDoNot)
{
    EXPECT_FALSE(IsFcoeBootPort(0));
    EXPECT_FALSE(IsFcoeBootPort(4));
    EXPECT_FALSE(IsFcoeBootPort(0xFFFFFFFC));
}
