// SPDX-License-Identifier: Apache-2.0
// What the pointer does on the desk.
#include "desk/DeskGestures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/HitTest.h"
#include "library/Placeholder.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::WidsOf;
using test::Wire;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Kind = tavrin::DeskGestures::Kind;

enum Keys { kNoKey = 0, kShift = 1, kControl = 2 };

// A window of 800 by 600 whose lower left corner shows the desk's origin. Boxes are 100 by 48 with a body of
// 32; inputs are 30 wide and outputs 40.
class DeskGestures : public test::DocumentTest {
  protected:
    DeskGestures() { view.SetSize(800, 600); }

    COpBox& Put(std::unique_ptr<COpBox> box, float left, float bottom) {
        box->wid = ++m_lastWid;
        box->layout = {left, bottom, 16, 100, 32, 30, 40};
        return Add(std::move(box));
    }
    COpBox& PutLink(float left, float bottom) { return Put(MakeLink("b", 0), left, bottom); }
    COpBox& PutVinput(float left, float bottom) {
        return Put(MakeBox("v", "vinput v { float { 0 0 1 0 %g } }\noutput out { float out }"), left, bottom);
    }

    PointerState At(float x, float y, bool left, int keys) {
        PointerState pointer;
        pointer.at = view.ToWindow({x, y});
        pointer.left = left;
        pointer.shift = (keys & kShift) != 0;
        pointer.control = (keys & kControl) != 0;
        return pointer;
    }
    // All in desk units.
    void Hover(float x, float y) { gestures.Move(At(x, y, false, kNoKey)); }
    void Press(float x, float y, int keys = kNoKey) {
        Hover(x, y);
        gestures.LeftDown(At(x, y, true, keys));
    }
    void Drag(float x, float y) { gestures.Move(At(x, y, true, kNoKey)); }
    void Release(float x, float y) { gestures.LeftUp(At(x, y, false, kNoKey)); }
    void Click(float x, float y, int keys = kNoKey) {
        Press(x, y, keys);
        Release(x, y);
    }
    void ExpectUntouched() { EXPECT_FALSE(document.IsModified()); }
    void Forget() {
        windows.calls.clear();
        document.SetModified(false);
    }

    test::RecordingView windows{document};
    test::SeenDesk desk{document, host, windows};
    DeskViewport view{document, {0.1F, 10}};
    std::string status;
    tavrin::DeskGestures gestures{{document, desk, view, windows, host.GetSite().report, 3,
                                   [this](const std::string& text) { status = text; }}};

  private:
    int m_lastWid = 0;
};

TEST_F(DeskGestures, PendingBoxesFollowThePointerAndDropAtThePress) {
    auto box = MakeLink("b", 1);
    box->layout = {-50, -24, 16, 100, 32, 30, 40};
    desk.m_pendingBoxes.push_back(std::move(box));
    Hover(300, 200);  // put under the mouse, by the middle of its body
    EXPECT_TRUE(desk.m_pendingPlaced);
    EXPECT_EQ(BoxRect(*desk.m_pendingBoxes.at(0)).left, 250);
    EXPECT_EQ(BoxRect(*desk.m_pendingBoxes.at(0)).bottom, 160);
    Hover(310, 205);
    EXPECT_EQ(BoxRect(*desk.m_pendingBoxes.at(0)).left, 260);
    EXPECT_EQ(BoxRect(*desk.m_pendingBoxes.at(0)).bottom, 165);
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    document.SetModified(false);
    gestures.LeftDown(At(310, 205, true, kNoKey));
    EXPECT_THAT(desk.m_pendingBoxes, IsEmpty());
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(windows.calls, Contains("Add: dropped b_1"));
    Drag(400, 300);
    EXPECT_EQ(BoxRect(test::BoxAt(document, 0)).left, 260);
}

TEST_F(DeskGestures, APressOnABoxSelectsItAloneAndRaisesIt) {
    COpBox& first = PutLink(0, 0);
    COpBox& second = PutLink(200, 0);
    first.selected = 1;
    desk.m_selectedButton = first.outputs.at(0).get();
    desk.m_selectedConnects = {first.inputs.at(0).get()};
    Press(240, 10);
    EXPECT_EQ(first.selected, 0);
    EXPECT_EQ(second.selected, 1);
    EXPECT_THAT(WidsOf(document), ElementsAre(2, 1));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(windows.calls, Contains("selection"));
    EXPECT_EQ(gestures.Current(), Kind::kMoving);
    Release(240, 10);
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    ExpectUntouched();
}

