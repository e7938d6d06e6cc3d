// SPDX-License-Identifier: Apache-2.0
#include "text/NearestNames.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kKnown = {"MRAY_EXPOSURE", "MRAY_OBJECT", "MRAY_SAMPLES", "MRAY_SIZE",
                                         "MRAY_TINT_B",   "MRAY_TINT_G", "MRAY_TINT_R"};

TEST(NearestNames, ASlipOfTheHandIsFound) {
    EXPECT_EQ(NearestNames("MRAY_SIZ", kKnown).front(), "MRAY_SIZE");
    EXPECT_EQ(NearestNames("MARY_SIZE", kKnown).front(), "MRAY_SIZE") << "neighbours exchanged count one";
    EXPECT_THAT(NearestNames("mray_objekt", kKnown), ElementsAre("MRAY_OBJECT"));
    EXPECT_THAT(NearestNames("MRAY_EXPOSSURE", kKnown), ElementsAre("MRAY_EXPOSURE"));
}

TEST(NearestNames, TheNearestComeFirstAndThreeAtMost) {
    EXPECT_THAT(NearestNames("MRAY_TINT_A", kKnown),
                ElementsAre("MRAY_TINT_B", "MRAY_TINT_G", "MRAY_TINT_R"));
    EXPECT_THAT(NearestNames("MRAY_TINT_G", {"MRAY_TINT_B", "MRAY_TINT_G", "X", "MRAY_TINT", "MRAY_TINT_"}),
                ElementsAre("MRAY_TINT_G", "MRAY_TINT_", "MRAY_TINT_B"));
}

TEST(NearestNames, WhatIsFarIsNotNamed) {
    EXPECT_THAT(NearestNames("KEY", kKnown), IsEmpty());
    EXPECT_THAT(NearestNames("X", {"Y", "AB"}), IsEmpty());
    EXPECT_THAT(NearestNames(std::string(100000, 'M'), kKnown), IsEmpty());
    EXPECT_THAT(NearestNames("", {}), IsEmpty());
}

TEST(NearestNames, NamesAreJoinedAsInASentence) {
    EXPECT_EQ(JoinNames({}), "");
    EXPECT_EQ(JoinNames({"A"}), "A");
    EXPECT_EQ(JoinNames({"A", "B"}), "A or B");
    EXPECT_EQ(JoinNames({"A", "B", "C"}), "A, B or C");
}

}  // namespace
}  // namespace tavrin
