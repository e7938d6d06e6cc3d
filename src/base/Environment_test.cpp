// SPDX-License-Identifier: Apache-2.0
#include "base/Environment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace tavrin {
namespace {

using testing::Contains;
using testing::ElementsAre;

TEST(Environment, StartsAsACopyOfTheProcesssOwn) {
    ::setenv("TAVRIN_TEST_VALUE", "a=b = c", 1);
    const Environment environment = Environment::FromProcess();
    ::unsetenv("TAVRIN_TEST_VALUE");
    EXPECT_EQ(environment.Get("TAVRIN_TEST_VALUE"), "a=b = c");
    EXPECT_THAT(environment.ToList(), Contains("TAVRIN_TEST_VALUE=a=b = c"));
}

TEST(Environment, AnEmptyVariableIsNotAMissingOne) {
    Environment environment;
    environment.Set("EMPTY", "");
    EXPECT_EQ(environment.Get("EMPTY"), "");
    EXPECT_EQ(environment.Get("MISSING"), std::nullopt);
    EXPECT_THAT(environment.ToList(), ElementsAre("EMPTY="));
}

TEST(Environment, ALaterValueReplacesTheEarlierOne) {
    Environment environment;
    environment.Set("B", "1");
    environment.Set("A", "2");
    environment.Set("B", "3");
    EXPECT_THAT(environment.ToList(), ElementsAre("A=2", "B=3"));
}

TEST(Environment, AnUnsetVariableIsGone) {
    Environment environment;
    environment.Set("A", "1");
    environment.Unset("A");
    environment.Unset("B");
    EXPECT_EQ(environment.Get("A"), std::nullopt);
    EXPECT_TRUE(environment.ToList().empty());
}

TEST(Environment, ChangesDoNotReachTheProcess) {
    ::unsetenv("TAVRIN_TEST_VALUE");
    Environment environment = Environment::FromProcess();
    environment.Set("TAVRIN_TEST_VALUE", "x");
    EXPECT_EQ(std::getenv("TAVRIN_TEST_VALUE"), nullptr);
}

}  // namespace
}  // namespace tavrin
