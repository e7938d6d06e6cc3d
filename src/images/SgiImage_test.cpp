// SPDX-License-Identifier: Apache-2.0
// Pictures that are read, and what becomes of their colours. Files that are refused have a test of their own.
#include "images/SgiImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include "images/SgiTestFile.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::Code;
using test::Rgba;
using test::SgiTestFile;
using test::TempDir;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Rgba kRed{255, 0, 0, 255};
constexpr Rgba kGreen{0, 255, 0, 128};
constexpr Rgba kBlue{0, 0, 255, 0};
constexpr Rgba kGrey{10, 20, 30, 40};

CSgiImage Read(const std::string& bytes) {
    const TempDir directory;
    return CSgiImage(directory.Write("picture.sgi", bytes), {});
}

CSgiImage Read(const SgiTestFile& file) { return Read(file.Bytes()); }

std::vector<Rgba> Pixels(const CSgiImage& image) {
    std::vector<Rgba> pixels;
    if (!image.pixels) return pixels;
    for (size_t at = 0; at < static_cast<size_t>(image.width * image.height); ++at) {
        const uint8_t* const pixel = &image.pixels[at * 4];
        pixels.push_back({pixel[0], pixel[1], pixel[2], pixel[3]});
    }
    return pixels;
}

CSgiImage ReadPixel(const Rgba& pixel) { return Read(SgiTestFile::Plain(1, 1, 4, pixel)); }

// The first channel of every pixel in a row of this code; each other channel is 1 all along.
std::vector<int> FirstChannel(int width, const std::string& code) {
    SgiTestFile file = SgiTestFile::Plain(width, 1, 3, {1, 1, 1, 0});
    file.rows[0] = code;
    const CSgiImage image = Read(file);
    EXPECT_EQ(image.message, "");
    std::vector<int> values;
    for (const Rgba& pixel : Pixels(image)) values.push_back(pixel[0]);
    return values;
}

// Reading

TEST(SgiImage, HoldsTheChannelsOfEachPixelSideBySideInTheOrderOfTheFile) {
    const CSgiImage image = Read(SgiTestFile::Picture(2, 4, {kRed, kGreen, kBlue, kGrey, kGrey, kRed}));
    EXPECT_EQ(image.width, 2);
    EXPECT_EQ(image.height, 3);
    EXPECT_EQ(image.message, "");
    EXPECT_THAT(Pixels(image), ElementsAre(kRed, kGreen, kBlue, kGrey, kGrey, kRed));
}

TEST(SgiImage, AThreeChannelPictureIsOpaqueEverywhere) {
    const CSgiImage image = Read(SgiTestFile::Plain(3, 2, 3, {10, 20, 30, 77}));
    EXPECT_THAT(Pixels(image), testing::AllOf(testing::SizeIs(6), Each(Rgba{10, 20, 30, 255})));
}

TEST(SgiImage, ARunRepeatsAndACopyTakesWhatFollows) {
    EXPECT_THAT(FirstChannel(6, Code({0x03, 7, 0x82, 8, 9, 0x01, 5, 0})), ElementsAre(7, 7, 7, 8, 9, 5));
}

TEST(SgiImage, ACountOfNothingThatCopiesWritesNothingAndEndsNothing) {
    EXPECT_THAT(FirstChannel(2, Code({0x80, 0x81, 4, 0x80, 0x81, 6, 0})), ElementsAre(4, 6));
}

TEST(SgiImage, ARowEndsAtItsZeroWhateverFollows) {
    EXPECT_THAT(FirstChannel(2, Code({0x82, 4, 6, 0, 0x7F, 9})), ElementsAre(4, 6));
}

TEST(SgiImage, WhatAShortRowLeavesIsZero) {
    constexpr int kWidth = 40;
    // Memory that was used and given back is what a picture of this size is likely to get.
    std::vector<std::vector<uint8_t>> used(64, std::vector<uint8_t>(kWidth * 4, 0xAB));
    used.clear();
    std::vector<int> expected(kWidth, 0);
    expected[0] = expected[1] = 9;
    EXPECT_EQ(FirstChannel(kWidth, Code({0x02, 9, 0})), expected);
}

TEST(SgiImage, ARowMayTakeAllOfTheBuffer) {
    // 31 copies of 127 bytes and one of 126, each behind its count, and the 0: 4096 bytes.
    std::vector<uint8_t> values;
    for (int i = 0; i < 31 * 127 + 126; ++i) values.push_back(static_cast<uint8_t>(i % 251));
    const std::string code = test::EncodeRow(values);
    ASSERT_EQ(code.size(), CSgiImage::kMaxRowBytes);
    EXPECT_THAT(FirstChannel(static_cast<int>(values.size()), code), testing::ElementsAreArray(values));
}

TEST(SgiImage, RowsMayStandInAnyOrderAndBeShared) {
    SgiTestFile file = SgiTestFile::Plain(2, 2, 3, {});
    file.rows = {Code({2, 11, 0}), Code({2, 22, 0}), "", "", "", ""};
    std::string bytes = file.Bytes();
    const size_t first = file.DataOffset();
    const size_t second = first + file.rows[0].size();
    const std::vector<size_t> starts = {second, first, first, first, second, second};
    for (size_t row = 0; row < starts.size(); ++row) {
        bytes = test::WithEntry(bytes, file.StartOffset(row), starts[row]);
        bytes = test::WithEntry(bytes, file.LengthOffset(row), 3);
    }
    EXPECT_THAT(Pixels(Read(bytes)), ElementsAre(Rgba{22, 11, 22, 255}, Rgba{22, 11, 22, 255},
                                                 Rgba{11, 11, 22, 255}, Rgba{11, 11, 22, 255}));
}

