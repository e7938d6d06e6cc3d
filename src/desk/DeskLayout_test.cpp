// SPDX-License-Identifier: Apache-2.0
// Rectangles that are put in order: on small ones all is told by number, on random networks by what must
// hold.
#include "desk/DeskLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<DeskRect> Moved(std::vector<DeskRect> rects, const std::vector<DeskPoint>& corners) {
    EXPECT_EQ(corners.size(), rects.size());
    for (size_t i = 0; i < rects.size(); ++i) {
        rects[i].left = corners[i].x;
        rects[i].bottom = corners[i].y;
    }
    return rects;
}

// Aligning

const std::vector<DeskRect> kThree = {{0, 0, 10, 20}, {30, 50, 20, 10}, {-10, 100, 40, 30}};

TEST(AlignRects, LeftEdgesComeToTheOutermost) {
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kLeft),
                ElementsAre(DeskPoint{-10, 0}, DeskPoint{-10, 50}, DeskPoint{-10, 100}));
}

TEST(AlignRects, RightEdgesComeToTheOutermost) {
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kRight),
                ElementsAre(DeskPoint{40, 0}, DeskPoint{30, 50}, DeskPoint{10, 100}));
}

TEST(AlignRects, TopEdgesComeToTheOutermost) {
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kTop),
                ElementsAre(DeskPoint{0, 110}, DeskPoint{30, 120}, DeskPoint{-10, 100}));
}

TEST(AlignRects, BottomEdgesComeToTheOutermost) {
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kBottom),
                ElementsAre(DeskPoint{0, 0}, DeskPoint{30, 0}, DeskPoint{-10, 0}));
}

TEST(AlignRects, MiddlesComeToTheMiddleOfAll) {
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kMiddleAcross),
                ElementsAre(DeskPoint{15, 0}, DeskPoint{10, 50}, DeskPoint{0, 100}));
    EXPECT_THAT(AlignRects(kThree, DeskAlign::kMiddleUp),
                ElementsAre(DeskPoint{0, 55}, DeskPoint{30, 60}, DeskPoint{-10, 50}));
}

TEST(AlignRects, NoneAndOneStayAsTheyAre) {
    EXPECT_THAT(AlignRects({}, DeskAlign::kLeft), IsEmpty());
    EXPECT_THAT(AlignRects({{3, 4, 5, 6}}, DeskAlign::kMiddleUp), ElementsAre(DeskPoint{3, 4}));
}

// Distributing

TEST(DistributeRects, GapsBetweenNeighboursBecomeEqualAndTheOutermostStay) {
    EXPECT_THAT(DistributeRects({{100, 0, 20, 9}, {0, 5, 10, 9}, {15, 7, 30, 9}}, DeskAxis::kAcross),
                ElementsAre(DeskPoint{100, 0}, DeskPoint{0, 5}, DeskPoint{40, 7}));
    EXPECT_THAT(DistributeRects({{0, 100, 9, 20}, {5, 0, 9, 10}, {7, 15, 9, 30}}, DeskAxis::kUp),
                ElementsAre(DeskPoint{0, 100}, DeskPoint{5, 0}, DeskPoint{7, 40}));
}

TEST(DistributeRects, WithoutRoomForGapsTheMiddlesAreEvenlyApart) {
    EXPECT_THAT(DistributeRects({{0, 0, 100, 9}, {5, 0, 100, 9}, {40, 0, 100, 9}}, DeskAxis::kAcross),
                ElementsAre(DeskPoint{0, 0}, DeskPoint{20, 0}, DeskPoint{40, 0}));
}

TEST(DistributeRects, TwoStayAsTheyAre) {
    EXPECT_THAT(DistributeRects({{0, 0, 10, 9}, {90, 0, 10, 9}}, DeskAxis::kAcross),
                ElementsAre(DeskPoint{0, 0}, DeskPoint{90, 0}));
    EXPECT_THAT(DistributeRects({}, DeskAxis::kUp), IsEmpty());
}

