#include "ui/frame/WindowPlaces.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include "base/Profile.h"
#include "ui/support/Windows.h"

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

}  // namespace
}  // namespace tavrin
