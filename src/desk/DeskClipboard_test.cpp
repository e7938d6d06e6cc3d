// SPDX-License-Identifier: Apache-2.0
// Cut, Copy, Paste and Delete, and the commands of the context menus.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::MakeBox;
using test::MakeLink;
using test::WidsOf;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

class DeskClipboard : public test::DocumentTest {
  protected:
    // A numbered box of the network, selected or not, at the bottom of the stack.
    COpBox& Stand(std::unique_ptr<COpBox> box, int selected = 0) {
        COpBox& put = Add(desk, std::move(box));
        put.selected = selected;
        view.calls.clear();
        return put;
    }
    COpBox& Link(const std::string& name, int selected = 0) { return Stand(MakeLink(name, 0), selected); }
    static std::vector<std::string> NamesOf(const COpDesk::BoxVector& boxes) {
        std::vector<std::string> names;
        for (const auto& box : boxes) names.push_back(box->BoxTitleWid());
        return names;
    }
    std::vector<std::string> Pending() { return NamesOf(desk.m_pendingBoxes); }
    std::vector<std::string> Clipboard() { return NamesOf(desk.m_clipboardBoxes); }
    std::vector<std::string> Network() {
        std::vector<std::string> names;
        for (const auto& box : document.m_boxes) names.push_back(box->BoxTitleWid());
        return names;
    }
    void PointAt(COpButton& button) {
        desk.m_mouseBox = button.owner;
        desk.m_mouseButton = &button;
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

// Copy.

TEST_F(DeskClipboard, CopiesOfSelectedBoxesAreKeptWithTheirConnectionsAndNoNumbers) {
    COpBox& from = Link("a", 1);
    Link("left");
    COpBox& to = Link("b", 1);
    Wire(from, 0, to, 0);
    desk.CopySelection();
    EXPECT_THAT(Clipboard(), ElementsAre("a_0", "b_0"));
    EXPECT_EQ(desk.m_clipboardBoxes.at(1)->inputs.at(0)->connections.First(),
              desk.m_clipboardBoxes.at(0)->outputs.at(0).get());
    EXPECT_THAT(view.finder, ElementsAre("a_1", "left_2", "b_3"));
    EXPECT_THAT(view.calls, IsEmpty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(from.selected + to.selected, 2);
}

TEST_F(DeskClipboard, CopyWithNothingSelectedEmptiesTheClipboardAndPasteDoesNothing) {
    COpBox& box = Link("a", 1);
    desk.CopySelection();
    EXPECT_TRUE(desk.CanPaste());
    box.selected = 0;
    desk.CopySelection();
    EXPECT_FALSE(desk.CanPaste());
    box.selected = 1;
    desk.m_pendingBoxes.push_back(MakeLink("waiting", 7));
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Pending(), ElementsAre("waiting_7"));
    EXPECT_EQ(box.selected, 1);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskClipboard, TheClipboardHoldsOnlyTheLastCopyAndNumbersOnTheDeskAreLeftAlone) {
    COpBox& first = Link("a", 1);
    desk.CopySelection();
    Link("b", 1);
    first.selected = 0;
    desk.CopySelection();
    EXPECT_THAT(Clipboard(), ElementsAre("b_0"));
    EXPECT_THAT(view.finder, ElementsAre("a_1", "b_2"));
    EXPECT_EQ(desk.NextWid(), 3);
}

TEST_F(DeskClipboard, TheClipboardOutlivesTheDocument) {
    Link("a", 1);
    Link("b");
    desk.CopySelection();
    document.DeleteContents();
    desk.OnInitialUpdate();
    Link("other");
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Pending(), ElementsAre("a_2"));
}

// Cut.

TEST_F(DeskClipboard, ACutBoxLeavesWhatItFedWithoutAConnection) {
    COpBox& from = Link("a", 1);
    COpBox& to = Link("b");
    Wire(from, 0, to, 0);
    desk.CutBoxes();
    EXPECT_THAT(Network(), ElementsAre("b_2"));
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    ASSERT_THAT(Clipboard(), ElementsAre("a_0"));
    EXPECT_TRUE(desk.m_clipboardBoxes.at(0)->outputs.at(0)->connections.Empty());
    EXPECT_THAT(view.finder, ElementsAre("b_2"));
    EXPECT_THAT(view.calls, ElementsAre("Cut: went a_1 wires"));
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(desk.NextWid(), 1);
}

TEST_F(DeskClipboard, BoxesCutTogetherKeepTheirConnectionWhenPasted) {
    COpBox& from = Link("a", 1);
    COpBox& to = Link("b", 1);
    Wire(from, 0, to, 0);
    desk.CutBoxes();
    EXPECT_THAT(document.m_boxes, IsEmpty());
    Link("first");
    desk.PasteBoxes(std::nullopt);
    ASSERT_THAT(Pending(), ElementsAre("a_2", "b_3"));
    EXPECT_EQ(desk.m_pendingBoxes.at(1)->inputs.at(0)->connections.First(),
              desk.m_pendingBoxes.at(0)->outputs.at(0).get());
    EXPECT_TRUE(desk.m_pendingBoxes.at(0)->outputs.at(0)->connections.Contains(
        *desk.m_pendingBoxes.at(1)->inputs.at(0)));
}

TEST_F(DeskClipboard, CutWithNothingSelectedOnlyEmptiesTheClipboard) {
    COpBox& box = Link("a", 1);
    desk.CopySelection();
    box.selected = 0;
    desk.CutBoxes();
    EXPECT_THAT(Clipboard(), IsEmpty());
    EXPECT_THAT(Network(), ElementsAre("a_1"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskClipboard, NothingRefersToBoxesThatWereCut) {
    COpBox& kept = Link("kept");
    std::vector<COpButton*> keptInputs;
    for (int i = 0; i < 3; ++i) {
        COpBox& box = Link("a", i == 1 ? 0 : 1);
        desk.m_selectedConnects.push_back(box.inputs.at(0).get());
        if (i == 1) keptInputs.push_back(box.inputs.at(0).get());
        if (i == 2) PointAt(*box.inputs.at(0));
        if (i == 2) desk.m_selectedButton = box.outputs.at(0).get();
    }
    desk.m_selectedConnects.push_back(kept.inputs.at(0).get());
    keptInputs.push_back(kept.inputs.at(0).get());
    desk.CutBoxes();
    EXPECT_EQ(desk.m_selectedConnects, keptInputs);
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    desk.ValidateReferences();
    EXPECT_EQ(host.Sink().log, "");
}

// Paste.

TEST_F(DeskClipboard, ARefusedCopyTakesTheSelectionAllTheSameAndTellsIt) {
    COpBox& only = Stand(MakeBox("one", "defs { maxinstances 1 }"), 1);
    desk.CopySelection();
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_THAT(view.calls, ElementsAre("selection", "repaint"));
    only.selected = 1;
    view.calls.clear();
    desk.DuplicateBox(only);
    EXPECT_EQ(only.selected, 0);
    EXPECT_THAT(view.calls, ElementsAre("selection"));
}

TEST_F(DeskClipboard, PastedBoxesWaitWithTheFirstAnchorUnderTheCursor) {
    COpBox& old = Link("old");
    for (const float x : {100.0F, 130.0F}) {
        COpBox& box = Link("a", 1);
        box.xypos[0] = x;
        box.xypos[1] = 50;
    }
    desk.CopySelection();
    old.selected = 1;
    desk.m_selectedButton = old.outputs.at(0).get();
    desk.m_selectedConnects = {old.inputs.at(0).get()};
    desk.PasteBoxes(DeskPoint{7, 9});
    ASSERT_THAT(Pending(), ElementsAre("a_4", "a_5"));
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(7.0F, 9.0F));
    EXPECT_THAT(desk.m_pendingBoxes.at(1)->xypos, ElementsAre(37.0F, 9.0F));
    EXPECT_TRUE(desk.m_pendingPlaced);
    EXPECT_THAT(desk.m_mouseDesk, ElementsAre(7.0F, 9.0F));
    EXPECT_FALSE(desk.AnyBoxSelected());  // of the network; the pasted ones are
    EXPECT_EQ(desk.m_pendingBoxes.at(0)->selected, 1);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(view.finder, ElementsAre("old_1", "a_2", "a_3", "a_4", "a_5"));
    EXPECT_THAT(view.calls,
                ElementsAre("selection", "repaint", "layout a_4", "layout a_5", "Paste: came a_4 a_5"));
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskClipboard, PastedWithTheCursorOutsideTheBoxesWaitUnseenAtTheOrigin) {
    COpBox& box = Link("a", 1);
    box.xypos[0] = 100;
    box.xypos[1] = 50;
    desk.CopySelection();
    desk.m_pendingPlaced = true;
    desk.m_mouseDesk[0] = 3;
    desk.PasteBoxes(std::nullopt);
    EXPECT_FALSE(desk.m_pendingPlaced);
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(0.0F, 0.0F));
    EXPECT_THAT(desk.m_mouseDesk, ElementsAre(3.0F, 0.0F));
}

TEST_F(DeskClipboard, AtAnotherZoomPastedAnchorsMoveByItsFactor) {
    COpBox& box = Link("a", 1);
    box.xypos[0] = 100;
    box.xypos[1] = 50;
    desk.CopySelection();
    document.zoomFactor = 0.5F;
    desk.PasteBoxes(DeskPoint{20, 10});
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(60.0F, 30.0F));
}

