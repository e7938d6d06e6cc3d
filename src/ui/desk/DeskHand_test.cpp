// SPDX-License-Identifier: Apache-2.0
// The user's hand on the desk: each gesture from the events of the mouse, also those that come at a bad time.
#include <QAbstractEventDispatcher>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>
#include <QVBoxLayout>

#include "ui/desk/DeskPaneTest.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::IsColor;
using test::kGreen;
using test::kLine;
using test::kOutline;
using test::kSelectedLine;
using test::MakeBox;
using test::WidsOf;
using test::Wire;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = DeskGestures::Kind;

constexpr const char* kSavedConnection = " -> opbox:";
constexpr Rgb kCandidate{1.0F, 1.0F, 0.7F};

class PaintCounter : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;
        return false;
    }
    int paints = 0;
};

class DeskHand : public test::DeskPaneTest {
  protected:
    COpBox& PutVinput(float x, float y) {
        return Put(MakeBox("grows", "vinput v { float { 0 0 1 0 %g } }\noutput out { float out }"), x, y);
    }
    QPoint InputOf(const COpBox& box, size_t index = 0) {
        return At(ButtonRect({&box, false, index}).Middle());
    }
    QPoint OutputOf(const COpBox& box, size_t index = 0) {
        return At(ButtonRect({&box, true, index}).Middle());
    }
    Kind Gesture() { return pane->Gestures().Current(); }
    // Intervals of the desk's timers that run.
    std::vector<int> Timers() {
        std::vector<int> intervals;
        for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(&pane->Desk())) {
            intervals.push_back(timer.interval);
        }
        return intervals;
    }
    void Send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers keys = {}) {
        QMouseEvent event(type, at, pane->Desk().mapToGlobal(at), button, buttons, keys);
        QApplication::sendEvent(&pane->Desk(), &event);
    }
    // Lets a while of the event loop go by, in which a timer of the desk's would have come many times.
    void LetTimersCome() {
        int came = 0;
        QTimer timer;
        timer.callOnTimeout([&came] { ++came; });
        timer.start(10);
        EXPECT_TRUE(test::WaitUntil([&] { return came >= 8; }));
    }
    // A box is held beyond the left edge, so that the desk scrolls.
    COpBox& HoldBeyondTheEdge() {
        COpBox& box = PutLink(300, 200);
        Show();
        const QPoint grip = TitleOf(box);
        Press(grip);
        Drag({-30, grip.y()});
        EXPECT_THAT(Timers(), ElementsAre(10));
        return box;
    }
    void ExpectStandstill() {
        EXPECT_EQ(Gesture(), Kind::kIdle);
        EXPECT_THAT(Timers(), IsEmpty());
        const float before = document.offset[0];
        LetTimersCome();
        EXPECT_EQ(document.offset[0], before);
    }
};

TEST_F(DeskHand, APressOnASecondButtonWiresThemAtOnce) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Show();
    Click(OutputOf(from));
    EXPECT_EQ(desk.m_selectedButton, from.outputs.at(0).get());
    Look();
    const DeskRect face = ButtonRect({&from, true, 0});
    EXPECT_THAT(Seen({face.left + 4, face.bottom + 4}), IsColor(kCandidate));
    Press(InputOf(to));
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    EXPECT_EQ(Gesture(), Kind::kIdle);
    EXPECT_THAT(Timers(), IsEmpty());
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(document.IsModified());
    Drag(InputOf(to) + QPoint(40, 40));
    Release(InputOf(to) + QPoint(40, 40));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_EQ(to.selected, 0);
}

TEST_F(DeskHand, AnOutputAndThenTheInputThatItFeedsLeavesALineThatIsSeenAndNotSaved) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Wire(from, 0, to, 0);
    Show();
    Click(OutputOf(from));
    Click(InputOf(to));
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    EXPECT_TRUE(from.outputs.at(0)->connections.Empty());
    Look();
    EXPECT_GT(Count({300, 280, 10, 30}, kLine), 10);
    EXPECT_THAT(document.Store(), testing::Not(testing::HasSubstr(kSavedConnection)));
    // From the input's side the same hand mends it.
    Click(InputOf(to));
    Click(OutputOf(from));
    EXPECT_TRUE(from.outputs.at(0)->connections.Contains(*to.inputs.at(0)));
    EXPECT_THAT(document.Store(), testing::HasSubstr(kSavedConnection));
}

