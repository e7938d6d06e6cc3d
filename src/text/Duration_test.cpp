// SPDX-License-Identifier: Apache-2.0
#include "text/Duration.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

using std::chrono::milliseconds;

TEST(Duration, IsToldInTenthsOfASecondBelowAMinute) {
    EXPECT_EQ(DurationText(milliseconds(0)), "0.0 s");
    EXPECT_EQ(DurationText(milliseconds(1399)), "1.3 s");
    EXPECT_EQ(DurationText(milliseconds(59999)), "59.9 s");
}

TEST(Duration, IsToldInMinutesAndSecondsFromThereOn) {
    EXPECT_EQ(DurationText(milliseconds(60000)), "1:00 min");
    EXPECT_EQ(DurationText(milliseconds(65900)), "1:05 min");
    EXPECT_EQ(DurationText(milliseconds(3600000)), "60:00 min");
}

}  // namespace
}  // namespace tavrin
