// SPDX-License-Identifier: Apache-2.0
#include "text/VisibleText.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

// As one piece; in single bytes it has to come to the same.
std::string Shown(std::string_view text) {
    VisibleText whole;
    std::string shown = whole.Add(text);
    shown += whole.End();
    VisibleText bytes;
    std::string again;
    for (const char& byte : text) again += bytes.Add(std::string_view(&byte, 1));
    again += bytes.End();
    EXPECT_EQ(again, shown);
    return shown;
}

TEST(VisibleText, LettersLineEndsAndTabsPass) {
    EXPECT_EQ(Shown("one\ttwo\nthree\r\nfour"), "one\ttwo\nthree\nfour");
    constexpr std::string_view kText =
        "Gr\xc3\xbc\xc3\x9f"
        "e \xe2\x82\xac \xe2\x80\x9c \xe2\x80\xa6 \xf0\x9f\x98\x80 \xc2\xa0 \xd8\xa7 \xc3\x9b.";
    EXPECT_EQ(Shown(kText), kText);
}

TEST(VisibleText, ControlCharactersAreShown) {
    EXPECT_EQ(Shown(std::string_view("\x1b[2J\a\b\0\x7f\v\f", 10)), "\\x1b[2J\\x07\\x08\\x00\\x7f\\x0b\\x0c");
    EXPECT_EQ(Shown("a\x9b"
                    "2J"),
              "a\\x9b2J");
    EXPECT_EQ(Shown("|\xc2\x9b"
                    "2J"),
              "|\\u{9b}2J");
}

TEST(VisibleText, SignsThatTurnTheDirectionOfWritingAreShown) {
    EXPECT_EQ(Shown("a\xe2\x80\xae"
                    "b\xe2\x81\xa6"
                    "c\xd8\x9c"
                    "d\xe2\x80\x8f"),
              "a\\u{202e}b\\u{2066}c\\u{61c}d\\u{200f}");
    EXPECT_EQ(Shown("a\xe2\x80"), "a\xe2\x80") << "cut short, it is none";
}

TEST(VisibleText, ACarriageReturnWithinALineIsShown) {
    EXPECT_EQ(Shown("rm -rf /\rls     \n"), "rm -rf /\\rls     \n");
    EXPECT_EQ(Shown("one\r\r\ntwo\r"), "one\\r\ntwo\\r");
}

TEST(VisibleText, APercentageMayReplaceOneOnALineOfItsOwn) {
    EXPECT_EQ(Shown("rendering\n\r   5%\r 100%\nwrote it\n"), "rendering\n\r   5%\r 100%\nwrote it\n");
    EXPECT_EQ(Shown("rm\r   5%\n"), "rm\\r   5%\n");
    EXPECT_EQ(Shown("\r   5%rm\r  10%\n"), "\r   5%rm\\r  10%\n");
    EXPECT_EQ(Shown("\r   5x\n\r12345%\n\r%\n"), "\\r   5x\n\\r12345%\n\\r%\n");
}

TEST(VisibleText, InOneLineBreaksAreShownToo) {
    EXPECT_EQ(VisibleOneLine("a\nb\tc\r\nd\xe2\x80\xae"), "a\\nb\\tc\\r\\nd\\u{202e}");
    EXPECT_EQ(VisibleOneLine("\r   5%"), "\\r   5%") << "there is no line whose progress it could be";
}

}  // namespace
}  // namespace tavrin