TEST_F(DeskHand, AnInputThatIsWiredAgainLosesItsLine) {
    COpBox& from = PutLink(150, 300);
    COpBox& other = PutLink(150, 100);
    COpBox& to = PutLink(450, 300);
    Wire(from, 0, to, 0);
    Show();
    Press(OutputOf(other));
    Drag(InputOf(to));
    Release(InputOf(to));
    EXPECT_TRUE(from.outputs.at(0)->connections.Empty());
    EXPECT_TRUE(other.outputs.at(0)->connections.Contains(*to.inputs.at(0)));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(DeskHand, AButtonThatTakesNoConnectionIsSelectedButDrawsNoWire) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    from.outputs.at(0)->disableconnectflag = 1;
    Show();
    Press(OutputOf(from));
    EXPECT_EQ(desk.m_selectedButton, from.outputs.at(0).get());
    Drag(At({300, 200}));
    Look();
    EXPECT_EQ(Count({200, 200, 200, 100}, kLine), 0);
    Drag(InputOf(to));
    Release(InputOf(to));
    EXPECT_TRUE(to.inputs.at(0)->connections.Empty());
    Click(InputOf(to));
    EXPECT_EQ(desk.m_selectedButton, to.inputs.at(0).get());
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskHand, APressOnAVinputRaisesItsArrowsAndAReleaseInOneGrowsIt) {
    COpBox& box = PutVinput(300, 200);
    COpButton* button = box.inputs.at(0).get();
    Show();
    const DeskRect above = GrowArrowRect({&box, false, 0}, true);
    const auto isArrow = [&](const DeskRect& rect) {
        Look();
        return Count(rect, test::kInk) > 60;
    };
    const DeskRect below = GrowArrowRect({&box, false, 0}, false);
    EXPECT_FALSE(isArrow(below));
    Press(InputOf(box));
    EXPECT_TRUE(isArrow(below));
    EXPECT_TRUE(isArrow(above));
    Drag(At(below.Middle()));
    Look();
    EXPECT_THAT(Seen({below.left + 4, below.bottom + 4}), IsColor(kCandidate));
    Release(At(below.Middle()));
    ASSERT_EQ(box.inputs.size(), 2U);
    EXPECT_EQ(box.inputs.at(0).get(), button);
    EXPECT_EQ(box.inputs.at(1)->instance, 2);
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(document.IsModified());
    EXPECT_FALSE(pane->Gestures().GrowArrowsShown());
}

TEST_F(DeskHand, AWireThatIsLetGoOfInAnArrowEndsInTheNewVinput) {
    COpBox& from = PutLink(100, 400);
    COpBox& to = PutVinput(400, 200);
    Show();
    COpButton* old = to.inputs.at(0).get();
    Press(OutputOf(from));
    Drag(InputOf(to));
    Look();  // the arrows come up with the picture
    const QPoint above = At(GrowArrowRect({&to, false, 0}, true).Middle());
    Drag(above);
    Release(above);
    ASSERT_EQ(to.inputs.size(), 2U);
    EXPECT_EQ(to.inputs.at(1).get(), old);
    EXPECT_TRUE(old->connections.Empty());
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    EXPECT_EQ(desk.m_selectedButton, nullptr);
}

