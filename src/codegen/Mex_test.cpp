// SPDX-License-Identifier: Apache-2.0
// The macro expander as the system uses it: words and ${...}, no tokens armed.
#include "codegen/Mex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <random>

namespace tavrin {
namespace {

using testing::ElementsAre;

using Pairs = std::initializer_list<std::pair<const char*, const char*>>;

CMex MexWith(Pairs variables) {
    CMex mex;
    for (const auto& [name, value] : variables) mex.SetVariable(name, value);
    return mex;
}

std::string Expanded(Pairs variables, std::string_view text) {
    CMex mex = MexWith(variables);
    std::string result = "stale";
    mex.Expand(text, result);
    return result;
}

TEST(Mex, ATemplateLineBecomesCode) {
    const Pairs variables = {{"out", "Mix_2_out"}, {"a", "Noise_1_out"}, {"b", "0.5"}, {"TAVRN_BoxWid", "2"}};
    EXPECT_EQ(Expanded(variables, "out = a * b; // box number ${TAVRN_BoxWid}"),
              "Mix_2_out = Noise_1_out * 0.5; // box number 2");
    EXPECT_EQ(Expanded(variables, "about = a;"), "about = Noise_1_out;");
}

TEST(Mex, TheEmptyTextStaysEmpty) {
    CMex mex = MexWith({{"", "x"}});
    mex.m_state = CMex::kInComment;
    std::string result = "stale";
    mex.Expand("", result);
    EXPECT_EQ(result, "");
    EXPECT_EQ(mex.m_state, CMex::kInComment);
}

TEST(Mex, AWordMustMatchWholeAndWithCase) {
    const Pairs variables = {{"x", "1"}};
    EXPECT_EQ(Expanded(variables, "x X xx x_ _x x1 2x (x) x.x -x"), "1 X xx x_ _x x1 2x (1) 1.1 -1");
}

TEST(Mex, BracesPlaceAMacroBesideWordCharacters) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "${x}1 a_${x} ${x}${x} 2${x}"), "v1 a_v vv 2v");
}

TEST(Mex, ANameThatIsNoWordNeedsBraces) {
    EXPECT_EQ(Expanded({{"a.b", "v"}, {"c d", "w"}}, "a.b ${a.b} c d ${c d}"), "a.b v c d w");
}

TEST(Mex, InBracesTheNameMustMatchWholeAndWithCase) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "${X} ${xx} ${x }"), "${X} ${xx} ${v }");
}

TEST(Mex, AnUnknownNameInBracesIsScannedAsText) {
    EXPECT_EQ(Expanded({{"x", "v"}, {"y", "w"}}, "${x y} ${z}"), "${v w} ${z}");
}

TEST(Mex, AnOpenBraceIsCopiedAndItsNameStandsAlone) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "${x"), "${v");
    EXPECT_EQ(Expanded({{"x", "v"}}, "${x + ${y"), "${v + ${y");
    EXPECT_EQ(Expanded({{"x", "v"}}, "${"), "${");
}

TEST(Mex, TheFirstClosingBraceEndsTheName) {
    EXPECT_EQ(Expanded({{"a${b", "v"}}, "${a${b}}"), "v}");
    EXPECT_EQ(Expanded({{"b", "w"}}, "${a${b}}"), "${aw}");
}

TEST(Mex, TheClosingBraceMayStandFarBehind) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "${x; if (x) { x }"), "${v; if (v) { v }");
}

TEST(Mex, ADollarSignAloneIsText) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "$x $ $$x ${x}$ $ {x}"), "$v $ $$v v$ $ {v}");
}

TEST(Mex, AnEmptyNameIsReachedByEmptyBracesAlone) {
    EXPECT_EQ(Expanded({{"", "v"}}, "a ${} {} $ ."), "a v {} $ .");
    EXPECT_EQ(Expanded({{"x", "v"}}, "${}"), "${}");
}

TEST(Mex, TheFirstValueOfANameIsUsed) {
    EXPECT_EQ(Expanded({{"x", "first"}, {"x", "second"}}, "x ${x}"), "first first");
}

TEST(Mex, ValuesAreNotScannedAgain) { EXPECT_EQ(Expanded({{"x", "y ${y} x"}, {"y", "w"}}, "x"), "y ${y} x"); }

TEST(Mex, AnEmptyValueRemovesTheName) { EXPECT_EQ(Expanded({{"x", ""}}, "[x][${x}]"), "[][]"); }

TEST(Mex, DigitsBeginWords) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "2x"), "2x");
    EXPECT_EQ(Expanded({{"2x", "v"}}, "2x"), "v");
}

TEST(Mex, BytesAbove127AreNoWordCharacters) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "\xC3\xA4x\xFFx"), "\xC3\xA4v\xFFv");
    EXPECT_EQ(Expanded({{"\xC3\xA4", "v"}}, "\xC3\xA4 ${\xC3\xA4}"), "\xC3\xA4 v");
}

TEST(Mex, ZeroBytesAndLineEndsAreCopied) {
    EXPECT_EQ(Expanded({{"x", "v"}}, std::string_view("x\0x\r\nx\t", 7)), std::string("v\0v\r\nv\t", 7));
}

TEST(Mex, CommentsAndQuotesOfTheTargetLanguageAreExpandedToo) {
    EXPECT_EQ(Expanded({{"x", "v"}}, "\"x\" 'x' // x /* x */ \\x"), "\"v\" 'v' // v /* v */ \\v");
}

