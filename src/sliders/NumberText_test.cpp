// SPDX-License-Identifier: Apache-2.0
#include "sliders/NumberText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <limits>
#include <random>

namespace tavrin {
namespace {

using testing::Optional;

TEST(NumberText, ShowsSixSignificantDigits) {
    EXPECT_EQ(NumberText(0.5F), "0.5");
    EXPECT_EQ(NumberText(1.0F / 3), "0.333333");
    EXPECT_EQ(NumberText(1234567.0F), "1.23457e+06");
    EXPECT_EQ(NumberText(-0.00001F), "-1e-05");
    EXPECT_EQ(NumberText(3), "3");
}

TEST(NumberText, IsTheSameWhateverTheLocaleOfTheUserIs) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        std::setlocale(LC_ALL, name);  // those that are installed
        EXPECT_EQ(NumberText(0.25F), "0.25");
        EXPECT_THAT(ReadNumber("0.25"), Optional(0.25F));
        EXPECT_EQ(ReadNumber("0,25"), std::nullopt);
        EXPECT_FLOAT_EQ(RoundedToThousandths(0.1239F), 0.124F);
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(NumberText, ANumberIsReadWithBlanksRoundItAndASign) {
    EXPECT_THAT(ReadNumber("0.5"), Optional(0.5F));
    EXPECT_THAT(ReadNumber(" \t-2. "), Optional(-2.0F));
    EXPECT_THAT(ReadNumber("+.25"), Optional(0.25F));
    EXPECT_THAT(ReadNumber("1e-3"), Optional(0.001F));
    EXPECT_THAT(ReadNumber("1E+2"), Optional(100.0F));
    EXPECT_THAT(ReadNumber("3.4028235e38"), Optional(FLT_MAX));
    EXPECT_THAT(ReadNumber("1e-60"), Optional(0.0F));
}

class NoNumber : public testing::TestWithParam<const char*> {};

TEST_P(NoNumber, IsRefused) { EXPECT_EQ(ReadNumber(GetParam()), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(Texts, NoNumber,
                         testing::Values("", " ", "-", ".", "-.", "+", "+-1", "-+1", "abc", "1x", "0.5 0.5",
                                         "1,5", "nan", "-nan", "NaN(1)", "inf", "-inf", "Infinity", "0x10",
                                         "1e", "1e+", "1e39", "-1e39", "1e999", "1e99999999999", "--1",
                                         "1.2.3", "\xC2\xB2"));

TEST(NumberText, AMegabyteIsReadOrRefusedAsAnythingElse) {
    EXPECT_EQ(ReadNumber(std::string(1 << 20, '9')), std::nullopt);
    EXPECT_THAT(ReadNumber("0." + std::string(1 << 20, '0')), Optional(0.0F));
    EXPECT_THAT(ReadNumber(std::string(1 << 20, ' ') + "7"), Optional(7.0F));
    EXPECT_EQ(ReadNumber("1" + std::string(1 << 20, 'x')), std::nullopt);
}

TEST(NumberText, TheBeginOfANumberIsNotToBeReadYet) {
    for (const char* text : {"", "-", ".", "-."}) EXPECT_TRUE(IsBeginOfNumber(text)) << text;
    for (const char* text : {" ", "0", "-0", "..", "+", "a", "-.5"})
        EXPECT_FALSE(IsBeginOfNumber(text)) << text;
    for (const char* text : {"", "  ", ".", " . "}) EXPECT_TRUE(IsBeginOfShare(text)) << text;
    for (const char* text : {"-", "-.", "0", "..", "a"}) EXPECT_FALSE(IsBeginOfShare(text)) << text;
}

TEST(NumberText, RoundsToThousandthsAsTheirTextDoes) {
    EXPECT_EQ(RoundedToThousandths(0.12345F), 0.123F);
    EXPECT_EQ(RoundedToThousandths(0.9996F), 1.0F);
    EXPECT_EQ(RoundedToThousandths(-0.0004F), -0.0F);
    EXPECT_EQ(RoundedToThousandths(FLT_MAX), FLT_MAX);
    EXPECT_TRUE(std::isinf(RoundedToThousandths(std::numeric_limits<float>::infinity())));
    std::mt19937 random(7);
    std::uniform_real_distribution<float> any(0, 1);
    for (int i = 0; i < 10000; ++i) {
        const float value = any(random);
        char text[32];
        std::snprintf(text, sizeof text, "%.3f", static_cast<double>(value));
        EXPECT_EQ(RoundedToThousandths(value), static_cast<float>(std::atof(text))) << text;
    }
}

}  // namespace
}  // namespace tavrin