TEST(DistributeRects, DoneTwiceIsTheSame) {
    std::mt19937 random(7);
    for (int run = 0; run < 50; ++run) {
        std::vector<DeskRect> rects;
        for (size_t i = 0; i < 3 + random() % 9; ++i) {
            rects.push_back({static_cast<float>(random() % 1000), static_cast<float>(random() % 1000),
                             static_cast<float>(1 + random() % 300), static_cast<float>(1 + random() % 300)});
        }
        for (const DeskAxis axis : {DeskAxis::kAcross, DeskAxis::kUp}) {
            const auto once = Moved(rects, DistributeRects(rects, axis));
            const auto twice = Moved(once, DistributeRects(once, axis));
            for (size_t i = 0; i < rects.size(); ++i) {
                EXPECT_NEAR(once[i].left, twice[i].left, 0.01) << run;
                EXPECT_NEAR(once[i].bottom, twice[i].bottom, 0.01) << run;
            }
        }
    }
}

// Tidying

struct Network {
    std::vector<DeskRect> rects;
    std::vector<LayoutWire> wires;

    void Wire(size_t from, size_t to) {
        wires.push_back({from, to, rects[from].height / 2, rects[to].height / 2});
    }
    std::vector<DeskRect> Tidied() const { return Moved(rects, TidyRects(rects, wires)); }
};

Network Boxes(size_t count) {
    Network network;
    network.rects.assign(count, {0, 0, 100, 50});
    return network;
}

// Boxes anywhere, wired to what was made before them, in islands of which some are single boxes.
Network AnyNetwork(unsigned seed, size_t count, bool withCircles = false) {
    std::mt19937 random(seed);
    Network network;
    for (size_t i = 0; i < count; ++i) {
        network.rects.push_back({static_cast<float>(random() % 3000), static_cast<float>(random() % 3000),
                                 60 + static_cast<float>(random() % 12000) / 100,
                                 32 + static_cast<float>(random() % 10000) / 100});
    }
    const size_t islands = 1 + random() % 4;
    for (size_t to = 1; to < count; ++to) {
        for (size_t wires = random() % 4; wires > 0; --wires) {
            const size_t from = random() % to;
            if (from % islands != to % islands) continue;
            const bool back = withCircles && random() % 5 == 0;
            network.wires.push_back({back ? to : from, back ? from : to, static_cast<float>(random() % 32),
                                     static_cast<float>(random() % 32)});
        }
    }
    return network;
}

bool Reaches(const Network& network, size_t from, size_t to) {
    std::set<size_t> seen{from};
    std::vector<size_t> waiting{from};
    while (!waiting.empty()) {
        const size_t box = waiting.back();
        waiting.pop_back();
        if (box == to) return true;
        for (const LayoutWire& wire : network.wires) {
            if (wire.from == box && seen.insert(wire.to).second) waiting.push_back(wire.to);
        }
    }
    return false;
}

DeskRect Cover(const std::vector<DeskRect>& rects) {
    DeskRect all = rects.front();
    for (const DeskRect& rect : rects) all = all.UnitedWith(rect);
    return all;
}

void ExpectNoOverlaps(const std::vector<DeskRect>& rects, const std::string& what) {
    for (size_t i = 0; i < rects.size(); ++i) {
        for (size_t j = i + 1; j < rects.size(); ++j)
            EXPECT_FALSE(rects[i].Overlaps(rects[j])) << what << ": " << i << " and " << j;
    }
}

void ExpectForwardWires(const Network& network, const std::vector<DeskRect>& rects, const std::string& what) {
    for (const LayoutWire& wire : network.wires) {
        const bool isForward = rects[wire.from].Right() < rects[wire.to].left;
        EXPECT_TRUE(isForward || Reaches(network, wire.to, wire.from))
            << what << ": " << wire.from << " to " << wire.to;
    }
}

TEST(TidyRects, AChainRunsLevelFromLeftToRight) {
    Network network = Boxes(3);
    network.rects[0].left = 500;
    network.Wire(0, 1);
    network.Wire(1, 2);
    const auto rects = network.Tidied();
    EXPECT_FLOAT_EQ(rects[1].left, rects[0].Right() + 64);
    EXPECT_FLOAT_EQ(rects[2].left, rects[1].Right() + 64);
    EXPECT_EQ(rects[0].bottom, rects[1].bottom);
    EXPECT_EQ(rects[1].bottom, rects[2].bottom);
}

