#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LibraryTrace.h"
#include "RegistryValues.h"

using ::testing::ElementsAre;
using namespace std::string_literals;

namespace {
class RegValues : public RegistryValues
{
};
} // namespace

TEST_F(RegValues, ANumberIsWrittenAndReadBack)
{
    EXPECT_TRUE(key.SetValue("number", 0xFEDCBA98));
    EXPECT_EQ(Type("number"), static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(Bytes("number"), "\x98\xBA\xDC\xFE");
    DWORD value = 0;
    EXPECT_TRUE(key.GetValue("number", value));
    EXPECT_EQ(value, 0xFEDCBA98);
    EXPECT_EQ(key.LastResult(), 0);
}

TEST_F(RegValues, ReadingANumberTracesOpeningStatusAndResult)
{
    key.SetValue("number", 5);
    const LibraryTrace trace;
    DWORD value = 0;
    EXPECT_TRUE(key.GetValue("number", value));
    EXPECT_THAT(trace.Messages(), ElementsAre("Opened COrvRegKey::GetValue ", "Opened COrvRegKey::GetValue :0",
                                              "Opened COrvRegKey::GetValue :1"));
}

TEST_F(RegValues, AMissingNumberTracesItsStatus)
{
    const LibraryTrace trace;
    DWORD value = 77;
    EXPECT_FALSE(key.GetValue("missing", value));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(value, 77U);
    EXPECT_THAT(trace.Messages(), ElementsAre("Opened COrvRegKey::GetValue ", "Opened COrvRegKey::GetValue :2",
                                              "Opened COrvRegKey::GetValue :0"));
}

TEST_F(RegValues, ANumberOfAnotherTypeIsRefusedWithATraceAlthoughItsBytesArrive)
{
    SetRegistryBytes(scratch.Path(), "binary", "\x01\x02\x03\x04", REG_BINARY);
    const LibraryTrace trace;
    DWORD value = 0;
    EXPECT_FALSE(key.GetValue("binary", value));
    EXPECT_EQ(key.LastResult(), 0);
    EXPECT_EQ(value, 0x04030201U);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Opened COrvRegKey::GetValue ", "Opened COrvRegKey::GetValue :0",
                            "COrvRegKey::GetValue dwRegType != REG_DWORD ", "Opened COrvRegKey::GetValue :0"));
}

TEST_F(RegValues, AValueLongerThanANumberIsRefusedWithTheStatusMoreData)
{
    SetRegistryText(scratch.Path(), "text", "longer than four");
    const LibraryTrace trace;
    DWORD value = 0;
    EXPECT_FALSE(key.GetValue("text", value));
    EXPECT_EQ(key.LastResult(), ERROR_MORE_DATA);
    EXPECT_THAT(trace.Messages(),
                ElementsAre("Opened COrvRegKey::GetValue ", "Opened COrvRegKey::GetValue :234",
                            "COrvRegKey::GetValue dwRegType != REG_DWORD ", "Opened COrvRegKey::GetValue :0"));
}

