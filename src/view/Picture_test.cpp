// SPDX-License-Identifier: Apache-2.0
#include "view/Picture.h"

#include "view/ViewTest.h"

namespace tavrin {
namespace {

using test::Chart;
using test::Pictured;
using test::Plain;

TEST(Picture, HoldsThePixelsAsTheyAre) {
    Picture picture(Chart(5, 4, 7));
    EXPECT_EQ(picture.Size(), QSize(5, 4));
    EXPECT_TRUE(picture.IsWhole());
    EXPECT_FALSE(picture.HasAlpha());
    EXPECT_EQ(picture.At({3, 2}), qRgb(3, 2, 7));
    for (const QPoint outside : {QPoint(-1, 0), QPoint(0, -1), QPoint(5, 0), QPoint(0, 4)})
        EXPECT_FALSE(picture.At(outside));
    const Picture glass(Plain(2, 2, qRgba(200, 100, 50, 10)));
    EXPECT_TRUE(glass.HasAlpha());
    EXPECT_EQ(glass.At({1, 1}), qRgba(200, 100, 50, 10)) << "not premultiplied";
}

TEST(Picture, RowsThatAreNotThereYetHaveNoPixels) {
    Picture picture({4, 4}, false);
    EXPECT_EQ(picture.Rows(), 0);
    EXPECT_FALSE(picture.At({0, 0}));
    const int before = picture.Changes();
    for (int x = 0; x < 4; ++x) picture.Row(0)[x] = qRgb(1, 2, 3);
    picture.RowsAreThere(1);
    EXPECT_GT(picture.Changes(), before);
    EXPECT_EQ(picture.At({3, 0}), qRgb(1, 2, 3));
    EXPECT_FALSE(picture.At({3, 1}));
    EXPECT_FALSE(picture.IsWhole());
}

TEST(Picture, EachLevelIsTheMeanOfFourPixels) {
    QImage image(4, 2, QImage::Format_RGB32);
    image.fill(qRgb(10, 20, 30));
    image.setPixel(2, 0, qRgb(0, 0, 0));
    image.setPixel(3, 0, qRgb(255, 100, 0));
    image.setPixel(2, 1, qRgb(255, 200, 1));
    image.setPixel(3, 1, qRgb(254, 100, 1));
    Picture picture(image);
    const QImage& half = picture.Level(1);
    EXPECT_EQ(half.size(), QSize(2, 1));
    EXPECT_EQ(half.pixel(0, 0), qRgb(10, 20, 30));
    EXPECT_EQ(half.pixel(1, 0), qRgb(191, 100, 1));
    EXPECT_EQ(picture.Level(2).size(), QSize(1, 1));
}

TEST(Picture, OddEndsCountTwice) {
    Picture picture(Chart(3, 3));
    const QImage& half = picture.Level(1);
    EXPECT_EQ(half.size(), QSize(2, 2));
    EXPECT_EQ(half.pixel(1, 1), qRgb(2, 2, 0));
}

TEST(Picture, WhatIsNotOpaqueCountsByItsOpacity) {
    QImage image = Plain(2, 2, qRgba(0, 0, 0, 0));
    image.setPixel(0, 0, qRgba(200, 100, 40, 255));
    Picture picture(image);
    EXPECT_EQ(reinterpret_cast<const QRgb*>(picture.Level(1).constScanLine(0))[0], qRgba(50, 25, 10, 64));
}

TEST(Picture, LevelsFollowWhatGrows) {
    Picture picture({4, 5}, false);
    const auto fill = [&](int row, QRgb colour) {
        for (int x = 0; x < 4; ++x) picture.Row(row)[x] = colour;
        picture.RowsAreThere(row + 1);
    };
    fill(0, qRgb(10, 0, 0));
    EXPECT_EQ(picture.RowsOf(1), 0) << "half of a row is none";
    fill(1, qRgb(20, 0, 0));
    EXPECT_EQ(picture.RowsOf(1), 1);
    EXPECT_EQ(picture.Level(1).pixel(0, 0), qRgb(15, 0, 0));
    for (int row = 2; row < 5; ++row) fill(row, qRgb(30, 0, 0));
    EXPECT_EQ(picture.RowsOf(1), 3) << "the last row is alone";
    EXPECT_EQ(picture.Level(1).pixel(0, 2), qRgb(30, 0, 0));
    for (int x = 0; x < 4; ++x) picture.Row(0)[x] = qRgb(40, 0, 0);
    picture.RowsAreThere(5, true);
    EXPECT_EQ(picture.Level(1).pixel(0, 0), qRgb(30, 0, 0)) << "what was there has changed";
}

TEST(Picture, TheLevelForAZoomHasAPixelForEachThatIsSeen) {
    const Picture picture(Plain(64, 64, qRgb(1, 1, 1)));
    EXPECT_EQ(picture.LevelFor(4), 0);
    EXPECT_EQ(picture.LevelFor(1), 0);
    EXPECT_EQ(picture.LevelFor(0.51), 0);
    EXPECT_EQ(picture.LevelFor(0.5), 1);
    EXPECT_EQ(picture.LevelFor(0.2), 2);
    EXPECT_EQ(picture.LevelFor(1e-9), 6) << "a single pixel is the end";
}

TEST(Picture, ASizeBeyondTheBoundIsTold) {
    EXPECT_EQ(Picture::TroubleWithSize(8192, 8192), "");
    EXPECT_EQ(Picture::TroubleWithSize(1, 1), "");
    EXPECT_NE(Picture::TroubleWithSize(8193, 8192), "");
    EXPECT_NE(Picture::TroubleWithSize(0, 5), "");
    EXPECT_NE(Picture::TroubleWithSize(-1, -1), "");
    EXPECT_NE(Picture::TroubleWithSize(int64_t{1} << 40, int64_t{1} << 40), "");
    const std::string told = Picture::TroubleWithSize(32768, 32768);
    EXPECT_EQ(told.find("32768 x 32768 pixels are more than this window shows (64 million)"), 0U) << told;
}

TEST(Picture, AThumbnailIsSmallAndOfTheSameShape) {
    const QImage small = Picture(Plain(400, 200, qRgb(9, 8, 7))).Thumbnail({96, 96});
    EXPECT_EQ(small.size(), QSize(96, 48));
    EXPECT_EQ(small.pixel(50, 20), qRgb(9, 8, 7));
    EXPECT_EQ(Picture(Plain(10, 20, qRgb(9, 8, 7))).Thumbnail({96, 96}).size(), QSize(10, 20));
    EXPECT_EQ(Picture(Plain(4000, 1, qRgb(9, 8, 7))).Thumbnail({96, 96}).size(), QSize(96, 1));
    Picture half({4, 4}, false);
    std::fill_n(half.Row(0), 8, qRgb(9, 8, 7));
    half.RowsAreThere(2);
    EXPECT_EQ(qAlpha(half.Thumbnail({96, 96}).pixel(0, 3)), 0) << "what is not there is transparent";
}

}  // namespace
}  // namespace tavrin