TEST(TidyRects, AWireRunsLevelThoughItsEndsAreAtDifferentHeights) {
    Network network;
    network.rects = {{0, 0, 50, 100}, {0, 0, 50, 40}};
    network.wires = {{0, 1, 80, 10}};
    const auto rects = network.Tidied();
    EXPECT_FLOAT_EQ(rects[0].bottom + 80, rects[1].bottom + 10);
}

TEST(TidyRects, ColumnsAreAsWideAsTheirWidestBox) {
    Network network;
    network.rects = {{0, 0, 50, 40}, {0, 100, 250, 40}, {0, 200, 80, 40}};
    network.Wire(0, 2);
    network.Wire(1, 2);
    const auto rects = network.Tidied();
    EXPECT_FLOAT_EQ(rects[0].left, rects[1].left);
    EXPECT_FLOAT_EQ(rects[2].left, rects[1].Right() + 64);
    EXPECT_FLOAT_EQ(rects[1].bottom, rects[0].Top() + 24) << "the upper one stays the upper one";
}

TEST(TidyRects, WhatFeedsOneBoxIsOrderedByItsInputs) {
    for (const bool crossed : {false, true}) {
        Network network;
        network.rects = {{0, 0, 50, 40}, {0, 100, 50, 40}, {200, 0, 80, 80}};
        network.wires = {{0, 2, 20, crossed ? 60.0F : 20.0F}, {1, 2, 20, crossed ? 20.0F : 60.0F}};
        const auto rects = network.Tidied();
        EXPECT_EQ(rects[0].bottom > rects[1].bottom, crossed);
    }
}

TEST(TidyRects, OfEqualsTheUpperStaysUpperAndAtOnePlaceTheFirst) {
    Network network = Boxes(4);
    for (size_t i = 0; i < 3; ++i) network.wires.push_back({i, 3, 25, 25});
    auto rects = network.Tidied();
    EXPECT_GT(rects[0].bottom, rects[1].bottom);
    EXPECT_GT(rects[1].bottom, rects[2].bottom);
    network.rects[1].bottom = 500;
    network.rects[0].bottom = -500;
    rects = network.Tidied();
    EXPECT_GT(rects[1].bottom, rects[2].bottom);
    EXPECT_GT(rects[2].bottom, rects[0].bottom);
}

TEST(TidyRects, ABoxThatFeedsNothingStandsBesideWhatFeedsIt) {
    Network network = Boxes(6);  // a chain of four, and two at its head that lead nowhere
    for (size_t i = 0; i < 3; ++i) network.Wire(i, i + 1);
    network.Wire(0, 4);
    network.Wire(4, 5);
    const auto rects = network.Tidied();
    EXPECT_EQ(rects[4].left, rects[1].left);
    EXPECT_EQ(rects[5].left, rects[2].left);
}

TEST(TidyRects, ABoxThatIsFedByNothingStandsBesideWhatItFeeds) {
    Network network = Boxes(5);
    for (size_t i = 0; i < 3; ++i) network.Wire(i, i + 1);
    network.Wire(4, 3);
    const auto rects = network.Tidied();
    EXPECT_EQ(rects[4].left, rects[2].left);
}

TEST(TidyRects, TheMiddleOfAllStaysWhereItIs) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        const Network network = AnyNetwork(seed, 30);
        const DeskPoint before = Cover(network.rects).Middle();
        const DeskPoint after = Cover(network.Tidied()).Middle();
        EXPECT_NEAR(before.x, after.x, 0.51);
        EXPECT_NEAR(before.y, after.y, 0.51);
    }
}

