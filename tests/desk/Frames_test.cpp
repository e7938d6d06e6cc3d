// SPDX-License-Identifier: Apache-2.0
// Frames and notes, as documents, copies and the history keep them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desk/DeskViewport.h"
#include "desk/FrameGeometry.h"
#include "desk/OpDesk.h"
#include "document/DocumentFormWriter.h"
#include "document/DocumentReader.h"
#include "document/DocumentSnapshot.h"
#include "document/EditHistory.h"
#include "site/Site.h"
#include "support/ChangeAuditor.h"
#include "support/TestHost.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::MakeLink;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Kind = DeskFrame::Kind;

class Frames : public test::DocumentTest {
  protected:
    Frames() {
        document.KeepHistory();
        desk.OnInitialUpdate();
    }

    // A box of 100 by 48 that lies and is anchored there.
    COpBox& PutBox(float left, float bottom, int selected = 0) {
        COpBox& box = Add(desk, MakeLink("b", 0));
        box.layout = {left, bottom, 16, 100, 32, 30, 40};
        box.xypos[0] = left + 50;
        box.xypos[1] = bottom + 24;
        box.selected = selected;
        desk.OnInitialUpdate();
        return box;
    }
    int PutFrame(DeskRect rect, const std::string& text = "Title", Kind kind = Kind::kFrame) {
        AddFrame(document.frames, {.kind = kind,
                                   .color = 2,
                                   .left = rect.left,
                                   .bottom = rect.bottom,
                                   .width = rect.width,
                                   .height = rect.height,
                                   .text = text});
        document.edits.Replaced();
        return document.frames.rbegin()->first;
    }
    const DeskFrame& At(int number) { return document.frames.at(number); }
    DeskRect RectOf(int number) { return FrameRect(At(number)); }
    // The document with these lines behind its header.
    std::string TextWith(const std::string& lines) {
        std::string text = document.Store();
        const size_t place = text.find("toolbar\r\n");
        return text.insert(place, lines);
    }
    bool LoadInto(CTvDoc& other, const std::string& text) {
        return other.Load(ReadDocument(test::ArchiveOf(text, "doc.tvn")));
    }
    std::vector<std::string> Steps() {
        std::vector<std::string> steps;
        for (size_t i = 0; i < document.History()->Count(); ++i) steps.push_back(document.History()->Name(i));
        return steps;
    }
    void ExpectTold() { EXPECT_EQ(auditor.Look(), ""); }

    test::RecordingView view{document};
    test::SeenDesk desk{document, host, view};
    test::ChangeAuditor auditor{document, desk};
};

TEST_F(Frames, ADocumentWithoutAnySaysNothingOfThem) {
    EXPECT_THAT(document.Store(), Not(HasSubstr("tavrn-frame")));
}

TEST_F(Frames, AreSavedALineForEachAndOpenedAgain) {
    PutFrame({-10.5F, 20, 300, 200}, "Say \"hi\" \\ to # 100%");
    PutFrame({0, 0, 160, 80}, "two\nlines", Kind::kNote);
    const std::string text = document.Store();
    EXPECT_THAT(text,
                HasSubstr("tavrn-renderer mini\r\n\r\n"
                          "tavrn-frame \"frame 2 -10.500000 20.000000 300.000000 200.000000 Say \\\"hi\\\" "
                          "\\\\ to # 100%25\"\r\n\r\n"
                          "tavrn-frame \"note 2 0.000000 0.000000 160.000000 80.000000 two%0Alines\"\r\n\r\n"
                          "toolbar\r\n"));
    CTvDoc other(host);
    ASSERT_TRUE(LoadInto(other, text));
    EXPECT_EQ(other.frames, document.frames);
    EXPECT_EQ(other.Store(), text);
    EXPECT_FALSE(other.IsModified());
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(Frames, TheFormOfADocumentWritesThemAsTheyCame) {
    PutFrame({-10.5F, 20, 300, 200}, "Say \"hi\"\n\\");
    const std::string text = document.Store();
    EXPECT_EQ(WriteForm(ReadDocument(test::ArchiveOf(text, "doc.tvn"))), text);
}

TEST_F(Frames, TheSnapshotHasThemAndIsOutOfDateWhenOneIsEdited) {
    DocumentSnapshot snapshot(document, host);
    const int number = PutFrame({0, 0, 300, 200});
    EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot());
    EXPECT_TRUE(snapshot.IsUpToDate());
    desk.SetFrameColor(number, 4);
    EXPECT_FALSE(snapshot.IsUpToDate());
    EXPECT_EQ(TextOf(snapshot.Take()), document.Snapshot());
}

