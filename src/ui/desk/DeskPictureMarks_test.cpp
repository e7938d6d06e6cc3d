// SPDX-License-Identifier: Apache-2.0
// The marks of boxes that errors name, against references and by their measures.
#include <gtest/gtest.h>

#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;

constexpr Rgb kError{0.84F, 0.07F, 0.1F};
constexpr const char* kDefinition = "input in { float { 0 0 1 0 %g } }\noutput first { float out }";

class DeskPictureMarks : public test::DeskPictureTest {
  protected:
    COpBox& PutNoise(float x, float y) {
        COpBox& box = Put(MakeBox("noise", kDefinition), x, y);
        box.icontext = "Noise";
        return box;
    }
    void Mark(const COpBox& box) { marks.Hear("box " + box.BoxTitleWid() + ": bad\n"); }
};

TEST_F(DeskPictureMarks, AMarkedBoxHasAFrameAndABadgeAtEachZoom) {
    COpBox& box = PutNoise(80, 50);
    COpBox& selected = PutNoise(130, 130);
    selected.selected = 1;
    Mark(box);
    Mark(selected);
    Open(240, 200);
    ExpectPicture();
    ExpectPictureAt(3, {50, 60}, "zoom-3");
    ExpectPictureAt(0.5F, {100, 90}, "zoom-0.5");
    ExpectPictureAt(0.2F, {100, 90}, "zoom-0.2");
}

TEST_F(DeskPictureMarks, MarksComeAndGoByThemselves) {
    COpBox& box = PutNoise(80, 50);
    Open(200, 150);
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 200, 150}, kError), 0);
    Mark(box);
    test::HandleEvents();
    LookEveryWay();
    EXPECT_GT(Count({0, 0, 200, 150}, kError), 0);
    marks.Begin();
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 200, 150}, kError), 0);
}

TEST_F(DeskPictureMarks, TheBadgeIsFoundHoweverSmallTheBoxIs) {
    COpBox& box = PutNoise(80, 50);
    Mark(box);
    Open(400, 300);
    for (const float zoom : {0.1F, 0.3F, 1.0F, 4.0F}) {
        document.zoomFactor = zoom;
        LookEveryWay();  // which lays the box out for that zoom
        const DeskRect rect = BoxRect(box);
        document.offset[0] = 200 - zoom * rect.left;
        document.offset[1] = 150 - zoom * rect.Top();
        LookEveryWay();
        const float reach = 10 / zoom;
        EXPECT_GT(Count({rect.left - reach, rect.Top() - reach, 2 * reach, 2 * reach}, kError), 60 * Ratio())
            << zoom;
    }
}

TEST_F(DeskPictureMarks, ABoxThatLiesOverItDoesNotHideAMark) {
    COpBox& box = PutNoise(80, 50);
    COpBox& other = PutNoise(1000, 1000);
    Mark(box);
    Open(300, 200);
    LookEveryWay();
    const int alone = Count({0, 0, 300, 200}, kError);
    desk.MoveBox(other, -920, -950);
    document.m_boxes.reverse();
    LookEveryWay();
    EXPECT_EQ(Count({0, 0, 300, 200}, kError), alone);
}

}  // namespace
}  // namespace tavrin
