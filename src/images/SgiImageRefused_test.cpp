// SPDX-License-Identifier: Apache-2.0
// Files that are refused: each warning, their order, and that nothing of the picture is kept.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "base/ReadLimit.h"
#include "images/SgiImage.h"
#include "images/SgiTestFile.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::Code;
using test::SgiTestFile;
using test::TempDir;
using test::WithEntry;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kBadTables = "error reading row offset data";
constexpr const char* kBadPixels = "error reading pixel data";

// Why the file is refused, without the words before and the path; "read" if it is not.
std::string Refusal(const std::string& path) {
    std::vector<std::string> log;
    const CSgiImage image(path, [&](const std::string& text) { log.push_back(text); });
    if (image.pixels) {
        EXPECT_THAT(log, IsEmpty());
        return "read";
    }
    EXPECT_EQ(image.width, 0);
    EXPECT_EQ(image.height, 0);
    EXPECT_THAT(log, ElementsAre(image.message));
    const std::string before = "WARNING: " + path + ": ";
    EXPECT_EQ(image.message.substr(0, before.size()), before);
    return image.message.substr(std::min(before.size(), image.message.size()));
}

std::string RefusalOf(const std::string& bytes) {
    const TempDir directory;
    return Refusal(directory.Write("picture.sgi", bytes));
}

std::string RefusalOf(const SgiTestFile& file) { return RefusalOf(file.Bytes()); }

SgiTestFile Sound() { return SgiTestFile::Plain(4, 3, 4, {1, 2, 3, 4}); }

// A sound file but for the code of one row, the last that is read.
std::string RefusalOfRow(const std::string& code) {
    SgiTestFile file = Sound();
    file.rows.back() = code;
    return RefusalOf(file);
}

// The file

TEST(SgiImageRefused, AFileBeyondTheLimitIsNotRead) {
    SetReadLimit(600);
    EXPECT_EQ(RefusalOf(Sound()), "the file is larger than the setting maxfilesize allows");
    SetReadLimit(kDefaultReadLimit);
    EXPECT_EQ(RefusalOf(Sound()), "read");
}

TEST(SgiRefused, TheWarningNamesTheFileAndGoesToTheLog) {
    std::vector<std::string> log;
    const CSgiImage image("/nonexistent/100%s.sgi", [&](const std::string& text) { log.push_back(text); });
    EXPECT_EQ(image.message, "WARNING: /nonexistent/100%s.sgi: unable to open file");
    EXPECT_THAT(log, ElementsAre(image.message));
    EXPECT_FALSE(image.pixels);
}

TEST(SgiRefused, WhatIsNoRegularFileCannotBeOpened) {
    const TempDir directory;
    EXPECT_EQ(Refusal(directory.Path()), "unable to open file");
    EXPECT_EQ(Refusal("/dev/zero"), "unable to open file");
    const std::string pipe = directory / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(Refusal(pipe), "unable to open file");
}

TEST(SgiRefused, AFileShorterThanItsHeader) {
    EXPECT_EQ(RefusalOf(""), "invalid header");
    EXPECT_EQ(RefusalOf(Sound().Header().substr(0, 511)), "invalid header");
}

// The header

TEST(SgiRefused, AnotherMagicNumber) {
    SgiTestFile file = Sound();
    file.magic = 475;
    EXPECT_EQ(RefusalOf(file), "invalid magic number");
    file.magic = 0xDA01;  // 474 with its bytes exchanged
    EXPECT_EQ(RefusalOf(file), "invalid magic number");
}

TEST(SgiRefused, AnUncompressedFile) {
    SgiTestFile file = Sound();
    file.storage = 0;
    EXPECT_EQ(RefusalOf(file), "expecting compressed data");
}

TEST(SgiRefused, TwoBytesPerChannel) {
    SgiTestFile file = Sound();
    file.bytesPerChannel = 2;
    EXPECT_EQ(RefusalOf(file), "expecting byte-per-channel data");
}

