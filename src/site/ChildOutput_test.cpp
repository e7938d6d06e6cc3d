// SPDX-License-Identifier: Apache-2.0
#include "site/ChildOutput.h"

#include <gtest/gtest.h>

#include <thread>

#include "support/Patience.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using std::chrono::milliseconds;

// What a log shows of these pieces.
std::string Shown(OutputBound bound, const std::vector<std::string>& pieces) {
    std::string shown;
    for (const std::string& piece : pieces) {
        if (bound.Passes(piece)) shown += piece;
    }
    return shown + bound.Rest();
}

std::string Notice(size_t bytes) {
    return "WARNING: " + std::to_string(bytes) +
           " bytes of output are left out here; limit.output in the site definitions sets how many megabytes "
           "are"
           " shown\n";
}

std::vector<std::string> Lines(int count) {
    std::vector<std::string> lines;
    for (int i = 0; i < count; ++i) lines.push_back("line " + std::to_string(10000 + i) + "\n");  // 11 bytes
    return lines;
}

TEST(OutputBound, WithinTheBoundAllPassesAndNothingFollows) {
    OutputBound bound(8);
    EXPECT_TRUE(bound.Passes("four"));
    EXPECT_TRUE(bound.Passes("four"));
    EXPECT_EQ(bound.Rest(), "");
}

TEST(OutputBound, ALittleMoreIsShownWithoutAWord) {
    EXPECT_EQ(Shown(OutputBound(5), {"one\n", "two\n", "three"}), "one\ntwo\nthree");
}

TEST(OutputBound, OfMuchMoreTheFirstAndTheLastLinesAreShownAndHowMuchIsLeftOut) {
    const std::string shown = Shown(OutputBound(22), Lines(1000));
    constexpr size_t kLastLines = OutputBound::kLastBytes / 11;
    std::string expected = "line 10000\nline 10001\n" + Notice((1000 - 2 - kLastLines) * 11);
    for (size_t i = 1000 - kLastLines; i < 1000; ++i) expected += "line " + std::to_string(10000 + i) + "\n";
    EXPECT_EQ(shown, expected);
}

TEST(OutputBound, TheNoticeBeginsALineOfItsOwn) {
    const std::string shown = Shown(OutputBound(4), {"half", std::string(10000, 'x')});
    EXPECT_EQ(shown,
              "half\n" + Notice(10000 - OutputBound::kLastBytes) + std::string(OutputBound::kLastBytes, 'x'));
}

TEST(OutputBound, AFileIsShownByTheSameRule) {
    const test::TempDir directory;
    std::string all;
    for (const std::string& line : Lines(1000)) all += line;
    const std::string path = directory.Write("errors.txt", all);
    EXPECT_EQ(OutputBound::OfFile(path, all.size()), all);
    EXPECT_EQ(OutputBound::OfFile(path, 22), Shown(OutputBound(22), Lines(1000)));
    EXPECT_EQ(OutputBound::OfFile(directory / "none", 22), "");
    EXPECT_EQ(OutputBound::OfFile(directory.Path(), 22), "");
}

TEST(OutputBound, AFileWithoutEndIsNotReadWhole) {
    const test::TempDir directory;
    const std::string path = directory.Write("errors.txt", "begun\n");
    std::filesystem::resize_file(path, 1ULL << 40);  // takes no room on the disk
    const std::string shown = OutputBound::OfFile(path, 6);
    EXPECT_TRUE(shown.starts_with("begun\n" + Notice((1ULL << 40) - 6 - OutputBound::kLastBytes)));
    EXPECT_LT(shown.size(), 2 * OutputBound::kLastBytes);
}

TEST(OutputBrake, WhoFindsNoRoomWaitsUntilAPieceHasArrived) {
    OutputBrake brake;
    for (size_t i = 0; i < OutputBrake::kMostPieces; ++i) ASSERT_TRUE(brake.Take(milliseconds(0)));
    EXPECT_FALSE(brake.Take(milliseconds(0)));
    std::thread other([&] { brake.Give(); });
    EXPECT_TRUE(brake.Take(test::kPatience));
    other.join();
    EXPECT_FALSE(brake.Take(milliseconds(0)));
}

TEST(OutputBrake, WhileItIsOffNobodyWaits) {
    OutputBrake brake;
    for (size_t i = 0; i < OutputBrake::kMostPieces; ++i) ASSERT_TRUE(brake.Take(milliseconds(0)));
    brake.SetOff(true);
    EXPECT_FALSE(brake.Take(std::chrono::hours(1)));
    EXPECT_TRUE(brake.IsOff());
    brake.Give();
    EXPECT_TRUE(brake.Take(std::chrono::hours(1))) << "there is room";
}

}  // namespace
}  // namespace tavrin
