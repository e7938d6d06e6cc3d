// SPDX-License-Identifier: Apache-2.0
// The scanner's awareness of comments, quotes and escapes, armed by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "codegen/Mex.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::ExitedWithCode;

class MexScanner : public testing::Test {
  protected:
    MexScanner() {
        mex.SetVariable("x", "v");
        CMex::Syntax& tokens = mex.Tokens();
        tokens.openComments = {"/*"};
        tokens.closeComments = {"*/"};
        tokens.lineComments = {"//", "#"};
        tokens.escapes = {'\\'};
        tokens.quotes = {'"', '\''};
        tokens.keepComments = true;
    }

    std::string Expanded(std::string_view text) {
        std::string result = "stale";
        mex.Expand(text, result);
        return result;
    }

    std::vector<std::string> Lines(std::vector<std::string> text) {
        mex.LineBuffer() = std::move(text);
        std::vector<std::string> lines;
        mex.ExpandLines(lines);
        return lines;
    }

    CMex mex;
};

TEST_F(MexScanner, PlainTextIsExpanded) {
    EXPECT_EQ(Expanded("x + ${x}1 * xx"), "v + v1 * xx");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
}

// Escapes

TEST_F(MexScanner, AnEscapeIsDroppedAndProtectsOneCharacter) {
    EXPECT_EQ(Expanded("\\x x"), "x v");
    EXPECT_EQ(Expanded("\\${x}"), "${v}");
    EXPECT_EQ(Expanded("\\\"x\\\""), "\"v\"");
    EXPECT_EQ(Expanded("\\\\x"), "\\v");
}

TEST_F(MexScanner, AnEscapedCharacterOpensNoComment) { EXPECT_EQ(Expanded("\\#x \\/*x"), "#v /*v"); }

TEST_F(MexScanner, AnEscapeAtTheEndProtectsTheNextTextsFirstCharacter) {
    EXPECT_EQ(Expanded("a\\"), "a");
    EXPECT_EQ(mex.m_state, CMex::kEscaped);
    EXPECT_EQ(Expanded("\"x"), "\"v");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
}

// Quotes

TEST_F(MexScanner, QuotedRunsAreCopied) {
    EXPECT_EQ(Expanded("x \"x ${x} /* \\ # \" x"), "v \"x ${x} /* \\ # \" v");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
}

TEST_F(MexScanner, AnyQuoteCharacterClosesAQuotedRun) { EXPECT_EQ(Expanded("\"x' x"), "\"x' v"); }

TEST_F(MexScanner, AQuotedRunSpansTexts) {
    EXPECT_EQ(Expanded("x \"x"), "v \"x");
    EXPECT_EQ(mex.m_state, CMex::kInQuotes);
    EXPECT_EQ(Expanded("x\" x"), "x\" v");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
}

// Comments

TEST_F(MexScanner, CommentsAreKeptAsTheyStand) {
    EXPECT_EQ(Expanded("x /* x \"${x}\" // */ x"), "v /* x \"${x}\" // */ v");
}

TEST_F(MexScanner, CommentsAreDroppedWithoutTheFlag) {
    mex.Tokens().keepComments = false;
    EXPECT_EQ(Expanded("x /* x */ x"), "v  v");
}

TEST_F(MexScanner, ACommentSpansTexts) {
    EXPECT_EQ(Expanded("x /* x"), "v /* x");
    EXPECT_EQ(mex.m_state, CMex::kInComment);
    EXPECT_EQ(Expanded("x"), "x");
    EXPECT_EQ(Expanded("x */x"), "x */v");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
}

TEST_F(MexScanner, ADroppedCommentSpansTexts) {
    mex.Tokens().keepComments = false;
    EXPECT_EQ(Expanded("x /* x"), "v ");
    EXPECT_EQ(Expanded("x"), "");
    EXPECT_EQ(Expanded("x */x"), "v");
}

TEST_F(MexScanner, AnOpenCommentInsideACommentOpensNothing) {
    EXPECT_EQ(Expanded("/* /* */ x"), "/* /* */ v");
}

TEST_F(MexScanner, TheOpenTokenIsPassedOverWhole) { EXPECT_EQ(Expanded("/*/ x */ x"), "/*/ x */ v"); }

TEST_F(MexScanner, ALineCommentEndsWithItsText) {
    EXPECT_EQ(Expanded("x // x \" /*"), "v // x \" /*");
    EXPECT_EQ(mex.m_state, CMex::kPlain);
    EXPECT_EQ(Expanded("x # x"), "v # x");
    EXPECT_EQ(Expanded("x"), "v");
}

TEST_F(MexScanner, ALineCommentIsDroppedWithoutTheFlag) {
    mex.Tokens().keepComments = false;
    EXPECT_EQ(Expanded("x // x"), "v ");
    EXPECT_EQ(Expanded("x"), "v");
}

