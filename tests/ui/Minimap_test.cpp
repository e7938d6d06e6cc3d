// SPDX-License-Identifier: Apache-2.0
// The network small in the corner of the desk: when it is there, what it shows, and what the hand does on it.
#include "ui/desk/Minimap.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QWheelEvent>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "document/TvDoc.h"
#include "ui/desk/DeskPane.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

using Id = CommandId;

class MinimapUse : public test::FrameTest {
  protected:
    void AddToSite(const std::string& lines) {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) + lines);
    }
    Minimap& Map() { return Frame().Desk().Map(); }
    const DeskViewport& View() { return Frame().Desk().View(); }
    // Boxes far from one another, the first of them green and in the middle of the view; the map is wanted.
    void StartFar(int count = 3) {
        Start();
        Do(Id::kMinimap);
        AddBoxes(count);
        for (int number = 1; number <= count; ++number) Put(number, 4000.0F * static_cast<float>(number), 0);
        for (int number = 1; number <= count; ++number) Paint(number, 0.8F, 0.2F, 0.2F);
        Paint(1, 0, 1, 0);
        See(1);
    }
    COpBox& Box(int number) {
        for (const auto& box : Document().m_boxes) {
            if (box->wid == number) return *box;
        }
        throw std::logic_error("no such box");
    }
    // As an edit does it.
    void Put(int number, float x, float y) {
        const EditScope edit(Document(), "Put");
        Document().edits.BoxMoved(Box(number));
        Box(number).selected = 0;
        Box(number).xypos[0] = x;
        Box(number).xypos[1] = y;
        Frame().Desk().LayoutBox(Box(number));
    }
    void Paint(int number, float r, float g, float b) {
        const EditScope edit(Document(), "Paint");
        Document().edits.BoxTouched(Box(number));
        Box(number).color[0] = r;
        Box(number).color[1] = g;
        Box(number).color[2] = b;
    }
    void See(int number) {
        Frame().Desk().CentreOnBox(Box(number).BoxTitleWid());
        Settle();
    }
    bool IsShown() { return Map().isVisible(); }
    QPoint OnMap(int number) { return Map().ToMap(BoxRect(Box(number)).Middle()).toPoint(); }
    bool IsGreen(const QPoint& at) {
        const QImage picture = Map().grab().toImage();
        const QColor color = picture.pixelColor((QPointF(at) * picture.devicePixelRatio()).toPoint());
        return color.green() > 2 * color.red() && color.green() > 100;
    }
    DeskPoint Middle() { return View().Visible().Middle(); }
    void ExpectMiddle(DeskPoint expected) {
        const float pixel = 1.5F * (Map().ToDesk({1, 0}).x - Map().ToDesk({0, 0}).x);
        EXPECT_NEAR(Middle().x, expected.x, pixel);
        EXPECT_NEAR(Middle().y, expected.y, pixel);
    }
    void MoveTo(QPoint at) {
        QMouseEvent move(QEvent::MouseMove, at, Map().mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(&Map(), &move);
    }
};

TEST_F(MinimapUse, IsThereWhileABoxIsOutOfView) {
    StartFar();
    EXPECT_TRUE(IsShown());
    Do(Id::kFitToWindow);
    EXPECT_FALSE(IsShown());
    See(3);
    Document().zoomFactor = 1;
    See(3);
    EXPECT_TRUE(IsShown());
    Document().SetModified(false);
    Do(Id::kNew);
    EXPECT_FALSE(IsShown()) << "of an empty desk there is none";
}

TEST_F(MinimapUse, ComesWithABoxThatIsMovedOutOfViewAndGoesWithTheUndo) {
    Start();
    Do(Id::kMinimap);
    AddBoxes(2);
    Do(Id::kFitToWindow);
    ASSERT_FALSE(IsShown());
    Put(2, 9000, 0);
    EXPECT_TRUE(IsShown());
    Desk().Undo();
    EXPECT_FALSE(IsShown());
}

TEST_F(MinimapUse, LiesInTheLowerRightCornerAndFollowsTheWindow) {
    StartFar();
    const auto inset = [this] {
        const QWidget& desk = Frame().Desk().Desk();
        return QPoint(desk.width() - Map().geometry().right(), desk.height() - Map().geometry().bottom());
    };
    const QPoint before = inset();
    EXPECT_GT(before.x(), 0);
    EXPECT_LT(before.x(), 30);
    EXPECT_LT(before.y(), 30);
    const QSize size = Map().size();
    Frame().resize(Frame().size() - QSize(260, 100));
    Settle();
    EXPECT_EQ(inset(), before);
    EXPECT_LT(Map().width(), size.width());
}

