// SPDX-License-Identifier: Apache-2.0
// The line readers of brace blocks, quoting, and the small helpers of all formats.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

std::vector<std::pair<std::string, std::string>> PairsOf(CArchive& archive) {
    std::vector<std::pair<std::string, std::string>> pairs;
    std::string key;
    std::string value;
    while (ReadKeyValueLine(archive, key, value)) pairs.emplace_back(key, value);
    return pairs;
}

std::vector<std::pair<std::string, std::string>> PairsOf(std::string_view text) {
    CArchive archive = ArchiveOf(text);
    return PairsOf(archive);
}

TEST(ReadKeyValueLine, SplitsAtTheFirstBlanks) {
    EXPECT_THAT(PairsOf("  key\t  one  two  \r\nother 2\n"),
                ElementsAre(Pair("key", "one  two"), Pair("other", "2")));
}

TEST(ReadKeyValueLine, AKeyAloneHasAnEmptyValue) {
    EXPECT_THAT(PairsOf("first 1\nkey\nkey2   \n"),
                ElementsAre(Pair("first", "1"), Pair("key", ""), Pair("key2", "")));
}

TEST(ReadKeyValueLine, EmptyAndCommentLinesAreSkipped) {
    EXPECT_THAT(PairsOf("\n   \n# note\n  # note\nkey 1\n"), ElementsAre(Pair("key", "1")));
}

TEST(ReadKeyValueLine, CutsAtACommentSignAlsoInQuotes) {
    EXPECT_THAT(PairsOf("key 1 # note\n"), ElementsAre(Pair("key", "1")));
    EXPECT_THAT(PairsOf("key \"a # b\"\n"), ElementsAre(Pair("key", "\"a")));
    EXPECT_THAT(PairsOf("key#1\n"), ElementsAre(Pair("key", "")));
}

TEST(ReadKeyValueLine, QuotesAroundTheValueGo) {
    EXPECT_THAT(PairsOf("key \"a b \"  \n"), ElementsAre(Pair("key", "a b ")));
    EXPECT_THAT(PairsOf("key \"\"\n"), ElementsAre(Pair("key", "")));
    EXPECT_THAT(PairsOf("key \"a\\\"b\"\n"), ElementsAre(Pair("key", "a\\\"b")));
}

TEST(ReadKeyValueLine, AClosingBraceEndsTheBlock) {
    CArchive archive = ArchiveOf("key 1\n  }  \nbehind 2\n");
    EXPECT_THAT(PairsOf(archive), ElementsAre(Pair("key", "1")));
    EXPECT_THAT(PairsOf(archive), ElementsAre(Pair("behind", "2")));
}

TEST(ReadKeyValueLine, AClosingBraceMayCarryAGluedComment) {
    EXPECT_THAT(PairsOf("key 1\n}# end\nbehind 2\n"), ElementsAre(Pair("key", "1")));
}

TEST(ReadKeyValueLine, ABraceWithMoreOnItsLineIsAKey) {
    EXPECT_THAT(PairsOf("} x\n"), ElementsAre(Pair("}", "x")));
    EXPECT_THAT(PairsOf("} # end\nkey 1\n"), ElementsAre(Pair("}", ""), Pair("key", "1")));
}

TEST(ReadKeyValueLine, TheEndOfTheFileEndsTheBlockInSilence) {
    CArchive archive = ArchiveOf("");
    EXPECT_THAT(PairsOf(archive), IsEmpty());
}

// Text blocks

struct TextBlock {
    bool closed = false;
    std::string text = "stale";
};

TextBlock BlockOf(std::string_view text) {
    CArchive archive = ArchiveOf(text);
    TextBlock block;
    block.closed = ReadTextBlock(archive, block.text);
    return block;
}

TEST(ReadTextBlock, JoinsTrimmedLinesByCrLf) {
    const TextBlock block = BlockOf("  one \r\n\ttwo\n}\nbehind\n");
    EXPECT_TRUE(block.closed);
    EXPECT_EQ(block.text, "one\r\ntwo");
}

TEST(ReadTextBlock, StopsBehindTheBrace) {
    CArchive archive = ArchiveOf("one\n } \nbehind\n");
    std::string text;
    ASSERT_TRUE(ReadTextBlock(archive, text));
    EXPECT_EQ(archive.Rest(), "behind\n");
}

TEST(ReadTextBlock, DropsLeadingEmptyLinesAndKeepsLaterOnes) {
    EXPECT_EQ(BlockOf("\n   \none\n\ntwo\n\n}\n").text, "one\r\n\r\ntwo\r\n");
}

TEST(ReadTextBlock, AMarkProtectsIndentationAndBraces) {
    EXPECT_EQ(BlockOf(" >  indented\n>}\n>>quoted\n}\n").text, "  indented\r\n}\r\n>quoted");
}

TEST(ReadTextBlock, AMarkAloneIsAnEmptyLineThatCounts) { EXPECT_EQ(BlockOf(">\n>one\n}\n").text, "\r\none"); }

