// SPDX-License-Identifier: Apache-2.0
#include "view/DockKeeper.h"

#include <gtest/gtest.h>

#include <QScreen>
#include <QSettings>
#include <QWidget>

#include "support/TestSite.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

using test::WaitUntil;

constexpr QRect kDesk(300, 200, 600, 500);

class DockKeeperTest : public testing::Test {
  protected:
    ~DockKeeperTest() override { End(); }
    void Start() {
        settings =
            std::make_unique<QSettings>(QString::fromStdString(directory / "it.ini"), QSettings::IniFormat);
        window = std::make_unique<QWidget>();
        window->resize(300, 240);
        keeper = std::make_unique<DockKeeper>(*window, *settings);
        keeper->Restore();
    }
    void Show() { test::ShowActive(*window); }
    void End() {
        if (window != nullptr) window->removeEventFilter(keeper.get());
        keeper.reset();
        window.reset();
        settings.reset();
        test::HandleEvents();
    }
    bool ComesTo(QPoint place) {
        return WaitUntil([&] { return window->frameGeometry().topLeft() == place; });
    }
    // As a user's hand: the window's own idea of its place goes with the window manager's.
    void MoveByHand(QPoint place) { window->move(place); }

    test::TempDir directory;
    std::unique_ptr<QSettings> settings;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<DockKeeper> keeper;
};

TEST_F(DockKeeperTest, TheFirstPlaceIsAtTheRightOfTheDesk) {
    Start();
    EXPECT_FALSE(keeper->IsSettled());
    keeper->FrameMoved("a", kDesk);
    Show();
    keeper->FrameMoved("a", kDesk);
    EXPECT_TRUE(keeper->IsDocked());
    EXPECT_TRUE(ComesTo({900, 200}));
}

TEST_F(DockKeeperTest, ADockedWindowFollowsTheDesk) {
    Start();
    Show();
    keeper->FrameMoved("a", kDesk);
    EXPECT_TRUE(ComesTo({900, 200}));
    keeper->FrameMoved("a", kDesk.translated(-100, 50));
    EXPECT_TRUE(ComesTo({800, 250}));
    keeper->FrameMoved("a", kDesk.adjusted(0, 0, 90, 0));
    EXPECT_TRUE(ComesTo({990, 200}));
    keeper->FrameMoved("b", QRect(0, 0, 200, 200));
    keeper->FrameMoved("a", kDesk);
    EXPECT_TRUE(ComesTo({900, 200})) << "another desk is no matter";
    EXPECT_EQ(keeper->DockedTo(), "a");
}

TEST_F(DockKeeperTest, DraggedAwayItStaysAndNearAnEdgeItSnaps) {
    Start();
    Show();
    keeper->FrameMoved("a", kDesk);
    ASSERT_TRUE(ComesTo({900, 200}));
    MoveByHand({1100, 300});
    ASSERT_TRUE(WaitUntil([&] { return !keeper->IsDocked(); }));
    keeper->FrameMoved("a", kDesk.translated(10, 10));
    test::HandleEvents();
    EXPECT_TRUE(ComesTo({1100, 300}));
    keeper->FrameMoved("a", kDesk);
    MoveByHand({400, 200 + 500 + 15});
    ASSERT_TRUE(WaitUntil([&] { return keeper->IsDocked(); }));
    EXPECT_TRUE(ComesTo({400, 700})) << "below the desk";
    keeper->FrameMoved("a", kDesk.translated(20, -50));
    EXPECT_TRUE(ComesTo({420, 650}));
}

TEST_F(DockKeeperTest, ItsPlaceIsKeptAndWithItTheDock) {
    Start();
    Show();
    keeper->FrameMoved("a", kDesk);
    ASSERT_TRUE(ComesTo({900, 200}));
    MoveByHand({900 + 10, 260});
    ASSERT_TRUE(ComesTo({900, 260}));
    window->resize(320, 260);
    ASSERT_TRUE(WaitUntil([&] { return settings->value("Window/size").toSize() == QSize(320, 260); }));
    ASSERT_TRUE(WaitUntil([&] { return settings->value("Window/offset").toInt() == 60; }));
    End();
    Start();
    EXPECT_TRUE(keeper->IsDocked());
    EXPECT_FALSE(keeper->IsSettled());
    EXPECT_EQ(window->size(), QSize(320, 260));
    Show();
    keeper->FrameMoved("another", kDesk.translated(-50, -50));
    EXPECT_TRUE(ComesTo({850, 210}));
}

TEST_F(DockKeeperTest, AFreePlaceIsKeptAsWell) {
    Start();
    Show();
    keeper->FrameMoved("a", kDesk);
    ASSERT_TRUE(ComesTo({900, 200}));
    MoveByHand({1000, 400});
    ASSERT_TRUE(WaitUntil([&] { return !keeper->IsDocked(); }));
    ASSERT_TRUE(WaitUntil([&] { return settings->value("Window/place").toPoint() == QPoint(1000, 400); }));
    End();
    Start();
    EXPECT_TRUE(keeper->IsSettled());
    Show();
    keeper->FrameMoved("a", kDesk);
    EXPECT_TRUE(ComesTo({1000, 400}));
    EXPECT_FALSE(keeper->IsDocked());
}

TEST_F(DockKeeperTest, WhenItsDeskGoesTheNextOneHasIt) {
    Start();
    Show();
    keeper->FrameMoved("a", kDesk);
    keeper->FrameMoved("b", kDesk.translated(-200, 0));
    ASSERT_TRUE(ComesTo({900, 200}));
    keeper->DeskWent("a");
    keeper->FrameMoved("b", kDesk.translated(-200, 10));
    test::HandleEvents();
    EXPECT_TRUE(ComesTo({900, 200})) << "it does not jump to one that was there all along";
    keeper->FrameMoved("c", kDesk.translated(-100, 0));
    EXPECT_TRUE(ComesTo({800, 200}));
}

TEST_F(DockKeeperTest, OddSettingsDoNoHarm) {
    {
        QSettings odd(QString::fromStdString(directory / "it.ini"), QSettings::IniFormat);
        odd.setValue("Window/size", QSize(100000, 100000));
        odd.setValue("Window/place", QPoint(-90000, 90000));
        odd.setValue("Window/side", 77);
        odd.setValue("Window/offset", "x");
    }
    Start();
    Show();
    const QRect screen = window->screen()->geometry();
    EXPECT_TRUE(screen.intersects(window->frameGeometry()));
    EXPECT_LE(window->width(), screen.width());
}

}  // namespace
}  // namespace tavrin