TEST_F(DeskGestures, APressOnASelectedBoxKeepsTheSelection) {
    COpBox& first = PutLink(0, 0);
    COpBox& second = PutLink(200, 0);
    first.selected = second.selected = 1;
    Click(240, 10);
    EXPECT_EQ(first.selected + second.selected, 2);
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    EXPECT_THAT(windows.calls, Not(Contains("selection")));
}

TEST_F(DeskGestures, ShiftAddsABoxToTheSelection) {
    COpBox& first = PutLink(0, 0);
    COpBox& second = PutLink(200, 0);
    Click(40, 10);
    Click(240, 10, kShift);
    EXPECT_EQ(first.selected + second.selected, 2);
    EXPECT_THAT(WidsOf(document), ElementsAre(2, 1));
    Click(240, 10, kShift);
    EXPECT_EQ(second.selected, 1);
}

TEST_F(DeskGestures, ControlTogglesABoxAndADragMovesWhatIsStillSelected) {
    COpBox& first = PutLink(0, 0);
    COpBox& second = PutLink(200, 0);
    Click(40, 10, kControl);
    Click(240, 10, kControl);
    EXPECT_EQ(first.selected + second.selected, 2);
    Forget();
    Press(240, 10, kControl);
    EXPECT_EQ(second.selected, 0);
    EXPECT_THAT(windows.calls, Contains("selection"));
    Drag(250, 15);
    EXPECT_EQ(BoxRect(first).left, 10);
    EXPECT_EQ(BoxRect(first).bottom, 5);
    EXPECT_EQ(BoxRect(second).left, 200);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskGestures, AMovedBoxIsSeenToMoveByTheDragAndItsAnchorByTheZoomedDrag) {
    document.zoomFactor = 2;
    COpBox& box = PutLink(100, 100);
    Press(140, 110);
    Drag(150, 105);
    EXPECT_EQ(BoxRect(box).left, 110);
    EXPECT_EQ(BoxRect(box).bottom, 95);
    EXPECT_EQ(box.xypos[0], 20);
    EXPECT_EQ(box.xypos[1], -10);
    Release(150, 105);
    Hover(300, 300);
    EXPECT_EQ(BoxRect(box).left, 110);
}

TEST_F(DeskGestures, TwoButtonsAreWiredByADragFromOneToTheOther) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    Press(80, 10);
    EXPECT_EQ(desk.m_selectedButton, from.outputs.at(0).get());
    EXPECT_EQ(gestures.Current(), Kind::kWiring);
    Drag(200, 10);
    Drag(310, 10);
    Release(310, 10);
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    EXPECT_TRUE(from.outputs.at(0)->connections.Contains(*to.inputs.at(0)));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(windows.calls, Contains("Wire: wires"));
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
}

TEST_F(DeskGestures, TwoButtonsAreWiredByAClickOnEach) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    desk.m_selectedConnects = {to.inputs.at(0).get()};
    Click(310, 10);
    EXPECT_EQ(desk.m_selectedButton, to.inputs.at(0).get());
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    ExpectUntouched();
    Press(80, 10);
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskGestures, AButtonThatCannotBeWiredToTheSelectedOneTakesItsPlace) {
    PutLink(0, 0);
    COpBox& other = PutLink(300, 0);
    Click(80, 10);
    Click(380, 10);  // an output as well
    EXPECT_EQ(desk.m_selectedButton, other.outputs.at(0).get());
    ExpectUntouched();
}

TEST_F(DeskGestures, AWireThatWouldCloseALoopIsRefusedWithAnAlert) {
    COpBox& first = PutLink(0, 0);
    COpBox& second = PutLink(300, 0);
    Wire(first, 0, second, 0);
    Press(380, 10);
    Drag(10, 10);
    EXPECT_EQ(status, ">>>\r\n>>> HEY!!!  That would make an endless loop\r\n>>>");
    Release(10, 10);
    EXPECT_THAT(Alerts(), ElementsAre("That would create an endless loop!  Watch status box for warnings."));
    EXPECT_EQ(desk.m_selectedButton, second.outputs.at(0).get());
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    Press(10, 10);
    EXPECT_EQ(Alerts().back(), "That would create endless loop!  Watch status box for warnings.");
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    EXPECT_TRUE(first.inputs.at(0)->connections.Empty());
    ExpectUntouched();
}

