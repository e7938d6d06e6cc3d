// SPDX-License-Identifier: Apache-2.0
// How boxes enter and leave the desk.
#include "desk/OpDesk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::MakeBox;
using test::MakeLink;
using test::WidsOf;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;

class OpDesk : public test::DocumentTest {
  protected:
    // Admits a box and puts it into the network.
    COpBox& Admit(std::unique_ptr<COpBox> box) { return Add(desk, std::move(box)); }
    void Remove(size_t place) {
        const auto node = std::next(document.m_boxes.begin(), static_cast<std::ptrdiff_t>(place));
        auto box = std::move(*node);
        document.m_boxes.erase(node);
        desk.RemoveBox(std::move(box));
    }
    std::vector<std::string> Pending() {
        std::vector<std::string> names;
        for (const auto& box : desk.m_pendingBoxes) names.push_back(box->BoxTitleWid());
        return names;
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

TEST_F(OpDesk, AnEmptyDeskNumbersItsFirstBoxOne) {
    host.AddOperator("noise", "output o { float out }");
    desk.AddOperator("noise");
    EXPECT_THAT(Pending(), ElementsAre("noise_1"));
}

TEST_F(OpDesk, TheNumbersOfDeletedBoxesAreGivenAgainLowestFirst) {
    for (int i = 0; i < 3; ++i) Admit(MakeLink("a", 0));
    Remove(1);
    EXPECT_EQ(Admit(MakeLink("a", 0)).wid, 2);
    document.SortBoxesByWid();
    Remove(0);
    Remove(0);
    EXPECT_EQ(Admit(MakeLink("a", 0)).wid, 1);
    EXPECT_EQ(Admit(MakeLink("a", 0)).wid, 2);
    EXPECT_EQ(desk.NextWid(), 4);
}

TEST_F(OpDesk, AnAdmittedBoxIsNumberedSelectedLaidOutAndInTheBoxFinder) {
    const auto box = MakeLink("a", 77);
    EXPECT_TRUE(desk.AdmitBox(*box));
    EXPECT_EQ(box->wid, 1);  // whatever number it carried
    EXPECT_EQ(box->selected, 1);
    EXPECT_THAT(view.calls, ElementsAre("layout a_1", "Add Box: came a_1"));
    EXPECT_THAT(view.finder, ElementsAre("a_1"));
    EXPECT_THAT(document.m_boxes, IsEmpty());
    EXPECT_THAT(Pending(), IsEmpty());
}

TEST_F(OpDesk, ABoxBeyondItsLimitIsRefusedAndNothingHappens) {
    Admit(MakeBox("one", "defs { maxinstances 1 }"));
    view.calls.clear();
    const auto second = MakeBox("one", "defs { maxinstances 1 }");
    EXPECT_FALSE(desk.AdmitBox(*second));
    EXPECT_THAT(Alerts(), ElementsAre("WARNING: not creating \"one\" (only 1 allowed on desk)"));
    EXPECT_EQ(second->wid, 0);
    EXPECT_EQ(second->selected, 0);
    EXPECT_THAT(view.calls, IsEmpty());
    EXPECT_THAT(view.finder, ElementsAre("one_1"));
    EXPECT_EQ(desk.NextWid(), 2);
}

TEST_F(OpDesk, TheLimitCountsBoxesOfTheSameNameOnTheDeskAndUnderTheMouse) {
    Add(MakeBox("two", "", 1));
    Add(MakeBox("Two", "", 2));
    Add(MakeBox("other", "", 3));
    const auto box = MakeBox("two", "defs { maxinstances 2 }");
    EXPECT_TRUE(desk.AdmitBox(*box));
    desk.m_pendingBoxes.push_back(MakeBox("two", "", 4));
    EXPECT_FALSE(desk.AdmitBox(*box));
    EXPECT_EQ(host.Sink().LastAlert(), "WARNING: not creating \"two\" (only 2 allowed on desk)");
    document.m_boxes.pop_front();
    EXPECT_TRUE(desk.AdmitBox(*box));
    desk.m_clipboardBoxes.push_back(MakeBox("two", ""));
    EXPECT_TRUE(desk.AdmitBox(*box));  // the clipboard is no part of the desk
}

TEST_F(OpDesk, ALimitOfNoughtIsNoneAndOneBelowItRefusesAll) {
    for (int i = 0; i < 5; ++i) Admit(MakeBox("any", "defs { maxinstances 0 }"));
    EXPECT_FALSE(desk.AdmitBox(*MakeBox("none", "defs { maxinstances -1 }")));
}

TEST_F(OpDesk, AnAddedOperatorWaitsUnderTheMouse) {
    host.AddOperator("Noise", "output o { float out }");
    desk.m_pendingPlaced = true;
    desk.AddOperator("nOISE");
    ASSERT_THAT(Pending(), ElementsAre("Noise_1"));
    EXPECT_EQ(desk.m_pendingBoxes.at(0)->selected, 1);
    EXPECT_FALSE(desk.m_pendingPlaced);
    EXPECT_THAT(document.m_boxes, IsEmpty());
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls,
                ElementsAre("repaint", "layout Noise_1", "layout Noise_1", "Add Operator: came Noise_1"));
    EXPECT_THAT(view.finder, ElementsAre("Noise_1"));
}

TEST_F(OpDesk, AddingClearsEverySelectionAndRefreshesTheViewsIfABoxWasSelected) {
    host.AddOperator("noise", "output o { float out }");
    COpBox& box = Admit(MakeLink("a", 0));
    desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    view.calls.clear();
    desk.AddOperator("noise");
    EXPECT_EQ(box.selected, 0);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(view.calls, ElementsAre("selection", "repaint", "layout noise_2", "layout noise_2",
                                        "Add Operator: came noise_2"));
}

TEST_F(OpDesk, AStoreThatReordersTheStackRepaints) {
    for (const int wid : {1, 2}) document.m_boxes.push_front(MakeLink("a", wid));
    document.Store();
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    EXPECT_THAT(view.calls, ElementsAre("repaint"));
}

// An operator that brings no box, by every way it can come to that.
class RefusedOperator : public OpDesk, public testing::WithParamInterface<const char*> {
  protected:
    RefusedOperator() {
        host.AddOperator("link", "output o { float out }");
        host.AddOperator("limited", "defs { maxinstances -1 }");
        host.AddOperator("broken", "nonsense\n");
        host.AddOperator("empty", "");
        host.AddOperator("macro", "tavrn-version 1\nopdesk {\noops");
        std::filesystem::remove(host.AddOperator("gone", "output o { float out }"));
    }
};

TEST_P(RefusedOperator, LeavesNothingToBeSeenOfWhatWaited) {
    desk.AddOperator("link");
    view.calls.clear();
    desk.AddOperator(GetParam());
    EXPECT_EQ(Alerts().size(), 1U);
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_THAT(view.calls, ElementsAre("repaint", "Add Operator: went link_1"));
}

TEST_P(RefusedOperator, LeavesNothingToBeSeenOfASelection) {
    const COpBox& box = Admit(MakeLink("a", 0));
    view.calls.clear();
    desk.AddOperator(GetParam());
    EXPECT_EQ(Alerts().size(), 1U);
    EXPECT_EQ(box.selected, 0);
    EXPECT_THAT(view.calls, ElementsAre("selection", "repaint"));
}

INSTANTIATE_TEST_SUITE_P(Ways, RefusedOperator,
                         testing::Values("limited", "broken", "empty", "macro", "gone", "unknown"),
                         [](const auto& way) { return std::string(way.param); });

TEST_F(OpDesk, AddingReplacesWhatWaits) {
    host.AddOperator("one", "defs { maxinstances 1 }");
    desk.AddOperator("one");
    desk.AddOperator("one");
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_THAT(Pending(), ElementsAre("one_1"));
    EXPECT_THAT(view.finder, ElementsAre("one_1"));
}

TEST_F(OpDesk, AddingASecondOfOneWarnsAndLeavesNoBox) {
    host.AddOperator("one", "defs { maxinstances 1 }");
    desk.AddOperator("one");
    desk.DropPending();
    const size_t live = COpBox::LiveCount();
    desk.AddOperator("one");
    EXPECT_THAT(Alerts(), ElementsAre("WARNING: not creating \"one\" (only 1 allowed on desk)"));
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_EQ(COpBox::LiveCount(), live);
    EXPECT_THAT(view.finder, ElementsAre("one_1"));
}

TEST_F(OpDesk, AnOperatorThatCannotBeAddedIsAlertedAndTheDeskIsAsItWas) {
    host.AddOperator("waiting", "output o { float out }");
    const std::string gone = host.AddOperator("gone", "");
    const std::string empty = host.AddOperator("empty", "# nothing\n\n");
    const std::string broken = host.AddOperator("broken", "nonsense");
    std::filesystem::remove(gone);
    const std::pair<const char*, std::string> kCases[] = {
        {"unknown", "unknown: unknown operator name"},
        {"gone", "unable to open " + gone + " for reading"},
        {"empty", empty + " near line 3: unexpected input"},
        {"broken", host.GetSite().WorkPath("boxdef.tmp") +
                       " near line 1: unexpected input (operator broken of " +
                       host.Registry().FindByName("broken")->path + ")"},
    };
    COpBox& box = Admit(MakeLink("a", 0));
    const size_t live = COpBox::LiveCount();
    for (const auto& [name, message] : kCases) {
        desk.AddOperator("waiting");
        desk.m_selectedButton = box.outputs.at(0).get();
        box.selected = 1;
        host.Sink().alerts.clear();
        desk.AddOperator(name);
        EXPECT_THAT(Alerts(), ElementsAre(message));
        // Selection and pending boxes are gone all the same.
        EXPECT_THAT(Pending(), IsEmpty()) << name;
        EXPECT_EQ(box.selected, 0) << name;
        EXPECT_EQ(desk.m_selectedButton, nullptr) << name;
        EXPECT_EQ(COpBox::LiveCount(), live) << name;
        EXPECT_THAT(view.finder, ElementsAre("a_1")) << name;
    }
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
}

TEST_F(OpDesk, ThePendingBoxesAreDroppedOnTopInTheirOrder) {
    Admit(MakeLink("old", 0));
    for (const char* name : {"a", "b", "c"}) {
        auto box = MakeLink(name, 0);
        desk.AdmitBox(*box);
        desk.m_pendingBoxes.push_back(std::move(box));
    }
    view.calls.clear();
    desk.DropPending();
    EXPECT_THAT(WidsOf(document), ElementsAre(4, 3, 2, 1));
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("Add: dropped a_2 b_3 c_4"));
    EXPECT_THAT(view.finder, ElementsAre("old_1", "a_2", "b_3", "c_4"));
}

