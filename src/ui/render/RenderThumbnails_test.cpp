// SPDX-License-Identifier: Apache-2.0
// Which files become pictures in small, and when they are read again.
#include "ui/render/RenderThumbnails.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QImage>
#include <filesystem>

#include "support/TestSite.h"
#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::WaitUntil;

class RenderThumbnailsTest : public testing::Test {
  protected:
    std::string Write(const std::string& name, QSize size, const QColor& colour = Qt::red) const {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(colour);
        EXPECT_TRUE(picture.save(Shown(directory / name)));
        return directory / name;
    }
    QImage Get(const std::string& path, qreal ratio = 1) {
        EXPECT_TRUE(WaitUntil([&] { return !thumbnails.Of(path, ratio).isNull(); })) << path;
        return thumbnails.Of(path, ratio);
    }
    // They are read in turn: one that is asked for later has come.
    bool HasNone(const std::string& path) {
        thumbnails.Of(path, 1);
        Get(Write("good." + std::to_string(++m_good) + ".png", {10, 10}));
        return thumbnails.Of(path, 1).isNull();
    }

    test::TempDir directory;
    int arrived = 0;
    QObject view;
    RenderThumbnails& thumbnails = *new RenderThumbnails(&view, [this] { ++arrived; });

  private:
    int m_good = 0;
};

TEST_F(RenderThumbnailsTest, APictureIsFittedIntoItsPlaceAndTold) {
    const std::string path = Write("a.png", {640, 320});
    EXPECT_TRUE(thumbnails.Of(path, 1).isNull()) << "nobody waits for it";
    const QImage picture = Get(path);
    EXPECT_EQ(picture.size(), QSize(60, 30));
    EXPECT_EQ(picture.pixelColor(30, 15), QColor(Qt::red));
    EXPECT_EQ(arrived, 1);
}

TEST_F(RenderThumbnailsTest, OnAFinerScreenItHasMorePixels) {
    const std::string path = Write("a.png", {640, 480});
    EXPECT_EQ(Get(path, 2).size(), QSize(120, 90));
    EXPECT_EQ(Get(path, 2).deviceIndependentSize(), QSizeF(60, 45));
    // On the way from one screen to another the one that was shown stays until the other has come.
    EXPECT_EQ(thumbnails.Of(path, 1).size(), QSize(120, 90));
    EXPECT_TRUE(WaitUntil([&] { return thumbnails.Of(path, 1).size() == QSize(60, 45); }));
}

TEST_F(RenderThumbnailsTest, WhatEachKindOfFileHoldsCountsAndNotItsName) {
    for (const char* name : {"a.png", "a.jpg", "a.bmp", "a.ppm"})
        EXPECT_EQ(Get(Write(name, {400, 300})).size(), QSize(60, 45)) << name;
    fs::rename(directory / "a.ppm", directory / "b.png");
    EXPECT_FALSE(Get(directory / "b.png").isNull());
}

TEST_F(RenderThumbnailsTest, APictureOfOnePixelAndOneOfALineAreShown) {
    EXPECT_EQ(Get(Write("dot.png", {1, 1})).size(), QSize(45, 45));
    EXPECT_EQ(Get(Write("line.png", {5000, 1})).size(), QSize(60, 1));
}

TEST_F(RenderThumbnailsTest, WhatCannotBeReadHasNone) {
    EXPECT_TRUE(HasNone(""));
    EXPECT_TRUE(HasNone(directory / "none.png"));
    EXPECT_TRUE(HasNone(directory.Write("empty.png", "")));
    EXPECT_TRUE(HasNone(directory.Write("text.png", "a picture")));
    const std::string cut = Write("cut.png", {640, 480});
    fs::resize_file(cut, fs::file_size(cut) / 2);
    EXPECT_TRUE(HasNone(cut));
    fs::create_directory(directory / "directory.png");
    EXPECT_TRUE(HasNone(directory / "directory.png"));
    EXPECT_EQ(arrived, 6) << "only the good ones are told";
}

TEST_F(RenderThumbnailsTest, APipeHoldsUpNothing) {
    ASSERT_EQ(::mkfifo((directory / "pipe.png").c_str(), 0600), 0);
    EXPECT_TRUE(HasNone(directory / "pipe.png"));
}

TEST_F(RenderThumbnailsTest, WhatIsBeyondTheBoundsIsNotDecoded) {
    // As many bytes as are allowed and one more, of which none is on the disk.
    const std::string large = Write("large.png", {64, 64});
    fs::resize_file(large, RenderThumbnails::kMostBytes + 1);
    EXPECT_TRUE(HasNone(large));
    fs::resize_file(large, RenderThumbnails::kMostBytes);
    thumbnails.Refresh({});
    EXPECT_FALSE(Get(large).isNull());
    // The head of a picture of 32768 x 32768 pixels.
    std::string head = "P6\n32768 32768\n255\n";
    const std::string wide = directory.Write("wide.ppm", head + std::string(1000, 'x'));
    fs::resize_file(wide, 200 << 20);
    EXPECT_TRUE(HasNone(wide));
}

TEST_F(RenderThumbnailsTest, AFileIsReadAgainWhenItIsAnother) {
    const std::string path = Write("a.png", {64, 48});
    Get(path);
    thumbnails.Refresh({path});
    EXPECT_FALSE(thumbnails.Of(path, 1).isNull()) << "it is the same";
    Write("a.png", {640, 480}, Qt::green);
    EXPECT_EQ(thumbnails.Of(path, 1).pixelColor(5, 5), QColor(Qt::red)) << "nobody has looked";
    thumbnails.Refresh({path});
    EXPECT_EQ(Get(path).pixelColor(5, 5), QColor(Qt::green));
    fs::remove(path);
    thumbnails.Refresh({path});
    EXPECT_TRUE(HasNone(path));
}

TEST_F(RenderThumbnailsTest, OneThatGoesWhileItIsReadIsNotWaitedForBeyondItsPicture) {
    for (int number = 0; number < 50; ++number)
        thumbnails.Of(Write(std::to_string(number) + ".png", {800, 600}), 1);
    delete &thumbnails;
    test::HandleEvents();
    EXPECT_EQ(arrived, 0) << "nobody is there to be told";
    EXPECT_EQ(view.children().size(), 0);
}

}  // namespace
}  // namespace tavrin
