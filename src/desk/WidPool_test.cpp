// SPDX-License-Identifier: Apache-2.0
#include "desk/WidPool.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>

namespace tavrin {
namespace {

TEST(WidPool, BeginsAtOneAndGoesUp) {
    WidPool pool;
    EXPECT_EQ(pool.Next(), 1);
    EXPECT_EQ(pool.Next(), 2);
    EXPECT_EQ(pool.Next(), 3);
}

TEST(WidPool, FillsTheLowestGapFirst) {
    WidPool pool;
    for (int i = 0; i < 4; ++i) pool.Next();
    pool.Remove(2);
    EXPECT_EQ(pool.Next(), 2);
    pool.Remove(2);
    pool.Remove(1);
    EXPECT_EQ(pool.Next(), 1);
    EXPECT_EQ(pool.Next(), 2);
    EXPECT_EQ(pool.Next(), 5);
}

TEST(WidPool, FillsTheGapsOfAFile) {
    WidPool pool;
    for (const int wid : {2, 3, 6}) pool.Add(wid);
    EXPECT_EQ(pool.Next(), 1);
    EXPECT_EQ(pool.Next(), 4);
    EXPECT_EQ(pool.Next(), 5);
    EXPECT_EQ(pool.Next(), 7);
}

TEST(WidPool, ANumberThatIsHeldTwiceIsTakenUntilBothAreGone) {
    WidPool pool;
    pool.Add(1);
    pool.Add(1);
    pool.Remove(1);
    EXPECT_EQ(pool.Next(), 2);
    pool.Remove(1);
    EXPECT_EQ(pool.Next(), 1);
}

TEST(WidPool, NumbersThatAreNotPositivePlayNoPart) {
    WidPool pool;
    for (const int wid : {0, -1, INT_MIN, INT_MAX}) pool.Add(wid);
    EXPECT_EQ(pool.Next(), 1);
    for (const int wid : {0, -1, INT_MIN, INT_MAX}) pool.Remove(wid);
    EXPECT_EQ(pool.Next(), 2);
}

TEST(WidPool, RemovingANumberThatIsFreeDoesNothing) {
    WidPool pool;
    pool.Remove(1);
    EXPECT_EQ(pool.Next(), 1);
    pool.Remove(5);
    EXPECT_EQ(pool.Next(), 2);
}

TEST(WidPool, BeginsAnewWhenItIsCleared) {
    WidPool pool;
    for (int i = 0; i < 3; ++i) pool.Next();
    pool.Clear();
    EXPECT_EQ(pool.Next(), 1);
}

TEST(WidPool, AlwaysGivesTheSmallestFreeNumber) {
    std::mt19937 random(3);
    for (int round = 0; round < 50; ++round) {
        WidPool pool;
        std::multiset<int> used;
        for (int step = 0; step < 200; ++step) {
            const int wid = static_cast<int>(random() % 30) - 3;
            switch (random() % 3) {
                case 0:
                    pool.Add(wid);
                    used.insert(wid);
                    break;
                case 1:
                    pool.Remove(wid);
                    if (const auto place = used.find(wid); place != used.end()) used.erase(place);
                    break;
                default: {
                    int smallest = 1;
                    while (used.contains(smallest)) ++smallest;
                    ASSERT_EQ(pool.Next(), smallest) << "round " << round << ", step " << step;
                    used.insert(smallest);
                }
            }
        }
    }
}

}  // namespace
}  // namespace tavrin
