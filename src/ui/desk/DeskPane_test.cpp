// SPDX-License-Identifier: Apache-2.0
// The desk as the user meets it: real events in a real window, and what is seen then.
#include "ui/desk/DeskPane.h"

#include <QCursor>

#include "images/SgiTestFile.h"
#include "ui/desk/DeskPaneTest.h"
#include "ui/support/Pictures.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::IsColor;
using test::kBackground;
using test::kGreen;
using test::kInk;
using test::kLine;
using test::kOutline;
using test::kSelectedLine;
using test::kStippledLine;
using test::MakeBox;
using test::MakeLink;
using testing::IsEmpty;

class DeskPane : public test::DeskPaneTest {};

TEST_F(DeskPane, AnAddedOperatorFollowsThePointerAndIsDroppedByAClick) {
    host.AddOperator("noise", "output o { float out }\ncolor 0 0.6 0");
    Show();
    desk.AddOperator("noise");
    MoveTo({300, 200});
    ASSERT_EQ(desk.m_pendingBoxes.size(), 1U);
    Look();
    const DeskRect panel = PanelRect(*desk.m_pendingBoxes.at(0));
    EXPECT_THAT(Seen(panel.Middle()), IsColor(kGreen));
    Click({320, 200});
    ASSERT_EQ(document.m_boxes.size(), 1U);
    EXPECT_THAT(desk.m_pendingBoxes, IsEmpty());
    EXPECT_EQ(PanelRect(BoxAt(document, 0)).left, panel.left + 20);
    EXPECT_TRUE(document.IsModified());
}

TEST_F(DeskPane, AClickSelectsABoxAndOutlinesIt) {
    COpBox& one = PutLink(150, 300);
    COpBox& other = PutLink(400, 300);
    Show();
    Click(TitleOf(one));
    EXPECT_EQ(one.selected, 1);
    EXPECT_EQ(changes, 1);
    Look();
    const DeskRect rect = BoxRect(one);
    EXPECT_THAT(Seen({rect.left - 2, rect.Middle().y}), IsColor(kOutline));
    EXPECT_THAT(Seen({rect.Middle().x, rect.Top() + 2}), IsColor(kOutline));
    EXPECT_THAT(Seen({BoxRect(other).left - 2, rect.Middle().y}), IsColor(kBackground));
    Click(TitleOf(other), Qt::ShiftModifier);
    EXPECT_EQ(one.selected + other.selected, 2);
    Click(TitleOf(one), Qt::ControlModifier);
    EXPECT_EQ(one.selected, 0);
    EXPECT_EQ(other.selected, 1);
}

TEST_F(DeskPane, ADragMovesTheSelectedBoxes) {
    COpBox& one = PutLink(150, 300);
    COpBox& other = PutLink(400, 300);
    one.selected = other.selected = 1;
    Show();
    const float left = BoxRect(one).left;
    const QPoint grip = TitleOf(one);
    Press(grip);
    Drag(grip + QPoint(30, 10));
    Release(grip + QPoint(30, 10));
    EXPECT_EQ(BoxRect(one).left, left + 30);
    EXPECT_EQ(one.xypos[1], 290);
    EXPECT_EQ(other.xypos[0], 430);
    EXPECT_TRUE(document.IsModified());
    EXPECT_EQ(one.selected + other.selected, 2);
}

TEST_F(DeskPane, ARubberBandIsSeenAndSelects) {
    COpBox& box = PutLink(300, 200);
    Show();
    const DeskRect around = BoxRect(box).GrownBy(20);
    Press(At({around.left, around.bottom}));
    Drag(At({around.Right(), around.Top()}));
    Look();
    EXPECT_GT(Count({around.left - 2, around.bottom, 4, around.height}, {1.0F, 0.5F, 0.5F}), 50);
    Release(At({around.Right(), around.Top()}));
    EXPECT_EQ(box.selected, 1);
    Look();
    EXPECT_EQ(Count({around.left - 2, around.bottom, 4, around.height}, {1.0F, 0.5F, 0.5F}), 0);
}

