// SPDX-License-Identifier: Apache-2.0
#include "view/PictureFile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "view/ViewTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using State = PictureFile::State;
using test::Append;
using test::Chart;
using test::ClaimedPng;
using test::Encoded;
using test::Noise;
using test::Plain;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::chrono::milliseconds kSlice{5};

class PictureFileTest : public testing::Test {
  protected:
    std::string Path(const std::string& name = "it.png") { return directory / name; }
    // Until nothing more is there.
    static State ReadOn(PictureFile& file) {
        while (file.Step(kSlice) == State::kReading) {
        }
        return file.Now();
    }
    State ReadAll(const std::string& path) {
        file = std::make_unique<PictureFile>(path, false);
        return ReadOn(*file);
    }
    void ExpectTrouble(const std::string& path, const std::string& why) {
        EXPECT_EQ(ReadAll(path), State::kFailed) << path;
        EXPECT_EQ(file->Trouble(), "cannot show " + path + ": " + why);
    }
    static void ExpectSame(const PictureFile& file, const QImage& image) {
        ASSERT_NE(file.Get(), nullptr);
        ASSERT_EQ(file.Get()->Size(), image.size());
        ASSERT_TRUE(file.Get()->IsWhole());
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) ASSERT_EQ(file.Get()->At({x, y}), image.pixel(x, y));
    }

    test::TempDir directory;
    std::unique_ptr<PictureFile> file;
};

TEST_F(PictureFileTest, AWholePictureComesAsItIs) {
    directory.Write("it.png", Encoded(Noise(300, 200, 9)));
    EXPECT_EQ(ReadAll(Path()), State::kWhole);
    ExpectSame(*file, Noise(300, 200, 9));
    EXPECT_FALSE(file->Get()->HasAlpha());
}

TEST_F(PictureFileTest, EveryKindOfPngBecomesPlainPixels) {
    const QImage chart = Chart(64, 48, 5);
    for (const auto format : {QImage::Format_Indexed8, QImage::Format_Grayscale8, QImage::Format_Mono,
                              QImage::Format_RGBX64, QImage::Format_Grayscale16}) {
        const QImage image = chart.convertToFormat(format);
        directory.Write("it.png", Encoded(image));
        EXPECT_EQ(ReadAll(Path()), State::kWhole) << format;
        ExpectSame(*file, image.convertToFormat(QImage::Format_RGB32));
    }
    const QImage glass = Plain(7, 5, qRgba(200, 100, 3, 77));
    directory.Write("it.png", Encoded(glass));
    EXPECT_EQ(ReadAll(Path()), State::kWhole);
    EXPECT_TRUE(file->Get()->HasAlpha());
    ExpectSame(*file, glass);
}

TEST_F(PictureFileTest, OtherKindsAreReadAsWell) {
    for (const char* kind : {"BMP", "PPM", "JPG"}) {
        const QImage image = Plain(33, 21, qRgb(0, 0, 0));
        directory.Write("it", Encoded(image, kind));
        EXPECT_EQ(ReadAll(Path("it")), State::kWhole) << kind;
        ExpectSame(*file, image);
    }
}

TEST_F(PictureFileTest, APictureIsShownRowByRowAsItGrows) {
    const QImage image = Noise(300, 200, 3);
    const std::string png = Encoded(image);
    PictureFile growing(Path(), true);
    EXPECT_EQ(growing.Step(kSlice), State::kMissing);
    int rows = 0;
    int steps = 0;
    for (size_t at = 0; at < png.size(); at += 700) {
        Append(Path(), png.substr(at, 700));
        ASSERT_NE(ReadOn(growing), State::kFailed) << growing.Trouble();
        const int now = growing.Get() == nullptr ? 0 : growing.Get()->Rows();
        EXPECT_GE(now, rows);
        steps += now > rows ? 1 : 0;
        rows = now;
        for (int y = 0; y < rows; y += 37) ASSERT_EQ(growing.Get()->At({y, y}), image.pixel(y, y));
    }
    EXPECT_GT(steps, 2) << "it has not come at once";
    EXPECT_EQ(growing.Now(), State::kWhole);
    ExpectSame(growing, image);
}