TEST(Mex, WithoutVariablesTheTextStands) { EXPECT_EQ(Expanded({}, "a ${b} c ${d"), "a ${b} c ${d"); }

TEST(Mex, ManyOpenBracesWithoutAClosingOneAreText) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 100000; ++i) {
        text += "${x ";
        expected += "${v ";
    }
    EXPECT_TRUE(Expanded({{"x", "v"}}, text) == expected);
}

TEST(Mex, ManyOpenBracesBeforeAFarClosingOneAreText) {
    std::string text;
    std::string expected;
    for (int i = 0; i < 100000; ++i) {
        text += "${a";
        expected += "${v";
    }
    EXPECT_TRUE(Expanded({{"a", "v"}}, text + "}${a}") == expected.substr(0, expected.size() - 3) + "vv");
}

TEST(Mex, AppendingExtendsTheFirstOrSetsANewOne) {
    CMex mex = MexWith({{"x", "a"}, {"x", "z"}});
    EXPECT_TRUE(mex.AppendVariable("x", "b", ", "));
    EXPECT_FALSE(mex.AppendVariable("y", "c", ", "));
    std::string result;
    mex.Expand("x y", result);
    EXPECT_EQ(result, "a, b c");
}

TEST(Mex, ClearedVariablesAreGone) {
    CMex mex = MexWith({{"x", "v"}});
    mex.ClearVariables();
    std::string result;
    mex.Expand("x ${x}", result);
    EXPECT_EQ(result, "x ${x}");
}

TEST(Mex, LinesAreAppendedToTheirTarget) {
    CMex mex = MexWith({{"x", "v"}});
    mex.LineBuffer() = {"x", "", "${x}y"};
    std::vector<std::string> lines = {"before"};
    mex.ExpandLines(lines);
    EXPECT_THAT(lines, ElementsAre("before", "v", "", "vy"));
    mex.ClearLines();
    mex.ExpandLines(lines);
    EXPECT_EQ(lines.size(), 4U);
}

TEST(Mex, LinesMayComeOneByOne) {
    CMex mex = MexWith({{"x", "v"}});
    std::vector<std::string> lines = {"before"};
    mex.m_state = CMex::kAfterStrayClose;
    mex.BeginLines();
    mex.ExpandLine("x", lines);
    mex.ExpandLine("", lines);
    EXPECT_THAT(lines, ElementsAre("before", "v", ""));
}

TEST(Mex, NamesInBracesDoNotSpanLines) {
    CMex mex = MexWith({{"x", "v"}});
    mex.LineBuffer() = {"${x", "}"};
    std::vector<std::string> lines;
    mex.ExpandLines(lines);
    EXPECT_THAT(lines, ElementsAre("${v", "}"));
}

TEST(Mex, ResettingForgetsVariablesAndLines) {
    CMex mex = MexWith({{"x", "v"}});
    mex.LineBuffer() = {"x"};
    mex.m_state = CMex::kInComment;
    mex.Reset();
    EXPECT_EQ(mex.m_state, CMex::kPlain);
    EXPECT_EQ(mex.Variables().Size(), 0U);
    EXPECT_TRUE(mex.LineBuffer().empty());
}

TEST(Mex, ACopyKeepsVariablesLinesAndState) {
    CMex mex = MexWith({{"x", "v"}});
    mex.LineBuffer() = {"x"};
    CMex copy = mex;
    mex.Reset();
    std::vector<std::string> lines;
    copy.ExpandLines(lines);
    EXPECT_THAT(lines, ElementsAre("v"));
}

// The scanner takes a faster way while nothing is armed; an escape character that no text holds sends it
// through the steps one by one.
TEST(Mex, TheFasterWayGivesWhatTheStepsGive) {
    std::mt19937 random(11);
    constexpr std::string_view kPieces[] = {"$", "{", "}",    "${",   "x",  "y", "_",
                                            "1", " ", "\xC3", "${x}", "xy", ".", ""};
    CMex plain =
        MexWith({{"x", "<X>"}, {"xy", "${x}"}, {"1", "one"}, {"x}", "no"}, {" ", "blank"}, {"", "empty"}});
    CMex stepped = plain;
    stepped.Tokens().escapes = {'\x01'};
    for (int round = 0; round < 3000; ++round) {
        std::string text;
        for (auto i = random() % 20; i > 0; --i) text += kPieces[random() % std::size(kPieces)];
        std::string first;
        std::string second;
        plain.Expand(text, first);
        stepped.Expand(text, second);
        ASSERT_EQ(first, second) << text;
    }
}

// Aside

TEST(Mex, AnExpansionAsideIsTheSameAndMovesNoState) {
    CMex mex;
    mex.SetVariable("x", "v");
    EXPECT_EQ(mex.Expanded("x ${x}1 xy"), "v v1 xy");
    mex.Tokens().openComments = {"/*"};
    mex.Tokens().closeComments = {"*/"};
    mex.Tokens().keepComments = true;
    for (const CMex::State state : {CMex::kPlain, CMex::kInComment}) {
        for (const char* text : {"x /* x", "x */ x", ""}) {
            mex.m_state = state;
            const std::string aside = mex.Expanded(text);
            EXPECT_EQ(mex.m_state, state);
            std::string expanded;
            mex.Expand(text, expanded);
            EXPECT_EQ(aside, expanded) << text;
        }
    }
}

}  // namespace
}  // namespace tavrin