TEST_F(DeskPane, AWireIsDrawnByHandAndLightsWhatItMayEndIn) {
    COpBox& from = PutLink(150, 300);
    COpBox& to = PutLink(450, 300);
    Show();
    const DeskRect target = ButtonRect({&to, false, 0});
    Press(At(ButtonRect({&from, true, 0}).Middle()));
    Drag(At({300, 200}));
    Look();
    EXPECT_GT(Count({295, 195, 10, 10}, kLine), 5);
    const DeskPoint face{target.left + 4, target.bottom + 4};
    EXPECT_THAT(Seen(face), IsColor(kGreen));
    Drag(At(target.Middle()));
    Look();
    EXPECT_THAT(Seen(face), IsColor(Rgb{1.0F, 1.0F, 0.7F}));
    Release(At(target.Middle()));
    EXPECT_TRUE(to.inputs.at(0)->connections.Contains(*from.outputs.at(0)));
    Look();
    EXPECT_GT(Count({300, 280, 10, 30}, kLine), 10);
}

TEST_F(DeskPane, TheWheelZoomsAboutTheMiddleWhereverItIsTurned) {
    PutLink(150, 300);
    Show();
    const DeskPoint middle = pane->View().Visible().Middle();
    TurnWheel(pane->Desk(), 120);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.1F);
    EXPECT_FLOAT_EQ(pane->View().Visible().Middle().x, middle.x);
    EXPECT_FLOAT_EQ(pane->View().Visible().Middle().y, middle.y);
    TurnWheel(Bar(Qt::Horizontal), 120);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.21F);
    TurnWheel(Bar(Qt::Vertical), -240);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1);
}

TEST_F(DeskPane, AFineWheelZoomsOnceInANotch) {
    PutLink(150, 300);
    Show();
    for (int i = 0; i < 3; ++i) TurnWheel(pane->Desk(), 30);
    EXPECT_EQ(document.zoomFactor, 1);
    TurnWheel(pane->Desk(), 30);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.1F);
    TurnWheel(pane->Desk(), 90);
    TurnWheel(pane->Desk(), -30);  // the other way begins anew
    TurnWheel(pane->Desk(), -90);
    EXPECT_FLOAT_EQ(document.zoomFactor, 1);
}

TEST_F(DeskPane, AMiddleDragPansAndTheBarsFollow) {
    PutLink(150, 300);
    Show();
    EXPECT_FALSE(Bar(Qt::Horizontal).isEnabled());
    MoveTo({100, 100});
    MoveTo({400, 90}, Qt::MiddleButton);
    EXPECT_EQ(document.offset[0], 300);
    EXPECT_EQ(document.offset[1], 10);
    EXPECT_EQ(Bar(Qt::Horizontal).value(), -300);
    MoveTo({1000, 90}, Qt::RightButton, Qt::ShiftModifier);  // held at the window's edge
    EXPECT_LT(document.offset[0], 640);
    EXPECT_TRUE(Bar(Qt::Horizontal).isEnabled());
}

TEST_F(DeskPane, ScrollBarsShowTheNetworkAndScrollByUnits) {
    PutLink(100, 100);
    PutLink(1500, 100);
    Show();
    QScrollBar& bar = Bar(Qt::Horizontal);
    EXPECT_EQ(bar.value(), 0);
    EXPECT_EQ(bar.pageStep(), pane->Desk().width());
    EXPECT_GT(bar.maximum(), 1500 - pane->Desk().width());
    EXPECT_TRUE(bar.isEnabled());
    EXPECT_TRUE(Bar(Qt::Vertical).isVisible());
    EXPECT_FALSE(Bar(Qt::Vertical).isEnabled());
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {bar.width() - 4, bar.height() / 2});
    EXPECT_EQ(document.offset[0], -1);
    EXPECT_EQ(bar.value(), 1);
    EXPECT_TRUE(document.IsModified());
    QTest::mouseClick(&bar, Qt::LeftButton, {}, {bar.width() - 40, bar.height() / 2});
    EXPECT_EQ(bar.value(), 1 + pane->Desk().width());
    EXPECT_EQ(document.offset[0], static_cast<float>(-bar.value()));
}

