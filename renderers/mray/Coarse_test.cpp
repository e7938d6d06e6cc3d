// SPDX-License-Identifier: Apache-2.0
#include "Coarse.h"

#include <gtest/gtest.h>

namespace tavrin::mray {
namespace {

Options sized(int width, int height, int samples) {
    Options options;
    options.width = width;
    options.height = height;
    options.samples = samples;
    return options;
}

TEST(Coarse, WhatIsDrawnSoonIsDrawnAtOnce) {
    EXPECT_EQ(firstFineness(sized(320, 240, 4), 0.01), (Fineness{1, 4}));
    EXPECT_EQ(firstFineness(sized(1, 1, 16), 100), (Fineness{1, 16}));
}

TEST(Coarse, SamplesGoFirstAndThenPixels) {
    EXPECT_EQ(firstFineness(sized(320, 240, 4), 0.3), (Fineness{1, 1}));
    const Fineness coarser = firstFineness(sized(320, 240, 4), 2);
    EXPECT_GT(coarser.shrink, 1);
    EXPECT_EQ(coarser.samples, 1);
    EXPECT_GT(firstFineness(sized(1280, 960, 4), 2).shrink, coarser.shrink);
}

TEST(Coarse, ThereIsAlwaysSomethingToSee) {
    EXPECT_EQ(firstFineness(sized(8192, 4320, 16), 1000), (Fineness{8, 1}));
    EXPECT_EQ(shrunk(1, 8), 1);
    EXPECT_EQ(shrunk(17, 8), 3);
}

TEST(Coarse, AnEnlargedPictureGoesSmoothlyFromPixelToPixel) {
    const std::vector<std::uint8_t> two{0, 100, 200, 200, 100, 0};
    const std::vector<std::uint8_t> wide = enlarged(two, 2, 1, 8, 3);
    ASSERT_EQ(wide.size(), 8U * 3 * 3);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t x = 1; x < 8; ++x) {
            const std::size_t at = (row * 8 + x) * 3;
            EXPECT_GE(wide[at], wide[at - 3]);
            EXPECT_EQ(wide[at + 1], 100);
            EXPECT_LE(wide[at + 2], wide[at - 1]);
        }
        EXPECT_EQ(wide[row * 24], 0);
        EXPECT_EQ(wide[row * 24 + 21], 200);
    }
    EXPECT_EQ(enlarged(two, 2, 1, 2, 1), two);
    EXPECT_EQ(enlarged({7, 8, 9}, 1, 1, 2, 1), (std::vector<std::uint8_t>{7, 8, 9, 7, 8, 9}));
}

}  // namespace
}  // namespace tavrin::mray
