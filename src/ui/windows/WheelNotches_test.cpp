// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/WheelNotches.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

int Turn(WheelNotches& wheel, int eighths, int sideways = 0) {
    const QWheelEvent event({}, {}, {}, {sideways, eighths}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    return wheel.Turn(event);
}

TEST(WheelNotches, AFastTurnIsSeveral) {
    WheelNotches wheel;
    EXPECT_EQ(Turn(wheel, 360), 3);
    EXPECT_EQ(Turn(wheel, -240), -2);
}

TEST(WheelNotches, PartsAreKeptUntilTheyMakeOne) {
    WheelNotches wheel;
    EXPECT_EQ(Turn(wheel, 50), 0);
    EXPECT_EQ(Turn(wheel, 50), 0);
    EXPECT_EQ(Turn(wheel, 50), 1);
    EXPECT_EQ(Turn(wheel, 90), 1);
}

TEST(WheelNotches, TheOtherDirectionForgetsThem) {
    WheelNotches wheel;
    EXPECT_EQ(Turn(wheel, 110), 0);
    EXPECT_EQ(Turn(wheel, -110), 0);
    EXPECT_EQ(Turn(wheel, -10), -1);
}

TEST(WheelNotches, ATurnSidewaysIsNone) {
    WheelNotches wheel;
    EXPECT_EQ(Turn(wheel, 100), 0);
    EXPECT_EQ(Turn(wheel, 0, 120), 0);
    EXPECT_EQ(Turn(wheel, 20), 1);
}

}  // namespace
}  // namespace tavrin