TEST_F(DeskPane, TheThumbTakesTheDeskWithIt) {
    PutLink(100, 100);
    PutLink(1500, 100);
    Show();
    QScrollBar& bar = Bar(Qt::Horizontal);
    const int y = bar.height() / 2;
    QTest::mousePress(&bar, Qt::LeftButton, {}, {100, y});
    QMouseEvent move(QEvent::MouseMove, QPoint(200, y), bar.mapToGlobal(QPoint(200, y)), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(&bar, &move);
    EXPECT_GT(bar.value(), 100);
    EXPECT_EQ(document.offset[0], static_cast<float>(-bar.value()));
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, {200, y});
}

TEST_F(DeskPane, AScrolledBarGoesOnBeyondTheNetwork) {
    PutLink(100, 100);
    PutLink(1500, 100);
    Show();
    QScrollBar& bar = Bar(Qt::Horizontal);
    bar.triggerAction(QAbstractSlider::SliderToMaximum);
    const int end = bar.value();
    EXPECT_GT(end, 1500);
    bar.triggerAction(QAbstractSlider::SliderSingleStepSub);
    EXPECT_EQ(bar.value(), end - 1);
    EXPECT_EQ(document.offset[0], static_cast<float>(1 - end));
}

TEST_F(DeskPane, HiddenScrollBarsLeaveTheirRoomToTheDesk) {
    Show();
    EXPECT_TRUE(pane->ScrollBarsShown());
    EXPECT_LT(pane->Desk().width(), 640);
    pane->SetScrollBarsShown(false);
    EXPECT_TRUE(test::WaitUntil([&] { return pane->Desk().size() == QSize(640, 480); }));
    EXPECT_EQ(pane->View().Width(), 640);
    EXPECT_FALSE(Bar(Qt::Horizontal).isVisible());
    pane->UpdateScrollBars();
    EXPECT_FALSE(Bar(Qt::Vertical).isVisible());
    pane->SetScrollBarsShown(true);
    EXPECT_TRUE(Bar(Qt::Vertical).isVisible());
}

TEST_F(DeskPane, AResizedWindowShowsMoreAndItsBarsKnow) {
    PutLink(100, 100);
    Show();
    pane->resize(900, 700);
    EXPECT_TRUE(test::WaitUntil([&] { return pane->View().Width() > 800; }));
    EXPECT_EQ(Bar(Qt::Horizontal).pageStep(), pane->Desk().width());
}

// A resize or a change of state of the window, and how it goes back.
struct WindowChange {
    const char* name;
    void (*to)(QWidget&);
    void (*back)(QWidget&);
};

class DeskPaneSize : public test::DeskPaneTest, public testing::WithParamInterface<WindowChange> {
  protected:
    // Until the desk has taken on a size other than that one.
    bool SizeLeaves(QSize size) {
        return test::WaitUntil([&] { return pane->Desk().size() != size; });
    }
    bool ScreenShows(const QImage& picture) {
        return test::WaitUntil(
            [&] { return test::CountDifferences(test::SeenOnScreen(pane->Desk()), picture, 2) == 0; });
    }
};

TEST_P(DeskPaneSize, TheScreenShowsWhatAFreshPictureShows) {
    const auto image = test::SgiTestFile::Plain(60, 40, 4, {255, 0, 0, 255});
    PutLink(200, 150);
    PutLink(640, 400);  // half in view at first
    Show();
    pane->SetWallpaper(
        std::make_unique<CSgiImage>(host.Directory().Write("wall.sgi", image.Bytes()), nullptr));
    const QSize small = pane->Desk().size();
    Look();
    const QImage before = Picture();
    ASSERT_TRUE(ScreenShows(before));

    GetParam().to(*pane);
    ASSERT_TRUE(SizeLeaves(small));
    test::HandleEvents();
    Look();
    const QImage after = Picture();
    const QSize large = pane->Desk().size();
    GetParam().back(*pane);
    ASSERT_TRUE(SizeLeaves(large));
    EXPECT_TRUE(ScreenShows(before));
    GetParam().to(*pane);
    EXPECT_TRUE(ScreenShows(after));
}

