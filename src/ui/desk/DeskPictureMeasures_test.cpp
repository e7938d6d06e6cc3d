// SPDX-License-Identifier: Apache-2.0
// Lengths, corners and places of what the desk paints, each asserted by its number: a reference would show
// that they changed, not whether they are right.
#include <gtest/gtest.h>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::IsAlike;
using test::IsColor;
using test::kBackground;
using test::kGreen;
using test::kInk;
using test::kLine;
using test::kOutline;
using test::kStippledLine;
using test::MakeBox;
using test::SgiTestFile;
using test::Wire;

constexpr Rgb kLight{0.75F, 0.7F, 0.65F};
constexpr Rgb kDark{0.25F, 0.3F, 0.3F};
constexpr Rgb kYellow{1, 1, 0};
constexpr Rgb kRed{1, 0, 0};

class DeskPictureMeasures : public test::DeskPictureTest {
  protected:
    // A plain box whose edges have room.
    COpBox& PutLarge() {
        COpBox& box = PutLink(150, 100);
        box.size[0] = 160;
        box.size[1] = 100;
        return box;
    }
    void OpenLarge() { Open(300, 200); }
    // Lays out for the zoom and puts what `place` then gives into the window's middle: its left and bottom
    // edges are those of a pixel.
    template <typename Place>
    void LookAt(float zoom, Place place) {
        document.zoomFactor = zoom;
        LookEveryWay();
        const DeskPoint middle = place();
        document.offset[0] = std::floor(pane->View().Width() * 0.5F) - zoom * middle.x;
        document.offset[1] = std::floor(pane->View().Height() * 0.5F) - zoom * middle.y;
        LookEveryWay();
    }
    float PixelsInUnit() { return document.zoomFactor * static_cast<float>(Ratio()); }
    // The device pixel that holds a point, counted from the lower left corner.
    QPoint PixelOf(DeskPoint at) {
        const auto place = [this](float unit, float offset) {
            constexpr float kSlack = 0.01F;  // of a pixel, for what floats lose
            const float pixel = (unit * document.zoomFactor + offset) * static_cast<float>(Ratio());
            return static_cast<int>(std::floor(pixel + kSlack));
        };
        return {place(at.x, document.offset[0]), place(at.y, document.offset[1])};
    }
    QRgb Pixel(QPoint at) { return Picture().pixel(at.x(), Picture().height() - 1 - at.y()); }
    QRgb SeenAt(DeskPoint point) { return Pixel(PixelOf(point)); }
    QRgb SeenAt(DeskPoint from, float dx, float dy) { return SeenAt({from.x + dx, from.y + dy}); }
    // How many pixels of the colour lie in a row, from one on.
    int Run(QPoint from, QPoint step, const Rgb& color) {
        int count = 0;
        for (QPoint at = from; Picture().valid(at.x(), at.y()) && IsAlike(Pixel(at), color); at += step)
            ++count;
        return count;
    }
    // The pixels of the colour in an area lie within these, ends included.
    struct Extent {
        int left = 1 << 20;
        int bottom = 1 << 20;
        int right = -1;
        int top = -1;
    };
    Extent ExtentOf(const DeskRect& area, const Rgb& color) {
        const QPoint low = PixelOf({area.left, area.bottom});
        const QPoint high = PixelOf({area.Right(), area.Top()});
        Extent extent;
        for (int y = low.y(); y < high.y(); ++y) {
            for (int x = low.x(); x < high.x(); ++x) {
                if (!Picture().valid(x, y) || !IsAlike(Pixel({x, y}), color)) continue;
                extent = {std::min(extent.left, x), std::min(extent.bottom, y), std::max(extent.right, x),
                          std::max(extent.top, y)};
            }
        }
        return extent;
    }
};

constexpr QPoint kRightward{1, 0};
constexpr QPoint kLeftward{-1, 0};
constexpr QPoint kUpward{0, 1};
constexpr QPoint kDownward{0, -1};