TEST_F(OpDesk, DroppingNothingChangesNothing) {
    desk.DropPending();
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(OpDesk, ARemovedBoxTakesItsNumberItsNameAndEveryReferenceAlong) {
    COpBox& box = Admit(MakeLink("a", 0));
    COpBox& feeder = Admit(MakeLink("b", 0));
    COpBox& fed = Admit(MakeLink("c", 0));
    Wire(feeder, 0, box, 0);
    Wire(box, 0, fed, 0);
    desk.m_mouseBox = &box;
    desk.m_mouseButton = box.inputs.at(0).get();
    desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get(), fed.inputs.at(0).get()};
    const size_t live = COpBox::LiveCount();
    Remove(0);
    EXPECT_EQ(COpBox::LiveCount(), live - 1);
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    // The input that the box fed stays a member, unconnected.
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(fed.inputs.at(0).get()));
    EXPECT_TRUE(fed.inputs.at(0)->connections.Empty());
    EXPECT_TRUE(feeder.outputs.at(0)->connections.Empty());
    EXPECT_THAT(view.finder, ElementsAre("b_2", "c_3"));
    EXPECT_EQ(desk.NextWid(), 1);
}

TEST_F(OpDesk, RemovingABoxLeavesReferencesToOthersAlone) {
    Admit(MakeLink("a", 0));
    COpBox& other = Admit(MakeLink("b", 0));
    desk.m_mouseBox = &other;
    desk.m_mouseButton = other.outputs.at(0).get();
    desk.m_selectedButton = other.inputs.at(0).get();
    Remove(0);
    EXPECT_EQ(desk.m_mouseBox, &other);
    EXPECT_EQ(desk.m_mouseButton, other.outputs.at(0).get());
    EXPECT_EQ(desk.m_selectedButton, other.inputs.at(0).get());
}