INSTANTIATE_TEST_SUITE_P(
    Windows, DeskPaneSize,
    testing::Values(WindowChange{"Resized", [](QWidget& window) { window.resize(900, 700); },
                                 [](QWidget& window) { window.resize(640, 480); }},
                    WindowChange{"Maximized", [](QWidget& window) { window.showMaximized(); },
                                 [](QWidget& window) { window.showNormal(); }}),
    [](const auto& change) { return std::string(change.param.name); });

TEST_F(DeskPane, CommandsZoomFitAndCentre) {
    PutLink(100, 100);
    PutLink(3000, 100);
    Show();
    pane->ZoomIn();
    EXPECT_FLOAT_EQ(document.zoomFactor, 1.1F);
    pane->ZoomOut();
    pane->ZoomOut();
    EXPECT_FLOAT_EQ(document.zoomFactor, 1 / 1.1F);
    pane->ZoomReset();
    EXPECT_EQ(document.zoomFactor, 1);
    pane->CentreOnBox("box_2");
    EXPECT_EQ(pane->View().Visible().Middle(), (DeskPoint{3000, 100}));
    EXPECT_GT(Bar(Qt::Horizontal).value(), 2000);
    pane->FitToWindow();
    EXPECT_LT(document.zoomFactor, 0.25F);
    EXPECT_FALSE(Bar(Qt::Horizontal).isEnabled());
}

TEST_F(DeskPane, ALockedDeskIsVeiledAndOutOfReach) {
    COpBox& box = PutLink(300, 200);
    Show();
    Lock(true);
    const QPoint at = TitleOf(box);
    QMouseEvent press(QEvent::MouseButtonPress, at, pane->Desk().mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, {});
    QApplication::sendEvent(&pane->Desk(), &press);
    TurnWheel(pane->Desk(), 120);
    EXPECT_EQ(box.selected, 0);
    EXPECT_EQ(document.zoomFactor, 1);
    EXPECT_FALSE(Bar(Qt::Horizontal).isEnabled());
    Look();
    const int half = Count({10, 10, 19, 19}, {0.4F, 0.5F, 0.5F});
    EXPECT_EQ(half, 200);
    EXPECT_EQ(Count({10, 10, 19, 19}, kBackground), half);
    EXPECT_GT(Count(PanelRect(box), kGreen), 20);  // seen through it
    Lock(false);
    Click(TitleOf(box));
    EXPECT_EQ(box.selected, 1);
    Look();
    EXPECT_EQ(Count({10, 10, 19, 19}, kBackground), 400);
}

TEST_F(DeskPane, ABoxIsPaintedWithBevelsMarksAndColumns) {
    COpBox& box =
        Put(MakeBox("box", "input a { float { 0 0 1 0 %g } }\ninput b { float { 0 0 1 0 %g } }"), 300, 200);
    box.inputs.at(0)->arg = 1;
    box.inputs.at(1)->disableconnectflag = 1;
    Show();
    Look();
    const DeskRect panel = PanelRect(box);
    EXPECT_THAT(Seen(panel.Middle()), IsColor(kGreen));
    EXPECT_THAT(Seen({panel.Middle().x, panel.Top() - 1}), IsColor(Rgb{0.75F, 0.7F, 0.65F}));
    EXPECT_THAT(Seen({panel.Middle().x, panel.bottom + 1}), IsColor(Rgb{0.25F, 0.3F, 0.3F}));
    EXPECT_THAT(Seen(ButtonColumnRect(box, true).Middle()), IsColor(Rgb{0.25F, 0.3F, 0.3F}));
    const DeskRect argument = ButtonRect({&box, false, 0});
    EXPECT_THAT(Seen({argument.left - 7, argument.Middle().y}), IsColor(Rgb{1, 1, 0}));
    const DeskRect crossed = ButtonRect({&box, false, 1});
    EXPECT_GT(Count({crossed.left - 17, crossed.Middle().y - 5, 10, 10}, kInk), 10);
    EXPECT_GT(Count(TitleRect(box), kInk), 10);
    EXPECT_GT(Count(argument, kInk), 3);
}