TEST_F(DeskGestures, AWireLetGoOfOverNothingLeavesItsButtonSelected) {
    COpBox& from = PutLink(0, 0);
    Press(80, 10);
    Drag(400, 400);
    Release(400, 400);
    EXPECT_EQ(desk.m_selectedButton, from.outputs.at(0).get());
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    Click(400, 400);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
}

TEST_F(DeskGestures, APressOnAVinputRaisesTheArrowsAndAReleaseInOneGrowsIt) {
    COpBox& box = PutVinput(100, 100);
    COpButton* button = box.inputs.at(0).get();
    Press(110, 110);
    EXPECT_TRUE(gestures.GrowArrowsShown());
    gestures.UpdateGrowArrows();
    EXPECT_FALSE(gestures.IsGrowArrowHot(true));
    Drag(110, 135);  // above the button, over the title
    EXPECT_EQ(desk.m_mouseButton, button);
    gestures.UpdateGrowArrows();
    EXPECT_TRUE(gestures.IsGrowArrowHot(true));
    EXPECT_FALSE(gestures.IsGrowArrowHot(false));
    Release(110, 135);
    ASSERT_EQ(box.inputs.size(), 2U);
    EXPECT_EQ(box.inputs.at(1).get(), button);
    EXPECT_FALSE(gestures.GrowArrowsShown());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskGestures, AWireEndsInTheVinputThatItGrew) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutVinput(300, 100);
    Press(80, 10);
    Drag(310, 110);
    gestures.UpdateGrowArrows();
    EXPECT_TRUE(gestures.GrowArrowsShown());
    Drag(310, 90);  // below the button, outside the box
    Release(310, 90);
    ASSERT_EQ(to.inputs.size(), 2U);
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(to.inputs.at(1)->connections.Contains(*from.outputs.at(0)));
}

TEST_F(DeskGestures, OnAPlaceholdersVinputThereAreNone) {
    COpBox& box = PutVinput(100, 100);
    box.placeholder = std::make_shared<const Placeholder>();
    box.boxhelp = "why";
    Press(110, 110);
    EXPECT_FALSE(gestures.GrowArrowsShown());
    Drag(110, 135);
    Release(110, 135);
    EXPECT_EQ(box.inputs.size(), 1U);
}

TEST_F(DeskGestures, TheArrowsComeDownOverAnotherButton) {
    COpBox& box = PutVinput(100, 100);
    Press(110, 110);
    Drag(180, 110);
    EXPECT_EQ(desk.m_mouseButton, box.outputs.at(0).get());
    EXPECT_FALSE(gestures.GrowArrowsShown());
    Release(180, 110);
    EXPECT_EQ(box.inputs.size(), 1U);
}

TEST_F(DeskGestures, LinesAreSelectedByModifier) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    COpBox& high = PutLink(300, 300);
    Wire(from, 0, to, 0);    // level at 16
    Wire(from, 0, high, 0);  // from (100, 16) to (300, 316)
    COpButton* level = to.inputs.at(0).get();
    COpButton* steep = high.inputs.at(0).get();
    from.selected = 1;
    desk.m_selectedButton = from.outputs.at(0).get();
    Press(250, 16);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(level));
    EXPECT_EQ(from.selected, 0);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    EXPECT_THAT(windows.calls, Contains("selection"));
    Forget();
    Click(200, 166, kShift);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(level, steep));
    Click(200, 166, kShift);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(level, steep));
    Click(250, 16, kControl);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(steep));
    Click(250, 16, kControl);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(steep, level));
    Click(250, 16);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(level));
    EXPECT_THAT(windows.calls, Not(Contains("selection")));
    ExpectUntouched();
}

TEST_F(DeskGestures, ALineUnderABoxCannotBeHit) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    Wire(from, 0, to, 0);
    COpBox& over = PutLink(150, 0);
    Click(200, 16);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_EQ(over.selected, 1);
}

TEST_F(DeskGestures, ARubberBandTakesWhatLiesWhollyInsideFromEitherSide) {
    COpBox& inside = PutLink(100, 100);
    COpBox& partly = PutLink(250, 100);  // all but its right edge
    Press(90, 90);
    EXPECT_EQ(gestures.Current(), Kind::kBandAdd);
    Drag(340, 200);
    EXPECT_EQ(gestures.Band(), (DeskRect{90, 90, 250, 110}));
    EXPECT_EQ(inside.selected, 0);
    windows.calls.clear();
    Release(340, 200);
    EXPECT_EQ(inside.selected, 1);
    EXPECT_EQ(partly.selected, 0);
    EXPECT_THAT(windows.calls, Contains("selection"));
    Press(340, 200);
    EXPECT_EQ(inside.selected, 0);
    Drag(90, 90);
    Release(90, 90);
    EXPECT_EQ(inside.selected, 1);
    EXPECT_EQ(partly.selected, 0);
    ExpectUntouched();
}