TEST_F(PictureFileTest, WhileItIsMadeItGrowsBesideItsPlace) {
    const std::string png = Encoded(Noise(300, 200));
    directory.Write("it.png.part", png.substr(0, png.size() / 2));
    PictureFile growing(Path(), true);
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    ASSERT_NE(growing.Get(), nullptr);
    const PicturePtr seen = growing.Get();
    EXPECT_GT(seen->Rows(), 0);
    EXPECT_LT(seen->Rows(), 200);
    Append(Path() + ".part", png.substr(png.size() / 2));
    fs::rename(Path() + ".part", Path());
    EXPECT_EQ(ReadOn(growing), State::kWhole);
    EXPECT_EQ(growing.Get(), seen) << "it is the same that has grown";
    ExpectSame(growing, Noise(300, 200));
}

TEST_F(PictureFileTest, AFileThatIsBegunAnewOrReplacedIsReadAnew) {
    const std::string first = Encoded(Noise(300, 200, 1));
    const std::string second = Encoded(Chart(30, 20, 2));
    directory.Write("it.png", first.substr(0, first.size() / 2));
    PictureFile growing(Path(), true);
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    directory.Write("it.png", second.substr(0, 60));
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    directory.Write("other.png", second);
    fs::rename(Path("other.png"), Path());
    EXPECT_EQ(ReadOn(growing), State::kWhole);
    ExpectSame(growing, Chart(30, 20, 2));
}

TEST_F(PictureFileTest, OneThatIsRemovedWhileItIsReadIsReadToItsEnd) {
    const std::string png = Encoded(Noise(300, 200));
    directory.Write("it.png", png.substr(0, png.size() / 2));
    PictureFile growing(Path(), true);
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    Append(Path(), png.substr(png.size() / 2));
    fs::remove(Path());
    EXPECT_EQ(ReadOn(growing), State::kWhole);
    ExpectSame(growing, Noise(300, 200));
}

TEST_F(PictureFileTest, OneThatNobodyGoesOnWithIsCut) {
    const std::string png = Encoded(Noise(300, 200));
    directory.Write("work/it.png", png.substr(0, png.size() / 2));
    PictureFile growing(Path("work/it.png"), true);
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    const PicturePtr seen = growing.Get();
    fs::remove_all(Path("work"));
    EXPECT_EQ(ReadOn(growing), State::kFailed);
    EXPECT_THAT(growing.Trouble(), HasSubstr("the file is cut"));
    EXPECT_EQ(growing.Get(), seen) << "what was seen of it stays";
    EXPECT_GT(seen->Rows(), 0);
}

TEST_F(PictureFileTest, ACutOrEmptyOneIsTold) {
    const std::string png = Encoded(Noise(300, 200));
    directory.Write("it.png", png.substr(0, png.size() - 30));
    ExpectTrouble(Path(), "the file is cut");
    EXPECT_GT(file->Get()->Rows(), 0) << "what is there is shown";
    directory.Write("empty.png", "");
    ExpectTrouble(Path("empty.png"), "the file is empty");
    directory.Write("head.png", png.substr(0, 5));
    ExpectTrouble(Path("head.png"), "it is no picture that can be shown");
}

TEST_F(PictureFileTest, EveryPrefixOfAPictureIsFine) {
    const std::string png = Encoded(Chart(20, 10));
    for (size_t length = 0; length < png.size(); ++length) {
        directory.Write("it.png", png.substr(0, length));
        PictureFile growing(Path(), true);
        EXPECT_EQ(ReadOn(growing), State::kGrowing) << length;
        growing.IsComplete();
        EXPECT_EQ(ReadOn(growing), State::kFailed) << length;
        EXPECT_NE(growing.Trouble(), "");
    }
}