TEST(ReadTextBlock, NothingButABraceIsTheEmptyText) {
    const TextBlock block = BlockOf("}\n");
    EXPECT_TRUE(block.closed);
    EXPECT_EQ(block.text, "");
}

TEST(ReadTextBlock, TheEndOfTheFileLeavesTheBlockOpen) {
    const TextBlock block = BlockOf("one\ntwo } \n");
    EXPECT_FALSE(block.closed);
    EXPECT_EQ(block.text, "one\r\ntwo }");
}

TEST(ReadTextBlock, ACommentSignIsText) { EXPECT_EQ(BlockOf("# one\n}\n").text, "# one"); }

// Booleans and quotes

TEST(ParseBool, KnowsTwoWords) {
    EXPECT_EQ(ParseBool("true"), 1);
    EXPECT_EQ(ParseBool("false"), 0);
}

TEST(ParseBool, TakesAnythingElseAsANumber) {
    EXPECT_EQ(ParseBool("2"), 2);
    EXPECT_EQ(ParseBool("-1"), -1);
    EXPECT_EQ(ParseBool("yes"), 0);
    EXPECT_EQ(ParseBool("True"), 0);
    EXPECT_EQ(ParseBool("true "), 0);
    EXPECT_EQ(ParseBool(""), 0);
}

TEST(QuoteString, ProtectsQuotesAndBackslashes) {
    EXPECT_EQ(QuoteString(""), R"("")");
    EXPECT_EQ(QuoteString("a b"), R"("a b")");
    EXPECT_EQ(QuoteString(R"(a"b\c)"), R"("a\"b\\c")");
}

TEST(QuoteString, LongTextsStayWhole) {
    const std::string text(5000, '"');
    EXPECT_EQ(QuoteString(text).size(), 10002U);
}

TEST(QuoteString, WhatItWritesIsReadBackAsOneToken) {
    for (const std::string text :
         {R"(C:\dir\file "x")", "# no comment", "", " two\nlines ", R"(\\)", R"(ends in \)"}) {
        SCOPED_TRACE(text);
        CArchive archive = ArchiveOf(QuoteString(text) + " next");
        std::string token = "stale";
        ASSERT_TRUE(ReadToken(archive, token));
        EXPECT_EQ(token, text);
        ASSERT_TRUE(ReadToken(archive, token));
        EXPECT_EQ(token, "next");
    }
}

TEST(StripQuotes, TakesOnePairOff) {
    EXPECT_EQ(StripQuotes("\"a b\""), "a b");
    EXPECT_EQ(StripQuotes("\"\"a\"\""), "\"a\"");
    EXPECT_EQ(StripQuotes("\"\""), "");
}

TEST(StripQuotes, LeavesAQuoteAtOneEndOnly) {
    EXPECT_EQ(StripQuotes("\"a"), "\"a");
    EXPECT_EQ(StripQuotes("a\""), "a\"");
    EXPECT_EQ(StripQuotes("a"), "a");
    EXPECT_EQ(StripQuotes(""), "");
}

TEST(StripQuotes, UndoesNoBackslashes) { EXPECT_EQ(StripQuotes(R"("a\"b\\")"), R"(a\"b\\)"); }

TEST(StripQuotes, ASingleQuoteBecomesEmpty) { EXPECT_EQ(StripQuotes("\""), ""); }

// Blanks and case

TEST(Trim, TakesWhiteSpaceOffBothEnds) {
    EXPECT_EQ(Trim(" \t\r\n\v\fa b\f\v\n\r\t "), "a b");
    EXPECT_EQ(Trim(" \n "), "");
    EXPECT_EQ(Trim(""), "");
}

TEST(Trim, AtTheRightAloneKeepsTheIndentation) {
    EXPECT_EQ(TrimRight("  a b \t\r\n"), "  a b");
    EXPECT_EQ(TrimRight(" \t"), "");
}

TEST(ToLower, FoldsAsciiLettersOnly) {
    EXPECT_EQ(ToLower("AbZ[@`{09_"), "abz[@`{09_");
    EXPECT_EQ(ToLower("\xC3\x84\xC4"), "\xC3\x84\xC4");
}

// Files for the log

TEST(ReadFileToText, EachLineFeedBecomesCrLf) {
    const TempDir directory;
    std::string text = "stale";
    ASSERT_TRUE(ReadFileToText(directory.Write("errors.txt", "one\n\ntwo"), text));
    EXPECT_EQ(text, "one\r\n\r\ntwo");
}

TEST(ReadFileToText, LongLinesStayWhole) {
    const TempDir directory;
    const std::string line(2000, 'x');
    std::string text;
    ASSERT_TRUE(ReadFileToText(directory.Write("errors.txt", line + "\n"), text));
    EXPECT_EQ(text, line + "\r\n");
}

TEST(ReadFileToText, AMissingFileEmptiesTheText) {
    const TempDir directory;
    std::string text = "stale";
    EXPECT_FALSE(ReadFileToText(directory / "absent", text));
    EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace tavrin