TEST(SgiRefused, AOneChannelFile) {
    SgiTestFile file = SgiTestFile::Plain(4, 3, 1, {1, 2, 3, 4});
    EXPECT_EQ(RefusalOf(file), "expecting RGB or RGBA data");
    file.dimension = 2;
    EXPECT_EQ(RefusalOf(file), "expecting RGB or RGBA data");
}

TEST(SgiRefused, TwoDimensionsWhateverTheChannels) {
    SgiTestFile file = Sound();
    file.dimension = 2;
    EXPECT_EQ(RefusalOf(file), "expecting RGB or RGBA data");
}

TEST(SgiRefused, FiveChannels) {
    SgiTestFile file = Sound();
    file.channels = 5;
    EXPECT_EQ(RefusalOf(file), "expecting RGB or RGBA data");
}

TEST(SgiRefused, TheFirstFaultIsTold) {
    SgiTestFile file;
    file.magic = 1;
    file.storage = 0;
    file.bytesPerChannel = 2;
    file.dimension = 2;
    file.channels = 1;
    file.height = 7;
    const std::vector<std::function<void()>> mends = {[&] { file.magic = 474; },
                                                      [&] { file.storage = 1; },
                                                      [&] { file.bytesPerChannel = 1; },
                                                      [&] { file.dimension = 3; },
                                                      [&] { file.channels = 3; },
                                                      [&] { file.rows.resize(21); },
                                                      [&] {
                                                          file.width = 1;
                                                          file.rows.assign(21, Code({0}));
                                                      }};
    std::vector<std::string> told = {RefusalOf(file)};
    for (const auto& mend : mends) {
        mend();
        told.push_back(RefusalOf(file));
    }
    EXPECT_THAT(told, ElementsAre("invalid magic number", "expecting compressed data",
                                  "expecting byte-per-channel data", "expecting RGB or RGBA data",
                                  "expecting RGB or RGBA data", kBadTables, kBadPixels, "read"));
}

// Sizes

TEST(SgiRefused, APictureWithoutPixels) {
    SgiTestFile file = Sound();
    file.width = 0;
    file.rows.assign(file.rows.size(), Code({0}));
    EXPECT_EQ(RefusalOf(file), kBadPixels);
    file.height = 0;
    EXPECT_EQ(RefusalOf(file), kBadTables);
}

TEST(SgiRefused, SizesAreSigned) {
    SgiTestFile wide = Sound();
    wide.width = 0x8000;
    EXPECT_EQ(RefusalOf(wide), kBadPixels);
    // Sound in all else: the file holds as many rows.
    EXPECT_EQ(RefusalOf(SgiTestFile::Plain(1, 0xFFFF, 3, {})), kBadTables);
    EXPECT_EQ(RefusalOf(SgiTestFile::Plain(1, 0x7FFF, 3, {})), "read");
}

TEST(SgiRefused, AHeaderThatTellsMoreThanTheFileHolds) {
    SgiTestFile file = Sound();
    file.width = file.height = 32767;
    EXPECT_EQ(RefusalOf(file.Header()), kBadTables);
    EXPECT_EQ(RefusalOf(file), kBadTables);
}

// Every row is the same sound one, so that a file of less than a megabyte could hold gigabytes.
TEST(SgiRefused, APictureBeyondTheLimit) {
    SgiTestFile file = Sound();
    file.channels = 3;
    file.width = 32767;
    file.height = static_cast<int>(CSgiImage::kMaxPixels / 32767) + 1;
    const size_t rows = static_cast<size_t>(file.height) * 3;
    std::string starts;
    std::string lengths;
    for (size_t row = 0; row < rows; ++row) {
        starts += test::BigEndianBytes(SgiTestFile::kHeaderBytes + 8 * rows, 4);
        lengths += test::BigEndianBytes(1, 4);
    }
    EXPECT_EQ(RefusalOf(file.Header() + starts + lengths + Code({0})), kBadPixels);
}

// The tables

