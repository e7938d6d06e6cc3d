// SPDX-License-Identifier: Apache-2.0
// Selection, the care for stale references, and how the desk takes up a network.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

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

class DeskSelection : public test::DocumentTest {
  protected:
    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

TEST_F(DeskSelection, EveryBoxIsSelectedAtOnceAndTheViewsRefreshedIfOneChanged) {
    COpBox& first = Add(MakeLink("a", 1));
    COpBox& second = Add(MakeLink("b", 2));
    EXPECT_FALSE(desk.AnyBoxSelected());
    first.selected = 1;
    EXPECT_TRUE(desk.AnyBoxSelected());
    desk.SelectAllBoxes();
    EXPECT_EQ(first.selected + second.selected, 2);
    EXPECT_THAT(view.calls, ElementsAre("selection"));
    desk.SelectAllBoxes();
    EXPECT_THAT(view.calls, ElementsAre("selection"));
    second.selected = 0;
    desk.UnselectAllBoxes();
    EXPECT_EQ(first.selected + second.selected, 0);
    EXPECT_THAT(view.calls, ElementsAre("selection", "selection"));
    desk.UnselectAllBoxes();
    EXPECT_THAT(view.calls, ElementsAre("selection", "selection"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskSelection, ABoxIsSelectedAloneByItsTitle) {
    COpBox& first = Add(MakeLink("a", 1));
    COpBox& second = Add(MakeLink("b", 2));
    first.selected = 1;
    desk.SelectBox("b_2");
    EXPECT_EQ(first.selected, 0);
    EXPECT_EQ(second.selected, 1);
    EXPECT_THAT(view.calls, ElementsAre("selection"));
    desk.SelectBox("b_3");
    EXPECT_EQ(second.selected, 1) << "there is no such box";
    EXPECT_THAT(view.calls, ElementsAre("selection"));
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskSelection, ClearingASelectionRepaintsNothing) {
    COpBox& box = Add(MakeLink("a", 1));
    box.selected = 1;
    desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    desk.ClearBoxSelection();
    desk.ClearSelectedButton();
    desk.ClearSelectedConnects();
    EXPECT_EQ(box.selected, 0);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(view.calls, IsEmpty());
}

TEST_F(DeskSelection, LiveReferencesAreLeftAloneWithoutAWord) {
    COpBox& box = Add(MakeLink("a", 1));
    desk.m_mouseBox = &box;
    desk.m_mouseButton = desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    desk.ValidateReferences();
    EXPECT_EQ(host.Sink().log, "");
    EXPECT_EQ(desk.m_mouseBox, &box);
    EXPECT_EQ(desk.m_mouseButton, box.outputs.at(0).get());
    EXPECT_EQ(desk.m_selectedButton, box.outputs.at(0).get());
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(box.inputs.at(0).get()));
    desk.m_mouseBox = nullptr;
    desk.m_mouseButton = desk.m_selectedButton = nullptr;
    desk.ValidateReferences();
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(DeskSelection, EachStaleReferenceIsLoggedAndMended) {
    COpBox& kept = Add(MakeLink("kept", 1));
    auto gone = MakeLink("gone", 2);
    document.m_boxes.emplace_front(gone.get());  // the list believes that it owns the box
    desk.m_mouseBox = gone.get();
    desk.m_mouseButton = gone->inputs.at(0).get();
    desk.m_selectedButton = gone->outputs.at(0).get();
    desk.m_selectedConnects = {gone->inputs.at(0).get(), kept.inputs.at(0).get(), gone->inputs.at(0).get()};
    gone.reset();
    desk.ValidateReferences();
    EXPECT_EQ(host.Sink().log,
              "WARNING: m_boxes holds invalid reference\r\n"
              "WARNING: m_selectedButton is invalid\r\n"
              "WARNING: m_selectedConnects holds invalid reference\r\n"
              "WARNING: m_selectedConnects holds invalid reference\r\n"
              "WARNING: m_mouseButton is invalid\r\n"
              "WARNING: m_mouseBox is invalid\r\n");
    EXPECT_THAT(WidsOf(document), ElementsAre(1));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(kept.inputs.at(0).get()));
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_THAT(Alerts(), IsEmpty());
    desk.ValidateReferences();
    EXPECT_EQ(std::count(host.Sink().log.begin(), host.Sink().log.end(), '\n'), 6);
}

// A large file is read for some time, in which the desk may be painted.
TEST_F(DeskSelection, NothingRefersToTheBoxesOfADocumentThatGivesPlaceToAnother) {
    COpBox& box = Add(MakeLink("a", 1));
    desk.m_mouseBox = &box;
    desk.m_mouseButton = desk.m_selectedButton = box.outputs.at(0).get();
    desk.m_selectedConnects = {box.inputs.at(0).get()};
    document.DeleteContents();
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    desk.ValidateReferences();
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(DeskSelection, ANetworkIsTakenUpInItsOrder) {
    COpBox& old = Add(MakeLink("old", 1));
    desk.OnInitialUpdate();
    desk.m_mouseBox = &old;
    desk.m_mouseButton = desk.m_selectedButton = old.outputs.at(0).get();
    desk.m_selectedConnects = {old.inputs.at(0).get()};
    desk.m_pendingBoxes.push_back(MakeLink("waiting", 2));
    document.DeleteContents();
    Add(MakeLink("a", 2));
    Add(MakeLink("b", 4));
    view.calls.clear();
    desk.OnInitialUpdate();
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, IsEmpty());
    EXPECT_THAT(desk.m_pendingBoxes, IsEmpty());
    EXPECT_THAT(view.finder, ElementsAre("a_2", "b_4"));
    EXPECT_THAT(view.calls, ElementsAre("layout a_2", "layout b_4", "replaced"));
    for (const int wid : {1, 3, 5}) EXPECT_EQ(desk.NextWid(), wid);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskSelection, TheClipboardOutlivesTheDocument) {
    desk.m_clipboardBoxes.push_back(MakeLink("a", 0));
    document.DeleteContents();
    desk.OnInitialUpdate();
    EXPECT_EQ(desk.m_clipboardBoxes.size(), 1U);
}

TEST_F(DeskSelection, ANumberThatTheFileHoldsTwiceIsFreeWhenBothBoxesAreGone) {
    for (const int wid : {1, 1, 2}) Add(MakeLink("a", wid));
    desk.OnInitialUpdate();
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 1, 2));
    EXPECT_THAT(view.finder, ElementsAre("a_1", "a_1", "a_2"));
    for (const int expected : {3, 1}) {
        auto box = std::move(document.m_boxes.front());
        document.m_boxes.pop_front();
        desk.RemoveBox(std::move(box));
        EXPECT_EQ(desk.NextWid(), expected);
    }
}

