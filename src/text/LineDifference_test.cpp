// SPDX-License-Identifier: Apache-2.0
// Lines of two texts against each other.
#include "text/LineDifference.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Kind = LineRow::Kind;

std::string Sign(Kind kind) {
    switch (kind) {
        case Kind::kSame:
            return "=";
        case Kind::kChanged:
            return "~";
        case Kind::kOnlyLeft:
            return "-";
        default:
            return "+";
    }
}

// "= a", "~ b|c", "- d", "+ e".
std::vector<std::string> Rows(std::string_view left, std::string_view right) {
    const LineDifference found = CompareLines(left, right);
    std::vector<std::string> rows;
    for (const LineRow& row : found.rows) {
        std::string text = Sign(row.kind) + " ";
        if (row.kind != Kind::kOnlyRight) text += found.left.at(row.left);
        if (row.kind == Kind::kChanged) text += "|";
        if (row.kind == Kind::kChanged || row.kind == Kind::kOnlyRight) text += found.right.at(row.right);
        rows.push_back(text);
    }
    return rows;
}

// What is marked of two lines.
using TextPair = std::pair<std::string, std::string>;
TextPair Marked(const std::string& left, const std::string& right) {
    const LineDifference found = CompareLines(left, right);
    const LineRow& row = found.rows.at(0);
    const auto part = [](std::string_view line, LineRow::Span span) {
        return std::string(line.substr(span.begin, span.end - span.begin));
    };
    return {part(found.left.at(0), row.inLeft), part(found.right.at(0), row.inRight)};
}

// Each line stands in one row, in its order, and rows that are the same are.
void ExpectWhole(const LineDifference& found) {
    size_t left = 0;
    size_t right = 0;
    for (const LineRow& row : found.rows) {
        if (row.kind != Kind::kOnlyRight) {
            ASSERT_EQ(row.left, left++);
        }
        if (row.kind != Kind::kOnlyLeft) {
            ASSERT_EQ(row.right, right++);
        }
        if (row.kind == Kind::kSame) {
            ASSERT_EQ(found.left[row.left], found.right[row.right]);
        }
    }
    EXPECT_EQ(left, found.left.size());
    EXPECT_EQ(right, found.right.size());
}

size_t SameRows(const LineDifference& found) {
    return static_cast<size_t>(std::count_if(found.rows.begin(), found.rows.end(),
                                             [](const LineRow& row) { return row.kind == Kind::kSame; }));
}

std::string Repeated(const std::string& line, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += line;
    return text;
}

TEST(LineDifference, TheSameTextsHaveTheSameRows) {
    EXPECT_THAT(Rows("a\nb\n", "a\nb\n"), ElementsAre("= a", "= b"));
    EXPECT_THAT(Rows("", ""), IsEmpty());
}

TEST(LineDifference, LinesAreAddedRemovedAndChanged) {
    EXPECT_THAT(Rows("a\nb\nc\n", "a\nc\n"), ElementsAre("= a", "- b", "= c"));
    EXPECT_THAT(Rows("a\nc\n", "a\nb\nc\n"), ElementsAre("= a", "+ b", "= c"));
    EXPECT_THAT(Rows("a\nb\nc\n", "a\nx\nc\n"), ElementsAre("= a", "~ b|x", "= c"));
    EXPECT_THAT(Rows("a\nb\nc\nd\n", "a\nx\nd\n"), ElementsAre("= a", "~ b|x", "- c", "= d"));
    EXPECT_THAT(Rows("", "a\nb"), ElementsAre("+ a", "+ b"));
    EXPECT_THAT(Rows("a\n\n", ""), ElementsAre("- a", "- "));
}

TEST(LineDifference, ALastLineNeedsNoEndAndLineEndsAreAlike) {
    EXPECT_THAT(Rows("a\nb", "a\nb\n"), ElementsAre("= a", "= b"));
    EXPECT_THAT(Rows("a\r\nb\r\n", "a\nb\n"), ElementsAre("= a", "= b"));
    EXPECT_THAT(Rows("\n", ""), ElementsAre("- "));
}

TEST(LineDifference, AMovedLineIsRemovedAndAdded) {
    EXPECT_THAT(Rows("a\nb\nc\nd\n", "b\nc\nd\na\n"), ElementsAre("- a", "= b", "= c", "= d", "+ a"));
}

TEST(LineDifference, LinesThatAreMostAlikeStandBesideEachOther) {
    EXPECT_THAT(Rows("a = mix(b, 0.5);\n", "// Noise_4\nc = noise(p);\na = mix(b, 0.75);\n"),
                ElementsAre("+ // Noise_4", "+ c = noise(p);", "~ a = mix(b, 0.5);|a = mix(b, 0.75);"));
    EXPECT_THAT(Rows("one();\ntwo(x);\n", "two(y);\n"), ElementsAre("- one();", "~ two(x);|two(y);"));
    EXPECT_THAT(Rows("a1;\nb1;\n", "a2;\nnew line\nb2;\n"),
                ElementsAre("~ a1;|a2;", "+ new line", "~ b1;|b2;"));
}

