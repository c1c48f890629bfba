#include "RecordSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {
RecordSnapshot FullSnapshot()
{
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    RecordSnapshot snapshot;
    snapshot.results = {{"Install", 2, std::string("SUCCESS\0", 8)}, {"", 1, ""}, {"a;b,c|[d]", 11, everyByte}};
    snapshot.registration = {"Morvix.din", 1, "Morvix.Uninstall"};
    snapshot.dataFileState = RecordSnapshot::File::Saved;
    snapshot.dataFile = everyByte;
    return snapshot;
}
} // namespace

TEST(RecordSnapshot, ComesBackAsItWas)
{
    EXPECT_EQ(DecodeSnapshot(EncodeSnapshot(FullSnapshot())), FullSnapshot());
    EXPECT_EQ(DecodeSnapshot(EncodeSnapshot({})), RecordSnapshot());
}

TEST(RecordSnapshot, AnEmptyKeyOrFileIsNotAMissingOne)
{
    RecordSnapshot snapshot;
    snapshot.results.emplace();
    snapshot.dataFileState = RecordSnapshot::File::Saved;
    EXPECT_EQ(DecodeSnapshot(EncodeSnapshot(snapshot)), snapshot);
    snapshot.dataFileState = RecordSnapshot::File::Unknown;
    EXPECT_EQ(DecodeSnapshot(EncodeSnapshot(snapshot)), snapshot);
}

TEST(RecordSnapshot, IsPlainTextThatThePackageDoesNotFormat)
{
    const std::string text = EncodeSnapshot(FullSnapshot());
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') || letter == ',' || letter == ';' ||
               (letter >= 'a' && letter <= 'z');
    })) << text;
}

TEST(RecordSnapshot, ATextThatWasCutOffIsRefused)
{
    const std::string text = EncodeSnapshot(FullSnapshot());
    for (size_t length = 0; length < text.size(); ++length) {
        EXPECT_FALSE(DecodeSnapshot(text.substr(0, length)).has_value()) << length;
    }
}

TEST(RecordSnapshot, OtherTextsAreRefused)
{
    for (const char* text :
         {"", ";", ";end", "X,;end", "K,;V,;end", "V,41,1,41,;end", "K,;V,4,1,41,;end", "K,;V,4G,1,41,;end",
          "K,;V,41,x,41,;end", "K,;V,41,1,4,;end", "R,41,1,;end", "F,;end", "F,4,;end", "F,-1,;end"}) {
        EXPECT_FALSE(DecodeSnapshot(text).has_value()) << text;
    }
}