TEST_F(MinimapUse, ShowsTheBoxesInTheirColoursWhereTheyAre) {
    StartFar();
    EXPECT_TRUE(IsGreen(OnMap(1)));
    EXPECT_FALSE(IsGreen(OnMap(2)));
    EXPECT_FALSE(IsGreen(OnMap(3)));
    EXPECT_LT(OnMap(1).x(), OnMap(2).x());
    Paint(3, 0, 1, 0);
    EXPECT_TRUE(IsGreen(OnMap(3)));
    Desk().SelectBox(Box(3).BoxTitleWid());
    EXPECT_FALSE(IsGreen(OnMap(3))) << "it has the colour of what is selected";
}

TEST_F(MinimapUse, FollowsADragWhileItGoesOn) {
    AddToSite("box.selectedcolor 0 1 0\n");
    StartFar();
    test::DeskPointer pointer(Frame());
    const QPoint from = pointer.TitleOf(Box(1));
    const QPoint stood = OnMap(1);
    pointer.MoveTo(from);
    pointer.Press(from);
    ASSERT_TRUE(IsGreen(stood));
    pointer.MoveTo(from - QPoint(0, 250), Qt::LeftButton);
    EXPECT_TRUE(IsGreen(OnMap(1)));
    EXPECT_FALSE(IsGreen(stood));
    pointer.Release(from - QPoint(0, 250));
}

TEST_F(MinimapUse, ShowsFramesBehindTheBoxes) {
    StartFar();
    const EditScope edit(Document(), "Frame");
    const QColor before = Map().grab().toImage().pixelColor(Map().width() / 2, Map().height() / 2 + 6);
    DeskFrame frame;
    frame.left = 6000;
    frame.bottom = -2000;
    frame.width = 4000;
    frame.height = 4000;
    ASSERT_TRUE(AddFrame(Document().frames, frame));
    Map().NetworkChanged();
    const QPoint at = Map().ToMap({8000, -1500}).toPoint();
    EXPECT_NE(Map().grab().toImage().pixelColor(at), before);
}

TEST_F(MinimapUse, APressBringsTheViewThereAndADragTakesItAlong) {
    StartFar();
    Document().SetModified(false);
    QTest::mousePress(&Map(), Qt::LeftButton, {}, OnMap(3));
    ExpectMiddle(BoxRect(Box(3)).Middle());
    EXPECT_TRUE(Document().IsModified()) << "the view is saved";
    MoveTo(OnMap(2));
    ExpectMiddle(BoxRect(Box(2)).Middle());
    QTest::mouseRelease(&Map(), Qt::LeftButton, {}, OnMap(2));
    ExpectMiddle(BoxRect(Box(2)).Middle());
    EXPECT_EQ(Box(3).selected, 0) << "the desk below is not pressed";
}

TEST_F(MinimapUse, TheViewIsHeldWhereItIsPressed) {
    StartFar();
    const DeskPoint before = Middle();
    const QPoint inView = OnMap(1) + QPoint(2, 2);
    QTest::mousePress(&Map(), Qt::LeftButton, {}, inView);
    ExpectMiddle(before);
    const DeskPoint step = {Map().ToDesk({20, 0}).x - Map().ToDesk({0, 0}).x, 0};
    MoveTo(inView + QPoint(20, 0));
    ExpectMiddle({before.x + step.x, before.y});
    QTest::mouseRelease(&Map(), Qt::LeftButton, {}, inView + QPoint(20, 0));
}

TEST_F(MinimapUse, ADragBeyondItsEdgeStopsThere) {
    StartFar();
    QTest::mousePress(&Map(), Qt::LeftButton, {}, OnMap(3));
    MoveTo({5000, 30});
    EXPECT_NEAR(Middle().x, Map().ToDesk(QPointF(Map().width(), 0)).x, 1);
    QTest::mouseRelease(&Map(), Qt::LeftButton, {}, {5000, 30});
}

