// SPDX-License-Identifier: Apache-2.0
#include "text/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace tavrin {
namespace {

TEST(ParseInt, TakesTheLeadingNumber) {
    EXPECT_EQ(ParseInt("12abc"), 12);
    EXPECT_EQ(ParseInt(" \t\n-7 8"), -7);
    EXPECT_EQ(ParseInt("+5"), 5);
    EXPECT_EQ(ParseInt("1.9"), 1);
    EXPECT_EQ(ParseInt("0x10"), 0);
}

TEST(ParseInt, TextWithoutANumberIsZero) {
    for (const char* text : {"", "abc", "-", "+", "+-5", "-+5", "++5", "- 5", ".5"})
        EXPECT_EQ(ParseInt(text), 0) << text;
}

TEST(ParseInt, NumbersBeyondTheRangeAreHeldAtItsEnds) {
    EXPECT_EQ(ParseInt("2147483647"), 2147483647);
    EXPECT_EQ(ParseInt("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(ParseInt("-2147483649"), std::numeric_limits<int>::min());
    EXPECT_EQ(ParseInt("99999999999999999999999"), std::numeric_limits<int>::max());
}

TEST(ParseFloat, TakesTheLeadingNumber) {
    EXPECT_EQ(ParseFloat("0.5"), 0.5F);
    EXPECT_EQ(ParseFloat("  -.25x"), -0.25F);
    EXPECT_EQ(ParseFloat("+1e2"), 100.0F);
    EXPECT_EQ(ParseFloat("3."), 3.0F);
}

TEST(ParseFloat, ADecimalCommaEndsTheNumber) { EXPECT_EQ(ParseFloat("1,5"), 1.0F); }

TEST(ParseFloat, TextWithoutANumberIsZero) {
    for (const char* text : {"", "abc", ".", "+-1", "e5"}) EXPECT_EQ(ParseFloat(text), 0.0F) << text;
}

TEST(ParseFloat, NumbersBeyondTheRangeBecomeInfiniteOrZero) {
    EXPECT_EQ(ParseFloat("1e99"), std::numeric_limits<float>::infinity());
    EXPECT_EQ(ParseFloat("-1e99"), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(ParseFloat("1e-99"), 0.0F);
}

TEST(FormatG, PrintsAsPrintfDoes) {
    for (const double value :
         {0.0, -0.0, 1.0, 0.1, 0.5, -2.25, 100000.0, 1000000.0, 123456.7, 0.0001, 0.00001, 1e300,
          static_cast<double>(0.1F), static_cast<double>(1.0F / 3.0F), 16777216.0}) {
        char expected[64];
        std::snprintf(expected, sizeof expected, "%g", value);
        EXPECT_EQ(FormatG(value), expected);
    }
}

TEST(FormatG, KeepsSixSignificantDigits) {
    EXPECT_EQ(FormatG(3.14159265), "3.14159");
    EXPECT_EQ(FormatG(1234567.0), "1.23457e+06");
}

TEST(FormatG, AppendsBehindWhatIsThere) {
    std::string text = "x = ";
    AppendG(text, 0.25);
    EXPECT_EQ(text, "x = 0.25");
}

TEST(FormatF, PrintsSixPlaces) {
    EXPECT_EQ(FormatF(0.5), "0.500000");
    EXPECT_EQ(FormatF(-1.0), "-1.000000");
    EXPECT_EQ(FormatF(1e-9), "0.000000");
}

TEST(FormatF, TheLargestNumberFits) {
    const std::string text = FormatF(std::numeric_limits<double>::lowest());
    EXPECT_EQ(text.size(), 317U);
    EXPECT_EQ(text.substr(0, 4), "-179");
}

TEST(FieldScanner, WalksOneConversionAfterTheOther) {
    FieldScanner scanner("  3 0.5 word rest of it");
    EXPECT_EQ(scanner.Int(), 3);
    EXPECT_EQ(scanner.Float(), 0.5F);
    EXPECT_EQ(scanner.Word(), "word");
    EXPECT_EQ(scanner.Rest(), " rest of it");
}

TEST(FieldScanner, ANumberThatDoesNotFitLeavesThePosition) {
    FieldScanner scanner(" x1");
    EXPECT_EQ(scanner.Int(), std::nullopt);
    EXPECT_EQ(scanner.Float(), std::nullopt);
    EXPECT_EQ(scanner.Rest(), " x1");
    EXPECT_EQ(scanner.Word(), "x1");
}

TEST(FieldScanner, BlanksBehindANumberStay) {
    FieldScanner scanner("1  2.5 =");
    EXPECT_EQ(scanner.Int(), 1);
    EXPECT_EQ(scanner.Rest(), "  2.5 =");
    EXPECT_EQ(scanner.Float(), 2.5F);
    EXPECT_FALSE(scanner.Literal("="));
}

TEST(FieldScanner, NumbersNeedNoBlanksBetweenThem) {
    FieldScanner scanner("1-2+3");
    EXPECT_EQ(scanner.Int(), 1);
    EXPECT_EQ(scanner.Int(), -2);
    EXPECT_EQ(scanner.Int(), 3);
    EXPECT_EQ(scanner.Int(), std::nullopt);
}

TEST(FieldScanner, ThereIsNoWordAtTheEnd) {
    FieldScanner scanner("   ");
    EXPECT_EQ(scanner.Word(), std::nullopt);
}

TEST(FieldScanner, ALiteralStandsExactlyHereOrNot) {
    FieldScanner scanner("12=name");
    EXPECT_EQ(scanner.Int(), 12);
    EXPECT_FALSE(scanner.Literal("=="));
    EXPECT_TRUE(scanner.Literal("="));
    EXPECT_EQ(scanner.Rest(), "name");
    FieldScanner blank(" =");
    EXPECT_FALSE(blank.Literal("="));
}

TEST(FieldScanner, ARunEndsBeforeItsStopOrAtTheEnd) {
    FieldScanner scanner("a b:c");
    EXPECT_EQ(scanner.Until(':'), "a b");
    EXPECT_EQ(scanner.Until(':'), std::nullopt);
    EXPECT_TRUE(scanner.Literal(":"));
    EXPECT_EQ(scanner.Until(':'), "c");
    EXPECT_EQ(scanner.Until(':'), std::nullopt);
}

TEST(FieldScanner, SkipsBlanksOfAllKinds) {
    FieldScanner scanner(" \t\r\n\v\f x");
    scanner.SkipBlanks();
    EXPECT_EQ(scanner.Rest(), "x");
}

}  // namespace
}  // namespace tavrin
