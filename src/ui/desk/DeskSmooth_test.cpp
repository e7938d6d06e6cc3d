// SPDX-License-Identifier: Apache-2.0
// Letters, lines and marks with shades: what they are, and that both ways of drawing show the same.
#include <array>
#include <cmath>
#include <map>
#include <set>

#include "ui/desk/DeskMarks.h"
#include "ui/desk/DeskPenTest.h"

namespace tavrin {
namespace {

using namespace test;

constexpr int kNone = tavrin::DeskFonts::kNone;

class SmoothFonts : public testing::Test {
  protected:
    // The letter as far as its advance goes, so that pictures of two can be held against each other.
    std::map<std::pair<int, int>, int> InkOf(int font, char32_t letter) {
        const Glyph& glyph = fonts.GlyphOf(font, letter);
        std::map<std::pair<int, int>, int> ink;
        for (int y = 0; y < glyph.height; ++y) {
            for (int x = 0; x < glyph.width; ++x) ink[{glyph.left + x, glyph.bottom + y}] = glyph.InkAt(x, y);
        }
        return ink;
    }
    // In whole covered pixels.
    double Difference(int font, char32_t one, char32_t other) {
        auto first = InkOf(font, one);
        double sum = 0;
        for (const auto& [at, ink] : InkOf(font, other)) first[at] -= ink;
        for (const auto& [at, ink] : first) sum += std::abs(ink);
        return sum / 255;
    }

    tavrin::DeskFonts fonts{"DejaVu Sans", [](const std::string& text) { ADD_FAILURE() << text; }, {true, 7}};
};

TEST_F(SmoothFonts, DigitsCanBeToldApartAtEveryZoomThatShowsLabels) {
    for (const float ratio : {1.0F, 2.0F}) {
        fonts.SetPixelRatio(ratio);
        for (const float zoom : {0.5F, 0.6F, 0.8F, 1.0F, 2.0F}) {
            const int font = fonts.ForLabels(zoom);
            ASSERT_NE(font, kNone);
            for (char32_t one = U'0'; one <= U'9'; ++one) {
                for (char32_t other = one + 1; other <= U'9'; ++other) {
                    EXPECT_GE(Difference(font, one, other), 2)
                        << char(one) << " and " << char(other) << " at " << zoom << " of " << ratio;
                }
            }
        }
    }
}

// What the library that says nothing has: at half size two and three are hardly more than spots.
TEST_F(SmoothFonts, WithoutShadesDigitsRunTogetherAtHalfSize) {
    tavrin::DeskFonts plain{"DejaVu Sans", [](const std::string& text) { ADD_FAILURE() << text; }};
    EXPECT_LE(plain.GlyphOf(plain.ForLabels(0.5F), U'8').height, 3);
    EXPECT_GE(fonts.GlyphOf(fonts.ForLabels(0.5F), U'8').height, 5);
}

TEST_F(SmoothFonts, LettersHaveShades) {
    std::set<int> inks;
    for (const char32_t letter : U"S2o") {
        if (letter == 0) continue;
        for (const auto& [at, ink] : InkOf(fonts.ForLabels(2), letter)) inks.insert(ink);
    }
    EXPECT_GT(inks.size(), 5U);
}

TEST_F(SmoothFonts, LabelsGrowWithTheZoomAndShrinkNoFurtherThanTheyCanBeRead) {
    const auto height = [this](float zoom) { return fonts.MetricsOf(fonts.ForLabels(zoom)).height; };
    EXPECT_EQ(fonts.ForLabels(0.5F), fonts.ForLabels(0.8F));
    EXPECT_GT(fonts.ForLabels(1), fonts.ForLabels(0.5F));
    EXPECT_GT(height(1.2F), height(1));
    EXPECT_NEAR(height(4), 4 * height(1), 6);
    EXPECT_EQ(fonts.ForLabels(1000), fonts.ForLabels(2000));
}

TEST_F(SmoothFonts, LabelsGoWhereTheirRowsAreTooLowAndTitlesWhereTheyAreTooSmall) {
    EXPECT_EQ(fonts.ForLabels(0.48F), kNone);
    EXPECT_NE(fonts.ForLabels(0.49F), kNone);
    EXPECT_EQ(fonts.ForTitles(0.4F), kNone);
    EXPECT_NE(fonts.ForTitles(0.45F), kNone);
    fonts.SetPixelRatio(2);  // more pixels show smaller letters
    EXPECT_NE(fonts.ForLabels(0.25F), kNone);
    EXPECT_EQ(fonts.ForLabels(0.24F), kNone);
}

TEST_F(SmoothFonts, BoxesKeepTheRoomOfLabelsThatAreLeftOut) {
    const DeskTextMeasure whole(fonts, 1);
    const DeskTextMeasure small(fonts, 0.25F);
    // With the edges of eight pixels that the layout adds at any zoom.
    EXPECT_FLOAT_EQ(small.LabelWidth("Roughness") + 8, (whole.LabelWidth("Roughness") + 8) / 4);
    EXPECT_FLOAT_EQ(small.TitleWidth("Mix") + 8, (whole.TitleWidth("Mix") + 8) / 4);
    const DeskTextMeasure half(fonts, 0.5F);
    EXPECT_FLOAT_EQ(half.LabelWidth("Mix") + 4, fonts.TextWidth(fonts.ForLabels(0.5F), "Mix"));
}

TEST(HiddenLabels, AreThoseOfLettersBelowTheThresholdWithoutShadesToo) {
    tavrin::DeskFonts fonts{"DejaVu Sans", [](const std::string&) {}, {false, 7}};
    EXPECT_EQ(fonts.ForLabels(0.7F), kNone);  // 4 points, 5 pixels
    EXPECT_EQ(fonts.ForLabels(1), tavrin::DeskFonts::LabelFont(1));
    EXPECT_EQ(fonts.ForTitles(0.35F), kNone);
    EXPECT_EQ(fonts.ForTitles(0.5F), tavrin::DeskFonts::TitleFont(0.5F));
    tavrin::DeskFonts all{"DejaVu Sans", [](const std::string&) {}};
    EXPECT_EQ(all.ForLabels(0.5F), tavrin::DeskFonts::LabelFont(0.5F));
}

class SmoothPens : public DeskPenTest {
  protected:
    SmoothPens() { pen.SetSmoothLines(true); }
    // The two ways round their colours at different places.
    QImage ExpectAlike(const Drawing& draw, const std::string& what = "") {
        PlainPen plain(view, smooth);
        plain.SetSmoothLines(true);
        QImage seen = PaintWith(plain, draw);
        EXPECT_EQ(CountDifferences(seen, PaintWith(pen, draw), 2), 0) << what;
        return seen;
    }
    QImage PaintWith(DeskPen& which, const Drawing& draw) {
        smooth.SetPixelRatio(fonts.PixelRatio());
        return Paint(which, draw);
    }
    static int Shades(const QImage& picture) {
        std::set<QRgb> colors;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) colors.insert(picture.pixel(x, y));
        }
        return static_cast<int>(colors.size());
    }

