// SPDX-License-Identifier: Apache-2.0
// Boxes are put in order, deleted with their flow kept, and muted: each as one edit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "document/EditHistory.h"
#include "site/Site.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::PrintNetwork;
using test::Wire;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class DeskEdits : public test::DocumentTest {
  protected:
    COpBox& Put(std::unique_ptr<COpBox> box, float left, float bottom, int selected = 1) {
        box->wid = ++m_lastWid;
        box->layout = {left, bottom, 16, 100, 32, 30, 40};
        box->xypos[0] = left + 50;
        box->xypos[1] = bottom + 24;
        box->selected = selected;
        return Add(std::move(box));
    }
    COpBox& Link(float left, float bottom, int selected = 1) {
        return Put(MakeLink("b", 0), left, bottom, selected);
    }
    void Begin() {
        document.KeepHistory();
        document.SetModified(false);
        view.calls.clear();
    }
    std::vector<std::string> Steps() {
        std::vector<std::string> names;
        for (size_t step = 0; step < document.History()->Count(); ++step)
            names.push_back(document.History()->Name(step));
        return names;
    }
    // A layout made anew puts each box where it stands.
    void ExpectAnchored() {
        for (const auto& box : document.m_boxes) {
            const DeskPoint middle = BoxRect(*box).Middle();
            EXPECT_FLOAT_EQ(box->xypos[0], middle.x) << box->wid;
            EXPECT_FLOAT_EQ(box->xypos[1], middle.y) << box->wid;
        }
    }
    static DeskPoint CornerOf(const COpBox& box) { return {box.layout.left, box.layout.bottom}; }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};

  private:
    int m_lastWid = 0;
};

// Order.

TEST_F(DeskEdits, AligningMovesTheSelectedBoxesAsOneStep) {
    COpBox& one = Link(0, 0);
    COpBox& other = Link(50, 100);
    COpBox& outside = Link(-500, 300, 0);
    Begin();
    const std::string before = PrintNetwork(document);
    desk.AlignSelected(DeskAlign::kLeft);
    EXPECT_EQ(CornerOf(one), (DeskPoint{0, 0}));
    EXPECT_EQ(CornerOf(other), (DeskPoint{0, 100}));
    EXPECT_EQ(CornerOf(outside), (DeskPoint{-500, 300}));
    ExpectAnchored();
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("repaint", "scrollbars", "Align: touched b_2"));
    EXPECT_THAT(Steps(), ElementsAre("Align"));
    desk.Undo();
    EXPECT_EQ(PrintNetwork(document), before);
}

TEST_F(DeskEdits, DistributingMovesTheSelectedBoxesAsOneStep) {
    Link(0, 0);
    COpBox& inner = Link(110, 10);
    Link(400, 20);
    Begin();
    desk.DistributeSelected(DeskAxis::kAcross);
    EXPECT_EQ(CornerOf(inner), (DeskPoint{200, 10}));
    ExpectAnchored();
    EXPECT_THAT(Steps(), ElementsAre("Distribute"));
}

TEST_F(DeskEdits, WhatIsInOrderAlreadyIsNoEdit) {
    Link(0, 0);
    Link(0, 100);
    Begin();
    desk.AlignSelected(DeskAlign::kLeft);
    desk.DistributeSelected(DeskAxis::kUp);
    EXPECT_THAT(Steps(), IsEmpty());
    EXPECT_FALSE(document.IsModified());
    desk.Tidy(COpDesk::TidyScope::kAll);
    const size_t steps = Steps().size();
    desk.Tidy(COpDesk::TidyScope::kAll);
    desk.Tidy(COpDesk::TidyScope::kAll);
    EXPECT_EQ(Steps().size(), steps);
}

TEST_F(DeskEdits, OneBoxOrNoneIsNotPutInOrder) {
    Link(3, 4, 0);
    desk.AlignSelected(DeskAlign::kTop);
    desk.Tidy(COpDesk::TidyScope::kAll);
    document.m_boxes.front()->selected = 1;
    desk.Tidy(COpDesk::TidyScope::kSelected);
    EXPECT_EQ(CornerOf(*document.m_boxes.front()), (DeskPoint{3, 4}));
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskEdits, TidyingAllPutsFeedersLeftOfWhatTheyFeed) {
    COpBox& last = Link(0, 0, 0);
    COpBox& first = Link(500, 200, 0);
    Wire(first, 0, last, 0);
    Begin();
    desk.Tidy(COpDesk::TidyScope::kAll);
    EXPECT_FLOAT_EQ(last.layout.left, BoxRect(first).Right() + 64);
    EXPECT_FLOAT_EQ(ButtonAnchor({&first, true, 0}).y, ButtonAnchor({&last, false, 0}).y)
        << "the wire is level";
    ExpectAnchored();
    EXPECT_THAT(Steps(), ElementsAre("Tidy"));
}

