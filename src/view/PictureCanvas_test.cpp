// SPDX-License-Identifier: Apache-2.0
#include "view/PictureCanvas.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <set>

#include "ui/support/Windows.h"
#include "view/ViewTest.h"

namespace tavrin {
namespace {

using Mode = PictureCanvas::Mode;
using test::Chart;
using test::Noise;
using test::Pictured;
using test::Plain;
using test::WaitUntil;

constexpr QSize kSize(400, 300);

// Sees which part of the canvas is painted.
class Watched : public PictureCanvas {
  public:
    using PictureCanvas::PictureCanvas;
    QRegion painted;
    int paints = 0;

  protected:
    void paintEvent(QPaintEvent* event) override {
        painted = event->region();
        ++paints;
        PictureCanvas::paintEvent(event);
    }
};

class PictureCanvasTest : public testing::Test {
  protected:
    PictureCanvasTest() {
        canvas.setFixedSize(kSize);
        test::ShowActive(canvas);
    }
    double Ratio() { return canvas.devicePixelRatioF(); }
    // As it is on the screen, in device pixels.
    QImage Seen() {
        test::HandleEvents();
        QImage seen = canvas.grab().toImage().convertToFormat(QImage::Format_RGB32);
        seen.setDevicePixelRatio(1);
        return seen;
    }
    // In the widget, of the middle of a pixel of the picture.
    QPoint At(QPoint pixel) {
        const QPointF at = canvas.Place().ToCanvas(QPointF(pixel) + QPointF(0.5, 0.5)) / Ratio();
        return {static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y()))};
    }
    void Wheel(QPoint at, int notches) {
        QWheelEvent event(at, canvas.mapToGlobal(at), {}, {0, 120 * notches}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&canvas, &event);
    }
    void Drag(QPoint from, QPoint to) {
        QTest::mousePress(&canvas, Qt::LeftButton, {}, from);
        QTest::mouseMove(&canvas, (from + to) / 2);
        QTest::mouseMove(&canvas, to);
        QTest::mouseRelease(&canvas, Qt::LeftButton, {}, to);
    }
    // Every pixel of what is seen, but for where titles and the wipe's line are.
    void ExpectSeen(const std::function<QRgb(QPoint)>& colourOf, QRect picture) {
        const QImage seen = Seen();
        const int top = static_cast<int>(40 * Ratio());
        const int line = static_cast<int>(std::lround(canvas.Wipe() * seen.width()));
        const int reach = static_cast<int>(16 * Ratio());
        int compared = 0;
        for (int y = top; y < seen.height(); ++y) {
            for (int x = 0; x < seen.width(); ++x) {
                if (canvas.ModeShown() == Mode::kWipe && std::abs(x - line) <= reach) continue;
                const QPoint pixel = canvas.Place().PixelAt({x, y});
                if (!picture.contains(pixel)) continue;
                ASSERT_EQ(seen.pixel(x, y), colourOf(pixel)) << x << ", " << y;
                ++compared;
            }
        }
        EXPECT_GT(compared, 1000);
    }

    int told = 0;
    int painted = 0;
    Watched canvas{nullptr, {.told = [this] { ++told; }, .painted = [this] { ++painted; }}};
};

TEST_F(PictureCanvasTest, ANewPictureStandsInTheMiddleAndWhole) {
    const QImage image = Noise(100, 80);
    canvas.ShowPictures(Pictured(image), nullptr);
    EXPECT_TRUE(canvas.IsFitted());
    EXPECT_EQ(canvas.Zoom(), 1);
    ExpectSeen([&](QPoint pixel) { return image.pixel(pixel); }, image.rect());
    canvas.ShowPictures(Pictured(Plain(4000, 100, qRgb(1, 2, 3))), nullptr);
    EXPECT_NEAR(canvas.Zoom(), kSize.width() * Ratio() / 4000, 1e-6);
    EXPECT_GT(painted, 0);
}

