// SPDX-License-Identifier: Apache-2.0
// What the pointer does with frames and notes, and what their menu offers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/DeskGestures.h"
#include "desk/DeskMenu.h"
#include "document/EditHistory.h"
#include "support/ChangeAuditor.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeLink;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = tavrin::DeskGestures::Kind;

// A window of 800 by 600 whose lower left corner shows the desk's origin.
class FrameGestures : public test::DocumentTest {
  protected:
    FrameGestures() {
        view.SetSize(800, 600);
        document.KeepHistory();
    }

    COpBox& PutBox(float left, float bottom) {
        COpBox& box = Add(MakeLink("b", ++m_lastWid));
        box.layout = {left, bottom, 16, 100, 32, 30, 40};
        return box;
    }
    int PutFrame(DeskRect rect, DeskFrame::Kind kind = DeskFrame::Kind::kFrame) {
        AddFrame(document.frames, {.kind = kind,
                                   .left = rect.left,
                                   .bottom = rect.bottom,
                                   .width = rect.width,
                                   .height = rect.height,
                                   .text = "text"});
        return document.frames.rbegin()->first;
    }
    void Begin() {
        document.edits.Replaced();
        document.SetModified(false);
        auditor.TakeAsItIs();
    }
    DeskRect RectOf(int number) { return FrameRect(document.frames.at(number)); }
    PointerState At(float x, float y, bool left, bool shift = false, bool control = false) {
        PointerState pointer;
        pointer.at = view.ToWindow({x, y});
        pointer.left = left;
        pointer.shift = shift;
        pointer.control = control;
        return pointer;
    }
    void Press(float x, float y, bool shift = false, bool control = false) {
        gestures.Move(At(x, y, false));
        gestures.LeftDown(At(x, y, true, shift, control));
    }
    void Drag(float x, float y) { gestures.Move(At(x, y, true)); }
    void Release(float x, float y) { gestures.LeftUp(At(x, y, false)); }
    void Click(float x, float y, bool shift = false, bool control = false) {
        Press(x, y, shift, control);
        Release(x, y);
    }
    std::vector<std::string> Steps() {
        std::vector<std::string> steps;
        for (size_t i = 0; i < document.History()->Count(); ++i) steps.push_back(document.History()->Name(i));
        return steps;
    }

    test::RecordingView windows{document};
    test::SeenDesk desk{document, host, windows};
    DeskViewport view{document, {0.1F, 10}};
    tavrin::DeskGestures gestures{
        {document, desk, view, windows, host.GetSite().report, 3, [](const std::string&) {}}};
    std::vector<int> edited;
    DeskMenu menu{{document,
                   desk,
                   gestures,
                   windows,
                   host.GetSite().types,
                   [](const std::string&) {},
                   {},
                   {},
                   [this](int number) { edited.push_back(number); }}};
    test::ChangeAuditor auditor{document, desk};

  private:
    int m_lastWid = 0;
};

TEST_F(FrameGestures, AFrameIsDraggedByItsBarWithWhatLiesOnIt) {
    COpBox& box = PutBox(150, 150);
    const int frame = PutFrame({100, 100, 300, 200});
    Begin();
    Press(200, 290);
    Drag(230, 300);
    Drag(300, 340);
    Release(300, 340);
    EXPECT_EQ(RectOf(frame), (DeskRect{200, 150, 300, 200}));
    EXPECT_EQ(box.layout.left, 250);
    EXPECT_EQ(box.layout.bottom, 200);
    EXPECT_EQ(box.selected, 0);
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(frame));
    EXPECT_THAT(Steps(), ElementsAre("Move"));
    EXPECT_EQ(auditor.Look(), "");
    desk.Undo();
    EXPECT_EQ(RectOf(frame), (DeskRect{100, 100, 300, 200}));
}

