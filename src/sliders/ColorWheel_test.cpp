// SPDX-License-Identifier: Apache-2.0
#include "sliders/ColorWheel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace tavrin {
namespace {

using Part = ColorWheel::Part;

constexpr double kSize = 200;
constexpr double kMiddle = 100;
// The constants that the wheel is computed with have nine digits.
constexpr double kNear = 1e-5;

class ColorWheelTest : public testing::Test {
  protected:
    ColorWheel wheel{kSize};
};

void ExpectAt(WheelPoint found, WheelPoint expected, double tolerance = kNear) {
    EXPECT_NEAR(found.x, expected.x, tolerance);
    EXPECT_NEAR(found.y, expected.y, tolerance);
}

void ExpectColor(const Color& found, const Color& expected, float tolerance = 1e-5F) {
    EXPECT_NEAR(found.r, expected.r, tolerance);
    EXPECT_NEAR(found.g, expected.g, tolerance);
    EXPECT_NEAR(found.b, expected.b, tolerance);
}

WheelPoint Between(WheelPoint one, WheelPoint other) {
    return {(one.x + other.x) / 2, (one.y + other.y) / 2};
}

// How far a point is outside the triangle, in pixels, told of its sides.
double Outside(const ColorWheel& wheel, WheelPoint at) {
    const double tan30 = 1 / std::numbers::sqrt3;
    const double beyondSlope = std::abs(at.y - wheel.PureCorner().y) - (wheel.PureCorner().x - at.x) * tan30;
    return std::max(wheel.BlackCorner().x - at.x, beyondSlope);
}

using ColorWheelShape = ColorWheelTest;

TEST_F(ColorWheelShape, TheTriangleStandsOnItsTipWithThePureHueAtTheRight) {
    const double radius = 0.31 * kSize;
    ExpectAt(wheel.PureCorner(), {kMiddle + radius, kMiddle});
    ExpectAt(wheel.WhiteCorner(), {kMiddle - 0.5 * radius, kMiddle - radius * std::numbers::sqrt3 / 2});
    ExpectAt(wheel.BlackCorner(), {kMiddle - 0.5 * radius, kMiddle + radius * std::numbers::sqrt3 / 2});
}

TEST_F(ColorWheelShape, AtFirstItShowsPureRed) {
    EXPECT_EQ(wheel.Hue(), 0);
    EXPECT_EQ(wheel.TriangleMarker(), wheel.PureCorner());
    EXPECT_EQ(wheel.MarkerColor(), (Color{1, 0, 0}));
    EXPECT_EQ(wheel.Held(), Part::kNone);
}

TEST_F(ColorWheelShape, TheMarkerOfTheHueStandsInTheMiddleOfTheRing) {
    ExpectAt(wheel.RingMarker(), {kMiddle, kMiddle - 0.405 * kSize});
    EXPECT_NEAR(wheel.MarkerScale(), 6.5 * 0.12 * kSize, 1e-9);
}

TEST(HueOfDirection, IsZeroUpwardAndRisesClockwise) {
    constexpr double kDegree = std::numbers::pi / 180;
    EXPECT_NEAR(HueOfDirection(0.01, -100), 0, 2e-4);
    EXPECT_NEAR(HueOfDirection(1, -1), 45 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(1, 0), 90 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(1, 1), 135 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(0, 1), 180 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(-1, 1), 225 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(-1, 0), 270 * kDegree, 1e-6);
    EXPECT_NEAR(HueOfDirection(-1, -1), 315 * kDegree, 1e-6);
}

TEST(HueOfDirection, StraightUpIsOneWholeTurn) { EXPECT_EQ(HueOfDirection(0, -1), kWholeTurn); }

TEST(HueOfDirection, NoDirectionIsToTheLeft) { EXPECT_EQ(HueOfDirection(0, 0), 4.712388975); }

using ColorWheelHand = ColorWheelTest;

TEST_F(ColorWheelHand, APressOutsideTheInnerRadiusTakesTheRing) {
    const double radius = 0.345 * kSize;
    wheel.Press({kMiddle, kMiddle + radius + 0.01});
    EXPECT_EQ(wheel.Held(), Part::kRing);
    wheel.Release();
    EXPECT_EQ(wheel.Held(), Part::kNone);
    wheel.Press({kMiddle, kMiddle + radius - 0.01});
    EXPECT_EQ(wheel.Held(), Part::kTriangle);
}

TEST_F(ColorWheelHand, APressInACornerOfTheWindowCountsAsTheRing) {
    for (const auto& [corner, eighths] : {std::pair{WheelPoint{kSize, 0}, 1},
                                          {WheelPoint{kSize, kSize}, 3},
                                          {WheelPoint{0, kSize}, 5},
                                          {WheelPoint{0, 0}, 7}}) {
        wheel.Press(corner);
        EXPECT_EQ(wheel.Held(), Part::kRing);
        EXPECT_NEAR(wheel.Hue(), eighths * std::numbers::pi / 4, 1e-6);
        EXPECT_EQ(wheel.TriangleMarker(), wheel.PureCorner());
        wheel.Release();
    }
}

TEST_F(ColorWheelHand, APressOnTheRingTurnsTheHueAtOnce) {
    EXPECT_TRUE(wheel.Press({kMiddle + 81, kMiddle}));
    EXPECT_NEAR(wheel.Hue(), std::numbers::pi / 2, 1e-6);
    ExpectAt(wheel.RingMarker(), {kMiddle + 81, kMiddle});
}

TEST_F(ColorWheelHand, ADragOutOfTheWindowOnTheRingKeepsTrackingTheAngle) {
    wheel.Press({kMiddle + 81, kMiddle});
    EXPECT_TRUE(wheel.Drag({kMiddle, kMiddle + 5000}));
    EXPECT_NEAR(wheel.Hue(), std::numbers::pi, 1e-6);
    EXPECT_TRUE(wheel.Drag({kMiddle - 3000, kMiddle}));
    EXPECT_NEAR(wheel.Hue(), std::numbers::pi * 1.5, 1e-6);
}

TEST_F(ColorWheelHand, ADragOfTheRingThroughTheTriangleStaysOneOfTheRing) {
    wheel.Press({kMiddle + 81, kMiddle});
    EXPECT_TRUE(wheel.Drag({kMiddle, kMiddle + 1}));
    EXPECT_NEAR(wheel.Hue(), std::numbers::pi, 1e-6);
    EXPECT_EQ(wheel.TriangleMarker(), wheel.PureCorner());
}

TEST_F(ColorWheelHand, APressInTheTriangleBringsItsMarkerThere) {
    EXPECT_TRUE(wheel.Press({kMiddle + 3, kMiddle - 7}));
    EXPECT_EQ(wheel.TriangleMarker(), (WheelPoint{kMiddle + 3, kMiddle - 7}));
    EXPECT_EQ(wheel.Hue(), 0);
}

TEST_F(ColorWheelHand, CornersAndEdgesOfTheTriangleBelongToIt) {
    const WheelPoint pure = wheel.PureCorner();
    const WheelPoint white = wheel.WhiteCorner();
    const WheelPoint black = wheel.BlackCorner();
    for (const WheelPoint at : {pure, white, black, Between(pure, white), Between(white, black),
                                Between(black, pure), wheel.Centre()}) {
        wheel.Press(at);
        ExpectAt(wheel.TriangleMarker(), at);
    }
}

TEST_F(ColorWheelHand, ADragOutOfTheTriangleSlidesAlongItsEdge) {
    const double left = wheel.BlackCorner().x;
    const double radius = 0.31 * kSize;
    wheel.Press(wheel.Centre());
    // On rays from the centre: through the middles of the edges, through the corners, and level with them.
    const struct {
        WheelPoint to, found;
    } kRows[] = {
        {{-500, kMiddle}, {left, kMiddle}},
        {{500, kMiddle}, wheel.PureCorner()},
        {{left - 60, kMiddle + 60 + radius / 2}, {left, kMiddle + radius / 2}},
        {{kMiddle, -900}, {kMiddle, kMiddle - radius / std::numbers::sqrt3}},
        {{kMiddle, 900}, {kMiddle, kMiddle + radius / std::numbers::sqrt3}},
        {{kMiddle + 500, kMiddle - 500 * std::numbers::sqrt3},
         {kMiddle + radius / 4, kMiddle - radius * std::numbers::sqrt3 / 4}},
        {{kMiddle + 500, kMiddle + 500 * std::numbers::sqrt3},
         {kMiddle + radius / 4, kMiddle + radius * std::numbers::sqrt3 / 4}},
        {{kMiddle - 500, kMiddle - 500 * std::numbers::sqrt3}, wheel.WhiteCorner()},
        {{kMiddle - 500, kMiddle + 500 * std::numbers::sqrt3}, wheel.BlackCorner()},
    };
    for (const auto& row : kRows) {
        wheel.Drag(row.to);
        ExpectAt(wheel.TriangleMarker(), row.found, 1e-4);
    }
}

TEST_F(ColorWheelHand, WhereverTheHandGoesTheMarkerStaysInTheTriangleOnTheRayToIt) {
    wheel.Press(wheel.Centre());
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-300, 500);
    for (int i = 0; i < 10'000; ++i) {
        const WheelPoint to{place(random), place(random)};
        wheel.Drag(to);
        const WheelPoint at = wheel.TriangleMarker();
        EXPECT_LT(Outside(wheel, at), kNear);
        const double dx = to.x - kMiddle;
        const double dy = to.y - kMiddle;
        const double cross = (at.x - kMiddle) * dy - (at.y - kMiddle) * dx;
        EXPECT_LT(std::abs(cross) / std::hypot(dx, dy), kNear);
        EXPECT_GE((at.x - kMiddle) * dx + (at.y - kMiddle) * dy, 0);
    }
}

