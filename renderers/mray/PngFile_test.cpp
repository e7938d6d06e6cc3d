// SPDX-License-Identifier: Apache-2.0
#include "PngFile.h"

#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace tavrin::mray {
namespace {

class PngFileTest : public testing::Test {
  protected:
    PngFileTest() {
        std::string name = (std::filesystem::temp_directory_path() / "mray.XXXXXX").string();
        directory_ = mkdtemp(name.data());
    }
    ~PngFileTest() override { std::filesystem::remove_all(directory_); }

    [[nodiscard]] std::string path(const std::string& name) const { return directory_ + "/" + name; }
    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory_), {}));
    }
    // All pixels, by the library's own reader; nothing where it fails.
    static std::vector<std::uint8_t> read(const std::string& file) {
        png_image image;
        std::memset(&image, 0, sizeof image);
        image.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_file(&image, file.c_str()) == 0) {
            return {};
        }
        image.format = PNG_FORMAT_RGB;
        std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(image));
        const bool good = png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) != 0;
        return good ? pixels : std::vector<std::uint8_t>();
    }

    std::string directory_;
    std::vector<std::uint8_t> pixels_{1, 2, 3, 40, 50, 60, 7, 80, 9, 100, 200, 255};
};

TEST_F(PngFileTest, WhatIsWrittenIsRead) {
    for (const PngEffort effort : {PngEffort::Small, PngEffort::Quick}) {
        writePng(path("a.png"), 2, 2, pixels_, effort);
        EXPECT_EQ(read(path("a.png")), pixels_);
        EXPECT_EQ(files(), 1U);
    }
}

TEST_F(PngFileTest, GrowsUnderAnotherName) {
    constexpr int kSide = 200;
    std::vector<std::uint8_t> noise;
    std::minstd_rand random;
    while (noise.size() < kSide * kSide * 3) {
        noise.push_back(static_cast<std::uint8_t>(random() >> 16));
    }
    PngFile file(path("a.png"), path("growing"), kSide, kSide, PngEffort::Small);
    const auto size = [this] { return std::filesystem::file_size(path("growing")); };
    const auto head = size();
    file.addRows(noise.data(), kSide / 2);
    const auto half = size();
    EXPECT_GT(half, head + noise.size() / 4);
    file.addRows(noise.data() + noise.size() / 2, kSide / 2);
    EXPECT_GT(size(), half + noise.size() / 4);
    EXPECT_FALSE(std::filesystem::exists(path("a.png")));
    file.finish();
    EXPECT_EQ(files(), 1U);
    EXPECT_EQ(read(path("a.png")), noise);
}

TEST_F(PngFileTest, LeavesNothingWhenItIsGivenUp) {
    {
        PngFile file(path("a.png"), path("growing"), 2, 2, PngEffort::Small);
        file.addRows(pixels_.data(), 1);
        EXPECT_EQ(files(), 1U);
    }
    EXPECT_EQ(files(), 0U);
    {
        std::filesystem::create_directory(path("a.png"));
        PngFile file(path("a.png"), path("growing"), 2, 2, PngEffort::Small);
        file.addRows(pixels_.data(), 2);
        EXPECT_THROW(file.finish(), std::runtime_error);
    }
    EXPECT_FALSE(std::filesystem::exists(path("growing")));
}

TEST_F(PngFileTest, DoesNotTouchAFileThatIsThere) {
    std::ofstream(path("growing")) << "mine";
    EXPECT_THROW(PngFile(path("a.png"), path("growing"), 2, 2, PngEffort::Small), std::runtime_error);
    std::ifstream file(path("growing"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "mine");
}

TEST_F(PngFileTest, TellsThatTheDiskIsFull) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    std::filesystem::create_symlink("/dev/full", path("full"));
    EXPECT_THROW(PngFile(path("a.png"), path("full"), 2, 2, PngEffort::Small), std::runtime_error);
    EXPECT_THROW(PngFile(path("a.png"), path("none/growing"), 2, 2, PngEffort::Small), std::runtime_error);
}

}  // namespace
}  // namespace tavrin::mray
