// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/WindowPlaces.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <set>

#include "base/Profile.h"
#include "ui/support/Windows.h"
#include "ui/windows/NormalPlace.h"

namespace tavrin {
namespace {

class WindowPlacesTest : public testing::Test {
  protected:
    void Store(int x, int y, int width, int height, int visible) {
        profile.SetInt("Tool.x", x);
        profile.SetInt("Tool.y", y);
        profile.SetInt("Tool.width", width);
        profile.SetInt("Tool.height", height);
        profile.SetInt("Tool.visible", visible);
    }

    MemoryProfile profile;
    WindowPlaces places{profile};
    QWidget window;
    const QSize screen = QGuiApplication::primaryScreen()->virtualSize();
};

TEST_F(WindowPlacesTest, AWindowBeyondTheRightOrBottomEdgeComesBackAHundredPixelsFromIt) {
    Store(5000, 6000, 200, 150, 0);
    places.RestoreWindow(window, "Tool", {});
    EXPECT_EQ(window.pos(), QPoint(screen.width() - 100, screen.height() - 100));
    EXPECT_EQ(window.size(), QSize(200, 150));
}

TEST_F(WindowPlacesTest, AWindowAtANegativePositionStaysThere) {
    Store(-40, -7, 200, 150, 0);
    places.RestoreWindow(window, "Tool", {});
    EXPECT_EQ(window.pos(), QPoint(-40, -7));
}

TEST_F(WindowPlacesTest, TheSizeIsLeftWhereItIsNotRestored) {
    Store(10, 20, 200, 150, 0);
    window.resize(333, 222);
    places.RestoreWindow(window, "Tool", {.size = false});
    EXPECT_EQ(window.size(), QSize(333, 222));
    EXPECT_EQ(window.pos(), QPoint(10, 20));
}

TEST_F(WindowPlacesTest, AWindowWithoutASizeIsNotMovedWhereItsSizeIsNotRestored) {
    Store(10, 20, 200, 150, 1);
    window.resize(0, 0);
    const QPoint before = window.pos();
    places.RestoreWindow(window, "Tool", {.size = false});
    EXPECT_EQ(window.pos(), before);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowPlacesTest, AWindowIsShownIfItWasAndIsToBe) {
    Store(10, 20, 200, 150, 0);
    places.RestoreWindow(window, "Tool", {});
    EXPECT_FALSE(window.isVisible());
    Store(10, 20, 200, 150, 1);
    places.RestoreWindow(window, "Tool", {.visible = false});
    EXPECT_FALSE(window.isVisible());
    places.RestoreWindow(window, "Tool", {});
    EXPECT_TRUE(window.isVisible());
}

TEST_F(WindowPlacesTest, AWindowThatWasNeverStoredStaysAsItIs) {
    window.setGeometry(50, 60, 300, 200);
    places.RestoreWindow(window, "Tool", {});
    EXPECT_EQ(window.geometry(), QRect(50, 60, 300, 200));
    EXPECT_FALSE(window.isVisible());
}

TEST_F(WindowPlacesTest, AWindowLargerThanTheScreenComesBackNoLargerThanThat) {
    Store(10, 20, 9000, 8000, 0);
    places.RestoreWindow(window, "Tool", {});
    EXPECT_EQ(window.size(), screen);
}

TEST_F(WindowPlacesTest, AMinimizedWindowKeepsItsLastStoredPlace) {
    Store(10, 20, 200, 150, 1);
    const auto before = profile.numbers;
    window.setGeometry(70, 80, 300, 200);
    window.showMinimized();
    places.SaveWindow(window, "Tool");
    EXPECT_EQ(profile.numbers, before);
}

TEST_F(WindowPlacesTest, AMaximizedWindowIsSavedWithItsNormalPlace) {
    NormalPlace normal(window);
    window.resize(300, 200);
    window.move(70, 80);
    normal.Note();
    window.setWindowState(Qt::WindowMaximized);
    places.SaveWindow(window, "Tool", normal);
    EXPECT_EQ(profile.GetInt("Tool.x", -1), 70);
    EXPECT_EQ(profile.GetInt("Tool.y", -1), 80);
    EXPECT_EQ(profile.GetInt("Tool.width", -1), 300);
    EXPECT_EQ(profile.GetInt("Tool.height", -1), 200);
    EXPECT_EQ(profile.GetInt("Tool.maximized", -1), 1);
    QWidget other;
    EXPECT_TRUE(places.RestoreWindow(other, "Tool", {}));
    EXPECT_FALSE(other.isMaximized());
    places.RestoreMaximized(other, "Tool");
    EXPECT_TRUE(other.isMaximized());
}

TEST_F(WindowPlacesTest, AWindowThatWasNotMaximizedDoesNotComeBackSo) {
    NormalPlace normal(window);
    profile.SetInt("Tool.maximized", 1);
    places.SaveWindow(window, "Tool", normal);
    places.RestoreMaximized(window, "Tool");
    EXPECT_FALSE(window.isMaximized());
}

TEST_F(WindowPlacesTest, WhatIsSavedIsRestored) {
    window.setGeometry(120, 90, 310, 210);
    window.show();
    ASSERT_TRUE(test::WaitUntil([&] { return window.windowHandle()->isExposed(); }));
    const QPoint position = window.pos();
    places.SaveWindow(window, "Tool");
    EXPECT_EQ(profile.GetInt("Tool.visible", 0), 1);
    QWidget other;
    places.RestoreWindow(other, "Tool", {});
    EXPECT_EQ(other.size(), QSize(310, 210));
    EXPECT_EQ(other.pos(), position);
}

// The first place of a window that was never placed

constexpr QRect kScreen(0, 0, 1920, 1200);
constexpr QRect kGround(300, 200, 1000, 700);

TEST(FirstPlace, IsItsShareOfTheRoomThatTheGroundLeaves) {
    const FirstPlaceRoom room{kGround, kScreen, {}};
    EXPECT_EQ(FirstPlace(room, {200, 100}, {0, 0}), QPoint(300, 200));
    EXPECT_EQ(FirstPlace(room, {200, 100}, {1, 1}), QPoint(1100, 800));
    EXPECT_EQ(FirstPlace(room, {200, 100}, {0.5, 0.25}), QPoint(700, 350));
}

TEST(FirstPlace, IsOnTheScreenWhereTheGroundIsNot) {
    const QRect second(1920, 0, 1280, 1024);
    EXPECT_EQ(FirstPlace({{2900, 700, 1000, 700}, second, {}}, {200, 100}, {1, 1}), QPoint(3000, 924));
    EXPECT_EQ(FirstPlace({{-500, -300, 1000, 700}, kScreen, {}}, {200, 100}, {0, 0}), QPoint(0, 0));
    EXPECT_EQ(FirstPlace({kGround, kScreen, {}}, {5000, 4000}, {1, 1}), QPoint(0, 0))
        << "of one that is too large the title is seen";
}

TEST(FirstPlace, IsNotThatOfAWindowThatStandsThere) {
    FirstPlaceRoom room{kGround, kScreen, {}};
    std::set<std::pair<int, int>> places;
    for (int window = 0; window < 8; ++window) {
        const QPoint place = FirstPlace(room, {200, 100}, {0, 0});
        EXPECT_TRUE(places.emplace(place.x(), place.y()).second) << window;
        EXPECT_TRUE(kScreen.contains(QRect(place, QSize(200, 100)))) << window;
        room.taken.push_back(place);
    }
}

TEST(FirstPlace, InACornerOfTheScreenTheNextStandsFartherIn) {
    const FirstPlaceRoom room{kScreen, kScreen, {QPoint(1720, 1100)}};
    const QPoint place = FirstPlace(room, {200, 100}, {1, 1});
    EXPECT_LT(place.x(), 1720);
    EXPECT_LT(place.y(), 1100);
}

}  // namespace
}  // namespace tavrin
