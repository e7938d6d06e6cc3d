// SPDX-License-Identifier: Apache-2.0
// A user who rewires and arranges a network with pointer and keys, in a library that helps the hand and in
// one that does not.
#include <QAction>
#include <QTest>
#include <cmath>
#include <optional>
#include <stdexcept>

#include "document/EditHistory.h"
#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::DeskPointer;
using test::PressKeys;
using testing::AnyOf;
using testing::IsEmpty;
using testing::SizeIs;
using Id = CommandId;

class FlowUse : public test::FrameTest {
  protected:
    FlowUse() { environment.Set("SOURCE_DATE_EPOCH", "1000000000"); }

    // Before the start.
    void HelpTheHand() {
        AddToSite(
            "desk.pullwires 1\ndesk.dropwires 1\ndesk.escapewires 1\ndesk.insertboxes 1\ndesk.keepflow 1\n");
    }
    void AddToSite(const std::string& lines) {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) + lines);
    }
    // Boxes that step down from left to right in the middle of the desk, the first `wired` of them a chain.
    void StartWithBoxes(int count, int wired) {
        Start();
        AddBoxes(count);
        for (int number = 1; number <= count; ++number) {
            Box(number).selected = 0;
            Box(number).xypos[0] = 150.0F * static_cast<float>(number);
            Box(number).xypos[1] = -60.0F * static_cast<float>(number);
            if (number > 1 && number <= wired) Desk().Connect(Output(number - 1), Input(number));
        }
        Frame().Desk().LayoutAll();
        Do(Id::kFitToWindow);
        Document().History()->DocumentReplaced();  // nothing is there to undo
        Document().SetModified(false);
        Settle();
        pointer.emplace(Frame());
        test::FocusOn(Frame().Desk());
    }
    COpBox& Box(int number) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == number) return *box;
        }
        throw std::logic_error("no such box");
    }
    COpButton& Input(int number) { return *Box(number).inputs.at(0); }
    COpButton& Output(int number) { return *Box(number).outputs.at(0); }
    // Which box feeds that one; 0 for none.
    int FeederOf(int number) {
        const COpButton* output = Input(number).connections.First();
        return output == nullptr ? 0 : output->owner->wid;
    }
    // Where nothing is.
    QPoint Nowhere() { return {8, 8}; }
    void Drag(QPoint from, const std::vector<QPoint>& way) {
        pointer->MoveTo(from);
        pointer->Press(from);
        for (const QPoint at : way) pointer->MoveTo(at, Qt::LeftButton);
        pointer->Release(way.back());
        Settle();
    }
    void Zoom() {
        Do(Id::kZoomIn);
        Settle();
        ASSERT_NE(Document().zoomFactor, 1);
    }
    // By its title, with what the step is called.
    void ExpectOneStepBack(const std::string& before) {
        ASSERT_NE(Document().Snapshot(), before);
        const std::string after = Document().Snapshot();
        PressKeys("Ctrl+Z");
        Settle();
        EXPECT_EQ(Document().Snapshot(), before);
        EXPECT_FALSE(IsEnabled(Id::kUndo)) << "that was more than one step";
        PressKeys("Ctrl+Shift+Z");
        Settle();
        EXPECT_EQ(Document().Snapshot(), after);
    }

    std::optional<DeskPointer> pointer;
};

TEST_F(FlowUse, AWireIsPulledOffItsInputAndPutOnAnother) {
    HelpTheHand();
    StartWithBoxes(3, 2);
    const std::string before = Document().Snapshot();
    Drag(pointer->Of(Input(2)), {Nowhere(), pointer->Of(Input(3))});
    EXPECT_EQ(FeederOf(2), 0);
    EXPECT_EQ(FeederOf(3), 1);
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    ExpectOneStepBack(before);
}

TEST_F(FlowUse, AWireThatIsPulledOffAndLetGoOfOverTheEmptyDeskIsCut) {
    HelpTheHand();
    StartWithBoxes(2, 2);
    const std::string before = Document().Snapshot();
    Drag(pointer->Of(Input(2)), {Nowhere()});
    EXPECT_EQ(FeederOf(2), 0);
    ExpectOneStepBack(before);
}

TEST_F(FlowUse, WhereTheLibraryIsSilentAPressOnAnInputPicksItAndItsWireStays) {
    StartWithBoxes(3, 2);
    Drag(pointer->Of(Input(2)), {Nowhere()});
    EXPECT_EQ(FeederOf(2), 1);
    EXPECT_EQ(Desk().m_selectedButton, &Input(2));
    EXPECT_FALSE(IsEnabled(Id::kUndo));
}

TEST_F(FlowUse, AWireThatIsDrawnFromAnOutputAndLetGoOfOverTheEmptyDeskIsForgotten) {
    HelpTheHand();
    StartWithBoxes(2, 0);
    Drag(pointer->Of(Output(1)), {Nowhere()});
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    EXPECT_FALSE(IsEnabled(Id::kUndo));
}