TEST_F(DeskClipboard, ASecondPasteDestroysTheGroupThatStillWaits) {
    Link("a", 1);
    desk.CopySelection();
    desk.PasteBoxes(std::nullopt);
    const size_t live = COpBox::LiveCount();
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Pending(), ElementsAre("a_2"));
    EXPECT_EQ(COpBox::LiveCount(), live);
    EXPECT_THAT(view.finder, ElementsAre("a_1", "a_2"));
}

TEST_F(DeskClipboard, AGroupThatWasDroppedStaysWhenTheNextIsPasted) {
    Link("a", 1);
    desk.CopySelection();
    desk.PasteBoxes(std::nullopt);
    desk.DropPending();
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Network(), ElementsAre("a_2", "a_1"));
    EXPECT_THAT(Pending(), ElementsAre("a_3"));
}

TEST_F(DeskClipboard, PastedBoxesBeyondTheirLimitAreRefusedAndTheirConnectionsGo) {
    const std::string two = "input i { float { 0 0 1 0 %g } } output o { float out } defs { maxinstances 2 }";
    COpBox& limited = Stand(MakeBox("two", two), 1);
    COpBox& between = Link("a", 1);
    COpBox& refused = Stand(MakeBox("two", two), 1);
    Wire(limited, 0, between, 0);
    Wire(between, 0, refused, 0);
    desk.CopySelection();
    desk.DeleteBox(limited);
    const size_t live = COpBox::LiveCount();
    desk.PasteBoxes(std::nullopt);
    EXPECT_THAT(Alerts(), ElementsAre("WARNING: not creating \"two\" (only 2 allowed on desk)"));
    EXPECT_THAT(Pending(), ElementsAre("two_1", "a_4"));
    EXPECT_EQ(COpBox::LiveCount(), live + 2);
    EXPECT_EQ(desk.m_pendingBoxes.at(1)->inputs.at(0)->connections.First(),
              desk.m_pendingBoxes.at(0)->outputs.at(0).get());
    EXPECT_TRUE(desk.m_pendingBoxes.at(1)->outputs.at(0)->connections.Empty());
}