TEST_F(DeskPictureMeasures, BevelsAreTwoUnitsThickAndNeverLessThanTwoPixels) {
    COpBox& box = PutLarge();
    OpenLarge();
    for (const float zoom : {0.25F, 0.5F, 0.8F, 1.0F, 1.5F, 3.0F, 8.0F}) {
        SCOPED_TRACE(zoom);
        const int thick = static_cast<int>(std::lround(2 * std::max(zoom, 1.0F))) * Ratio();
        LookAt(zoom, [&] { return DeskPoint{PanelRect(box).Middle().x, PanelRect(box).Top()}; });
        const QPoint top = PixelOf({PanelRect(box).Middle().x, PanelRect(box).Top()});
        EXPECT_EQ(Run(top + kDownward, kDownward, kLight), thick);
        EXPECT_EQ(Run(top, kUpward, kDark), thick);  // the title's lower edge
        EXPECT_THAT(Pixel(top + kDownward * (thick + 1)), IsColor(kGreen));
        LookAt(zoom, [&] { return DeskPoint{PanelRect(box).left, PanelRect(box).Middle().y}; });
        const QPoint left = PixelOf({PanelRect(box).left, PanelRect(box).Middle().y});
        EXPECT_EQ(Run(left, kRightward, kLight), thick);
        EXPECT_EQ(Run(left + kLeftward, kLeftward, kDark), thick);  // the row's right edge
        EXPECT_THAT(Pixel(left + kRightward * thick), IsColor(kGreen));
    }
}

TEST_F(DeskPictureMeasures, LitAndShadedEdgesMeetInTheDiagonalsOfTheCorners) {
    COpBox& box = PutLarge();
    OpenLarge();
    const DeskRect panel = PanelRect(box);
    struct Corner {
        DeskPoint at;
        float x, y;  // toward the inside
        Rgb alongTopOrBottom, alongSide;
    };
    for (const Corner& corner : {Corner{{panel.left, panel.Top()}, 1, -1, kLight, kLight},
                                 Corner{{panel.Right(), panel.Top()}, -1, -1, kLight, kDark},
                                 Corner{{panel.left, panel.bottom}, 1, 1, kDark, kLight},
                                 Corner{{panel.Right(), panel.bottom}, -1, 1, kDark, kDark}}) {
        SCOPED_TRACE(testing::Message() << corner.x << " " << corner.y);
        const auto seen = [&](float along, float inward) {
            return SeenAt(corner.at, corner.x * along, corner.y * inward);
        };
        LookAt(8, [&] { return corner.at; });
        for (const float depth : {0.2F, 0.7F, 1.2F, 1.6F}) {
            EXPECT_THAT(seen(depth + 0.3F, depth), IsColor(corner.alongTopOrBottom)) << depth;
            EXPECT_THAT(seen(depth, depth + 0.3F), IsColor(corner.alongSide)) << depth;
        }
        EXPECT_THAT(seen(2.2F, 2.2F), IsColor(kGreen));
    }
}

TEST_F(DeskPictureMeasures, ASelectionIsThreePixelsThickOutsideItsBoxAtEachZoom) {
    COpBox& box = PutLarge();
    box.selected = 1;
    OpenLarge();
    for (const float zoom : {0.25F, 0.5F, 1.0F, 3.0F, 8.0F}) {
        SCOPED_TRACE(zoom);
        const int thick = 3 * Ratio();
        LookAt(zoom, [&] { return DeskPoint{BoxRect(box).left, BoxRect(box).Top()}; });
        const QPoint topLeft = PixelOf({BoxRect(box).left, BoxRect(box).Top()});
        EXPECT_EQ(Run(topLeft + kLeftward + kDownward, kLeftward, kOutline), thick);
        EXPECT_EQ(Run(topLeft, kUpward, kOutline), thick);
        EXPECT_EQ(Run(topLeft + kLeftward, {-1, 1}, kOutline), thick);  // the corner too
        EXPECT_THAT(Pixel(topLeft + kLeftward * (thick + 1)), IsColor(kBackground));
        LookAt(zoom, [&] { return DeskPoint{BoxRect(box).Right(), BoxRect(box).bottom}; });
        const QPoint lowRight = PixelOf({BoxRect(box).Right(), BoxRect(box).bottom});
        EXPECT_EQ(Run(lowRight, kRightward, kOutline), thick);
        EXPECT_EQ(Run(lowRight + kDownward + kLeftward, kDownward, kOutline), thick);
        EXPECT_EQ(Run(lowRight + kDownward, {1, -1}, kOutline), thick);
    }
}