TEST_F(FrameGestures, BelowItsBarAFrameIsEmptyDesk) {
    const int frame = PutFrame({100, 100, 300, 200});
    Begin();
    desk.m_selectedFrames = {frame};
    Press(250, 200);
    EXPECT_EQ(gestures.Current(), Kind::kBandAdd);
    EXPECT_THAT(desk.m_selectedFrames, IsEmpty());
    Drag(300, 250);
    Release(300, 250);
    EXPECT_EQ(RectOf(frame).left, 100);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(FrameGestures, ACornerResizes) {
    const int frame = PutFrame({100, 100, 300, 200});
    Begin();
    Press(398, 102);
    EXPECT_EQ(gestures.Current(), Kind::kResizing);
    EXPECT_EQ(gestures.HotCorner(), 1U);
    Drag(450, 52);
    Drag(500, 52);
    Release(500, 52);
    EXPECT_EQ(RectOf(frame), (DeskRect{100, 50, 402, 250}));
    EXPECT_THAT(Steps(), ElementsAre("Resize"));
    EXPECT_EQ(auditor.Look(), "");
}

TEST_F(FrameGestures, AClickSelectsAsItDoesForBoxes) {
    COpBox& box = PutBox(600, 300);
    box.selected = 1;
    const int frame = PutFrame({100, 100, 300, 200});
    const int note = PutFrame({500, 100, 100, 80}, DeskFrame::Kind::kNote);
    Begin();
    Click(200, 290);
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(frame));
    EXPECT_EQ(box.selected, 0);
    Click(550, 140, true);
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(frame, note));
    Click(550, 140, false, true);
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(frame));
    Click(650, 340);
    EXPECT_THAT(desk.m_selectedFrames, IsEmpty()) << "a click on a box selects that alone";
    EXPECT_FALSE(document.IsModified());
}

TEST_F(FrameGestures, BoxesAndWiresComeBeforeThem) {
    PutBox(150, 270);
    PutFrame({100, 100, 300, 200});
    Begin();
    EXPECT_FALSE(gestures.FrameAt({200, 290}));
    EXPECT_TRUE(gestures.FrameAt({300, 290}));
    Click(200, 290);
    EXPECT_THAT(desk.m_selectedFrames, IsEmpty());
}

TEST_F(FrameGestures, ARubberBandSelectsThoseThatLieInIt) {
    const int note = PutFrame({500, 100, 100, 80}, DeskFrame::Kind::kNote);
    PutFrame({100, 100, 300, 200});
    Begin();
    Press(450, 50);
    Drag(650, 250);
    Release(650, 250);
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(note));
    Press(450, 50, false, true);
    Drag(650, 250);
    Release(650, 250);
    EXPECT_THAT(desk.m_selectedFrames, IsEmpty());
}

TEST_F(FrameGestures, SeveralSelectedMoveTogether) {
    COpBox& box = PutBox(600, 300);
    const int note = PutFrame({500, 100, 100, 80}, DeskFrame::Kind::kNote);
    Begin();
    desk.SelectAllBoxes();
    Press(550, 140);
    Drag(560, 150);
    Release(560, 150);
    EXPECT_EQ(RectOf(note).left, 510);
    EXPECT_EQ(box.layout.left, 610);
    EXPECT_THAT(Steps(), ElementsAre("Move"));
}

TEST_F(FrameGestures, AsManyAsThereMayBeMoveWithThousandsOfBoxes) {
    for (int i = 0; i < 5000; ++i) PutBox(static_cast<float>(i % 100) * 120, static_cast<float>(i) + 100);
    for (size_t i = 1; i < kMostFrames; ++i) PutFrame({static_cast<float>(i) * 10, 4000, 300, 200});
    const int all = PutFrame({-100, -100, 200000, 9000});
    Begin();
    view.CentreView({0, 8880});
    document.SetModified(false);
    Press(100, 8890);
    ASSERT_EQ(gestures.Current(), Kind::kMoving);
    for (float step = 1; step < 5; ++step) Drag(100 + step, 8890);
    Release(104, 8890);
    EXPECT_EQ(RectOf(all).left, -96);
    EXPECT_EQ(RectOf(1).left, 14);
    EXPECT_EQ(document.m_boxes.back()->layout.left, 99 * 120 + 4);
    desk.SelectAllBoxes();
    Press(100, 8890);
    Drag(110, 8890);
    Release(110, 8890);
    EXPECT_EQ(RectOf(1).left, 24);
    EXPECT_THAT(Steps(), ElementsAre("Move", "Move"));
    desk.GoToStep(0);
    EXPECT_EQ(RectOf(1).left, 10);
}