TEST_F(FlowUse, ABoxThatIsDroppedOnAWireGoesBetweenItsEnds) {
    HelpTheHand();
    StartWithBoxes(3, 2);
    const std::string before = Document().Snapshot();
    Drag(pointer->TitleOf(Box(3)), {Nowhere(), pointer->OfWireInto(Input(2)) - QPoint(0, 12)});
    EXPECT_EQ(FeederOf(3), 1);
    EXPECT_EQ(FeederOf(2), 3);
    ExpectOneStepBack(before);
}

TEST_F(FlowUse, WhereTheLibraryIsSilentABoxThatIsDroppedOnAWireLiesOnIt) {
    StartWithBoxes(3, 2);
    Drag(pointer->TitleOf(Box(3)), {Nowhere(), pointer->OfWireInto(Input(2)) - QPoint(0, 12)});
    EXPECT_EQ(FeederOf(3), 0);
    EXPECT_EQ(FeederOf(2), 1);
}

TEST_F(FlowUse, ShiftAndDeleteJoinsWhatTheBoxStoodBetween) {
    HelpTheHand();
    StartWithBoxes(3, 3);
    const std::string before = Document().Snapshot();
    pointer->Click(pointer->TitleOf(Box(2)));
    Settle();
    PressKeys("Shift+Delete");
    Settle();
    ASSERT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(FeederOf(3), 1);
    EXPECT_THAT(Desk().m_clipboardBoxes, IsEmpty()) << "nothing is cut";
    ExpectOneStepBack(before);
    EXPECT_EQ(Action(Id::kDeleteKeepingFlow).shortcuts(), QList<QKeySequence>{QKeySequence("Shift+Del")});
    EXPECT_EQ(Action(Id::kDeleteKeepingFlow).toolTip(), "Delete and Join (Shift+Del)");
    EXPECT_EQ(Action(Id::kCut).shortcuts(), QList<QKeySequence>{QKeySequence("Ctrl+X")});
}

TEST_F(FlowUse, WhereTheLibraryIsSilentShiftAndDeleteCuts) {
    StartWithBoxes(3, 3);
    pointer->Click(pointer->TitleOf(Box(2)));
    Settle();
    PressKeys("Shift+Delete");
    Settle();
    ASSERT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(FeederOf(3), 0);
    EXPECT_THAT(Desk().m_clipboardBoxes, SizeIs(1));
}

TEST_F(FlowUse, OnALockedDeskNothingIsArrangedMutedOrJoined) {
    HelpTheHand();
    StartWithBoxes(3, 3);
    Do(Id::kSelectAllBoxes);
    Do(Id::kLockDesk);
    Settle();
    const std::string before = Document().Snapshot();
    for (const Id id : {Id::kDeleteKeepingFlow, Id::kMuteBoxes, Id::kTidy, Id::kAlignLeft, Id::kAlignCentre,
                        Id::kAlignRight, Id::kAlignTop, Id::kAlignMiddle, Id::kAlignBottom,
                        Id::kDistributeAcross, Id::kDistributeDown})
        EXPECT_FALSE(IsEnabled(id)) << static_cast<int>(id);
    for (const char* keys : {"Shift+Delete", "Ctrl+Shift+M", "Ctrl+Shift+T"}) PressKeys(keys);
    Settle();
    EXPECT_EQ(Document().Snapshot(), before);
}

TEST_F(FlowUse, AMutedBoxIsUnmutedByTheSameKeysAndOfSomeMutedOnesAllAreMuted) {
    StartWithBoxes(2, 2);
    const std::string before = Document().Snapshot();
    pointer->Click(pointer->TitleOf(Box(2)));
    Settle();
    PressKeys("Ctrl+Shift+M");
    Settle();
    EXPECT_EQ(Box(2).muted, 1);
    ExpectOneStepBack(before);
    Do(Id::kSelectAllBoxes);
    Settle();
    PressKeys("Ctrl+Shift+M");
    Settle();
    EXPECT_EQ(Box(1).muted + Box(2).muted, 2);
    PressKeys("Ctrl+Shift+M");
    Settle();
    EXPECT_EQ(Box(1).muted + Box(2).muted, 0);
}

