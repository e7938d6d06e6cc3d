// SPDX-License-Identifier: Apache-2.0
// What a step of the history is, what comes back, and what it leaves alone.
#include "document/EditHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "sliders/ArgumentEdits.h"
#include "support/NetworkPrint.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::MakeBox;
using test::MakeLink;
using test::PrintNetwork;
using test::WidsOf;
using testing::ElementsAre;

class History : public test::DocumentTest {
  protected:
    // Boxes that stand there from the beginning, each fed by the one before.
    void Begin(int boxes) {
        for (int wid = 1; wid <= boxes; ++wid) {
            document.m_boxes.push_back(MakeLink("a", wid));
            if (wid > 1) test::Wire(Box(wid - 1), 0, Box(wid), 0);
        }
        document.KeepHistory();
        desk.OnInitialUpdate();
        document.SetModified(false);
        history = document.History();
    }
    COpBox& Box(int wid) {
        for (const auto& box : document.m_boxes) {
            if (box->wid == wid) return *box;
        }
        throw std::logic_error("no box of that number");
    }
    void Comment(int wid, const std::string& text, bool joins = false) {
        const EditScope edit(document, "Comment");
        if (joins) document.edits.JoinRun();
        document.edits.ButtonTuned(*Box(wid).inputs[0]);
        Box(wid).inputs[0]->comments = text;
    }
    std::string CommentOf(int wid) { return Box(wid).inputs[0]->comments; }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (size_t step = 0; step < history->Count(); ++step) names.push_back(history->Name(step));
        return names;
    }
    void Save() {
        std::string error;
        ASSERT_TRUE(document.Save(host.Directory() / "saved.tvn", error)) << error;
    }
    // There and back: what stood before the edit, then what stood after it.
    void ExpectThereAndBack(const std::function<void()>& edit) {
        const std::string before = PrintNetwork(document);
        const size_t place = history->Place();
        edit();
        ASSERT_EQ(history->Place(), place + 1) << "not one step";
        const std::string after = PrintNetwork(document);
        ASSERT_NE(before, after);
        for (int time = 0; time < 2; ++time) {
            desk.Undo();
            EXPECT_EQ(PrintNetwork(document), before);
            desk.Redo();
            EXPECT_EQ(PrintNetwork(document), after);
        }
    }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    EditHistory* history = nullptr;
};

// What comes back

TEST_F(History, ADeletedBoxComesBackAsTheSameObjectWithItsWiresAndItsPlaceInTheStack) {
    Begin(4);
    COpBox* box = &Box(2);
    const LiveRef<COpBox> reference(*box);
    const LiveRef<COpButton> button(*box->inputs[0]);
    ExpectThereAndBack([&] { desk.DeleteBox(*box); });
    EXPECT_EQ(reference.Get(), nullptr) << "it is parked now";
    EXPECT_EQ(button.Get(), nullptr);
    desk.Undo();
    EXPECT_EQ(reference.Get(), box);
    EXPECT_EQ(button.Get(), box->inputs[0].get());
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3, 4));
    EXPECT_TRUE(Box(3).inputs[0]->connections.Contains(*box->outputs[0]));
}

