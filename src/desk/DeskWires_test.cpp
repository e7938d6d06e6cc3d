// SPDX-License-Identifier: Apache-2.0
// What the pointer does with wires where a library wants more of it: they are pulled off inputs, let go of
// over the empty desk and by Escape, and boxes that are dropped on them go between.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/DeskGestures.h"
#include "document/EditHistory.h"
#include "site/Site.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::Wire;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Kind = tavrin::DeskGestures::Kind;

// A window of 800 by 600 whose lower left corner shows the desk's origin. Boxes are 100 by 48 with a body of
// 32; inputs are 30 wide and outputs 40.
class Wires : public test::DocumentTest {
  protected:
    explicit Wires(const std::vector<std::string>& settings = {"pullwires", "dropwires", "escapewires",
                                                               "insertboxes"}) {
        for (const std::string& name : settings) host.GetSite().settings.Store("desk." + name, "1");
        desk.emplace(document, host, windows);
        gestures.emplace(tavrin::DeskGestures::Needs{document, *desk, view, windows, host.GetSite().report, 3,
                                                     [](const std::string&) {},
                                                     [this](COpButton& button, DeskPoint at) {
                                                         dropped.push_back(at);
                                                         droppedFrom = &button;
                                                         return takesDropped;
                                                     }});
        view.SetSize(800, 600);
    }
    COpBox& Put(std::unique_ptr<COpBox> box, float left, float bottom) {
        box->wid = ++m_lastWid;
        box->layout = {left, bottom, 16, 100, 32, 30, 40};
        return Add(std::move(box));
    }
    COpBox& PutLink(float left, float bottom) { return Put(MakeLink("b", 0), left, bottom); }
    void KeepHistory() {
        document.KeepHistory();
        document.SetModified(false);
        windows.calls.clear();
    }
    PointerState At(float x, float y, bool left) {
        PointerState pointer;
        pointer.at = view.ToWindow({x, y});
        pointer.left = left;
        return pointer;
    }
    void Press(float x, float y) {
        gestures->Move(At(x, y, false));
        gestures->LeftDown(At(x, y, true));
    }
    void Drag(float x, float y) { gestures->Move(At(x, y, true)); }
    void Release(float x, float y) { gestures->LeftUp(At(x, y, false)); }
    void DragAll(float x, float y, float toX, float toY) {
        Press(x, y);
        Drag(toX, toY);
        Release(toX, toY);
    }
    std::vector<std::string> Steps() {
        std::vector<std::string> names;
        for (size_t step = 0; step < document.History()->Count(); ++step)
            names.push_back(document.History()->Name(step));
        return names;
    }

    test::RecordingView windows{document};
    std::optional<test::SeenDesk> desk;
    DeskViewport view{document, {0.1F, 10}};
    std::optional<tavrin::DeskGestures> gestures;
    std::vector<DeskPoint> dropped;  // what the hook was told
    const COpButton* droppedFrom = nullptr;
    bool takesDropped = false;

  private:
    int m_lastWid = 0;
};

struct PlainWires : Wires {
    PlainWires() : Wires({}) {}
};

// Pulling.

class PulledWires : public Wires {
  protected:
    PulledWires() : from(PutLink(0, 0)), to(PutLink(300, 0)), other(PutLink(300, 200)), in(*to.inputs[0]) {
        Wire(from, 0, to, 0);
        KeepHistory();
    }
    bool IsAsItWas() {
        return in.connections.First() == from.outputs[0].get() && Steps().empty() && !document.IsModified();
    }

    COpBox& from;
    COpBox& to;
    COpBox& other;
    COpButton& in;
};

TEST_F(PulledWires, AreInHandByTheirOutputOnceThePointerLeavesTheInput) {
    Press(310, 10);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
    Drag(315, 12);
    EXPECT_EQ(desk->m_pulledInput, nullptr) << "still on the input";
    Drag(280, 60);
    EXPECT_EQ(desk->m_pulledInput, &in);
    EXPECT_EQ(desk->m_selectedButton, from.outputs[0].get());
    EXPECT_TRUE(IsAsItWas()) << "until the release";
}

