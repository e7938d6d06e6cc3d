// SPDX-License-Identifier: Apache-2.0
#include "sliders/SliderValue.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <limits>
#include <random>

namespace tavrin {
namespace {

__extension__ using Quad = __float128;

constexpr ValueRange kUnit{0, 1, false};

TEST(SliderValue, AValueStandsAtItsShareOfTheRange) {
    EXPECT_EQ(SliderPosition(0.5F, kUnit), 50);
    EXPECT_EQ(SliderPosition(0, kUnit), 0);
    EXPECT_EQ(SliderPosition(1, kUnit), 100);
    EXPECT_EQ(SliderPosition(15, {10, 20, false}), 50);
    EXPECT_EQ(SliderPosition(0.509F, kUnit), 50);
    EXPECT_EQ(SliderPosition(-0.5F, {-1, 1, false}), 25);
}

TEST(SliderValue, APositionIsAShareToTheLastBitOfAConstantOf32Bits) {
    EXPECT_NEAR(SliderValue(33, kUnit), 0.33F, 1e-6);
    // 0.01 of 32 bits is less than 0.01, so that 33 of them end one bit lower than 0.33 does.
    EXPECT_EQ(SliderValue(33, kUnit), std::nextafter(0.33F, 0.0F));
    EXPECT_EQ(SliderValue(100, kUnit), 1.0F);
    EXPECT_EQ(SliderValue(0, {3, 9, false}), 3.0F);
}

TEST(SliderValue, AReversedRangeRunsBackward) {
    const ValueRange range{10, 0, false};
    EXPECT_NEAR(SliderValue(100, range), 0, 1e-5);
    EXPECT_EQ(SliderValue(0, range), 10);
    EXPECT_NEAR(SliderValue(25, range), 7.5, 1e-5);
    EXPECT_EQ(SliderPosition(7.5F, range), 25);
}

TEST(SliderValue, AnEmptyRangeHasItsSliderAtTheLeftAndGivesItsOneValue) {
    const ValueRange range{2, 2, false};
    EXPECT_EQ(SliderPosition(7, range), 0);
    EXPECT_EQ(SliderPosition(2, range), 0);
    for (const int position : {0, 1, 50, 100}) EXPECT_EQ(SliderValue(position, range), 2);
}

TEST(SliderValue, WholeNumbersAreCutTowardZero) {
    const ValueRange ten{0, 10, true};
    EXPECT_EQ(SliderValue(37, ten), 3);
    EXPECT_EQ(SliderPosition(3, ten), 30);
    const ValueRange one{-1, 1, true};
    EXPECT_EQ(SliderValue(10, one), 0);
    EXPECT_TRUE(std::signbit(SliderValue(10, one)));  // -0.8
    EXPECT_EQ(SliderValue(99, one), 0);
}

TEST(SliderValue, WhatLiesOutsideTheRangeStandsOutsideTheSlider) {
    EXPECT_EQ(SliderPosition(1.5F, kUnit), 150);
    EXPECT_EQ(SliderPosition(-2, kUnit), -200);
    EXPECT_EQ(SliderPosition(FLT_MAX, kUnit), INT_MAX);
    EXPECT_EQ(SliderPosition(-FLT_MAX, kUnit), INT_MIN);
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(SliderPosition(infinity, kUnit), INT_MAX);
    EXPECT_EQ(SliderPosition(std::nanf(""), kUnit), 0);
    EXPECT_EQ(SliderPosition(1, {-FLT_MAX, FLT_MAX, false}), 50);
}

TEST(SliderValue, ClampsIntoARangeOfEitherDirection) {
    EXPECT_EQ(ClampedToRange(5, kUnit), 1);
    EXPECT_EQ(ClampedToRange(-5, kUnit), 0);
    EXPECT_EQ(ClampedToRange(0.25F, kUnit), 0.25F);
    EXPECT_EQ(ClampedToRange(5, {10, 6, false}), 6);
    EXPECT_EQ(ClampedToRange(50, {10, 6, false}), 10);
    EXPECT_EQ(ClampedToRange(0.5F, {0, 1, true}), 0.5F);
}

TEST(SliderValue, ComponentsAreHundredthsOfTheirOwn) {
    EXPECT_EQ(ComponentPosition(0.5F), 50);
    EXPECT_EQ(ComponentPosition(0.999F), 99);
    EXPECT_EQ(ComponentPosition(1), 100);
    EXPECT_NEAR(ComponentValue(33), 0.33F, 1e-6);
    EXPECT_EQ(ComponentValue(0), 0);
    EXPECT_EQ(ComponentValue(100), 1);
}

TEST(SliderValue, SwatchesCutOffWhatIsBelowAByte) {
    EXPECT_EQ(SwatchByte(0.5F, kPanelSwatchScale), 127);
    EXPECT_EQ(SwatchByte(0.25F, kPanelSwatchScale), 63);
    EXPECT_EQ(SwatchByte(1, kPanelSwatchScale), 255);
    EXPECT_EQ(SwatchByte(1, kPickerSwatchScale), 255);
    EXPECT_EQ(SwatchByte(0, kPanelSwatchScale), 0);
    EXPECT_EQ(SwatchByte(2, kPanelSwatchScale), 511 & 0xFF);
    EXPECT_GE(SwatchByte(-FLT_MAX, kPanelSwatchScale), 0);
}

// The same figures by another road: quadruple precision, rounded once.
TEST(SliderValue, ThereAndBackForRandomRangesAsASecondComputationHasIt) {
    std::mt19937 random(20);
    std::uniform_real_distribution<float> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-30, 30);
    std::uniform_int_distribution<int> positions(0, kSliderSteps);
    int lower = 0;
    for (int i = 0; i < 100000; ++i) {
        const ValueRange range{std::ldexp(mantissa(random), exponent(random)),
                               std::ldexp(mantissa(random), exponent(random)), false};
        const int position = positions(random);
        const float value = SliderValue(position, range);
        const Quad length = static_cast<Quad>(range.max) - range.min;
        const auto exact = static_cast<float>(range.min - length * position * static_cast<Quad>(-0.01F));
        ASSERT_EQ(value, exact) << range.min << " " << range.max << " " << position;
        if (range.min == range.max) continue;
        const auto back = static_cast<int>((static_cast<Quad>(value) - range.min) / length * 100);
        const int shown = SliderPosition(value, range);
        // Where the range is short beside its ends, few values stand in it.
        ASSERT_NEAR(shown, back, 1) << range.min << " " << range.max << " " << position;
        const bool isFine =
            std::abs(range.max - range.min) > 1e-3F * std::max(std::abs(range.max), std::abs(range.min));
        if (!isFine) continue;
        ASSERT_TRUE(shown == position || shown == position - 1) << shown << " of " << position;
        lower += shown < position ? 1 : 0;
        ASSERT_EQ(SteppingPosition(value, range), position);
    }
    EXPECT_GT(lower, 1000);  // which is why keys step from elsewhere
}

TEST(SliderValue, AKeyGoesThroughEveryPositionEitherWay) {
    for (const ValueRange& range : {kUnit, ValueRange{-3, 7, false}, ValueRange{1, 0, false}}) {
        float value = SliderValue(0, range);
        for (int step = 1; step <= kSliderSteps; ++step) {
            value = SliderValue(SteppingPosition(value, range) + 1, range);
            EXPECT_EQ(value, SliderValue(step, range));
        }
        for (int step = kSliderSteps - 1; step >= 0; --step) {
            value = SliderValue(SteppingPosition(value, range) - 1, range);
            EXPECT_EQ(value, SliderValue(step, range));
        }
    }
}

TEST(SliderValue, StepsAreHundredthsOfTheRangeAndWholeForWholeNumbers) {
    EXPECT_FLOAT_EQ(SteppedValue(0.5F, 1, kUnit), 0.51F);
    EXPECT_FLOAT_EQ(SteppedValue(0.5F, -10, kUnit), 0.4F);
    EXPECT_EQ(SteppedValue(0.999F, 1, kUnit), 1);
    EXPECT_EQ(SteppedValue(0, -1, kUnit), 0);
    EXPECT_EQ(SteppedValue(3, 1, {0, 10, true}), 4);
    EXPECT_EQ(SteppedValue(3, 1, {0, 1000, true}), 13);
    EXPECT_EQ(SteppedValue(3, -1, {0, 10, true}), 2);
    EXPECT_EQ(SteppedValue(3, 1, {10, 0, true}), 2);  // backward, as the slider
    EXPECT_EQ(SteppedValue(5, 1, {0, 0, false}), 6);
    EXPECT_EQ(SteppedValue(5, -1, {0, 0, false}), 4);
    EXPECT_EQ(SteppedValue(FLT_MAX, 10, {-FLT_MAX, FLT_MAX, false}), FLT_MAX);
}

}  // namespace
}  // namespace tavrin
