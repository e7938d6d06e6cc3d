// SPDX-License-Identifier: Apache-2.0
// That shapes which wait to be drawn come out in the order in which they were told, by the pixels.
#include "ui/desk/DrawLayers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "ui/desk/DeskPenTest.h"

namespace tavrin {
namespace {

using namespace test;

class DrawLayers : public test::DeskPenTest {
  protected:
    // As the layers give it, against what comes of the shapes one by one.
    QImage ExpectInOrder(const Drawing& draw, const std::string& what = "") {
        return ExpectLikePlain(m_pen, draw, what);
    }

    BatchedPen m_pen{view, fonts};
};

// A face, a text, a line and a polygon, all through the middle of a rectangle.
void Everything(DeskPen& pen, const DeskRect& rect, const Rgb& color) {
    pen.Bevel(rect, color);
    pen.LabelAt("MMMM", color, {rect.left, rect.Middle().y});
    const Rgb dark{color.r / 2, color.g / 2, color.b / 2};
    pen.Line(std::array{DeskPoint{rect.left, rect.bottom}, DeskPoint{rect.Right(), rect.Top()}}, {dark, 3});
    pen.Polygon(DeskRect{rect.Middle().x, rect.Middle().y, 6, 6}.Corners(), dark);
}

TEST_F(DrawLayers, ObjectsThatOverlapLieAsTheyWereToldInEveryOrder) {
    const std::array rects{DeskRect{10, 10, 60, 40}, DeskRect{40, 30, 60, 40}, DeskRect{20, 35, 60, 40},
                           DeskRect{120, 40, 40, 40}};
    const std::array colors{kRed, kGreenInk, kBlue, kBlack};
    std::array<size_t, 4> order{0, 1, 2, 3};
    do {
        ExpectInOrder([&](DeskPen& pen) {
            for (const size_t i : order) {
                pen.BeginObject(rects[i]);
                Everything(pen, rects[i], colors[i]);
            }
            pen.EndObjects();
        });
    } while (std::next_permutation(order.begin(), order.end()));
}

// Cells of the search are 64 pixels large.
TEST_F(DrawLayers, ALargeObjectLiesBetweenSmallOnesWhereverItBegins) {
    ExpectInOrder([](DeskPen& pen) {
        const auto put = [&pen](const DeskRect& rect, const Rgb& color) {
            pen.BeginObject(rect);
            Everything(pen, rect, color);
        };
        put({150, 90, 20, 20}, kRed);
        put({-500, -500, 1000, 1000}, kGreenInk);
        put({5, 5, 30, 30}, kBlue);
        put({150, 85, 20, 20}, kBlack);
        pen.EndObjects();
    });
}

TEST_F(DrawLayers, MoreObjectsOnOneSpotThanAreToldApartLieInOrder) {
    ExpectInOrder([](DeskPen& pen) {
        for (int i = 0; i < 300; ++i) {
            const DeskRect rect{static_cast<float>(i % 7) * 9, static_cast<float>(i % 11) * 5, 50, 30};
            pen.BeginObject(rect);
            Everything(pen, rect, {static_cast<float>(i % 5) / 5, static_cast<float>(i % 3) / 3, 1});
        }
        pen.EndObjects();
    });
}

TEST_F(DrawLayers, AnObjectIsNotForgottenForManySmallOnesBesideIt) {
    const QImage picture = ExpectInOrder([](DeskPen& pen) {
        pen.BeginObject({0, 0, 20, 20});
        Everything(pen, {0, 0, 20, 20}, kRed);
        for (int i = 0; i < 200; ++i) {
            const DeskRect dot{30 + static_cast<float>(i % 14) * 2, static_cast<float>(i / 14) * 2, 1, 1};
            pen.BeginObject(dot);
            pen.Fill(dot, kBlue);
        }
        pen.BeginObject({0, 0, 20, 20});
        pen.Fill({0, 0, 20, 20}, kGreenInk);
        pen.EndObjects();
    });
    EXPECT_EQ(Count(picture, kGreenInk), 400);
    EXPECT_EQ(Count(picture, kBlue), 200);
}

TEST_F(DrawLayers, MarksOfAnObjectLieOverItsNeighbour) {
    const QImage picture = ExpectInOrder([](DeskPen& pen) {
        pen.BeginObject({10, 10, 60, 40});
        pen.Fill({10, 10, 50, 40}, kGreenInk);
        pen.BeginObject({50, 10, 60, 40});
        pen.Fill({70, 10, 40, 40}, kBlue);
        pen.Line(std::array{DeskPoint{52, 20}, DeskPoint{58, 26}}, {kBlack, 2});
        pen.Polygon(DeskRect{54, 34, 5, 5}.Corners(), kRed);
        pen.EndObjects();
    });
    EXPECT_EQ(At(picture, 56, 36), qRgb(255, 0, 0));
    EXPECT_EQ(At(picture, 30, 30), qRgb(0, 255, 0));
}

TEST_F(DrawLayers, OutsideObjectsEachShapeLiesOverTheOnesBefore) {
    ExpectInOrder([](DeskPen& pen) {
        const DeskRect rect{20, 20, 80, 40};
        const auto line = [&](const Rgb& color) {
            pen.Line(std::array{DeskPoint{20, 22}, DeskPoint{100, 38}}, {color, 5});
        };
        line(kRed);
        pen.LabelAt("text over a line", kBlack, {25, 25});
        line(kBlue);
        pen.LabelAt("and over another", kGreenInk, {30, 28});
        pen.Polygon(rect.GrownBy(-15).Corners(), kRed);
        pen.Fill(rect.GrownBy(-17), kGreenInk);
        line(kBlack);
    });
}

TEST_F(DrawLayers, ShapesAfterObjectsLieOverAllOfThem) {
    ExpectInOrder([](DeskPen& pen) {
        pen.Line(std::array{DeskPoint{0, 0}, DeskPoint{150, 100}}, {kRed, 4});
        for (const float x : {10.0F, 50.0F, 30.0F}) {
            pen.BeginObject({x, 20, 60, 40});
            Everything(pen, {x, 20, 60, 40}, kGreenInk);
        }
        pen.EndObjects();
        pen.Line(std::array{DeskPoint{0, 60}, DeskPoint{150, 10}}, {kBlue, 4});
        pen.Fill({60, 30, 10, 10}, kBlack);
        pen.BeginObject({65, 35, 20, 20});
        Everything(pen, {65, 35, 20, 20}, kRed);
        pen.EndObjects();
    });
}

TEST_F(DrawLayers, LinesOfSeveralWidthsAndStipplesKeepTheirs) {
    ExpectInOrder([](DeskPen& pen) {
        float y = 10;
        for (const LineLook& look :
             {LineLook{kRed, 1}, LineLook{kRed, 5}, LineLook{kBlue, 5}, LineLook{kBlue, 5, true},
              LineLook{kBlack, 2, true}, LineLook{kBlack, 2}, LineLook{kRed, 0}, LineLook{kRed, -3},
              LineLook{kRed, std::numeric_limits<float>::quiet_NaN()}}) {
            pen.Line(
                std::array{DeskPoint{5, y}, DeskPoint{60, y}, DeskPoint{60, y + 40}, DeskPoint{150, y + 40}},
                look);
            y += 7;
        }
    });
}

// A pattern runs on round a corner, and begins anew with each line.
TEST_F(DrawLayers, AStippleRunsOnThroughALineOnly) {
    const QImage picture = ExpectInOrder([](DeskPen& pen) {
        const LineLook look{kBlack, 1, true};
        pen.Line(std::array{DeskPoint{10, 10}, DeskPoint{16, 10}, DeskPoint{50, 10}}, look);
        pen.Line(std::array{DeskPoint{10, 20}, DeskPoint{16, 20}}, look);
        pen.Line(std::array{DeskPoint{16, 20}, DeskPoint{50, 20}}, look);
    });
    int differences = 0;
    for (int x = 10; x < 50; ++x) differences += At(picture, x, 10) == At(picture, x, 20) ? 0 : 1;
    EXPECT_GT(differences, 5);
}

TEST_F(DrawLayers, PolygonsOfAnyNumberOfCornersAreFilled) {
    for (const size_t count : {size_t{0}, size_t{1}, size_t{2}, size_t{3}, size_t{4}, size_t{5}, size_t{6},
                               size_t{7}, size_t{12}}) {
        ExpectInOrder(
            [&](DeskPen& pen) {
                std::vector<DeskPoint> corners;
                for (size_t i = 0; i < count; ++i) {
                    const float angle = 6.2831853F * static_cast<float>(i) / static_cast<float>(count);
                    corners.push_back({100 + 50.3F * std::cos(angle), 60 + 40.7F * std::sin(angle)});
                }
                pen.Polygon(corners, kRed);
            },
            std::to_string(count) + " corners");
    }
}

TEST_F(DrawLayers, LinesWithoutASegmentAreNothingAndHideNoOther) {
    const QImage picture = ExpectInOrder([](DeskPen& pen) {
        for (int i = 0; i < 4; ++i) {
            const float y = 10 + static_cast<float>(i) * 20;
            pen.Line(
                std::array{DeskPoint{10, y}, DeskPoint{60, y}, DeskPoint{60, y + 10}, DeskPoint{110, y + 10}},
                {kBlue, 1});
            pen.Line({}, {kBlue, 1});
            pen.Line({}, {kRed, 3, true});
            pen.Line(std::array{DeskPoint{150, 50}}, {kRed, 3});
            pen.Line({}, {kBlue, 1});
        }
    });
    EXPECT_EQ(Count(picture, kRed), 0);
    EXPECT_NEAR(Count(picture, kBlue), 4 * 110, 4 * 3);
}

// Broken documents place boxes anywhere.
TEST_F(DrawLayers, ObjectsMayHaveAnyBounds) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const QImage picture = ExpectInOrder([&](DeskPen& pen) {
        pen.BeginObject({20, 20, 40, 40});
        pen.Fill({20, 20, 40, 40}, kRed);
        for (const DeskRect& bounds :
             {DeskRect{nan, 0, 10, 10}, DeskRect{0, 0, nan, nan}, DeskRect{-inf, -inf, inf, inf},
              DeskRect{1e30F, 1e30F, 1e30F, 1e30F}, DeskRect{-1e30F, -1e30F, 2e30F, 2e30F},
              DeskRect{100, 100, -50, -50}, DeskRect{50, 50, 0, 0}, DeskRect{-1e9F, 0, 1e9F, 10}}) {
            pen.BeginObject(bounds);
        }
        pen.BeginObject({40, 40, 40, 40});
        pen.Fill({40, 40, 40, 40}, kBlue);
        pen.EndObjects();
    });
    EXPECT_EQ(At(picture, 50, 50), qRgb(0, 0, 255));
    EXPECT_EQ(At(picture, 30, 30), qRgb(255, 0, 0));
}

TEST_F(DrawLayers, AViewThatIsNoNumberStillTakesObjects) {
    LookAt(1, {std::numeric_limits<float>::quiet_NaN(), 1e38F});
    ExpectInOrder([&](DeskPen& pen) {
        pen.BeginObject({20, 20, 40, 40});
        Everything(pen, {20, 20, 40, 40}, kRed);
        pen.EndObjects();
    });
}

TEST_F(DrawLayers, NothingStaysFromOnePictureToTheNext) {
    const Drawing much = [](DeskPen& pen) {
        for (int i = 0; i < 500; ++i) {
            pen.BeginObject({10, 10, 100, 80});
            Everything(pen, {10, 10, 100, 80}, kRed);
        }
        pen.EndObjects();
    };
    const Drawing little = [](DeskPen& pen) { pen.Fill({150, 50, 10, 10}, kBlue); };
    const QImage large = ExpectInOrder(much);
    const QImage small = ExpectInOrder(little);
    EXPECT_EQ(Count(small, kBlue), 100);
    EXPECT_EQ(Count(small, kPaper), kWidth * kHeight - 100);
    EXPECT_EQ(ExpectInOrder(much), large);
}

}  // namespace
}  // namespace tavrin