TEST_F(PulledWires, EnterTheInputThatTheyArePutOnAsOneStep) {
    DragAll(310, 10, 310, 210);
    EXPECT_TRUE(in.connections.Empty());
    EXPECT_EQ(other.inputs[0]->connections.First(), from.outputs[0].get());
    EXPECT_TRUE(from.outputs[0]->connections.Contains(*other.inputs[0]));
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
    EXPECT_THAT(Steps(), ElementsAre("Move Wire"));
    desk->Undo();
    EXPECT_EQ(in.connections.First(), from.outputs[0].get());
    EXPECT_TRUE(other.inputs[0]->connections.Empty());
}

TEST_F(PulledWires, AreCutWhereTheyAreLetGoOfOverTheEmptyDesk) {
    DragAll(310, 10, 200, 300);
    EXPECT_TRUE(in.connections.Empty());
    EXPECT_TRUE(from.outputs[0]->connections.Empty());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_THAT(Steps(), ElementsAre("Cut Wire"));
    EXPECT_THAT(dropped, IsEmpty()) << "nobody is to look for a box";
    desk->Undo();
    EXPECT_EQ(in.connections.First(), from.outputs[0].get());
}

TEST_F(PulledWires, GoBackWhereTheyComeBackToTheirInput) {
    Press(310, 10);
    Drag(200, 300);
    Drag(310, 10);
    Release(310, 10);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
}

TEST_F(PulledWires, GoBackWhereTheyAreLetGoOfOverABoxOrBeyondTheWindow) {
    DragAll(310, 10, 340, 210);
    EXPECT_TRUE(IsAsItWas());
    DragAll(310, 10, 80, 10);  // an output
    EXPECT_TRUE(IsAsItWas());
    DragAll(310, 10, 400, -300);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
}

TEST_F(PulledWires, GoBackAtEscape) {
    Press(310, 10);
    Drag(200, 300);
    EXPECT_TRUE(gestures->LetGo());
    EXPECT_EQ(gestures->Current(), Kind::kIdle);
    Drag(210, 310);
    Release(210, 310);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_FALSE(gestures->LetGo()) << "nothing is left in hand";
}

TEST_F(PulledWires, GoBackWhenTheGestureIsCancelled) {
    Press(310, 10);
    Drag(200, 300);
    gestures->Cancel();
    Release(200, 300);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
}

TEST_F(PulledWires, GoBackWhereAPressComesBeforeAnyRelease) {
    Press(310, 10);
    Drag(200, 300);
    gestures->LeftDown(At(310, 210, true));
    Release(310, 210);
    EXPECT_TRUE(IsAsItWas());
    EXPECT_TRUE(other.inputs[0]->connections.Empty());
    EXPECT_EQ(desk->m_pulledInput, nullptr);
}

TEST_F(PulledWires, AClickOnAConnectedInputPicksIt) {
    Press(310, 10);
    Release(310, 10);
    EXPECT_EQ(desk->m_selectedButton, &in);
    EXPECT_TRUE(IsAsItWas());
    Press(380, 210);
    EXPECT_EQ(in.connections.First(), other.outputs[0].get());
}

TEST_F(PulledWires, ThatWouldCloseALoopStayAndAreTold) {
    COpBox& first = PutLink(0, 400);
    Wire(first, 0, from, 0);  // first to from to to
    document.SetModified(false);
    DragAll(310, 10, 10, 410);
    EXPECT_EQ(in.connections.First(), from.outputs[0].get());
    EXPECT_THAT(Alerts(), ElementsAre("That would create an endless loop!  Watch status box for warnings."));
    EXPECT_EQ(desk->m_selectedButton, nullptr);
}

TEST_F(PulledWires, PutOnAnInputThatTheirOutputFeedsAlreadyAreWholeThere) {
    Wire(from, 0, other, 0);
    DragAll(310, 10, 310, 210);
    EXPECT_TRUE(in.connections.Empty());
    EXPECT_EQ(other.inputs[0]->connections.First(), from.outputs[0].get());
    EXPECT_TRUE(from.outputs[0]->connections.Contains(*other.inputs[0]));
}