TEST(SgiImage, ReadsAWallpaperOfALargeScreen) {
    const CSgiImage image = Read(SgiTestFile::Plain(4096, 2160, 3, {1, 2, 3, 0}));
    ASSERT_EQ(image.message, "");
    const size_t last = (size_t{4096} * 2160 - 1) * 4;
    EXPECT_EQ(image.pixels[last], 1);
    EXPECT_EQ(image.pixels[last + 3], 255);
}

TEST(SgiImage, ReadsTheWidestRow) {
    const CSgiImage image = Read(SgiTestFile::Plain(32767, 1, 4, kGrey));
    EXPECT_EQ(image.width, 32767);
    EXPECT_THAT(Pixels(image), Each(kGrey));
}

// Copies

TEST(SgiImage, ACopyIsFlattenedOnItsOwn) {
    const CSgiImage image = ReadPixel(kBlue);
    CSgiImage highlighted = image;
    highlighted.FlattenOver(1, 1, 0);
    EXPECT_EQ(highlighted.width, 1);
    EXPECT_EQ(highlighted.height, 1);
    EXPECT_THAT(Pixels(highlighted), ElementsAre(Rgba{255, 255, 0, 0}));
    EXPECT_THAT(Pixels(image), ElementsAre(kBlue));
}

TEST(SgiImage, ACopyOfAFailedImageIsFailed) {
    const CSgiImage image = Read("");
    const CSgiImage copy = image;
    EXPECT_FALSE(copy.pixels);
    EXPECT_EQ(copy.message, image.message);
    EXPECT_NE(copy.message, "");
}

TEST(SgiImage, IsAClassToDeriveFrom) { EXPECT_TRUE(std::has_virtual_destructor_v<CSgiImage>); }

// Flattening

TEST(SgiFlatten, AHalfTransparentPixelIsMixed) {
    CSgiImage image = ReadPixel({0, 255, 100, 128});
    image.FlattenOver(1, 1, 1);
    // (128 x 0 + 127 x 255) >> 8, (128 x 255 + 127 x 255) >> 8, (128 x 100 + 127 x 255) >> 8
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{126, 254, 176, 128}));
}

TEST(SgiFlatten, EachChannelHasItsOwnBackground) {
    CSgiImage image = ReadPixel({200, 200, 200, 1});
    image.FlattenOver(0, 0.5F, 1);
    // (200 + 254 x 0) >> 8, (200 + 254 x 127) >> 8, (200 + 254 x 255) >> 8
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{0, 126, 253, 1}));
}

TEST(SgiFlatten, ATransparentPixelBecomesTheColourAndStaysTransparent) {
    CSgiImage image = ReadPixel({9, 9, 9, 0});
    image.FlattenOver(1, 0.5F, 0);
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{255, 127, 0, 0}));
}

TEST(SgiFlatten, AnOpaquePixelStaysAndItsNeighboursDoNot) {
    CSgiImage image = Read(SgiTestFile::Picture(3, 4, {kBlue, kRed, kBlue}));
    image.FlattenOver(0, 1, 0);
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{0, 255, 0, 0}, kRed, Rgba{0, 255, 0, 0}));
}

TEST(SgiFlatten, AThreeChannelPictureStays) {
    CSgiImage image = Read(SgiTestFile::Plain(2, 2, 3, {10, 20, 30, 0}));
    image.FlattenOver(1, 1, 1);
    EXPECT_THAT(Pixels(image), Each(Rgba{10, 20, 30, 255}));
}

TEST(SgiFlatten, ColoursAreLimited) {
    CSgiImage image = ReadPixel(kBlue);
    image.FlattenOver(-0.5F, 1.5F, std::numeric_limits<float>::infinity());
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{0, 255, 255, 0}));
}

TEST(SgiFlatten, ColoursAreCutAndNotRounded) {
    CSgiImage image = ReadPixel(kBlue);
    image.FlattenOver(0.0039F, 0.00391F, 0.99999F);  // x 255.999: 0.998, 1.001, 255.996
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{0, 1, 255, 0}));
}

TEST(SgiFlatten, WhatIsNoNumberIsBlack) {
    CSgiImage image = ReadPixel({9, 9, 9, 0});
    image.FlattenOver(std::numeric_limits<float>::quiet_NaN(), 1, 1);
    EXPECT_THAT(Pixels(image), ElementsAre(Rgba{0, 255, 255, 0}));
}

TEST(SgiFlatten, AFailedImageStaysEmpty) {
    CSgiImage image = Read("no picture");
    const std::string message = image.message;
    image.FlattenOver(1, 1, 1);
    EXPECT_THAT(Pixels(image), IsEmpty());
    EXPECT_EQ(image.width, 0);
    EXPECT_EQ(image.height, 0);
    EXPECT_EQ(image.message, message);
}

}  // namespace
}  // namespace tavrin
