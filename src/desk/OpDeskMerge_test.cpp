// SPDX-License-Identifier: Apache-2.0
// Groups of boxes: merged documents, macro operators, copies; and how vinputs grow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
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

class OpDeskMerge : public test::DocumentTest {
  protected:
    COpBox& Admit(std::unique_ptr<COpBox> box) { return Add(desk, std::move(box)); }
    COpBox& Bring(std::unique_ptr<COpBox> box, float x, float y) {
        box->xypos[0] = x;
        box->xypos[1] = y;
        return *boxes.emplace_back(std::move(box));
    }
    std::vector<std::string> Pending() {
        std::vector<std::string> names;
        for (const auto& box : desk.m_pendingBoxes) names.push_back(box->BoxTitleWid());
        return names;
    }
    std::vector<std::string> InputNames(const COpBox& box) {
        std::vector<std::string> names;
        for (const auto& input : box.inputs) names.push_back(input->DisplayName());
        return names;
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    CTvDoc::BoxList boxes;  // to be merged
};

TEST_F(OpDeskMerge, MergedBoxesWaitWithFreshNumbersAndTheirConnections) {
    Admit(MakeLink("old", 0));
    COpBox& from = Bring(MakeLink("a", 1), 100, 50);
    COpBox& to = Bring(MakeLink("b", 1), 130, 40);
    Wire(from, 0, to, 0);
    view.calls.clear();
    desk.m_pendingPlaced = true;
    desk.MergeBoxes(boxes);
    EXPECT_THAT(boxes, IsEmpty());
    EXPECT_THAT(Pending(), ElementsAre("a_2", "b_3"));
    EXPECT_EQ(to.inputs.at(0)->connections.First(), from.outputs.at(0).get());
    EXPECT_TRUE(from.outputs.at(0)->connections.Contains(*to.inputs.at(0)));
    EXPECT_EQ(from.selected + to.selected, 2);
    EXPECT_FALSE(desk.m_pendingPlaced);
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls,
                ElementsAre("selection", "repaint", "layout a_2", "layout b_3", "Merge: came a_2 b_3"));
    EXPECT_THAT(view.finder, ElementsAre("old_1", "a_2", "b_3"));
}

TEST_F(OpDeskMerge, TheFirstBoxIsTheOriginOfTheGroup) {
    Bring(MakeLink("a", 1), 100, 50);
    Bring(MakeLink("b", 2), 130, 40);
    desk.MergeBoxes(boxes);
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(0.0F, 0.0F));
    EXPECT_THAT(desk.m_pendingBoxes.at(1)->xypos, ElementsAre(30.0F, -10.0F));
}

TEST_F(OpDeskMerge, AtAnotherZoomTheGroupMovesByItsFactor) {
    document.zoomFactor = 0.5F;
    Bring(MakeLink("a", 1), 100, 50);
    desk.MergeBoxes(boxes);
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(50.0F, 25.0F));
}