TEST_F(PulledWires, AreForgottenWithWhatTheyHangOn) {
    Press(310, 10);
    Drag(200, 300);
    desk->DeleteBox(to);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    Release(200, 300);
    desk->Undo();
    Press(310, 10);
    Drag(200, 300);
    ASSERT_NE(desk->m_pulledInput, nullptr);
    desk->DeleteBox(from);
    EXPECT_EQ(desk->m_pulledInput, nullptr);
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    Release(310, 210);
    EXPECT_TRUE(other.inputs[0]->connections.Empty());
}

TEST_F(PulledWires, AreLeftAsTheyAreIfTheirInputWasWiredAnewMeanwhile) {
    Press(310, 10);
    Drag(200, 300);
    desk->Connect(in, *other.outputs[0]);
    Release(200, 300);
    EXPECT_EQ(in.connections.First(), other.outputs[0].get());
}

TEST_F(PulledWires, AnUndoInTheMidstLetsGo) {
    desk->CutWire(in);
    desk->Undo();
    Press(310, 10);
    Drag(200, 300);
    desk->Redo();
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    Release(310, 210);
    EXPECT_TRUE(other.inputs[0]->connections.Empty());
}

TEST_F(PulledWires, AVinputThatIsWiredGrowsAsBeforeAndLosesNothing) {
    COpBox& grows = Put(MakeBox("v", "vinput v { float { 0 0 1 0 %g } }"), 300, 400);
    Wire(from, 0, grows, 0);
    Press(310, 410);
    gestures->UpdateGrowArrows();
    Drag(310, 440);  // the arrow above it
    gestures->UpdateGrowArrows();
    Release(310, 440);
    ASSERT_EQ(grows.inputs.size(), 2U);
    EXPECT_EQ(grows.inputs[1]->connections.First(), from.outputs[0].get());
    EXPECT_TRUE(grows.inputs[0]->connections.Empty());
}

TEST_F(PlainWires, AWireStaysOnItsInputAndTheInputIsPicked) {
    COpBox& from = PutLink(0, 0);
    COpBox& to = PutLink(300, 0);
    Wire(from, 0, to, 0);
    Press(310, 10);
    Drag(200, 300);
    EXPECT_EQ(desk->m_selectedButton, to.inputs[0].get());
    Release(200, 300);
    EXPECT_EQ(desk->m_selectedButton, to.inputs[0].get());
    EXPECT_EQ(to.inputs[0]->connections.First(), from.outputs[0].get());
    EXPECT_FALSE(gestures->LetGo());
    EXPECT_EQ(desk->m_selectedButton, to.inputs[0].get());
}

// Dropping wires, and Escape.

TEST_F(Wires, AWireLetGoOfOverTheEmptyDeskLetsItsButtonGo) {
    PutLink(0, 0);
    DragAll(80, 10, 400, 300);
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_THAT(dropped, ElementsAre(DeskPoint{400, 300}));
}

TEST_F(Wires, AClickOnAButtonPicksItStill) {
    COpBox& box = PutLink(0, 0);
    DragAll(80, 10, 82, 12);
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
    EXPECT_THAT(dropped, IsEmpty());
}

TEST_F(Wires, AWireLetGoOfOverABoxOrBeyondTheWindowKeepsItsButton) {
    COpBox& box = PutLink(0, 0);
    PutLink(300, 0);
    DragAll(80, 10, 340, 10);
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
    DragAll(80, 10, 400, -300);
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
    EXPECT_THAT(dropped, IsEmpty());
}

TEST_F(Wires, WhoTakesUpADroppedWireHasItsButton) {
    COpBox& box = PutLink(0, 0);
    takesDropped = true;
    DragAll(80, 10, 400, 300);
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
    EXPECT_EQ(droppedFrom, box.outputs[0].get());
}

TEST_F(PlainWires, AWireLetGoOfOverTheEmptyDeskKeepsItsButton) {
    COpBox& box = PutLink(0, 0);
    DragAll(80, 10, 400, 300);
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
    EXPECT_FALSE(gestures->LetGo());
    EXPECT_EQ(desk->m_selectedButton, box.outputs[0].get());
}

TEST_F(Wires, EscapeLetsGoOfAPickedButtonAndOnce) {
    PutLink(0, 0);
    EXPECT_FALSE(gestures->LetGo());
    Press(80, 10);
    Release(80, 10);
    windows.calls.clear();
    EXPECT_TRUE(gestures->LetGo());
    EXPECT_EQ(desk->m_selectedButton, nullptr);
    EXPECT_THAT(windows.calls, Contains("repaint"));
    EXPECT_FALSE(gestures->LetGo());
    EXPECT_FALSE(document.IsModified());
}