TEST_F(DeskGestures, ARubberBandAddsWithShiftAndTogglesWithControl) {
    COpBox& one = PutLink(100, 100);
    COpBox& other = PutLink(300, 100);
    one.selected = 1;
    Press(290, 90, kShift);
    EXPECT_EQ(gestures.Current(), Kind::kBandAdd);
    Drag(410, 160);
    Release(410, 160);
    EXPECT_EQ(one.selected + other.selected, 2);
    other.selected = 0;
    Press(90, 90, kControl);
    EXPECT_EQ(gestures.Current(), Kind::kBandToggle);
    Drag(410, 160);
    Release(410, 160);
    EXPECT_EQ(one.selected, 0);
    EXPECT_EQ(other.selected, 1);
}

TEST_F(DeskGestures, APressOnTheEmptyDeskClearsTheSelection) {
    COpBox& box = PutLink(0, 0);
    box.selected = 1;
    Click(400, 400);
    EXPECT_EQ(box.selected, 0);
    EXPECT_THAT(windows.calls, Contains("selection"));
    Forget();
    Click(400, 400);
    EXPECT_THAT(windows.calls, Not(Contains("selection")));
}

TEST_F(DeskGestures, MiddleOrShiftAndRightPanUnlessTheDeskIsEmpty) {
    PointerState pointer;
    pointer.at = {100, 100};
    gestures.Move(pointer);
    pointer.middle = true;
    pointer.at = {130, 120};
    gestures.Move(pointer);
    EXPECT_EQ(document.offset[0], 0);
    ExpectUntouched();
    PutLink(0, 0);
    pointer.at = {140, 125};
    gestures.Move(pointer);
    EXPECT_EQ(document.offset[0], 10);
    EXPECT_EQ(document.offset[1], -5);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(windows.calls, Contains("scrollbars"));
    pointer.middle = false;
    pointer.right = true;
    pointer.at = {150, 125};
    gestures.Move(pointer);
    EXPECT_EQ(document.offset[0], 10);
    pointer.shift = true;
    pointer.at = {151, 125};
    gestures.Move(pointer);
    EXPECT_EQ(document.offset[0], 11);
}

TEST_F(DeskGestures, HeldBeyondTheEdgeTheDeskScrollsUnderTheBoxes) {
    document.zoomFactor = 2;
    COpBox& box = PutLink(300, 100);
    Press(340, 110);
    gestures.Tick();  // inside: nothing
    EXPECT_EQ(document.offset[0], 0);
    Drag(450, -20);  // right of 400 and below 0
    Forget();
    const float held = gestures.Mouse().x - BoxRect(box).left;
    const WindowPoint before = view.ToWindow({BoxRect(box).left, BoxRect(box).bottom});
    gestures.Tick();
    EXPECT_EQ(document.offset[0], -8);
    EXPECT_EQ(document.offset[1], 8);
    const WindowPoint after = view.ToWindow({BoxRect(box).left, BoxRect(box).bottom});
    EXPECT_FLOAT_EQ(after.x, before.x);
    EXPECT_FLOAT_EQ(after.y, before.y);
    EXPECT_FLOAT_EQ(gestures.Mouse().x - BoxRect(box).left, held);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(windows.calls, Contains("scrollbars"));
    Release(450, -20);
    gestures.Tick();
    EXPECT_EQ(document.offset[0], -8);
}

TEST_F(DeskGestures, TheStatusTellsOfWhatLiesUnderThePointer) {
    COpBox& box = PutLink(0, 0);
    box.boxhelp = "of the box";
    box.inputs.at(0)->help = "of the input";
    Hover(400, 400);
    EXPECT_EQ(status, kDeskHint);
    EXPECT_THAT(status,
                testing::StartsWith("LEFT: Select        SHIFT+LEFT: Add Selection        CTRL+LEFT"));
    Hover(40, 10);
    EXPECT_EQ(status, "of the box");
    Hover(10, 10);
    EXPECT_EQ(status, "of the input");
    Press(40, 10);
    status.clear();
    Drag(400, 400);
    EXPECT_EQ(status, "");
}

