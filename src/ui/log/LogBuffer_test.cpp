// SPDX-License-Identifier: Apache-2.0
#include "ui/log/LogBuffer.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <random>

namespace tavrin {
namespace {

constexpr size_t kPlenty = 1000;

// A text that the steps of a buffer are done to, as the window does.
class LogBufferTest : public testing::Test {
  protected:
    void Say(std::initializer_list<std::string_view> pieces) {
        for (const auto piece : pieces) buffer.Append(piece);
    }
    const std::string& Text(size_t most = kPlenty) {
        while (buffer.HasStep()) {
            const LogBuffer::Step step = buffer.Take(most);
            if (step.eraseText) text.clear();
            if (step.eraseLastLine) text.erase(text.rfind('\n') + 1);
            text += step.text;
        }
        return text;
    }

    LogBuffer buffer{kPlenty};
    std::string text;
};

TEST_F(LogBufferTest, PiecesOfALineAreJoinedAsTheyCome) {
    Say({"one ", "two", "\nthree"});
    EXPECT_EQ(Text(), "one two\nthree");
}

TEST_F(LogBufferTest, EachBareReturnRemovesTheLineJustCompleted) {
    Say({"kept\n10%\r20%\r"});
    EXPECT_EQ(Text(), "kept\n");
    Say({"30%\r40%"});
    EXPECT_EQ(Text(), "kept\n40%");
}

TEST_F(LogBufferTest, ABareReturnRemovesWhatTheTextHoldsOfTheLineAlready) {
    Say({"kept\n10"});
    EXPECT_EQ(Text(), "kept\n10");
    Say({"%\r20%"});
    EXPECT_EQ(Text(), "kept\n20%");
}

TEST_F(LogBufferTest, AReturnAfterALineEndLeavesTheLineBeforeIt) {
    Say({"kept\n", "\r"});
    EXPECT_EQ(Text(), "kept\n");
}

TEST_F(LogBufferTest, AReturnWithALineFeedIsOneLineEnd) {
    Say({"one\r\ntwo\r\n"});
    EXPECT_EQ(Text(), "one\ntwo\n");
}

TEST_F(LogBufferTest, AReturnAtTheEndOfAPieceIsBareEvenIfItsLineFeedFollows) {
    Say({"kept\nlost\r", "\nnext"});
    EXPECT_EQ(Text(), "kept\n\nnext");
}

TEST_F(LogBufferTest, ABellIsCountedAndLeftOutAndPartsReturnFromLineFeed) {
    EXPECT_FALSE(buffer.TakeBell());
    Say({"\a"});
    EXPECT_FALSE(buffer.HasStep());
    EXPECT_TRUE(buffer.TakeBell());
    EXPECT_FALSE(buffer.TakeBell());
    Say({"one\atwo\r\a\nthree"});
    EXPECT_EQ(Text(), "\nthree");
}

TEST_F(LogBufferTest, ACharacterSplitBetweenPiecesWaitsUntilItIsWhole) {
    Say({"a\xE2"});
    EXPECT_EQ(Text(), "a");
    Say({"\x82"});
    EXPECT_EQ(Text(), "a");
    EXPECT_TRUE(buffer.HasText());
    Say({"\xACz"});
    EXPECT_EQ(Text(), "a\xE2\x82\xACz");
}

TEST_F(LogBufferTest, BytesThatBeginACharacterNeverCompletedComeWithWhatFollows) {
    Say({"caf\xE9"});
    EXPECT_EQ(Text(), "caf");
    Say({"\n"});
    EXPECT_EQ(Text(), "caf\xE9\n");
    Say({"\x82\x82\x82\xFF"});  // these begin nothing and wait for nothing
    EXPECT_EQ(Text(), "caf\xE9\n\x82\x82\x82\xFF");
}

TEST_F(LogBufferTest, NoStepEndsWithinACharacter) {
    std::string said;
    for (int i = 0; i < 20; ++i) said += "\xF0\x9F\x98\x80\xC3\xA9x";
    buffer.Append(said);
    while (buffer.HasStep()) {
        const LogBuffer::Step step = buffer.Take(5);
        EXPECT_LE(step.text.size(), 5u);
        EXPECT_NE(step.text.front() & 0xC0, 0x80);
        text += step.text;
    }
    EXPECT_EQ(text, said);
}

TEST_F(LogBufferTest, WhatWaitsAndExceedsTheLimitLosesItsOldestWholeLinesAndAllOfTheTextBefore) {
    buffer = LogBuffer(40);
    Say({"early\n"});
    EXPECT_EQ(Text(), "early\n");
    for (char digit = '0'; digit <= '9'; ++digit) buffer.Append(std::string("line ") + digit + '\n');
    EXPECT_TRUE(buffer.ErasesText());
    EXPECT_EQ(Text(), "line 5\nline 6\nline 7\nline 8\nline 9\n");
}

TEST_F(LogBufferTest, ALineThatAloneExceedsTheLimitKeepsItsEndFromAWholeCharacterOn) {
    buffer = LogBuffer(8);
    Say({"abc\xC3\xA9\xC3\xA9\xC3\xA9xyz"});
    EXPECT_EQ(Text(), "\xC3\xA9\xC3\xA9xyz");
}

TEST_F(LogBufferTest, AReturnInALineCutByTheLimitRemovesItAll) {
    buffer = LogBuffer(32);
    for (int i = 0; i < 100; ++i) buffer.Append("0123456789");
    Say({"\rend"});
    EXPECT_EQ(Text(), "end");
}

TEST_F(LogBufferTest, ClearForgetsAllThatWaits) {
    Say({"kept\n"});
    Text();
    Say({"\rlost\n\a"});
    buffer.Clear();
    EXPECT_FALSE(buffer.HasStep());
    EXPECT_FALSE(buffer.HasText());
    EXPECT_FALSE(buffer.TakeBell());
}

// The rules done to the text directly, one piece after the other.
void AppendPlainly(std::string& text, const std::string& piece) {
    for (size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] == '\a') continue;
        if (piece[i] != '\r') {
            text += piece[i];
        } else if (i + 1 == piece.size() || piece[i + 1] != '\n') {
            text.erase(text.rfind('\n') + 1);
        }
    }
}

TEST_F(LogBufferTest, TheTextIsTheSameHoweverOftenStepsAreTakenAndHoweverSmall) {
    std::mt19937 random(1);
    const auto upTo = [&random](size_t most) { return random() % (most + 1); };
    buffer = LogBuffer(1'000'000);
    std::string expected;
    for (int round = 0; round < 20'000; ++round) {
        std::string piece;
        for (size_t left = upTo(8); left > 0; --left) piece += "ab\n\r\a\r\nc"[upTo(7)];
        buffer.Append(piece);
        AppendPlainly(expected, piece);
        if (upTo(3) == 0) {
            ASSERT_EQ(Text(4 + upTo(20)), expected) << "round " << round;
        }
    }
}

}  // namespace
}  // namespace tavrin
