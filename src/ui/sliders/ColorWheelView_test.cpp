// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorWheelView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDialog>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "ui/sliders/HandTest.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::DragTo;
using test::PressAt;
using test::ReleaseAt;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kSide = 200;
const QPointF kRight{181, 100};  // on the ring
const QPointF kBelow{100, 181};

class ColorWheelView : public testing::Test {
  protected:
    ColorWheelView() { Make(kSide); }
    void Make(int side) {
        wheel = std::make_unique<CColorWheel>(
            nullptr, side,
            CColorWheel::Hooks{.picked =
                                   [this](const Color& color) {
                                       picked = color;
                                       told.emplace_back("color");
                                       if (goesWhenPicked) wheel.reset();
                                   },
                               .dragged =
                                   [this](bool begins) {
                                       told.emplace_back(begins ? "begin" : "end");
                                       if (goesWhenDragged == told.back()) wheel.reset();
                                   }});
    }

    std::vector<std::string> told;
    Color picked;
    bool goesWhenPicked = false;
    std::string goesWhenDragged;  // "begin" or "end"
    std::unique_ptr<CColorWheel> wheel;
};

TEST_F(ColorWheelView, APressTellsThatADragBeginsAndThenTheColor) {
    PressAt(*wheel, kRight);
    EXPECT_THAT(told, ElementsAre("begin", "color"));
    EXPECT_NEAR(picked.r, 0.5F, 1e-5F);
    EXPECT_NEAR(picked.g, 1, 1e-5F);
    EXPECT_NEAR(picked.b, 0, 1e-5F);
}

TEST_F(ColorWheelView, EachMoveTellsAColorAndTheReleaseTheEnd) {
    PressAt(*wheel, kRight);
    DragTo(*wheel, kBelow);
    DragTo(*wheel, {100, 5000});  // the same direction
    DragTo(*wheel, {-3000, 100});
    ReleaseAt(*wheel, {-3000, 100});
    EXPECT_THAT(told, ElementsAre("begin", "color", "color", "color", "end"));
    EXPECT_NEAR(picked.b, 1, 1e-5F);
}

TEST_F(ColorWheelView, APressThatMovesNothingIsADragWithoutAColor) {
    const WheelPoint pure = wheel->Wheel().PureCorner();
    PressAt(*wheel, {pure.x, pure.y});
    ReleaseAt(*wheel, {pure.x, pure.y});
    EXPECT_THAT(told, ElementsAre("begin", "end"));
}

TEST_F(ColorWheelView, PlacesBetweenPixelsCount) {
    PressAt(*wheel, {110.25, 95.75});
    EXPECT_EQ(wheel->Wheel().TriangleMarker(), (WheelPoint{110.25, 95.75}));
}

TEST_F(ColorWheelView, OtherButtonsDoNothing) {
    PressAt(*wheel, kRight, Qt::RightButton);
    DragTo(*wheel, kBelow, Qt::RightButton);
    ReleaseAt(*wheel, kBelow, Qt::RightButton);
    DragTo(*wheel, kRight, Qt::NoButton);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(wheel->Wheel().Hue(), 0);
}

TEST_F(ColorWheelView, TheReleaseOfAnotherButtonEndsNoDrag) {
    PressAt(*wheel, kRight);
    told.clear();
    ReleaseAt(*wheel, kRight, Qt::RightButton);
    EXPECT_THAT(told, IsEmpty());
    DragTo(*wheel, kBelow);
    EXPECT_THAT(told, ElementsAre("color"));
}

TEST_F(ColorWheelView, AMoveWithoutTheButtonEndsADragWhoseEndWasNotTold) {
    PressAt(*wheel, kRight);
    told.clear();
    DragTo(*wheel, kBelow, Qt::NoButton);
    EXPECT_THAT(told, ElementsAre("end"));
    EXPECT_NEAR(wheel->Wheel().Hue(), kWholeTurn / 4, 1e-6);
}

TEST_F(ColorWheelView, ASecondPressInADragIsNoSecondBegin) {
    PressAt(*wheel, kRight);
    PressAt(*wheel, kBelow);
    ReleaseAt(*wheel, kBelow);
    ReleaseAt(*wheel, kBelow);
    EXPECT_THAT(told, ElementsAre("begin", "color", "color", "end"));
}

TEST_F(ColorWheelView, HidingEndsTheDrag) {
    test::ShowActive(*wheel);
    PressAt(*wheel, kRight);
    wheel->hide();
    EXPECT_THAT(told, ElementsAre("begin", "color", "end"));
    ReleaseAt(*wheel, kRight);
    EXPECT_EQ(told.size(), 3U);
}

