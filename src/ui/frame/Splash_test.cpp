// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/Splash.h"

#include <gtest/gtest.h>

#include <QMainWindow>
#include <QWindow>

#include "ui/support/Stacking.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

class SplashOverFrameTest : public testing::Test {
  protected:
    bool StandsInTheMiddle() const {
        const QPoint apart = splash.geometry().center() - frame.frameGeometry().center();
        return apart.manhattanLength() <= 4;
    }

    QMainWindow frame;
    Splash splash{&frame, "1,2,3"};
};

// Nothing has told the window manager where the frame is to stand.
TEST_F(SplashOverFrameTest, StandsInTheMiddleOfAFrameThatIsPlacedWhileItComes) {
    frame.resize(900, 700);
    frame.show();
    splash.ShowOverFrame();
    ASSERT_TRUE(test::WaitUntil(
        [&] { return frame.windowHandle()->isExposed() && splash.windowHandle()->isExposed(); }));
    EXPECT_TRUE(test::WaitUntil([&] { return StandsInTheMiddle(); }));
    frame.move(frame.pos() + QPoint(150, 90));
    frame.resize(640, 560);
    EXPECT_TRUE(test::WaitUntil([&] { return frame.size() == QSize(640, 560) && StandsInTheMiddle(); }));
}

TEST_F(SplashOverFrameTest, IsAboveTheFrameAlsoWhenThatComesToTheTop) {
    frame.resize(900, 700);
    frame.show();
    splash.ShowOverFrame();
    EXPECT_TRUE(test::WaitUntil([&] { return test::IsAbove(splash, frame); }));
    QWidget other;
    test::ShowActive(other);
    test::ShowActive(frame);
    ASSERT_TRUE(test::WaitUntil([&] { return test::IsAbove(frame, other); }));
    EXPECT_TRUE(test::IsAbove(splash, frame));
}

}  // namespace
}  // namespace tavrin
