#include "text/ValueFormat.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <optional>
#include <string>

#include "support/TestSite.h"
#include "text/Numbers.h"

namespace tavrin {
namespace {

// A locale whose decimal sign is a comma, in force on this thread while the object lives.
class CommaLocale {
  public:
    CommaLocale() {
        const std::string command = "localedef -i de_DE -f UTF-8 '" + (m_directory / "de_DE.UTF-8") + "' 2>/dev/null";
        if (std::system(command.c_str()) != 0) return;
        ::setenv("LOCPATH", m_directory.Path().c_str(), 1);
        m_locale = ::newlocale(LC_ALL_MASK, "de_DE.UTF-8", nullptr);
        ::unsetenv("LOCPATH");
        if (m_locale != nullptr) m_previous = ::uselocale(m_locale);
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() {
        if (m_locale == nullptr) return;
        ::uselocale(m_previous);
        ::freelocale(m_locale);
    }
    bool IsInForce() const { return m_locale != nullptr; }

  private:
    test::TempDir m_directory;
    locale_t m_locale = nullptr;
    locale_t m_previous = nullptr;
};

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

TEST(FormatNumbers, AConversionWithoutAValueGivesNothing) { EXPECT_EQ(FormatNumbers("%g-%g-%5f", {1}), "1--"); }

TEST(FormatNumbers, ValuesLeftOverAreDropped) { EXPECT_EQ(FormatNumbers("<%g>", {1, 2, 3}), "<1>"); }

TEST(FormatNumbers, APatternWithoutConversionsStands) {
    EXPECT_EQ(FormatNumbers("", {1}), "");
    EXPECT_EQ(FormatNumbers("none", {1}), "none");
}

TEST(FormatNumbers, ADoubledPercentSignIsOne) { EXPECT_EQ(FormatNumbers("%g%%", {50}), "50%"); }

TEST(FormatNumbers, ForeignConversionsAreTextAndTakeNoValue) {
    EXPECT_EQ(FormatNumbers("%s %n %d %p %c %lf %*g %1$g %g", {7}), "%s %n %d %p %c %lf %*g %1$g 7");
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

TEST(FormatNumbers, TheUsersLocaleChangesNothing) {
    const CommaLocale locale;
    if (!locale.IsInForce()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
    EXPECT_EQ(FormatNumbers("%g %.2f %e", {0.5, 0.25, 1.5}), "0.5 0.25 1.500000e+00");
    EXPECT_EQ(FormatG(0.5), "0.5");
    EXPECT_EQ(FormatF(0.5), "0.500000");
    EXPECT_EQ(ParseFloat("0.5"), 0.5F);
    EXPECT_EQ(*FieldScanner("0.25").Float(), 0.25F);
}

TEST(FormatNumbers, TheUsersLocaleIsBackAfterwards) {
    const CommaLocale locale;
    if (!locale.IsInForce()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
    FormatNumbers("%.2f", {0.5});
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}

TEST(FormatString, TheConversionTakesTheText) {
    EXPECT_EQ(FormatString("\"%s\"", "a b"), "\"a b\"");
    EXPECT_EQ(FormatString("%s", ""), "");
}

TEST(FormatString, PercentSignsInTheTextStay) { EXPECT_EQ(FormatString("<%s>", "%s %n 100%"), "<%s %n 100%>"); }

TEST(FormatString, ZeroBytesInTheTextStay) {
    EXPECT_EQ(FormatString("<%s>", std::string_view("a\0b", 3)), std::string("<a\0b>", 5));
}

TEST(FormatString, ASecondConversionGivesNothing) { EXPECT_EQ(FormatString("%s|%s|%9s", "x"), "x||"); }

TEST(FormatString, ForeignConversionsAreText) {
    EXPECT_EQ(FormatString("%d %g %n %ls %s%%", "x"), "%d %g %n %ls x%");
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