TEST_F(DeskPane, TheBoxChosenInTheBoxFinderIsHighlighted) {
    COpBox& box = PutLink(300, 200);
    COpBox& other = PutLink(100, 100);
    highlighted = "box_1";
    Show();
    Look();
    EXPECT_THAT(Seen(PanelRect(box).Middle()), IsColor(Rgb{1, 1, 1}));
    EXPECT_THAT(Seen(PanelRect(other).Middle()), IsColor(kGreen));
}

TEST_F(DeskPane, TheFirstBoxLiesOnTop) {
    COpBox& top = PutLink(300, 200);
    COpBox& below = PutLink(310, 210);
    below.color[0] = 1;
    Show();
    Look();
    EXPECT_THAT(Seen(PanelRect(top).Middle()), IsColor(kGreen));
}

TEST_F(DeskPane, LinesPassBehindBoxesOrOverThem) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(500, 300);
    COpBox& between = PutLink(300, 300);
    test::Wire(from, 0, to, 0);
    Show();
    Look();
    const DeskRect panel = PanelRect(between);
    EXPECT_EQ(Count(panel, kLine), 0);
    EXPECT_GT(Count({200, panel.bottom, 20, panel.height}, kLine), 40);
    document.drawlinesoverboxes = 1;
    Look();
    EXPECT_GT(Count(panel, kLine), 10);
}

TEST_F(DeskPane, ALineBetweenCastsIsStippledUnlessItIsSelected) {
    COpBox& from = Put(MakeBox("colours", "output o { rgb out }"), 100, 300);
    COpBox& to = PutLink(500, 300);
    test::Wire(from, 0, to, 0);
    Show();
    Look();
    const DeskRect middle{200, 280, 200, 40};
    const int stippled = Count(middle, kStippledLine);
    EXPECT_GT(stippled, 200);
    EXPECT_EQ(Count(middle, kLine), 0);
    desk.m_selectedConnects = {to.inputs.at(0).get()};
    Look();
    EXPECT_EQ(Count(middle, kStippledLine), 0);
    EXPECT_NEAR(Count(middle, kSelectedLine), 2 * stippled, 20);
}

TEST_F(DeskPane, AVariablesNameStandsAtItsLine) {
    COpBox& from = PutLink(100, 300);
    COpBox& to = PutLink(500, 300);
    test::Wire(from, 0, to, 0);
    Show();
    Look();
    const DeskPoint start = ButtonAnchor({&from, true, 0});
    const DeskRect place{start.x + 4, start.y + 5, 60, 8};
    EXPECT_EQ(Count(place, kLine), 0);
    document.showvarnames = 1;
    Look();
    EXPECT_GT(Count(place, kLine), 20);
}

TEST_F(DeskPane, AnOutputWhoseNameCannotBeFormedHasNoneAndNobodyIsTold) {
    constexpr const char* kRelay = "input in { float { 0 0 1 0 %g } } output tieback=in out { float out }";
    COpBox& cut = Put(test::MakeBox("cut", kRelay, 0), 100, 400);
    COpBox& first = Put(test::MakeBox("first", kRelay, 0), 100, 200);
    COpBox& second = Put(test::MakeBox("second", kRelay, 0), 400, 200);
    COpBox& to = PutLink(400, 400);
    test::Wire(cut, 0, to, 0);
    cut.inputs.clear();
    test::Wire(first, 0, second, 0);
    test::Wire(second, 0, first, 0);
    document.showvarnames = 1;
    Show();
    Look();
    const DeskPoint start = ButtonAnchor({&cut, true, 0});
    EXPECT_EQ(Count({start.x + 4, start.y + 5, 60, 8}, kLine), 0);
    EXPECT_THAT(Alerts(), testing::IsEmpty());
    EXPECT_FALSE(host.GetSite().report.HasPending());
    EXPECT_EQ(cut.outputs[0]->VariableName({document.preparedVariables, &host.GetSite().report}), "");
    EXPECT_EQ(Alerts().size(), 1U) << "who asks for the name aloud is told";
    host.GetSite().report.TakePending();
}