TEST_F(Frames, TheLineIsPassedOverByAProgramThatDoesNotKnowIt) {
    // Any other word is to this reader what that one is to an older one, whatever the text says.
    for (const char* title : {"opdesk", "toolbar", "}", "tavrn-renderer", "exportoptions"}) {
        PutFrame({0, 0, 300, 200}, title);
        std::string text = document.Store();
        text.replace(text.find("tavrn-frame"), 11, "tavrn-later");
        CTvDoc other(host);
        ASSERT_TRUE(LoadInto(other, text)) << title;
        EXPECT_TRUE(other.frames.empty());
        document.frames.clear();
        EXPECT_EQ(other.Store(), document.Store()) << title;
    }
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(Frames, AMergeBringsThoseThatStandBeforeTheDesk) {
    PutFrame({0, 0, 300, 200}, "kept");
    const std::string text = document.Store() + "tavrn-frame \"note 0 0 0 100 100 late\"\r\n";
    document.DeleteContents();
    ASSERT_TRUE(LoadDeskOnly(text));
    ASSERT_EQ(document.frames.size(), 1U);
    EXPECT_EQ(document.frames.begin()->second.text, "kept");
}

TEST_F(Frames, ALineThatIsNoneIsToldAndTheRestIsRead) {
    for (const char* words : {"\"\"", "nothing", "\"frame 0 nan 0 100 100 x\"", "\"note 0 0 0 100\"", "{"}) {
        host.Sink().alerts.clear();
        const std::string text =
            TextWith(std::string("tavrn-frame ") + words + "\r\ntavrn-frame \"note 0 0 0 100 100 good\"\r\n");
        const test::TempDir directory;
        directory.Write("doc.tvn", text);
        CTvDoc other(host);
        ASSERT_TRUE(other.Open(directory / "doc.tvn")) << words;
        ASSERT_EQ(other.frames.size(), 1U) << words;
        EXPECT_EQ(other.frames.begin()->second.text, "good");
        EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("doc.tvn near line 7: this is no frame and no note")))
            << words;
        EXPECT_TRUE(other.WasCutShort()) << "a save would lose it";
    }
}

TEST_F(Frames, AFileThatEndsBehindTheWordIsToldAsCut) {
    CTvDoc other(host);
    EXPECT_FALSE(LoadInto(other, document.Store() + "tavrn-frame"));
    EXPECT_THAT(Alerts(), Contains(HasSubstr("unexpected input")));
}

TEST_F(Frames, OfAMillionTheFirstThousandsAreReadAndTheRestIsToldOnce) {
    std::string lines;
    for (int i = 0; i < 1000000; ++i) lines += "tavrn-frame \"note 0 0 0 100 100 x\"\n";
    CTvDoc other(host);
    ASSERT_TRUE(LoadInto(other, TextWith(lines)));
    EXPECT_EQ(other.frames.size(), kMostFrames);
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("more than 10000 frames and notes")));
}

TEST_F(Frames, ATextOfAMegabyteComesBackWhole) {
    std::string wild(1 << 20, '\n');
    for (size_t i = 0; i < wild.size(); i += 3) wild[i] = static_cast<char>(i * 7);
    PutFrame({0, 0, 300, 200}, wild, Kind::kNote);
    CTvDoc other(host);
    ASSERT_TRUE(LoadInto(other, document.Store()));
    EXPECT_EQ(other.frames, document.frames);
}

TEST_F(Frames, ADocumentThatIsEmptiedHasNone) {
    PutFrame({0, 0, 300, 200});
    document.DeleteContents();
    EXPECT_TRUE(document.IsBare());
}

TEST_F(Frames, ANewFrameStandsRoundTheSelectedBoxesAndIsAllThatIsSelected) {
    PutBox(100, 100, 1);
    PutBox(400, 200, 1);
    PutBox(900, 900, 0);
    const int number = desk.FrameSelected({0, 0});
    ASSERT_NE(number, 0);
    EXPECT_TRUE(RectOf(number).Encloses({100, 100, 400, 148}));
    EXPECT_FALSE(RectOf(number).Overlaps({900, 900, 100, 48}));
    EXPECT_EQ(At(number).kind, Kind::kFrame);
    EXPECT_GT(FrameHandle(At(number), 1).bottom, 248) << "the bar is above the boxes";
    EXPECT_FALSE(desk.AnyBoxSelected());
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(number));
    EXPECT_THAT(Steps(), ElementsAre("Add Frame"));
    EXPECT_TRUE(document.IsModified());
    ExpectTold();
}

