// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/IdleDriver.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWidget>

#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class IdleDriverTest : public testing::Test {
  protected:
    int steps = 0;
    IdleDriver driver{[this] { ++steps; }};
};

TEST_F(IdleDriverTest, ARequestRunsTheStepOnceFromTheEventLoop) {
    driver.Request();
    driver.Request();
    EXPECT_EQ(steps, 0);
    ASSERT_TRUE(test::WaitUntil([&] { return steps > 0; }));
    test::HandleEvents();
    EXPECT_EQ(steps, 1);
}

TEST_F(IdleDriverTest, KeysAndButtonsAreFollowedByAStepAndMovesOfTheMouseAreNot) {
    QWidget window;
    test::ShowActive(window);
    test::HandleEvents();
    const auto settled = [this] {
        const int before = steps;
        test::HandleEvents();
        return steps == before;
    };
    ASSERT_TRUE(test::WaitUntil(settled));
    const int before = steps;
    QTest::mouseMove(&window, QPoint(5, 5));
    QTest::mouseMove(&window, QPoint(9, 9));
    test::HandleEvents();
    EXPECT_EQ(steps, before);
    QTest::keyClick(&window, Qt::Key_A);
    ASSERT_TRUE(test::WaitUntil([&] { return steps > before; }));
    const int afterKey = steps;
    QTest::mouseClick(&window, Qt::LeftButton);
    EXPECT_TRUE(test::WaitUntil([&] { return steps > afterKey; }));
}

TEST_F(IdleDriverTest, TheStepMayRunALoopOfItsOwn) {
    int depth = 0;
    int deepest = 0;
    IdleDriver nested([&] {
        deepest = std::max(deepest, ++depth);
        if (deepest < 2) {
            nested.Request();
            test::HandleEvents();
        }
        --depth;
    });
    nested.Request();
    ASSERT_TRUE(test::WaitUntil([&] { return deepest > 0; }));
    EXPECT_EQ(deepest, 2);
}

}  // namespace
}  // namespace tavrin