TEST_F(DeskSelection, NumbersOfAFileThatAreNotPositiveLeaveTheCountAtOne) {
    for (const int wid : {INT_MIN, -1, 0, INT_MAX}) Add(MakeLink("a", wid));
    desk.OnInitialUpdate();
    EXPECT_EQ(desk.NextWid(), 1);
    EXPECT_EQ(desk.NextWid(), 2);
}

// What the rules of connections mean on a desk.

TEST_F(DeskSelection, AnOutputAndAnInputOfOneBoxCanConnectAndWouldLoop) {
    const COpBox& box = Add(MakeLink("a", 1));
    EXPECT_TRUE(box.outputs.at(0)->CanConnect(*box.inputs.at(0)));
    EXPECT_TRUE(box.inputs.at(0)->CanConnect(*box.outputs.at(0)));
    EXPECT_TRUE(box.outputs.at(0)->WouldLoop(*box.inputs.at(0)));
    EXPECT_TRUE(box.inputs.at(0)->WouldLoop(*box.outputs.at(0)));
}

TEST_F(DeskSelection, TwoOutputsOrTwoInputsAndFlaggedButtonsCannotConnect) {
    const COpBox& first = Add(MakeLink("a", 1));
    const COpBox& second = Add(MakeLink("b", 2));
    EXPECT_FALSE(first.outputs.at(0)->CanConnect(*second.outputs.at(0)));
    EXPECT_FALSE(first.inputs.at(0)->CanConnect(*second.inputs.at(0)));
    ASSERT_TRUE(first.outputs.at(0)->CanConnect(*second.inputs.at(0)));
    second.inputs.at(0)->disableconnectflag = 1;
    EXPECT_FALSE(first.outputs.at(0)->CanConnect(*second.inputs.at(0)));
    EXPECT_FALSE(second.inputs.at(0)->CanConnect(*first.outputs.at(0)));
}

TEST_F(DeskSelection, AChainMayBeShortcutButNotClosed) {
    COpBox& first = Add(MakeLink("a", 1));
    COpBox& second = Add(MakeLink("b", 2));
    COpBox& third = Add(
        MakeBox("c", "input i { rgb { 0 0 0 %g } } input j { rgb { 0 0 0 %g } } output o { rgb out }", 3));
    Wire(first, 0, second, 0);
    Wire(second, 0, third, 0);
    EXPECT_TRUE(third.outputs.at(0)->WouldLoop(*first.inputs.at(0)));
    EXPECT_TRUE(first.inputs.at(0)->WouldLoop(*third.outputs.at(0)));
    EXPECT_FALSE(second.outputs.at(0)->WouldLoop(*third.inputs.at(1)));
    // Casts need not agree.
    EXPECT_TRUE(second.outputs.at(0)->CanConnect(*third.inputs.at(1)));
}

TEST_F(DeskSelection, AnInputThatIsWiredAgainGivesUpItsSource) {
    COpBox& first = Add(MakeLink("a", 1));
    COpBox& second = Add(MakeLink("b", 2));
    COpBox& target = Add(MakeLink("c", 3));
    Wire(first, 0, target, 0);
    second.outputs.at(0)->Connect(*target.inputs.at(0));
    EXPECT_EQ(target.inputs.at(0)->connections.First(), second.outputs.at(0).get());
    EXPECT_EQ(target.inputs.at(0)->connections.Size(), 1U);
    EXPECT_TRUE(first.outputs.at(0)->connections.Empty());
}

TEST_F(DeskSelection, APairWiredAgainFromItsOutputKeepsTheInputsSideAloneAndDropsOutOfTheWalk) {
    COpBox& from = Add(MakeLink("a", 1));
    COpBox& to = Add(MakeLink("b", 2));
    Wire(from, 0, to, 0);
    EXPECT_TRUE(to.outputs.at(0)->WouldLoop(*from.inputs.at(0)));
    from.outputs.at(0)->Connect(*to.inputs.at(0));
    EXPECT_EQ(to.inputs.at(0)->connections.First(), from.outputs.at(0).get());
    EXPECT_TRUE(from.outputs.at(0)->connections.Empty());
    EXPECT_FALSE(to.outputs.at(0)->WouldLoop(*from.inputs.at(0)));
    EXPECT_EQ(document.Store().find("opbox:a,1"), std::string::npos);
    Wire(from, 0, to, 0);  // from the input's side it is made whole
    EXPECT_NE(document.Store().find("opbox:a,1,out,0 -> opbox:b,2,in,0"), std::string::npos);
}

}  // namespace
}  // namespace tavrin