TEST_F(Frames, WithoutSelectedBoxesANewFrameStandsInTheMiddle) {
    const int number = desk.FrameSelected({500, 300});
    EXPECT_EQ(RectOf(number).Middle(), (DeskPoint{500, 300}));
    const int note = desk.AddNote({-50, 40});
    EXPECT_EQ(At(note).kind, Kind::kNote);
    EXPECT_EQ(RectOf(note).Middle(), (DeskPoint{-50, 40}));
    EXPECT_THAT(Steps(), ElementsAre("Add Frame", "Add Note"));
}

TEST_F(Frames, WhereThereIsNoRoomForMoreTheUserIsTold) {
    for (size_t i = 0; i < kMostFrames; ++i) AddFrame(document.frames, {});
    document.edits.Replaced();
    EXPECT_EQ(desk.AddNote({0, 0}), 0);
    EXPECT_THAT(Alerts(), ElementsAre("a desk holds no more than 10000 frames and notes"));
    EXPECT_EQ(document.frames.size(), kMostFrames);
    EXPECT_THAT(Steps(), IsEmpty());
}

TEST_F(Frames, UndoAndRedoBringEachStateBack) {
    PutBox(100, 100, 1);
    const auto stands = [this] { return document.frames; };
    std::vector<DeskFrames> states = {stands()};
    const int frame = desk.FrameSelected({0, 0});
    states.push_back(stands());
    const int note = desk.AddNote({0, 0});
    states.push_back(stands());
    desk.SetFrameColor(frame, 5);
    states.push_back(stands());
    desk.ResizeFrame(note, 2, {300, 300});
    states.push_back(stands());
    desk.SetFrameText(note, "text");
    states.push_back(stands());
    desk.DeleteFrame(frame);
    states.push_back(stands());
    EXPECT_THAT(Steps(), ElementsAre("Add Frame", "Add Note", "Color", "Resize", "Edit Note", "Delete"));
    for (size_t round = 0; round < 2; ++round) {
        for (size_t place = states.size(); place-- > 0;) {
            desk.GoToStep(place);
            EXPECT_EQ(document.frames, states[place]) << place;
        }
        for (size_t place = 0; place < states.size(); ++place) {
            desk.GoToStep(place);
            EXPECT_EQ(document.frames, states[place]) << place;
        }
        auditor.TakeAsItIs();
    }
    desk.GoToStep(0);
    EXPECT_THAT(desk.m_selectedFrames, IsEmpty()) << "what is gone is not selected";
}

TEST_F(Frames, WhatIsTypedInARowIsOneStepAndNoneIfItEndsAsItBegan) {
    const int number = PutFrame({0, 0, 300, 200}, "a");
    for (const char* text : {"ab", "abc", "abcd"}) desk.SetFrameText(number, text);
    EXPECT_THAT(Steps(), ElementsAre("Rename Frame"));
    desk.Undo();
    EXPECT_EQ(At(number).text, "a");
    desk.Redo();
    EXPECT_EQ(At(number).text, "abcd");
    document.History()->EndRun();
    desk.SetFrameText(number, "abcde");
    EXPECT_EQ(Steps().size(), 2U);
    desk.SetFrameText(number, "abcd");
    EXPECT_EQ(Steps().size(), 1U);
    ExpectTold();
}