TEST(TidyRects, IslandsFollowInTheOrderInWhichOneReadsThem) {
    Network network = Boxes(4);
    network.rects[0].left = 900;  // above, at the right
    network.rects[0].bottom = 900;
    network.rects[1].bottom = 900;  // above, at the left
    network.rects[2].left = 300;    // below
    network.rects[3].left = 100;
    const auto rects = network.Tidied();
    const auto isRead = [&](size_t first, size_t second) {
        return rects[first].bottom > rects[second].bottom ||
               (rects[first].bottom == rects[second].bottom && rects[first].left < rects[second].left);
    };
    EXPECT_TRUE(isRead(1, 0));
    EXPECT_TRUE(isRead(0, 3));
    EXPECT_TRUE(isRead(3, 2));
}

TEST(TidyRects, ManySingleBoxesBecomeAFieldAndNoTower) {
    const DeskRect all = Cover(Boxes(400).Tidied());
    EXPECT_LT(all.height, 2 * all.width);
    EXPECT_LT(all.width, 3 * all.height);
}

TEST(TidyRects, NoBoxLiesOverAnotherAndWiresRunForward) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const Network network = AnyNetwork(seed, 5 + seed);
        const auto rects = network.Tidied();
        const std::string what = "network " + std::to_string(seed);
        ExpectNoOverlaps(rects, what);
        ExpectForwardWires(network, rects, what);
    }
}

TEST(TidyRects, InCirclesOnlyTheirOwnWiresMayRunBack) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        const Network network = AnyNetwork(seed, 5 + seed, true);
        const auto rects = network.Tidied();
        const std::string what = "network " + std::to_string(seed);
        ExpectNoOverlaps(rects, what);
        ExpectForwardWires(network, rects, what);
    }
}

TEST(TidyRects, DoneTwiceIsTheSameToTheBit) {
    for (unsigned seed = 1; seed <= 100; ++seed) {
        Network network = AnyNetwork(seed, 5 + 2 * seed, seed % 3 == 0);
        network.rects = network.Tidied();
        for (int again = 0; again < 2; ++again) {
            const auto corners = TidyRects(network.rects, network.wires);
            for (size_t i = 0; i < corners.size(); ++i) {
                EXPECT_EQ(corners[i], (DeskPoint{network.rects[i].left, network.rects[i].bottom}))
                    << "network " << seed << ", box " << i;
            }
        }
    }
}

// How far boxes have moved against what moves all of them.
float MedianMove(const std::vector<DeskRect>& before, const std::vector<DeskRect>& after) {
    const auto median = [](std::vector<float> values) {
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    std::vector<float> across;
    std::vector<float> up;
    for (size_t i = 0; i < before.size(); ++i) {
        across.push_back(after[i].left - before[i].left);
        up.push_back(after[i].bottom - before[i].bottom);
    }
    const float right = median(across);
    const float higher = median(up);
    std::vector<float> moves;
    for (size_t i = 0; i < before.size(); ++i) moves.push_back(std::hypot(across[i] - right, up[i] - higher));
    return median(moves);
}

TEST(TidyRects, ABoxThatIsPushedAsideGoesBackAndTheOthersStay) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        Network network = AnyNetwork(seed, 40);
        network.rects = network.Tidied();
        const auto before = network.rects;
        network.rects[seed % 40].left += 7;  // less than would change any order
        network.rects[seed % 40].bottom += 7;
        const auto after = network.Tidied();
        EXPECT_LT(MedianMove(before, after), 0.01F) << "network " << seed;
    }
}

TEST(TidyRects, OneWireMoreMostlyMovesLittle) {
    int quiet = 0;
    for (unsigned seed = 1; seed <= 30; ++seed) {
        Network network = AnyNetwork(seed, 60);
        network.rects = network.Tidied();
        const auto before = network.rects;
        // Between two of one island whose columns already follow one another.
        for (const LayoutWire& wire : network.wires) {
            if (wire.from % 7 != seed % 7) continue;
            network.wires.push_back({wire.from, wire.to, 3, 5});
            break;
        }
        quiet += MedianMove(before, network.Tidied()) < 25 ? 1 : 0;  // a quarter of a box
    }
    EXPECT_GE(quiet, 25) << "of 30 networks";
}

