// SPDX-License-Identifier: Apache-2.0
#include "text/Tokens.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using testing::ElementsAre;
using testing::IsEmpty;

// Both ways of reading give the same tokens and end at the same places.
std::vector<std::string> TokensOf(std::string_view text) {
    CArchive archive = ArchiveOf(text);
    CArchive other = ArchiveOf(text);
    std::vector<std::string> tokens;
    std::string token;
    std::string store;
    std::string_view view;
    while (ReadToken(archive, token)) {
        tokens.push_back(token);
        EXPECT_TRUE(ReadToken(other, view, store));
        EXPECT_EQ(view, token);
        EXPECT_EQ(other.Position(), archive.Position()) << "behind " << token;
    }
    EXPECT_FALSE(ReadToken(other, view, store));
    return tokens;
}

// The first token, and the rest of its line as the next reader sees it.
struct TokenAndRest {
    std::string token;
    std::optional<std::string> rest;
};

TokenAndRest ReadTokenAndRest(std::string_view text) {
    CArchive archive = ArchiveOf(text);
    TokenAndRest result;
    EXPECT_TRUE(ReadToken(archive, result.token));
    std::string_view line;
    if (archive.ReadLine(line)) result.rest = std::string(line);
    return result;
}

TEST(ReadToken, BlanksTabsAndLineEndsSeparateTokens) {
    EXPECT_THAT(TokensOf("  one two\tthree\r\nfour\nfive  \n"),
                ElementsAre("one", "two", "three", "four", "five"));
}

TEST(ReadToken, AViewIsOfTheTextUnlessTheTokenStandsThereOtherwise) {
    CArchive archive = ArchiveOf("plain \"in quotes\" back\\slash \"a \\\"b\\\"\" half\"way\"");
    const auto isOfTheText = [&](std::string_view view) {
        return view.data() >= archive.Text().data() &&
               view.data() + view.size() <= archive.Text().data() + archive.Text().size();
    };
    std::string store;
    std::string_view view;
    for (const char* token : {"plain", "in quotes"}) {
        ASSERT_TRUE(ReadToken(archive, view, store));
        EXPECT_EQ(view, token);
        EXPECT_TRUE(isOfTheText(view)) << token;
    }
    for (const char* token : {"backslash", "a \"b\"", "halfway"}) {
        ASSERT_TRUE(ReadToken(archive, view, store));
        EXPECT_EQ(view, token);
        EXPECT_EQ(view.data(), store.data()) << token;
    }
}

TEST(SkipToToken, EndsAtTheFirstByteOfTheNextToken) {
    CArchive archive = ArchiveOf(" \t# a comment\r\n  \"x\" # more");
    ASSERT_TRUE(SkipToToken(archive));
    EXPECT_EQ(archive.PeekByte(), '"');
    archive.Skip(3);
    EXPECT_FALSE(SkipToToken(archive));
}

TEST(ReadToken, VerticalTabAndFormFeedBelongToTheToken) {
    EXPECT_THAT(TokensOf("a\vb\fc d"), ElementsAre("a\vb\fc", "d"));
}

TEST(ReadToken, AnEmptyFileHasNone) {
    EXPECT_THAT(TokensOf(""), IsEmpty());
    EXPECT_THAT(TokensOf(" \t\r\n"), IsEmpty());
}

TEST(ReadToken, TheLastTokenNeedsNoLineEnd) { EXPECT_THAT(TokensOf("last"), ElementsAre("last")); }

TEST(ReadToken, ATokenStartsEmptyAtTheEndOfTheFileToo) {
    CArchive archive = ArchiveOf("");
    std::string token = "stale";
    EXPECT_FALSE(ReadToken(archive, token));
    EXPECT_EQ(token, "");
}

TEST(ReadToken, BytesOfEveryValuePass) {
    EXPECT_THAT(TokensOf(std::string_view("\xFF\x01\0\xC3\xA4 x", 7)),
                ElementsAre(std::string("\xFF\x01\0\xC3\xA4", 5), "x"));
}

// Comments

TEST(ReadToken, ACommentLineIsPassedOver) { EXPECT_THAT(TokensOf("# all of it\nkey"), ElementsAre("key")); }

TEST(ReadToken, ACommentEndsTheTokenThatItIsGluedTo) {
    EXPECT_THAT(TokensOf("a#b c d\nnext"), ElementsAre("a", "next"));
}

TEST(ReadToken, ACommentAtTheEndOfTheFileEndsTheFile) {
    EXPECT_THAT(TokensOf("# only"), IsEmpty());
    EXPECT_THAT(TokensOf("a # rest"), ElementsAre("a"));
}

TEST(ReadToken, ACommentBehindAClosingQuoteIsAComment) {
    EXPECT_THAT(TokensOf("key \"a b\"#c"), ElementsAre("key", "a b"));
}

TEST(ReadToken, InQuotesACommentSignIsText) { EXPECT_THAT(TokensOf("\"a#b\" c"), ElementsAre("a#b", "c")); }

TEST(ReadToken, ABackslashDoesNotProtectACommentSign) {
    EXPECT_THAT(TokensOf("\\# gone\nnext"), ElementsAre("next"));
    EXPECT_THAT(TokensOf("a\\#b\nnext"), ElementsAre("a", "next"));
}

// Quotes

TEST(ReadToken, QuotesHoldBlanksTogether) {
    EXPECT_THAT(TokensOf("\"a b\tc\" d"), ElementsAre("a b\tc", "d"));
}

TEST(ReadToken, ClosingQuoteEndsTheToken) {
    EXPECT_THAT(TokensOf("abc\"d e\"fg"), ElementsAre("abcd e", "fg"));
}