TEST_F(DeskHand, AClickOnALineSelectsItAndShiftAndControlAddAndTakeAway) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(500, 300);
    COpBox& low = PutLink(500, 100);
    Wire(from, 0, to, 0);
    Wire(from, 0, low, 0);
    from.selected = 1;
    Show();
    const DeskPoint start = ButtonAnchor({&from, true, 0});
    const auto middleTo = [&](const COpBox& box) {
        const DeskPoint end = ButtonAnchor({&box, false, 0});
        return At({(start.x + end.x) / 2, (start.y + end.y) / 2});
    };
    Click(middleTo(to));
    EXPECT_EQ(from.selected, 0);
    EXPECT_EQ(changes, 1);
    Look();
    EXPECT_GT(Count({start.x + 50, start.y - 4, 200, 8}, kSelectedLine), 100);
    Click(middleTo(low), Qt::ShiftModifier);
    EXPECT_EQ(desk.m_selectedConnects.size(), 2U);
    Click(middleTo(to), Qt::ControlModifier);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(low.inputs.at(0).get()));
    Press(middleTo(to));
    EXPECT_EQ(Gesture(), Kind::kIdle);
    EXPECT_THAT(desk.m_selectedConnects, ElementsAre(to.inputs.at(0).get()));
    EXPECT_EQ(changes, 1);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskHand, ABandWithShiftAddsAndWithControlTogglesFromEitherSide) {
    COpBox& one = PutLink(150, 300);
    COpBox& other = PutLink(450, 300);
    one.selected = 1;
    Show();
    const auto band = [&](const COpBox& box, Qt::KeyboardModifiers keys) {
        const DeskRect rect = BoxRect(box).GrownBy(10);
        Press(At({rect.Right(), rect.bottom}), keys);  // from the right to the left
        Drag(At({rect.left, rect.Top()}));
        EXPECT_THAT(Timers(), ElementsAre(10));
        Release(At({rect.left, rect.Top()}));
        EXPECT_THAT(Timers(), IsEmpty());
    };
    band(other, Qt::ShiftModifier);
    EXPECT_EQ(one.selected + other.selected, 2);
    band(other, Qt::ControlModifier);
    EXPECT_EQ(other.selected, 0);
    band(other, Qt::ControlModifier);
    EXPECT_EQ(one.selected + other.selected, 2);
    EXPECT_EQ(changes, 3);
    const DeskRect rect = BoxRect(other);
    Press(At({rect.Right() + 10, rect.bottom - 10}));
    EXPECT_EQ(one.selected + other.selected, 0);
    Drag(At({rect.left + 10, rect.Top() + 10}));  // only in part
    Release(At({rect.left + 10, rect.Top() + 10}));
    EXPECT_EQ(other.selected, 0);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskHand, ADragThatBeganByDeselectingMovesWhatIsStillSelected) {
    COpBox& one = PutLink(150, 300);
    COpBox& other = PutLink(450, 300);
    one.selected = other.selected = 1;
    Show();
    const QPoint grip = TitleOf(other);
    Press(grip, Qt::ControlModifier);
    Drag(grip + QPoint(20, 0));
    Release(grip + QPoint(20, 0));
    EXPECT_EQ(one.xypos[0], 170);
    EXPECT_EQ(other.xypos[0], 450);
    EXPECT_EQ(one.selected, 1);
}

TEST_F(DeskHand, TheSecondPressOfADoubleClickIsAPress) {
    COpBox& box = PutLink(150, 300);
    Show();
    const QPoint grip = TitleOf(box);
    Click(grip, Qt::ControlModifier);
    EXPECT_EQ(box.selected, 1);
    Send(QEvent::MouseButtonDblClick, grip, Qt::LeftButton, Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(box.selected, 0);
    EXPECT_EQ(Gesture(), Kind::kMoving);
    EXPECT_THAT(Timers(), ElementsAre(10));
    Release(grip);
    EXPECT_THAT(Timers(), IsEmpty());
}

TEST_F(DeskHand, WhatWaitsUnderThePointerStaysThereThroughAZoomAndIsDroppedByAPressAlone) {
    host.AddOperator("noise", "output o { float out }\ncolor 0 0.6 0");
    PutLink(500, 50);
    Show();
    desk.AddOperator("noise");
    MoveTo({300, 200});
    const auto middle = [&] { return At(PanelRect(*desk.m_pendingBoxes.at(0)).Middle()); };
    const QPoint held = middle() - QPoint(300, 200);
    EXPECT_THAT(Timers(), IsEmpty());  // with no gesture running
    MoveTo({310, 215});
    EXPECT_EQ(middle() - QPoint(310, 215), held);
    TurnWheel(pane->Desk(), 120);
    MoveTo({311, 215});
    EXPECT_NEAR((middle() - QPoint(311, 215)).manhattanLength(), held.manhattanLength(), 2);
    TurnWheel(pane->Desk(), -120);
    MoveTo({312, 215});
    EXPECT_EQ(middle() - QPoint(312, 215), held);
    Press({312, 215});
    EXPECT_THAT(WidsOf(document), ElementsAre(2, 1));
    EXPECT_EQ(Gesture(), Kind::kIdle);
    const float left = BoxAt(document, 0).layout.left;
    Drag({400, 300});
    Release({400, 300});
    EXPECT_EQ(BoxAt(document, 0).layout.left, left);
}

TEST_F(DeskHand, ABoxStaysUnderThePointerWhenTheWheelIsTurnedDuringItsDrag) {
    COpBox& box = PutLink(300, 200);
    Show();
    const QPoint grip = TitleOf(box);
    Press(grip);
    Drag(grip + QPoint(10, 10));
    TurnWheel(pane->Desk(), 120);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.1F);
    EXPECT_EQ(Gesture(), Kind::kMoving);
    const QPoint at = grip + QPoint(50, 30);
    Drag(at);
    EXPECT_LE((TitleOf(box) - at).manhattanLength(), 3);
    Release(at);
    EXPECT_EQ(Gesture(), Kind::kIdle);
}