TEST_F(FrameGestures, NotesThatWaitFollowThePointerAndDropAtThePress) {
    desk.m_selectedFrames = {PutFrame({500, 100, 100, 80}, DeskFrame::Kind::kNote)};
    Begin();
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{200, 200});
    gestures.Move(At(250, 230, false));
    EXPECT_EQ(FrameRect(desk.FramesInHand().front()).Middle(), (DeskPoint{250, 230}));
    Click(250, 230);
    EXPECT_FALSE(desk.HasPending());
    EXPECT_EQ(document.frames.size(), 2U);
}

TEST_F(FrameGestures, AnUndoInTheMidstOfADragEndsIt) {
    const int frame = PutFrame({100, 100, 300, 200});
    Begin();
    Press(398, 102);
    Drag(450, 52);
    gestures.Cancel();
    desk.DeleteFrame(frame);
    Drag(470, 52);
    Release(470, 52);
    EXPECT_TRUE(document.frames.empty());
}

TEST_F(FrameGestures, TheMenuRenamesColoursAndDeletes) {
    const int frame = PutFrame({100, 100, 300, 200});
    PutBox(150, 150);
    Begin();
    const auto entries = menu.Open({200, 290});
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries->at(0).text, "Rename Frame");
    EXPECT_EQ(entries->at(1).text, "Color");
    EXPECT_EQ(entries->at(1).entries.size(), static_cast<size_t>(DeskFrame::kColors));
    EXPECT_TRUE(entries->at(1).entries.at(0).checked);
    EXPECT_EQ(entries->at(3).text, "Delete Frame");
    menu.Choose(desk_command::kEditFrame);
    EXPECT_THAT(edited, ElementsAre(frame));
    menu.Choose(desk_command::kFirstFrameColor + 4);
    EXPECT_EQ(document.frames.at(frame).color, 4);
    menu.Choose(desk_command::kDeleteFrame);
    EXPECT_TRUE(document.frames.empty());
    EXPECT_EQ(document.m_boxes.size(), 1U);
    menu.Choose(desk_command::kDeleteFrame);
    EXPECT_THAT(Steps(), ElementsAre("Color", "Delete"));
}

TEST_F(FrameGestures, ThereIsNoMenuBelowTheBarAndNoneOnALockedDesk) {
    const int frame = PutFrame({100, 100, 300, 200});
    Begin();
    EXPECT_FALSE(menu.Open({200, 200}));
    ASSERT_TRUE(menu.Open({200, 290}));
    document.lock = 1;
    menu.Choose(desk_command::kDeleteFrame);
    menu.Choose(desk_command::kFirstFrameColor + 4);
    EXPECT_EQ(document.frames.at(frame).color, 0);
    EXPECT_FALSE(menu.Open({200, 290}));
}

TEST_F(FrameGestures, TheMenuOfABoxIsItsOwnAgainAfterOneOfAFrame) {
    PutFrame({100, 100, 300, 200});
    COpBox& box = PutBox(150, 150);
    Begin();
    ASSERT_TRUE(menu.Open({200, 290}));
    ASSERT_TRUE(menu.Open({200, 195}));
    menu.Choose(desk_command::kDeleteBox);
    EXPECT_FALSE(COpBox::IsLive(&box));
    EXPECT_EQ(document.frames.size(), 1U);
}

}  // namespace
}  // namespace tavrin