// Boxes on wires.

class InsertedBoxes : public Wires {
  protected:
    InsertedBoxes() : from(PutLink(0, 100)), to(PutLink(500, 100)), box(PutLink(250, 300)) {
        Wire(from, 0, to, 0);
        KeepHistory();
    }
    bool IsBetween() {
        return box.inputs[0]->connections.First() == from.outputs[0].get() &&
               to.inputs[0]->connections.First() == box.outputs[0].get() &&
               box.outputs[0]->connections.Contains(*to.inputs[0]) &&
               from.outputs[0]->connections.Size() == 1;
    }
    bool IsFree() {
        return box.inputs[0]->connections.Empty() && box.outputs[0]->connections.Empty() &&
               to.inputs[0]->connections.First() == from.outputs[0].get();
    }

    COpBox& from;
    COpBox& to;
    COpBox& box;
};

TEST_F(InsertedBoxes, ABoxThatIsDraggedOntoAWireGoesBetweenAsOneStepWithTheDrag) {
    DragAll(290, 310, 290, 110);
    EXPECT_TRUE(IsBetween());
    EXPECT_THAT(Steps(), ElementsAre("Move"));
    EXPECT_THAT(windows.calls, Contains("Move: touched b_3 wires"));
    desk->Undo();
    EXPECT_TRUE(IsFree());
    EXPECT_EQ(box.xypos[1], 0);
}

TEST_F(InsertedBoxes, ABoxThatIsDraggedPastTheWireStaysFree) {
    Press(290, 310);
    Drag(290, 110);
    Drag(290, 400);
    Release(290, 400);
    EXPECT_TRUE(IsFree());
}

TEST_F(InsertedBoxes, AClickOnABoxOverAWireChangesNothing) {
    box.layout.bottom = 100;
    Press(290, 110);
    Drag(290, 110);
    Release(290, 110);
    EXPECT_TRUE(IsFree());
    EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(InsertedBoxes, SeveralBoxesThatAreDraggedStayAsTheyAre) {
    COpBox& more = PutLink(250, 400);
    box.selected = more.selected = 1;
    DragAll(290, 310, 290, 110);
    EXPECT_TRUE(IsFree());
}

TEST_F(InsertedBoxes, ABoxThatWasAddedGoesBetweenWhereItIsDropped) {
    auto fresh = MakeLink("new", 9);
    fresh->layout = {250, 100, 16, 100, 32, 30, 40};
    COpBox* added = fresh.get();
    desk->m_pendingBoxes.push_back(std::move(fresh));
    desk->m_pendingPlaced = true;
    gestures->LeftDown(At(300, 110, true));
    EXPECT_EQ(added->inputs[0]->connections.First(), from.outputs[0].get());
    EXPECT_EQ(to.inputs[0]->connections.First(), added->outputs[0].get());
    EXPECT_THAT(Steps(), ElementsAre("Add"));
    desk->Undo();
    EXPECT_EQ(to.inputs[0]->connections.First(), from.outputs[0].get());
}

TEST_F(InsertedBoxes, ADragThatIsCancelledInsertsNothing) {
    Press(290, 310);
    Drag(290, 110);
    gestures->Cancel();
    Release(290, 110);
    EXPECT_TRUE(IsFree());
}

TEST_F(PlainWires, ABoxThatIsDroppedOnAWireStaysFree) {
    COpBox& from = PutLink(0, 100);
    COpBox& to = PutLink(500, 100);
    COpBox& box = PutLink(250, 300);
    Wire(from, 0, to, 0);
    DragAll(290, 310, 290, 110);
    EXPECT_TRUE(box.inputs[0]->connections.Empty());
    auto fresh = MakeLink("new", 9);
    fresh->layout = {250, 100, 16, 100, 32, 30, 40};
    desk->m_pendingBoxes.push_back(std::move(fresh));
    gestures->LeftDown(At(300, 110, true));
    EXPECT_EQ(to.inputs[0]->connections.First(), from.outputs[0].get());
}

}  // namespace
}  // namespace tavrin