TEST_F(DeskHand, AStepBeyondTheLimitIsNotTakenInPart) {
    PutLink(300, 200);
    Show();
    document.zoomFactor = 9.5F;
    TurnWheel(pane->Desk(), 120);
    EXPECT_EQ(document.zoomFactor, 9.5F);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskHand, AWheelThatIsTurnedSidewaysNeitherZoomsNorLosesWhatHasBeenTurned) {
    PutLink(300, 200);
    Show();
    const auto swipe = [&](QPoint pixels, QPoint turn) {
        const QPointF at = pane->Desk().rect().center();
        QWheelEvent wheel(at, pane->Desk().mapToGlobal(at), pixels, turn, Qt::NoButton, {}, Qt::ScrollUpdate,
                          false);
        QSpontaneKeyEvent::setSpontaneous(&wheel);
        qApp->notify(&pane->Desk(), &wheel);
    };
    swipe({0, 30}, {0, 60});  // a touchpad tells pixels besides
    swipe({30, 0}, {60, 0});
    EXPECT_EQ(document.zoomFactor, 1);
    swipe({0, 30}, {0, 60});
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.1F);
}

TEST_F(DeskHand, MovesThatWaitMakeOnePicture) {
    COpBox& box = PutLink(300, 200);
    Show();
    test::HandleEvents();
    PaintCounter counter;
    pane->Desk().installEventFilter(&counter);
    const QPoint grip = TitleOf(box);
    Press(grip);
    for (int step = 1; step <= 50; ++step) {
        const QPoint at = grip + QPoint(step, 0);
        QCoreApplication::postEvent(
            &pane->Desk(), new QMouseEvent(QEvent::MouseMove, at, pane->Desk().mapToGlobal(at), Qt::NoButton,
                                           Qt::LeftButton, {}));
    }
    ASSERT_TRUE(test::WaitUntil([&] { return box.xypos[0] == 350 && counter.paints > 0; }));
    EXPECT_LE(counter.paints, 2);
    Release(grip + QPoint(50, 0));
}

