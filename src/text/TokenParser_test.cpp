// SPDX-License-Identifier: Apache-2.0
#include "text/TokenParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestSite.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Opens what parsers inherit.
class Parser : public TokenParser {
  public:
    Parser(CArchive& archive, Report& report) : TokenParser(archive, report) {}
    using TokenParser::Choice;
    using TokenParser::Expect;
    using TokenParser::Flag;
    using TokenParser::Operand;
};

class TokenParserTest : public testing::Test {
  protected:
    Parser& ParserOf(std::string_view text) {
        site.sink.alerts.clear();
        archive = test::ArchiveOf(text, "box.def");
        return parser;
    }

    test::TestSite site;
    CArchive archive = test::ArchiveOf("");
    Parser parser{archive, site.report};
};

TEST_F(TokenParserTest, OperandsAreTheNextTokens) {
    Parser& words = ParserOf("\"a b\" 12 # note\n0.5");
    std::string text;
    int integer = 0;
    float number = 0;
    EXPECT_TRUE(words.Operand(text) && words.Operand(integer) && words.Operand(number));
    EXPECT_EQ(text, "a b");
    EXPECT_EQ(integer, 12);
    EXPECT_EQ(number, 0.5F);
    EXPECT_THAT(site.sink.alerts, IsEmpty());
}

TEST_F(TokenParserTest, ANumberThatIsNoneIsZero) {
    int integer = 7;
    EXPECT_TRUE(ParserOf("abc").Operand(integer));
    EXPECT_EQ(integer, 0);
    float number = 7;
    EXPECT_TRUE(ParserOf("\"\"").Operand(number));
    EXPECT_EQ(number, 0.0F);
}

TEST_F(TokenParserTest, AMissingOperandIsUnexpectedInputAndChangesNothing) {
    int integer = 7;
    EXPECT_FALSE(ParserOf("# one\n# two\n").Operand(integer));
    EXPECT_EQ(integer, 7);
    EXPECT_THAT(site.sink.alerts, ElementsAre("box.def near line 3: unexpected input"));
}

TEST_F(TokenParserTest, AFlagIsZeroOrOneAndNothingElse) {
    int flag = 7;
    EXPECT_TRUE(ParserOf("1").Flag(flag));
    EXPECT_EQ(flag, 1);
    EXPECT_TRUE(ParserOf("0").Flag(flag));
    EXPECT_EQ(flag, 0);
    flag = 7;
    for (const char* text : {"2", "true", "01", "\"\"", ""}) {
        EXPECT_FALSE(ParserOf(text).Flag(flag)) << text;
        EXPECT_EQ(flag, 7) << text;
        EXPECT_THAT(site.sink.alerts, ElementsAre("box.def near line 1: unexpected input")) << text;
    }
}

TEST_F(TokenParserTest, AChoiceIsOneOfItsTwoWords) {
    int flag = 7;
    EXPECT_TRUE(ParserOf("on").Choice(flag, "on", "off"));
    EXPECT_EQ(flag, 1);
    EXPECT_TRUE(ParserOf("off").Choice(flag, "on", "off"));
    EXPECT_EQ(flag, 0);
    flag = 7;
    EXPECT_FALSE(ParserOf("On").Choice(flag, "on", "off"));
    EXPECT_EQ(flag, 7);
    EXPECT_THAT(site.sink.alerts, ElementsAre("box.def near line 1: unexpected input"));
}

TEST_F(TokenParserTest, AnExpectedTokenMustStandThere) {
    EXPECT_TRUE(ParserOf("\n{").Expect("{"));
    EXPECT_THAT(site.sink.alerts, IsEmpty());
    EXPECT_FALSE(ParserOf("\nname").Expect("{"));
    EXPECT_THAT(site.sink.alerts, ElementsAre("box.def near line 2: unexpected input"));
    EXPECT_FALSE(ParserOf("").Expect("{"));
    EXPECT_THAT(site.sink.alerts, ElementsAre("box.def near line 1: unexpected input"));
}

}  // namespace
}  // namespace tavrin