TEST_F(DeskGestures, HelpIsStaleOnceWhatItIsAboutHasGone) {
    COpBox& box = PutVinput(0, 0);
    box.boxhelp = "of the box";
    box.inputs.at(0)->help = "of the input";
    Hover(10, 10);
    EXPECT_EQ(gestures.TakeStaleHelp(), std::nullopt);
    desk.DeleteButton();
    EXPECT_EQ(gestures.TakeStaleHelp(), "of the input");
    EXPECT_EQ(gestures.TakeStaleHelp(), std::nullopt);
    Hover(40, 10);
    EXPECT_EQ(gestures.TakeStaleHelp(), std::nullopt);
    desk.DeleteBox(box);
    EXPECT_EQ(gestures.TakeStaleHelp(), "of the box");
    Hover(40, 10);
    EXPECT_EQ(status, kDeskHint);
    EXPECT_EQ(gestures.TakeStaleHelp(), std::nullopt);
}

TEST_F(DeskGestures, HelpIsStaleAlsoWhereAnotherBoxHasComeToLieInThePlace) {
    PutLink(0, 0).boxhelp = "of the box";
    Hover(40, 10);
    document.DeleteContents();
    PutLink(0, 0);
    EXPECT_EQ(gestures.TakeStaleHelp(), "of the box");
}

TEST_F(DeskGestures, TheFirstMoveAfterAMenuOnlyTellsWhereThePointerIs) {
    COpBox& box = PutLink(100, 100);
    Press(140, 110);
    gestures.IgnoreNextMove();
    Drag(300, 300);
    EXPECT_EQ(BoxRect(box).left, 100);
    Drag(310, 300);
    EXPECT_EQ(BoxRect(box).left, 110);
}

TEST_F(DeskGestures, AZoomUnderAPointerAtRestMovesNoBoxAtTheNextPress) {
    COpBox& box = PutLink(100, 100);
    Hover(140, 110);
    document.zoomFactor = 2;
    const PointerState pressed = At(150, 120, true, kNoKey);
    gestures.LeftDown(pressed);
    gestures.Move(pressed);
    EXPECT_EQ(BoxRect(box).left, 100);
}

TEST_F(DeskGestures, AMoveWithoutTheButtonTellsThatTheReleaseWentElsewhere) {
    COpBox& box = PutLink(100, 100);
    Press(140, 110);
    Drag(900, 110);
    Hover(300, 300);
    EXPECT_EQ(gestures.Current(), Kind::kIdle);
    const float left = BoxRect(box).left;
    gestures.Tick();
    EXPECT_EQ(document.offset[0], 0);
    Drag(310, 300);
    EXPECT_EQ(BoxRect(box).left, left);
}

TEST_F(DeskGestures, ACancelledGestureHasNoResult) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutVinput(300, 100);
    Press(80, 10);
    Drag(310, 110);
    gestures.UpdateGrowArrows();
    windows.calls.clear();
    gestures.Cancel();
    EXPECT_THAT(windows.calls, Contains("repaint"));
    EXPECT_FALSE(gestures.GrowArrowsShown());
    Release(310, 90);
    EXPECT_EQ(to.inputs.size(), 1U);
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_EQ(desk.m_selectedButton, from.outputs.at(0).get());
    Press(600, 500);
    Drag(-100, -100);
    gestures.Cancel();
    gestures.Tick();
    EXPECT_EQ(document.offset[0], 0);
    Release(-100, -100);
    EXPECT_EQ(from.selected + to.selected, 0);
    windows.calls.clear();
    gestures.Cancel();
    EXPECT_THAT(windows.calls, IsEmpty());
}

TEST_F(DeskGestures, APanIsCountedFromWhereTheOtherButtonWentDown) {
    PutLink(0, 0);
    PointerState pointer;
    pointer.at = {100, 100};
    gestures.Move(pointer);
    pointer.middle = true;
    pointer.at = {400, 300};
    gestures.OtherDown(pointer);
    pointer.at = {403, 300};
    gestures.Move(pointer);
    EXPECT_EQ(document.offset[0], 3);
    EXPECT_EQ(document.offset[1], 0);
}

TEST_F(DeskGestures, AZoomDuringAGestureGoesOnWithIt) {
    PutLink(100, 100);
    Press(140, 110);
    EXPECT_TRUE(view.Wheel(1));
    EXPECT_EQ(gestures.Current(), Kind::kMoving);
}

}  // namespace
}  // namespace tavrin