TEST_F(DeskHand, AnotherButtonDuringADragPansAndLeavesItRunning) {
    COpBox& box = PutLink(300, 200);
    Show();
    const QPoint grip = TitleOf(box);
    Press(grip);
    Send(QEvent::MouseButtonPress, grip, Qt::MiddleButton, Qt::LeftButton | Qt::MiddleButton);
    MoveTo(grip + QPoint(20, 0), Qt::LeftButton | Qt::MiddleButton);
    EXPECT_EQ(document.offset[0], 20);
    EXPECT_EQ(box.xypos[0], 300);
    Send(QEvent::MouseButtonRelease, grip + QPoint(20, 0), Qt::MiddleButton, Qt::LeftButton);
    EXPECT_EQ(Gesture(), Kind::kMoving);
    Send(QEvent::MouseButtonRelease, grip + QPoint(20, 0), Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(Gesture(), Kind::kIdle);
    EXPECT_THAT(Timers(), IsEmpty());
}

TEST_F(DeskHand, APanIsCountedFromItsPressWhereverThePointerWasSeenLast) {
    PutLink(300, 200);
    Show();
    MoveTo({100, 100});
    Send(QEvent::MouseButtonPress, {400, 300}, Qt::MiddleButton, Qt::MiddleButton);
    MoveTo({405, 300}, Qt::MiddleButton);
    EXPECT_EQ(document.offset[0], 5);
}

TEST_F(DeskHand, AnEmptyDeskIsNeitherPannedNorZoomedButReset) {
    Show();
    MoveTo({100, 100});
    MoveTo({200, 100}, Qt::MiddleButton);
    TurnWheel(pane->Desk(), 120);
    EXPECT_EQ(document.offset[0], 0);
    EXPECT_EQ(document.zoomFactor, 1);
    document.zoomFactor = 2;
    pane->ZoomReset();
    EXPECT_EQ(document.zoomFactor, 1);
    document.SetModified(false);
    Bar(Qt::Horizontal).triggerAction(QAbstractSlider::SliderSingleStepAdd);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskHand, ABandBeyondTheEdgeScrollsAndItsCornerStaysOnTheDesk) {
    COpBox& box = PutLink(300, 200);
    Show();
    const DeskRect rect = BoxRect(box).GrownBy(10);
    Press(At({rect.Right(), rect.bottom}));
    Drag({-30, At({rect.left, rect.Top()}).y()});
    EXPECT_TRUE(test::WaitUntil([&] { return document.offset[0] >= 80; }));
    EXPECT_EQ(box.xypos[0], 300);
    EXPECT_NEAR(pane->Gestures().Band().Right(), rect.Right(), 1);
    EXPECT_LT(pane->Gestures().Band().left, -70);
    Release({-30, At({rect.left, rect.Top()}).y()});
    EXPECT_EQ(box.selected, 1);
    ExpectStandstill();
}

TEST_F(DeskHand, ALockThatComesOnDuringADragEndsIt) {
    COpBox& box = HoldBeyondTheEdge();
    Lock(true);
    ExpectStandstill();
    Lock(false);
    const float x = box.xypos[0];
    Drag({300, 300});  // still held: nothing is dragged any more
    EXPECT_EQ(box.xypos[0], x);
    Release({300, 300});
    Click(TitleOf(box));
    EXPECT_EQ(box.selected, 1);
}

TEST_F(DeskHand, ABoxThatComesUpOverADragEndsIt) {
    HoldBeyondTheEdge();
    QDialog question(pane.get());
    question.setModal(true);
    test::WhenDialogComes([](QDialog&) {});
    test::ShowActive(question);
    ExpectStandstill();
    question.close();
    test::HandleEvents();
}

TEST_F(DeskHand, AMenuThatTakesTheReleaseEndsADrag) {
    HoldBeyondTheEdge();
    QMenu menu(pane.get());
    menu.addAction("item");
    menu.popup(pane->mapToGlobal(QPoint(50, 50)));
    EXPECT_TRUE(test::WaitUntil([&] { return Timers().empty(); }));
    ExpectStandstill();
    menu.close();
}

TEST_F(DeskHand, AnotherWindowThatBecomesActiveLeavesADragRunning) {
    COpBox& box = PutLink(300, 200);
    Show();
    const QPoint grip = TitleOf(box);
    Press(grip);
    QWidget tool;
    test::ShowActive(tool);
    Drag(grip + QPoint(20, 0));
    EXPECT_EQ(box.xypos[0], 320);
    Release(grip + QPoint(20, 0));
}

TEST_F(DeskHand, AMoveWithoutTheButtonEndsADragWhoseReleaseWasLost) {
    COpBox& box = HoldBeyondTheEdge();
    MoveTo({200, 200});
    ExpectStandstill();
    EXPECT_EQ(box.selected, 1);
}

TEST_F(DeskHand, ANewNetworkUnderAHeldButtonIsNotTouched) {
    COpBox& box = PutLink(300, 200);
    Show();
    Press(OutputOf(box));
    Drag(InputOf(box));
    document.DeleteContents();
    COpBox& fresh = PutVinput(300, 200);
    desk.OnInitialUpdate();
    document.SetModified(false);
    Drag(InputOf(fresh));
    Look();
    Release(InputOf(fresh));
    EXPECT_TRUE(fresh.inputs.at(0)->connections.Empty());
    EXPECT_EQ(fresh.inputs.size(), 1U);
    EXPECT_EQ(desk.m_selectedButton, nullptr);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(DeskHand, AClickTakesTheKeysFromAFieldBesideTheDesk) {
    Show();
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* field = new QLineEdit(&window);
    column->addWidget(field);
    column->addWidget(pane.get());
    test::ShowActive(window);
    field->setFocus();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, pane->Desk().mapTo(&window, QPoint(40, 40)));
    EXPECT_FALSE(field->hasFocus());
    EXPECT_TRUE(test::HasFocus(*pane));
    pane->setParent(nullptr);
}

}  // namespace
}  // namespace tavrin