TEST_F(DeskPane, ASmallZoomShowsBoxesWithoutText) {
    COpBox& box = PutLink(300, 200);
    box.icontext = "label";
    box.size[1] = 200;
    Show();
    document.zoomFactor = 0.24F;
    Look();
    EXPECT_EQ(Count(BoxRect(box), kInk), 0);
    EXPECT_GT(Count(BoxRect(box), kGreen), 10);
    EXPECT_FLOAT_EQ(box.layout.leftColumnWidth, 20 + 8 / 0.24F);
    document.zoomFactor = 0.3F;
    Look();
    EXPECT_GT(Count(PanelRect(box), kInk), 0);
}

TEST_F(DeskPane, ATextThatBeginsOutsideTheWindowIsSeenWhereItEntersIt) {
    COpBox& box = PutLink(0, 200);  // half of it is outside at the left
    box.filename = std::string(40, 'H');
    Show();
    Look();
    const DeskRect title = TitleRect(box);
    EXPECT_LT(title.left, -50);
    EXPECT_GT(Count({0, title.bottom, 50, title.height}, kInk), 40);
}

TEST_F(DeskPane, TextsSurviveAMoveToAnotherWindow) {
    COpBox& box = PutLink(300, 200);
    Show();
    Look();
    const int ink = Count(TitleRect(box), kInk);
    QWidget other;
    other.resize(700, 500);
    pane->setParent(&other);
    pane->move(0, 0);
    pane->show();
    test::ShowActive(other);
    Look();
    EXPECT_EQ(Count(TitleRect(box), kInk), ink);
    pane->setParent(nullptr);
}

TEST_F(DeskPane, HeldBeyondTheEdgeTheDeskScrolls) {
    COpBox& box = PutLink(300, 200);
    Show();
    const QPoint grip = TitleOf(box);
    Press(grip);
    Drag({-30, grip.y()});
    EXPECT_TRUE(test::WaitUntil([&] { return document.offset[0] >= 80; }));
    EXPECT_EQ(static_cast<int>(document.offset[0]) % 8, 0);
    EXPECT_NEAR(TitleOf(box).x(), 0, 1);  // still where the pointer holds it
    Release({-30, grip.y()});
    EXPECT_EQ(pane->Gestures().Current(), DeskGestures::Kind::kIdle);
}

TEST_F(DeskPane, TheStatusFollowsThePointer) {
    COpBox& box = PutLink(300, 200);
    box.boxhelp = "help of the box";
    Show();
    MoveTo(TitleOf(box));
    EXPECT_EQ(status, "help of the box");
    MoveTo({5, 5});
    EXPECT_EQ(status, kDeskHint);
}

TEST_F(DeskPane, TheCursorIsOnTheDeskOrNot) {
    Show();
    const auto put = [&](QPoint at) {
        QCursor::setPos(at);
        return test::WaitUntil([&] { return QCursor::pos() == at; });
    };
    ASSERT_TRUE(put(pane->Desk().mapToGlobal(QPoint(40, 30))));
    const auto cursor = pane->CursorOnDesk();
    ASSERT_TRUE(cursor.has_value());
    EXPECT_EQ(cursor->x, 40);
    EXPECT_EQ(cursor->y, pane->View().Height() - 30);
    ASSERT_TRUE(put(pane->mapToGlobal(QPoint(700, 30))));
    EXPECT_FALSE(pane->CursorOnDesk().has_value());
}

}  // namespace
}  // namespace tavrin