TEST_F(FlowUse, TheCommandsThatArrangeAskForAsManyBoxesAsTheyNeed) {
    StartWithBoxes(3, 0);
    const auto select = [this](int count) {
        for (int number = 1; number <= 3; ++number) Box(number).selected = number <= count ? 1 : 0;
        Document().edits.SelectionChanged();
    };
    for (int count = 0; count <= 3; ++count) {
        select(count);
        for (const Id id : {Id::kAlignLeft, Id::kAlignCentre, Id::kAlignRight, Id::kAlignTop,
                            Id::kAlignMiddle, Id::kAlignBottom})
            EXPECT_EQ(IsEnabled(id), count >= 2) << count;
        for (const Id id : {Id::kDistributeAcross, Id::kDistributeDown})
            EXPECT_EQ(IsEnabled(id), count >= 3) << count;
        for (const Id id : {Id::kMuteBoxes, Id::kDeleteKeepingFlow})
            EXPECT_EQ(IsEnabled(id), count >= 1) << count;
        EXPECT_TRUE(IsEnabled(Id::kTidy)) << count;
    }
    Do(Id::kNew);
    AddBoxes(1);
    EXPECT_FALSE(IsEnabled(Id::kTidy)) << "a single box is tidy";
}

TEST_F(FlowUse, WhatIsArrangedIsOneStepBack) {
    StartWithBoxes(3, 3);
    Do(Id::kSelectAllBoxes);
    Settle();
    for (const Id id : {Id::kAlignLeft, Id::kAlignMiddle, Id::kTidy}) {
        const std::string before = Document().Snapshot();
        test::ChooseInMenu(Frame(), "Edit", Action(id));
        Settle();
        ExpectOneStepBack(before);
        PressKeys("Ctrl+Z");
        Settle();
    }
}

TEST_F(FlowUse, TidyLeavesWhatIsNotSelectedWhereItIs) {
    StartWithBoxes(3, 3);
    Box(1).selected = Box(2).selected = 1;
    const DeskRect third = BoxRect(Box(3));
    PressKeys("Ctrl+Shift+T");
    Settle();
    EXPECT_EQ(BoxRect(Box(3)), third);
    EXPECT_NEAR(BoxRect(Box(1)).bottom, BoxRect(Box(2)).bottom, 0.01F);
}

// Escape

TEST_F(FlowUse, EscapeLetsGoOfAPickedButtonAndOnlyThenResetsTheZoom) {
    HelpTheHand();
    StartWithBoxes(2, 0);
    Zoom();
    const float zoom = Document().zoomFactor;
    pointer->Click(pointer->Of(Output(1)));
    ASSERT_EQ(Desk().m_selectedButton, &Output(1));
    PressKeys("Esc");  // at once, before the program has come to rest
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    EXPECT_EQ(Document().zoomFactor, zoom);
    Settle();
    PressKeys("Esc");
    Settle();
    EXPECT_EQ(Document().zoomFactor, 1);
}

TEST_F(FlowUse, EscapeLetsGoAlsoWhereThereIsNoZoomToReset) {
    HelpTheHand();
    StartWithBoxes(2, 0);
    Document().zoomFactor = 1;
    Settle();
    ASSERT_FALSE(IsEnabled(Id::kZoomReset));
    pointer->Click(pointer->Of(Output(1)));
    PressKeys("Esc");
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
}

TEST_F(FlowUse, WhereTheLibraryIsSilentEscapeResetsTheZoomAndTheButtonStaysPicked) {
    StartWithBoxes(2, 0);
    Zoom();
    pointer->Click(pointer->Of(Output(1)));
    Settle();
    PressKeys("Esc");
    Settle();
    EXPECT_EQ(Desk().m_selectedButton, &Output(1));
    EXPECT_EQ(Document().zoomFactor, 1);
}

TEST_F(FlowUse, EscapePutsAWireInHandBackWhereItWas) {
    HelpTheHand();
    StartWithBoxes(3, 2);
    const std::string before = Document().Snapshot();
    const QPoint from = pointer->Of(Input(2));
    pointer->MoveTo(from);
    pointer->Press(from);
    pointer->MoveTo(Nowhere(), Qt::LeftButton);
    EXPECT_EQ(Desk().m_pulledInput, &Input(2));
    PressKeys("Esc");
    EXPECT_EQ(Desk().m_pulledInput, nullptr);
    pointer->MoveTo(pointer->Of(Input(3)), Qt::LeftButton);
    pointer->Release(pointer->Of(Input(3)));
    Settle();
    EXPECT_EQ(Document().Snapshot(), before);
    EXPECT_FALSE(IsEnabled(Id::kUndo));
}

TEST_F(FlowUse, EscapeLetsGoOfAWireBeforeItEndsWhatIsShownAndThatBeforeTheZoom) {
    HelpTheHand();
    AddToSite("probe probe/float.tvn\n");
    directory.Write("tavrin/tiny/probe/float.tvn", "opdesk { opbox { filename Paint wid 1 } }\n");
    StartWithBoxes(2, 0);
    Zoom();
    const Probe& probe = Frame().Work().probe;
    pointer->ChooseAt(pointer->Of(Output(1)), {"Show This"});
    Settle();
    pointer->Click(pointer->Of(Output(2)));
    PressKeys("Esc");
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    EXPECT_NE(probe.Output(), nullptr);
    PressKeys("Esc");
    EXPECT_EQ(probe.Output(), nullptr);
    EXPECT_NE(Document().zoomFactor, 1);
    Settle();
    PressKeys("Esc");
    EXPECT_EQ(Document().zoomFactor, 1);
}

