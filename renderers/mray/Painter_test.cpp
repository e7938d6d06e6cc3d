// SPDX-License-Identifier: Apache-2.0
#include "Painter.h"

#include <gtest/gtest.h>

namespace tavrin::mray {
namespace {

// Checks that tiles lie side by side, from the top, and cover the picture.
void expectWhole(const std::vector<Area>& tiles, int width, int height) {
    int x = 0;
    int y = 0;
    for (const Area& tile : tiles) {
        EXPECT_EQ(tile.x, x);
        EXPECT_EQ(tile.y, y);
        EXPECT_LE(tile.width, 1024);
        x += tile.width;
        if (x == width) {
            x = 0;
            y += tile.height;
        }
    }
    EXPECT_EQ(x, 0);
    EXPECT_EQ(y, height);
}

TEST(Painter, TilesCoverThePicture) {
    for (const auto& [width, height] : {std::pair{1, 1}, {320, 240}, {1024, 31}, {1025, 33}, {8192, 4320}}) {
        for (const long samples : {1L, 8'000L, 90'000L, 100'000'000L}) {
            expectWhole(makeTiles(width, height, Grid::of(4), samples, 8), width, height);
        }
    }
}

TEST(Painter, TilesHaveSoManySamples) {
    for (const Area& tile : makeTiles(320, 2400, Grid::of(4), 40'000, 8)) {
        EXPECT_LE(tile.width * tile.height * 4, 41'000);
    }
    EXPECT_EQ(makeTiles(8000, 100, Grid::of(16), 1, 24).front().height, 24);
}

// What shaders compare pixels with must not depend on the tiles.
TEST(Painter, TilesBeginAtEvenRowsAndColumns) {
    for (const long samples : {1'000L, 29'000L, 90'000L}) {
        for (const Area& tile : makeTiles(1500, 700, Grid::of(1), samples, 7)) {
            EXPECT_EQ(tile.x % 2, 0);
            EXPECT_EQ(tile.y % 2, 0);
        }
    }
}

TEST(Painter, TheMarginLiesAllAround) {
    const Area area = withMargin({10, 20, 30, 40});
    EXPECT_EQ(area.x, 9);
    EXPECT_EQ(area.y, 19);
    EXPECT_EQ(area.width, 32);
    EXPECT_EQ(area.height, 42);
}

}  // namespace
}  // namespace tavrin::mray
