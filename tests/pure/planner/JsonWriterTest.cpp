#include "JsonWriter.h"

#include <gtest/gtest.h>

#include "JsonCheck.h"

namespace {
std::string Written(std::string_view text)
{
    std::string json;
    JsonWriter(json).Text(text);
    return json;
}
} // namespace

TEST(JsonWriter, EscapesWhatEndsATextAndWhatSteersATerminal)
{
    EXPECT_EQ(R"("a\"b\\c")", Written(R"(a"b\c)"));
    EXPECT_EQ(R"("\u001b[31m\u0000\u000a\u007f")", Written(std::string_view("\x1b[31m\0\n\x7f", 8)));
    EXPECT_EQ(R"("\u009b\u202e\u2028\ufeff")", Written("\u009b\u202e\u2028\ufeff"));
    EXPECT_EQ("\"Gr\u00f6\u00dfe \u9a71\u52a8 \U0001F5A7\"", Written("Gr\u00f6\u00dfe \u9a71\u52a8 \U0001F5A7"));
}

TEST(JsonWriter, ReplacesEachByteThatIsNotUtf8)
{
    EXPECT_EQ(R"("Gr\ufffd\ufffde")", Written("Gr\xF6\xDF"
                                              "e"));
    EXPECT_EQ(R"("\ufffd\ufffd")", Written("\xC0\xAF"));
    EXPECT_EQ(R"("\ufffd\ufffd\ufffd")", Written("\xED\xA0\x80"));
    EXPECT_EQ(R"("\ufffd\ufffd\ufffd\ufffd")", Written("\xF4\x90\x80\x80"));
    EXPECT_EQ(R"("\ufffd")", Written("\xE2"));
}

TEST(JsonWriter, EveryTextOfOneAndTwoBytesIsReadBackAsValidJson)
{
    for (int first = 0; first < 256; ++first) {
        for (int second = -1; second < 256; ++second) {
            std::string text(1, static_cast<char>(first));
            if (second >= 0) {
                text += static_cast<char>(second);
            }
            const std::optional<std::string> read = TextOfJson(Written(text));
            ASSERT_TRUE(read) << first << " " << second;
            if (first < 0x80 && second < 0x80) {
                EXPECT_EQ(text, *read);
            }
        }
    }
}

TEST(JsonWriter, PutsCommasBetweenMembersOnly)
{
    std::string json;
    JsonWriter writer(json);
    writer.BeginObject().Key("a").BeginArray().EndArray().Key("b").BeginArray().Number(1).Text("x").Null().EndArray();
    writer.Key("c").BeginObject().Key("d").Truth(false).EndObject().EndObject();
    EXPECT_EQ(R"({"a":[],"b":[1,"x",null],"c":{"d":false}})", json);
}
