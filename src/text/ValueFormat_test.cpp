// SPDX-License-Identifier: Apache-2.0
#include "text/ValueFormat.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/TestSite.h"
#include "text/Numbers.h"

namespace tavrin {
namespace {

// In a process of its own, and in a locale from this directory whose decimal sign is a comma: writes what
// numbers look like to standard error.
[[noreturn]] void PrintWithDecimalComma(const std::string& directory) {
    ::setenv("LOCPATH", directory.c_str(), 1);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) ::_exit(1);
    const std::string ours = FormatNumbers("%g %.2f %e ", {0.5, 0.25, 1.5}) + FormatG(0.5) + " " +
                             FormatF(0.5) + " " + FormatG(ParseFloat("0.75")) + " " +
                             FormatG(*FieldScanner("0.25").Float());
    std::fprintf(stderr, "%s, the user's own %.1f\n", ours.c_str(), 0.5);
    ::_exit(0);
}

TEST(FormatNumbers, EachConversionTakesOneValue) {
    EXPECT_EQ(FormatNumbers("color(%g, %g, %g)", {0.1, 0.5, 1}), "color(0.1, 0.5, 1)");
}

TEST(FormatNumbers, ConversionsOfAllFloatKindsAreHonoured) {
    EXPECT_EQ(FormatNumbers("%f %e %G %.2f", {0.5, 1500, 1e-9, 2.345}), "0.500000 1.500000e+03 1E-09 2.35");
    EXPECT_EQ(FormatNumbers("%a|%A|%E|%F", {1, 1, 2, 3}), "0x1p+0|0X1P+0|2.000000E+00|3.000000");
}

TEST(FormatNumbers, FlagsWidthAndPrecisionAreHonoured) {
    EXPECT_EQ(FormatNumbers("[%6.2f][%-6g][%+g][%06.1f][% g][%#g]", {1.5, 2, 3, 4, 5, 6}),
              "[  1.50][2     ][+3][0004.0][ 5][6.00000]");
}

TEST(FormatNumbers, AConversionWithoutAValueGivesNothing) {
    EXPECT_EQ(FormatNumbers("%g-%g-%5f", {1}), "1--");
}

TEST(FormatNumbers, ValuesLeftOverAreDropped) { EXPECT_EQ(FormatNumbers("<%g>", {1, 2, 3}), "<1>"); }

TEST(FormatNumbers, APatternWithoutConversionsStands) {
    EXPECT_EQ(FormatNumbers("", {1}), "");
    EXPECT_EQ(FormatNumbers("none", {1}), "none");
}

TEST(FormatNumbers, ADoubledPercentSignIsOne) { EXPECT_EQ(FormatNumbers("%g%%", {50}), "50%"); }

TEST(FormatNumbers, ForeignConversionsAreTextAndTakeNoValue) {
    EXPECT_EQ(FormatNumbers("%s %n %p %c %*g %1$g %g", {7}), "%s %n %p %c %*g %1$g 7");
}

TEST(FormatNumbers, LengthModifiersThatTheConversionAllowsChangeNothing) {
    EXPECT_EQ(FormatNumbers("%lf|%5.2lf|%lg|%LG|%-8.1Le|%la", {1, 2.345, 0.5, 1e-9, 1500, 1}),
              "1.000000| 2.35|0.5|1E-09|1.5e+03 |0x1p+0");
    EXPECT_EQ(FormatNumbers("%hd|%hhi|%ld|%lld|%jd|%zd|%td", {1, 300, 70000, -4, 5, 6, 7}),
              "1|300|70000|-4|5|6|7");
    EXPECT_EQ(FormatNumbers("%hu|%lx|%#llX|%#zo", {1, 255, 255, 8}), "1|ff|0XFF|010");
}

TEST(FormatNumbers, AWholeNumberIsTheValueWithoutItsFraction) {
    EXPECT_EQ(FormatNumbers("%d %i %+d [%4d] [%-4d] [%04d] [%.3d]", {2.9, -2.9, 3, 4, 5, 6, 7}),
              "2 -2 +3 [   4] [5   ] [0006] [007]");
    EXPECT_EQ(FormatNumbers("%d %d %u %u", {1e30, -1e30, 1e30, -1}),
              "9223372036854775807 -9223372036854775808 18446744073709551615 0");
    EXPECT_EQ(FormatNumbers("%d %u", {std::nan(""), std::nan("")}), "0 0");
}

TEST(FormatNumbers, WhatCDoesNotAllowIsTextAndTakesNoValue) {
    for (const char* pattern : {"%hf", "%hhg", "%llf", "%je", "%zf", "%ta", "%Ld", "%Lx", "%hhhd", "%lll",
                                "%#d", "%#i",  "%#lu", "%l",  "%h%", "%ls", "%lc", "%ln", "%qd",   "%l f"}) {
        const std::string text(pattern);
        EXPECT_EQ(FormatNumbers(text + "|%g", {7}), text + "|7") << pattern;
    }
}

TEST(FormatNumbers, APercentSignAtTheEndIsText) {
    EXPECT_EQ(FormatNumbers("%g%", {1}), "1%");
    EXPECT_EQ(FormatNumbers("%", {1}), "%");
    EXPECT_EQ(FormatNumbers("%5.", {1}), "%5.");
}

TEST(FormatNumbers, AWidthOfMoreThanThreeDigitsIsText) {
    EXPECT_EQ(FormatNumbers("%999999999g", {1}), "%999999999g");
    EXPECT_EQ(FormatNumbers("%.9999f", {1}), "%.9999f");
    EXPECT_EQ(FormatNumbers("%999g", {1}).size(), 999U);
}

TEST(FormatNumbers, ZeroBytesInThePatternStay) {
    EXPECT_EQ(FormatNumbers(std::string_view("a\0%g", 4), {1}), std::string("a\0001", 3));
}

TEST(FormatNumbers, TheUsersLocaleChangesNothingAndIsNotChanged) {
    const test::TempDir directory;
    const std::string command =
        "localedef -i de_DE -f UTF-8 '" + (directory / "de_DE.UTF-8") + "' 2>/dev/null";
    ASSERT_EQ(std::system(command.c_str()), 0)
        << "the package locales is missing; scripts/setup.sh installs it";
    EXPECT_EXIT(PrintWithDecimalComma(directory.Path()), testing::ExitedWithCode(0),
                "^0\\.5 0\\.25 1\\.500000e\\+00 0\\.5 0\\.500000 0\\.75 0\\.25, the user's own 0,5\n");
}

TEST(FormatString, TheConversionTakesTheText) {
    EXPECT_EQ(FormatString("\"%s\"", "a b"), "\"a b\"");
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(FormatString, PercentSignsInTheTextStay) {
    EXPECT_EQ(FormatString("<%s>", "%s %n 100%"), "<%s %n 100%>");
}

TEST(FormatString, ZeroBytesInTheTextStay) {
    EXPECT_EQ(FormatString("<%s>", std::string_view("a\0b", 3)), std::string("<a\0b>", 5));
}

TEST(FormatString, ASecondConversionGivesNothing) { EXPECT_EQ(FormatString("%s|%s|%9s", "x"), "x||"); }

TEST(FormatString, ForeignConversionsAreText) {
    EXPECT_EQ(FormatString("%d %g %n %ls %hs %lf %hd %s%%", "x"), "%d %g %n %ls %hs %lf %hd x%");
}

TEST(FormatString, WidthPadsAndPrecisionCuts) {
    EXPECT_EQ(FormatString("[%5s]", "abc"), "[  abc]");
    EXPECT_EQ(FormatString("[%-5s]", "abc"), "[abc  ]");
    EXPECT_EQ(FormatString("[%.2s]", "abc"), "[ab]");
    EXPECT_EQ(FormatString("[%4.2s]", "abc"), "[  ab]");
    EXPECT_EQ(FormatString("[%-4.1s]", "abc"), "[a   ]");
    EXPECT_EQ(FormatString("[%.s]", "abc"), "[]");
    EXPECT_EQ(FormatString("[%2s]", "abc"), "[abc]");
}

TEST(FormatString, FlagsInAnyOrderAreFlags) {
    for (const char* pattern : {"[%-05s]", "[%0-5s]", "[%-+5s]", "[%+-5s]", "[% -5s]", "[%#-5s]"}) {
        EXPECT_EQ(FormatString(pattern, "abc"), "[abc  ]") << pattern;
    }
    EXPECT_EQ(FormatString("[%05s]", "abc"), "[  abc]");
    EXPECT_EQ(FormatString("[%0+5s]", "abc"), "[  abc]");
    EXPECT_EQ(FormatString("[%0#5s]", "abc"), "[  abc]");
}

}  // namespace
}  // namespace tavrin
