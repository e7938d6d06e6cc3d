// SPDX-License-Identifier: Apache-2.0
// Placeholders become real boxes when their operators are there again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/OpDesk.h"
#include "document/EditHistory.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::PrintNetwork;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kLink = "input in { float { 0 0 1 0 %g } } output out { float out }";
constexpr const char* kGone =
    "input a { float { 0 0 1 0 %g } } input b { alias old float { 0 0 1 0 %g } rgb { 0 0 0 %g } }\n"
    "vinput v { float { 0 0 1 0 %g } } output o { float out }";

std::string Button(const std::string& head, const std::string& values = "",
                   const std::string& cast = "float") {
    return "opbutton." + head + " { x { currentcast " + cast + " wwms { " + values + " } } }\n";
}

class Revival : public test::DocumentTest {
  protected:
    Revival() {
        host.startsProcesses = false;
        host.AddOperator("Link", kLink);
        host.GetSite().settings.Store("document.placeholders", "1");
    }
    void Begin(const std::string& text) {
        ASSERT_TRUE(Load("opdesk {\n" + text + "}"));
        document.KeepHistory();
        desk.OnInitialUpdate();
        document.SetModified(false);
        host.Sink().log.clear();
        host.Sink().alerts.clear();
    }
    // Two links round a box of an operator that is missing, and a selected box above it.
    void BeginChain() {
        Begin(
            "opbox { filename Link wid 1 }\nopbox { filename Gone wid 2 xypos 5 6 opboxdefs { maxinstances 7 "
            "}\n" +
            Button("input b b", "arg 1 argname \"x\" comments \"c\" pin 1 float 0.5 0 2 1 rgb 0.25 0.5 1",
                   "rgb") +
            Button("vinput v v1", "float 1 0 2 0") + Button("vinput v v2", "float 2 0 2 0") +
            Button("output o o") +
            "}\nopbox { filename Link wid 3 }\n"
            "opconnects { opbox:L,1,o,0 -> opbox:G,2,b,0\nopbox:L,1,o,0 -> opbox:G,2,v,2\n"
            "opbox:G,2,o,0 -> opbox:L,3,i,0 }\n");
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
};

TEST_F(Revival, NothingHappensWhileTheOperatorIsMissing) {
    BeginChain();
    EXPECT_EQ(desk.RevivePlaceholders(), 0U);
    EXPECT_FALSE(document.IsModified());
    EXPECT_EQ(host.Sink().log, "");
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_TRUE(BoxAt(document, 1).IsPlaceholder());
}

TEST_F(Revival, ARealBoxTakesThePlaceWithAllThatTheBlockSays) {
    BeginChain();
    COpBox& former = BoxAt(document, 1);
    former.selected = 1;
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
    COpBox& box = BoxAt(document, 1);
    EXPECT_FALSE(box.IsPlaceholder());
    EXPECT_EQ(box.wid, 2);
    EXPECT_EQ(box.selected, 1);
    EXPECT_THAT(box.xypos, ElementsAre(5.0F, 6.0F));
    EXPECT_EQ(box.maxinstances, 7);
    ASSERT_THAT(box.inputs, SizeIs(4));
    const COpButton& b = *box.inputs[1];
    EXPECT_EQ(b.CurrentType(), "rgb");
    EXPECT_EQ(b.arg, 1);
    EXPECT_EQ(b.argname, "x");
    EXPECT_EQ(static_cast<const COpValueRgb&>(*b.values[1]).g, 0.5F);
    EXPECT_EQ(box.inputs[3]->DisplayName(), "v2");
    EXPECT_EQ(static_cast<const COpValueFloat&>(*box.inputs[3]->values[0]).value, 2.0F);
    EXPECT_EQ(host.Sink().log, "Gone_2 is a real box again\r\n");
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(desk.NextWid(), 4) << "its number is in use";
}

TEST_F(Revival, WiresOfBothSidesEndAtTheButtonsOfTheirNames) {
    BeginChain();
    host.AddOperator("Gone", kGone);
    desk.RevivePlaceholders();
    const COpBox& first = BoxAt(document, 0);
    const COpBox& box = BoxAt(document, 1);
    const COpBox& last = BoxAt(document, 2);
    EXPECT_TRUE(box.inputs[0]->connections.Empty());
    EXPECT_EQ(box.inputs[1]->connections.First(), first.outputs[0].get());
    EXPECT_TRUE(box.inputs[2]->connections.Empty());
    EXPECT_EQ(box.inputs[3]->connections.First(), first.outputs[0].get());
    EXPECT_EQ(last.inputs[0]->connections.First(), box.outputs[0].get());
    EXPECT_THAT(document.Store(), HasSubstr("opbox:Link,1,out,0 -> opbox:Gone,2,v,3"));
}

TEST_F(Revival, ALockedDeskKeepsItsPlaceholders) {
    BeginChain();
    const std::string before = PrintNetwork(document);
    host.AddOperator("Gone", kGone);
    document.lock = 1;
    EXPECT_EQ(desk.RevivePlaceholders(), 0U);
    EXPECT_EQ(PrintNetwork(document), before);
    document.lock = 0;
    {
        const HeldEdit drag(document, "Move");
        EXPECT_EQ(desk.RevivePlaceholders(), 0U);
    }
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
}

TEST_F(Revival, ItIsOneStepBackAndForth) {
    BeginChain();
    const std::string before = PrintNetwork(document);
    const uint64_t serial = BoxAt(document, 1).Serial();
    host.AddOperator("Gone", kGone);
    desk.RevivePlaceholders();
    ASSERT_EQ(document.History()->Count(), 1U);
    EXPECT_EQ(document.History()->Name(0), "Reload Operators");
    const std::string after = PrintNetwork(document);
    for (int time = 0; time < 2; ++time) {
        desk.Undo();
        EXPECT_EQ(PrintNetwork(document), before);
        EXPECT_EQ(BoxAt(document, 1).Serial(), serial) << "in its place in the stack";
        EXPECT_TRUE(BoxAt(document, 1).IsPlaceholder());
        desk.Redo();
        EXPECT_EQ(PrintNetwork(document), after);
    }
    EXPECT_EQ(desk.NextWid(), 4) << "numbers stay in use";
}

TEST_F(Revival, PlaceholdersThatAreWiredToEachOtherAndToThemselvesStayWired) {
    const std::string buttons = Button("input a a") + Button("output o o") + "}\n";
    Begin("opbox { filename Gone wid 1\n" + buttons + "opbox { filename Gone wid 2\n" + buttons +
          "opconnects { opbox:G,1,o,0 -> opbox:G,2,a,0\nopbox:G,1,o,0 -> opbox:G,1,a,0 }\n");
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 2U);
    const COpBox& one = BoxAt(document, 0);
    const COpBox& two = BoxAt(document, 1);
    EXPECT_EQ(two.inputs[0]->connections.First(), one.outputs[0].get());
    EXPECT_EQ(one.inputs[0]->connections.First(), one.outputs[0].get());
    desk.Undo();
    EXPECT_TRUE(BoxAt(document, 1).inputs[0]->connections.First()->IsUnknown());
}