TEST_F(PictureCanvasTest, TheWheelZoomsAboutThePointer) {
    canvas.ShowPictures(Pictured(Noise(2000, 1500)), nullptr);
    canvas.ActualSize();
    const QPoint at(130, 90);
    const auto under = [&] { return canvas.Place().ToPicture(QPointF(at) * Ratio()); };
    const QPointF before = under();
    Wheel(at, 2);
    EXPECT_EQ(canvas.Zoom(), 2);
    EXPECT_LT((under() - before).manhattanLength(), 1.5);
    EXPECT_FALSE(canvas.IsFitted());
    Wheel(at, -3);
    EXPECT_NEAR(canvas.Zoom(), std::sqrt(0.5), 1e-9);
    EXPECT_LT((under() - before).manhattanLength(), 3);
    for (int i = 0; i < 50; ++i) Wheel(at, 3);
    EXPECT_EQ(canvas.Zoom(), ViewPlace::kMostZoom);
    for (int i = 0; i < 50; ++i) Wheel(at, -3);
    EXPECT_EQ(canvas.Zoom(), ViewPlace::kLeastZoom);
}

TEST_F(PictureCanvasTest, StepsOfTheZoomComeThroughOneToOneWhereverTheyBegan) {
    canvas.ShowPictures(Pictured(Noise(1700, 1300)), nullptr);
    std::vector<double> zooms;
    for (int i = 0; i < 12; ++i) {
        canvas.ZoomBy(1);
        zooms.push_back(canvas.Zoom());
    }
    EXPECT_THAT(zooms, testing::Contains(1.0));
    EXPECT_THAT(zooms, testing::Contains(2.0));
}

TEST_F(PictureCanvasTest, ADoubleClickChangesBetweenAllAndOneToOne) {
    canvas.ShowPictures(Pictured(Noise(2000, 1500)), nullptr);
    const double fitted = canvas.Zoom();
    const QPoint at(100, 70);
    const QPointF before = canvas.Place().ToPicture(QPointF(at) * Ratio());
    QTest::mouseDClick(&canvas, Qt::LeftButton, {}, at);
    EXPECT_EQ(canvas.Zoom(), 1);
    EXPECT_LT((canvas.Place().ToPicture(QPointF(at) * Ratio()) - before).manhattanLength(), 3);
    QTest::mouseDClick(&canvas, Qt::LeftButton, {}, at);
    EXPECT_EQ(canvas.Zoom(), fitted);
    EXPECT_TRUE(canvas.IsFitted());
}

TEST_F(PictureCanvasTest, ADragMovesThePictureAndKeysDo) {
    canvas.ShowPictures(Pictured(Noise(2000, 1500)), nullptr);
    canvas.ActualSize();
    const QPointF before = canvas.Place().origin;
    Drag({200, 150}, {170, 190});
    EXPECT_EQ(canvas.Place().origin, before + QPointF(-30, 40) * Ratio());
    QTest::keyClick(&canvas, Qt::Key_Left);
    EXPECT_GT(canvas.Place().origin.x(), before.x() - 30 * Ratio());
    const QPointF now = canvas.Place().origin;
    QTest::keyClick(&canvas, Qt::Key_Down);
    EXPECT_LT(canvas.Place().origin.y(), now.y());
    Drag({10, 10}, {390, 290});
    for (int i = 0; i < 20; ++i) Drag({10, 10}, {390, 290});
    EXPECT_LT(canvas.Place().origin.x(), kSize.width() * Ratio()) << "it cannot be lost";
}

TEST_F(PictureCanvasTest, AnotherPictureOfTheSizeComesToTheSamePlace) {
    canvas.ShowPictures(Pictured(Noise(2000, 1500)), nullptr);
    canvas.ActualSize();
    Drag({200, 150}, {100, 100});
    const ViewPlace place = canvas.Place();
    canvas.ShowPictures(Pictured(Noise(2000, 1500, 2)), nullptr);
    EXPECT_EQ(canvas.Place(), place);
    canvas.ShowPictures(Pictured(Noise(500, 500, 3)), nullptr);
    EXPECT_NE(canvas.Place(), place);
    EXPECT_EQ(canvas.Zoom(), 1);
}

