// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/NormalPlace.h"

#include <gtest/gtest.h>

#include <QScreen>
#include <QWidget>
#include <QWindow>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class NormalPlaceTest : public testing::Test {
  protected:
    void ShowAt(QPoint position, QSize size) {
        window.resize(size);
        window.move(position);
        test::ShowActive(window);
        ASSERT_TRUE(test::WaitUntil([&] { return window.pos() == position && window.size() == size; }));
        test::HandleEvents();
    }

    QWidget window;
    NormalPlace place{window};
};

TEST_F(NormalPlaceTest, IsThatOfTheWindowWhileItIsNotMaximized) {
    ShowAt({140, 90}, {500, 400});
    EXPECT_EQ(place.Position(), QPoint(140, 90));
    window.resize(520, 410);
    EXPECT_EQ(place.Size(), QSize(520, 410)) << "without an event";
}

TEST_F(NormalPlaceTest, StaysWhileTheWindowIsMaximized) {
    ShowAt({140, 90}, {500, 400});
    window.showMaximized();
    ASSERT_TRUE(test::WaitUntil([&] { return window.isMaximized() && window.width() > 1000; }));
    test::HandleEvents();
    EXPECT_EQ(place.Position(), QPoint(140, 90));
    EXPECT_EQ(place.Size(), QSize(500, 400));
    window.showNormal();
    ASSERT_TRUE(test::WaitUntil([&] { return !window.isMaximized() && window.width() == 500; }));
    window.resize(610, 300);
    ASSERT_TRUE(test::WaitUntil([&] { return window.size() == QSize(610, 300); }));
    EXPECT_EQ(place.Size(), QSize(610, 300));
}

// As from a window manager that resizes the window before it says that this was to maximize it.
TEST_F(NormalPlaceTest, IsNotTakenFromAWindowThatFillsTheScreen) {
    ShowAt({140, 90}, {500, 400});
    const QRect screen = window.screen()->availableGeometry();
    window.setGeometry(screen);
    ASSERT_TRUE(test::WaitUntil([&] { return window.width() == screen.width(); }));
    test::HandleEvents();
    window.showMaximized();
    ASSERT_TRUE(test::WaitUntil([&] { return window.isMaximized(); }));
    test::HandleEvents();
    EXPECT_EQ(place.Size(), QSize(500, 400));
    EXPECT_EQ(place.Position(), QPoint(140, 90));
}

}  // namespace
}  // namespace tavrin