TEST_F(Revival, WhatNoLongerFitsIsKeptAndTold) {
    Begin("opbox { filename Link wid 1 } opbox { filename Gone wid 2\n" +
          Button("input lost lost", "float 1 0 1 0") + Button("input old old") +
          "}\nopconnects { opbox:L,1,o,0 -> opbox:G,2,lost,0\nopbox:L,1,o,0 -> "
          "opbox:G,2,old,1 }\n");
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
    const COpBox& box = BoxAt(document, 1);
    EXPECT_NE(box.inputs[0]->stray, nullptr);
    EXPECT_FALSE(box.inputs[0]->connections.Empty());
    EXPECT_EQ(box.inputs[2]->name, "b");
    EXPECT_FALSE(box.inputs[2]->connections.Empty());
    EXPECT_EQ(host.Sink().log,
              "WARNING: Gone_2: undefined input lost specified; it is kept as a stray button\r\n"
              "Gone_2 is a real box again\r\n");
}

TEST_F(Revival, AWireToAButtonThatOnlyWiresSpokeOfFindsItByName) {
    Begin(
        "opbox { filename Link wid 1 } opbox { filename Gone wid 2 }\n"
        "opconnects { opbox:L,1,o,0 -> opbox:G,2,b,0\nopbox:L,1,o,0 -> opbox:G,2,nowhere,9 }\n");
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
    EXPECT_FALSE(BoxAt(document, 1).inputs[1]->connections.Empty());
    EXPECT_THAT(host.Sink().log,
                HasSubstr("WARNING: Gone_2: the wire from Link_1 to Gone_2 has no place any more"));
}