TEST_F(History, NeighboursOfTheStackComeBackInTheirOrder) {
    Begin(5);
    Box(1).selected = Box(2).selected = Box(4).selected = Box(5).selected = 1;
    ExpectThereAndBack([&] { desk.DeleteSelection(); });
    desk.Undo();
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(History, ABoxThatWasAddedGoesAndItsNumberIsFree) {
    Begin(1);
    host.AddOperator("noise", "output o { float out }");
    desk.AddOperator("noise");
    EXPECT_EQ(history->Count(), 0U) << "it waits under the mouse";
    ExpectThereAndBack([&] { desk.DropPending(); });
    EXPECT_EQ(desk.NextWid(), 3);
    desk.Undo();
    EXPECT_EQ(desk.NextWid(), 2);
}

TEST_F(History, WhatWaitsUnderTheMouseIsThrownAwayFirst) {
    Begin(2);
    host.AddOperator("noise", "output o { float out }");
    desk.DeleteBox(Box(1));
    desk.AddOperator("noise");
    ASSERT_EQ(desk.m_pendingBoxes.at(0)->wid, 1) << "the number of the box that is to come back";
    desk.Undo();
    EXPECT_TRUE(desk.m_pendingBoxes.empty());
    EXPECT_THAT(WidsOf(document), ElementsAre(1, 2));
    desk.Redo();
    EXPECT_THAT(WidsOf(document), ElementsAre(2)) << "throwing it away gave up no step";
}

TEST_F(History, InputsComeBackInTheirOrderWithTheirNumbersAndWires) {
    Begin(1);
    host.AddOperator("sum", "vinput term { vinstances 3 float { 0 0 1 0 %g } } output o { float out }");
    desk.AddOperator("sum");
    desk.DropPending();
    COpBox& sum = BoxAt(document, 0);
    desk.Connect(*sum.inputs[1], *Box(1).outputs[0]);
    desk.m_mouseBox = &sum;
    desk.m_mouseButton = sum.inputs[1].get();
    COpButton* taken = sum.inputs[1].get();
    ExpectThereAndBack([&] { desk.DeleteButton(); });
    EXPECT_FALSE(COpButton::IsLive(taken));
    desk.Undo();
    EXPECT_EQ(sum.inputs[1].get(), taken);
    EXPECT_TRUE(COpButton::IsLive(taken));
    EXPECT_EQ(sum.inputs[2]->instance, 3);
    desk.m_mouseBox = &sum;
    desk.m_mouseButton = sum.inputs[0].get();
    ExpectThereAndBack([&] { desk.GrowVinput(true); });
}

TEST_F(History, GrowingAnInputAndWiringItIsOneStep) {
    Begin(1);
    host.AddOperator("sum", "vinput term { float { 0 0 1 0 %g } } output o { float out }");
    desk.AddOperator("sum");
    desk.DropPending();
    COpBox& sum = BoxAt(document, 0);
    desk.m_mouseBox = &sum;
    desk.m_mouseButton = sum.inputs[0].get();
    ExpectThereAndBack([&] {
        const EditScope gesture(document, {});
        desk.Connect(*desk.GrowVinput(false), *Box(1).outputs[0]);
    });
    EXPECT_EQ(Names().back(), "Add Input");
}

TEST_F(History, AWireThatOnlyItsInputKnowsOfComesBackSo) {
    Begin(2);
    ExpectThereAndBack([&] { desk.Connect(*Box(1).outputs[0], *Box(2).inputs[0]); });
    EXPECT_FALSE(Box(1).outputs[0]->connections.Contains(*Box(2).inputs[0]));
    ExpectThereAndBack([&] { desk.DeleteBox(Box(2)); });
    ExpectThereAndBack([&] { desk.DeleteBox(Box(1)); });
}

TEST_F(History, NumbersAreKeptToTheBit) {
    Begin(1);
    COpValue& any = *Box(1).inputs[0]->values[0];
    auto& value = dynamic_cast<COpValueFloat&>(any);
    for (const float number :
         {0.1F, -0.0F, 0.0F, std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()}) {
        ExpectThereAndBack([&] {
            const EditScope edit(document, "Value");
            document.edits.ButtonTuned(*Box(1).inputs[0]);
            value.value = number;
        });
    }
}

TEST_F(History, OptionsAndSettingsComeBack) {
    Begin(1);
    document.m_renderOptions = {{"A", "1"}, {"B", "2"}};
    document.History()->DocumentReplaced();
    ExpectThereAndBack([&] {
        const EditScope edit(document, "Render Option");
        document.edits.OptionsChanged();
        document.m_renderOptions = {{"B", "3"}, {"C", ""}};
    });
    ExpectThereAndBack([&] {
        const EditScope edit(document, "Export Options");
        document.edits.SettingsChanged();
        document.exportOptions.saveSource = 1;
        document.exportOptions.sourcePath = "/elsewhere/a.src";
        document.customshaderhelp = "other";
        document.toolbar = {"x"};
        document.showvarnames = 1;
    });
    desk.Undo();
    document.exportOptions.sourcePath = "./renamed.src";  // as the document's name gives it
    desk.Redo();
    EXPECT_EQ(document.exportOptions.sourcePath, "/elsewhere/renamed.src");
}

TEST_F(History, ABoxThatCameAndWentWithinOneActIsNoStep) {
    Begin(1);
    {
        const EditScope edit(document, "Nothing");
        desk.DuplicateBox(Box(1));
        desk.DeleteBox(BoxAt(document, 0));
    }
    EXPECT_EQ(history->Count(), 0U);
    EXPECT_EQ(COpBox::LiveCount(), 1U);
}

// Steps

TEST_F(History, ANewEditGivesUpWhatWasUndone) {
    Begin(2);
    Comment(1, "one");
    desk.DeleteBox(Box(2));
    desk.Undo();
    desk.Undo();
    Comment(1, "other");
    EXPECT_THAT(Names(), ElementsAre("Comment"));
    EXPECT_FALSE(desk.CanRedo());
    desk.Undo();
    EXPECT_EQ(CommentOf(1), "");
}

TEST_F(History, GoingToAStepDoesAllThatLieBetween) {
    Begin(1);
    for (const char* text : {"a", "b", "c", "d"}) Comment(1, text);
    desk.GoToStep(1);
    EXPECT_EQ(CommentOf(1), "a");
    desk.GoToStep(4);
    EXPECT_EQ(CommentOf(1), "d");
    desk.GoToStep(9);
    EXPECT_EQ(history->Place(), 4U);
    desk.GoToStep(0);
    EXPECT_EQ(CommentOf(1), "");
}

TEST_F(History, ARunOfTypingIsOneStep) {
    Begin(2);
    for (const char* text : {"w", "wo", "woo", "wood"}) Comment(1, text, true);
    EXPECT_EQ(history->Count(), 1U);
    Comment(2, "another box", true);
    EXPECT_EQ(history->Count(), 2U);
    Comment(2, "another box.", true);
    EXPECT_EQ(history->Count(), 2U);
    history->EndRun();  // the focus has left the field
    Comment(2, "again", true);
    EXPECT_EQ(history->Count(), 3U);
    desk.Undo();
    EXPECT_EQ(CommentOf(2), "another box.");
    Comment(2, "after an undo", true);
    EXPECT_EQ(history->Count(), 3U);
    desk.GoToStep(1);
    EXPECT_EQ(CommentOf(1), "wood");
    desk.Undo();
    EXPECT_EQ(CommentOf(1), "");
}

TEST_F(History, ARunThatEndsWhereItBeganIsNoStep) {
    Begin(1);
    Comment(1, "a", true);
    Comment(1, "", true);
    EXPECT_EQ(history->Count(), 0U);
    EXPECT_EQ(history->Bytes(), 0U);
}

TEST_F(History, ARunDoesNotGoOnBeyondASave) {
    Begin(1);
    Comment(1, "a", true);
    Save();
    Comment(1, "ab", true);
    EXPECT_EQ(history->Count(), 2U);
    desk.Undo();
    EXPECT_FALSE(document.IsModified());
}

TEST_F(History, ADragIsOneStepByItself) {
    Begin(1);
    for (int drag = 0; drag < 2; ++drag) {
        const HeldEdit held(document, "Comment");
        for (const char* text : {"x", "xy", "xyz"}) Comment(1, text + std::to_string(drag), true);
    }
    EXPECT_EQ(history->Count(), 2U);
    desk.Undo();
    EXPECT_EQ(CommentOf(1), "xyz0");
}

TEST_F(History, NothingIsUndoneWhileAnEditGoesOn) {
    Begin(1);
    Comment(1, "a");
    const EditScope edit(document, "Longer");
    EXPECT_FALSE(desk.CanUndo());
    desk.Undo();
    EXPECT_EQ(CommentOf(1), "a");
}

// The saved place

TEST_F(History, ModifiedMeansNotAtTheSavedPlace) {
    Begin(1);
    Comment(1, "a");
    EXPECT_TRUE(document.IsModified());
    desk.Undo();
    EXPECT_FALSE(document.IsModified());
    desk.Redo();
    Save();
    EXPECT_FALSE(document.IsModified());
    desk.Undo();
    EXPECT_TRUE(document.IsModified());
    Comment(1, "b");
    desk.Undo();
    EXPECT_TRUE(document.IsModified()) << "what was saved can be reached no more";
}

TEST_F(History, AMovedViewStaysAChangeThatNoUndoTakesBack) {
    Begin(1);
    Comment(1, "a");
    document.ViewMoved();
    desk.Undo();
    EXPECT_TRUE(document.IsModified());
    Save();
    EXPECT_FALSE(document.IsModified());
}

TEST_F(History, AStepThatDoesNotCountLeavesTheDocumentSaved) {
    Begin(1);
    {
        const EditScope edit(document, "Value");
        document.edits.ButtonTunedUnmarked(*Box(1).inputs[0]);
        Box(1).inputs[0]->comments = "chosen";
    }
    EXPECT_FALSE(document.IsModified());
    desk.Undo();
    EXPECT_EQ(CommentOf(1), "");
    EXPECT_FALSE(document.IsModified());
}

TEST_F(History, AnotherDocumentBeginsAnew) {
    Begin(2);
    desk.DeleteBox(Box(1));
    desk.Undo();
    desk.Redo();
    document.DeleteContents();
    desk.OnInitialUpdate();
    EXPECT_EQ(history->Count(), 0U);
    EXPECT_FALSE(desk.CanUndo());
    EXPECT_EQ(COpBox::LiveCount(), 0U);
}

// Limits

TEST_F(History, TheOldestStepsAreForgottenBeyondTheirNumberOrTheirSize) {
    Begin(1);
    document.KeepHistory({.steps = 3, .bytes = 1 << 20});
    history = document.History();
    for (const char* text : {"a", "b", "c", "d", "e"}) Comment(1, text);
    EXPECT_EQ(history->Count(), 3U);
    desk.GoToStep(0);
    EXPECT_EQ(CommentOf(1), "b");
    document.KeepHistory({.steps = 100, .bytes = 3000});
    history = document.History();
    for (int i = 0; i < 20; ++i) Comment(1, std::string(1000, static_cast<char>('a' + i)));
    EXPECT_LT(history->Count(), 4U);
    EXPECT_GE(history->Count(), 1U);
    EXPECT_LE(history->Bytes(), 3000U);
    Comment(1, std::string(5000, 'x'));
    Comment(1, "");
    EXPECT_EQ(history->Count(), 1U) << "the last one stays however large it is";
    desk.Undo();
    EXPECT_EQ(CommentOf(1), std::string(5000, 'x'));
}

TEST_F(History, AForgottenSavedPlaceIsReachedNoMore) {
    Begin(1);
    document.KeepHistory({.steps = 2, .bytes = 1 << 20});
    history = document.History();
    for (const char* text : {"a", "b", "c"}) Comment(1, text);
    desk.GoToStep(0);
    EXPECT_TRUE(document.IsModified());
}

// What others hear

TEST_F(History, WhoShowsTheDocumentHearsOfAnUndoAsOfAnEdit) {
    Begin(2);
    desk.DeleteBox(Box(2));
    std::vector<std::string> heard;
    const auto listener = document.edits.Observe([&](const Change& change) {
        heard.push_back(test::TextOf(change));
        EXPECT_TRUE(change.swapped);
    });
    desk.Undo();
    EXPECT_THAT(heard, ElementsAre("Delete Box: came a_2 dropped a_2 wires"));
    heard.clear();
    desk.Redo();
    EXPECT_THAT(heard, ElementsAre("Delete Box: went a_2 wires"));
}

}  // namespace
}  // namespace tavrin
