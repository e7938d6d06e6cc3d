// SPDX-License-Identifier: Apache-2.0
#include "app/Version.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

TEST(VersionTest, CommasBecomeFullStopsAndBlanksGo) {
    EXPECT_EQ(VersionText("1,3, 32, 0"), "1.3.32.0");
    EXPECT_EQ(VersionText(" 2 ,0"), "2.0");
    EXPECT_EQ(VersionText(""), "");
}

TEST(VersionTest, ThisReleaseIsOneThreeThirtyTwo) { EXPECT_EQ(VersionText(kProductVersion), "1.3.32.0"); }

TEST(VersionTest, TheShortFormKeepsAtMostThreeComponents) {
    EXPECT_EQ(ShortVersion("1.3.32.0"), "1.3.32");
    EXPECT_EQ(ShortVersion("1.2.3.4.5"), "1.2.3");
    EXPECT_EQ(ShortVersion("1.3.32"), "1.3.32");
    EXPECT_EQ(ShortVersion("1.3"), "1.3");
    EXPECT_EQ(ShortVersion("Unknown Version"), "Unknown Version");
    EXPECT_EQ(ShortVersion(""), "");
}

}  // namespace
}  // namespace tavrin