TEST_F(DeskPictureMeasures, ACrossIsEightUnitsLargeTwelveLeftOfItsRow) {
    COpBox& box = PutLarge();
    box.inputs.at(0)->disableconnectflag = 1;
    OpenLarge();
    const auto middle = [&] {
        const DeskPoint anchor = ButtonAnchor({&box, false, 0});
        return DeskPoint{anchor.x - 12, anchor.y};
    };
    for (const float zoom : {4.0F, 8.0F}) {
        LookAt(zoom, middle);
        const DeskPoint at = middle();
        for (const float x : {-1.0F, 1.0F}) {
            for (const float y : {-1.0F, 1.0F}) {
                EXPECT_THAT(SeenAt(at, 3.7F * x, 3.7F * y), IsColor(kInk)) << x << " " << y;
                EXPECT_THAT(SeenAt(at, 4.4F * x, 4.4F * y), IsColor(kBackground)) << x << " " << y;
            }
            EXPECT_THAT(SeenAt(at, 2 * x, 0), IsColor(kBackground));
            EXPECT_THAT(SeenAt(at, 0, 2 * x), IsColor(kBackground));
        }
        const Extent arm = ExtentOf({at.x + 2, at.y + 1, 1 / PixelsInUnit() + 0.001F, 3}, kInk);
        EXPECT_EQ(arm.top - arm.bottom + 1, 2 * Ratio());
    }
}

TEST_F(DeskPictureMeasures, AnArgumentsHexagonPointsToTheSidesSevenLeftOfItsRow) {
    COpBox& box = PutLarge();
    box.inputs.at(0)->arg = 1;
    OpenLarge();
    const auto middle = [&] {
        const DeskPoint anchor = ButtonAnchor({&box, false, 0});
        return DeskPoint{anchor.x - 7, anchor.y};
    };
    LookAt(10, middle);
    const DeskPoint at = middle();
    for (const float side : {-1.0F, 1.0F}) {
        EXPECT_THAT(SeenAt(at, 1.85F * side, 0), IsColor(kYellow)) << side;
        EXPECT_THAT(SeenAt(at, 2.15F * side, 0), IsColor(kBackground)) << side;
        for (const float y : {-1.0F, 1.0F}) {
            EXPECT_THAT(SeenAt(at, 0.85F * side, 1.6F * y), IsColor(kYellow)) << side << y;
            EXPECT_THAT(SeenAt(at, 1.3F * side, 1.6F * y), IsColor(kBackground)) << side << y;
            EXPECT_THAT(SeenAt(at, 1.8F * side, 0.8F * y), IsColor(kBackground)) << side << y;
            EXPECT_THAT(SeenAt(at, 0.5F * side, 1.9F * y), IsColor(kBackground)) << side << y;
        }
    }
}

