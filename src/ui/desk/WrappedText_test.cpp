// SPDX-License-Identifier: Apache-2.0
// Texts in lines: broken between words, cut where there is no more room.
#include "ui/desk/WrappedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCut = "\xE2\x80\xA6";

// A letter is one wide, whatever bytes it has; control characters have no width.
float Letters(const std::string& text) {
    float width = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80 && byte >= 0x20) ++width;
    }
    return width;
}

std::vector<std::string> Wrap(const std::string& text, float width, size_t most = 100) {
    return WrapText(text, width, most, Letters);
}

TEST(WrappedText, ATextIsBrokenBetweenWords) {
    EXPECT_THAT(Wrap("the quick brown fox", 9), ElementsAre("the quick", "brown fox"));
    EXPECT_THAT(Wrap("the quick brown fox", 10), ElementsAre("the quick", "brown fox"));
    EXPECT_THAT(Wrap("the quick brown fox", 100), ElementsAre("the quick brown fox"));
}

TEST(WrappedText, ALongWordIsBrokenWithinAndEachLineTakesALetterAtLeast) {
    EXPECT_THAT(Wrap("abcdefgh ij", 3), ElementsAre("abc", "def", "gh", "ij"));
    EXPECT_THAT(Wrap("abc", 0), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Wrap("\xC3\xA4\xC3\xB6\xC3\xBC", 1), ElementsAre("\xC3\xA4", "\xC3\xB6", "\xC3\xBC"));
}

TEST(WrappedText, LineFeedsEndLinesAndEmptyOnesStay) {
    EXPECT_THAT(Wrap("a\n\nb\n", 10), ElementsAre("a", "", "b"));
    EXPECT_THAT(Wrap("", 10), IsEmpty());
}

TEST(WrappedText, WhereThereIsMoreTheLastLineEndsInAnEllipsis) {
    EXPECT_THAT(Wrap("one two three", 5, 2), ElementsAre("one", std::string("two") + kCut));
    EXPECT_THAT(Wrap("abcdefgh", 4, 1), ElementsAre(std::string("abc") + kCut));
    EXPECT_THAT(Wrap("a\nb\nc", 10, 2), ElementsAre("a", std::string("b") + kCut));
    EXPECT_THAT(Wrap("abc", 10, 0), IsEmpty());
}

TEST(WrappedText, ATextIsCutToTheWidth) {
    EXPECT_EQ(CutToWidth("abcdef", 6, Letters), "abcdef");
    EXPECT_EQ(CutToWidth("abcdef", 5, Letters), std::string("abcd") + kCut);
    EXPECT_EQ(CutToWidth("\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F", 3, Letters),
              std::string("\xC3\xA4\xC3\xB6") + kCut);
    EXPECT_EQ(CutToWidth("abcdef", 0, Letters), kCut);
}

TEST(WrappedText, AMegabyteCostsWhatIsShownOfIt) {
    size_t measured = 0;
    const auto measure = [&measured](const std::string& text) {
        measured += text.size();
        return Letters(text);
    };
    for (const std::string& piece :
         {std::string("word "), std::string("w"), std::string("\x01"), std::string("\x80")}) {
        std::string text;
        while (text.size() < 1 << 20) text += piece;
        measured = 0;
        EXPECT_LE(WrapText(text, 40, 10, measure).size(), 10U);
        CutToWidth(text, 40, measure);
        EXPECT_LT(measured, 400000U);
    }
}

TEST(WrappedText, BytesThatAreNoTextComeToAnEnd) {
    const std::string wild = "\x80\x80\xFF\xC3\xE2\x82 \xF0\x9F";
    for (float width = 0; width < 5; ++width) {
        std::string all;
        for (const std::string& line : Wrap(wild, width)) all += line;
        EXPECT_FALSE(all.empty());
    }
}

}  // namespace
}  // namespace tavrin