TEST(SgiRefused, CutTables) {
    const SgiTestFile file = Sound();
    const std::string bytes = file.Bytes();
    EXPECT_EQ(RefusalOf(bytes.substr(0, SgiTestFile::kHeaderBytes)), kBadTables);
    EXPECT_EQ(RefusalOf(bytes.substr(0, file.LengthOffset(0) - 1)), kBadTables);
    EXPECT_EQ(RefusalOf(bytes.substr(0, file.LengthOffset(0))), kBadTables);
    EXPECT_EQ(RefusalOf(bytes.substr(0, file.DataOffset() - 1)), kBadTables);
    EXPECT_EQ(RefusalOf(bytes.substr(0, file.DataOffset())), kBadPixels);
}

// The rows

TEST(SgiRefused, AFileThatEndsWithinItsLastRow) {
    const std::string bytes = Sound().Bytes();
    ASSERT_EQ(RefusalOf(bytes), "read");
    EXPECT_EQ(RefusalOf(bytes.substr(0, bytes.size() - 1)), kBadPixels);
}

TEST(SgiRefused, ARowWithoutBytes) { EXPECT_EQ(RefusalOfRow(""), kBadPixels); }

TEST(SgiRefused, ARowThatBeginsBehindTheFile) {
    const SgiTestFile file = Sound();
    const std::string bytes = file.Bytes();
    for (const uint64_t start : {uint64_t{bytes.size()}, uint64_t{0x7FFFFFFF}, uint64_t{0x80000000},
                                 uint64_t{0xFFFFFFFE}, uint64_t{0xFFFFFFFF}}) {
        EXPECT_EQ(RefusalOf(WithEntry(bytes, file.StartOffset(5), start)), kBadPixels) << start;
    }
}

TEST(SgiRefused, ARowLongerThanTheFile) {
    const SgiTestFile file = Sound();
    const std::string bytes = file.Bytes();
    for (const uint64_t length : {uint64_t{4000}, uint64_t{0x7FFFFFFF}, uint64_t{0xFFFFFFFF}})
        EXPECT_EQ(RefusalOf(WithEntry(bytes, file.LengthOffset(5), length)), kBadPixels) << length;
}

TEST(SgiRefused, ARowLongerThanTheBuffer) {
    // Nothing but the length is wrong: the code ends early, and the file holds all of it.
    std::string code = Code({4, 9, 0});
    code.resize(CSgiImage::kMaxRowBytes, 'x');
    EXPECT_EQ(RefusalOfRow(code), "read");
    EXPECT_EQ(RefusalOfRow(code + 'x'), kBadPixels);
}

TEST(SgiRefused, ARowThatWritesPastItsLine) {
    EXPECT_EQ(RefusalOfRow(Code({4, 9, 0})), "read");
    EXPECT_EQ(RefusalOfRow(Code({5, 9, 0})), kBadPixels);
    EXPECT_EQ(RefusalOfRow(Code({4, 9, 1, 9, 0})), kBadPixels);
    EXPECT_EQ(RefusalOfRow(Code({0x84, 1, 2, 3, 4, 0})), "read");
    EXPECT_EQ(RefusalOfRow(Code({0x85, 1, 2, 3, 4, 5, 0})), kBadPixels);
    EXPECT_EQ(RefusalOfRow(Code({3, 9, 0x82, 1, 2, 0})), kBadPixels);
}

// The row is not the file's last: what follows it is no part of it, nor is what the row before it left.
std::string RefusalOfFirstRow(const std::string& code) {
    SgiTestFile file = Sound();
    file.rows[0] = code;
    return RefusalOf(file);
}

TEST(SgiRefused, ARowWhoseCodeGoesPastItsBytes) {
    EXPECT_EQ(RefusalOfFirstRow(Code({3})), kBadPixels);
    EXPECT_EQ(RefusalOfFirstRow(Code({0x82, 1})), kBadPixels);
}

TEST(SgiRefused, ARowWithoutItsClosingZero) {
    EXPECT_EQ(RefusalOfFirstRow(Code({4, 9})), kBadPixels);
    EXPECT_EQ(RefusalOfFirstRow(Code({0x84, 1, 2, 3, 4})), kBadPixels);
    EXPECT_EQ(RefusalOfFirstRow(Code({0x80, 0x80})), kBadPixels);
}

}  // namespace
}  // namespace tavrin