TEST_F(OpDeskMerge, MergingNothingChangesNothing) {
    COpBox& box = Admit(MakeLink("a", 0));
    desk.m_pendingBoxes.push_back(MakeLink("b", 2));
    view.calls.clear();
    desk.MergeBoxes(boxes);
    EXPECT_EQ(box.selected, 1);
    EXPECT_THAT(Pending(), ElementsAre("b_2"));
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(OpDeskMerge, MergingClearsEverySelectionAndDestroysWhatWaits) {
    COpBox& box = Admit(MakeLink("a", 0));
    desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    for (const char* name : {"first", "second"}) {
        Bring(MakeLink(name, 1), 0, 0);
        desk.MergeBoxes(boxes);
    }
    EXPECT_EQ(box.selected, 0);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(Pending(), ElementsAre("second_2"));
    EXPECT_THAT(view.finder, ElementsAre("a_1", "second_2"));
}

TEST_F(OpDeskMerge, BoxesBeyondTheirLimitAreRefusedAndTheirConnectionsGo) {
    COpBox& first = Bring(MakeLink("link", 1), 0, 0);
    const std::string two = "input i { float { 0 0 1 0 %g } } output o { float out } defs { maxinstances 2 }";
    COpBox& kept = Bring(MakeBox("two", two, 2), 0, 0);
    COpBox& refused = Bring(MakeBox("two", two, 3), 0, 0);
    COpBox& last = Bring(MakeLink("link", 4), 0, 0);
    Admit(MakeBox("two", ""));
    Wire(first, 0, kept, 0);
    Wire(kept, 0, refused, 0);
    Wire(refused, 0, last, 0);
    const size_t live = COpBox::LiveCount();
    desk.MergeBoxes(boxes);
    EXPECT_THAT(Alerts(), ElementsAre("WARNING: not creating \"two\" (only 2 allowed on desk)"));
    EXPECT_THAT(Pending(), ElementsAre("link_2", "two_3", "link_4"));
    EXPECT_EQ(COpBox::LiveCount(), live - 1);
    EXPECT_EQ(kept.inputs.at(0)->connections.First(), first.outputs.at(0).get());
    EXPECT_TRUE(kept.outputs.at(0)->connections.Empty());
    EXPECT_TRUE(last.inputs.at(0)->connections.Empty());
    EXPECT_THAT(boxes, IsEmpty());
}

TEST_F(OpDeskMerge, ASavedNetworkInTheLibraryIsAnOperator) {
    host.AddOperator("src", "output o { float out }");
    host.AddOperator("dst", "input i { float { 0 0 1 0 %g } }");
    host.AddOperator(
        "macro",
        "# saved\ntavrn-version 1.3\ntavrn-renderer other\ntoolbar { button 0=x }\n"
        "opdesk { opbox { filename src wid 7 xypos 5 5 } opbox { filename dst wid 3 xypos 9 9 }\n"
        "opconnects { opbox:src,7,o,0 -> opbox:dst,3,i,0 } lock 1 }\n");
    Admit(MakeLink("old", 0));
    desk.AddOperator("macro");
    EXPECT_THAT(Alerts(), IsEmpty());
    ASSERT_THAT(Pending(), ElementsAre("src_2", "dst_3"));
    EXPECT_EQ(desk.m_pendingBoxes.at(1)->inputs.at(0)->connections.First(),
              desk.m_pendingBoxes.at(0)->outputs.at(0).get());
    EXPECT_THAT(desk.m_pendingBoxes.at(0)->xypos, ElementsAre(0.0F, 0.0F));
    EXPECT_THAT(desk.m_pendingBoxes.at(1)->xypos, ElementsAre(4.0F, 4.0F));
    // Boxes and connections alone come across.
    EXPECT_EQ(document.lock, 0);
    EXPECT_THAT(document.toolbar, IsEmpty());
    EXPECT_THAT(host.usedLibraries, IsEmpty());
    EXPECT_TRUE(document.IsModified());
}

TEST_F(OpDeskMerge, ASavedNetworkWithAnErrorBringsNothing) {
    host.AddOperator("src", "output o { float out }");
    const std::string path =
        host.AddOperator("macro", "tavrn-version 1\nopdesk { opbox { filename src wid 1 }\noops }");
    const size_t live = COpBox::LiveCount();
    desk.AddOperator("macro");
    EXPECT_THAT(Alerts(), ElementsAre(path + " near line 3: unexpected input"));
    EXPECT_THAT(Pending(), IsEmpty());
    EXPECT_EQ(COpBox::LiveCount(), live);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(OpDeskMerge, AScratchDocumentGoesWithoutTouchingTheDesk) {
    {
        CTvDoc scratch(host);
        scratch.m_boxes.push_back(MakeLink("a", 1));
        desk.MergeBoxes(scratch.m_boxes);
    }
    ASSERT_THAT(Pending(), ElementsAre("a_1"));
    desk.DropPending();
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
}

TEST_F(OpDeskMerge, CopiesAreConnectedAmongThemselvesAsTheirOriginalsAre) {
    COpBox& source = Add(MakeBox("s", "output o { float out } output p { float out }", 1));
    COpBox& middle =
        Add(MakeBox("m", "vinput v { float { 0 0 1 0 %g } vinstances 3 } output o { float out }", 2));
    COpBox& outside = Add(MakeLink("x", 3));
    Wire(source, 1, middle, 0);
    Wire(outside, 0, middle, 1);
    Wire(middle, 0, middle, 2);
    Wire(middle, 0, outside, 0);
    COpDesk::BoxVector copies;
    copies.push_back(MakeLink("before", 0));
    COpDesk::CopyBoxes({&middle, &source}, copies);
    ASSERT_EQ(copies.size(), 3U);
    EXPECT_EQ(copies.at(0)->filename, "before");
    const COpBox& newMiddle = *copies.at(1);
    const COpBox& newSource = *copies.at(2);
    EXPECT_EQ(newMiddle.filename + newSource.filename, "ms");
    EXPECT_EQ(newMiddle.wid + newMiddle.selected, 0);
    EXPECT_EQ(newMiddle.inputs.at(0)->connections.First(), newSource.outputs.at(1).get());
    EXPECT_TRUE(newMiddle.inputs.at(1)->connections.Empty());  // it led out of the copied boxes
    EXPECT_EQ(newMiddle.inputs.at(2)->connections.First(), newMiddle.outputs.at(0).get());
    EXPECT_EQ(newMiddle.outputs.at(0)->connections.Size(), 1U);
    EXPECT_TRUE(newSource.outputs.at(0)->connections.Empty());
    // The originals keep theirs.
    EXPECT_EQ(middle.inputs.at(0)->connections.First(), source.outputs.at(1).get());
    EXPECT_EQ(outside.inputs.at(0)->connections.First(), middle.outputs.at(0).get());
}

TEST_F(OpDeskMerge, CopyingNothingGivesNothing) {
    COpDesk::BoxVector copies;
    COpDesk::CopyBoxes({}, copies);
    EXPECT_THAT(copies, IsEmpty());
}

TEST_F(OpDeskMerge, AVinputGrowsOnEitherSide) {
    COpBox& box = Add(
        MakeBox("m", "vinput v { string { format %s } } input i { string { } } output o { float out }", 2));
    static_cast<COpValueString&>(*box.inputs.at(0)->values.at(0)).value = "edited";
    Wire(box, 0, box, 0);
    desk.m_mouseBox = &box;
    desk.m_mouseButton = box.inputs.at(0).get();
    COpButton* below = desk.GrowVinput(false);
    EXPECT_EQ(below, box.inputs.at(1).get());
    EXPECT_TRUE(document.IsModified());
    EXPECT_THAT(view.calls, ElementsAre("layout m_2", "Add Input: touched m_2"));
    const COpButton* above = desk.GrowVinput(true);
    EXPECT_EQ(above, box.inputs.at(0).get());
    EXPECT_EQ(desk.m_mouseButton, box.inputs.at(1).get());
    EXPECT_THAT(InputNames(box), ElementsAre("v1", "v2", "v3", "i"));
    for (const COpButton* copy : {above, static_cast<const COpButton*>(below)}) {
        EXPECT_EQ(copy->ValueText(), "edited");
        EXPECT_TRUE(copy->connections.Empty());
        EXPECT_EQ(copy->owner, &box);
    }
    EXPECT_FALSE(box.inputs.at(1)->connections.Empty());
}

TEST_F(OpDeskMerge, NothingElseGrows) {
    COpBox& box = Add(MakeLink("a", 1));
    EXPECT_EQ(desk.GrowVinput(true), nullptr);
    desk.m_mouseBox = &box;
    EXPECT_EQ(desk.GrowVinput(true), nullptr);
    for (COpButton* button : {box.inputs.at(0).get(), box.outputs.at(0).get()}) {
        desk.m_mouseButton = button;
        EXPECT_EQ(desk.GrowVinput(true), nullptr);
    }
    EXPECT_EQ(box.inputs.size(), 1U);
    EXPECT_FALSE(document.IsModified());
    EXPECT_THAT(view.calls, IsEmpty());
}

}  // namespace
}  // namespace tavrin
