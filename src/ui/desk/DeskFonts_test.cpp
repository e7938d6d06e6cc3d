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

TEST_F(DeskFonts, CharactersBeyondLatinAreQuestionMarks) {
    const float question = fonts.TextWidth(9, "?");
    EXPECT_EQ(fonts.TextWidth(9, "\xE6\xBC\xA2"), question);             // a Chinese character
    EXPECT_EQ(fonts.TextWidth(9, "\xF0\x9F\x8E\xA8"), question);         // beyond the first plane
    EXPECT_EQ(fonts.TextWidth(9, "\xFF"), question);                     // no character at all
    EXPECT_EQ(fonts.TextWidth(9, "\xC3\xA9"), fonts.TextWidth(9, "e"));  // an accent is no wider
}

TEST_F(DeskFonts, AtTwiceTheDevicePixelsTextsAreAsWide) {
    const float single = fonts.TextWidth(9, "a longer text");
    const float height = fonts.MetricsOf(9).height;
    fonts.SetPixelRatio(2);
    EXPECT_NEAR(fonts.TextWidth(9, "a longer text"), single, single / 10);
    EXPECT_NEAR(fonts.MetricsOf(9).height, height, 1);
}

}  // namespace
}  // namespace tavrin
