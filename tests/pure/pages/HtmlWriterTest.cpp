#include "HtmlWriter.h"

#include <type_traits>

#include <gtest/gtest.h>

TEST(HtmlWriter, TextNeverBecomesMarkup)
{
    EXPECT_EQ("&lt;/script&gt;&lt;!-- &amp;amp; --&gt;", HtmlText("</script><!-- &amp; -->"));
    EXPECT_EQ("&quot; onload=&#39;x&#39;", HtmlText("\" onload='x'"));
    EXPECT_EQ("]]&gt;&lt;![CDATA[", HtmlText("]]><![CDATA["));
    EXPECT_EQ("{{x}} ${x} `x` \\", HtmlText("{{x}} ${x} `x` \\"));
    EXPECT_EQ("", HtmlText(""));
}

TEST(HtmlWriter, WhatCannotBeSeenIsShown)
{
    EXPECT_EQ("a\\x00b\\x1B[2J\\x7F", HtmlText(std::string_view("a\0b\x1B[2J\x7F", 8)));
    EXPECT_EQ("\\x0D\\x0A\\x09", HtmlText("\r\n\t"));
    EXPECT_EQ("\\u0085", HtmlText("\u0085"));
    EXPECT_EQ("gpj.\\u202Eexe", HtmlText("gpj.\u202Eexe"));
    EXPECT_EQ("\\u2028\\u2029\\u2066\\u2069\\u200B\\uFEFF\\u00AD\\u061C",
              HtmlText("\u2028\u2029\u2066\u2069\u200B\uFEFF\u00AD\u061C"));
    EXPECT_EQ("\\uFFFE\\uFDD0\\uE0041", HtmlText("\uFFFE\uFDD0\U000E0041"));
}

TEST(HtmlWriter, BytesThatAreNoTextAreShown)
{
    EXPECT_EQ("\\xFF\\xC3(", HtmlText("\xFF\xC3("));
    // A "less than" in a longer form than it has, and half of a pair.
    EXPECT_EQ("\\xC0\\xBC\\xED\\xA0\\x80", HtmlText("\xC0\xBC\xED\xA0\x80"));
    EXPECT_EQ("\\xE2\\x80&lt;", HtmlText("\xE2\x80<"));
}

TEST(HtmlWriter, OrdinaryTextStaysAsItIs)
{
    EXPECT_EQ("Grüße, 東京, עברית", HtmlText("Grüße, 東京, עברית"));
}

TEST(HtmlWriter, OnlyLiteralsAreMarkup)
{
    EXPECT_FALSE((std::is_constructible_v<Markup, std::string>));
    EXPECT_FALSE((std::is_constructible_v<Markup, std::string_view>));
    EXPECT_FALSE((std::is_constructible_v<Markup, const char*>));
}

TEST(HtmlWriter, AttributesAreQuoted)
{
    std::string out;
    HtmlWriter(out).Put("<p").Attribute("title", "a\" b=\"c").Put(">").Number(10000).Put("</p>");
    EXPECT_EQ("<p title=\"a&quot; b=&quot;c\">10000</p>", out);
}

TEST(HtmlWriter, LargeNumbersAreGrouped)
{
    EXPECT_EQ("0", Grouped(0));
    EXPECT_EQ("999", Grouped(999));
    EXPECT_EQ("1,000", Grouped(1000));
    EXPECT_EQ("1,234,567", Grouped(1234567));
    EXPECT_EQ("1 machine", CountOf(1, "machine"));
    EXPECT_EQ("10,000 machines", CountOf(10000, "machine"));
}