TEST_F(ColorWheelView, DisablingEndsTheDragAndNothingIsTakenUntilItIsEnabled) {
    PressAt(*wheel, kRight);
    told.clear();
    wheel->setEnabled(false);
    EXPECT_THAT(told, ElementsAre("end"));
    DragTo(*wheel, kBelow);
    ReleaseAt(*wheel, kBelow);
    PressAt(*wheel, kBelow);
    EXPECT_EQ(told.size(), 1U);
    wheel->setEnabled(true);
    PressAt(*wheel, kBelow);
    EXPECT_THAT(told, ElementsAre("end", "begin", "color"));
}

TEST_F(ColorWheelView, ABoxThatTakesTheMouseEndsTheDrag) {
    test::ShowActive(*wheel);
    PressAt(*wheel, kRight);
    QDialog box;
    test::WhenDialogComes([this](QDialog& dialog) {
        EXPECT_THAT(told, ElementsAre("begin", "color", "end"));
        dialog.reject();
    });
    box.exec();
}

TEST_F(ColorWheelView, DestroyedInADragItTellsTheEndOnce) {
    PressAt(*wheel, kRight);
    wheel.reset();
    EXPECT_THAT(told, ElementsAre("begin", "color", "end"));
}

TEST_F(ColorWheelView, DestroyedWithoutADragItTellsNothing) {
    PressAt(*wheel, kRight);
    ReleaseAt(*wheel, kRight);
    told.clear();
    wheel.reset();
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ColorWheelView, TheOneThatHearsAColorMayDestroyIt) {
    goesWhenPicked = true;
    PressAt(*wheel, kRight);
    EXPECT_EQ(wheel, nullptr);
    EXPECT_THAT(told, ElementsAre("begin", "color", "end"));
}

TEST_F(ColorWheelView, TheOneThatHearsOfTheDragMayDestroyIt) {
    goesWhenDragged = "begin";
    PressAt(*wheel, kRight);
    EXPECT_EQ(wheel, nullptr);
    EXPECT_THAT(told, ElementsAre("begin", "end"));
    told.clear();
    Make(kSide);
    goesWhenDragged = "end";
    PressAt(*wheel, kRight);
    ReleaseAt(*wheel, kRight);
    EXPECT_EQ(wheel, nullptr);
    EXPECT_THAT(told, ElementsAre("begin", "color", "end"));
}

TEST_F(ColorWheelView, WhatTheProgramSetsIsToldToNobody) {
    wheel->SetColor({0, 0, 1});
    EXPECT_NEAR(wheel->Wheel().Hue(), kWholeTurn * 2 / 3, 1e-6);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ColorWheelView, TakesNoFocus) { EXPECT_EQ(wheel->focusPolicy(), Qt::NoFocus); }

// What is seen

class ColorWheelPicture : public ColorWheelView {
  protected:
    void Look() { picture = wheel->grabFramebuffer().convertToFormat(QImage::Format_ARGB32); }
    QColor At(double x, double y) const {
        const double ratio = double(picture.width()) / wheel->width();
        return picture.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    }
    QImage picture;
};

void ExpectSeen(const QColor& seen, const Color& color, float tolerance = 0.02F) {
    EXPECT_NEAR(seen.redF(), color.r, tolerance);
    EXPECT_NEAR(seen.greenF(), color.g, tolerance);
    EXPECT_NEAR(seen.blueF(), color.b, tolerance);
}

constexpr double kPastMarkers = 0.4 * kWholeTurn;  // a hue whose marker is none of the clock's quarters

TEST_F(ColorWheelPicture, TheRingIsRedAtTwelveAndGoesRoundClockwise) {
    // A raster position that is counted as outside would lose the ring for some of the sizes.
    for (const int side : {97, 151, 199, 200, 201, 233, 318}) {
        Make(side);
        wheel->SetColor(PureColor(kPastMarkers));
        Look();
        const double middle = side / 2.0;
        const double radius = 0.405 * side;
        ExpectSeen(At(middle, middle - radius), {1, 0, 0}, 0.04F);
        ExpectSeen(At(middle + radius, middle), {0.5F, 1, 0}, 0.04F);
        ExpectSeen(At(middle, middle + radius), {0, 1, 1}, 0.04F);
        ExpectSeen(At(middle - radius, middle), {0.5F, 0, 1}, 0.04F);
    }
}

TEST_F(ColorWheelPicture, EveryPlaceOfTheRingShowsTheHueThatAPressThereGives) {
    wheel->SetColor(PureColor(0));
    Look();
    for (int degree = 20; degree <= 340; degree += 5) {
        const double angle = degree * kWholeTurn / 360;
        const WheelPoint at{std::floor(100 + std::sin(angle) * 81) + 0.5,
                            std::floor(100 - std::cos(angle) * 81) + 0.5};
        ColorWheel pressed(kSide);
        pressed.Press(at);
        ExpectSeen(At(at.x, at.y), pressed.HueColor(), 0.03F);
    }
}