TEST_F(MinimapUse, StaysUnderTheHandWhenAllBoxesComeIntoView) {
    Start();
    Do(Id::kMinimap);
    AddBoxes(1);
    Put(1, 0, 0);
    See(1);
    Document().offset[0] += 3000;
    Frame().Desk().UpdateScrollBars();
    ASSERT_TRUE(IsShown());
    QTest::mousePress(&Map(), Qt::LeftButton, {}, OnMap(1));
    EXPECT_TRUE(View().Visible().Encloses(BoxRect(Box(1))));
    EXPECT_TRUE(IsShown());
    QTest::mouseRelease(&Map(), Qt::LeftButton, {}, OnMap(1));
    EXPECT_FALSE(IsShown());
}

TEST_F(MinimapUse, TheWheelOverItZoomsTheDesk) {
    StartFar();
    const float zoom = Document().zoomFactor;
    const QPointF at = Map().rect().center();
    QWheelEvent wheel(at, Map().mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);  // as from the platform: others are not passed on to parents
    qApp->notify(&Map(), &wheel);
    EXPECT_GT(Document().zoomFactor, zoom);
}

TEST_F(MinimapUse, TheRightButtonOpensNoMenuOfWhatLiesBelow) {
    StartFar();
    const QPoint below = Map().geometry().center();
    const DeskPoint there = View().ToDesk({static_cast<float>(below.x()), static_cast<float>(below.y())});
    Put(2, there.x, there.y);
    QTest::mouseClick(&Map(), Qt::RightButton, {}, Map().rect().center());
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    Do(Id::kMinimap);
    QTest::mouseClick(&Frame().Desk().Desk(), Qt::RightButton, {}, below);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr) << "there was something";
    QApplication::activePopupWidget()->close();
}

TEST_F(MinimapUse, OnALockedDeskItShowsAndMovesNothing) {
    StartFar();
    Do(Id::kLockDesk);
    Settle();
    EXPECT_TRUE(IsShown());
    const DeskPoint before = Middle();
    QTest::mouseClick(&Map(), Qt::LeftButton, {}, OnMap(3));
    EXPECT_EQ(Middle(), before);
}

TEST_F(MinimapUse, ASmallDeskHasNoRoomForIt) {
    StartFar();
    Frame().Desk().Desk().setFixedSize(300, 200);
    Settle();
    EXPECT_FALSE(IsShown());
}

TEST_F(MinimapUse, BoxesAtImpossiblePlacesAreLeftOut) {
    StartFar();
    Put(2, std::numeric_limits<float>::infinity(), 0);
    Put(3, std::nanf(""), 3e38F);
    Put(1, 0, 0);
    Document().offset[0] = 5000;
    Frame().Desk().UpdateScrollBars();
    ASSERT_TRUE(IsShown());
    EXPECT_TRUE(IsGreen(OnMap(1)));
    EXPECT_NEAR(OnMap(1).x(), Map().width() / 2, 2);
}

TEST_F(MinimapUse, FiveThousandBoxesAreAllThere) {
    AddToSite("preprocess.pure 1\n");  // else opening runs it for each box
    StartFar(1);
    Document().SetModified(false);
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("great", 5000)));
    int place = 0;
    for (const auto& box : Document().m_boxes) {
        box->xypos[0] = 200.0F * static_cast<float>(place % 100);
        box->xypos[1] = -100.0F * static_cast<float>(place / 100);
        box->color[0] = box->color[2] = 0;
        box->color[1] = 1;
        ++place;
    }
    Frame().Desk().LayoutAll();
    Map().NetworkChanged();
    Settle();
    ASSERT_TRUE(IsShown());
    const QImage picture = Map().grab().toImage();
    int green = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            green += color.green() > 2 * color.red() && color.green() > 60 ? 1 : 0;
        }
    }
    EXPECT_GT(green, picture.width() * picture.height() / 8);
}

// The switch

TEST_F(MinimapUse, IsNotThereAtFirstWhereTheLibraryIsSilent) {
    Start();
    EXPECT_FALSE(IsChecked(Id::kMinimap));
}

TEST_F(MinimapUse, IsThereAtFirstWhereTheLibraryWantsIt) {
    AddToSite("desk.minimap 1\n");
    Start();
    EXPECT_TRUE(IsChecked(Id::kMinimap));
}

TEST_F(MinimapUse, WhatTheUserChoseIsKeptForTheNextStart) {
    AddToSite("desk.minimap 1\n");
    Start();
    Do(Id::kMinimap);
    Frame().close();
    Start();
    EXPECT_FALSE(IsChecked(Id::kMinimap));
    Do(Id::kMinimap);
    Frame().close();
    Start();
    EXPECT_TRUE(IsChecked(Id::kMinimap));
}

}  // namespace
}  // namespace tavrin