TEST_F(DeskEdits, TidyingTheSelectionLeavesTheOthersWhereTheyAre) {
    COpBox& one = Link(0, 0);
    COpBox& other = Link(10, 10);
    COpBox& outside = Link(20, 20, 0);
    Wire(one, 0, outside, 0);
    Wire(outside, 0, other, 0);
    Begin();
    desk.Tidy(COpDesk::TidyScope::kSelected);
    EXPECT_EQ(CornerOf(outside), (DeskPoint{20, 20}));
    EXPECT_FALSE(BoxRect(one).Overlaps(BoxRect(other)));
    EXPECT_THAT(view.calls, Contains(HasSubstr("Tidy: touched b_1 b_2")));
}

TEST_F(DeskEdits, TheOrderOfTheStackDoesNotMatterToATidyDesk) {
    for (int i = 0; i < 6; ++i) Link(0, 0);
    Begin();
    desk.Tidy(COpDesk::TidyScope::kAll);
    const size_t steps = Steps().size();
    desk.RaiseBox(*document.m_boxes.back());
    desk.Tidy(COpDesk::TidyScope::kAll);
    EXPECT_EQ(Steps().size(), steps);
}

TEST_F(DeskEdits, AtAnyZoomABoxIsAnchoredWhereItIsPut) {
    document.zoomFactor = 0.5F;
    Link(0, 0);
    Link(50, 100);
    desk.AlignSelected(DeskAlign::kRight);
    ExpectAnchored();
    desk.Tidy(COpDesk::TidyScope::kAll);
    ExpectAnchored();
}

TEST_F(DeskEdits, BesideABoxOfManyInputsColumnsAreFurtherApart) {
    COpBox& first = Link(0, 0);
    std::string inputs;
    for (int i = 0; i < 12; ++i) inputs += "input i" + std::to_string(i) + " { float { 0 0 1 0 %g } }\n";
    COpBox& many = Put(MakeBox("m", inputs), 300, 0);
    Wire(first, 0, many, 5);
    desk.Tidy(COpDesk::TidyScope::kAll);
    EXPECT_FLOAT_EQ(many.layout.left - BoxRect(first).Right(), 112);
}

// Deleting with the flow kept.

TEST_F(DeskEdits, DeletingWithTheFlowJoinsWhatFedToWhatWasFedAsOneStep) {
    COpBox& from = Link(0, 0, 0);
    COpBox& one = Link(200, 0);
    COpBox& two = Link(400, 0);
    COpBox& to = Link(600, 0, 0);
    Wire(from, 0, one, 0);
    Wire(one, 0, two, 0);
    Wire(two, 0, to, 0);
    Begin();
    const std::string before = PrintNetwork(document);
    desk.DeleteKeepingFlow();
    EXPECT_THAT(test::WidsOf(document), ElementsAre(1, 4));
    EXPECT_EQ(to.inputs[0]->connections.First(), from.outputs[0].get());
    EXPECT_TRUE(from.outputs[0]->connections.Contains(*to.inputs[0]));
    EXPECT_EQ(from.outputs[0]->connections.Size(), 1U);
    EXPECT_THAT(Steps(), ElementsAre("Delete"));
    desk.Undo();
    EXPECT_EQ(PrintNetwork(document), before);
    desk.Redo();
    EXPECT_EQ(to.inputs[0]->connections.First(), from.outputs[0].get());
}

TEST_F(DeskEdits, WithoutTheFlowNothingIsJoined) {
    COpBox& from = Link(0, 0, 0);
    COpBox& one = Link(200, 0);
    COpBox& to = Link(600, 0, 0);
    Wire(from, 0, one, 0);
    Wire(one, 0, to, 0);
    desk.DeleteSelection();
    EXPECT_TRUE(to.inputs[0]->connections.Empty());
}