TEST_F(OpDesk, ABoxThatTheFileNumbersNoughtLeavesTheBoxFinderToo) {
    Add(MakeLink("a", 0));
    Add(MakeLink("b", 1));
    desk.OnInitialUpdate();
    ASSERT_THAT(view.finder, ElementsAre("a_0", "b_1"));
    Remove(0);
    EXPECT_THAT(view.finder, ElementsAre("b_1"));
}

TEST_F(OpDesk, DeletingPendingBoxesGivesTheirNumbersBack) {
    for (int i = 0; i < 3; ++i) {
        auto box = MakeLink("a", 0);
        desk.AdmitBox(*box);
        desk.m_pendingBoxes.push_back(std::move(box));
    }
    desk.m_mouseBox = desk.m_pendingBoxes.at(1).get();
    desk.DeletePending();
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_THAT(view.finder, IsEmpty());
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.NextWid(), 1);
}

TEST_F(OpDesk, ARaisedBoxStandsOnTop) {
    for (int i = 0; i < 3; ++i) Admit(MakeLink("a", 0));
    COpBox& last = BoxAt(document, 2);
    desk.RaiseBox(last);
    EXPECT_THAT(WidsOf(document), ElementsAre(3, 1, 2));
    EXPECT_EQ(&BoxAt(document, 0), &last);
    desk.RaiseBox(last);
    EXPECT_THAT(WidsOf(document), ElementsAre(3, 1, 2));
    const auto stranger = MakeLink("a", 9);
    desk.RaiseBox(*stranger);
    EXPECT_THAT(WidsOf(document), ElementsAre(3, 1, 2));
}