TEST_F(DeskPictureMeasures, GrowArrowsPointAwayFromTheirButton) {
    COpBox& box = Put(
        MakeBox("sum", "vinput v { float { 0 0 1 0 %g } vinstances 3 }\noutput out { float out }"), 150, 100);
    OpenLarge();
    LookAt(4, [&] { return ButtonRect({&box, false, 1}).Middle(); });
    Press(At(ButtonRect({&box, false, 1}).Middle()));
    LookEveryWay();
    const DeskRect button = ButtonRect({&box, false, 1});
    for (const float up : {1.0F, -1.0F}) {
        SCOPED_TRACE(up);
        // Seen from the middle of the arrow's edge at the button.
        const DeskPoint edge{button.Middle().x, up > 0 ? button.Top() : button.bottom};
        const auto seen = [&](float x, float y) { return SeenAt(edge, x, y * up); };
        EXPECT_THAT(seen(0, 16 - 3.5F), IsColor(kInk));
        EXPECT_THAT(seen(0, 16 - 2.6F), IsColor(kGreen));
        EXPECT_THAT(seen(0, 3.4F), IsColor(kInk));
        EXPECT_THAT(seen(0, 2.6F), IsColor(kGreen));
        for (const float side : {-1.0F, 1.0F}) {
            EXPECT_THAT(seen(9 * side, 3.4F), IsColor(kInk)) << side;
            EXPECT_THAT(seen(10.5F * side, 3.4F), IsColor(kGreen)) << side;
            EXPECT_THAT(seen(2 * side, 12), IsColor(kGreen)) << side;
            EXPECT_THAT(seen(4.3F * side, 8), IsColor(kInk)) << side;
            EXPECT_THAT(seen(5.7F * side, 8), IsColor(kGreen)) << side;
        }
        // The arrow's own bevel, and where it ends.
        EXPECT_THAT(seen(0, 1), IsColor(up > 0 ? kDark : kLight));
        EXPECT_THAT(seen(0, 15), IsColor(up > 0 ? kLight : kDark));
        EXPECT_THAT(seen(-button.width * 0.5F + 1, 8), IsColor(kLight));
        EXPECT_THAT(seen(button.width * 0.5F - 1, 8), IsColor(kDark));
    }
    Release(At(button.Middle()));
}

TEST_F(DeskPictureMeasures, LinesAreThreePixelsThickAtEachZoom) {
    COpBox& start = PutLink(50, 100);
    Wire(start, 0, PutLink(250, 100), 0);
    OpenLarge();
    for (const float zoom : {0.5F, 1.0F, 3.0F}) {
        SCOPED_TRACE(zoom);
        const auto middle = [&] {
            const DeskPoint anchor = ButtonAnchor({&start, true, 0});
            return DeskPoint{anchor.x + 50, anchor.y};
        };
        LookAt(zoom, middle);
        const Extent line = ExtentOf({middle().x, middle().y - 20, 1.5F / PixelsInUnit(), 40}, kLine);
        EXPECT_EQ(line.top - line.bottom + 1, 3 * Ratio());
        EXPECT_NEAR(line.bottom + line.top, 2 * PixelOf(middle()).y(), 1);
    }
}

TEST_F(DeskPictureMeasures, StippledLinesShowTwoPixelsOfFourFromTheirStartOn) {
    COpBox& start = Put(MakeBox("rgb", "output o { rgb out }"), 50, 100);
    Wire(start, 0, PutLink(250, 100), 0);
    OpenLarge();
    for (const float zoom : {0.5F, 1.0F, 3.0F}) {
        SCOPED_TRACE(zoom);
        const auto anchor = [&] { return ButtonAnchor({&start, true, 0}); };
        LookAt(zoom, anchor);
        for (int i = 0; i < 40; ++i) {
            const QRgb seen = Pixel(PixelOf(anchor()) + kRightward * i);
            EXPECT_THAT(seen, IsColor(i % 4 < 2 ? kStippledLine : kBackground)) << i;
        }
    }
}