TEST_F(DeskEdits, ALineThatIsSelectedAsWellIsCutAndNotJoined) {
    COpBox& from = Link(0, 0, 0);
    COpBox& box = Link(200, 0);
    COpBox& to = Link(400, 0, 0);
    COpBox& other = Link(400, 100, 0);
    Wire(from, 0, box, 0);
    Wire(box, 0, to, 0);
    Wire(box, 0, other, 0);
    desk.m_selectedConnects = {to.inputs[0].get()};
    desk.DeleteKeepingFlow();
    EXPECT_TRUE(to.inputs[0]->connections.Empty());
    EXPECT_EQ(other.inputs[0]->connections.First(), from.outputs[0].get());
}

TEST_F(DeskEdits, ACircleThatAFileHasBroughtIsNotMadeSmaller) {
    const char* link = "input a { float { 0 0 1 0 %g } } output x { float out }";
    COpBox& one = Put(MakeBox("b", link), 0, 0, 0);
    COpBox& other = Put(MakeBox("b", link), 200, 0);
    Wire(one, 0, other, 0);
    Wire(other, 0, one, 0);
    desk.DeleteKeepingFlow();
    EXPECT_TRUE(one.inputs[0]->connections.Empty()) << "it would feed itself";
}

TEST_F(DeskEdits, FiveThousandBoxesAreDeletedWithTheirFlowKept) {
    std::vector<COpBox*> boxes;
    for (int i = 0; i < 5000; ++i) {
        boxes.push_back(&Link(static_cast<float>(i), 0, i % 2));
        if (i > 0) Wire(*boxes[boxes.size() - 2], 0, *boxes.back(), 0);
    }
    desk.DeleteKeepingFlow();
    ASSERT_EQ(document.m_boxes.size(), 2500U);
    size_t wired = 0;
    for (const auto& box : document.m_boxes) wired += box->inputs[0]->connections.Size();
    EXPECT_EQ(wired, 2499U);
}

// Muting.

TEST_F(DeskEdits, MutingMutesAllThatAreNotAndUnmutesIfAllAre) {
    COpBox& one = Link(0, 0);
    COpBox& other = Link(100, 0);
    COpBox& outside = Link(200, 0, 0);
    one.muted = 1;
    Begin();
    desk.MuteSelected();
    EXPECT_EQ(one.muted + other.muted, 2);
    EXPECT_EQ(outside.muted, 0);
    EXPECT_THAT(view.calls, Contains("Mute: touched b_2 wires"));
    EXPECT_THAT(view.calls, Contains("repaint"));
    desk.MuteSelected();
    EXPECT_EQ(one.muted + other.muted, 0);
    EXPECT_THAT(Steps(), ElementsAre("Mute", "Unmute"));
    desk.Undo();
    EXPECT_EQ(one.muted + other.muted, 2);
    desk.Undo();
    EXPECT_EQ(one.muted, 1);
    EXPECT_EQ(other.muted, 0);
}

TEST_F(DeskEdits, MutingNothingIsNoEdit) {
    Link(0, 0, 0);
    Begin();
    desk.MuteSelected();
    EXPECT_THAT(Steps(), IsEmpty());
    EXPECT_FALSE(document.IsModified());
}

// Wires.

TEST_F(DeskEdits, CuttingOrMovingNoWireIsNoEdit) {
    COpBox& one = Link(0, 0);
    COpBox& other = Link(200, 0);
    Wire(one, 0, other, 0);
    Begin();
    desk.CutWire(*one.inputs[0]);
    desk.MoveWire(*one.inputs[0], *other.inputs[0]);
    desk.MoveWire(*other.inputs[0], *other.inputs[0]);
    EXPECT_EQ(other.inputs[0]->connections.First(), one.outputs[0].get());
    EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(DeskEdits, AWireThatIsCutOrMovedAwayIsNotSelectedAnyMore) {
    COpBox& one = Link(0, 0);
    COpBox& other = Link(200, 0);
    COpBox& third = Link(400, 0);
    Wire(one, 0, other, 0);
    desk.m_selectedConnects = {other.inputs[0].get()};
    desk.MoveWire(*other.inputs[0], *third.inputs[0]);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    desk.m_selectedConnects = {third.inputs[0].get()};
    desk.CutWire(*third.inputs[0]);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_TRUE(one.outputs[0]->connections.Empty());
}

}  // namespace
}  // namespace tavrin
