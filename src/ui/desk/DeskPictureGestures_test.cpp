// SPDX-License-Identifier: Apache-2.0
// What is seen of gestures while they run, and of boxes under the mouse, against references.
#include <gtest/gtest.h>

#include "ui/desk/DeskPictureTest.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::Wire;

class DeskPictureGestures : public test::DeskPictureTest {
  protected:
    QPoint InputOf(const COpBox& box, size_t index = 0) {
        return At(ButtonRect({&box, false, index}).Middle());
    }
    QPoint OutputOf(const COpBox& box) { return At(ButtonRect({&box, true, 0}).Middle()); }
    QPoint ArrowOf(const COpBox& box, bool above) {
        return At(GrowArrowRect({&box, false, 1}, above).Middle());
    }
    COpBox& PutGrowing(float x, float y) {
        return Put(MakeBox("sum", "vinput v { float { 0 0 1 0 %g } vinstances 3 }\noutput out { float out }"),
                   x, y);
    }
    // The button goes up somewhere, so that nothing runs on behind the test.
    void TearDown() override {
        if (pane) Release({0, 0});
        DeskPictureTest::TearDown();
    }
};

TEST_F(DeskPictureGestures, AWireRunsFromItsButtonToThePointer) {
    COpBox& from = PutLink(50, 110);
    PutLink(190, 110);
    Open(240, 150);
    Press(OutputOf(from));
    Drag({130, 117});
    ExpectPicture("from-an-output");
    Release({130, 117});
    Click(QPoint(10, 140));
    Press(InputOf(from));
    Drag({200, 130});
    ExpectPicture("from-an-input");
}

TEST_F(DeskPictureGestures, AButtonThatTheWireMayEndInIsLit) {
    COpBox& from = PutLink(50, 110);
    COpBox& to = PutLink(190, 60);
    Open(240, 150);
    Press(OutputOf(from));
    Drag(InputOf(to));
    ExpectPicture();
}

TEST_F(DeskPictureGestures, AButtonThatTheWireMayNotEndInIsNotLit) {
    COpBox& from = PutLink(50, 110);
    COpBox& to = PutLink(190, 60);
    Wire(to, 0, from, 0);
    Open(240, 150);
    Press(OutputOf(from));
    Drag(InputOf(to));
    ExpectPicture("loop");
    Drag(OutputOf(to));
    ExpectPicture("two-outputs");
}

TEST_F(DeskPictureGestures, AClickedButtonStaysLitWithoutAWire) {
    COpBox& box = PutLink(50, 110);
    Open(240, 150);
    Click(OutputOf(box));
    MoveTo({200, 120});
    ExpectPicture();
}

TEST_F(DeskPictureGestures, AButtonThatCannotBeWiredIsLitButDrawsNoWire) {
    COpBox& box = PutLink(50, 110);
    box.outputs.at(0)->disableconnectflag = 1;
    Open(240, 150);
    Press(OutputOf(box));
    Drag({200, 120});
    ExpectPicture();
}

TEST_F(DeskPictureGestures, APressedVinputShowsTheArrowsThatItGrowsFrom) {
    COpBox& box = PutGrowing(80, 75);
    Open(160, 150);
    Press(InputOf(box, 1));
    ExpectPicture("cold");
    Drag(ArrowOf(box, true));
    ExpectPicture("up");
    Drag(ArrowOf(box, false));
    ExpectPicture("down");
    Release({5, 5});
    Press(InputOf(box, 2));
    ExpectPicture("last");  // stands out of the box
}

TEST_F(DeskPictureGestures, AWireToAGrowArrowLightsTheArrowAndNotTheButton) {
    COpBox& box = PutGrowing(170, 75);
    COpBox& from = PutLink(50, 110);
    Open(240, 150);
    Press(OutputOf(from));
    Drag(InputOf(box, 1));
    ExpectPicture("at-the-button");
    Drag(ArrowOf(box, false));
    ExpectPicture("at-the-arrow");
}

TEST_F(DeskPictureGestures, GrowArrowsFollowTheZoom) {
    COpBox& box = PutGrowing(80, 75);
    Open(160, 150);
    document.zoomFactor = 2;
    document.offset[0] = -60;
    document.offset[1] = -75;
    LookEveryWay();
    Press(InputOf(box, 1));
    Drag(ArrowOf(box, true));
    ExpectPicture();
}

TEST_F(DeskPictureGestures, ARubberBandRunsFromItsAnchorToThePointer) {
    PutLink(100, 75);
    Open(200, 150);
    Press({20, 30});
    Drag({150, 101});
    ExpectPicture("add");
    Release({150, 101});
    Press({180, 140}, Qt::ControlModifier);
    Drag({121, 60});
    ExpectPicture("toggle-from-right-to-left");
}

TEST_F(DeskPictureGestures, ARubberBandIsOnePixelThinAtEachZoom) {
    PutLink(100, 75);
    Open(200, 150);
    document.zoomFactor = 3;
    Press({10, 130});
    Drag({150, 21});
    ExpectPicture();
}

TEST_F(DeskPictureGestures, PendingBoxesAreSeenOnceThePointerHasCome) {
    PutLink(110, 75).selected = 1;
    host.AddOperator("noise", "input in { float { 0 0 1 0 %g } }\noutput o { rgb out }\ncolor 0.8 0.5 0");
    host.startsProcesses = false;
    Open(240, 150);
    desk.AddOperator("noise");
    ExpectPicture("not-yet");
    MoveTo({100, 80});
    ExpectPicture("placed");  // above the others
}

TEST_F(DeskPictureGestures, APendingGroupHangsTogetherAboveTheOthers) {
    COpBox& start = PutLink(60, 110);
    Wire(start, 0, PutLink(180, 60), 0);
    document.linetype = 1;
    Open(240, 150);
    desk.SelectAllBoxes();
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{75, 90});
    ExpectPicture("lines-behind");
    document.drawlinesoverboxes = 1;
    ExpectPicture("lines-over");
}

}  // namespace
}  // namespace tavrin