TEST_F(PictureCanvasTest, ThePixelUnderThePointerIsTold) {
    canvas.ShowPictures(Pictured(Chart(100, 80, 7)), nullptr);
    EXPECT_FALSE(canvas.UnderPointer());
    canvas.ZoomBy(4);
    ASSERT_TRUE(test::HoverUntil(canvas, At({33, 44}), [&] { return canvas.UnderPointer().has_value(); }));
    EXPECT_EQ(canvas.UnderPointer()->pixel, QPoint(33, 44));
    EXPECT_EQ(canvas.UnderPointer()->first, qRgb(33, 44, 7));
    EXPECT_FALSE(canvas.UnderPointer()->second);
    canvas.Fit();
    ASSERT_TRUE(test::HoverUntil(canvas, {2, 2}, [&] { return !canvas.UnderPointer(); }))
        << "beside the picture";
    EXPECT_GT(told, 0);
}

TEST_F(PictureCanvasTest, TheWipeShowsOneAtTheLeftAndTheOtherAtTheRightOfItsLine) {
    const QImage one = Noise(380, 280, 1);
    const QImage other = Noise(380, 280, 2);
    canvas.ShowPictures(Pictured(one), Pictured(other));
    canvas.SetMode(Mode::kWipe);
    for (const double wipe : {0.5, 0.2, 0.9, 0.0, 1.0}) {
        canvas.SetWipe(wipe);
        const double line = wipe * kSize.width() * Ratio();
        ExpectSeen(
            [&](QPoint pixel) {
                const double x = canvas.Place().ToCanvas(pixel).x();
                return x < line ? one.pixel(pixel) : other.pixel(pixel);
            },
            one.rect());
    }
}

TEST_F(PictureCanvasTest, TheLineOfTheWipeIsDragged) {
    canvas.ShowPictures(Pictured(Noise(380, 280, 1)), Pictured(Noise(380, 280, 2)));
    canvas.SetMode(Mode::kWipe);
    const ViewPlace place = canvas.Place();
    Drag({200, 100}, {100, 120});
    EXPECT_NEAR(canvas.Wipe(), 0.25, 0.005);
    EXPECT_EQ(canvas.Place(), place) << "the picture has not moved";
    Drag({100, 100}, {-50, 100});
    EXPECT_EQ(canvas.Wipe(), 0);
    Drag({300, 100}, {310, 100});
    EXPECT_EQ(canvas.Wipe(), 0) << "away from the line it is the picture that is dragged";
}

TEST_F(PictureCanvasTest, OnlyTheStripBetweenTwoLinesIsPainted) {
    canvas.ShowPictures(Pictured(Noise(380, 280, 1)), Pictured(Noise(380, 280, 2)));
    canvas.SetMode(Mode::kWipe);
    test::HandleEvents();
    const int before = canvas.paints;
    canvas.SetWipe(0.55);
    ASSERT_TRUE(WaitUntil([&] { return canvas.paints > before; }));
    EXPECT_LE(canvas.painted.boundingRect().width(), 20 + 30);
    EXPECT_TRUE(canvas.painted.contains(QPoint(210, 5)));
    const QImage partly = Seen();
    canvas.update();
    EXPECT_EQ(Seen(), partly) << "and with that all is as it has to be";
}

TEST_F(PictureCanvasTest, TheToggleShowsOneOrTheOther) {
    const QImage one = Noise(380, 280, 1);
    const QImage other = Noise(380, 280, 2);
    canvas.ShowPictures(Pictured(one), Pictured(other));
    canvas.SetMode(Mode::kToggle);
    EXPECT_FALSE(canvas.ShowsSecond());
    ExpectSeen([&](QPoint pixel) { return one.pixel(pixel); }, one.rect());
    canvas.Flip();
    ExpectSeen([&](QPoint pixel) { return other.pixel(pixel); }, one.rect());
    canvas.Flip();
    ExpectSeen([&](QPoint pixel) { return one.pixel(pixel); }, one.rect());
}