TEST_F(Revival, AnOperatorThatIsThereAndCannotBeReadIsToldOnce) {
    Begin("opbox { filename Gone wid 1 } opbox { filename Gone wid 2 }\n");
    host.AddOperator("Gone", "bogus");
    EXPECT_EQ(desk.RevivePlaceholders(), 0U);
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_THAT(host.Sink().log,
                testing::MatchesRegex("WARNING: boxes of Gone stay placeholders: [^\n]*unexpected "
                                      "input\r\n"));
}

TEST_F(Revival, AnOperatorThatWasCalledSoBringsItBackUnderItsName) {
    Begin("opbox { filename Gone wid 1 }\n");
    host.AddOperator("Here", std::string("alias Gone\n") + kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
    EXPECT_EQ(BoxAt(document, 0).BoxTitleWid(), "Here_1");
}

TEST_F(Revival, ACloneThatWasMovedKeepsItsNumberAndPlace) {
    BeginChain();
    desk.DuplicateBox(BoxAt(document, 1));
    const int wid = BoxAt(document, 0).wid;
    const float place = BoxAt(document, 0).xypos[0];
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 2U);
    EXPECT_EQ(BoxAt(document, 0).wid, wid);
    EXPECT_EQ(BoxAt(document, 0).xypos[0], place);
    EXPECT_FALSE(BoxAt(document, 0).IsPlaceholder());
}

TEST_F(Revival, ThoseOnTheClipboardComeBackWithTheirWires) {
    BeginChain();
    desk.SelectAllBoxes();
    desk.CutBoxes();
    host.AddOperator("Gone", kGone);
    EXPECT_EQ(desk.RevivePlaceholders(), 0U);
    EXPECT_EQ(document.History()->Count(), 1U) << "the clipboard is no part of the document";
    ASSERT_THAT(desk.m_clipboardBoxes, SizeIs(3));
    EXPECT_FALSE(desk.m_clipboardBoxes[1]->IsPlaceholder());
    desk.PasteBoxes(DeskPoint{0, 0});
    desk.DropPending();
    const std::string text = document.Store();
    EXPECT_THAT(text, HasSubstr("opbox:Link,1,out,0 -> opbox:Gone,2,b,1"));
    EXPECT_THAT(text, HasSubstr("opbox:Gone,2,o,0 -> opbox:Link,3,in,0"));
}

TEST_F(Revival, TheDeskForgetsWhatItKnewOfTheFormerBox) {
    BeginChain();
    COpBox& former = BoxAt(document, 1);
    desk.m_mouseBox = &former;
    desk.m_mouseButton = former.outputs[0].get();
    desk.m_selectedButton = former.outputs[0].get();
    desk.m_selectedConnects = {former.inputs[0].get(), BoxAt(document, 2).inputs[0].get()};
    host.AddOperator("Gone", kGone);
    desk.RevivePlaceholders();
    EXPECT_EQ(desk.m_mouseBox, nullptr);
    EXPECT_EQ(desk.m_mouseButton, nullptr);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(BoxAt(document, 2).inputs[0].get()));
}

TEST_F(Revival, WithoutAHistoryTheFormerBoxIsGone) {
    ASSERT_TRUE(Load("opdesk { opbox { filename Gone wid 1 } }"));
    desk.OnInitialUpdate();
    host.AddOperator("Gone", kGone);
    const size_t boxes = COpBox::LiveCount();
    EXPECT_EQ(desk.RevivePlaceholders(), 1U);
    EXPECT_EQ(COpBox::LiveCount(), boxes);
}

}  // namespace
}  // namespace tavrin