TEST_F(ColorWheelHand, WhatMovesNoMarkerIsNoMove) {
    EXPECT_FALSE(wheel.Press(wheel.PureCorner()));
    EXPECT_FALSE(wheel.Drag({kMiddle + 500, kMiddle}));
    EXPECT_TRUE(wheel.Drag({kMiddle, kMiddle}));
    EXPECT_FALSE(wheel.Drag({kMiddle, kMiddle}));
}

TEST_F(ColorWheelHand, WithNothingInHandTheHandTakesWhatItComesTo) {
    // Between the ring and the triangle's edge.
    EXPECT_FALSE(wheel.Drag({kMiddle, kMiddle - 60}));
    EXPECT_EQ(wheel.Held(), Part::kNone);
    EXPECT_TRUE(wheel.Drag({kMiddle, kMiddle}));
    EXPECT_EQ(wheel.Held(), Part::kTriangle);
    wheel.Release();
    EXPECT_TRUE(wheel.Drag({kMiddle + 81, kMiddle}));
    EXPECT_EQ(wheel.Held(), Part::kRing);
}

TEST_F(ColorWheelHand, APressBetweenRingAndTriangleIsOneOfTheTriangle) {
    wheel.Press({kMiddle, kMiddle - 60});
    EXPECT_EQ(wheel.Held(), Part::kTriangle);
    ExpectAt(wheel.TriangleMarker(), {kMiddle, kMiddle - 0.31 * kSize / std::numbers::sqrt3});
}

