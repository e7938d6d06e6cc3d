// SPDX-License-Identifier: Apache-2.0
// What the rest of the frame shows of the hand on the desk, and what comes between a press and its release.
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QMouseEvent>
#include <QTest>

#include "ui/base/Text.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using test::BoxesShown;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DeskHandTest : public test::FrameTest {
  protected:
    // Boxes side by side in the middle of the desk, saved, with the picture of them painted.
    void StartWithBoxes(int count) {
        Start();
        AddBoxes(count);
        const DeskPoint middle = Pane().View().Visible().Middle();
        for (int place = 0; place < count; ++place) {
            COpBox& box = Box(place);
            box.xypos[0] = middle.x + 160.0F * static_cast<float>(place) - 150;
            box.xypos[1] = middle.y;
            box.selected = 0;
            Pane().LayoutBox(box);
        }
        Document().SetModified(false);
        Frame().StatusBox().ClearStatus();
        Pane().Desk().grabFramebuffer();
        SettleByKey();
        EXPECT_FALSE(Frame().isWindowModified());
    }
    // Boxes by their numbers, from 0.
    COpBox& Box(int place) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == place + 1) return *box;
        }
        throw std::logic_error("no such box");
    }
    DeskPane& Pane() { return Frame().Desk(); }
    QPoint At(DeskPoint point) {
        const WindowPoint at = Pane().View().ToWindow(point);
        return {static_cast<int>(at.x), static_cast<int>(at.y)};
    }
    QPoint TitleOf(int place) { return At(TitleRect(Box(place)).Middle()); }
    QPoint InputOf(int place) { return At(ButtonRect({&Box(place), false, 0}).Middle()); }
    QPoint OutputOf(int place) { return At(ButtonRect({&Box(place), true, 0}).Middle()); }

    void MoveTo(QPoint at, Qt::MouseButtons buttons = Qt::NoButton) {
        QMouseEvent move(QEvent::MouseMove, at, Pane().Desk().mapToGlobal(at), Qt::NoButton, buttons, {});
        QApplication::sendEvent(&Pane().Desk(), &move);
    }
    void Press(QPoint at, Qt::KeyboardModifiers keys = {}) {
        MoveTo(at);
        QTest::mousePress(&Pane().Desk(), Qt::LeftButton, keys, at);
    }
    void Drag(QPoint at) { MoveTo(at, Qt::LeftButton); }
    void Release(QPoint at) { QTest::mouseRelease(&Pane().Desk(), Qt::LeftButton, {}, at); }
    void Click(QPoint at, Qt::KeyboardModifiers keys = {}) {
        Press(at, keys);
        Release(at);
    }
    void Wire(int from, int to) {
        Press(OutputOf(from));
        Drag(InputOf(to));
        Release(InputOf(to));
    }
    // A key that is bound to nothing gives the frame an idle moment.
    void SettleByKey() {
        QTest::keyClick(&Frame(), Qt::Key_F24);
        Settle();
    }
    bool DeskTimerRuns() {
        return !QAbstractEventDispatcher::instance()->registeredTimers(&Pane().Desk()).isEmpty();
    }
    std::string Status() { return Bytes(Frame().StatusBox().Status()); }
    std::string Boxes() { return Bytes(BoxesShown().join('|')); }
    size_t ArgumentRows() { return Frame().Windows().Get<CArgumentEditor>().Rows().Count(); }
};

TEST_F(DeskHandTest, ASelectionEnablesTheCommandsAndLeavesTheDocumentUnmodified) {
    StartWithBoxes(2);
    EXPECT_FALSE(Action(CommandId::kCut).isEnabled());
    Click(TitleOf(0));
    Settle();
    EXPECT_TRUE(Action(CommandId::kCut).isEnabled());
    EXPECT_TRUE(Action(CommandId::kDelete).isEnabled());
    Click({5, 5});
    Settle();
    EXPECT_FALSE(Action(CommandId::kCut).isEnabled());
    EXPECT_FALSE(Action(CommandId::kDelete).isEnabled());
    Click(OutputOf(0));
    Settle();
    EXPECT_FALSE(Action(CommandId::kCut).isEnabled());
    EXPECT_TRUE(Action(CommandId::kDelete).isEnabled());
    EXPECT_FALSE(Frame().isWindowModified());
}