TEST(TidyRects, CrossingsThatNeedNotBeAreUndone) {
    // Ten chains of two that lead to one box, the first boxes of which lie in the wrong order.
    Network network = Boxes(21);
    for (size_t i = 0; i < 10; ++i) {
        network.rects[i].bottom = static_cast<float>(i) * 100;
        network.rects[10 + i].bottom = 900 - static_cast<float>(i) * 100;
        network.Wire(i, 10 + i);
        network.Wire(10 + i, 20);
    }
    const auto rects = network.Tidied();
    const auto height = [&](size_t box) { return rects[box].bottom; };
    for (size_t i = 0; i < 10; ++i) {
        for (size_t j = 0; j < 10; ++j)
            EXPECT_EQ(height(i) < height(j), height(10 + i) < height(10 + j)) << i << " and " << j;
    }
}

TEST(TidyRects, ALongWirePassesBesideTheBoxesBetweenItsEnds) {
    for (const bool isUpper : {false, true}) {
        Network network = Boxes(4);  // a chain, and a wire from its first box to its last
        for (size_t i = 0; i < 3; ++i)
            network.wires.push_back({i, i + 1, 25, i == 2 && !isUpper ? 40.0F : 25.0F});
        network.wires.push_back({0, 3, 25, isUpper ? 40.0F : 10.0F});
        const auto rects = network.Tidied();
        const DeskPoint start{rects[0].Right(), rects[0].bottom + 25};
        const DeskPoint end{rects[3].left, rects[3].bottom + network.wires.back().toHeight};
        for (const size_t inner : {1, 2}) {
            for (float part = 0; part <= 1; part += 1.0F / 256) {
                const DeskPoint point{start.x + (end.x - start.x) * part, start.y + (end.y - start.y) * part};
                EXPECT_FALSE(rects[inner].GrownBy(4).Contains(point)) << inner;
            }
            EXPECT_EQ(rects[inner].bottom < start.y, isUpper) << "on the side where the wires do not cross";
        }
    }
}

TEST(TidyRects, AnyNumbersGiveNumbers) {
    const float infinite = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    Network network;
    network.rects = {{none, 0, 100, 50},     {infinite, -infinite, 100, 50},
                     {0, 0, infinite, none}, {3e38F, -3e38F, 1, 1},
                     {0, 0, -5, -7},         {1, 2, 100, 50}};
    network.wires = {{0, 1, none, infinite}, {1, 2, -5, 3e38F}, {2, 2, 0, 0}, {3, 99, 0, 0}, {99, 3, 0, 0}};
    for (const auto& corners :
         {TidyRects(network.rects, network.wires), AlignRects(network.rects, DeskAlign::kMiddleAcross),
          DistributeRects(network.rects, DeskAxis::kUp)}) {
        ASSERT_EQ(corners.size(), network.rects.size());
        for (const DeskPoint& corner : corners)
            EXPECT_TRUE(std::isfinite(corner.x) && std::isfinite(corner.y));
    }
}

TEST(TidyRects, FiveThousandBoxesInOneChainOrOneStarOrOneCircleAreLaidOut) {
    for (const int shape : {0, 1, 2}) {
        Network network = Boxes(5000);
        for (size_t i = 1; i < 5000; ++i) network.Wire(shape == 1 ? 0 : i - 1, i);
        if (shape == 2) network.Wire(4999, 0);
        const auto rects = network.Tidied();
        std::set<std::pair<float, float>> corners;
        for (const DeskRect& rect : rects) corners.emplace(rect.left, rect.bottom);
        EXPECT_EQ(corners.size(), rects.size()) << shape;
    }
}

TEST(TidyRects, ThousandsOfBoxesAtRandomAreLaidOut) {
    std::mt19937 random(3);
    Network network = Boxes(5000);
    for (size_t to = 1; to < 5000; ++to) {
        for (int i = 0; i < 3; ++i) network.Wire(random() % to, to);
    }
    const auto rects = network.Tidied();
    for (const LayoutWire& wire : network.wires) EXPECT_LT(rects[wire.from].Right(), rects[wire.to].left);
}

}  // namespace
}  // namespace tavrin