TEST_F(DeskPictureMeasures, TextsAreCentredByTheirWidthAndTheLineOfTheirFont) {
    COpBox& box = PutLarge();
    box.filename = "HH";
    box.wid = 4;
    box.icontext = "HHH";
    OpenLarge();
    DeskFonts fonts("DejaVu Sans", [](const std::string& text) { ADD_FAILURE() << text; });
    fonts.SetPixelRatio(static_cast<float>(Ratio()));
    for (const float zoom : {0.5F, 1.0F, 1.7F, 2.0F}) {
        SCOPED_TRACE(zoom);
        const auto check = [&](const DeskRect& rect, int font, const std::string& text) {
            const DeskFonts::Metrics metrics = fonts.MetricsOf(font);
            const float left = rect.left + (rect.width - fonts.TextWidth(font, text) / zoom) * 0.5F;
            const float baseline = rect.Top() -
                                   ((metrics.height + metrics.leading) / zoom + rect.height) * 0.5F +
                                   metrics.descent / zoom;
            const Extent ink = ExtentOf(rect, kInk);
            EXPECT_EQ(ink.bottom, PixelOf({left, baseline}).y()) << text;
            const int bearing = ink.left - PixelOf({left, baseline}).x();
            EXPECT_GE(bearing, 0) << text;
            EXPECT_LE(static_cast<float>(bearing), 0.2F * metrics.height * static_cast<float>(Ratio()))
                << text;
        };
        LookAt(zoom, [&] { return TitleRect(box).Middle(); });
        check(TitleRect(box), DeskFonts::LabelFont(zoom), "HH 4");
        LookAt(zoom, [&] { return PanelRect(box).Middle(); });
        check(PanelRect(box), DeskFonts::TitleFont(zoom), "HHH");
    }
}

TEST_F(DeskPictureMeasures, AVariablesNameBeginsFourRightAndSixAboveItsLinesStart) {
    COpBox& start = PutLink(50, 100);
    start.outputs.at(0)->fixedvalue = "HHH";
    Wire(start, 0, PutLink(250, 100), 0);
    document.showvarnames = 1;
    OpenLarge();
    for (const float zoom : {1.0F, 2.0F, 3.3F}) {
        SCOPED_TRACE(zoom);
        const auto place = [&] {
            const DeskPoint anchor = ButtonAnchor({&start, true, 0});
            return DeskPoint{anchor.x + 4, anchor.y + 6};
        };
        LookAt(zoom, place);
        const Extent name = ExtentOf({place().x, place().y - 3, 30, 12}, kLine);
        EXPECT_EQ(name.bottom, PixelOf(place()).y());
        const int bearing = name.left - PixelOf(place()).x();
        EXPECT_GE(bearing, 0);
        EXPECT_LE(static_cast<float>(bearing), 1.5F * PixelsInUnit());
    }
}

TEST_F(DeskPictureMeasures, AnIconsPixelsAreAsManyAsItsZoomAboutTheMiddleOfItsPanel) {
    host.Directory().Write("installation/icon.sgi", SgiTestFile::Plain(20, 11, 4, {255, 0, 0, 255}).Bytes());
    COpBox& box = PutLarge();
    box.iconimg = "icon.sgi";
    document.showiconimages = 1;
    OpenLarge();
    for (const float zoom : {0.5F, 1.0F, 2.0F, 5.0F}) {
        SCOPED_TRACE(zoom);
        const auto corner = [&] {
            const DeskPoint middle = PanelRect(box).Middle();
            return DeskPoint{middle.x - 10, middle.y - 5.5F};
        };
        LookAt(zoom, corner);
        const Extent icon = ExtentOf(PanelRect(box), kRed);
        const QPoint low = PixelOf(corner());
        const QPoint high = PixelOf({corner().x + 20, corner().y + 11});
        EXPECT_NEAR(icon.left, low.x(), 1);
        EXPECT_NEAR(icon.bottom, low.y(), 1);
        EXPECT_NEAR(icon.right + 1, high.x(), 1);
        EXPECT_NEAR(icon.top + 1, high.y(), 1);
    }
}

TEST_F(DeskPictureMeasures, TheVeilBeginsWithTheLowerLeftPixel) {
    Open(61, 43);
    Lock(true);
    LookEveryWay();
    constexpr Rgb kVeil{0.4F, 0.5F, 0.5F};
    for (int y = 0; y < Picture().height(); ++y) {
        for (int x = 0; x < Picture().width(); ++x) {
            ASSERT_THAT(Pixel({x, y}), IsColor((x + y) % 2 == 0 ? kVeil : kBackground)) << x << " " << y;
        }
    }
}

}  // namespace
}  // namespace tavrin