using ColorWheelColor = ColorWheelTest;

TEST_F(ColorWheelColor, AtTheCornersItIsTheHueWhiteAndBlack) {
    wheel.Press({kMiddle + 81, kMiddle});
    ExpectColor(wheel.MarkerColor(), {0.5F, 1, 0});
    wheel.Press(wheel.WhiteCorner());
    ExpectColor(wheel.MarkerColor(), {1, 1, 1});
    wheel.Press(wheel.BlackCorner());
    ExpectColor(wheel.MarkerColor(), {0, 0, 0});
}

TEST_F(ColorWheelColor, OnTheEdgesItIsTheMiddleOfTheirEnds) {
    wheel.Press(Between(wheel.PureCorner(), wheel.WhiteCorner()));
    ExpectColor(wheel.MarkerColor(), {1, 0.5F, 0.5F});
    wheel.Press(Between(wheel.PureCorner(), wheel.BlackCorner()));
    ExpectColor(wheel.MarkerColor(), {0.5F, 0, 0});
    wheel.Press(Between(wheel.WhiteCorner(), wheel.BlackCorner()));
    ExpectColor(wheel.MarkerColor(), {0.5F, 0.5F, 0.5F});
    wheel.Press(wheel.Centre());
    ExpectColor(wheel.MarkerColor(), {2 / 3.0F, 1 / 3.0F, 1 / 3.0F});
}

TEST_F(ColorWheelColor, PureRedIsOnTopOfTheRingAndAtTheTriangleTip) {
    wheel.SetColor({0, 0.25F, 1});
    wheel.SetColor({1, 0, 0});
    EXPECT_EQ(wheel.Hue(), 0);
    ExpectAt(wheel.RingMarker(), {kMiddle, kMiddle - 0.405 * kSize});
    ExpectAt(wheel.TriangleMarker(), wheel.PureCorner());
}