TEST_F(Frames, AnEditThatChangesNothingIsNone) {
    const int number = PutFrame({0, 0, 300, 200}, "a");
    desk.SetFrameText(number, "a");
    desk.SetFrameColor(number, 2);
    desk.ResizeFrame(number, 2, {300, 200});
    desk.SetFrameText(99, "a");
    desk.SetFrameColor(99, 1);
    desk.ResizeFrame(99, 2, {0, 0});
    desk.DeleteFrame(99);
    EXPECT_THAT(Steps(), IsEmpty());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(Frames, WhoFollowsThePictureNeedNotLookAtTheirEdits) {
    const int number = PutFrame({0, 0, 300, 200});
    std::vector<Change> told;
    const auto listener = document.edits.Observe([&](const Change& change) {
        if (!change.selection) told.push_back(change);
    });
    desk.AddNote({0, 0});
    desk.SetFrameText(number, "x");
    desk.SetFrameColor(number, 4);
    desk.ResizeFrame(number, 2, {500, 500});
    desk.m_selectedFrames = {number};
    desk.MoveSelectedBoxes(10, 10);
    desk.DeleteFrame(number);
    desk.Undo();
    ASSERT_EQ(told.size(), 7U);
    for (const Change& change : told) {
        EXPECT_TRUE(change.frames) << change.act;
        EXPECT_TRUE(change.IsSeenOnDesk());
        EXPECT_FALSE(change.HasBoxes() || change.wires || change.options || change.settings) << change.act;
        EXPECT_TRUE(change.buttons.empty() && change.tuned.empty());
    }
}

TEST_F(Frames, ASelectedFrameTakesWhatLiesWhollyOnItAlong) {
    COpBox& inside = PutBox(50, 50);
    COpBox& half = PutBox(350, 50);
    const int frame = PutFrame({0, 0, 400, 300});
    const int note = PutFrame({200, 150, 100, 80}, "on it", Kind::kNote);
    const int beside = PutFrame({390, 200, 100, 80}, "half", Kind::kNote);
    desk.m_selectedFrames = {frame};
    desk.TakeAlong();
    desk.MoveSelectedBoxes(1000, 10);
    EXPECT_EQ(inside.layout.left, 1050);
    EXPECT_EQ(inside.xypos[1], 84);
    EXPECT_EQ(half.layout.left, 350);
    EXPECT_EQ(RectOf(frame).left, 1000);
    EXPECT_EQ(RectOf(note).left, 1200);
    EXPECT_EQ(RectOf(beside).left, 390);
    EXPECT_THAT(Steps(), ElementsAre("Move"));
    ExpectTold();
    desk.Undo();
    EXPECT_EQ(inside.xypos[0], 100);
    EXPECT_EQ(RectOf(frame).left, 0);
    EXPECT_EQ(RectOf(note).left, 200);
}

TEST_F(Frames, WhatTheFramePassesOverLaterStaysAndANoteTakesNothing) {
    COpBox& far = PutBox(1050, 50);
    const int frame = PutFrame({0, 0, 400, 300});
    desk.m_selectedFrames = {frame};
    desk.TakeAlong();
    desk.MoveSelectedBoxes(1000, 0);
    desk.MoveSelectedBoxes(1000, 0);
    EXPECT_EQ(far.layout.left, 1050);
    const int note = PutFrame({1000, 0, 400, 300}, "", Kind::kNote);
    desk.m_selectedFrames = {note};
    desk.TakeAlong();
    desk.MoveSelectedBoxes(1, 0);
    EXPECT_EQ(far.layout.left, 1050);
}

TEST_F(Frames, DeleteTakesTheSelectedOnesAndLeavesTheirBoxes) {
    PutBox(50, 50);
    const int frame = PutFrame({0, 0, 400, 300});
    PutFrame({900, 0, 400, 300});
    desk.m_selectedFrames = {frame};
    EXPECT_TRUE(desk.CanDelete());
    desk.DeleteSelection();
    EXPECT_EQ(document.m_boxes.size(), 1U);
    EXPECT_EQ(document.frames.size(), 1U);
    EXPECT_FALSE(document.frames.contains(frame));
    EXPECT_FALSE(desk.CanDelete());
    EXPECT_THAT(Steps(), ElementsAre("Delete"));
}

TEST_F(Frames, SelectAllTakesThemAndUnselectAllLetsThemGo) {
    const int frame = PutFrame({0, 0, 400, 300});
    desk.SelectAllBoxes();
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(frame));
    EXPECT_TRUE(desk.AnySelected());
    desk.UnselectAllBoxes();
    EXPECT_FALSE(desk.AnySelected());
}

