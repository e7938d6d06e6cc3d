// SPDX-License-Identifier: Apache-2.0
#include "render/PictureMessage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The verbs of what a stream holds, handed on in pieces of that size.
std::vector<std::string> VerbsOf(const std::string& stream, size_t piece) {
    PictureMessageReader reader;
    std::vector<std::string> verbs;
    for (size_t at = 0; at < stream.size(); at += piece) {
        reader.Add(std::string_view(stream).substr(at, piece));
        while (const auto message = reader.Next()) verbs.push_back(message->Verb());
    }
    return verbs;
}

TEST(PictureMessage, IsALineOfWordsInTheOrderOfTheirKeys) {
    PictureMessage message("render");
    message.Set("number", 12).Set("name", "marble").Set("desk", "/tmp/a b");
    EXPECT_EQ(message.Line(), "render desk=/tmp/a%20b name=marble number=12\n");
}

TEST(PictureMessage, ComesBackWithEveryByteThatAValueMayHold) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    PictureMessage message("render");
    message.Set("text", bytes).Set("name", "").Set("number", -3);
    std::string line = message.Line();
    ASSERT_EQ(line.back(), '\n');
    line.pop_back();
    for (const char c : line) EXPECT_TRUE(static_cast<unsigned char>(c) >= ' ' && c != '\x7f');
    const auto back = PictureMessage::Parse(line);
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, message);
    EXPECT_EQ(back->Text("text"), bytes);
    EXPECT_TRUE(back->Has("name"));
    EXPECT_FALSE(back->Has("file"));
    EXPECT_EQ(back->Text("file"), "");
}

TEST(PictureMessage, ANumberIsAWholeOne) {
    const auto numberOf = [](const std::string& text) {
        return PictureMessage("x").Set("n", text).Number("n");
    };
    EXPECT_EQ(numberOf("12"), 12);
    EXPECT_EQ(numberOf("-12"), -12);
    EXPECT_EQ(numberOf("9223372036854775807"), INT64_MAX);
    for (const char* text : {"", "1x", " 1", "1.5", "9223372036854775808", "0x1", "+1"})
        EXPECT_EQ(numberOf(text), std::nullopt) << text;
    EXPECT_EQ(PictureMessage("x").Number("n"), std::nullopt);
}

TEST(PictureMessage, WhatIsNoneIsRefused) {
    for (const char* line :
         {"", " ", "Render", "render ", "render  a=b", "render a", "render =b", "render A=b", "render a=%",
          "render a=%2", "render a=%zz", "render a=%2 b=c", "render a=\tb", "render a=\x7f", "ren der",
          "render a=b ", "render-x", "\xc3\xa9"}) {
        const auto message = PictureMessage::Parse(line);
        // A blank at the end is the end of the last word.
        if (std::string(line) == "render " || std::string(line) == "render a=b ") {
            EXPECT_TRUE(message) << line;
            continue;
        }
        EXPECT_FALSE(message) << line;
    }
}

TEST(PictureMessage, AValueThatIsTooLongIsCutAndALineNeverTooLong) {
    const std::string longText(3 * PictureMessage::kLongestValue, ' ');
    PictureMessage message("render");
    for (char key = 'a'; key <= 'z'; ++key) message.Set(std::string(1, key), longText);
    EXPECT_EQ(message.Text("a").size(), PictureMessage::kLongestValue);
    const std::string line = message.Line();
    EXPECT_LE(line.size(), PictureMessage::kLongestLine);
    const auto back = PictureMessage::Parse(std::string_view(line).substr(0, line.size() - 1));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->Text("a"), message.Text("a"));
    EXPECT_FALSE(back->Has("z"));
}

TEST(PictureMessage, TooManyWordsOrTooLongOnesAreNone) {
    std::string line = "render";
    for (char first = 'a'; first <= 'b'; ++first)
        for (char key = 'a'; key <= 'z'; ++key) line += std::string(" ") + first + key + "=1";
    EXPECT_FALSE(PictureMessage::Parse(line));
    EXPECT_FALSE(PictureMessage::Parse("render a=" + std::string(PictureMessage::kLongestValue + 1, 'x')));
    EXPECT_TRUE(PictureMessage::Parse("render a=" + std::string(PictureMessage::kLongestValue, 'x')));
}

TEST(PictureMessageReader, FindsTheMessagesWhereverTheStreamIsCut) {
    const std::string stream = "comeup desk=a\nno message\n\nforget number=3\nlive";
    for (size_t piece = 1; piece <= stream.size(); ++piece)
        EXPECT_THAT(VerbsOf(stream, piece), ElementsAre("comeup", "forget")) << piece;
}

TEST(PictureMessageReader, ALineThatIsTooLongIsPassedOverWhole) {
    std::string stream = "comeup a=1\nrender a=";
    stream += std::string(10 * PictureMessage::kLongestLine, 'x') + "\nforget a=2\n";
    for (const size_t piece : {size_t{1000}, PictureMessage::kLongestLine, stream.size()})
        EXPECT_THAT(VerbsOf(stream, piece), ElementsAre("comeup", "forget")) << piece;
}

TEST(PictureMessageReader, NothingThatComesBreaksIt) {
    std::mt19937 random(7);
    const std::string letters = "abz= %2A\n\x01\xff";
    for (int round = 0; round < 2000; ++round) {
        std::string stream;
        for (size_t length = random() % 60; length > 0; --length)
            stream += letters[random() % letters.size()];
        PictureMessageReader reader;
        reader.Add(stream);
        while (const auto message = reader.Next()) {
            const std::string line = message->Line();
            EXPECT_EQ(PictureMessage::Parse(std::string_view(line).substr(0, line.size() - 1)), *message);
        }
    }
    EXPECT_THAT(VerbsOf("\n\n\n", 1), IsEmpty());
}

}  // namespace
}  // namespace tavrin