TEST(ReadToken, TwoAdjacentQuotesAreAnEmptyToken) { EXPECT_THAT(TokensOf("\"\"x"), ElementsAre("", "x")); }

TEST(ReadToken, AQuotedTokenMaySpanLines) {
    EXPECT_THAT(TokensOf("\"one\ntwo\r\nthree\" four"), ElementsAre("one\ntwo\r\nthree", "four"));
}

TEST(ReadToken, AnUnclosedQuoteRunsToTheEndOfTheFile) {
    EXPECT_THAT(TokensOf("\"never # closed\nkey value"), ElementsAre("never # closed\nkey value"));
}

TEST(ReadToken, AnUnclosedQuoteWithNothingBehindItIsNoToken) {
    EXPECT_THAT(TokensOf("a \""), ElementsAre("a"));
}

// Backslashes

TEST(ReadToken, ABackslashTakesTheNextByteLiterally) {
    EXPECT_THAT(TokensOf("\"a\\\"b\""), ElementsAre("a\"b"));
    EXPECT_THAT(TokensOf("\"a\\\\b\""), ElementsAre("a\\b"));
    EXPECT_THAT(TokensOf("\"a\\nb\""), ElementsAre("anb"));
    EXPECT_THAT(TokensOf("a\\nb"), ElementsAre("anb"));
}

TEST(ReadToken, AnEscapedQuoteOpensNoQuotedRun) { EXPECT_THAT(TokensOf("\\\"a b"), ElementsAre("\"a", "b")); }

TEST(ReadToken, ADoubledBackslashDoesNotProtectTheQuoteBehindIt) {
    EXPECT_THAT(TokensOf("\"a\\\\\" b"), ElementsAre("a\\", "b"));
}

TEST(ReadToken, ABackslashDoesNotProtectABlank) { EXPECT_THAT(TokensOf("a\\ b"), ElementsAre("a", "b")); }

TEST(ReadToken, ABackslashBeforeABlankDoesNotReachTheNextToken) {
    EXPECT_THAT(TokensOf("\\ \"a b\" c"), ElementsAre("a b", "c"));
    EXPECT_THAT(TokensOf("\\# comment\n\"a b\" c"), ElementsAre("a b", "c"));
}

TEST(ReadToken, ALoneBackslashIsNoToken) {
    EXPECT_THAT(TokensOf("\\"), IsEmpty());
    EXPECT_THAT(TokensOf("\\\n\\\r\nx"), ElementsAre("x"));
}

TEST(ReadToken, ABackslashInQuotesProtectsALineEnd) {
    EXPECT_THAT(TokensOf("\"a\\\nb\""), ElementsAre("a\nb"));
}

// What is left of the line

TEST(ReadToken, TheRestOfTheLineFollowsTheSeparator) {
    const auto [token, rest] = ReadTokenAndRest("key  value # note\nnext\n");
    EXPECT_EQ(token, "key");
    EXPECT_EQ(rest, " value # note");
}

TEST(ReadToken, ATokenAloneOnItsLineHasAnEmptyRest) {
    for (const char* text : {"key\nnext\n", "key\r\nnext\r\n", "key \nnext\n"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ReadTokenAndRest(text).token, "key");
        EXPECT_EQ(ReadTokenAndRest(text).rest, "");
    }
}

TEST(ReadToken, AGluedCommentLeavesAnEmptyRest) {
    for (const char* text : {"desk.lock#x 1\nnext\n", "desk.lock#x 1\r\nnext\r\n"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(ReadTokenAndRest(text).token, "desk.lock");
        EXPECT_EQ(ReadTokenAndRest(text).rest, "");
    }
}

TEST(ReadToken, TheRestBehindAClosingQuoteBeginsAtOnce) {
    EXPECT_EQ(ReadTokenAndRest("\"a b\"c d\nnext").rest, "c d");
}

TEST(ReadToken, CommentsBeforeATokenDoNotTouchItsLine) {
    EXPECT_EQ(ReadTokenAndRest("# one\n\n# two\nkey rest\n").rest, "rest");
}

TEST(ReadToken, TheErrorLineIsTheTokensOwn) {
    CArchive archive = ArchiveOf("one\ntwo\n");
    std::string token;
    ASSERT_TRUE(ReadToken(archive, token));
    EXPECT_EQ(archive.LineNumber(), 1);
    ASSERT_TRUE(ReadToken(archive, token));
    EXPECT_EQ(archive.LineNumber(), 2);
}

// Opening braces

TEST(ReadOpeningBrace, FindsTheBraceOnALaterLine) {
    test::TestSite site;
    CArchive archive = ArchiveOf(" # first\n {\n");
    EXPECT_TRUE(ReadOpeningBrace(archive, site.report));
    EXPECT_TRUE(site.sink.alerts.empty());
}

TEST(ReadOpeningBrace, AlertsAnythingElse) {
    test::TestSite site;
    CArchive archive = ArchiveOf("\n\nname x", "file.def");
    EXPECT_FALSE(ReadOpeningBrace(archive, site.report));
    EXPECT_THAT(site.sink.alerts, ElementsAre("file.def near line 3: expected opening brace"));
}

TEST(ReadOpeningBrace, ABraceWithTextGluedToItIsSomethingElse) {
    test::TestSite site;
    CArchive archive = ArchiveOf("{name");
    EXPECT_FALSE(ReadOpeningBrace(archive, site.report));
    EXPECT_EQ(site.sink.alerts.size(), 1U);
}

TEST(ReadOpeningBrace, TheEndOfTheFileIsNotAlerted) {
    test::TestSite site;
    CArchive archive = ArchiveOf(" # nothing\n");
    EXPECT_FALSE(ReadOpeningBrace(archive, site.report));
    EXPECT_THAT(site.sink.alerts, IsEmpty());
}

}  // namespace
}  // namespace tavrin
