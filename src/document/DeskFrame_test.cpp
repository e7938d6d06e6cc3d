// SPDX-License-Identifier: Apache-2.0
// Frames and notes as the words of a document.
#include "document/DeskFrame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::Not;
using Kind = DeskFrame::Kind;

DeskFrame NoteOf(const std::string& text) {
    return {.kind = Kind::kNote,
            .color = 3,
            .left = -12.5F,
            .bottom = 40,
            .width = 160,
            .height = 80.25F,
            .text = text};
}

TEST(DeskFrame, ItsWordsTellKindColourPlaceSizeAndText) {
    EXPECT_EQ(WordsOf(NoteOf("two words")), "note 3 -12.500000 40.000000 160.000000 80.250000 two words");
    DeskFrame frame = NoteOf("");
    frame.kind = Kind::kFrame;
    EXPECT_EQ(WordsOf(frame), "frame 3 -12.500000 40.000000 160.000000 80.250000 ");
}

TEST(DeskFrame, AnyTextComesBackFromItsWords) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const std::string& text :
         {std::string(), std::string(" blanks  round it "), std::string("lines\nand\r\nmore\n"),
          std::string("100% of %0A, %"), std::string("\"quoted\" \\ # {}"), std::string("Gr\xC3\xBC\xC3\x9F"),
          all}) {
        const std::string words = WordsOf(NoteOf(text));
        EXPECT_THAT(words, Not(HasSubstr("\n")));
        const auto read = FrameOf(words);
        ASSERT_TRUE(read) << words;
        EXPECT_EQ(*read, NoteOf(text)) << words;
    }
}

TEST(DeskFrame, APercentSignThatNoDigitsFollowStandsForItself) {
    const auto read = FrameOf("note 0 0 0 100 100 50% %zz %4 %4a%");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->text, "50% %zz %4 J%");
}

TEST(DeskFrame, WordsThatAreNoneGiveNothing) {
    for (const char* words :
         {"", " ", "box 0 0 0 100 100 x", "frame", "frame x 0 0 100 100", "frame 0 0 0 100",
          "note 0 0 a 100 100 x", "note 0 nan 0 100 100 x", "note 0 0 inf 100 100 x", "note 0 0 0 -inf 100 x",
          "note 0 0 0 100 1e99 x", "Frame 0 0 0 100 100 x", "frame0 0 0 100 100 x"}) {
        EXPECT_FALSE(FrameOf(words)) << words;
    }
}

TEST(DeskFrame, NumbersBeyondTheirBoundsAreBroughtIntoThem) {
    const auto wild = FrameOf("frame 99 -1e30 1e30 -5 1e30 wild");
    ASSERT_TRUE(wild);
    EXPECT_EQ(wild->color, DeskFrame::kColors - 1);
    EXPECT_EQ(wild->left, -DeskFrame::kFarthest);
    EXPECT_EQ(wild->bottom, DeskFrame::kFarthest);
    EXPECT_EQ(wild->width, DeskFrame::kLeastSide);
    EXPECT_EQ(wild->height, DeskFrame::kMostSide);
    const auto low = FrameOf("frame -3 0 0 100 0 low");
    ASSERT_TRUE(low);
    EXPECT_EQ(low->color, 0);
    EXPECT_EQ(low->height, DeskFrame::kLeastSide);
}

TEST(DeskFrame, ThereAreNoMoreThanADocumentHas) {
    DeskFrames frames;
    for (size_t i = 0; i < kMostFrames; ++i) ASSERT_TRUE(AddFrame(frames, {}));
    EXPECT_FALSE(AddFrame(frames, {}));
    EXPECT_EQ(frames.size(), kMostFrames);
}

TEST(DeskFrame, ANewOneComesBehindTheOthers) {
    DeskFrames frames;
    for (const char* text : {"a", "b", "c"}) AddFrame(frames, NoteOf(text));
    frames.erase(2);
    AddFrame(frames, NoteOf("d"));
    EXPECT_EQ(frames.rbegin()->first, 4);
    EXPECT_EQ(frames.rbegin()->second.text, "d");
}

}  // namespace
}  // namespace tavrin