// Delete.

TEST_F(DeskClipboard, DeleteTakesSelectedBoxesWhatWaitsAndSelectedConnections) {
    COpBox& from = Link("a");
    COpBox& gone = Link("b", 1);
    COpBox& to = Link("c");
    COpBox& fed = Link("d");
    Wire(from, 0, gone, 0);
    Wire(gone, 0, fed, 0);
    Wire(from, 0, to, 0);
    desk.m_pendingBoxes.push_back(MakeLink("waiting", desk.NextWid()));
    desk.m_selectedConnects = {gone.inputs.at(0).get(), to.inputs.at(0).get()};
    desk.DeleteSelection();
    EXPECT_THAT(Network(), ElementsAre("a_1", "c_3", "d_4"));
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(fed.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(from.outputs.at(0)->connections.Empty());
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Delete: went b_2 waiting_5 wires"));
    EXPECT_FALSE(desk.CanDelete());
}

TEST_F(DeskClipboard, DeletingASelectedConnectionAloneMarksTheDocument) {
    COpBox& box = Link("a");
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    desk.DeleteSelection();
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(Network(), ElementsAre("a_1"));
}

TEST_F(DeskClipboard, DroppingWhatWaitsAloneLeavesTheDocumentUnmodified) {
    Link("a");
    desk.m_pendingBoxes.push_back(MakeLink("waiting", desk.NextWid()));
    desk.DeleteSelection();
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Delete: went waiting_2"));
}

TEST_F(DeskClipboard, WhatWaitsUnderTheMouseCanBeDeletedWithNothingElseSelected) {
    Link("a", 1);
    desk.CopySelection();
    desk.PasteBoxes(std::nullopt);
    ASSERT_FALSE(desk.AnyBoxSelected());
    EXPECT_TRUE(desk.CanDelete());
    desk.DeleteSelection();
    EXPECT_FALSE(desk.CanDelete());
    EXPECT_THAT(Network(), ElementsAre("a_1"));
}

TEST_F(DeskClipboard, AnInputThatADeletedBoxFedStaysSelectedUntilTheNextDelete) {
    COpBox& from = Link("a");
    COpBox& to = Link("b");
    Wire(from, 0, to, 0);
    desk.m_selectedConnects = {to.inputs.at(0).get()};
    desk.DeleteBox(from);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(to.inputs.at(0).get()));
    EXPECT_TRUE(desk.CanDelete());
}