TEST_F(DeskHandTest, ADragPutsTheStarIntoTheTitle) {
    StartWithBoxes(1);
    const QPoint grip = TitleOf(0);
    Press(grip);
    Drag(grip + QPoint(20, 10));
    Release(grip + QPoint(20, 10));
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(DeskHandTest, APanPutsTheStarIntoTheTitle) {
    StartWithBoxes(1);
    MoveTo({50, 50});
    QTest::mousePress(&Pane().Desk(), Qt::MiddleButton, {}, {50, 50});
    MoveTo({60, 50}, Qt::MiddleButton);
    QTest::mouseRelease(&Pane().Desk(), Qt::MiddleButton, {}, {60, 50});
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(DeskHandTest, AWireTakesItsInputOutOfTheArgumentEditor) {
    StartWithBoxes(2);
    Do(CommandId::kArgumentEditor);
    Settle();
    EXPECT_EQ(ArgumentRows(), 2U);
    Wire(0, 1);
    EXPECT_EQ(ArgumentRows(), 1U);
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
}

TEST_F(DeskHandTest, AWireThatWouldCloseALoopIsRefusedInABoxAndHoveringWarns) {
    StartWithBoxes(2);
    Wire(0, 1);
    Press(OutputOf(1));
    Drag(InputOf(0));
    EXPECT_EQ(Status(), ">>>\n>>> HEY!!!  That would make an endless loop\n>>>");
    EXPECT_EQ(Boxes(), "");
    PressWhenBoxComes("OK");
    Release(InputOf(0));
    ASSERT_TRUE(WaitUntil([&] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Boxes(), "Alert: That would create an endless loop!  Watch status box for warnings.");
    EXPECT_TRUE(Box(0).inputs.at(0)->connections.Empty());
    EXPECT_EQ(Desk().m_selectedButton, Box(1).outputs.at(0).get());
    PressWhenBoxComes("OK");
    Press(InputOf(0));
    ASSERT_TRUE(WaitUntil([&] { return BoxesShown().size() == 2; }));
    EXPECT_THAT(Boxes(),
                HasSubstr("|Alert: That would create endless loop!  Watch status box for warnings."));
    EXPECT_EQ(Desk().m_selectedButton, Box(1).outputs.at(0).get());
    EXPECT_FALSE(DeskTimerRuns());
    Release(InputOf(0));
    EXPECT_TRUE(Box(0).inputs.at(0)->connections.Empty());
    Settle();
    EXPECT_THAT(Log(), HasSubstr("ALERT: That would create endless loop!  Watch status box for warnings."));
}

TEST_F(DeskHandTest, ABoxCannotFeedItself) {
    StartWithBoxes(1);
    PressWhenBoxComes("OK");
    Wire(0, 0);
    ASSERT_TRUE(WaitUntil([&] { return !BoxesShown().isEmpty(); }));
    EXPECT_EQ(Boxes(), "Alert: That would create an endless loop!  Watch status box for warnings.");
    EXPECT_TRUE(Box(0).inputs.at(0)->connections.Empty());
}

TEST_F(DeskHandTest, TheStatusBoxTellsOfWhatIsUnderThePointerLineByLine) {
    StartWithBoxes(1);
    Box(0).boxhelp = "one\r\ntwo";
    MoveTo(TitleOf(0));
    EXPECT_EQ(Status(), "one\ntwo");
    MoveTo({5, 5});
    EXPECT_EQ(Status(), kDeskHint);
    Frame().StatusBox().SetStatus("held", 100);
    MoveTo(TitleOf(0));
    EXPECT_EQ(Status(), "held");
}

TEST_F(DeskHandTest, TheHelpOfABoxGoesWithTheBoxByWhateverWay) {
    StartWithBoxes(1);
    Document().Store();
    const std::string other = WriteDocument("other");
    const std::vector<std::function<void()>> ways = {
        [this] { Do(CommandId::kDelete); },
        [this] { Do(CommandId::kCut); },
        [this] { Desk().DeleteBox(Box(0)); },
        [this] {
            Document().SetModified(false);
            Do(CommandId::kNew);
        },
        [this, &other] {
            Document().SetModified(false);
            Frame().OpenDocumentFile(other);
        },
    };
    for (const auto& way : ways) {
        if (Document().m_boxes.empty()) AddBoxes(1);
        Frame().Desk().CentreOnBox("Constant_1");
        Box(0).boxhelp = "help of the box";
        Box(0).selected = 1;
        MoveTo(TitleOf(0));
        EXPECT_EQ(Status(), "help of the box");
        way();
        Settle();
        EXPECT_EQ(Status(), kDeskHint) << "by way " << &way - ways.data();
    }
    Document().SetModified(false);
}

TEST_F(DeskHandTest, WhatIsShownInThePlaceOfAHelpStaysWhenTheBoxGoes) {
    StartWithBoxes(1);
    Box(0).boxhelp = "help of the box";
    Box(0).selected = 1;
    MoveTo(TitleOf(0));
    Frame().StatusBox().SetStatus("of the toolbar");
    Do(CommandId::kDelete);
    Settle();
    EXPECT_EQ(Status(), "of the toolbar");
    Document().SetModified(false);
}

TEST_F(DeskHandTest, WhatIsInHandIsToldBeforeTheHelp) {
    StartWithBoxes(2);
    const auto hint = [this] {
        Settle();
        return Bytes(Frame().StatusBox().Hint());
    };
    EXPECT_EQ(hint(), "");
    Press(OutputOf(0));
    EXPECT_EQ(hint(), "Release on a button to wire it");
    Release(OutputOf(0));
    EXPECT_EQ(hint(), "Click a button to wire it, the desk to let go");
    Click(InputOf(1));
    EXPECT_EQ(hint(), "");
    Desk().AddOperator("Constant");
    SettleByKey();
    EXPECT_EQ(hint(), "Click to drop, Delete to throw away");
    Document().SetModified(false);
}

TEST_F(DeskHandTest, TheKeysZoomDuringADragAndTheBoxStaysUnderThePointer) {
    StartWithBoxes(1);
    Pane().setFocus();
    const QPoint grip = TitleOf(0);
    Press(grip);
    Drag(grip + QPoint(10, 0));
    test::PressKeys("Up");
    EXPECT_FLOAT_EQ(Document().zoomFactor, 1.1F);
    const QPoint at = grip + QPoint(60, 30);
    Drag(at);
    EXPECT_LE((TitleOf(0) - at).manhattanLength(), 3);
    test::PressKeys("Escape");
    EXPECT_EQ(Document().zoomFactor, 1);
    Drag(at + QPoint(1, 0));
    Release(at + QPoint(1, 0));
    EXPECT_FALSE(DeskTimerRuns());
}

TEST_F(DeskHandTest, ALockDuringADragEndsIt) {
    StartWithBoxes(1);
    const QPoint grip = TitleOf(0);
    Press(grip);
    Drag({-20, grip.y()});
    EXPECT_TRUE(DeskTimerRuns());
    test::PressKeys("Ctrl+L");
    EXPECT_FALSE(DeskTimerRuns());
    test::PressKeys("Ctrl+L");
    const float x = Box(0).xypos[0];
    Drag({200, 200});
    Release({200, 200});
    EXPECT_EQ(Box(0).xypos[0], x);
}

TEST_F(DeskHandTest, AnAlertThatComesUpOverADragEndsIt) {
    StartWithBoxes(1);
    const QPoint grip = TitleOf(0);
    Press(grip);
    Drag({-20, grip.y()});
    float offset = 0;
    bool ran = true;
    test::WhenDialogComes([&](QDialog& box) {
        ran = DeskTimerRuns();
        offset = Document().offset[0];
        box.accept();
    });
    App().GetSite().report.Alert("a render has failed");
    SettleByKey();
    ASSERT_TRUE(WaitUntil([&] { return QApplication::activeModalWidget() == nullptr && !ran; }));
    EXPECT_EQ(Document().offset[0], offset);
    EXPECT_FALSE(DeskTimerRuns());
    Release({-20, grip.y()});
    EXPECT_EQ(Document().offset[0], offset);
    EXPECT_FALSE(DeskTimerRuns());
}

TEST_F(DeskHandTest, ANewDocumentDuringADragIsNotDraggedOn) {
    StartWithBoxes(2);
    const QPoint grip = TitleOf(0);
    Press(grip);
    Do(CommandId::kNew);
    EXPECT_THAT(Document().m_boxes, IsEmpty());
    EXPECT_FALSE(Document().IsModified());
    Drag(grip + QPoint(30, 0));
    Drag({-20, 20});
    Settle();
    EXPECT_FALSE(DeskTimerRuns());
    Release({-20, 20});
    EXPECT_FALSE(Document().IsModified());
    EXPECT_EQ(Document().offset[0], 0);
}

TEST_F(DeskHandTest, DeletedWhileTheyAreHeldTheBoxAndItsWireAreForgotten) {
    StartWithBoxes(2);
    Pane().setFocus();
    Click(TitleOf(0));
    Settle();
    Press(OutputOf(0));  // a wire from the selected box
    Drag(InputOf(1));
    test::PressKeys("Delete");
    ASSERT_EQ(Document().m_boxes.size(), 1U);
    Pane().Desk().grabFramebuffer();
    Drag(InputOf(1) + QPoint(1, 0));
    Release(InputOf(1) + QPoint(1, 0));
    EXPECT_TRUE(Box(1).inputs.at(0)->connections.Empty());
    EXPECT_EQ(Desk().m_selectedButton, nullptr);
    EXPECT_FALSE(DeskTimerRuns());
    EXPECT_THAT(Log(), testing::Not(HasSubstr("invalid")));
}

TEST_F(DeskHandTest, WhatWaitsUnderThePointerIsDroppedByAPressOnABoxAndSelectsNothingElse) {
    StartWithBoxes(1);
    Desk().AddOperator("Constant");
    Settle();
    MoveTo(TitleOf(0));
    Document().SetModified(false);
    Press(TitleOf(0));
    EXPECT_EQ(Document().m_boxes.size(), 2U);
    EXPECT_EQ(Box(0).selected, 0);
    EXPECT_EQ(Box(1).selected, 1);
    EXPECT_FALSE(DeskTimerRuns());
    Release(TitleOf(0));
    Settle();
    EXPECT_TRUE(Frame().isWindowModified());
}

}  // namespace
}  // namespace tavrin
