// SPDX-License-Identifier: Apache-2.0
#include "site/Settings.h"

#include <gtest/gtest.h>

#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

Settings With(const std::string& value) {
    Settings settings;
    settings.Store("key", value);
    return settings;
}

// The token of a stored value; every stored value must have one.
std::string TokenOf(const std::string& value) {
    std::string text = "default";
    EXPECT_TRUE(With(value).GetSettingToken("key", text)) << value;
    return text;
}

TEST(Settings, AMissingKeyLeavesTheDefault) {
    const Settings settings = With("1");
    std::string text = "default";
    EXPECT_FALSE(settings.GetSettingRaw("other", text));
    EXPECT_FALSE(settings.GetSettingToken("other", text));
    EXPECT_EQ(text, "default");
    float number = 7;
    EXPECT_FALSE(settings.GetSettingFloat("other", number));
    EXPECT_EQ(number, 7);
    int integer = 8;
    EXPECT_FALSE(settings.GetSettingInt("other", integer));
    EXPECT_EQ(integer, 8);
    float rgb[3] = {1, 2, 3};
    EXPECT_FALSE(settings.GetSettingRgb("other", rgb));
    EXPECT_EQ(rgb[0] + rgb[1] + rgb[2], 6);
}

TEST(Settings, KeysAreComparedExactly) {
    std::string text;
    EXPECT_FALSE(With("1").GetSettingRaw("Key", text));
    EXPECT_FALSE(With("1").GetSettingRaw("key ", text));
}

TEST(Settings, ALaterValueReplacesTheEarlierOne) {
    Settings settings = With("first");
    settings.Store("key", "second");
    std::string text;
    EXPECT_TRUE(settings.GetSettingRaw("key", text));
    EXPECT_EQ(text, "second");
}

TEST(Settings, TheRawValueKeepsQuotesAndComments) {
    std::string text;
    EXPECT_TRUE(With("\"a b\" # note").GetSettingRaw("key", text));
    EXPECT_EQ(text, "\"a b\" # note");
}

TEST(SettingToken, IsTheFirstToken) {
    EXPECT_EQ(TokenOf("one two"), "one");
    EXPECT_EQ(TokenOf("one\ttwo"), "one");
    EXPECT_EQ(TokenOf("\"a b\" c"), "a b");
    EXPECT_EQ(TokenOf("a\"b c\"d"), "ab c");
    EXPECT_EQ(TokenOf("\"\"x"), "");
}

TEST(SettingToken, ACommentEndsTheValue) {
    EXPECT_EQ(TokenOf("one#two"), "one");
    EXPECT_EQ(TokenOf("\"a # b\" c"), "a # b");
    EXPECT_EQ(TokenOf("one\\#two"), "one");
    EXPECT_EQ(TokenOf("# one"), "");
    EXPECT_EQ(TokenOf("\\# one"), "");
}

TEST(SettingToken, WhiteSpaceEndsTheValueEvenIfNothingWasGathered) {
    EXPECT_EQ(TokenOf(" one"), "");
    EXPECT_EQ(TokenOf("\\ one"), "");
}

TEST(SettingToken, ABackslashTakesTheNextCharacterLiterally) {
    EXPECT_EQ(TokenOf("bin\\\\filter"), "bin\\filter");
    EXPECT_EQ(TokenOf("\"a\\\"b\""), "a\"b");
    EXPECT_EQ(TokenOf("a\\nb"), "anb");
    EXPECT_EQ(TokenOf("a\\"), "a");
}

TEST(SettingToken, AnUnclosedQuoteEndsWithTheValue) { EXPECT_EQ(TokenOf("\"a b"), "a b"); }

TEST(SettingToken, AnEmptyValueDeliversTheEmptyText) { EXPECT_EQ(TokenOf(""), ""); }

TEST(SettingToken, ReadsWhatTheTokenReaderReads) {
    for (const std::string value :
         {"one two", "a\vb c", "a\fb", "a\"b c\"d", "x#y", "\"a#b\"", "a\\\\b", "\"q", "\\\"a b"}) {
        CArchive archive = test::ArchiveOf(value);
        std::string token;
        ASSERT_TRUE(ReadToken(archive, token));
        EXPECT_EQ(TokenOf(value), token) << value;
    }
}

TEST(SettingRgb, DeliversThreeNumbers) {
    float rgb[3] = {};
    EXPECT_TRUE(With("0.1 \t.5 1").GetSettingRgb("key", rgb));
    EXPECT_EQ(rgb[0], 0.1F);
    EXPECT_EQ(rgb[1], 0.5F);
    EXPECT_EQ(rgb[2], 1.0F);
}

TEST(SettingRgb, WhatFollowsTheThirdNumberDoesNotCount) {
    float rgb[3] = {};
    EXPECT_TRUE(With("1 2 3# grey").GetSettingRgb("key", rgb));
    EXPECT_EQ(rgb[2], 3.0F);
    EXPECT_TRUE(With("1 2 4 5").GetSettingRgb("key", rgb));
    EXPECT_EQ(rgb[2], 4.0F);
}

TEST(SettingRgb, TooFewNumbersLeaveAllThreeDefaults) {
    for (const char* value : {"1 2", "1 0", "", "1 2 x", "x 1 2", "1, 2, 3", "\"1 2 3\""}) {
        float rgb[3] = {7, 8, 9};
        EXPECT_FALSE(With(value).GetSettingRgb("key", rgb)) << value;
        EXPECT_EQ(rgb[0], 7.0F);
        EXPECT_EQ(rgb[1], 8.0F);
        EXPECT_EQ(rgb[2], 9.0F);
    }
}

TEST(SettingFloat, DeliversTheLeadingNumber) {
    float number = 0;
    EXPECT_TRUE(With("2.5 # wide").GetSettingFloat("key", number));
    EXPECT_EQ(number, 2.5F);
    EXPECT_TRUE(With("-1e2x").GetSettingFloat("key", number));
    EXPECT_EQ(number, -100.0F);
}

TEST(SettingFloat, WhatIsNoNumberLeavesTheDefault) {
    for (const char* value : {"", "wide", "\"3\"", "# 3"}) {
        float number = 3;
        EXPECT_FALSE(With(value).GetSettingFloat("key", number)) << value;
        EXPECT_EQ(number, 3.0F);
    }
}

TEST(SettingInt, DeliversTheLeadingNumber) {
    int number = 7;
    EXPECT_TRUE(With("0 # off").GetSettingInt("key", number));
    EXPECT_EQ(number, 0);
    EXPECT_TRUE(With("1.9").GetSettingInt("key", number));
    EXPECT_EQ(number, 1);
}

TEST(SettingInt, WhatIsNoNumberLeavesTheDefault) {
    for (const char* value : {"", "yes", "\"1\"", "true"}) {
        int number = 3;
        EXPECT_FALSE(With(value).GetSettingInt("key", number)) << value;
        EXPECT_EQ(number, 3);
    }
}

}  // namespace
}  // namespace tavrin