TEST_F(MexScanner, AStrayCloseDropsAllThatFollows) {
    EXPECT_EQ(Expanded("x */ x"), "v ");
    EXPECT_EQ(mex.m_state, CMex::kAfterStrayClose);
    EXPECT_EQ(Expanded("x /* x */ \" // x"), "");
    EXPECT_EQ(mex.m_state, CMex::kAfterStrayClose);
    mex.m_state = CMex::kPlain;
    EXPECT_EQ(Expanded("x"), "v");
}

// The order in which a character is tried

TEST_F(MexScanner, EscapesComeBeforeQuotesAndQuotesBeforeComments) {
    mex.Tokens().escapes = {'@'};
    mex.Tokens().quotes = {'@', '%'};
    mex.Tokens().openComments = {"%"};
    EXPECT_EQ(Expanded("@x"), "x");
    EXPECT_EQ(Expanded("%x% x"), "%x% v");
}

TEST_F(MexScanner, OpeningTokensComeBeforeClosingAndLineTokens) {
    mex.Tokens().openComments = {"--"};
    mex.Tokens().closeComments = {"--", "=="};
    mex.Tokens().lineComments = {"=="};
    EXPECT_EQ(Expanded("-- x -- x"), "-- x -- v");
    EXPECT_EQ(Expanded("== x"), "");
    EXPECT_EQ(mex.m_state, CMex::kAfterStrayClose);
}

TEST_F(MexScanner, TheFirstTokenOfAListThatFitsWins) {
    mex.Tokens().openComments = {"/", "/*"};
    mex.Tokens().closeComments = {"*"};
    EXPECT_EQ(Expanded("/* x"), "/* v");
    mex.Tokens().openComments = {"/*", "/"};
    EXPECT_EQ(Expanded("/* x"), "/* x");
}

TEST_F(MexScanner, TokensComeBeforeVariables) {
    mex.Tokens().lineComments = {"x"};
    EXPECT_EQ(Expanded("x x"), "x x");
    EXPECT_EQ(Expanded("y ${x}"), "y v");
}

TEST_F(MexScanner, AWordIsCopiedWholeSoThatNoTokenBeginsInsideIt) {
    mex.Tokens().lineComments = {"rem"};
    EXPECT_EQ(Expanded("harem x"), "harem v");
    EXPECT_EQ(Expanded("rem x"), "rem x");
}

// Lines

TEST_F(MexScanner, LinesBeginInThePlainStateAndCarryItOn) {
    mex.m_state = CMex::kInComment;
    EXPECT_THAT(Lines({"x /* x", "x", "*/ x"}), ElementsAre("v /* x", "x", "*/ v"));
    EXPECT_THAT(Lines({"x \"x", "x\" x", "x # x", "x"}), ElementsAre("v \"x", "x\" v", "v # x", "v"));
}

TEST_F(MexScanner, LinesAfterAStrayCloseAreEmptyLines) {
    EXPECT_THAT(Lines({"x", "*/ x", "x"}), ElementsAre("v", "", ""));
    EXPECT_THAT(Lines({"x"}), ElementsAre("v"));
}

TEST_F(MexScanner, TheLineInWhichAStateWasEnteredIsKnown) {
    Lines({"x", "x", "a /* b", "c"});
    EXPECT_EQ(mex.StateStart(), 2);
    Lines({"x", "\"open", "still", "open"});
    EXPECT_EQ(mex.StateStart(), 1);
    Lines({"x", "x", "x", "*/"});
    EXPECT_EQ(mex.StateStart(), 3);
    Lines({"x", "\\"});
    EXPECT_EQ(mex.StateStart(), 1);
    Lines({"x", "x", "# x"});
    EXPECT_EQ(mex.StateStart(), 2);
}

TEST_F(MexScanner, ResettingDisarmsTheScanner) {
    Lines({"", "/* x"});
    mex.Reset();
    EXPECT_TRUE(mex.Tokens().IsBare());
    EXPECT_FALSE(mex.Tokens().keepComments);
    EXPECT_EQ(mex.StateStart(), 0);
    mex.SetVariable("x", "v");
    EXPECT_EQ(Expanded("\"x\" /* x"), "\"v\" /* v");
}

// States that there are not

TEST_F(MexScanner, AnUnknownStateEndsTheProcess) {
    for (const int state : {-1, 6, 1000}) {
        const std::string message = "CMex::Expand: unknown m_state " + std::to_string(state) + "\n";
        mex.m_state = state;
        EXPECT_EXIT(
            {
                ::dup2(STDERR_FILENO, STDOUT_FILENO);  // where the test looks for the message
                Expanded("x");
            },
            ExitedWithCode(255), message);
    }
}

TEST(Mex, AnUnknownStateEndsTheProcessWithNothingArmedToo) {
    CMex mex;
    mex.m_state = 7;
    std::string result;
    EXPECT_EXIT(
        {
            ::dup2(STDERR_FILENO, STDOUT_FILENO);
            mex.Expand("x", result);
        },
        ExitedWithCode(255), "unknown m_state 7");
}

}  // namespace
}  // namespace tavrin