TEST_F(ColorWheelColor, AGreyLeavesTheHueAndStandsOnTheLeftEdge) {
    wheel.SetColor({0, 0, 1});
    const double blue = wheel.Hue();
    wheel.SetColor({0.5F, 0.5F, 0.5F});
    EXPECT_EQ(wheel.Hue(), blue);
    ExpectAt(wheel.TriangleMarker(), {wheel.BlackCorner().x, kMiddle});
    wheel.SetColor({0, 0, 0});
    ExpectAt(wheel.TriangleMarker(), wheel.BlackCorner());
    wheel.SetColor({1, 1, 1});
    ExpectAt(wheel.TriangleMarker(), wheel.WhiteCorner());
    EXPECT_EQ(wheel.Hue(), blue);
}

TEST_F(ColorWheelColor, TintsAndShadesStandOnTheEdges) {
    wheel.SetColor({0.5F, 0, 0});
    ExpectAt(wheel.TriangleMarker(), Between(wheel.PureCorner(), wheel.BlackCorner()), 1e-4);
    wheel.SetColor({0.5F, 0.5F, 1});
    ExpectAt(wheel.TriangleMarker(), Between(wheel.PureCorner(), wheel.WhiteCorner()), 1e-4);
    EXPECT_NEAR(wheel.Hue(), kWholeTurn * 2 / 3, 1e-6);
}

// To a few roundings of 32 bits, and to the nine digits of the constants, that hue and place go through.
TEST_F(ColorWheelColor, WhatIsSetIsWhatTheMarkersShow) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> thousandths(0, 1000);
    const auto share = [&] { return static_cast<float>(thousandths(random)) / 1000; };
    for (int i = 0; i < 20'000; ++i) {
        const Color color{share(), share(), share()};
        wheel.SetColor(color);
        ExpectColor(wheel.MarkerColor(), color, 1e-6F);
    }
    for (const float one : {0.0F, 0.001F, 0.5F, 0.999F, 1.0F}) {
        for (const float other : {0.0F, 0.001F, 0.5F, 0.999F, 1.0F}) {
            for (const float third : {0.0F, 0.001F, 0.5F, 0.999F, 1.0F}) {
                wheel.SetColor({one, other, third});
                ExpectColor(wheel.MarkerColor(), {one, other, third}, 1e-6F);
            }
        }
    }
}

// Near grey and near black, thousandths of the components are too coarse to tell a hue.
TEST_F(ColorWheelColor, TheColorThatTheMarkersShowRoundedLeavesThemWhereTheHandPutThem) {
    wheel.Press({kMiddle + 70, kMiddle + 40});
    wheel.Release();
    const double hue = wheel.Hue();
    const WheelPoint dark{wheel.BlackCorner().x + 0.4, wheel.BlackCorner().y - 1};
    wheel.Press(dark);
    wheel.SetColor(Rounded(wheel.MarkerColor()));
    EXPECT_EQ(wheel.Hue(), hue);
    EXPECT_EQ(wheel.TriangleMarker(), dark);
}

TEST_F(ColorWheelColor, ColorsOutsideTheCubeComeToTheTrianglesEdge) {
    for (const Color& color : {Color{2, 0, 0}, Color{2, 1.5F, 0.5F}, Color{-1, 0.5F, 0.25F}, Color{3, 3, 3},
                               Color{-1, -1, -1}, Color{1e6F, 0, 1e5F}}) {
        wheel.SetColor(color);
        EXPECT_LT(Outside(wheel, wheel.TriangleMarker()), kNear) << color.r << " " << color.g;
        EXPECT_TRUE(wheel.Hue() >= 0 && wheel.Hue() <= kWholeTurn);
    }
}

TEST_F(ColorWheelColor, WhatIsNoColorMovesNothing) {
    wheel.SetColor({0.25F, 0.5F, 0.75F});
    const double hue = wheel.Hue();
    const WheelPoint point = wheel.TriangleMarker();
    wheel.SetColor({std::numeric_limits<float>::quiet_NaN(), 0, 0});
    wheel.SetColor({0, std::numeric_limits<float>::infinity(), 0});
    wheel.SetColor({0, 0.5F, -1e30F});
    EXPECT_EQ(wheel.Hue(), hue);
    EXPECT_EQ(wheel.TriangleMarker(), point);
}

}  // namespace
}  // namespace tavrin
