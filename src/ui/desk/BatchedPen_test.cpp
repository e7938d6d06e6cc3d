// SPDX-License-Identifier: Apache-2.0
// That texts and icons out of one texture are what letters and pixels drawn one by one are, whatever becomes
// of the texture.
#include "ui/desk/BatchedPen.h"

#include <algorithm>
#include <array>
#include <limits>

#include "ui/desk/DeskPenTest.h"

namespace tavrin {
namespace {

using namespace test;

class BatchedPen : public test::DeskPenTest {
  protected:
    using Pen = tavrin::BatchedPen;
    static constexpr int kTiny = 64;  // pixels on a side: a handful of texts
};

// Two of them overlap; the text of each stands in it.
void Boxes(DeskPen& pen, int count, const std::string& name) {
    for (int i = 0; i < count; ++i) {
        const DeskRect rect{static_cast<float>(i % 5) * 34 + 2, static_cast<float>(i / 5 % 6) * 16 + 2, 48,
                            22};
        pen.BeginObject(rect.GrownBy(6));
        pen.Bevel(rect, {0.9F, 0.8F, static_cast<float>(i % 4) / 4});
        pen.CentredLabel(name + std::to_string(i), rect);
        pen.Line(std::array{DeskPoint{rect.left - 4, rect.bottom}, DeskPoint{rect.left + 4, rect.Top()}},
                 {kBlue, 2});
    }
    pen.EndObjects();
}

TEST_F(BatchedPen, ATextureThatIsFullInTheMidstOfAnObjectIsNotSeen) {
    Pen pen(view, fonts, kTiny);
    ExpectLikePlain(pen, [](DeskPen& p) { Boxes(p, 60, "box"); });
    ExpectLikePlain(
        pen, [](DeskPen& p) { Boxes(p, 60, "other"); }, "with a texture that is full");
}

// What an object draws after the texture was cleared is still above what comes before it and below what comes
// after it.
TEST_F(BatchedPen, ALaterObjectLiesOverOneInWhichTheTextureWasCleared) {
    Pen pen(view, fonts, kTiny);
    const QImage picture = ExpectLikePlain(pen, [](DeskPen& p) {
        p.BeginObject({0, 0, 150, 60});
        p.Fill({0, 0, 150, 60}, kRed);
        for (int i = 0; i < 12; ++i)
            p.LabelAt("text " + std::to_string(i * 7919), kBlack, {5, static_cast<float>(i) * 4});
        p.Line(std::array{DeskPoint{0, 30}, DeskPoint{150, 30}}, {kBlue, 5});
        p.BeginObject({0, 0, 150, 60});
        p.Fill({0, 0, 60, 60}, kGreenInk);
        p.EndObjects();
    });
    EXPECT_EQ(At(picture, 30, 30), qRgb(0, 255, 0));
    EXPECT_EQ(At(picture, 100, 30), qRgb(0, 0, 255));
}

TEST_F(BatchedPen, ATextThatNoTextureHoldsIsDrawnAndKeepsItsOrder) {
    const std::string wide(400, 'W');
    Pen pen(view, fonts);
    const QImage picture = ExpectLikePlain(pen, [&](DeskPen& p) {
        p.BeginObject({0, 0, 200, 60});
        p.Fill({0, 0, 200, 60}, kRed);
        p.LabelAt("below", kGreenInk, {5, 20});
        p.LabelAt(wide, kBlack, {-900, 22});
        p.LabelAt("above", kBlue, {7, 23});
        p.BeginObject({90, 0, 60, 60});
        p.Fill({100, 0, 40, 60}, kGreenInk);
        p.EndObjects();
    });
    EXPECT_GT(Count(picture, kBlack), 100);
    EXPECT_EQ(At(picture, 120, 25), qRgb(0, 255, 0));
}

TEST_F(BatchedPen, TextsAboutAsWideAsTheTextureAreWhole) {
    for (const int letters : {8, 9, 10, 11, 12, 13, 100}) {
        Pen pen(view, fonts, kTiny);
        const std::string text(static_cast<size_t>(letters), 'w');
        ExpectLikePlain(
            pen,
            [&](DeskPen& p) {
                p.LabelAt(text, kBlack, {1, 20});
            },
            text);
    }
}

TEST_F(BatchedPen, TextsOfEveryKindAreThoseOfTheLists) {
    LookAt(2, {0, 0});
    Pen pen(view, fonts);
    ExpectLikePlain(pen, [](DeskPen& p) {
        float y = 2;
        for (const char* text : {" ", "\t\n", "gjpqy_|", "\xC3\xA4\xC3\x96\xE2\x82\xAC", "a\xCC\x8A b",
                                 "\xFF\xFE", "\xE6\xBC\xA2\xE5\xAD\x97", "!"}) {
            p.LabelAt(text, kBlack, {3.3F, y});
            p.LabelAt(text, kRed, {-4, y + 2});
            p.LabelAt(text, kBlue, {97, y - 3});
            y += 7;
        }
    });
}

TEST_F(BatchedPen, TextsStandWhereListsPutThemAtEveryFractionOfAPixel) {
    Pen pen(view, fonts);
    for (const float zoom : {1.0F, 1.37F, 0.61F}) {
        LookAt(zoom, {13.7F, -5.2F});
        ExpectLikePlain(pen, [](DeskPen& p) {
            for (int i = 0; i < 64; ++i) {
                const auto step = static_cast<float>(i);
                p.LabelAt("il", kBlack, {14 + step * 2.03125F, -4 + step * 1.140625F});
            }
        });
    }
}

TEST_F(BatchedPen, FarFromTheOriginTextsAndIconsStandAsNearIt) {
    const auto icon = MakeIcon(16, 16);
    Pen pen(view, fonts);
    QImage near;
    for (const float corner : {0.0F, 4.0e6F, 16.0e6F}) {
        LookAt(1, {corner, -corner});
        const QImage picture = ExpectLikePlain(pen, [&](DeskPen& p) {
            p.LabelAt("text", kBlack, {corner + 10, -corner + 20});
            p.Icon(*icon, {corner + 50, -corner + 40});
        });
        if (corner == 0) near = picture;
        EXPECT_EQ(picture, near) << corner;
    }
}

TEST_F(BatchedPen, WhatIsFarOutOfViewOrNowhereIsNotDrawn) {
    const auto icon = MakeIcon(16, 16);
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    Pen pen(view, fonts);
    const QImage picture = ExpectLikePlain(pen, [&](DeskPen& p) {
        for (const float place : {nan, inf, -inf, 1e30F, -1e30F, 3e9F, -3e9F}) {
            p.LabelAt("text", kBlack, {place, 20});
            p.LabelAt("text", kBlack, {20, place});
            p.CentredLabel("text", {place, 20, 50, 50});
            p.Icon(*icon, {place, 20});
            p.Icon(*icon, {20, place});
        }
    });
    EXPECT_EQ(Count(picture, kPaper), kWidth * kHeight);
}

TEST_F(BatchedPen, IconsOfEverySizeArePixelsDrawn) {
    for (const float zoom : {1.0F, 2.0F, 3.0F}) {
        LookAt(zoom, {4.2F, 3.9F});
        for (const int size : {1, 7, 48, 63, 64, 65, 256, 257, 300}) {
            const auto icon = MakeIcon(size, 20);
            for (const int texture : {kTiny, 512}) {
                Pen pen(view, fonts, texture);
                ExpectLikePlain(
                    pen,
                    [&](DeskPen& p) {
                        p.BeginObject({0, 0, 200, 100});
                        p.Fill({0, 0, 200, 100}, kGreenInk);
                        p.Icon(*icon, {10.3F, 12.6F});
                        p.Icon(*icon, {-20, -5});
                        p.Line(std::array{DeskPoint{0, 20}, DeskPoint{60, 20}}, {kRed, 3});
                        p.EndObjects();
                    },
                    std::to_string(size) + " in " + std::to_string(texture));
            }
        }
    }
}

TEST_F(BatchedPen, IconsThatDoNotFitTogetherAreEachDrawn) {
    std::vector<std::unique_ptr<CSgiImage>> icons;
    for (int i = 0; i < 12; ++i) icons.push_back(MakeIcon(40, 40, i));
    Pen pen(view, fonts, kTiny);
    ExpectLikePlain(pen, [&](DeskPen& p) {
        for (size_t i = 0; i < icons.size(); ++i) {
            const DeskRect rect{static_cast<float>(i) * 13, static_cast<float>(i % 3) * 22, 44, 44};
            p.BeginObject(rect);
            p.Bevel(rect, kRed);
            p.Icon(*icons[i], {rect.left + 2, rect.bottom + 2});
            p.CentredLabel("icon", rect);
        }
        p.EndObjects();
    });
}

TEST_F(BatchedPen, InANewContextAllIsDrawnAgain) {
    const auto icon = MakeIcon(16, 16);
    const Drawing draw = [&](DeskPen& p) {
        p.LabelAt("known text", kBlack, {10, 20});
        p.Icon(*icon, {50, 40});
        p.LabelAt(std::string(300, 'm'), kRed, {0, 80});
    };
    for (const int texture : {kTiny, 2048}) {
        Pen pen(view, fonts, texture);
        const QImage before = ExpectLikePlain(pen, draw);
        RenewContext();
        pen.ContextIsNew();
        EXPECT_EQ(Paint(pen, draw), before);
        // Also when the texture was emptied by what was drawn last.
        Paint(pen, [](DeskPen& p) { Boxes(p, 60, "box"); });
        RenewContext();
        pen.ContextIsNew();
        EXPECT_EQ(Paint(pen, draw), before);
    }
}

TEST_F(BatchedPen, AnotherPixelRatioMakesTextsAnew) {
    const Drawing draw = [](DeskPen& p) {
        Boxes(p, 20, "box");
        p.LabelAt("text", kBlack, {10, 50});
    };
    Pen pen(view, fonts);
    QImage first;
    for (const float ratio : {1.0F, 2.0F, 1.5F, 1.0F}) {
        SetRatio(ratio);
        const QImage picture = ExpectLikePlain(pen, draw, std::to_string(ratio));
        if (first.isNull()) first = picture;
        EXPECT_EQ(picture == first, ratio == 1);
    }
}

TEST_F(BatchedPen, TextsOfEachZoomHaveTheirSize) {
    Pen pen(view, fonts);
    for (const float zoom : {1.0F, 2.0F, 0.5F, 0.4F, 1.0F, 4.0F, 20.0F}) {
        LookAt(zoom, {0, 0});
        ExpectLikePlain(pen, [&](DeskPen& p) {
            p.LabelAt("text", kBlack, {10 / zoom, 50 / zoom});
            p.CentredTitle("title", {50 / zoom, 10 / zoom, 100 / zoom, 80 / zoom});
        });
    }
}

TEST_F(BatchedPen, TheVeilLiesOverAllAndTheWallpaperUnderAll) {
    const auto paper = MakeIcon(50, 30);
    Pen pen(view, fonts);
    for (const bool tiled : {false, true}) {
        ExpectLikePlain(pen, [&](DeskPen& p) {
            p.Wallpaper(*paper, tiled);
            p.Line(std::array{DeskPoint{0, 0}, DeskPoint{200, 100}}, {kRed, 3});
            Boxes(p, 12, "box");
            p.Veil(kBlue);
        });
    }
}

// Larger than textures and windows may be.
TEST_F(BatchedPen, AWallpaperOfAnyWidthIsSeen) {
    for (const int width : {4000, 20000, 32767}) {
        std::vector<Rgba> pixels(static_cast<size_t>(width) * 3, {0, 0, 255, 255});
        for (int y = 0; y < 3; ++y) {
            std::fill_n(pixels.begin() + y * width, 100, Rgba{255, 0, 0, 255});
            std::fill_n(pixels.begin() + y * width + width / 2, 1000, Rgba{0, 255, 0, 255});
        }
        const std::string path =
            host.Directory().Write("wide.sgi", SgiTestFile::Picture(width, 4, pixels).Bytes());
        const CSgiImage paper(path, nullptr);
        ASSERT_NE(paper.pixels, nullptr) << width;
        Pen pen(view, fonts);
        const QImage tiled = ExpectLikePlain(pen, [&](DeskPen& p) { p.Wallpaper(paper, true); });
        EXPECT_EQ(Count(tiled, kRed), 100 * kHeight) << width;
        EXPECT_EQ(Count(tiled, kBlue), 100 * kHeight) << width;
        const QImage single = ExpectLikePlain(pen, [&](DeskPen& p) { p.Wallpaper(paper, false); });
        EXPECT_NEAR(Count(single, kBlue), 300, 6) << width;
        EXPECT_NEAR(Count(single, kGreenInk), 300, 6) << width;
    }
}

TEST_F(BatchedPen, ATextureLargerThanTheContextHoldsCannotBeUsed) {
    Paint(*std::make_unique<Pen>(view, fonts), [&](DeskPen&) {
        EXPECT_TRUE(Pen(view, fonts).IsUsable());
        EXPECT_FALSE(Pen(view, fonts, 1 << 24).IsUsable());
    });
}

}  // namespace
}  // namespace tavrin