TEST_F(FlowUse, OnALockedDeskEscapeKeepsWhatIsPicked) {
    HelpTheHand();
    StartWithBoxes(2, 0);
    pointer->Click(pointer->Of(Output(1)));
    Do(Id::kLockDesk);
    Settle();
    Frame().setFocus();
    PressKeys("Esc");
    EXPECT_EQ(Desk().m_selectedButton, &Output(1));
}

// A great network

class GreatFlow : public FlowUse {
  protected:
    static constexpr int kBoxes = 5000;
    static constexpr int kColumns = 100;

    // Boxes in rows, each row a chain, away from all of which stands the last one.
    void StartGreat() {
        HelpTheHand();
        AddToSite("preprocess.pure 1\n");  // else opening runs it for each box
        StartWithBoxes(1, 0);
        Do(Id::kFreezeSliders);
        Document().SetModified(false);
        ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("great", kBoxes)));
        int place = 0;
        for (const auto& box : Document().m_boxes) {
            box->xypos[0] = 200.0F * static_cast<float>(place % kColumns);
            box->xypos[1] = -100.0F * static_cast<float>(place / kColumns);
            boxes.push_back(box.get());
            if (place % kColumns != 0 && place + 1 < kBoxes) WireOn(place);
            ++place;
        }
        boxes.back()->xypos[1] -= 200;
        Frame().Desk().LayoutAll();
        Document().History()->DocumentReplaced();  // nothing is there to undo
        Settle();
        See(0);
        ASSERT_EQ(boxes.size(), size_t{kBoxes});
        before = Document().Snapshot();
    }
    void WireOn(int place) {
        const auto at = static_cast<size_t>(place);
        Desk().Connect(*boxes[at - 1]->outputs.at(0), *boxes[at]->inputs.at(0));
    }
    COpBox& At(int place) { return *boxes.at(static_cast<size_t>(place)); }
    COpButton& InputAt(int place) { return *At(place).inputs.at(0); }
    void See(int place) {
        Document().zoomFactor = 1;
        Frame().Desk().LayoutAll();
        Frame().Desk().CentreOnBox(At(place).BoxTitleWid());
        Settle();
    }
    void ExpectUndone() {
        PressKeys("Ctrl+Z");
        Settle();
        Document().zoomFactor = 1;
        EXPECT_FALSE(IsEnabled(Id::kUndo));
    }

    std::vector<COpBox*> boxes;
    std::string before;
};

TEST_F(GreatFlow, IsRewiredByTheHand) {
    StartGreat();
    Drag(pointer->Of(InputAt(1)), {pointer->At(BoxRect(At(0)).Middle()) - QPoint(0, 60)});
    EXPECT_TRUE(InputAt(1).connections.Empty());
    ExpectUndone();
    EXPECT_FALSE(InputAt(1).connections.Empty());
    boxes.back()->xypos[0] = 100;
    boxes.back()->xypos[1] = 120;
    See(0);
    Drag(pointer->TitleOf(*boxes.back()), {pointer->OfWireInto(InputAt(1)) - QPoint(0, 12)});
    ASSERT_FALSE(InputAt(1).connections.Empty());
    EXPECT_EQ(InputAt(1).connections.First()->owner, boxes.back());
    ExpectUndone();
}

TEST_F(GreatFlow, IsArrangedMutedAndThinnedOut) {
    StartGreat();
    Do(Id::kSelectAllBoxes);
    Settle();
    for (const Id id :
         {Id::kTidy, Id::kAlignLeft, Id::kAlignCentre, Id::kAlignRight, Id::kAlignTop, Id::kAlignMiddle,
          Id::kAlignBottom, Id::kDistributeAcross, Id::kDistributeDown, Id::kMuteBoxes}) {
        ASSERT_TRUE(IsEnabled(id));
        Do(id);
        Settle();
        EXPECT_TRUE(IsEnabled(Id::kUndo)) << static_cast<int>(id) << " changed nothing";
        ExpectUndone();
    }
    for (int place = 0; place < kBoxes; ++place) At(place).selected = place % kColumns % 2;
    Document().edits.SelectionChanged();
    PressKeys("Shift+Delete");
    Settle();
    EXPECT_EQ(Document().m_boxes.size(), size_t{kBoxes} / 2);
    EXPECT_EQ(InputAt(2).connections.First(), At(0).outputs.at(0).get());
    ExpectUndone();
    EXPECT_EQ(Document().m_boxes.size(), size_t{kBoxes});
}

}  // namespace
}  // namespace tavrin
