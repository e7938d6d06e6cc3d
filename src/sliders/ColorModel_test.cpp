// SPDX-License-Identifier: Apache-2.0
#include "sliders/ColorModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tavrin {
namespace {

// Both ways cost some roundings to 32 bits, of numbers up to 1.
constexpr float kBothWays = 1e-6F;

void ExpectHsl(const Color& color, const Hsl& hsl) {
    const Hsl found = HslOf(color);
    EXPECT_NEAR(found.h, hsl.h, 1e-6F) << color.r << " " << color.g << " " << color.b;
    EXPECT_NEAR(found.s, hsl.s, 1e-6F) << color.r << " " << color.g << " " << color.b;
    EXPECT_NEAR(found.l, hsl.l, 1e-6F) << color.r << " " << color.g << " " << color.b;
}

void ExpectColor(const Color& found, const Color& color, float tolerance) {
    const auto told = [&] {
        return testing::Message() << "instead of " << color.r << " " << color.g << " " << color.b;
    };
    EXPECT_NEAR(found.r, color.r, tolerance) << told();
    EXPECT_NEAR(found.g, color.g, tolerance) << told();
    EXPECT_NEAR(found.b, color.b, tolerance) << told();
}

void ExpectThereAndBack(const Color& color) { ExpectColor(ColorOf(HslOf(color)), color, kBothWays); }

TEST(ColorModel, RedIsAtTheBeginOfTheTurnAndNotAtItsEnd) {
    EXPECT_EQ(HslOf({1, 0, 0}).h, 0);
    EXPECT_EQ(HslOf({0.5F, 0.25F, 0.25F}).h, 0);
    EXPECT_GT(HslOf({1, 0, 0.001F}).h, 0.999F);
}

TEST(ColorModel, ThePureHuesStandASixthOfATurnApart) {
    ExpectHsl({1, 0, 0}, {0, 1, 0.5F});
    ExpectHsl({1, 1, 0}, {1 / 6.0F, 1, 0.5F});
    ExpectHsl({0, 1, 0}, {2 / 6.0F, 1, 0.5F});
    ExpectHsl({0, 1, 1}, {3 / 6.0F, 1, 0.5F});
    ExpectHsl({0, 0, 1}, {4 / 6.0F, 1, 0.5F});
    ExpectHsl({1, 0, 1}, {5 / 6.0F, 1, 0.5F});
}

TEST(ColorModel, EachOrderOfTheComponentsHasItsSixthOfTheTurn) {
    ExpectHsl({1, 0.25F, 0}, {0.25F / 6, 1, 0.5F});
    ExpectHsl({0.25F, 1, 0}, {1.75F / 6, 1, 0.5F});
    ExpectHsl({0, 1, 0.25F}, {2.25F / 6, 1, 0.5F});
    ExpectHsl({0, 0.25F, 1}, {3.75F / 6, 1, 0.5F});
    ExpectHsl({0.25F, 0, 1}, {4.25F / 6, 1, 0.5F});
    ExpectHsl({1, 0, 0.25F}, {5.75F / 6, 1, 0.5F});
}

TEST(ColorModel, LightnessIsTheMiddleOfTheLeastAndTheMost) {
    ExpectHsl({0.2F, 0.3F, 0.4F}, {3.5F / 6, 0.2F / 0.6F, 0.3F});
    ExpectHsl({0.6F, 0.7F, 0.8F}, {3.5F / 6, 0.2F / 0.6F, 0.7F});
}

TEST(ColorModel, SaturationIsToldOfTheNearerTip) {
    EXPECT_FLOAT_EQ(HslOf({0.25F, 0, 0}).s, 1);
    EXPECT_FLOAT_EQ(HslOf({1, 0.75F, 0.75F}).s, 1);
    EXPECT_FLOAT_EQ(HslOf({0.75F, 0.25F, 0.25F}).s, 0.5F);  // at the waist
}

TEST(ColorModel, GreysHaveNeitherHueNorSaturation) {
    ExpectHsl({0, 0, 0}, {0, 0, 0});
    ExpectHsl({0.5F, 0.5F, 0.5F}, {0, 0, 0.5F});
    ExpectHsl({1, 1, 1}, {0, 0, 1});
}

TEST(ColorModel, WithoutLightnessEveryHueIsBlack) {
    EXPECT_EQ(ColorOf({0.4F, 1, 0}), (Color{0, 0, 0}));
    EXPECT_EQ(ColorOf({0, 0, 0}), (Color{0, 0, 0}));
}

TEST(ColorModel, WithAllLightnessEveryHueIsWhite) { EXPECT_EQ(ColorOf({0.4F, 1, 1}), (Color{1, 1, 1})); }

TEST(ColorModel, WithoutSaturationEveryHueIsTheSameGrey) {
    EXPECT_EQ(ColorOf({0.4F, 0, 0.25F}), (Color{0.25F, 0.25F, 0.25F}));
    EXPECT_EQ(ColorOf({0.9F, 0, 0.75F}), (Color{0.75F, 0.75F, 0.75F}));
}

TEST(ColorModel, AWholeTurnIsRedAgain) {
    EXPECT_EQ(ColorOf({1, 1, 0.5F}), (Color{1, 0, 0}));
    ExpectColor(ColorOf({1, 0.5F, 0.25F}), {0.375F, 0.125F, 0.125F}, kBothWays);
}

TEST(ColorModel, ThereAndBackGivesEachColorOfTheCubesCornersAndEdges) {
    for (int corner = 0; corner < 8; ++corner) {
        const auto bit = [corner](int which) { return static_cast<float>((corner >> which) & 1); };
        ExpectThereAndBack({bit(0), bit(1), bit(2)});
    }
    for (const float one : {0.0F, 1.0F}) {
        for (const float other : {0.0F, 1.0F}) {
            for (int thousandths = 0; thousandths <= 1000; ++thousandths) {
                const float along = static_cast<float>(thousandths) / 1000;
                ExpectThereAndBack({along, one, other});
                ExpectThereAndBack({one, along, other});
                ExpectThereAndBack({one, other, along});
            }
        }
    }
}

TEST(ColorModel, ThereAndBackGivesGreysAndTheirNeighboursOnTheGrid) {
    for (int thousandths = 0; thousandths < 1000; ++thousandths) {
        const float grey = static_cast<float>(thousandths) / 1000;
        const float next = static_cast<float>(thousandths + 1) / 1000;
        EXPECT_EQ(ColorOf(HslOf({grey, grey, grey})), (Color{grey, grey, grey}));
        ExpectThereAndBack({next, grey, grey});
        ExpectThereAndBack({grey, next, grey});
        ExpectThereAndBack({next, next, grey});
        ExpectThereAndBack({grey, next, next});
    }
}

TEST(ColorModel, ThereAndBackGivesAnyColor) {
    std::mt19937 random(20010909);
    std::uniform_real_distribution<float> share(0, 1);
    float farthest = 0;
    for (int i = 0; i < 100'000; ++i) {
        const Color color{share(random), share(random), share(random)};
        const Hsl hsl = HslOf(color);
        ASSERT_TRUE(hsl.h >= 0 && hsl.h <= 1 && hsl.s >= 0 && hsl.s <= 1 && hsl.l >= 0 && hsl.l <= 1);
        const Color back = ColorOf(hsl);
        farthest = std::max(
            {farthest, std::abs(back.r - color.r), std::abs(back.g - color.g), std::abs(back.b - color.b)});
    }
    EXPECT_LT(farthest, kBothWays);
}

TEST(ColorModel, HueAndSaturationComeBackFromEveryColorThatHasThem) {
    for (int hue = 0; hue < 100; ++hue) {
        for (int saturation = 1; saturation <= 10; ++saturation) {
            for (int lightness = 1; lightness < 10; ++lightness) {
                const Hsl hsl{static_cast<float>(hue) / 100, static_cast<float>(saturation) / 10,
                              static_cast<float>(lightness) / 10};
                const Hsl back = HslOf(ColorOf(hsl));
                const float apart = std::abs(back.h - hsl.h);
                EXPECT_LT(std::min(apart, 1 - apart), 1e-5F);
                EXPECT_NEAR(back.s, hsl.s, 1e-5F);
                EXPECT_NEAR(back.l, hsl.l, 1e-6F);
            }
        }
    }
}

TEST(ColorModel, ThePureColorOfAnAngleHasNothingOfOneComponentAndAllOfAnother) {
    for (int degree = -360; degree <= 360; ++degree) {
        const Color color = PureColor(degree * kWholeTurn / 360);
        EXPECT_EQ(std::min({color.r, color.g, color.b}), 0) << degree;
        EXPECT_EQ(std::max({color.r, color.g, color.b}), 1) << degree;
    }
    ExpectColor(PureColor(0), {1, 0, 0}, 0);
    ExpectColor(PureColor(kWholeTurn / 3), {0, 1, 0}, 1e-6F);
    ExpectColor(PureColor(kWholeTurn / 2), {0, 1, 1}, 1e-6F);
    ExpectColor(PureColor(kWholeTurn), {1, 0, 0}, 1e-6F);
}

TEST(ColorModel, ANegativeAngleIsThatOfTheTurnBefore) {
    ExpectColor(PureColor(-kWholeTurn / 3), {0, 0, 1}, 1e-6F);
    ExpectColor(PureColor(-kWholeTurn / 12), {1, 0, 0.5F}, 1e-6F);
}

TEST(ColorModel, ColorsAreRoundedToThousandths) {
    EXPECT_EQ(Rounded({0.12345F, 0.9996F, 0.0004F}), (Color{0.123F, 1, 0}));
    EXPECT_EQ(Rounded({1 / 3.0F, 2 / 3.0F, 0.5F}), (Color{0.333F, 0.667F, 0.5F}));
}

TEST(ColorModel, ColorsOutsideTheCubeStayNumbers) {
    for (const Color& color :
         {Color{2, 0, 0}, Color{1, 1.5F, 0.5F}, Color{-1, 0.5F, 0.25F}, Color{3, 3, 3}}) {
        const Hsl hsl = HslOf(color);
        EXPECT_TRUE(std::isfinite(hsl.h) && hsl.h >= 0 && hsl.h <= 1);
        EXPECT_FALSE(std::isnan(hsl.s));
        EXPECT_TRUE(std::isfinite(hsl.l));
    }
}

}  // namespace
}  // namespace tavrin