TEST_F(PictureFileTest, AByteThatIsWrongBreaksNothing) {
    const std::string png = Encoded(Chart(20, 10));
    for (size_t at = 0; at < png.size(); ++at) {
        std::string wrong = png;
        wrong[at] = static_cast<char>(wrong[at] ^ 0x55);
        directory.Write("it.png", wrong);
        const State state = ReadAll(Path());
        EXPECT_TRUE(state == State::kWhole || (state == State::kFailed && !file->Trouble().empty())) << at;
    }
}

TEST_F(PictureFileTest, WhatIsNoPictureIsTold) {
    directory.Write("text.png", "no picture at all, but a text that is long enough");
    ExpectTrouble(Path("text.png"), "it is no picture that can be shown");
    ExpectTrouble(Path("none.png"), "No such file or directory");
    ExpectTrouble(directory.Path(), "it is no file");
    ASSERT_EQ(::mkfifo(Path("pipe.png").c_str(), 0600), 0);
    ExpectTrouble(Path("pipe.png"), "it is no file");
    ExpectTrouble("/dev/zero", "it is no file");
}

TEST_F(PictureFileTest, AnEnormousOneIsRefusedByItsHead) {
    const std::string pixels("\0\0\x10\0IDAT", 8);  // begin
    directory.Write("large.png", ClaimedPng(32768, 32768) + pixels);
    EXPECT_EQ(ReadAll(Path("large.png")), State::kFailed);
    EXPECT_THAT(file->Trouble(), AllOf(StartsWith("cannot show " + Path("large.png")),
                                       HasSubstr("32768 x 32768 pixels are more than this window shows")));
    EXPECT_EQ(file->Get(), nullptr);
    directory.Write("huge.png", ClaimedPng(0x7fffffff, 0x7fffffff) + pixels);
    EXPECT_EQ(ReadAll(Path("huge.png")), State::kFailed);
    directory.Write("large.ppm", "P6\n30000 30000\n255\n");
    EXPECT_EQ(ReadAll(Path("large.ppm")), State::kFailed);
    EXPECT_THAT(file->Trouble(), HasSubstr("30000 x 30000 pixels are more"));
}

// Its chunks go on and on without pixels.
TEST_F(PictureFileTest, OneThatGrowsWithoutEndIsLeft) {
    directory.Write("it.png", ClaimedPng(4, 4));
    std::string chunk("\0\x01\0\0teXt", 8);
    chunk += std::string(65536, 'x') + std::string(4, '\0');
    uint32_t crc = 0xffffffff;
    for (size_t at = 4; at < chunk.size() - 4; ++at) {
        crc ^= static_cast<unsigned char>(chunk[at]);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xedb88320 & (0 - (crc & 1)));
    }
    crc ^= 0xffffffff;
    for (size_t i = 0; i < 4; ++i) chunk[chunk.size() - 4 + i] = static_cast<char>(crc >> (24 - 8 * i));
    PictureFile growing(Path(), true);
    std::string many;
    for (int i = 0; i < 64; ++i) many += chunk;
    int appended = 0;
    while (ReadOn(growing) == State::kGrowing && appended < 200) {
        Append(Path(), many);
        ++appended;
    }
    EXPECT_EQ(growing.Now(), State::kFailed);
    EXPECT_THAT(growing.Trouble(), HasSubstr("the file grows without an end"));
    EXPECT_LT(appended, 40);
}

TEST_F(PictureFileTest, AnotherKindThatGrowsIsReadOnceItIsWhole) {
    const std::string bytes = Encoded(Chart(40, 30), "BMP");
    directory.Write("it.bmp", bytes.substr(0, 900));
    PictureFile growing(Path("it.bmp"), true);
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    EXPECT_EQ(growing.Get(), nullptr);
    Append(Path("it.bmp"), bytes.substr(900));
    EXPECT_EQ(ReadOn(growing), State::kGrowing);
    growing.IsComplete();
    EXPECT_EQ(ReadOn(growing), State::kWhole);
    ExpectSame(growing, Chart(40, 30));
}

}  // namespace
}  // namespace tavrin