    tavrin::DeskFonts smooth{
        "DejaVu Sans", [](const std::string& text) { ADD_FAILURE() << text; }, {true, 7}};
    tavrin::BatchedPen pen{view, smooth};
};

TEST_F(SmoothPens, TextsAreAlikeOnAnyGroundAndInAnyColor) {
    for (const float zoom : {0.5F, 1.0F, 1.7F, 3.0F}) {
        LookAt(zoom, {0, 0});
        const QImage picture = ExpectAlike(
            [&](DeskPen& p) {
                p.Fill({0, 0, 100 / zoom, 120 / zoom}, {0.3F, 0.5F, 0.2F});
                for (int i = 0; i < 6; ++i) {
                    const float y = static_cast<float>(i * 18) / zoom;
                    p.LabelAt("Ramp 2 \xC3\xA4gjp 0123456789", i % 2 == 0 ? kBlack : kRed, {3.3F, y});
                }
                p.CentredTitle("Mix", {0, 100 / zoom, 200 / zoom, 20 / zoom});
            },
            std::to_string(zoom));
        EXPECT_GT(Shades(picture), 20);
    }
}

TEST_F(SmoothPens, ATextThatNoTextureHoldsIsDrawnToo) {
    const std::string wide(400, 'W');
    const QImage picture = ExpectAlike([&](DeskPen& p) { p.LabelAt(wide, kBlack, {-900, 22}); });
    EXPECT_GT(Shades(picture), 5);
}

TEST_F(SmoothPens, ASlantedLineHasShadesAndOneAlongThePixelsHasNone) {
    const QImage slanted = ExpectAlike([](DeskPen& p) {
        p.Line(std::array{DeskPoint{5, 10}, DeskPoint{190, 90}}, {kBlack, 3});
    });
    EXPECT_GT(Shades(slanted), 20);
    const QImage level = ExpectAlike([](DeskPen& p) {
        p.Line(std::array{DeskPoint{5, 10}, DeskPoint{100, 10}, DeskPoint{100, 60}}, {kBlack, 3});
    });
    EXPECT_EQ(Shades(level), 2);
}

