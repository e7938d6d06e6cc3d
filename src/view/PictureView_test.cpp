// SPDX-License-Identifier: Apache-2.0
#include "view/PictureView.h"

#include <cmath>

#include "view/ViewTest.h"

namespace tavrin {
namespace {

using test::Chart;
using test::Noise;
using test::Pictured;
using test::Plain;

constexpr QSize kCanvas(120, 90);

QImage Shown(const PicturePtr& picture, const ViewPlace& place, QSize extent = {}) {
    PictureView view;
    view.Show(picture, kCanvas, place, extent, {});
    return view.Image();
}

TEST(ViewPlace, AllOfAPictureFitsInTheMiddle) {
    const ViewPlace place = ViewPlace::Fit({400, 100}, {200, 200});
    EXPECT_EQ(place.zoom, 0.5);
    EXPECT_EQ(place.origin, QPointF(0, 75));
    EXPECT_EQ(ViewPlace::Fit({100, 100}, {300, 200}).zoom, 1) << "not larger than life";
    EXPECT_EQ(ViewPlace::Fit({16, 16}, {300, 200}).zoom, 4) << "but for icons";
    EXPECT_EQ(ViewPlace::Fit({}, {300, 200}), ViewPlace());
}

TEST(ViewPlace, WhatIsUnderThePointStaysUnderIt) {
    const ViewPlace place{0.5, {10, 20}};
    const QPointF about(60, 70);
    const ViewPlace larger = place.Zoomed(4, about);
    EXPECT_EQ(larger.zoom, 4);
    EXPECT_LT((larger.ToPicture(about) - place.ToPicture(about)).manhattanLength(), 0.3);
    EXPECT_EQ(place.Zoomed(1e9, about).zoom, ViewPlace::kMostZoom);
    EXPECT_EQ(place.Zoomed(0, about).zoom, ViewPlace::kLeastZoom);
}

TEST(ViewPlace, APixelIsWhatItsMiddleLiesIn) {
    const ViewPlace place{2, {-1, 3}};
    EXPECT_EQ(place.PixelAt({-1, 3}), QPoint(0, 0));
    EXPECT_EQ(place.PixelAt({0, 4}), QPoint(0, 0));
    EXPECT_EQ(place.PixelAt({1, 5}), QPoint(1, 1));
    EXPECT_EQ(place.PixelAt({-2, 2}), QPoint(-1, -1));
}

TEST(ViewPlace, APictureCannotBeLost) {
    const QSize canvas(100, 100);
    EXPECT_EQ((ViewPlace{1, {-5000, 5000}}).Held({1000, 1000}, canvas).origin, QPointF(32 - 1000, 100 - 32));
    EXPECT_EQ((ViewPlace{1, {-20, 95}}).Held({40, 40}, canvas).origin, QPointF(0, 60));
}

TEST(PictureView, AtOneToOneEveryPixelIsItsOwn) {
    const QImage image = Noise(50, 40);
    const QImage seen = Shown(Pictured(image), {1, {10, 20}});
    for (int y = 0; y < kCanvas.height(); ++y) {
        for (int x = 0; x < kCanvas.width(); ++x) {
            const bool isInside = QRect(10, 20, 50, 40).contains(x, y);
            ASSERT_EQ(seen.pixel(x, y), isInside ? image.pixel(x - 10, y - 20) : ViewGround().around)
                << x << ", " << y;
        }
    }
}

TEST(PictureView, FromTwoToOnePixelsAreSquares) {
    const QImage image = Noise(40, 30);
    for (const double zoom : {2.0, 2.5, 3.0, 7.3}) {
        const ViewPlace place{zoom, {-7, 5}};
        const QImage seen = Shown(Pictured(image), place);
        for (int y = 0; y < kCanvas.height(); ++y) {
            for (int x = 0; x < kCanvas.width(); ++x) {
                const QPoint pixel = place.PixelAt({x, y});
                const bool isInside = image.rect().contains(pixel);
                ASSERT_EQ(seen.pixel(x, y), isInside ? image.pixel(pixel) : ViewGround().around)
                    << zoom << ": " << x << ", " << y;
            }
        }
    }
}

TEST(PictureView, HalfOfLifeIsTheMeanOfFourPixels) {
    const QImage image = Noise(64, 64);
    Picture picture(image);
    const QImage& mean = picture.Level(1);
    const QImage seen = Shown(Pictured(image), {0.5, {3, 4}});
    for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) ASSERT_EQ(seen.pixel(x + 3, y + 4), mean.pixel(x, y));
    EXPECT_EQ(seen.pixel(2, 4), ViewGround().around);
    EXPECT_EQ(seen.pixel(35, 4), ViewGround().around);
}

TEST(PictureView, InBetweenItIsSmooth) {
    QImage image(2, 1, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(0, 0, 0));
    image.setPixel(1, 0, qRgb(255, 255, 255));
    PictureView view;
    view.Show(Pictured(image.scaled(60, 60)), kCanvas, {1.5, {0, 0}}, {}, {});
    int between = 0;
    for (int x = 0; x < 90; ++x) {
        const int grey = qRed(view.Image().pixel(x, 30));
        between += grey > 0 && grey < 255 ? 1 : 0;
    }
    EXPECT_GE(between, 1);
    EXPECT_LE(between, 4);
}

TEST(PictureView, BehindWhatIsNotOpaqueIsACheckerboard) {
    const QImage seen = Shown(Pictured(Plain(60, 60, qRgba(0, 0, 0, 0))), {1, {0, 0}});
    const ViewGround ground;
    EXPECT_EQ(seen.pixel(0, 0), ground.checkLight);
    EXPECT_EQ(seen.pixel(8, 0), ground.checkDark);
    EXPECT_EQ(seen.pixel(8, 8), ground.checkLight);
    EXPECT_EQ(seen.pixel(70, 70), ground.around) << "not beside the picture";
    const QImage half = Shown(Pictured(Plain(60, 60, qRgba(255, 0, 0, 128))), {1, {0, 0}});
    EXPECT_NEAR(qRed(half.pixel(0, 0)), 128 + qRed(ground.checkLight) * 127 / 255, 1);
    EXPECT_NEAR(qGreen(half.pixel(0, 0)), qGreen(ground.checkLight) * 127 / 255, 1);
    for (const double zoom : {0.3, 0.5, 1.5}) {
        const QImage other = Shown(Pictured(Plain(60, 60, qRgba(0, 0, 0, 0))), {zoom, {0, 0}});
        EXPECT_EQ(other.pixel(3, 3), ground.checkLight) << zoom;
        EXPECT_EQ(other.pixel(11, 3), ground.checkDark) << zoom;
    }
}

TEST(PictureView, WhereOnlyTheOtherPictureReachesItIsStriped) {
    const QImage seen = Shown(Pictured(Plain(20, 20, qRgb(1, 2, 3))), {1, {0, 0}}, {60, 40});
    int stripes = 0;
    for (int y = 0; y < kCanvas.height(); ++y) {
        for (int x = 0; x < kCanvas.width(); ++x) {
            const QRgb pixel = seen.pixel(x, y);
            if (x < 20 && y < 20) {
                ASSERT_EQ(pixel, qRgb(1, 2, 3));
            } else if (pixel == ViewGround().missing) {
                ++stripes;
                ASSERT_TRUE(x < 60 && y < 40) << x << ", " << y;
            } else {
                ASSERT_EQ(pixel, ViewGround().around);
            }
        }
    }
    EXPECT_NEAR(stripes, (60 * 40 - 20 * 20) / 2, 100);
}

TEST(PictureView, OfWhatGrowsWhatHasComeIsSeenAndNothingElse) {
    const QImage image = Noise(100, 80);
    for (const double zoom : {1.0, 0.5, 0.7, 0.25, 3.0}) {
        auto picture = std::make_shared<Picture>(QSize(100, 80), false);
        PictureView growing;
        for (int rows = 0; rows <= 80; rows += 8) {
            for (int y = 0; y < rows; ++y)
                std::copy_n(reinterpret_cast<const QRgb*>(image.constScanLine(y)), 100, picture->Row(y));
            picture->RowsAreThere(rows);
            growing.Show(picture, kCanvas, {zoom, {2, 1}}, {}, {});
            const int end = 1 + static_cast<int>(std::ceil(rows * zoom));
            for (int y = end + 1; y < kCanvas.height(); ++y)
                ASSERT_EQ(growing.Image().pixel(10, y), ViewGround().around) << zoom << ": " << rows;
        }
        EXPECT_EQ(growing.Image(), Shown(Pictured(image), {zoom, {2, 1}})) << zoom;
    }
}

TEST(PictureView, NothingIsPaintedTwice) {
    PictureView view;
    const auto picture = Pictured(Chart(50, 40));
    view.Show(picture, kCanvas, {1, {0, 0}}, {}, {});
    const qint64 key = view.Image().cacheKey();
    view.Show(picture, kCanvas, {1, {0, 0}}, {}, {});
    EXPECT_EQ(view.Image().cacheKey(), key);
    view.Show(picture, kCanvas, {1, {1, 0}}, {}, {});
    EXPECT_NE(view.Image().cacheKey(), key);
}

TEST(PictureView, WithoutAPictureThereIsTheGround) {
    const QImage seen = Shown(nullptr, {});
    EXPECT_EQ(seen.size(), kCanvas);
    EXPECT_EQ(seen.pixel(50, 50), ViewGround().around);
    PictureView view;
    view.Show(Pictured(Chart(5, 5)), {}, {}, {}, {});
    EXPECT_TRUE(view.Image().isNull());
    view.Show(Pictured(Chart(5000, 1)), kCanvas, {ViewPlace::kLeastZoom, {3, 3}}, {}, {});
    EXPECT_NE(view.Image().pixel(3, 3), ViewGround().around) << "however small, it is seen";
}

}  // namespace
}  // namespace tavrin
