// SPDX-License-Identifier: Apache-2.0
#include "ui/base/DocumentText.h"

#include <gtest/gtest.h>

#include "ui/base/Text.h"

namespace tavrin {
namespace {

std::string Again(const std::string& bytes) { return Encoded(Decoded(bytes)); }

TEST(DocumentText, WhateverTheBytesAreTheyComeBack) {
    for (const std::string& bytes :
         {std::string(), std::string("plain"), std::string("\xE6\x9C\xA8"), std::string("caf\xE9"),
          std::string("\xC3"), std::string("\xEF\xBB\xBFmark"), std::string("\xED\xA0\x80"),
          std::string("\xC0\x80"), std::string("a\0b", 3), std::string("a\r\nb\n\t"),
          std::string("\xEF\xBF\xBD\xFF")}) {
        EXPECT_EQ(Again(bytes), bytes);
    }
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    EXPECT_EQ(Again(all), all);
}

TEST(DocumentText, BytesThatAreNoUtf8AreLetters) {
    EXPECT_EQ(Bytes(Decoded("caf\xE9").text), "caf\xC3\xA9");
    EXPECT_TRUE(Decoded("caf\xE9").isLatin1);
    EXPECT_FALSE(Decoded("caf\xC3\xA9").isLatin1);
}

TEST(DocumentText, LettersThatAByteCannotHoldMakeItUtf8) {
    EXPECT_EQ(Encoded({QString::fromUtf8("caf\xC3\xA9!"), true}), "caf\xE9!");
    EXPECT_EQ(Encoded({QString::fromUtf8("\xE2\x82\xAC\xC3\xA9"), true}), "\xE2\x82\xAC\xC3\xA9");
    EXPECT_EQ(Encoded({QString::fromUtf8("\xC3\x83\xC2\xA9"), true}), "\xC3\x83\xC2\xA9")
        << "as bytes they would be read as another letter";
}

TEST(DocumentText, EveryEndOfALineBecomesABlank) {
    EXPECT_EQ(Bytes(OnOneLine(QString::fromUtf8("a\r\nb\nc\rd\ve\ff\xC2\x85g\xE2\x80\xA8h\xE2\x80\xA9i"))),
              "a b c d e f g h i");
    EXPECT_EQ(Bytes(OnOneLine("a\tb  c")), "a\tb  c");
}

TEST(DocumentText, AToolTipShowsMarksAsTheyAre) {
    EXPECT_EQ(Bytes(PlainToolTip("a_1_i & b")), "a_1_i & b");
    EXPECT_EQ(Bytes(PlainToolTip("<b>bold</b>")), "<qt>&lt;b&gt;bold&lt;/b&gt;</qt>");
    EXPECT_LT(PlainToolTip(QString(1'000'000, 'm')).size(), 10'000);
}

}  // namespace
}  // namespace tavrin