TEST_F(RegValues, NumbersOfAClosedKeyLeaveTheStatusAndTraceTheResultOnly)
{
    const LibraryTrace trace;
    DWORD value = 77;
    EXPECT_FALSE(closed.GetValue("number", value));
    EXPECT_EQ(value, 77U);
    EXPECT_EQ(closed.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_THAT(trace.Messages(), ElementsAre("Opened COrvRegKey::GetValue :0"));
    EXPECT_FALSE(closed.SetValue("number", 1));
    EXPECT_EQ(closed.LastResult(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegValues, ATextIsWrittenWithItsTerminatorAsPlainOrExpandableText)
{
    EXPECT_TRUE(key.SetValue("plain", "text", false));
    EXPECT_EQ(Type("plain"), static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(Bytes("plain"), "text\0"s);
    EXPECT_TRUE(key.SetValue("expand", "%Temp%", true));
    EXPECT_EQ(Type("expand"), static_cast<DWORD>(REG_EXPAND_SZ));
    EXPECT_EQ(Bytes("expand"), "%Temp%\0"s);
    EXPECT_TRUE(key.SetValue("empty", "", false));
    EXPECT_EQ(Bytes("empty"), "\0"s);
    COrvString value;
    EXPECT_TRUE(key.GetValue("expand", value));
    EXPECT_STREQ(value, "%Temp%");
}

TEST_F(RegValues, ATextIsReadFromAnyTypeUpToItsFirstTerminator)
{
    SetRegistryBytes(scratch.Path(), "binary", "abc\0def"s, REG_BINARY);
    COrvString value("before");
    EXPECT_TRUE(key.GetValue("binary", value));
    EXPECT_STREQ(value, "abc");
    SetRegistryBytes(scratch.Path(), "nothing", "", REG_NONE);
    EXPECT_TRUE(key.GetValue("nothing", value));
    EXPECT_STREQ(value, "");
}

TEST_F(RegValues, ATextOf512UnterminatedBytesIsReadWholeAndNotBeyond)
{
    for (const DWORD type : {static_cast<DWORD>(REG_BINARY), static_cast<DWORD>(REG_SZ)}) {
        SetUnterminated("full", std::string(512, 'x'), type);
        COrvString value;
        EXPECT_TRUE(key.GetValue("full", value));
        EXPECT_EQ(value.Text(), std::string(512, 'x'));
    }
}

TEST_F(RegValues, ATextOf511CharactersIsReadAndALongerOneFailsWithTheStatusMoreData)
{
    SetRegistryText(scratch.Path(), "fits", std::string(511, 'x'));
    SetRegistryText(scratch.Path(), "long", std::string(512, 'x'));
    COrvString value;
    EXPECT_TRUE(key.GetValue("fits", value));
    EXPECT_EQ(value.Length(), 511U);
    EXPECT_FALSE(key.GetValue("long", value));
    EXPECT_EQ(key.LastResult(), ERROR_MORE_DATA);
    EXPECT_STREQ(value, "");
}

TEST_F(RegValues, AFailedReadLeavesAnEmptyText)
{
    COrvString value("before");
    EXPECT_FALSE(key.GetValue("missing", value));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(value, "");
    value = "before";
    EXPECT_FALSE(closed.GetValue("missing", value));
    EXPECT_EQ(closed.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_STREQ(value, "");
}

TEST_F(RegValues, TheNameMayBeTheTextThatReceivesTheValue)
{
    SetRegistryText(scratch.Path(), "name", "value");
    COrvString text("name");
    EXPECT_TRUE(key.GetValue(text, text));
    EXPECT_STREQ(text, "value");
    EXPECT_FALSE(key.GetValue(text, text));
    EXPECT_STREQ(text, "");
}

TEST_F(RegValues, BytesAreWrittenAndReadAsTheyAre)
{
    const BYTE data[] = {0, 1, 0, 255};
    EXPECT_TRUE(key.SetValue("bytes", data, sizeof(data)));
    EXPECT_EQ(Type("bytes"), static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(Bytes("bytes"), "\0\1\0\xFF"s);
    BYTE read[10] = {};
    DWORD size = sizeof(read);
    EXPECT_TRUE(key.GetValue("bytes", read, size));
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(read[3], 255);
}

TEST_F(RegValues, ATooSmallBufferForBytesReturnsTheNeededSize)
{
    SetRegistryBytes(scratch.Path(), "bytes", "12345", REG_BINARY);
    BYTE read[3] = {};
    DWORD size = 2;
    EXPECT_FALSE(key.GetValue("bytes", read, size));
    EXPECT_EQ(key.LastResult(), ERROR_MORE_DATA);
    EXPECT_EQ(size, 5U);
    EXPECT_EQ(read[2], 0);
    EXPECT_TRUE(key.GetValue("bytes", static_cast<BYTE*>(nullptr), size));
    EXPECT_EQ(size, 5U);
}

TEST_F(RegValues, BytesAreReadFromAnyType)
{
    SetRegistryText(scratch.Path(), "text", "abc");
    SetRegistryNumber(scratch.Path(), "number", 0x04030201);
    BYTE read[10] = {};
    DWORD size = sizeof(read);
    EXPECT_TRUE(key.GetValue("text", read, size));
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(std::string(read, read + size), "abc\0"s);
    size = sizeof(read);
    EXPECT_TRUE(key.GetValue("number", read, size));
    EXPECT_EQ(std::string(read, read + size), "\1\2\3\4");
}

TEST_F(RegValues, AMissingValueReadAsBytesIsRefusedWithItsStatusAndLeavesTheRoomAlone)
{
    BYTE read[2] = {7, 7};
    DWORD size = sizeof(read);
    EXPECT_FALSE(key.GetValue("missing", read, size));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(std::string(read, read + 2), "\7\7");
}

TEST_F(RegValues, ASuccessfulReadOfTextOrBytesStoresItsStatusOverTheFailureBefore)
{
    SetRegistryText(scratch.Path(), "text", "abc");
    COrvString text;
    EXPECT_FALSE(key.GetValue("missing", text));
    EXPECT_TRUE(key.GetValue("text", text));
    EXPECT_EQ(key.LastResult(), 0);
    BYTE read[10] = {};
    DWORD size = sizeof(read);
    EXPECT_FALSE(key.GetValue("missing", read, size));
    size = sizeof(read);
    EXPECT_TRUE(key.GetValue("text", read, size));
    EXPECT_EQ(key.LastResult(), 0);
}

TEST_F(RegValues, RefusedWritesOfTextAndBytesAndDeletionsStoreTheirStatus)
{
    SetRegistryText(scratch.Path(), "text", "before");
    COrvRegKey reading;
    ASSERT_TRUE(reading.Open(HKEY_LOCAL_MACHINE, scratch.Path(), false));
    EXPECT_FALSE(reading.SetValue("text", "after", false));
    EXPECT_EQ(reading.LastResult(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(reading.GetRegType("text"), static_cast<DWORD>(REG_SZ)) << "and clears the status";
    const BYTE byte = 7;
    EXPECT_FALSE(reading.SetValue("text", &byte, 1));
    EXPECT_EQ(reading.LastResult(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(reading.GetRegType("text"), static_cast<DWORD>(REG_SZ));
    EXPECT_FALSE(reading.DeleteValue("text"));
    EXPECT_EQ(reading.LastResult(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(Bytes("text"), "before\0"s);
}

TEST_F(RegValues, OnAClosedKeyReadsLeaveTheStatusAndTextAndByteWritesClearIt)
{
    BYTE byte = 7;
    DWORD size = 1;
    EXPECT_FALSE(closed.GetValue("bytes", &byte, size));
    EXPECT_EQ(closed.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(size, 1U);
    EXPECT_FALSE(closed.SetValue("bytes", &byte, size));
    EXPECT_EQ(closed.LastResult(), 0);
    closed.Open(HKEY_LOCAL_MACHINE, scratch.Path() + "\\missing", false);
    EXPECT_FALSE(closed.SetValue("text", "text", false));
    EXPECT_EQ(closed.LastResult(), 0);
    closed.Open(HKEY_LOCAL_MACHINE, scratch.Path() + "\\missing", false);
    EXPECT_FALSE(closed.SetValue("list", std::vector<COrvString>{"text"}));
    EXPECT_EQ(closed.LastResult(), 0);
}

TEST_F(RegValues, DeleteValueDeletesAndStoresTheStatus)
{
    SetRegistryText(scratch.Path(), "value", "text");
    EXPECT_TRUE(key.DeleteValue("value"));
    EXPECT_EQ(Bytes("value"), "<none>");
    EXPECT_FALSE(key.DeleteValue("value"));
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegValues, DeleteValueOfAClosedKeyIsTrueAndClearsTheStatus)
{
    EXPECT_TRUE(closed.DeleteValue("value"));
    EXPECT_EQ(closed.LastResult(), 0);
}

TEST_F(RegValues, TheStoredTypeIsReturnedAndIsNoneWhenItCannotBeRead)
{
    key.SetValue("number", 1);
    SetRegistryText(scratch.Path(), "text", "a");
    SetRegistryList(scratch.Path(), "list", {"a"});
    SetRegistryBytes(scratch.Path(), "odd", "a", 12345);
    EXPECT_EQ(key.GetRegType("number"), static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(key.GetRegType("text"), static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(key.GetRegType("list"), static_cast<DWORD>(REG_MULTI_SZ));
    EXPECT_EQ(key.GetRegType("odd"), 12345U);
    EXPECT_EQ(key.GetRegType("missing"), 0U);
    EXPECT_EQ(key.LastResult(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(closed.GetRegType("number"), 0U);
    EXPECT_EQ(closed.LastResult(), 0);
}