TEST_F(DeskClipboard, ASelectedBoxConnectionOrButtonCanBeDeleted) {
    COpBox& box = Link("a");
    EXPECT_FALSE(desk.CanDelete());
    box.selected = 1;
    EXPECT_TRUE(desk.CanDelete());
    box.selected = 0;
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    EXPECT_TRUE(desk.CanDelete());
    desk.m_selectedConnects.clear();
    desk.m_selectedButton = box.outputs.at(0).get();
    EXPECT_TRUE(desk.CanDelete());
}

// The context menu of a box.

TEST_F(DeskClipboard, ADuplicateLiesBesideItsOriginalOnTopWithoutConnections) {
    COpBox& feeder = Link("f", 1);
    COpBox& box = Link("a");
    box.xypos[0] = 100;
    box.xypos[1] = 50;
    Wire(feeder, 0, box, 0);
    desk.DuplicateBox(box);
    ASSERT_THAT(Network(), ElementsAre("a_3", "f_1", "a_2"));
    const COpBox& clone = *document.m_boxes.front();
    EXPECT_THAT(clone.xypos, ElementsAre(116.0F, 34.0F));
    EXPECT_TRUE(clone.inputs.at(0)->connections.Empty());
    EXPECT_EQ(clone.selected, 1);
    EXPECT_EQ(feeder.selected, 0);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("selection", "layout a_3", "Copy Box: came a_3 dropped a_3"));
    EXPECT_THAT(view.finder, ElementsAre("f_1", "a_2", "a_3"));
}

TEST_F(DeskClipboard, ADuplicateBeyondTheLimitIsRefused) {
    COpBox& box = Stand(MakeBox("one", "defs { maxinstances 1 }"));
    const size_t live = COpBox::LiveCount();
    desk.DuplicateBox(box);
    EXPECT_THAT(Alerts(), ElementsAre("WARNING: not creating \"one\" (only 1 allowed on desk)"));
    EXPECT_EQ(COpBox::LiveCount(), live);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskClipboard, DeletingTheBoxUnderTheMouseForgetsItAndItsButtons) {
    COpBox& box = Link("a");
    Link("b", 1);
    PointAt(*box.inputs.at(0));
    desk.DeleteBox(box);
    EXPECT_THAT(Network(), ElementsAre("b_2"));  // selected or not
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Delete Box: went a_1"));
    EXPECT_THAT(view.finder, ElementsAre("b_2"));
}

TEST_F(DeskClipboard, ABoxThatIsNotInTheNetworkIsNotDeleted) {
    const auto stranger = MakeLink("a", 1);
    desk.DeleteBox(*stranger);
    EXPECT_TRUE(COpBox::IsLive(stranger.get()));
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

// The context menu of a button.

TEST_F(DeskClipboard, ADeletedVinputIsGoneAndTheOthersAreRenumbered) {
    COpBox& from = Link("f");
    COpBox& box = Stand(MakeBox("m", "vinput v { float { 0 0 1 0 %g } vinstances 3 }"));
    Wire(from, 0, box, 1);
    Wire(from, 0, box, 2);
    desk.m_selectedButton = from.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(1).get(), box.inputs.at(2).get()};
    const COpButton* last = box.inputs.at(2).get();
    PointAt(*box.inputs.at(1));
    desk.DeleteButton();
    ASSERT_EQ(box.inputs.size(), 2U);
    EXPECT_EQ(box.inputs.at(1).get(), last);
    EXPECT_EQ(box.inputs.at(1)->DisplayName(), "v2");
    EXPECT_EQ(from.outputs.at(0)->connections.Size(), 1U);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(last));
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("layout m_2", "Delete Input: touched m_2 wires"));
}