TEST_F(Frames, ACopyWaitsUnderTheMouseWithItsBoxesAndIsDroppedWithThem) {
    PutBox(50, 50, 1);
    const int frame = PutFrame({0, 0, 400, 300}, "copied");
    desk.m_selectedFrames = {frame};
    desk.CopySelection();
    desk.PasteBoxes(DeskPoint{1100, 74});
    EXPECT_EQ(document.frames.size(), 1U);
    ASSERT_EQ(desk.FramesInHand().size(), 1U);
    EXPECT_EQ(FrameRect(desk.FramesInHand().front()), (DeskRect{1000, 0, 400, 300}))
        << "as far from the box as the original is";
    desk.DropPending();
    ASSERT_EQ(document.frames.size(), 2U);
    const int copy = document.frames.rbegin()->first;
    EXPECT_EQ(RectOf(copy), (DeskRect{1000, 0, 400, 300}));
    EXPECT_EQ(At(copy).text, "copied");
    EXPECT_THAT(desk.m_selectedFrames, ElementsAre(copy));
    EXPECT_FALSE(desk.HasPending());
    EXPECT_THAT(Steps(), ElementsAre("Paste"));
    ExpectTold();
    desk.Undo();
    EXPECT_EQ(document.frames.size(), 1U);
    EXPECT_EQ(document.m_boxes.size(), 1U);
}

TEST_F(Frames, NotesAloneAreCutPastedMovedAndThrownAway) {
    const int note = PutFrame({0, 0, 100, 80}, "n", Kind::kNote);
    desk.m_selectedFrames = {note};
    desk.CutBoxes();
    EXPECT_TRUE(document.IsBare());
    ASSERT_TRUE(desk.CanPaste());
    desk.PasteBoxes(DeskPoint{500, 500});
    EXPECT_TRUE(desk.HasPending());
    EXPECT_EQ(FrameRect(desk.FramesInHand().front()).Middle(), (DeskPoint{500, 500}));
    desk.MovePendingFrames({10, 0});
    EXPECT_EQ(FrameRect(desk.FramesInHand().front()).Middle(), (DeskPoint{510, 500}));
    EXPECT_TRUE(desk.CanDelete());
    desk.DeleteSelection();
    EXPECT_FALSE(desk.HasPending());
    desk.PasteBoxes(DeskPoint{500, 500});
    desk.DropPending();
    EXPECT_EQ(document.frames.size(), 1U);
    EXPECT_THAT(Steps(), ElementsAre("Cut", "Paste"));
    ExpectTold();
}

TEST_F(Frames, AMergedDocumentsOnesComeWithItsBoxes) {
    PutBox(50, 50);
    PutFrame({0, 0, 400, 300}, "merged");
    CTvDoc other(host);
    COpBox& box = *other.m_boxes.emplace_back(MakeLink("b", 1));
    box.xypos[0] = 100;
    box.xypos[1] = 100;
    AddFrame(other.frames, {.left = 60, .bottom = 20, .width = 200, .height = 150, .text = "other"});
    desk.MergeBoxes(other.m_boxes, other.frames);
    ASSERT_EQ(desk.FramesInHand().size(), 1U);
    desk.DropPending();
    ASSERT_EQ(document.frames.size(), 2U);
    const DeskRect rect = FrameRect(document.frames.rbegin()->second);
    const COpBox& merged = *document.m_boxes.front();
    EXPECT_EQ(rect.left - merged.xypos[0], -40);
    EXPECT_EQ(rect.bottom - merged.xypos[1], -80);
    EXPECT_THAT(Steps(), ElementsAre("Merge"));
}

TEST_F(Frames, FitToWindowShowsThem) {
    PutBox(0, 0);
    PutFrame({3000, 2000, 400, 300});
    DeskViewport viewport(document, {0.1F, 10});
    viewport.SetSize(800, 600);
    ASSERT_TRUE(viewport.FitToWindow());
    EXPECT_TRUE(viewport.Visible().Encloses({3000, 2000, 400, 300}));
    EXPECT_TRUE(viewport.Visible().Encloses({0, 0, 100, 48}));
}

TEST_F(Frames, ADeskOfNotesAloneIsZoomedPannedAndFitted) {
    PutFrame({3000, 2000, 400, 300}, "n", Kind::kNote);
    DeskViewport viewport(document, {0.1F, 10});
    viewport.SetSize(800, 600);
    EXPECT_TRUE(viewport.ZoomIn());
    EXPECT_TRUE(viewport.Pan(10, 10));
    EXPECT_TRUE(viewport.FitToWindow());
    EXPECT_TRUE(viewport.Visible().Encloses({3000, 2000, 400, 300}));
}

TEST_F(Frames, AnotherDocumentHasNoneOfThemSelected) {
    desk.m_selectedFrames = {PutFrame({0, 0, 400, 300})};
    document.DeleteContents();
    desk.OnInitialUpdate();
    EXPECT_FALSE(desk.AnySelected());
}

}  // namespace
}  // namespace tavrin