TEST_F(PictureCanvasTest, TheDifferenceIsThatOfEachPixelTimesTheGain) {
    const QImage one = Noise(380, 280, 1);
    const QImage other = Noise(380, 280, 2);
    canvas.ShowPictures(Pictured(one), Pictured(other));
    canvas.SetMode(Mode::kDifference);
    for (const int gain : {1, 4}) {
        canvas.SetGain(gain);
        ExpectSeen(
            [&](QPoint pixel) {
                const QRgb a = one.pixel(pixel);
                const QRgb b = other.pixel(pixel);
                const auto apart = [gain](int c, int d) { return std::min(255, std::abs(c - d) * gain); };
                return qRgb(apart(qRed(a), qRed(b)), apart(qGreen(a), qGreen(b)), apart(qBlue(a), qBlue(b)));
            },
            one.rect());
    }
    ASSERT_NE(canvas.Differing(), nullptr);
    EXPECT_EQ(canvas.Differing()->greatest, 255);
    canvas.SetMode(Mode::kWipe);
    EXPECT_EQ(canvas.Differing(), nullptr);
}

TEST_F(PictureCanvasTest, OfDifferentSizesTheRestIsStriped) {
    const QImage small = Plain(100, 250, qRgb(200, 0, 0));
    const QImage large = Plain(300, 200, qRgb(0, 200, 0));
    canvas.ShowPictures(Pictured(small), Pictured(large));
    canvas.SetMode(Mode::kWipe);
    canvas.SetWipe(1);
    const QImage seen = Seen();
    const auto at = [&](QPoint pixel) {
        const QPointF place = canvas.Place().ToCanvas(pixel);
        return seen.pixel(static_cast<int>(place.x()), static_cast<int>(place.y()));
    };
    EXPECT_EQ(at({50, 150}), qRgb(200, 0, 0));
    std::set<QRgb> rest;
    for (int x = 150; x < 200; ++x) rest.insert(at({x, 150}));
    EXPECT_EQ(rest.size(), 2U) << "stripes where only the other one is";
    canvas.SetMode(Mode::kDifference);
    EXPECT_EQ(canvas.Differing()->common, QSize(100, 200));
    EXPECT_EQ(canvas.Differing()->all, QSize(300, 250));
}

TEST_F(PictureCanvasTest, ComparingNeedsTwo) {
    canvas.ShowPictures(Pictured(Noise(50, 50)), nullptr);
    for (const Mode mode : {Mode::kToggle, Mode::kWipe, Mode::kDifference}) {
        canvas.SetMode(mode);
        EXPECT_EQ(canvas.ModeShown(), Mode::kSingle);
        canvas.Flip();
        canvas.SetWipe(0.3);
        Seen();
    }
    canvas.ShowPictures(nullptr, nullptr);
    Seen();
    Wheel({10, 10}, 1);
    Drag({10, 10}, {50, 50});
    EXPECT_FALSE(canvas.UnderPointer());
}

TEST_F(PictureCanvasTest, ATroubleStandsOverThePicture) {
    canvas.ShowPictures(Pictured(Noise(380, 280)), nullptr);
    const auto* trouble = canvas.findChild<QLabel*>("trouble");
    EXPECT_FALSE(trouble->isVisible());
    canvas.SetTrouble("the renderer hangs <b>");
    EXPECT_TRUE(trouble->isVisible());
    EXPECT_EQ(trouble->textFormat(), Qt::PlainText);
    EXPECT_TRUE(canvas.rect().contains(trouble->geometry()));
    EXPECT_GE(trouble->height(), trouble->fontMetrics().height());
    canvas.SetTrouble({});
    EXPECT_FALSE(trouble->isVisible());
}

TEST_F(PictureCanvasTest, WhatGrowsIsSeenAsItComes) {
    const QImage image = Noise(380, 280);
    auto growing = std::make_shared<Picture>(image.size(), false);
    canvas.ShowPictures(growing, nullptr);
    for (const int rows : {100, 280}) {
        for (int y = 0; y < rows; ++y)
            std::copy_n(reinterpret_cast<const QRgb*>(image.constScanLine(y)), 380, growing->Row(y));
        growing->RowsAreThere(rows);
        canvas.PicturesChanged();
        ExpectSeen([&](QPoint pixel) { return image.pixel(pixel); }, QRect(0, 0, 380, rows));
    }
}

}  // namespace
}  // namespace tavrin