TEST_F(OpDesk, TheAnchorMovesFurtherByTheFactorOfTheZoom) {
    COpBox& box = Admit(MakeLink("a", 0));
    box.xypos[0] = 10;
    desk.MoveBox(box, 3, -4);
    EXPECT_THAT(box.xypos, ElementsAre(13.0F, -4.0F));
    document.zoomFactor = 0.5F;
    desk.MoveBox(box, 3, -4);
    EXPECT_THAT(box.xypos, ElementsAre(14.5F, -6.0F));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(OpDesk, TheSelectedBoxesMoveTogether) {
    COpBox& moved = Admit(MakeLink("a", 0));
    COpBox& left = Admit(MakeLink("b", 0));
    left.selected = 0;
    document.zoomFactor = 2;
    view.calls.clear();
    desk.MoveSelectedBoxes(1, 0);
    EXPECT_THAT(moved.xypos, ElementsAre(2.0F, 0.0F));
    EXPECT_THAT(left.xypos, ElementsAre(0.0F, 0.0F));
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("repaint", "scrollbars", "Move: touched a_1"));
}

TEST_F(OpDesk, AMoveByNothingDoesNothing) {
    Admit(MakeLink("a", 0));
    view.calls.clear();
    desk.MoveSelectedBoxes(0, -0.0F);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(OpDesk, TheDeskTakesItsPendingAndClipboardBoxesAlong) {
    const size_t live = COpBox::LiveCount();
    {
        test::SeenDesk other(document, host, view);
        other.m_pendingBoxes.push_back(MakeLink("a", 1));
        other.m_clipboardBoxes.push_back(MakeLink("b", 0));
        Wire(*other.m_pendingBoxes.at(0), 0, *other.m_clipboardBoxes[0], 0);
    }
    EXPECT_EQ(COpBox::LiveCount(), live);
}

}  // namespace
}  // namespace tavrin
