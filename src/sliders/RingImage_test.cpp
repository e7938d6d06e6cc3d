// SPDX-License-Identifier: Apache-2.0
#include "sliders/RingImage.h"

#include <gtest/gtest.h>

#include <array>

namespace tavrin {
namespace {

constexpr int kMiddle = 79;     // of 159 pixels
constexpr int kOnRing = 64;     // pixels from there to the middle of the ring
constexpr int kColorSlack = 6;  // a pixel's centre is a bit beside the middle's axis

using Pixel = std::array<int, 4>;

// y grows downward from the top of the square that the ring stands in.
Pixel PixelAt(const RingImage& image, int x, int y) {
    const int row = image.Width() - 1 - y;
    const uint8_t* pixel = image.Pixels() + (row * image.Width() + x) * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

void ExpectPixel(const Pixel& found, const Pixel& expected) {
    for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(found[i], expected[i], kColorSlack) << "channel " << i;
}

TEST(RingImage, Is159By161Pixels) {
    const RingImage image;
    EXPECT_EQ(image.Width(), 159);
    EXPECT_EQ(image.Height(), 161);
}

TEST(RingImage, IsRedAtTheTopAndGoesRoundClockwise) {
    const RingImage image;
    ExpectPixel(PixelAt(image, kMiddle, kMiddle - kOnRing), {255, 0, 0, 255});
    ExpectPixel(PixelAt(image, kMiddle + kOnRing, kMiddle), {128, 255, 0, 255});
    ExpectPixel(PixelAt(image, kMiddle, kMiddle + kOnRing), {0, 255, 255, 255});
    ExpectPixel(PixelAt(image, kMiddle - kOnRing, kMiddle), {128, 0, 255, 255});
}

TEST(RingImage, StandsOnATransparentGround) {
    const RingImage image;
    EXPECT_EQ(PixelAt(image, kMiddle, kMiddle)[3], 0);
    EXPECT_EQ(PixelAt(image, 0, 0)[3], 0);
    EXPECT_EQ(PixelAt(image, 158, 158)[3], 0);
    EXPECT_EQ(PixelAt(image, kMiddle + 53, kMiddle)[3], 0);
    EXPECT_EQ(PixelAt(image, kMiddle + 57, kMiddle)[3], 255);
    EXPECT_EQ(PixelAt(image, kMiddle + 72, kMiddle)[3], 255);
    EXPECT_EQ(PixelAt(image, kMiddle + 76, kMiddle)[3], 0);
    for (int x = 0; x < 159; ++x) {
        EXPECT_EQ(PixelAt(image, x, -1)[3], 0);
        EXPECT_EQ(PixelAt(image, x, -2)[3], 0);
    }
}

TEST(RingImage, ItsEdgesAreSoft) {
    const RingImage image;
    int soft = 0;
    for (int x = 0; x < 159; ++x) {
        for (int y = 0; y < 159; ++y) {
            const int alpha = PixelAt(image, x, y)[3];
            soft += alpha > 0 && alpha < 255 ? 1 : 0;
        }
    }
    EXPECT_GT(soft, 600);
}

TEST(RingImage, HasTheSameShapeInAnyWidth) {
    const RingImage image(477);
    EXPECT_EQ(image.Height(), 483);
    ExpectPixel(PixelAt(image, 238, 238 - 193), {255, 0, 0, 255});
    ExpectPixel(PixelAt(image, 238 - 193, 238), {128, 0, 255, 255});
    EXPECT_EQ(PixelAt(image, 238 + 163, 238)[3], 0);
    EXPECT_EQ(PixelAt(image, 238 + 166, 238)[3], 255);
}

}  // namespace
}  // namespace tavrin
