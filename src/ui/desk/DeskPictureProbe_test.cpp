// SPDX-License-Identifier: Apache-2.0
// The mark of the output that stands for the picture, against references and by its measures.
#include <gtest/gtest.h>

#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;

constexpr Rgb kProbe{0, 0.3F, 1};
constexpr const char* kTwoOutputs =
    "input in { float { 0 0 1 0 %g } }\noutput first { float out }\noutput second { float out }";

class DeskPictureProbe : public test::DeskPictureTest {
  protected:
    DeskPictureProbe() { host.GetSite().settings.Store("desk.probecolor", "0 0.3 1"); }
    COpBox& PutNoise(float x, float y) {
        COpBox& box = Put(MakeBox("noise", kTwoOutputs), x, y);
        box.icontext = "Noise";
        return box;
    }
    DeskRect RowOf(const COpButton& output) { return ButtonRect(ButtonPlace::Of(output)); }
    // How many device pixels of the colour lie in a row of the picture from one on, in a direction.
    int Run(QPoint from, QPoint step) {
        int count = 0;
        for (QPoint at = from; Picture().valid(at) && test::IsAlike(Picture().pixel(at), kProbe); at += step)
            ++count;
        return count;
    }
    // How far the colour reaches to the right of the button, in window pixels: first and last.
    std::pair<int, int> EyeBeside(const COpButton& output) {
        const QPoint start = At({RowOf(output).Right(), RowOf(output).Middle().y}) * Ratio();
        std::pair<int, int> reach{-1, -1};
        for (int x = start.x() + 4 * Ratio(); x < Picture().width(); ++x) {
            for (int y = start.y() - 2 * Ratio(); y <= start.y() + 2 * Ratio(); ++y) {
                if (!Picture().valid(x, y) || !test::IsAlike(Picture().pixel(x, y), kProbe)) continue;
                if (reach.first < 0) reach.first = (x - start.x()) / Ratio();
                reach.second = (x - start.x()) / Ratio();
            }
        }
        return reach;
    }
};

TEST_F(DeskPictureProbe, AnOutputThatIsShownHasARingAndAnEyeAtEachZoom) {
    COpBox& box = PutNoise(80, 60);
    PutNoise(80, 150);
    shown = box.outputs.at(1).get();
    Open(200, 200);
    ExpectPicture();
    ExpectPictureAt(3, {120, 50}, "zoom-3");
    ExpectPictureAt(0.5F, {80, 60}, "zoom-0.5");
    ExpectPictureAt(0.2F, {80, 60}, "zoom-0.2");
}

TEST_F(DeskPictureProbe, WithoutOneNothingIsMarked) {
    COpBox& box = PutNoise(80, 60);
    Open(200, 120);
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 200, 120}, kProbe), 0);
    shown = box.outputs.at(0).get();
    LookEveryWay();
    EXPECT_GT(Count({0, 0, 200, 120}, kProbe), 0);
    shown = nullptr;
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 200, 120}, kProbe), 0);
}

TEST_F(DeskPictureProbe, TheRingIsAsWideAndTheEyeIsFoundAtEveryZoom) {
    COpBox& box = PutNoise(80, 100);
    shown = box.outputs.at(0).get();
    Open(400, 400);
    for (const float zoom : {0.1F, 0.25F, 0.5F, 1.0F, 2.0F, 4.0F, 8.0F}) {
        document.zoomFactor = zoom;
        LookEveryWay();
        const DeskPoint middle = RowOf(*shown).Middle();
        document.offset[0] = std::floor(100 - zoom * middle.x);
        document.offset[1] = std::floor(200 - zoom * middle.y);
        LookEveryWay();
        const QPoint edge = At({middle.x, RowOf(*shown).Top()}) * Ratio();
        int widest = 0;
        for (int y = edge.y() - 4 * Ratio(); y <= edge.y() + 4 * Ratio(); ++y)
            widest = std::max(widest, Run({edge.x(), y}, {0, 1}));
        EXPECT_EQ(widest, 2 * Ratio()) << "zoom " << zoom;
        const auto [first, last] = EyeBeside(*shown);
        EXPECT_GE(first, 3) << "zoom " << zoom;
        EXPECT_GE(last - first + 1, 12) << "zoom " << zoom;
    }
}

TEST_F(DeskPictureProbe, ItLiesOverOtherBoxesAndOverLines) {
    COpBox& box = PutNoise(80, 60);
    COpBox& target = PutNoise(150, 75);
    test::Wire(box, 0, target, 0);
    document.drawlinesoverboxes = 1;
    document.m_boxes.reverse();  // the other one lies on top
    shown = box.outputs.at(0).get();
    Open(260, 130);
    ExpectPicture();
}

TEST_F(DeskPictureProbe, ALockedDeskShowsItUnderItsVeil) {
    COpBox& box = PutNoise(80, 60);
    shown = box.outputs.at(0).get();
    Open(200, 120);
    Lock(true);
    ExpectPicture();
}

TEST_F(DeskPictureProbe, AnEyeWhoseBoxIsBesideTheWindowIsSeen) {
    COpBox& box = PutNoise(80, 60);
    shown = box.outputs.at(0).get();
    Open(200, 120);
    LookEveryWay();
    desk.MoveBox(box, -2 - BoxRect(box).Right(), 0);
    LookEveryWay();
    EXPECT_GT(Count({0, 0, 40, 120}, kProbe), 20);
    desk.MoveBox(box, -60, 0);
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 200, 120}, kProbe), 0);
}

}  // namespace
}  // namespace tavrin