TEST_F(DeskClipboard, TheOnlyCopyOfAVinputCanBeDeleted) {
    COpBox& box = Stand(MakeBox("m", "vinput v { float { 0 0 1 0 %g } } output o { float out }"));
    PointAt(*box.inputs.at(0));
    desk.DeleteButton();
    EXPECT_THAT(box.inputs, IsEmpty());
}

TEST_F(DeskClipboard, OtherButtonsAreNotDeleted) {
    COpBox& box = Link("a");
    desk.DeleteButton();
    for (COpButton* button : {box.inputs.at(0).get(), box.outputs.at(0).get()}) {
        PointAt(*button);
        desk.DeleteButton();
        EXPECT_EQ(desk.m_mouseButton, button);
    }
    EXPECT_EQ(box.inputs.size() + box.outputs.size(), 2U);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskClipboard, CuttingAnOutputsConnectionsDeselectsThem) {
    COpBox& from = Link("a");
    COpBox& to = Link("b");
    COpBox& other = Link("c");
    Wire(from, 0, to, 0);
    Wire(from, 0, other, 0);
    Wire(other, 0, from, 0);
    desk.m_selectedConnects = {to.inputs.at(0).get(), from.inputs.at(0).get(), other.inputs.at(0).get()};
    PointAt(*from.outputs.at(0));
    desk.DeleteConnections();
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(other.inputs.at(0)->connections.Empty());
    EXPECT_FALSE(from.inputs.at(0)->connections.Empty());
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(from.inputs.at(0).get()));
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Cut Wires: wires"));
}

TEST_F(DeskClipboard, CuttingAnInputsConnectionDeselectsIt) {
    COpBox& from = Link("a");
    COpBox& to = Link("b");
    COpBox& other = Link("c");
    Wire(from, 0, to, 0);
    Wire(from, 0, other, 0);
    desk.m_selectedConnects = {to.inputs.at(0).get(), other.inputs.at(0).get()};
    PointAt(*to.inputs.at(0));
    desk.DeleteConnections();
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    EXPECT_FALSE(other.inputs.at(0)->connections.Empty());
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(other.inputs.at(0).get()));
}

TEST_F(DeskClipboard, WithoutAConnectionThereIsNothingToCut) {
    COpBox& box = Link("a");
    desk.DeleteConnections();
    PointAt(*box.inputs.at(0));
    desk.DeleteConnections();
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskClipboard, TheArgumentIsToggledAndItsEditorTold) {
    COpBox& box = Link("a");
    PointAt(*box.inputs.at(0));
    desk.ToggleArgument();
    EXPECT_EQ(box.inputs.at(0)->arg, 1);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Argument: buttons a_1.in"));
    desk.ToggleArgument();
    EXPECT_EQ(box.inputs.at(0)->arg, 0);
}

TEST_F(DeskClipboard, OutputsAndButtonsWithoutTheEntryBecomeNoArgument) {
    COpBox& box = Link("a");
    box.inputs.at(0)->disableargflag = 1;
    for (COpButton* button : {box.inputs.at(0).get(), box.outputs.at(0).get()}) {
        PointAt(*button);
        desk.ToggleArgument();
        EXPECT_EQ(button->arg, 0);
    }
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskClipboard, AChosenCastSpreadsToTheButtonsThatAreTiedToIt) {
    COpBox& box = Stand(MakeBox("m",
                                "input i { float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n"
                                "output o { float out rgb out } defs { castlock.add i o }"));
    PointAt(*box.inputs.at(0));
    desk.ChooseCast(1);
    EXPECT_EQ(box.inputs.at(0)->currentcast, 1U);
    EXPECT_EQ(box.outputs.at(0)->currentcast, 1U);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Cast: touched m_1"));
}

TEST_F(DeskClipboard, ACastThatIsNoneIsNotChosen) {
    COpBox& box = Link("a");
    desk.ChooseCast(0);
    PointAt(*box.inputs.at(0));
    desk.ChooseCast(1);
    EXPECT_EQ(box.inputs.at(0)->currentcast, 0U);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskClipboard, CommandsDoNothingOnAButtonThatIsGone) {
    auto gone = MakeLink("gone", 5);
    desk.m_mouseButton = gone->inputs.at(0).get();
    gone.reset();
    desk.DeleteButton();
    desk.DeleteConnections();
    desk.ToggleArgument();
    desk.ChooseCast(0);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

}  // namespace
}  // namespace tavrin
