// SPDX-License-Identifier: Apache-2.0
#include "forms/FormValues.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms/PresetList.h"

namespace tavrin {

namespace {

std::vector<std::string> LinesOf(const PresetList& list) {
    return {list.Lines().begin(), list.Lines().end()};
}

void ExpectSplit(std::string_view text, const std::string& first, const std::string& second) {
    const FormPair pair = SplitPair(text);
    EXPECT_EQ(pair.first, first) << text;
    EXPECT_EQ(pair.second, second) << text;
}

}  // namespace

TEST(ForceFloat, WholeNumbersGetOneDecimal) {
    EXPECT_EQ(ForceFloat("3"), "3.0");
    EXPECT_EQ(ForceFloat("-3"), "-3.0");
    EXPECT_EQ(ForceFloat("3.00"), "3.0");
    EXPECT_EQ(ForceFloat(" 1e2"), "100.0");
    EXPECT_EQ(ForceFloat("3 apples"), "3.0");
    EXPECT_EQ(ForceFloat("16777217"), "16777217.0") << "double precision";
}

TEST(ForceFloat, OtherNumbersStayAsWritten) {
    EXPECT_EQ(ForceFloat("2.5"), "2.5");
    EXPECT_EQ(ForceFloat("2.500 "), "2.500 ");
    EXPECT_EQ(ForceFloat("-.25"), "-.25");
}

TEST(ForceFloat, ATextWithoutNumberIsZero) {
    EXPECT_EQ(ForceFloat("abc"), "0.0");
    EXPECT_EQ(ForceFloat(""), "0.0");
    EXPECT_EQ(ForceFloat(std::string(3, '\0')), "0.0");
}

TEST(ForceFloat, NumbersWithoutDecimalsStayAsWritten) {
    EXPECT_EQ(ForceFloat("nan"), "nan");
    EXPECT_EQ(ForceFloat("inf"), "inf");
    EXPECT_EQ(ForceFloat("-1e999"), "-1e999");
}

TEST(ForceFloat, HugeNumbersAreWrittenOut) {
    const std::string text = ForceFloat("1e300");
    EXPECT_EQ(text.size(), 301U + 2U);
    EXPECT_TRUE(text.ends_with(".0"));
    EXPECT_EQ(ForceFloat(std::string(1000000, '9')).size(), 1000000U) << "too large for a number";
}

TEST(SplitPair, SplitsAtTheFirstCharacterThatIsNoDigit) {
    ExpectSplit("640,480", "640", "480");
    ExpectSplit("640x480", "640", "480");
    ExpectSplit("1.5 2.5", "1.5", "2.5");
    ExpectSplit("1,2,3", "1", "2,3");
    ExpectSplit("1, 2", "1", " 2");
}

TEST(SplitPair, DoesNotLookAtTheFirstCharacter) {
    ExpectSplit("-2.5,3", "-2.5", "3");
    ExpectSplit("abc", "a", "c");
    ExpectSplit(",5", ",5", "");
}

TEST(SplitPair, AFirstThatEndsTheValueLeavesNoSecond) {
    ExpectSplit("640", "640", "");
    ExpectSplit("x", "x", "");
    ExpectSplit("640,", "640", "");
}

TEST(SplitPair, TrimsBothEnds) {
    ExpectSplit(" \t640,480 \r\n", "640", "480");
    ExpectSplit("", "", "");
    ExpectSplit("   ", "", "");
}

TEST(BeginsWith, IgnoresTheCaseOfAsciiLettersOnly) {
    EXPECT_TRUE(BeginsWith("ABcd", "abC"));
    EXPECT_TRUE(BeginsWith("abc", "abc"));
    EXPECT_TRUE(BeginsWith("abc", ""));
    EXPECT_FALSE(BeginsWith("ab", "abc"));
    EXPECT_FALSE(BeginsWith("xab", "ab"));
    EXPECT_FALSE(BeginsWith("\xc3\x84", "\xc3\xa4"));
    EXPECT_FALSE(BeginsWith("[", "{"));
    EXPECT_TRUE(EqualText("TRUE", "true"));
    EXPECT_FALSE(EqualText("TRUE ", "true"));
}

TEST(PresetList, StartsWithAnEmptyLineAndShowsNothing) {
    const PresetList list;
    EXPECT_EQ(LinesOf(list), std::vector<std::string>{""});
    EXPECT_EQ(list.Selected(), PresetList::kNothing);
    EXPECT_EQ(list.Caption(), "");
}

TEST(PresetList, TheCaptionTakesThePlaceOfTheEmptyLineAndShowsNothing) {
    PresetList list;
    list.SetCaption("Depth");
    EXPECT_EQ(LinesOf(list), std::vector<std::string>{"Depth"});
    EXPECT_EQ(list.Selected(), PresetList::kNothing);
}

TEST(PresetList, AddingAPresetSelectsTheCaption) {
    PresetList list;
    list.SetCaption("Depth");
    list.AddPreset("1 Fast");
    list.AddPreset("4 Careful");
    EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"Depth", "1 Fast", "4 Careful"}));
    EXPECT_EQ(list.Selected(), 0);
    EXPECT_EQ(list.Caption(), "Depth");
}

TEST(PresetList, PresetsWithoutCaptionStandBehindTheEmptyLine) {
    PresetList list;
    list.AddPreset("1 Fast");
    EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"", "1 Fast"}));
    EXPECT_EQ(list.Selected(), 0);
}

TEST(PresetList, ACaptionBehindThePresetsTakesTheFirstOfThemAndStandsLast) {
    PresetList list;
    list.AddPreset("1 Fast");
    list.AddPreset("4 Careful");
    list.SetCaption("Depth");
    EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"4 Careful", "Depth"}));
    EXPECT_EQ(list.Selected(), PresetList::kNothing);
}

TEST(PresetList, ASecondCaptionTakesTheFirstAwayAndStandsLast) {
    PresetList list;
    list.SetCaption("Depth");
    list.AddPreset("1 Fast");
    list.SetCaption("Level");
    EXPECT_EQ(LinesOf(list), (std::vector<std::string>{"1 Fast", "Level"}));
}

TEST(PresetList, ChoosingGivesThePresetAndShowsTheCaptionAgain) {
    PresetList list;
    list.AddPreset("1 Fast");
    ASSERT_NE(list.Choose(1), nullptr);
    EXPECT_EQ(*list.Choose(1), "1 Fast");
    EXPECT_EQ(list.Selected(), 0);
    EXPECT_EQ(list.Choose(0), nullptr);
    EXPECT_EQ(list.Choose(2), nullptr);
    EXPECT_EQ(list.Choose(-1), nullptr);
}

TEST(PresetList, ManyCaptionsOverManyPresetsCostLittle) {
    PresetList list;
    for (int i = 0; i < 200000; ++i) list.AddPreset("1");
    for (int i = 0; i < 200000; ++i) list.SetCaption("caption");
    EXPECT_EQ(list.Lines().size(), 200000U);
}

}  // namespace tavrin