TEST_F(SmoothPens, LinesAreAsWideAsToldAndTheirCornersAreWhole) {
    for (const float zoom : {0.5F, 1.0F, 2.0F}) {
        LookAt(zoom, {0, 0});
        const float unit = 1 / zoom;
        const QImage picture = ExpectAlike([&](DeskPen& p) {
            p.Line(std::array{DeskPoint{10 * unit, 20 * unit}, DeskPoint{100 * unit, 20 * unit},
                              DeskPoint{100 * unit, 80 * unit}},
                   {kBlack, 3});
        });
        int across = 0;
        for (int y = 0; y < 60; ++y) across += At(picture, 50, y) == qRgb(0, 0, 0) ? 1 : 0;
        EXPECT_EQ(across, 3) << zoom;
        int black = 0;
        for (int y = 18; y < 23; ++y) {
            for (int x = 98; x < 103; ++x) black += At(picture, x, y) == qRgb(0, 0, 0) ? 1 : 0;
        }
        EXPECT_EQ(black, 15) << zoom;  // two arms of three by four that share a square of three
    }
}

TEST_F(SmoothPens, StippledLinesStayStippled) {
    const Drawing draw = [](DeskPen& p) {
        p.Line(std::array{DeskPoint{5, 10}, DeskPoint{190, 90}}, {kBlack, 1, true});
    };
    EXPECT_EQ(Shades(ExpectAlike(draw)), 2);
}

TEST_F(SmoothPens, LinesOfAllKindsKeepTheirOrder) {
    const QImage picture = ExpectAlike([](DeskPen& p) {
        p.Line(std::array{DeskPoint{0, 60}, DeskPoint{200, 60}}, {kRed, 9});
        p.Line(std::array{DeskPoint{100, 0}, DeskPoint{100, 120}}, {kBlue, 9, true});
        p.Line(std::array{DeskPoint{0, 20}, DeskPoint{200, 100}}, {kGreenInk, 9});
    });
    EXPECT_EQ(At(picture, 100, 60), qRgb(0, 255, 0));
    EXPECT_EQ(At(picture, 30, 60), qRgb(255, 0, 0));
}

TEST_F(SmoothPens, MarksOfAllShapesAreAlikeAndCanBeToldApart) {
    for (const float ratio : {1.0F, 2.0F}) {
        SetRatio(ratio);
        fonts.SetPixelRatio(ratio);
        std::vector<QImage> seen;
        for (size_t shape = 0; shape < kTypeShapeNames.size(); ++shape) {
            for (const bool filled : {true, false}) {
                seen.push_back(ExpectAlike([&](DeskPen& p) {
                    p.Mark({static_cast<TypeShape>(shape), kRed, 9, filled}, {20, 20});
                }));
            }
        }
        for (size_t one = 0; one < seen.size(); ++one) {
            for (size_t other = one + 1; other < seen.size(); ++other) {
                EXPECT_GT(CountDifferences(seen[one], seen[other], 40), 4)
                    << one << " and " << other << " of " << ratio;
            }
        }
    }
}

TEST_F(SmoothPens, MarksStandOutOfTheWindowFarAwayOrHugeWithoutHarm) {
    ExpectAlike([](DeskPen& p) {
        p.Mark({TypeShape::kCircle, kRed, 9, true}, {0, 0});
        p.Mark({TypeShape::kCircle, kRed, 9, true}, {1e30F, -1e30F});
        p.Mark({TypeShape::kSquare, kRed, 1e9F, true}, {100, 60});
        p.Mark({TypeShape::kBar, kRed, 0, false}, {50, 60});
    });
}

TEST_F(SmoothPens, TheWindowStaysWholeUnderShades) {
    canvas->paint = [&] {
        view.SetSize(kWidth, kHeight);
        pen.Begin(kPaper);
        pen.LabelAt("Ramp", kBlack, {3, 20});
        pen.Line(std::array{DeskPoint{5, 10}, DeskPoint{190, 90}}, {kBlack, 3});
        pen.Mark({TypeShape::kCircle, kRed, 15, false}, {100, 20});
        pen.End();
    };
    const QImage picture = canvas->grabFramebuffer();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            ASSERT_EQ(qAlpha(picture.pixel(x, y)), 255) << x << " " << y;
    }
}

TEST(DeskMarks, AnInsetLeavesWhatIsFurtherInside) {
    tavrin::DeskMarks marks;
    const auto area = [](const Glyph& mark) {
        int sum = 0;
        for (const unsigned char ink : mark.ink) sum += ink;
        return sum;
    };
    for (size_t i = 0; i < kTypeShapeNames.size(); ++i) {
        const auto shape = static_cast<TypeShape>(i);
        EXPECT_GT(area(marks.MarkOf(shape, 16, 0)), area(marks.MarkOf(shape, 16, 2))) << kTypeShapeNames[i];
        EXPECT_EQ(marks.MarkOf(shape, 16, 9).width, 0) << kTypeShapeNames[i];
        EXPECT_EQ(&marks.MarkOf(shape, 16, 2), &marks.MarkOf(shape, 16, 2));
    }
}

}  // namespace
}  // namespace tavrin