TEST_F(ColorWheelPicture, EveryPlaceOfTheTriangleShowsTheColorThatAPressThereGives) {
    const Color pure = PureColor(kPastMarkers);
    wheel->SetColor(pure);
    Look();
    int places = 0;
    for (double x = 74.5; x < 145; x += 5) {
        for (double y = 52.5; y < 148; y += 5) {
            const double room = (wheel->Wheel().PureCorner().x - x) * 0.577 - std::abs(y - 100);
            if (room < 4) continue;
            ColorWheel pressed(kSide);
            pressed.SetColor(pure);
            pressed.Press({x, y});
            ExpectSeen(At(x, y), pressed.MarkerColor());
            ++places;
        }
    }
    EXPECT_GT(places, 100);
}

TEST_F(ColorWheelPicture, AtTheTrianglesCornersAreTheHueWhiteAndBlack) {
    wheel->SetColor({0.5F, 0.25F, 0.25F});  // the marker is away from them
    Look();
    const ColorWheel& shape = wheel->Wheel();
    const auto inside = [&](WheelPoint corner) {
        return At(corner.x + (100 - corner.x) * 0.14, corner.y + (100 - corner.y) * 0.14);
    };
    ExpectSeen(inside(shape.PureCorner()), {0.95F, 0.05F, 0.05F}, 0.06F);
    ExpectSeen(inside(shape.WhiteCorner()), {0.95F, 0.9F, 0.9F}, 0.06F);
    ExpectSeen(inside(shape.BlackCorner()), {0.1F, 0.05F, 0.05F}, 0.06F);
}

TEST_F(ColorWheelPicture, AMarkerIsAWhiteRingBetweenGreyOnesAndShowsWhatIsUnderIt) {
    PressAt(*wheel, {100.5, 100.5});
    Look();
    ExpectSeen(At(100.5, 100.5), wheel->Wheel().MarkerColor());
    ExpectSeen(At(107.5, 100.5), {1, 1, 1});
    ExpectSeen(At(100.5, 93.5), {1, 1, 1});
    ExpectSeen(At(110.5, 100.5), {0.3F, 0.3F, 0.3F});
    ExpectSeen(At(104.5, 100.5), {0.3F, 0.3F, 0.3F});
    PressAt(*wheel, {181.5, 100});
    Look();
    ExpectSeen(At(181.5 - 7, 100), {1, 1, 1}, 0.1F);
    ExpectSeen(At(100.5, 19), {1, 0, 0}, 0.04F);  // there it was before
}

TEST_F(ColorWheelPicture, TheTriangleHasALightEdgeWithinADarkerOne) {
    wheel->SetColor({0, 0, 0});
    Look();
    const double left = wheel->Wheel().BlackCorner().x - 1;
    const auto lightness = [&](double x) { return At(x, 100).lightnessF(); };
    const float brightest = std::max({lightness(left - 0.75), lightness(left), lightness(left + 0.5)});
    EXPECT_GT(brightest, 0.65F);
    EXPECT_NEAR(lightness(left - 1.25), 0.4F, 0.35F);
    EXPECT_NE(At(left - 1.25, 100), At(5, 5));
}

TEST_F(ColorWheelPicture, StandsOnThePalettesGround) {
    for (const QColor& ground : {QColor(240, 240, 240), QColor(37, 38, 40)}) {
        QPalette palette;
        palette.setColor(QPalette::Window, ground);
        wheel->setPalette(palette);
        Look();
        EXPECT_EQ(At(3, 3), ground);
        EXPECT_EQ(At(196, 196), ground);
        EXPECT_EQ(At(100, 38), ground);  // between ring and triangle
    }
}

TEST_F(ColorWheelPicture, ADisabledWheelIsDimmed) {
    wheel->SetColor({0, 0, 0});
    Look();
    const QColor enabled = At(157, 157);
    wheel->setEnabled(false);
    Look();
    const QColor ground = At(3, 3);
    const QColor disabled = At(157, 157);
    const auto apart = [&](const QColor& color) {
        return std::abs(color.red() - ground.red()) + std::abs(color.green() - ground.green()) +
               std::abs(color.blue() - ground.blue());
    };
    EXPECT_LT(apart(disabled), apart(enabled) / 2);
    EXPECT_GT(apart(disabled), 0);
}

TEST_F(ColorWheelPicture, ItIsPaintedAnewWhenTheHandMovesAMarker) {
    test::ShowActive(*wheel);
    const auto seen = [&](QPoint at) {
        const QImage screen = test::SeenOnScreen(*wheel);
        const double ratio = double(screen.width()) / wheel->width();
        return screen.pixelColor(static_cast<int>(at.x() * ratio), static_cast<int>(at.y() * ratio));
    };
    PressAt(*wheel, {181, 100});
    const Color green = PureColor(kWholeTurn / 4);
    EXPECT_TRUE(test::WaitUntil([&] {
        const QColor tip = seen({138, 98});
        return std::abs(tip.greenF() - green.g) < 0.15F && std::abs(tip.blueF() - green.b) < 0.15F;
    }));
    ReleaseAt(*wheel, {181, 100});
}

}  // namespace
}  // namespace tavrin