TEST(LineDifference, LongRunsArePairedFromTheirBeginnings) {
    std::string right = "x\n";
    for (int i = 0; i < 20'000; ++i) right += "added" + std::to_string(i) + "\n";
    const LineDifference found = CompareLines("added 1\nadded 2\n", right);
    ExpectWhole(found);
    EXPECT_EQ(found.rows[0].kind, Kind::kChanged);
    EXPECT_EQ(found.rows[1].kind, Kind::kChanged);
    EXPECT_EQ(found.rows.size(), 20'001U);
}

TEST(LineDifference, WholeWordsAreMarked) {
    EXPECT_EQ(Marked("float a = 0.5;", "float a = 0.75;"), TextPair("0.5", "0.75"));
    EXPECT_EQ(Marked("mix(one, two)", "mix(one, three)"), TextPair("two", "three"));
    EXPECT_EQ(Marked("a b", "a c b"), TextPair("", "c "));
    EXPECT_EQ(Marked("noise_1(p)", "noise_12(p)"), TextPair("noise_1", "noise_12"));
    EXPECT_EQ(Marked("x", "yz"), TextPair("x", "yz"));
    EXPECT_EQ(Marked("a\u00e4b", "a\u00f6b"), TextPair("a\u00e4b", "a\u00f6b")) << "never half a character";
    EXPECT_EQ(Marked("aa", "aaa"), TextPair("aa", "aaa"));
}

TEST(LineDifference, AsManyLinesAsPossibleAreTheSame) {
    std::mt19937 random(7);
    const auto below = [&random](size_t count) { return random() % count; };
    for (int round = 0; round < 3000; ++round) {
        const size_t words = 1 + below(6);
        std::string left;
        std::string right;
        for (size_t i = below(16); i > 0; --i) left += std::to_string(below(words)) + "\n";
        for (size_t i = below(16); i > 0; --i) right += std::to_string(below(words)) + "\n";
        const LineDifference found = CompareLines(left, right);
        const size_t rows = found.left.size() + 1;
        const size_t columns = found.right.size() + 1;
        std::vector<size_t> longest(rows * columns);
        for (size_t i = rows - 1; i-- > 0;) {
            for (size_t j = columns - 1; j-- > 0;) {
                const size_t skipped = std::max(longest[(i + 1) * columns + j], longest[i * columns + j + 1]);
                const bool isSame = found.left[i] == found.right[j];
                longest[i * columns + j] = isSame ? 1 + longest[(i + 1) * columns + j + 1] : skipped;
            }
        }
        ASSERT_NO_FATAL_FAILURE(ExpectWhole(found)) << left << "|" << right;
        ASSERT_FALSE(found.isCoarse);
        ASSERT_EQ(SameRows(found), longest[0]) << left << "|" << right;
    }
}

// Hostile texts

TEST(LineDifference, ManyEqualLinesTakeAStepEach) {
    const std::string text = Repeated("x\n", 300'000);
    const std::string half = text.substr(0, text.size() / 2);
    const LineDifference found = CompareLines(text, half);
    EXPECT_EQ(SameRows(found), 150'000U);
    EXPECT_LE(found.steps, 300'000U);
    EXPECT_FALSE(found.isCoarse);
}

TEST(LineDifference, TextsThatHaveNothingInCommonTakeNone) {
    std::string left;
    std::string right;
    for (int i = 0; i < 100'000; ++i) {
        left += "l" + std::to_string(i) + "\n";
        right += "r" + std::to_string(i) + "\n";
    }
    const LineDifference found = CompareLines(left, right);
    EXPECT_EQ(found.steps, 0U);
    EXPECT_EQ(found.rows.size(), 100'000U);
    EXPECT_EQ(SameRows(found), 0U);
}

TEST(LineDifference, TooMuchToFindOutEndsWithACoarseAnswer) {
    std::mt19937 random(3);
    std::string left = "first\n";
    std::string right = left;
    for (int i = 0; i < 5000; ++i) {
        left += std::to_string(random() % 30) + "\n";
        right += std::to_string(random() % 30) + "\n";
    }
    left += "last\n";
    right += "last\n";
    constexpr size_t kMost = 200'000;
    const LineDifference found = CompareLines(left, right, kMost);
    EXPECT_TRUE(found.isCoarse);
    EXPECT_LE(found.steps, kMost + 30'000) << "a round more at most";
    ExpectWhole(found);
    EXPECT_EQ(found.rows.front().kind, Kind::kSame);
    EXPECT_EQ(found.rows.back().kind, Kind::kSame);
}

TEST(LineDifference, ManyChangesInALongTextAreFoundExactly) {
    std::string left;
    std::string right;
    for (int i = 0; i < 20'000; ++i) {
        const std::string line =
            "float v" + std::to_string(i % 700) + " = " + std::to_string(i * 7919) + ";\n";
        left += line;
        right += i % 10 == 3 ? "// changed " + std::to_string(i % 50) + "\n" : line;
    }
    const LineDifference found = CompareLines(left, right);
    EXPECT_FALSE(found.isCoarse);
    EXPECT_EQ(found.rows.size(), 20'000U);
    EXPECT_EQ(SameRows(found), 18'000U);
}

TEST(LineDifference, ALineOfMegabytesIsMarkedWhereItDiffers) {
    std::string left(10'000'000, ' ');
    std::string right = left;
    left[5'000'000] = 'a';
    right[5'000'000] = 'b';
    EXPECT_EQ(Marked(left, right), TextPair("a", "b"));
}

}  // namespace
}  // namespace tavrin
