// SPDX-License-Identifier: Apache-2.0
// The statements of script files.
#include "app/ScriptFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using testing::ElementsAre;
using testing::IsEmpty;

// Every statement of a script, its words joined by '|'.
std::vector<std::string> StatementsOf(const std::string& text) {
    ScriptFile script(ArchiveOf(text, "test.tvx"));
    std::vector<std::string> statements;
    ScriptStatement statement;
    while (script.Next(statement))
        statements.push_back(statement[0] + "|" + statement[1] + "|" + statement[2]);
    return statements;
}

TEST(ScriptFile, AStatementIsThreeWords) {
    EXPECT_THAT(StatementsOf("form render render\n"), ElementsAre("form|render|render"));
}

TEST(ScriptFile, MissingWordsAreEmpty) {
    EXPECT_THAT(StatementsOf("form\nform exit\nform render kill\nroe\n"),
                ElementsAre("form||", "form|exit|", "form|render|kill", "roe||"));
}

TEST(ScriptFile, TheFourthWordIsPassedOver) {
    EXPECT_THAT(StatementsOf("form system echo hello; form exit"),
                ElementsAre("form|system|echo", "form|exit|"));
}

TEST(ScriptFile, ASemicolonEndsAStatementLikeALineFeed) {
    EXPECT_THAT(StatementsOf("form render render; form export all;form exit\nroe use-defaults;"),
                ElementsAre("form|render|render", "form|export|all", "form|exit|", "roe|use-defaults|"));
}

TEST(ScriptFile, TheEndOfTheFileEndsAStatement) {
    EXPECT_THAT(StatementsOf("form exit"), ElementsAre("form|exit|"));
}

TEST(ScriptFile, StatementsWithoutAWordAreSkipped) {
    EXPECT_THAT(StatementsOf(""), IsEmpty());
    EXPECT_THAT(StatementsOf("\n ;;\t;\n\r\n # nothing\n;"), IsEmpty());
    EXPECT_THAT(StatementsOf("\n;; form exit ;;\n\n; roe use-defaults\n"),
                ElementsAre("form|exit|", "roe|use-defaults|"));
}

TEST(ScriptFile, ACommentRunsToTheEndOfItsLineSemicolonsIncluded) {
    EXPECT_THAT(
        StatementsOf("# form exit; form exit\nform roe hide # form exit; form exit\nroe use-defaults"),
        ElementsAre("form|roe|hide", "roe|use-defaults|"));
}

TEST(ScriptFile, ANumberSignInsideAWordEndsTheStatementThere) {
    EXPECT_THAT(StatementsOf("form sys#tem echo\nform exit"), ElementsAre("form|sys|", "form|exit|"));
    EXPECT_THAT(StatementsOf("form sys#tem"), ElementsAre("form|sys|"));
}

TEST(ScriptFile, ThereIsNoQuoting) {
    EXPECT_THAT(StatementsOf("form \"loadtavrn\" \"my file\"\nform system 'a;b'\nform system \"a#b\""),
                ElementsAre("form|\"loadtavrn\"|\"my", "form|system|'a", "b'||", "form|system|\"a"));
}

TEST(ScriptFile, WordsAreSeparatedByAnyWhiteSpaceLineEndsOfOtherSystemsIncluded) {
    EXPECT_THAT(StatementsOf("\t form \t render  render \r\nform exit\r\n"),
                ElementsAre("form|render|render", "form|exit|"));
}

TEST(ScriptFile, LongWordsAreReadWhole) {
    const std::string path(255, 'x');
    EXPECT_THAT(StatementsOf("form loadtavrn " + path), ElementsAre("form|loadtavrn|" + path));
}

TEST(ScriptFile, EachStatementKnowsItsLine) {
    ScriptFile script(ArchiveOf("# head\nform exit; roe hide\n\nform # why\nform", "test.tvx"));
    EXPECT_EQ(script.Path(), "test.tvx");
    ScriptStatement statement;
    std::vector<int> lines;
    while (script.Next(statement)) lines.push_back(script.LineNumber());
    EXPECT_THAT(lines, ElementsAre(2, 2, 4, 5));
}

}  // namespace
}  // namespace tavrin
