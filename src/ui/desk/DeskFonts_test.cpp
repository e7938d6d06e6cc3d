// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskFonts.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

class DeskFonts : public ::testing::Test {
  protected:
    static int Points(int font) { return font + tavrin::DeskFonts::kLeastPoints; }
    tavrin::DeskFonts fonts{"DejaVu Sans", [](const std::string& text) { ADD_FAILURE() << text; }};
};

constexpr int kNone = tavrin::DeskFonts::kNone;

TEST_F(DeskFonts, TheLargestSizeThatIsNotAboveIsTaken) {
    EXPECT_EQ(tavrin::DeskFonts::IndexFor(2.99F), kNone);
    EXPECT_EQ(Points(tavrin::DeskFonts::IndexFor(3)), 3);
    EXPECT_EQ(Points(tavrin::DeskFonts::IndexFor(11.9F)), 11);
    EXPECT_EQ(Points(tavrin::DeskFonts::IndexFor(24.5F)), 24);
    EXPECT_EQ(Points(tavrin::DeskFonts::IndexFor(1e9F)), 24);
}

TEST_F(DeskFonts, LabelsVanishBelowHalfAndTitlesBelowAQuarter) {
    EXPECT_EQ(tavrin::DeskFonts::LabelFont(0.49F), kNone);
    EXPECT_EQ(Points(tavrin::DeskFonts::LabelFont(0.5F)), 3);
    EXPECT_EQ(Points(tavrin::DeskFonts::LabelFont(1)), 6);
    EXPECT_EQ(tavrin::DeskFonts::TitleFont(0.24F), kNone);
    EXPECT_EQ(Points(tavrin::DeskFonts::TitleFont(0.25F)), 3);
    EXPECT_EQ(Points(tavrin::DeskFonts::TitleFont(1)), 12);
}

TEST_F(DeskFonts, AWidthIsTheSumOfItsCharacters) {
    const float a = fonts.TextWidth(9, "a");
    const float b = fonts.TextWidth(9, "b");
    EXPECT_GT(a, 0);
    EXPECT_EQ(fonts.TextWidth(9, "abba"), 2 * (a + b));
    EXPECT_EQ(fonts.TextWidth(9, "\t"), 0);
    EXPECT_EQ(fonts.TextWidth(kNone, "abba"), 0);
    EXPECT_EQ(fonts.MetricsOf(kNone).height, 0);
    EXPECT_GT(fonts.TextWidth(20, "a"), a);
}

TEST_F(DeskFonts, LettersOfAnyScriptHaveWidthAndInk) {
    for (const char32_t letter : {U'\u00E9', U'\u0416', U'\u0E01', U'\u6F22', U'\U0001D4AB'}) {
        EXPECT_GT(fonts.AdvanceOf(9, letter), 0) << int(letter);
        EXPECT_GT(fonts.GlyphOf(9, letter).width, 0) << int(letter);
    }
    EXPECT_EQ(fonts.TextWidth(9, "\xC3\xA9"), fonts.TextWidth(9, "e"));  // an accent is no wider
    const float two = fonts.TextWidth(9, "\xE6\xBC\xA2\xF0\x9D\x92\xAB");
    EXPECT_EQ(two, fonts.TextWidth(9, "\xE6\xBC\xA2") + fonts.TextWidth(9, "\xF0\x9D\x92\xAB"));
}

TEST_F(DeskFonts, WhatIsNoTextIsShownAsReplaced) {
    EXPECT_EQ(LettersOf("a\xFFz"), U"a\uFFFDz");
    EXPECT_EQ(LettersOf("\xE6\xBC").front(), U'\uFFFD');
    EXPECT_EQ(fonts.TextWidth(9, "\xFF"), fonts.TextWidth(9, "\xEF\xBF\xBD"));
}

TEST_F(DeskFonts, ControlCharactersHaveNeitherWidthNorInk) {
    for (const char32_t letter : {U'\0', U'\t', U'\n', U'\x7F', U'\u0085'}) {
        EXPECT_EQ(fonts.AdvanceOf(9, letter), 0) << int(letter);
        EXPECT_EQ(fonts.GlyphOf(9, letter).width, 0) << int(letter);
    }
}

TEST_F(DeskFonts, AGlyphStandsOnTheBaseLine) {
    const Glyph& dash = fonts.GlyphOf(20, U'_');
    EXPECT_LT(dash.bottom, 0);
    const Glyph& upper = fonts.GlyphOf(20, U'I');
    EXPECT_EQ(upper.bottom, 0);
    EXPECT_GT(upper.height, upper.width);
    // Cut to its ink: each side has some.
    const Glyph& slash = fonts.GlyphOf(20, U'/');
    EXPECT_TRUE(slash.HasInk(0, 0));
    EXPECT_TRUE(slash.HasInk(slash.width - 1, slash.height - 1));
    EXPECT_EQ(fonts.GlyphOf(20, U' ').width, 0);
}

TEST_F(DeskFonts, SmallLettersStandAtEvenDistances) {
    for (const int font : {tavrin::DeskFonts::LabelFont(0.5F), tavrin::DeskFonts::LabelFont(1)}) {
        for (const char32_t letter : U"coverfourth1.") {
            if (letter == 0) continue;
            EXPECT_EQ(fonts.GlyphOf(font, letter).left, 0) << int(letter);
            EXPECT_EQ(fonts.AdvanceOf(font, letter), fonts.GlyphOf(font, letter).width + 1) << int(letter);
        }
        EXPECT_GE(fonts.AdvanceOf(font, U' '), 3);
    }
    // Large ones have the places that their face gives them.
    const int large = tavrin::DeskFonts::kSizes - 1;
    EXPECT_GT(fonts.AdvanceOf(large, U'l'), fonts.GlyphOf(large, U'l').width + 1);
    EXPECT_GT(fonts.GlyphOf(large, U'l').left, 0);
}

TEST_F(DeskFonts, AtTwiceTheDevicePixelsTextsAreAsWide) {
    const float single = fonts.TextWidth(9, "a longer text");
    const float height = fonts.MetricsOf(9).height;
    fonts.SetPixelRatio(2);
    EXPECT_NEAR(fonts.TextWidth(9, "a longer text"), single, single / 10);
    EXPECT_NEAR(fonts.MetricsOf(9).height, height, 1);
}

TEST_F(DeskFonts, WhoKeepsLettersLearnsThatTheyWereMadeAnew) {
    const int before = fonts.Generation();
    const int narrow = fonts.AdvanceOf(9, U'a');
    fonts.SetPixelRatio(1);
    EXPECT_EQ(fonts.Generation(), before);
    fonts.SetPixelRatio(2);
    EXPECT_NE(fonts.Generation(), before);
    EXPECT_GT(fonts.AdvanceOf(9, U'a'), narrow);
}

}  // namespace
}  // namespace tavrin
