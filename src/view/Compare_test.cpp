// SPDX-License-Identifier: Apache-2.0
#include "view/Compare.h"

#include <cmath>
#include <cstdlib>

#include "view/ViewTest.h"

namespace tavrin {
namespace {

using test::Chart;
using test::Noise;
using test::Plain;

// The slow way, one channel at a time.
void ExpectDifference(const QImage& one, const QImage& other, int gain, int channels) {
    const PictureDifference found = DifferenceOf(Picture(one), Picture(other), gain);
    double sum = 0;
    int greatest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            const int alpha = std::abs(qAlpha(a) - qAlpha(b));
            int shown[3];
            const int apart[] = {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                                 std::abs(qBlue(a) - qBlue(b))};
            for (int c = 0; c < 3; ++c) {
                sum += apart[c];
                greatest = std::max(greatest, apart[c]);
                shown[c] = std::min(255, std::max(apart[c], alpha) * gain);
            }
            sum += alpha;
            greatest = std::max(greatest, alpha);
            ASSERT_EQ(found.picture->At({x, y}), qRgb(shown[0], shown[1], shown[2])) << x << ", " << y;
        }
    }
    EXPECT_EQ(found.greatest, greatest);
    EXPECT_NEAR(found.mean, sum / channels / one.width() / one.height(), 1e-9);
}

TEST(Compare, IsTheAbsoluteDifferenceOfEachChannelTimesTheGain) {
    for (const int gain : {1, 2, 16})
        ExpectDifference(Noise(37, 11, 1, false), Noise(37, 11, 2, false), gain, 3);
}

TEST(Compare, OpacityIsAChannelWhereEitherHasIt) {
    ExpectDifference(Noise(20, 9, 3, true), Noise(20, 9, 4, true), 3, 4);
    ExpectDifference(Noise(20, 9, 3, true), Noise(20, 9, 4, false), 1, 4);
}

TEST(Compare, OneAndTheSameIsBlack) {
    const PictureDifference none = DifferenceOf(Picture(Chart(30, 20)), Picture(Chart(30, 20)), 64);
    EXPECT_EQ(none.greatest, 0);
    EXPECT_EQ(none.mean, 0);
    EXPECT_EQ(none.picture->At({29, 19}), qRgb(0, 0, 0));
}

TEST(Compare, OfDifferentSizesWhatBothHaveCounts) {
    const PictureDifference found =
        DifferenceOf(Picture(Plain(30, 10, qRgb(5, 5, 5))), Picture(Plain(20, 40, qRgb(9, 5, 5))), 1);
    EXPECT_EQ(found.common, QSize(20, 10));
    EXPECT_EQ(found.all, QSize(30, 40));
    EXPECT_EQ(found.picture->Size(), QSize(20, 10));
    EXPECT_EQ(found.greatest, 4);
    EXPECT_NEAR(found.mean, 4 / 3.0, 1e-9);
}

TEST(Compare, WhatIsNotThereYetIsNotCompared) {
    Picture growing({4, 4}, false);
    const Picture whole(Plain(4, 4, qRgb(1, 1, 1)));
    EXPECT_EQ(DifferenceOf(growing, whole, 1).picture, nullptr);
    std::fill_n(growing.Row(0), 4, qRgb(3, 1, 1));
    growing.RowsAreThere(1);
    const PictureDifference found = DifferenceOf(growing, whole, 1);
    EXPECT_EQ(found.common, QSize(4, 1));
    EXPECT_EQ(found.greatest, 2);
}

}  // namespace
}  // namespace tavrin
